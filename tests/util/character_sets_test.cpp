// The steps of a conversion, on a system whose text is "ab" in every code page and that fails where
// it is told to.
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>

#include "orvane.h"
#include "platform/code_page.h"

namespace {

using orvane::platform::CodePage;
using orvane::platform::Conversion;

Conversion sizeToWide, toWide, sizeFromWide, fromWide;
std::string legs;  // the code pages that were asked for

template <typename Unit>
Conversion Give(Conversion size, Conversion converted, std::span<Unit> out) {
  if (out.empty()) return size;
  const char text[] = "ab";
  std::copy_n(text, std::min(out.size(), sizeof text), out.begin());
  return converted;
}

std::string Outcome(void (*convert)(const char*, char*)) try {
  char out[7] = "??????";
  convert("12", out);
  return out;
} catch (const std::runtime_error& thrown) {
  return thrown.what();
}

TEST(CharacterSets, NameTheFailedStep) {
  const std::string noTranslation = "Invalid UTF-8 sequence.", error = "Error in conversion.",
                    counts = "La falla!", none = "ab????";
  const Conversion untranslated{0, true}, failed{0, false}, fewer{2, false}, more{4, false};
  const struct {
    Conversion& step;
    Conversion outcome;
    const std::string& ansiToUtf8;
    const std::string& utf8ToOem;
  } rows[] = {{sizeToWide, {3}, none, none},
              {sizeToWide, untranslated, noTranslation, noTranslation},
              {sizeToWide, failed, error, error},
              {sizeToWide, more, counts, counts},
              {toWide, failed, counts, counts},
              {toWide, untranslated, counts, counts},
              {toWide, fewer, counts, counts},
              {sizeFromWide, untranslated, error, noTranslation},
              {sizeFromWide, failed, error, error},
              {sizeFromWide, fewer, counts, counts},
              {fromWide, failed, counts, counts}};
  for (const auto& row : rows) {
    SCOPED_TRACE(&row - rows);
    sizeToWide = toWide = sizeFromWide = fromWide = {3};
    row.step = row.outcome;
    EXPECT_EQ(Outcome(ASCII2UTF_8), row.ansiToUtf8);
    EXPECT_EQ(Outcome(UTF_82ASCII), row.utf8ToOem);
  }
  EXPECT_TRUE(legs.starts_with("0>0>>65001>6500165001>65001>>1>1")) << legs;
}

}  // namespace

namespace orvane::platform {

Conversion ToWide(CodePage from, const char*, std::span<char16_t> out) {
  legs += std::to_string(static_cast<unsigned>(from)) + '>';
  return Give(sizeToWide, toWide, out);
}

Conversion FromWide(CodePage to, const char16_t*, std::span<char> out) {
  legs += '>' + std::to_string(static_cast<unsigned>(to));
  return Give(sizeFromWide, fromWide, out);
}

}  // namespace orvane::platform
