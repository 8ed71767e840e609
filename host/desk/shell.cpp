#include "host/desk/shell.h"

#include <iostream>
#include <memory>

#include "host/desk/desk_commands.h"
#include "host/desk/history.h"
#include "host/failure.h"
#include "host/platform.h"
#include "host/text.h"
#include "host/text_input.h"

namespace host {
namespace {

constexpr std::string_view kHelp =
    R"text(  00 A4 04 00 %LEN %AID     a line that begins with a plain word is a command to the card
  %NAME = operands          stores a variable; %RESP, %SW and %ATR hold what the card gave
  %NAME, @xor(%A, %B)       a line that begins with a variable or a function shows its value
  send %NAME ...            sends that value instead
  @OPENREADER(reader)  @setreader(number)  @setslot(slot)  @reset()
                            @reset() leaves a PIN verified on PC/SC: see orvane --help
  @compare(left, right, 1)  says whether they are equal; with 0, whether they differ
  :readers  :vars  :tlv VALUE  :decode KIND VALUE
  :source FILE  :save FILE  :record FILE
  help WORD tells more, as in help @des or help :save; quit
)text";

// In a script such a line is a command to the card. Here people type it to look at a value, which
// must not go to a card.
bool OnlyLooks(const Statement& statement) {
  return statement.Sends() && statement.words[0].kind != WordKind::kLiteral;
}

class Shell {
 public:
  Shell(Workplace& workplace, bool showSecrets, bool interactive)
      : workplace_(workplace), desk_{workplace, typed_, showSecrets} {
    workplace.Work().Listen(&typed_);
    for (const auto& [name, value] : workplace.Beginning().variables) {
      desk_.variables.insert(UpperCase(name));
    }
    if (!interactive) return;
    CompleteWith([this](std::string_view before) { return CompleteLine(desk_, before); });
    history_ = std::make_unique<History>();
  }
  Shell(const Shell&) = delete;
  Shell& operator=(const Shell&) = delete;
  ~Shell() { CompleteWith(nullptr); }

  // False if it was the last line.
  bool Run(const std::string& line) {
    if (line == "quit" || line == "exit") return false;
    constexpr std::string_view kHelpOn = "help ";
    if (line == "help") {
      std::cout << kHelp;
    } else if (line.starts_with(kHelpOn)) {
      ExplainWord(std::string_view(line).substr(kHelpOn.size()));
    } else if (line.starts_with(':')) {
      workplace_.Work().StartOver();
      if (RunDeskCommand(desk_, line)) Forget();
      Remember(line);
    } else {
      return RunStatement(line);
    }
    return true;
  }

  void End() const {
    if (history_) history_->Save();
  }

 private:
  bool RunStatement(const std::string& line) {
    Session& session = workplace_.Work();
    constexpr std::string_view kSend = "send ";
    const bool send = line.starts_with(kSend);
    const Statement statement =
        ReadStatement(send ? std::string(kSend.size(), ' ') + line.substr(kSend.size()) : line);
    const bool looks = !send && OnlyLooks(statement);
    // A recalled line shows on the screen again.
    session.StartOver();
    if (!looks && session.Learn(statement)) Forget();
    if (!line.empty() && !session.Hides(statement)) Remember(line);
    if (looks) {
      session.Show(statement);
      return true;
    }
    typed_.Begin();
    if (!session.Run(statement, std::nullopt)) return false;
    NoteDone(desk_, statement);
    return true;
  }

  void Remember(const std::string& line) {
    if (history_) history_->Add(line);
  }
  void Forget() {
    if (history_) history_->Forget();
  }

  Workplace& workplace_;
  TypedScript typed_;
  Desk desk_;
  std::unique_ptr<History> history_;  // only for a person
};

}  // namespace

int RunShell(Workplace& workplace, bool showSecrets, bool interactive) {
  if (interactive) std::cout << "Statements of the card script; help, quit\n" << std::flush;
  Shell shell(workplace, showSecrets, interactive);
  TextInput in("-");
  int firstFailure = kDone;
  while (const auto line = interactive ? EditLine("orvane> ") : in.NextLine()) {
    try {
      if (!shell.Run(*line)) break;
    } catch (const Failure& failure) {
      if (std::cout.bad()) throw;
      PrintFailure(failure);
      if (firstFailure == kDone) firstFailure = failure.Code();
    }
    std::cout << std::flush;
  }
  shell.End();
  return interactive ? kDone : firstFailure;
}

}  // namespace host
