#include "platform/code_page.h"

#include <iconv.h>
#include <langinfo.h>
#include <locale.h>

#include <array>
#include <bit>
#include <cerrno>
#include <cstdint>
#include <memory>
#include <optional>
#include <type_traits>

namespace orvane::platform {
namespace {

constexpr auto kUtf16 = std::endian::native == std::endian::little ? "UTF-16LE" : "UTF-16BE";

// The character set of the environment's locale; UTF-8 in the C locale. Leaves the process's own
// locale as it is.
std::string EnvironmentCharacterSet() {
  const std::unique_ptr<std::remove_pointer_t<locale_t>, decltype(&freelocale)> environment(
      newlocale(LC_CTYPE_MASK, "", nullptr), &freelocale);
  if (!environment) return "UTF-8";
  const std::string_view name = nl_langinfo_l(CODESET, environment.get());
  return std::string(name.empty() || name == "ANSI_X3.4-1968" ? "UTF-8" : name);
}

std::string CharacterSet(CodePage page) {
  return page == CodePage::kUtf8 ? "UTF-8" : EnvironmentCharacterSet();
}

class Converter {
 public:
  Converter(const std::string& to, const std::string& from)
      : descriptor_(iconv_open(to.c_str(), from.c_str())) {}
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;
  ~Converter() {
    if (*this) iconv_close(descriptor_);
  }

  explicit operator bool() const { return reinterpret_cast<std::intptr_t>(descriptor_) != -1; }

  // Converts the bytes at the front of in, appends the result to out and removes those bytes from
  // in. False if it stops before something that does not map or is incomplete.
  bool Convert(std::string_view& in, std::string& out) {
    std::array<char, 1024> area;
    for (;;) {
      char* from = const_cast<char*>(in.data());
      std::size_t left = in.size();
      char* next = area.data();
      std::size_t room = area.size();
      const std::size_t result = iconv(descriptor_, &from, &left, &next, &room);
      const bool full = result == static_cast<std::size_t>(-1) && errno == E2BIG;
      in.remove_prefix(in.size() - left);
      out.append(area.data(), area.size() - room);
      if (!full) return in.empty();
    }
  }

  // In a set that combines characters, iconv holds one back until it sees the next. This appends
  // the held one.
  void Flush(std::string& out) {
    std::array<char, 64> area;
    char* next = area.data();
    std::size_t room = area.size();
    iconv(descriptor_, nullptr, nullptr, &next, &room);
    out.append(area.data(), area.size() - room);
  }

 private:
  iconv_t descriptor_;
};

std::string_view Bytes(std::u16string_view text) {
  return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(char16_t)};
}

// Each byte that does not map becomes U+FFFD.
std::optional<std::string> Decode(const std::string& from, std::string_view text) {
  Converter converter(kUtf16, from);
  if (!converter) return std::nullopt;
  std::string out;
  while (!converter.Convert(text, out)) {
    converter.Flush(out);
    out += Bytes(u"\uFFFD");
    text.remove_prefix(1);
  }
  return out;
}

bool IsPair(std::u16string_view text) {
  return text.size() > 1 && (text[0] & 0xFC00) == 0xD800 && (text[1] & 0xFC00) == 0xDC00;
}

// Each character that does not map becomes '?'. Converts one character at a time: glibc is slow to
// continue after one that it cannot convert.
std::optional<std::string> Encode(const std::string& to, std::u16string_view text) {
  // The first unit of a language tag. iconv silently drops such a tag if the set has none.
  constexpr char16_t kTagLead = 0xDB40;
  Converter converter(to, kUtf16);
  if (!converter) return std::nullopt;
  std::string out;
  while (!text.empty()) {
    const auto character = text.substr(0, IsPair(text) ? 2 : 1);
    const bool isTag = character[0] == kTagLead;
    if (isTag) converter.Flush(out);
    const std::size_t before = out.size();
    std::string_view bytes = Bytes(character);
    if (!converter.Convert(bytes, out) || (isTag && out.size() == before)) {
      converter.Flush(out);
      out += '?';
    }
    text.remove_prefix(character.size());
  }
  return out;
}

template <typename Unit>
Conversion Deliver(const std::optional<std::string>& result, std::span<Unit> out) {
  if (!result || (!out.empty() && result->size() > out.size_bytes())) return {};
  if (!out.empty()) result->copy(reinterpret_cast<char*>(out.data()), result->size());
  return {result->size() / sizeof(Unit)};
}

}  // namespace

Conversion ToWide(CodePage from, const char* text, std::span<char16_t> out) {
  const std::string_view view = text;
  return Deliver(Decode(CharacterSet(from), {view.data(), view.size() + 1}), out);
}

Conversion FromWide(CodePage to, const char16_t* text, std::span<char> out) {
  const std::u16string_view view = text;
  return Deliver(Encode(CharacterSet(to), {view.data(), view.size() + 1}), out);
}

std::string AnsiText(std::u16string_view text) {
  // The terminator makes iconv give out a character that it holds back.
  const std::u16string terminated(text);
  auto out = Encode(EnvironmentCharacterSet(), {terminated.c_str(), terminated.size() + 1});
  if (!out) return {};
  out->pop_back();
  return *std::move(out);
}

}  // namespace orvane::platform
