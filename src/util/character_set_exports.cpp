#include <string>

#include "orvane.h"
#include "platform/code_page.h"
#include "util/character_sets.h"

namespace {

constexpr orvane::CodePageCalls kSystem = {orvane::platform::ToWide, orvane::platform::FromWide};

}  // namespace

void ASCII2UTF_8(const char* text, char* out) {
  const std::string converted = orvane::AnsiToUtf8(kSystem, text);
  converted.copy(out, converted.size());
}

void UTF_82ASCII(const char* text, char* out) {
  const std::string converted = orvane::Utf8ToOem(kSystem, text);
  converted.copy(out, converted.size());
}
