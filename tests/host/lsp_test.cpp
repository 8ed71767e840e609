#include <gtest/gtest.h>

#include "host/run_program.h"

namespace host_test {
namespace {

std::string Framed(const std::string& body) {
  return "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

std::string Request(const std::string& method, const std::string& params, int id = 7) {
  return Framed(R"({"jsonrpc":"2.0","id":)" + std::to_string(id) + R"(,"method":")" + method +
                R"(","params":)" + params + "}");
}

std::string Notice(const std::string& method, const std::string& params = "{}") {
  return Framed(R"({"jsonrpc":"2.0","method":")" + method + R"(","params":)" + params + "}");
}

const std::string kBegin = Request("initialize", "{}", 1) + Notice("initialized");
const std::string kEnd = Request("shutdown", "null", 9) + Notice("exit");

std::string Opened(const std::string& text) {
  return Notice("textDocument/didOpen", R"({"textDocument":{"uri":"u","text":")" + text + "\"}}");
}

// A request about the open document.
std::string At(const std::string& what, size_t line, size_t character) {
  return Request("textDocument/" + what, R"({"textDocument":{"uri":"u"},"position":{"line":)" +
                                             std::to_string(line) + R"(,"character":)" +
                                             std::to_string(character) + "}}");
}

struct Row {
  std::string input;
  std::string shown;  // what standard output shows, in this order, with | between
  int exitCode = 0;
  std::string options = "";
};

void ExpectRows(const std::vector<Row>& rows) {
  const WorkingFolder folder;
  for (const Row& row : rows) {
    SCOPED_TRACE(row.input);
    const Outcome outcome = RunOrvane("lsp " + row.options, row.input);
    EXPECT_EQ(outcome.exitCode, row.exitCode);
    EXPECT_EQ(outcome.err, "");
    ExpectInOrder(outcome.out, row.shown);
  }
}

TEST(Lsp, AnswersWhatAnEditorAsks) {
  const std::string script = "$ First\\n%K = 00\\r\\n00A40000 01 %k\\n$ Next\\n%\xC3\xBC = %";
  ExpectRows({
      // A place counts units of UTF-16: two for what is beyond U+FFFF.
      {kBegin + Opened("%A = \xF0\x9F\x98\x80\xC3\xBC %NO") + kEnd,
       R"("capabilities")"
       R"(|"diagnostics":[{"message":"nothing reads this value of %A")"
       R"(|undefined variable %NO","range":{"end":{"character":12,"line":0},"start":{"character":9)"
       R"(|"id":9,"jsonrpc":"2.0","result":null)"},
      {kBegin + Opened("%A") +
           Notice("textDocument/didChange",
                  R"({"textDocument":{"uri":"u"},"contentChanges":[{"text":"; sound"}]})") +
           Opened("%A") + Notice("textDocument/didClose", R"({"textDocument":{"uri":"u"}})") + kEnd,
       R"(undefined|"diagnostics":[]|undefined|"diagnostics":[])"},
      {kBegin + Opened("%A %B") + kEnd, R"(undefined variable %B)", 0, "-D A=00A40000"},
      {kBegin + Opened(script) + At("completion", 4, 6) + kEnd,
       R"("label":"%RESP"|"label":"%K"|"newText":"%K","range":{"end":{"character":6,"line":4},)"
       R"("start":{"character":5,)"},
      {kBegin + Opened("@STRM") + At("completion", 0, 5) + kEnd,
       R"x("detail":"@strmid(text, start, count)"|"newText":"@strmidh()x"},
      {kBegin + Opened(script) + At("definition", 2, 13) + kEnd,
       R"("range":{"end":{"character":2,"line":1},"start":{"character":0,"line":1}},"uri":"u")"},
      {kBegin + Opened(script) +
           Request("textDocument/documentSymbol", R"({"textDocument":{"uri":"u"}})") + kEnd,
       R"("name":"First","range":{"end":{"character":14,"line":2}|"name":"Next")"},
      {kBegin + Opened(script) + At("hover", 2, 2) + kEnd,
       "CLA   00|INS   A4              SELECT|data  00"},
      {kBegin + Opened(script) + At("hover", 2, 13) + kEnd, R"(line 2\n%K = 00)"},
      {kBegin + Opened("@DES(1)") + At("hover", 0, 1) + kEnd, "@des(key, data, flag)"},
      // What the command line brings is in nobody's sight.
      {kBegin + Opened("00200080 02 %PIN\\n00A40000 %A") + At("hover", 0, 0) + At("hover", 1, 0) +
           kEnd,
       "VERIFY|carries a secret|SELECT|not known here", 0, "-D PIN=1234 -D A=023F00"},
  });
}

TEST(Lsp, AnswersWhatNoEditorShouldSend) {
  const std::string parse = "-32700", invalid = "-32600", parameters = "-32602";
  std::string deep(100000, '[');
  ExpectRows({
      {kBegin + Framed("{") + Framed("") + Framed(deep) + Framed("\"\xFF\"") + kEnd,
       parse + "|" + parse + "|" + parse + "|" + parse + R"(|"id":9)"},
      {kBegin + "Content-Length: x\r\n\r\n" + "Content-Length: 99999999999\r\n\r\n" + kEnd,
       parse + "|" + parse + R"(|"id":9)"},
      // What is too short leaves a rest behind, in which the next header is found.
      {kBegin + "Content-Length: 5\r\n\r\n{\"method\":\"initialized\"}" + kEnd,
       parse + R"(|"id":9)"},
      {kBegin + "content-length:2\nX: y\r\n\r\n[]" + Framed(R"({"id":[],"method":3})") + kEnd,
       invalid + "|" + invalid + R"(|"id":9)"},
      {kBegin + Request("no/such", "{}") + Notice("no/such") + Notice("$/cancelRequest") + kEnd,
       R"("code":-32601|"id":9)"},
      {kBegin + At("hover", 0, 0) + Opened("%A") + At("hover", 1, 0) + At("hover", 0, 99) +
           Request("textDocument/hover", "[]") + Request("textDocument/definition", "{}") + kEnd,
       parameters + "|" + parameters + R"(|"result":null|)" + parameters + "|" + parameters},
      {kBegin + Notice("textDocument/didOpen", "3") +
           Notice("textDocument/didChange", R"({"contentChanges":{"a":1}})") + kEnd,
       R"("id":9)"},
      {At("hover", 0, 0) + Opened("%A") + kBegin + kBegin + kEnd + kBegin,
       R"("code":-32002|"capabilities"|-32600|"id":9)"},
      {kBegin + Request("shutdown", "null", 9) + At("hover", 0, 0) + Notice("exit"),
       R"("id":9|-32600)"},
      {kBegin + Notice("exit") + kEnd, "capabilities", 1},
      {kBegin + "Content-Length: 100\r\n\r\n{", "capabilities", 1},
      {std::string(100000, 'x'), "", 1},
  });
}

}  // namespace
}  // namespace host_test
