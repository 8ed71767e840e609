// The ANSI and the OEM code page of the system, which each run of this binary finds others of.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>
#include <string>

#include "orvane.h"
#include "support/windows/replaced_import.h"

namespace {

struct Pages {
  const char* names;  // ANSI/OEM
  const char* ansi;
  const char* ansiAsUtf8;
  const char* oem;      // of kText
  const char* oemBack;  // of ansiAsUtf8
  const char* machine;  // the name of an encryption machine at port 1
};

// Eight characters: two with the same code in most pages, two that some pages lack, two Chinese
// ones, and one beyond 16 bits. The last octet is none.
constexpr char kText[] = "a\u00E9\u00C0\u20AC\u4E2D\u6587\U0001F600z\xFF";

const Pages kPages[] = {
    {"1252/437", "caf\xE9 \x80", "caf\xC3\xA9 \xE2\x82\xAC", "a\x82\x41?????z?", "caf\x82 ?",
     "???1"},
    {"1252/850", "caf\xE9 \x80", "caf\xC3\xA9 \xE2\x82\xAC", "a\x82\xB7?????z?", "caf\x82 ?",
     "???1"},
    {"936/936", "\xD6\xD0\xCE\xC4 \x80", "\xE4\xB8\xAD\xE6\x96\x87 \xE2\x82\xAC",
     "a\xA8\xA6\xA8\xA4\x80\xD6\xD0\xCE\xC4??z?", "\xD6\xD0\xCE\xC4 \x80",
     "\xBC\xD3\xC3\xDC\xBB\xFA\x31"},
    {"65001/65001", "\u4E2D \u20AC", "\u4E2D \u20AC",
     "a\u00E9\u00C0\u20AC\u4E2D\u6587\U0001F600z\uFFFD", "\u4E2D \u20AC", "\u52A0\u5BC6\u673A1"},
};

std::string Converted(void convert(const char*, char*), const std::string& text) {
  std::string out(4 * text.size() + 1, '\0');
  convert(text.c_str(), out.data());
  return out.c_str();
}

class CodePages : public testing::Test {
 protected:
  void SetUp() override {
    const std::string system = std::to_string(GetACP()) + '/' + std::to_string(GetOEMCP());
    const char* const expected = std::getenv("ORVANE_CODE_PAGES");
    ASSERT_EQ(system, expected != nullptr ? expected : system);
    for (const Pages& each : kPages) {
      if (system == each.names) pages_ = &each;
    }
    if (pages_ == nullptr) GTEST_SKIP() << "no texts for the code pages " << system;
  }

  const Pages* pages_ = nullptr;
};

TEST_F(CodePages, AreTwo) {
  EXPECT_EQ(Converted(ASCII2UTF_8, pages_->ansi), pages_->ansiAsUtf8);
  EXPECT_EQ(Converted(UTF_82ASCII, kText), pages_->oem);
  EXPECT_EQ(Converted(UTF_82ASCII, pages_->ansiAsUtf8), pages_->oemBack);
}

TEST_F(CodePages, HoldTheNamesOfEncryptionMachines) {
  ReaderInfo list[16];
  ASSERT_EQ(GetReaderList(ReaderKindTcp, list, 1, 0), 1);
  EXPECT_STREQ(list[0].name, pages_->machine);
  EXPECT_EQ(GetReaderList(ReaderKindTcp, list, 20, 0), 16);
}

// Wine lets a call pass that Windows refuses.
int WINAPI ToAnsiUtf8(UINT page, DWORD flags, const wchar_t* wide, int units, char* out, int room,
                      const char* missing, BOOL*) {
  EXPECT_EQ(page, CP_ACP);
  if (missing != nullptr) return 0;
  return WideCharToMultiByte(CP_UTF8, flags, wide, units, out, room, nullptr, nullptr);
}

TEST(CodePage, OfAnsiMayBeUtf8) {
  const support::ReplacedImport page(
      "orvane.dll", "GetACP", +[]() -> UINT { return CP_UTF8; });
  const support::ReplacedImport call("orvane.dll", "WideCharToMultiByte", ToAnsiUtf8);
  ReaderInfo list[16];
  ASSERT_EQ(GetReaderList(ReaderKindTcp, list, 1, 0), 1);
  EXPECT_STREQ(list[0].name, "\xE5\x8A\xA0\xE5\xAF\x86\xE6\x9C\xBA\x31");
}

}  // namespace
