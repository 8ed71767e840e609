#include "host/shell.h"

#include <iostream>

#include "host/failure.h"
#include "host/platform.h"
#include "host/text_input.h"

namespace host {
namespace {

constexpr std::string_view kHelp =
    "  00 A4 04 00 %LEN %AID     a line that begins with a plain word is a command to the card\n"
    "  %NAME = operands          stores a variable; %RESP, %SW and %ATR hold what the card gave\n"
    "  %NAME, @xor(%A, %B)       a line that begins with a variable or a function shows its value\n"
    "  send %NAME ...            sends that value instead\n"
    "  @OPENREADER(reader)  @setreader(number)  @setslot(slot)  @reset()\n"
    "                            @reset() leaves a PIN verified on PC/SC: see orvane --help\n"
    "  @compare(left, right, 1)  says whether they are equal; with 0, whether they differ\n"
    "  ; expect 61XX or 9000     says whether the response to the command above is like this\n"
    "  help, quit\n";

// In a script such a line is a command to the card. Here it is what one types to look at a value,
// and a value that was meant to be looked at must not reach a card.
bool OnlyLooks(const Statement& statement) {
  return statement.Sends() && statement.words[0].kind != WordKind::kLiteral;
}

// False if it is the last one.
bool RunLine(Session& session, const std::string& line, bool interactive) {
  if (line == "quit" || line == "exit") return false;
  if (line == "help") {
    std::cout << kHelp;
    return true;
  }
  constexpr std::string_view kSend = "send ";
  const bool send = line.starts_with(kSend);
  const Statement statement =
      ReadStatement(send ? std::string(kSend.size(), ' ') + line.substr(kSend.size()) : line);
  const bool looks = !send && OnlyLooks(statement);
  // A remembered line comes back to the screen.
  session.StartOver();
  if (!looks && session.Learn(statement)) ForgetLines();
  if (interactive && !line.empty() && !session.Hides(statement)) RememberLine(line);
  if (looks) {
    session.Show(statement);
    return true;
  }
  return session.Run(statement, std::nullopt);
}

}  // namespace

int RunShell(Session& session, bool interactive) {
  if (interactive) std::cout << "Statements of the card script; help, quit\n" << std::flush;
  TextInput in("-");
  int firstFailure = kDone;
  while (const auto line = interactive ? EditLine("orvane> ") : in.NextLine()) {
    try {
      if (!RunLine(session, *line, interactive)) break;
    } catch (const Failure& failure) {
      if (std::cout.bad()) throw;
      PrintFailure(failure);
      if (firstFailure == kDone) firstFailure = failure.Code();
    }
    std::cout << std::flush;
  }
  return interactive ? kDone : firstFailure;
}

}  // namespace host
