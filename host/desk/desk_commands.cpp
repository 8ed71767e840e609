#include "host/desk/desk_commands.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "host/decode/decode.h"
#include "host/desk/completion.h"
#include "host/engine.h"
#include "host/failure.h"
#include "host/reader_list.h"
#include "host/script.h"
#include "host/text.h"
#include "host/tlv.h"

namespace host {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kBlanks = " \t";

fs::path PathOf(std::string_view file) { return std::u8string(file.begin(), file.end()); }

std::string TextOf(const fs::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

// Removes the first word from the text and gives it.
std::string_view TakeWord(std::string_view& text) {
  const std::string_view word = text.substr(0, text.find_first_of(kBlanks));
  text.remove_prefix(word.size());
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  text = text.substr(0, text.find_last_not_of(kBlanks) + 1);
  return word;
}

// The value of operands of the language; hexadecimal digits are such an operand too.
std::string ValueIn(Desk& desk, std::string_view operands) {
  const Statement statement = ReadStatement(operands);
  if (!statement.Sends()) throw Failure(kUsageFault, "this is no value");
  return desk.workplace.Work().ValueOf(statement);
}

bool Decode(Desk& desk, std::string_view rest) {
  const std::string kind(TakeWord(rest));
  const std::vector<std::string> kinds = DecodedKinds();
  if (kind == "tlv") {
    PrintTlv(std::cout, ValueIn(desk, rest));
  } else if (std::find(kinds.begin(), kinds.end(), kind) != kinds.end()) {
    PrintDecoded(std::cout, kind, ValueIn(desk, rest));
  } else {
    throw Failure(kUsageFault, "there is no kind " + kind + "; help :decode lists them");
  }
  return false;
}

bool ShowTlv(Desk& desk, std::string_view rest) {
  PrintTlv(std::cout, ValueIn(desk, rest));
  return false;
}

bool ShowVariables(Desk& desk, std::string_view) {
  constexpr size_t kShown = 64;
  for (const std::string& name : desk.variables) {
    const Statement statement = ReadStatement(name);
    const std::string value = Evaluate(name);
    const bool hide = desk.workplace.Work().Hides(statement, value);
    std::cout << "      " << Printable(name) << " = "
              << (hide ? "**" : Printable(value.substr(0, kShown)));
    if (!hide && value.size() > kShown) std::cout << "... (" << value.size() << " characters)";
    std::cout << '\n';
  }
  return false;
}

bool RunSource(Desk& desk, std::string_view rest) {
  const Script script{std::string(rest)};
  Session& session = desk.workplace.Work();
  const bool learned = LookAtScript(script, session);
  const bool echoed = session.EchoStatements(true);
  try {
    script.ForEach([&](const Statement& statement, size_t line) {
      desk.typed.Begin();
      const bool goesOn = session.Run(statement, line);
      if (goesOn) NoteDone(desk, statement);
      return goesOn;
    });
  } catch (const Failure&) {
    session.EchoStatements(echoed);
    throw;
  }
  session.EchoStatements(echoed);
  return learned;
}

bool Save(Desk& desk, std::string_view rest) {
  const fs::path path = PathOf(rest);
  std::error_code error;
  if (fs::exists(path, error)) {
    throw Failure(kFileFault, "there is a file " + Printable(rest) + " already");
  }
  std::ofstream out(path, std::ios::binary);
  out << desk.typed.Text(desk.workplace.Beginning().variables, desk.showSecrets);
  out.close();
  if (!out) throw Failure(kFileFault, "can't write " + Printable(rest));
  return false;
}

struct DeskCommand {
  std::string_view name;
  bool takesText;
  bool (*run)(Desk& desk, std::string_view rest);
};

constexpr DeskCommand kCommands[] = {
    {":readers", false,
     [](Desk& desk, std::string_view) {
       desk.workplace.PrepareLists();
       PrintReaders(std::cout, 0, 0);
       return false;
     }},
    {":tlv", true, ShowTlv},
    {":decode", true, Decode},
    {":vars", false, ShowVariables},
    {":source", true, RunSource},
    {":save", true, Save},
    {":record", true,
     [](Desk& desk, std::string_view rest) {
       desk.workplace.Record(std::string(rest), desk.showSecrets);
       return false;
     }},
};

// The files and folders that complete a path.
std::vector<std::string> CompletePath(std::string_view typed) {
  const size_t name = typed.find_last_of("/\\") + 1;
  const std::string_view folder = typed.substr(0, name);
  std::vector<std::string> found;
  std::error_code error;
  for (fs::directory_iterator at(folder.empty() ? fs::path(".") : PathOf(folder), error), end;
       !error && at != end; at.increment(error)) {
    const std::string file = TextOf(at->path().filename());
    if (!file.starts_with(typed.substr(name)) || (file[0] == '.' && name == typed.size())) continue;
    std::error_code unknown;
    found.push_back(std::string(folder) + file + (at->is_directory(unknown) ? "/" : ""));
  }
  return found;
}

std::vector<std::string> CompleteOperands(const Desk& desk, std::string_view before) {
  std::vector<std::string> words;
  const std::vector<std::string> variables(desk.variables.begin(), desk.variables.end());
  const auto readers = [&desk] {
    desk.workplace.PrepareLists();
    return ReaderProposals();
  };
  for (const Proposal& proposal : ProposeWords(before, variables, readers)) {
    words.push_back(proposal.text);
  }
  return words;
}

std::vector<std::string> Filter(const std::vector<std::string>& words, std::string_view word) {
  std::vector<std::string> found;
  for (const std::string& each : words) {
    if (Begins(each, word)) found.push_back(each);
  }
  return found;
}

std::vector<std::string> NamesOf(std::span<const Entry> entries) {
  std::vector<std::string> names;
  for (const Entry& entry : entries) names.emplace_back(entry.name);
  return names;
}

}  // namespace

bool RunDeskCommand(Desk& desk, std::string_view line) {
  std::string_view rest = line;
  const std::string_view name = TakeWord(rest);
  const auto* const command = std::find_if(std::begin(kCommands), std::end(kCommands),
                                           [&](const DeskCommand& c) { return c.name == name; });
  if (command == std::end(kCommands)) {
    throw Failure(kUsageFault, "there is no " + std::string(name) + "; help lists what there is");
  }
  if (command->takesText == rest.empty()) {
    throw Failure(kUsageFault, "it is " + std::string(FindEntry(name)->usage));
  }
  return command->run(desk, rest);
}

void NoteDone(Desk& desk, const Statement& statement) {
  std::string value;
  if (statement.form == Form::kAssignment && statement.words[0].kind == WordKind::kVariable) {
    const std::string name = UpperCase(statement.TextOf(statement.words[0]));
    desk.variables.insert(name);
    value = Evaluate(name);
  }
  if (statement.Sends()) desk.variables.insert({"%RESP", "%SW"});
  if (statement.IsForHost() && statement.invocations.back().builtin->keyword == "@RESET") {
    desk.variables.insert("%ATR");
  }
  const bool stands = !statement.IsComment() && statement.form != Form::kHeading;
  desk.typed.Add(statement, stands && desk.workplace.Work().Hides(statement, value));
}

void ExplainWord(std::string_view word) {
  const Entry* const entry = FindEntry(word);
  if (entry == nullptr) throw Failure(kUsageFault, "there is no help for " + std::string(word));
  std::cout << "  " << entry->usage << '\n';
  constexpr size_t kWidth = 76;
  std::string_view rest = entry->help;
  while (!rest.empty()) {
    const size_t end = rest.size() <= kWidth ? rest.size() : rest.rfind(' ', kWidth);
    std::cout << "    " << rest.substr(0, end) << '\n';
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
}

std::vector<std::string> CompleteLine(const Desk& desk, std::string_view before) {
  const size_t begin = WordBegin(before);
  const std::string_view word = before.substr(begin);
  std::string_view rest = before;
  const std::string_view first = TakeWord(rest);
  if (first == "help" && begin > 0) {
    std::vector<std::string> names = NamesOf(ScriptWords());
    const std::vector<std::string> more = NamesOf(ShellWords());
    names.insert(names.end(), more.begin(), more.end());
    return Filter(names, word);
  }
  if (begin > 0 && (first == ":source" || first == ":save" || first == ":record")) {
    return CompletePath(word);
  }
  if (first == ":decode" && rest.size() == word.size()) {
    std::vector<std::string> kinds = DecodedKinds();
    kinds.emplace_back("tlv");
    return Filter(kinds, word);
  }
  std::vector<std::string> words = CompleteOperands(desk, before);
  if (begin == 0) {
    for (const std::string& name : Filter(NamesOf(ShellWords()), word)) words.push_back(name);
  }
  return words;
}

}  // namespace host
