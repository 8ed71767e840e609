#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace host {

// Text from a file or, for the name "-", from standard input, as UTF-8. A mark in front of it is
// taken off; after one of UTF-16 the text is converted. Other octets stay as they are. Whatever
// can't be opened, read or converted, and a zero byte, is thrown as Failure (kFileFault).
class TextInput {
 public:
  explicit TextInput(const std::string& file);
  TextInput(const TextInput&) = delete;
  TextInput& operator=(const TextInput&) = delete;
  ~TextInput();

  // As messages show it.
  const std::string& Name() const { return name_; }

  // The next line without its end, LF or CR LF; none at the end. Reads no further than it must.
  std::optional<std::string> NextLine();

  // All that is left.
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

// The hexadecimal digits of a text, without its white space. Throws Failure (kScriptFault) if there
// is none, or any other character.
std::string DigitsIn(std::string_view text);

}  // namespace host
