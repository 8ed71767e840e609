#include "util/character_sets.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>

#include "orvane.h"

namespace {

using orvane::AnsiToUtf8;
using orvane::CodePageCalls;
using orvane::Utf8ToOem;
using orvane::platform::CodePage;
using orvane::platform::Conversion;

TEST(CharacterSets, LeaveAsciiAsItIs) {
  std::string ascii;
  for (char c = 1; c < 127; ++c) ascii += c;
  for (const auto convert : {ASCII2UTF_8, UTF_82ASCII}) {
    std::string out(ascii.size() + 1, '\x7F');
    convert(ascii.c_str(), out.data());
    EXPECT_EQ(out, ascii + '\x7F');
    convert(out.c_str(), out.data());  // in one area
    convert("", out.data());
    EXPECT_EQ(out, ascii + '\x7F');
  }
}

// A platform whose text is "ab" in every code page, and which fails where it is told to.
struct Failing {
  static inline Conversion sizeToWide, toWide, sizeFromWide, fromWide;
  static inline std::string legs;  // the code pages that were asked for

  static void Reset() { sizeToWide = toWide = sizeFromWide = fromWide = {3}; }

  template <typename Unit>
  static Conversion Give(Conversion size, Conversion converted, std::span<Unit> out) {
    if (out.empty()) return size;
    const char text[] = "ab";
    std::copy_n(text, std::min(out.size(), sizeof text), out.begin());
    return converted;
  }
  static Conversion ToWide(CodePage from, const char*, std::span<char16_t> out) {
    legs += std::to_string(static_cast<unsigned>(from)) + '>';
    return Give(sizeToWide, toWide, out);
  }
  static Conversion FromWide(CodePage to, const char16_t*, std::span<char> out) {
    legs += '>' + std::to_string(static_cast<unsigned>(to));
    return Give(sizeFromWide, fromWide, out);
  }
};

TEST(CharacterSets, NameTheFailedStep) {
  const std::string noTranslation = "Invalid UTF-8 sequence.", error = "Error in conversion.",
                    counts = "La falla!", none;
  const Conversion untranslated{0, true}, failed{0, false}, fewer{2, false}, more{4, false};
  const struct {
    Conversion& step;
    Conversion outcome;
    const std::string& ansiToUtf8;
    const std::string& utf8ToOem;
  } rows[] = {{Failing::sizeToWide, {3}, none, none},
              {Failing::sizeToWide, untranslated, noTranslation, noTranslation},
              {Failing::sizeToWide, failed, error, error},
              {Failing::sizeToWide, more, counts, counts},
              {Failing::toWide, failed, counts, counts},
              {Failing::toWide, untranslated, counts, counts},
              {Failing::toWide, fewer, counts, counts},
              {Failing::sizeFromWide, untranslated, error, noTranslation},
              {Failing::sizeFromWide, failed, error, error},
              {Failing::sizeFromWide, fewer, counts, counts},
              {Failing::fromWide, failed, counts, counts}};
  Failing::Reset();
  const auto outcome = [](auto convert) -> std::string {
    try {
      EXPECT_EQ(convert({Failing::ToWide, Failing::FromWide}, ""), "ab");
      return "";
    } catch (const std::runtime_error& thrown) {
      return thrown.what();
    }
  };
  outcome(AnsiToUtf8), outcome(Utf8ToOem);
  EXPECT_EQ(Failing::legs, "0>0>>65001>6500165001>65001>>1>1");
  for (const auto& row : rows) {
    SCOPED_TRACE(&row - rows);
    Failing::Reset();
    row.step = row.outcome;
    EXPECT_EQ(outcome(AnsiToUtf8), row.ansiToUtf8);
    EXPECT_EQ(outcome(Utf8ToOem), row.utf8ToOem);
  }
}

}  // namespace
