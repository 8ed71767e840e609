#include "platform/code_page.h"

#include <iconv.h>
#include <langinfo.h>
#include <locale.h>

#include <array>
#include <bit>
#include <cerrno>
#include <string>

namespace orvane::platform {
namespace {

/// The character set of the environment's locale, without touching the process's own locale.
/// The C locale names none: UTF-8 stands in there.
std::string EnvironmentCharacterSet() {
  const locale_t environment = newlocale(LC_CTYPE_MASK, "", nullptr);
  if (environment == nullptr) return "UTF-8";
  const std::string name = nl_langinfo_l(CODESET, environment);
  freelocale(environment);
  return name.empty() || name == "ANSI_X3.4-1968" ? "UTF-8" : name;
}

class Converter {
 public:
  Converter(const std::string& to, const char* from) : descriptor_(iconv_open(to.c_str(), from)) {}
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;
  ~Converter() {
    if (*this) iconv_close(descriptor_);
  }

  explicit operator bool() const { return descriptor_ != reinterpret_cast<iconv_t>(-1); }

  /// Converts one whole character, or with no input the way back to the first shift state.
  /// False if it does not map.
  bool Convert(char* in, std::size_t size, std::string& out) {
    std::array<char, 64> area;
    char* next = area.data();
    std::size_t room = area.size();
    const std::size_t result =
        iconv(descriptor_, in != nullptr ? &in : nullptr, &size, &next, &room);
    if (result != 0) return false;
    out.append(area.data(), area.size() - room);
    return true;
  }

 private:
  iconv_t descriptor_;
};

bool IsLeadSurrogate(char16_t unit) { return unit >= 0xD800 && unit < 0xDC00; }

}  // namespace

std::string AnsiText(std::u16string_view text) {
  constexpr auto kUtf16 = std::endian::native == std::endian::little ? "UTF-16LE" : "UTF-16BE";
  std::string out;
  Converter converter(EnvironmentCharacterSet(), kUtf16);
  if (!converter) return out;
  std::u16string units(text);
  for (std::size_t i = 0; i < units.size();) {
    const std::size_t width = IsLeadSurrogate(units[i]) && i + 1 < units.size() ? 2 : 1;
    auto* const in = reinterpret_cast<char*>(units.data() + i);
    if (!converter.Convert(in, width * sizeof(char16_t), out)) out += '?';
    i += width;
  }
  converter.Convert(nullptr, 0, out);
  return out;
}

}  // namespace orvane::platform
