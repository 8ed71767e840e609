#include "host/text_input.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>
#include <system_error>

#include "host/failure.h"
#include "host/platform.h"
#include "host/text.h"

namespace host {
namespace {

constexpr int kStandardInput = 0;

bool IsHighHalf(char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool IsLowHalf(char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

void AppendUtf8(std::string& text, char32_t code) {
  if (code < 0x80) {
    text += static_cast<char>(code);
    return;
  }
  const int following = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
  constexpr std::array<unsigned, 4> kLead = {0, 0xC0, 0xE0, 0xF0};
  text += static_cast<char>(kLead[static_cast<size_t>(following)] | code >> 6 * following);
  for (int at = following - 1; at >= 0; --at) {
    text += static_cast<char>(0x80 | (code >> 6 * at & 0x3F));
  }
}

std::string Reason() { return ": " + std::generic_category().message(errno); }

}  // namespace

TextInput::TextInput(const std::string& file)
    : name_(file == "-" ? "<stdin>" : Printable(file)),
      descriptor_(file == "-" ? kStandardInput : OpenFile(file)) {
  if (descriptor_ < 0) throw Failure(kFileFault, "can't open " + name_ + Reason());
}

TextInput::~TextInput() {
  if (descriptor_ != kStandardInput) CloseFile(descriptor_);
}

std::optional<std::string> TextInput::NextLine() {
  size_t end = text_.find('\n', taken_);
  while (end == text_.npos && ReadMore()) end = text_.find('\n', taken_);
  if (taken_ == text_.size()) return std::nullopt;
  std::string line = text_.substr(taken_, end - taken_);
  taken_ += line.size() + (end != text_.npos ? 1 : 0);
  if (line.ends_with('\r')) line.pop_back();
  return line;
}

std::string TextInput::Rest() {
  while (ReadMore()) continue;
  return text_.substr(taken_);
}

bool TextInput::ReadMore() {
  if (ended_) return false;
  std::array<char, 32768> area;
  const std::ptrdiff_t count = ReadSome(descriptor_, area.data(), area.size());
  if (count < 0) Fail(Reason());
  ended_ = count == 0;
  octets_.append(area.data(), static_cast<size_t>(count));
  text_.erase(0, taken_);
  taken_ = 0;
  if (encoding_ == Encoding::kUnknown) TakeMark();
  if (encoding_ != Encoding::kUnknown) Decode();
  return true;
}

// The encoding stays unknown while the octets may still be the beginning of a byte order mark.
void TextInput::TakeMark() {
  struct Mark {
    std::string_view octets;
    Encoding encoding;
  };
  constexpr std::array kMarks = std::to_array<Mark>({{"\xEF\xBB\xBF", Encoding::kUtf8},
                                                     {"\xFF\xFE", Encoding::kUtf16Little},
                                                     {"\xFE\xFF", Encoding::kUtf16Big}});
  for (const Mark& mark : kMarks) {
    if (octets_.starts_with(mark.octets)) {
      octets_.erase(0, mark.octets.size());
      encoding_ = mark.encoding;
      return;
    }
    if (!ended_ && mark.octets.starts_with(octets_)) return;
  }
  encoding_ = Encoding::kUtf8;
}

void TextInput::Decode() {
  const size_t begin = text_.size();
  if (encoding_ == Encoding::kUtf8) {
    text_ += octets_;
    octets_.clear();
  } else {
    DecodeUtf16();
  }
  if (text_.find('\0', begin) != text_.npos) {
    Fail(": it holds a zero byte, and is no text in UTF-8 or, with a mark, UTF-16");
  }
}

void TextInput::DecodeUtf16() {
  size_t at = 0;
  while (octets_.size() - at >= 2) {
    char32_t code = Unit(at);
    if (IsHighHalf(code) && octets_.size() - at < 4) break;
    if (IsHighHalf(code) && IsLowHalf(Unit(at + 2))) {
      code = 0x10000 + ((code - 0xD800) << 10) + (Unit(at + 2) - 0xDC00);
      at += 2;
    } else if (IsHighHalf(code) || IsLowHalf(code)) {
      Fail(": half a character stands in its UTF-16 text");
    }
    AppendUtf8(text_, code);
    at += 2;
  }
  octets_.erase(0, at);
  if (ended_ && !octets_.empty()) Fail(": its UTF-16 text ends within a character");
}

char32_t TextInput::Unit(size_t at) const {
  const auto first = static_cast<unsigned char>(octets_[at]);
  const auto second = static_cast<unsigned char>(octets_[at + 1]);
  return encoding_ == Encoding::kUtf16Little ? static_cast<char32_t>(second << 8 | first)
                                             : static_cast<char32_t>(first << 8 | second);
}

void TextInput::Fail(const std::string& why) const {
  throw Failure(kFileFault, "can't read " + name_ + why);
}

std::string DigitsIn(std::string_view text) {
  std::string digits(text);
  std::erase_if(digits, [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); });
  if (digits.empty()) throw Failure(kScriptFault, "there is no data");
  const auto wrong = std::find_if_not(digits.begin(), digits.end(), IsHexDigit);
  if (wrong != digits.end()) {
    throw Failure(kScriptFault, "'" + Printable({&*wrong, 1}) + "' is no hexadecimal digit");
  }
  if (digits.size() % 2 != 0) {
    throw Failure(kScriptFault,
                  "the data has an odd number of digits (" + std::to_string(digits.size()) + ")");
  }
  return digits;
}

}  // namespace host
