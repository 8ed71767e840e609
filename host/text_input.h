#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace host {

// Text from a file or, for the name "-", from standard input, as UTF-8. A byte order mark is
// removed; after one of UTF-16 the text is converted. Other octets stay. Throws Failure
// (kFileFault) if the input cannot be opened, read or converted, or has a zero byte.
class TextInput {
 public:
  explicit TextInput(const std::string& file);
  TextInput(const TextInput&) = delete;
  TextInput& operator=(const TextInput&) = delete;
  ~TextInput();

  // The name in messages.
  const std::string& Name() const { return name_; }

  // The next line without its end, LF or CR LF; none at the end. Reads no more than it needs.
  std::optional<std::string> NextLine();

  // All text that is left.
  std::string Rest();

 private:
  enum class Encoding { kUnknown, kUtf8, kUtf16Little, kUtf16Big };

  bool ReadMore();
  void TakeMark();
  void Decode();
  void DecodeUtf16();
  char32_t Unit(size_t at) const;
  [[noreturn]] void Fail(const std::string& why) const;

  std::string name_;
  int descriptor_;
  bool ended_ = false;
  Encoding encoding_ = Encoding::kUnknown;
  std::string octets_;  // not decoded yet
  std::string text_;
  size_t taken_ = 0;  // of text_
};

// The hexadecimal digits of a text, without white space. Throws Failure (kScriptFault) if there are
// none, or for any other character.
std::string DigitsIn(std::string_view text);

}  // namespace host
