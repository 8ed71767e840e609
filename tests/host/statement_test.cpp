#include "host/statement.h"

#include <gtest/gtest.h>

#include "host/failure.h"

namespace host {
namespace {

TEST(Statement, IsRefusedWhereTheLibraryWouldPassOverSomething) {
  const std::pair<std::string_view, std::string_view> rows[] = {
      {"( 00", "begin"},
      {"# one, two", "a comment begins with ;"},
      {"%A = 12 ; one, two",
       "a comment needs a line of its own\n  %A = 12 ; one, two\n          ^"},
      {"00A4 %A # text", "line of its own"},
      {"@OPENREADER(\"Name (1)\")", "there are no quotes"},
      {"00A4,0400", "\",\" has no meaning"},
      {"00A4 (0400)", "\"(\" has no meaning"},
      {"%A B = 1", "\"=\" has no meaning"},
      {"%A =", "nothing stands behind"},
      {"00A4 @nosuch(1)", "unknown command @nosuch"},
      {"@strlen", "@strlen has no \"(\""},
      {"00A4 @strlen %A", "@strlen has no \"(\""},
      {"@strlen(AB", "not closed"},
      {"@strlen(AB,CD)", "takes 1 argument"},
      {"@strmid(AB,1)", "takes 3 arguments"},
      {"@strmid(AB,,1)", "takes 3 arguments"},
      {"@reset(1)", "takes no arguments"},
      {"@compare(%SW,9000,1) @compare(%RESP,00,1)",
       "only a comment can stand behind @compare(...)"},
      {"@RESET() 00A4040000 ; text", "only a comment can stand behind @RESET(...)"},
      {"@stop()%A", "only a comment"},
      {"00A4 @reset()", "must stand alone"},
      {"%A = @compare(1,1,1)", "must stand alone"},
      {{"00A4\0000400", 9}, "zero byte"},
  };
  for (const auto& [line, message] : rows) {
    try {
      ReadStatement(line);
      ADD_FAILURE() << line << " was taken";
    } catch (const Failure& failure) {
      EXPECT_NE(std::string_view(failure.what()).find(message), std::string_view::npos)
          << line << ": " << failure.what();
    }
  }
  // Forms that a careful reader might refuse.
  for (const char* line :
       {"  // (text", "; @nosuch", "$ any (text", "@reset()/text", "%A ; %B", "A B C=D", "A B = 1",
        "%A = @StrMid( %B 00 , 1 2,2)", "@compare(%A,B,1) ; what (stands here, is not read"}) {
    EXPECT_NO_THROW(ReadStatement(line)) << line;
  }
  const auto nested = [](size_t depth) {
    std::string text;
    for (size_t level = 0; level < depth; ++level) text += "@strlen(";
    return text + "AB" + std::string(depth, ')');
  };
  EXPECT_EQ(ReadStatement(nested(128)).invocations.size(), 128u);
  EXPECT_THROW(ReadStatement(nested(129)), Failure);
}

}  // namespace
}  // namespace host
