#include <gtest/gtest.h>

#include <new>
#include <string>

#include "engine/script_host.h"
#include "memory/failing_allocations.h"
#include "support/module_loading.h"
#include "tags/dictionary.h"

namespace orvane_test {
namespace {

const std::string kLong = "303132333435363738394041424344454647484950515253";
const std::string kKey = "0123456789ABCDEFFEDCBA9876543210";
const std::string kModulus = "E1F3A8D24C5B6E7F90123456789ABCDEF0123456789ABCDEF0123456789ABCDF";

// First in the file: only the first call of a process makes the engine.
TEST(Memory, MissingMakesNoEngine) {
  const auto set = [] { return SetVarValue("%A", "1"); };
  int allocations = 0;
  int code = 0;
  while ((code = RunWith(allocations, set)) == ScriptNoEngine) ++allocations;
  EXPECT_GT(allocations, 0);
  EXPECT_EQ(set(), 0);
  EXPECT_EQ(RunOne("%A"), (Outcome{1, "1"}));
}

TEST(Memory, MissingLeavesVariables) {
  const std::string name = "%" + kLong;
  const std::string longer = kLong + kLong, longest = longer + longer;
  const auto set = [&](const std::string& value) {
    return SetVarValue(name.c_str(), value.c_str());
  };
  const auto get = [&] { return GetVarValue(name.c_str()); };
  ExpectFailures([&] { return set(kLong) == ScriptDone; },
                 [&] { EXPECT_EQ(get(), ScriptUndefinedVariable); });
  ExpectFailures([&] { return set(longer) == ScriptDone; },
                 [&] { EXPECT_EQ(Value(name).text, kLong); });
  EXPECT_EQ(RunWith(0, [&] { return set(longest); }), ScriptException);
  EXPECT_EQ(RunWith(0, get), ScriptException);
  EXPECT_EQ(Value(name).text, longer);
}

TEST(Memory, MissingForTheStatementItselfIsAnException) {
  char text[512];
  RunOne("");
  // The text takes memory, and so do its tokens.
  for (const std::string& statement :
       {std::string("1").append(3000, ' '), std::string("1").append(3000, ')')}) {
    EXPECT_EQ(RunWith(0, [&] { return RunScript(statement.c_str(), text); }), ScriptException);
    EXPECT_STREQ(text, "");
    EXPECT_EQ(RunOne(statement).code, KindExpression);
  }
}

// A statement in which L, K and M stand for the long value, the key and the modulus.
std::string Written(const char* pattern) {
  std::string statement;
  for (; *pattern != '\0'; ++pattern) {
    statement += *pattern == 'L'   ? kLong
                 : *pattern == 'K' ? kKey
                 : *pattern == 'M' ? kModulus
                                   : std::string(1, *pattern);
  }
  return statement;
}

TEST(Memory, MissingInACommandIsAFailureOfTheStatement) {
  ASSERT_EQ(RunOne("@strlen(@hash(" + kLong + "))").text, "40") << "there is no crypto module";
  SetVarValue("%KEPT", kLong.c_str());
  // clang-format off
  for (const char* pattern :
       {"@strmid(L,1,20)", "@strmidh(L,1,20)", "@strlen(L)", "@strlenh(L)", "@xor(L,K)",
        "@asc2hex(L)", "@hex2asc(L)", "@compare(L,L,1)", "@setreader(L)", "@setslot(L)",
        "@openreader(L)", "@reset()", "@stop()", "@des(K,L,1)", "@descbc(K,L,K,1)",
        "@mac(K,L,K,1)", "@subkey(K,K)", "@hash(L)", "@rsapubenc(M,010001,L)",
        "@strlen(@xor(@asc2hex(L),K))", "L K"}) {
    // clang-format on
    for (const std::string target : {"", "%OUT = "}) {
      const std::string statement = target + Written(pattern);
      SCOPED_TRACE(statement);
      const Outcome right = RunOne(statement);
      ASSERT_TRUE(right.code <= 8);
      char text[512];
      const auto runStatement = [&] { return RunScript(statement.c_str(), text); };
      const int needed = AllocationsOf(runStatement);
      for (int run = 0; run < 2 * needed; ++run) {
        SetVarValue("%OUT", kKey.c_str());
        const int code = RunWith(run / 2, runStatement, run % 2 == 1);
        const Outcome outcome{code, text};
        // The right outcome, an exception, or what a failed call leaves of its arguments.
        EXPECT_TRUE(outcome.code == right.code || outcome.code == ScriptException ||
                    outcome == (Outcome{KindExpression, ""}))
            << outcome;
        const bool stored = outcome.code == 0 && !target.empty();
        EXPECT_EQ(Value("%OUT").text, stored ? outcome.text : kKey);
        EXPECT_EQ(Value("%KEPT").text, kLong);
        EXPECT_EQ(RunOne(statement), right);
      }
    }
  }
}

// The vendor module here allocates nothing, so that every allocation that counts is the library's.
TEST(Memory, IsAskedForByOpeningAndNotByExchanges) {
  support::LoadModule(u8"" QUIET_WINSCARD);
  const auto open = [] { return OpenReaderA("Quiet", ReaderKindPcsc); };
  char response[8193] = "untouched";
  ExpectFailures(open, [&] {
    EXPECT_EQ(RunWith(0, [&] { return Reset(response); }), 0);
    EXPECT_STREQ(response, "untouched");
    EXPECT_EQ(RunWith(0, CloseReader), 0);
    EXPECT_EQ(RunWith(0, [] { return GetReaderList(1, nullptr, 0, 1); }), 0);
  });
  for (int i = 0; i < 3; ++i) {
    int sent = 0;
    EXPECT_EQ(AllocationsOf([&] { sent = SendCommand("00A4040000", 10, response); }), 0);
    EXPECT_EQ(sent, 1);
    EXPECT_STREQ(response, "9000");
  }
}

std::string ValueOf(TagParser* parser, const char* tag) {
  TagRecord record;
  TagParsing_GetTag(parser, tag, reinterpret_cast<char*>(&record));
  return {record.value, 3};
}

TEST(Memory, MissingMakesAParseFailWithNothingAdded) {
  EXPECT_EQ(RunWith(0, [] { return TagParsing_Init(); }), nullptr);
  TagParser* const parser = TagParsing_Init();
  ASSERT_EQ(TagParsing_Parse(parser, "5A0112"), 1);
  std::string text;
  for (int i = 0; i < 5000; ++i) text += "5A0134";
  text += "5A0156";
  const auto parse = [&] { return TagParsing_Parse(parser, text.c_str()); };
  EXPECT_EQ(RunWith(0, parse), 0);
  EXPECT_EQ(ValueOf(parser, "5A"), std::string("12\0", 3));
  // Where there is memory for the text, giving back what it leaves behind may fail.
  for (const int allocations : {1, 2}) {
    EXPECT_EQ(RunWith(allocations, parse), 1);
    EXPECT_EQ(ValueOf(parser, "5A"), std::string("56\0", 3));
  }
  TagParsing_Free(parser);
}

TEST(Memory, MissingMakesTheDictionaryFailWithNothingChanged) {
  const WorkingFolder folder;
  const List start = {{"5A", "1", ""}, {"57", "2", ""}, {"58", "3", ""}, {"59", "4", ""}};
  WriteFile(kDictionaryFile, FileImage(start));
  TagdictData area[8];
  int32_t count = -1;
  const auto load = [&] { return GetTagdict(area, &count); };
  ExpectFailures(load, [&] {
    EXPECT_EQ(count, -1);
    EXPECT_EQ(RunWith(0, FlushTagdict), 1);
    EXPECT_EQ(ReadFile(kDictionaryFile), FileImage(start));
  });
  List records = start;
  const auto unchanged = [&] { EXPECT_EQ(ListOf(GetTagdict), records); };
  unchanged();

  TagdictData record = MakeRecord({"5A", "5", ""});
  ExpectFailures([&] { return UpTagdictData(&record); }, unchanged);
  EXPECT_EQ(RunWith(0, [] { return DeleteTagdictData("57"); }), 1);
  EXPECT_EQ(RunWith(0, [&] { return FindTagdictData("58", area); }), 1);
  records = {start[2], start[3], TextsOf(record)};
  record = MakeRecord({"60", "6", ""});
  ExpectFailures([&] { return AddTagdictData(&record); }, unchanged);
  records.push_back(TextsOf(record));

  const auto flush = [&] {
    EXPECT_EQ(FlushTagdict(), 1);
    return RunWith(kAnyNumber, [&] { return ReadFile(kDictionaryFile) == FileImage(records); });
  };
  ExpectFailures(flush, [&] { EXPECT_EQ(ReadFile(kDictionaryFile), FileImage(start)); });
  EXPECT_EQ(FilesIn("."), 1);
}

TEST(Memory, MissingLeavesTheConvertedTextUntouched) {
  const std::string text(3000, 'a');
  const std::string untouched(text.size(), '\x55');
  for (const auto convert : {ASCII2UTF_8, UTF_82ASCII}) {
    std::string out = untouched;
    const auto converts = [&] {
      try {
        convert(text.c_str(), out.data());
        return 1;
      } catch (const std::bad_alloc&) {
        return 0;
      }
    };
    ExpectFailures(converts, [&] { ASSERT_EQ(out, untouched); });
    EXPECT_EQ(out, text);
  }
}

TEST(Memory, IsNotAskedForByTimesAndLogs) {
  const WorkingFolder folder;
  const std::string octets(10'000, 'o');
  char text[36];
  RunWith(0, [&] {
    GetTimeStr(text);
    GetTimeStrFromTimeStampStr(text, "1735660799042", 1);
    AsciiLog("log", text);
    HexLog("log", reinterpret_cast<const unsigned char*>(octets.data()), 10'000);
  });
  EXPECT_STREQ(text, "2024-12-31 23:59:59:042");
  EXPECT_EQ(std::filesystem::file_size("log"), 23U + 20'000U);
}

}  // namespace
}  // namespace orvane_test
