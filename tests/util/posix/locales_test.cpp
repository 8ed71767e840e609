#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <tuple>

#include "orvane.h"
#include "platform/code_page.h"

// For the leak sanitizer: glibc keeps the search path that newlocale makes of LOCPATH.
extern "C" const char* __lsan_default_suppressions() { return "leak:argz_add_sep"; }

namespace {

constexpr char kUntouched = '\x55';

using Convert = void (*)(const char*, char*);

// What is written, or the message of an exception, in a buffer that leaves just the room that is
// asked for. No text ends in the byte that stands for untouched room.
std::string Converted(Convert convert, const std::string& text) {
  const std::size_t room = (convert == ASCII2UTF_8 ? 3 : 4) * text.size();
  const auto area = std::make_unique<char[]>(room);
  std::fill_n(area.get(), room, kUntouched);
  std::string error;
  try {
    convert(text.c_str(), area.get());
  } catch (const std::runtime_error& thrown) {
    error = thrown.what();
  }
  const std::string whole = error + std::string(area.get(), room);
  return whole.substr(0, whole.find_last_not_of(kUntouched) + 1);
}

class Locales : public testing::Test {
 protected:
  static void SetUpTestSuite() { setenv("LOCPATH", ORVANE_LOCALES, 1); }
  static void TearDownTestSuite() {
    unsetenv("LOCPATH");
    unsetenv("LC_ALL");
  }
  static void Use(const char* locale) { setenv("LC_ALL", locale, 1); }
};

TEST_F(Locales, SetTheCharacterSetOfBothDirections) {
  std::string manyNarrow, manyUtf8;
  for (int i = 0; i < 100'000; ++i) manyNarrow += "x\xD6\xD0", manyUtf8 += "x\xE4\xB8\xAD";
  // The narrow text and the same in UTF-8: each becomes the other.
  const std::tuple<const char*, const char*, const char*> rows[] = {
      {"GBK", manyNarrow.c_str(), manyUtf8.c_str()},
      {"C", "caf\xC3\xA9 \xE4\xB8\xAD", "caf\xC3\xA9 \xE4\xB8\xAD"},
      {"POSIX", "\xF0\x9F\x98\x80", "\xF0\x9F\x98\x80"},
      {"C.UTF-8", "\xEF\xBB\xBFx\xF3\xA0\x81\x81", "\xEF\xBB\xBFx\xF3\xA0\x81\x81"},
      {"no-such-locale", "\xC3\xA9", "\xC3\xA9"},
      {"ISO-8859-1", "caf\xE9\xFF", "caf\xC3\xA9\xC3\xBF"},
      {"GBK", "\xD6\xD0\xCE\xC4 ok", "\xE4\xB8\xAD\xE6\x96\x87 ok"},
      {"GB18030", "\xD6\xD0\x81\x30\x84\x36\x94\x39\xDA\x33",
       "\xE4\xB8\xAD\xC2\xA5\xF0\x9F\x92\xA9"},
      // One code for two characters, which iconv holds back until it knows what follows.
      {"BIG5-HKSCS", "\x88\x62\x88\x66", "\xC3\x8A\xCC\x84\xC3\x8A"},
      {"CP1255", "\xE0", "\xD7\x90"}};
  for (const auto& [locale, narrow, utf8] : rows) {
    Use(locale);
    EXPECT_EQ(Converted(ASCII2UTF_8, narrow), utf8) << locale;
    EXPECT_EQ(Converted(UTF_82ASCII, utf8), narrow) << locale;
    EXPECT_EQ(Converted(UTF_82ASCII, ""), "");
  }
}

TEST_F(Locales, ReplaceWhatDoesNotMap) {
  const std::tuple<const char*, Convert, const char*, const char*> rows[] = {
      // Lone, cut, overlong, surrogate, too high: every byte by itself.
      {"C", ASCII2UTF_8, "a\x80z", "a\xEF\xBF\xBDz"},
      {"C", ASCII2UTF_8, "\xE4\xB8", "\xEF\xBF\xBD\xEF\xBF\xBD"},
      {"C", UTF_82ASCII, "\xC0\x80", "\xEF\xBF\xBD\xEF\xBF\xBD"},
      {"ISO-8859-1", UTF_82ASCII, "\xED\xA0\x80.", "???."},
      {"ISO-8859-1", UTF_82ASCII, "\xF4\x90\x80\x80.", "????."},
      {"ISO-8859-1", UTF_82ASCII, "\xE4\xB8\xAD\xC3\xA9", "?\xE9"},
      {"ISO-8859-1", UTF_82ASCII, "\xF0\x9F\x98\x80\xF0\x9F\x98\x80z", "??z"},
      {"GBK", ASCII2UTF_8, "\xD6\xD0\xD6", "\xE4\xB8\xAD\xEF\xBF\xBD"},
      {"GBK", UTF_82ASCII, "\xE4\xB8\xAD\xF0\x9F\x98\x80\xE4\xB8\xAD", "\xD6\xD0?\xD6\xD0"},
      // Language tags and variation selectors, which iconv leaves out or refuses.
      {"GBK", UTF_82ASCII, "a\xF3\xA0\x81\x81\xF3\xA0\x81\x81z\xF3\xA0\x84\x80", "a??z?"},
      {"GB18030", ASCII2UTF_8, "\x81\x30",
       "\xEF\xBF\xBD"
       "0"},
      // Behind a character that iconv holds back.
      {"CP1255", ASCII2UTF_8, "\xE0\xD9\x41", "\xD7\x90\xEF\xBF\xBD\x41"},
      {"CP1258", ASCII2UTF_8, "\x61\x8A\x62", "\x61\xEF\xBF\xBD\x62"},
      {"BIG5-HKSCS", ASCII2UTF_8, "\x88\x66\xFF", "\xC3\x8A\xEF\xBF\xBD"},
      {"BIG5-HKSCS", UTF_82ASCII, "\xC3\x8A\xF0\x9F\x98\x80", "\x88\x66?"},
      {"BIG5-HKSCS", UTF_82ASCII, "\xC3\x8A\xF3\xA0\x81\x81", "\x88\x66?"},
      // What one octet becomes may not fit: whole characters that do.
      {"TSCII", ASCII2UTF_8, "\x82", "\xE0\xAE\xB8"},
      {"TSCII", ASCII2UTF_8, "a\x82", "a\xE0\xAE\xB8"},
      {"ORVANE-UNKNOWN", ASCII2UTF_8, "a", "Error in conversion."},
      {"ORVANE-UNKNOWN", UTF_82ASCII, "a", "Error in conversion."},
      {"GB18030", UTF_82ASCII, "\xFF\xFF", "\x84\x31\xA4\x37\x84\x31\xA4\x37"}};
  for (const auto& [locale, convert, text, expected] : rows) {
    Use(locale);
    EXPECT_EQ(Converted(convert, text), expected) << locale << ' ' << text;
  }
}

TEST_F(Locales, TakeWideTextOfAnyContent) {
  using namespace std::string_literals;
  const std::pair<std::u16string, std::string> rows[] = {{u"", ""},
                                                         {u"\u4E2D\0x"s, "\xD6\xD0\0x"s},
                                                         {u"a\xD83D", "a?"},
                                                         {u"\xD83Dz\xDE00\xDE00", "?z??"},
                                                         {u"\xDB40", "?"}};
  Use("GBK");
  for (const auto& [wide, narrow] : rows) EXPECT_EQ(orvane::platform::AnsiText(wide), narrow);
  Use("BIG5-HKSCS");
  EXPECT_EQ(orvane::platform::AnsiText(u"\u00CA"), "\x88\x66");
}

TEST_F(Locales, AreTakenFromTheUsualVariablesAndLeaveTheProcessAlone) {
  const std::string before = std::setlocale(LC_ALL, nullptr);
  unsetenv("LC_ALL");
  setenv("LC_CTYPE", "GBK", 1);
  EXPECT_EQ(Converted(ASCII2UTF_8, "\xD6\xD0"), "\xE4\xB8\xAD");
  Use("ISO-8859-1");
  EXPECT_EQ(Converted(ASCII2UTF_8, "\xD6\xD0"), "\xC3\x96\xC3\x90");
  unsetenv("LC_CTYPE");
  EXPECT_EQ(std::setlocale(LC_ALL, nullptr), before);
}

}  // namespace
