#include <gtest/gtest.h>

#include <filesystem>

#include "host/run_program.h"

namespace host_test {
namespace {

constexpr const char* kTable = "N,ID\n1,A1\n2,A2\n3,A3\n";
constexpr const char* kScript =
    "@reset()\n%CARD_ID = %ID\n00A40000\n; expect 9000\n@compare(%N,%N,1)\n";

class Batch : public testing::Test {
 protected:
  Outcome Run(const std::string& options = "") {
    return RunOrvane("batch --simulate script --table table --journal journal " + options);
  }

  Outcome Run(const std::string& script, const std::string& table, const std::string& options) {
    WriteFile("script", script);
    WriteFile("table", table);
    return Run(options);
  }

  // Has the journal end behind the first line with such a text.
  static void CutBehind(const std::string& text) {
    const std::string journal = ReadText("journal");
    WriteFile("journal", journal.substr(0, journal.find('\n', journal.find(text)) + 1));
  }

  static std::string StateOf(const std::string& status, const std::string& row) {
    for (const char* state : {"begun", "failed", "abandoned"}) {
      if (Shows(status, std::string(state) + "  row " + row)) return state;
    }
    return "";
  }

  WorkingFolder folder;
};

TEST_F(Batch, RefusesATableBeforeTheFirstCard) {
  const struct {
    const char *script, *table, *options, *err;
  } rows[] = {
      {"%X = %N\n00A40000 %X", "N\n11\n1\"1\n", "", "table:3: a quote stands inside"},
      {"00A40000", "N\n\"11\n", "", "table:2: a quote does not end"},
      {"00A40000", "N;M\n\"1\"1;2\n", "", "table:2: something stands behind"},
      {"00A40000", "N\tM\n1\t2\n\n3\n4\t5\n", "", "table:3: the row has 1 value for 2 columns"},
      {"00A40000", "N\n\xFF\n", "", "table:2: a value is no UTF-8"},
      {"00A40000", "N,n\n1,2\n", "", "table:1: the column n is there twice"},
      {"00A40000", "N,Sw\n1,2\n", "", "table:1: the column Sw has the name of a variable"},
      {"00A40000", "N,A B\n1,2\n", "", "table:1: the column \"A B\" can't name"},
      {"00A40000", "N\n", "", "table:1: the table has no row"},
      {"00A40000", "N,M\n1,2\n2,2\n1,3\n", "", "table:4: it has the same N as line 2"},
      {"00A40000", "N,M\n1,2\n2,2\n1,3\n", "--key m", "table:3: it has the same M as line 2"},
      {"%X = %N\n00A40000", "M,N\n1,1\n2,\n", "", "table:3: N is missing"},
      {"00A40000 %N", "N\n0100\n01G0\n", "", "table:3: script:1: "},
      {"00A40000 %U", "N\n1\n", "", "table:2: script:1: undefined variable %U"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.table);
    const Outcome outcome = Run(row.script, row.table, row.options);
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_EQ(outcome.err.substr(0, std::string(row.err).size()), row.err);
    EXPECT_FALSE(std::filesystem::exists("journal"));
  }
}

TEST_F(Batch, GivesEachRowItsValues) {
  const char* const script = "@reset()\n00A40000\n@compare(@ASC2HEX(%A),%B,1)\n%CARD_ID = %B\n";
  const Outcome outcome = Run(script,
                              "\xEF\xBB\xBF"
                              "A;B\r\n\"a\"\"b;\";6122623B\r\n\"c\nd\";630A64\r\n\xC3\xA4;C3A4",
                              "");
  EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
  EXPECT_EQ(outcome.out, "3 rows: 3 done\n");
  ExpectInOrder(
      ReadText("journal"),
      "{\"row\":1,\"state\":\"waiting\",\"script\":\"|\"rows\":3,|{\"row\":3,\"state\":\"waiting\"|"
      "{\"row\":1,\"state\":\"begun\"|\"atr\":\"3B6A|\"card\":\"6122623B\"|"
      "{\"row\":1,\"state\":\"done\"|{\"row\":3,\"state\":\"done\"");
}

TEST_F(Batch, GoesOnWhereItEnded) {
  const struct {
    const char *end, *options;  // of the journal; of the second run
    int exitCode;
    const char *row, *state;  // afterwards
    const char* err;
  } rows[] = {
      {"\"row\":1,\"state\":\"done\"", "", 0, "1", "", ""},
      {"\"row\":2,\"state\":\"begun\"", "", 2, "2", "begun", "orvane: rows were begun and not"},
      {"\"card\":\"A2\"", "", 2, "2", "begun", "orvane: rows were begun and not"},
      {"\"card\":\"A2\"", "--retry-begun", 0, "2", "", ""},
      {"\"card\":\"A2\"", "--skip-begun", 0, "2", "abandoned", ""},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.end) + row.options);
    std::filesystem::remove("journal");
    ASSERT_EQ(Run(kScript, kTable, "").exitCode, 0);
    CutBehind(row.end);
    WriteFile("journal", ReadText("journal") + "{\"row\":3,\"sta");  // torn
    const Outcome outcome = Run(row.options);
    EXPECT_EQ(outcome.exitCode, row.exitCode) << outcome.err;
    EXPECT_EQ(outcome.err.substr(0, std::string(row.err).size()), row.err);
    const std::string status = RunOrvane("batch --journal journal --status").out;
    EXPECT_EQ(StateOf(status, row.row), row.state) << status;
    EXPECT_EQ(Run(row.options).exitCode, row.exitCode);
  }
}

TEST_F(Batch, RefusesAJournalThatIsNotItsOwn) {
  ASSERT_EQ(Run(kScript, kTable, "").exitCode, 0);
  const std::string journal = ReadText("journal");
  std::string damaged = journal;
  damaged[journal.find("\"row\":2") + 6] = '3';
  const struct {
    const char *script, *table;
    std::string journal;
    int exitCode;
    const char* err;
  } rows[] = {
      {"@reset()\n", kTable, journal, 3, "orvane: journal is the journal of another script"},
      {kScript, "N,ID\n1,A1\n", journal, 3, "orvane: journal is the journal of another table"},
      {kScript, kTable, damaged, 5, "orvane: journal:2: the journal is damaged"},
      {kScript, kTable, "a letter", 5, "orvane: journal: this is no journal"},
      {kScript, kTable, kTable, 5, "orvane: journal:1: the journal is damaged"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.err);
    WriteFile("journal", row.journal);
    const Outcome outcome = Run(row.script, row.table, "");
    EXPECT_EQ(outcome.exitCode, row.exitCode);
    EXPECT_EQ(outcome.err.substr(0, std::string(row.err).size()), row.err);
    EXPECT_EQ(ReadText("journal"), row.journal);
  }
}

TEST_F(Batch, KeepsFailuresAndWhyTheyFailed) {
  const Outcome outcome =
      Run("@reset()\n00200080 08 24 %PIN\n@compare(%N,2,0)\n",
          "N,PIN\n1,1234FFFFFFFFFF\n2,1111FFFFFFFFFF\n", "--html page --log-dir logs");
  EXPECT_EQ(outcome.exitCode, 1);
  ExpectInOrder(outcome.err, "orvane: row 2 failed: script:3: not as expected|");
  EXPECT_EQ(outcome.out, "2 rows: 1 done, 1 failed\n");
  const Outcome status = RunOrvane("batch --journal journal --status");
  ExpectInOrder(status.out,
                "2 rows: 1 done, 1 failed\n|failed  row 2  begun 20|script:3: not as|\n  left ");
  ExpectInOrder(ReadText("page"), "1 of 2 rows failed|script:3: not as expected");
  ExpectInOrder(ReadText("logs/row-2.log"), "00 20 00 80  08  ** (8 bytes)   VERIFY|");
  for (const char* file : {"journal", "page", "logs/row-1.log", "logs/row-2.log"}) {
    EXPECT_FALSE(Shows(ReadText(file), "1234FF") || Shows(ReadText(file), "1111FF")) << file;
  }
  EXPECT_EQ(Run("--html ./table").exitCode, 2);
  EXPECT_EQ(Run().exitCode, 1);
  const size_t before = ReadText("journal").size();
  EXPECT_EQ(Run("--retry-failed").exitCode, 1);
  EXPECT_TRUE(Shows(ReadText("journal").substr(before), "\"state\":\"begun\""));
}

TEST_F(Batch, EndsWithTheFirstRowThatFails) {
  const std::string stops =
      "stops: a row has failed; rows that are begun come to their end, the others stay waiting\n";
  const char* const script = "@reset()\n00A40000\n@compare(%N,2,0)\n@compare(%N,3,0)\n";
  const Outcome first = Run(script, "N\n1\n2\n3\n4\n", "--fail-fast");
  EXPECT_EQ(first.exitCode, 1);
  EXPECT_EQ(first.out, "4 rows: 1 done, 1 failed, 2 waiting\n");
  ExpectInOrder(first.err, "row 2 failed|orvane: " + stops);
  EXPECT_EQ(Run("--fail-fast").out, "4 rows: 1 done, 2 failed, 1 waiting\n");
  const Outcome last = Run("--fail-fast");  // no row fails now
  EXPECT_EQ(last.out + last.err, "4 rows: 2 done, 2 failed\n");
  EXPECT_EQ(last.exitCode, 1);
  EXPECT_EQ(Run("--fail-fast --retry-failed").out, "4 rows: 2 done, 1 failed, 1 waiting\n");

  // With several readers the rows that are begun end; trouble that leaves no row begun is not why
  // rows are left. With the last row that waits, nothing is left to stop.
  std::filesystem::remove("journal");
  std::string table = "N\n";
  for (int row = 1; row <= 200; ++row) table += std::to_string(row) + '\n';
  const Outcome several = Run(script, table, "--fail-fast -r 3:1 -r 5:COM1 -r 1:nowhere");
  EXPECT_EQ(several.exitCode, 1) << several.err;
  EXPECT_TRUE(Shows(several.err, stops)) << several.err;
  EXPECT_FALSE(Shows(several.out, "begun")) << several.out;
  EXPECT_TRUE(Shows(several.out, "waiting")) << several.out;
  std::filesystem::remove("journal");
  const Outcome only = Run(script, "N\n2\n", "--fail-fast");
  EXPECT_EQ(only.exitCode, 1);
  EXPECT_FALSE(Shows(only.err, stops)) << only.err;
}

TEST_F(Batch, RefusesACardThatBelongsToAnotherRow) {
  // Without waiting for cards, and of simulated ones, there is no other card to come.
  for (const char* options : {"", "--no-wait"}) {
    std::filesystem::remove("journal");
    const Outcome outcome =
        Run("@reset()\n%CARD_ID = %ID\n00A40000\n@compare(%N,1,0)\n", "N,ID\n1,A\n2,A\n", options);
    EXPECT_EQ(outcome.exitCode, 4);
    ExpectInOrder(outcome.err,
                  "row 1 failed|row 2 waiting: the card A belongs to row 1, which is failed|");
    EXPECT_EQ(outcome.out, "2 rows: 1 failed, 1 waiting\n");
  }
  const struct {
    const char *script, *reason;
  } rows[] = {{"%CARD_ID = %RESP\n", "%CARD_ID is empty"},
              {"%CARD_ID = %PIN\n", "%CARD_ID is made from a secret"}};
  for (const auto& row : rows) {
    std::filesystem::remove("journal");
    const Outcome named = Run(std::string("@reset()\n0020008000\n") + row.script, "PIN\n11\n", "");
    EXPECT_EQ(named.exitCode, 1);
    EXPECT_TRUE(Shows(named.err, row.reason)) << named.err;
  }
}

TEST_F(Batch, WorksWithSeveralReaders) {
  std::string table = "N\n";
  for (int row = 1; row <= 200; ++row) table += std::to_string(row) + '\n';
  const Outcome outcome = Run("@reset()\n00B08200 0A\n%CARD_ID = %RESP\n@compare(%N,77,0)\n", table,
                              "-r 3:1 -r 5:COM1 -r 12:BSIT:1 -r 1:nowhere");
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.out, "200 rows: 199 done, 1 failed\n");
  ExpectInOrder(outcome.err, "1:nowhere: can't open the reader nowhere");
  for (const char* reader : {"3:1", "5:COM1", "12:BSIT:1"}) {
    EXPECT_TRUE(Shows(ReadText("journal"), std::string("\"reader\":\"") + reader + '"')) << reader;
  }
}

TEST_F(Batch, RefusesTwoAddressesOfOneReader) {
  WriteFile("script", kScript);
  WriteFile("table", kTable);
  const struct {
    const char *options, *named;
  } rows[] = {
      {"-r 5:COM1 -r 3:7 -r 5:1", "5:COM1, 5:1"},
      {"-k d8 -r COM1 -r 5:01", "COM1, 5:01"},
      {"-r '5:COM100(D8USB)' -r 5:101", "5:COM100(D8USB), 5:101"},
      {"-r '5: COM1 ' -r 5:1", "5: COM1 , 5:1"},
      {"-r 7:COM2 -r 8:2", "7:COM2, 8:2"},
      {"-r 4:WDUSB1 -r 4:XXUSB1", "4:WDUSB1, 4:XXUSB1"},
      {"-r 3:nowhere -r nowhere", "3:nowhere, nowhere"},
      {"-r 99:1 -r 99:1", "99:1, 99:1"},
      {"--simulate -r 10:127.0.0.1:1 -r 10:127.0.0.1:1", "10:127.0.0.1:1, 10:127.0.0.1:1"},
  };
  for (const auto& row : rows) {
    const Outcome outcome =
        RunOrvane(std::string("batch script --table table --journal journal ") + row.options);
    EXPECT_EQ(outcome.exitCode, 2) << row.named;
    EXPECT_EQ(outcome.err, std::string("orvane: a reader is named twice: ") + row.named + '\n');
    EXPECT_FALSE(std::filesystem::exists("journal"));
  }
  // No reader opens, but none is another one. Simulated readers are one a process.
  for (const char* options :
       {"-r 5:1 -r 5:0 -r 2:1 -r 7:0 -r 7:1 -r 3:0 -r 3:nowhere", "--simulate -r 3:1 -r 3:1"}) {
    const Outcome outcome =
        RunOrvane(std::string("batch script --table table --journal journal ") + options);
    EXPECT_FALSE(Shows(outcome.err, "named twice")) << outcome.err;
    EXPECT_EQ(outcome.exitCode, options[1] == 'r' ? 4 : 0) << outcome.err;
  }
}

TEST_F(Batch, TellsWhatACardDidNotCome) {
  const Outcome outcome = Run(kScript, kTable, "-r 12:BSIT:2 --timeout 1");
  EXPECT_EQ(outcome.exitCode, 4);
  EXPECT_TRUE(Shows(outcome.err, "12:BSIT:2: no card came within 1 s: ")) << outcome.err;
  EXPECT_EQ(outcome.out, "3 rows: 3 waiting\n");
}

}  // namespace
}  // namespace host_test
