#include "host/main.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <iostream>
#include <memory>

#include "host/batch/batch_command.h"
#include "host/check/check_file.h"
#include "host/decode/decode.h"
#include "host/definitions.h"
#include "host/desk/shell.h"
#include "host/failure.h"
#include "host/lsp/server.h"
#include "host/options.h"
#include "host/output.h"
#include "host/platform.h"
#include "host/reader_list.h"
#include "host/script.h"
#include "host/session.h"
#include "host/tags_dictionary.h"
#include "host/testing/test_command.h"
#include "host/text.h"
#include "host/text_input.h"
#include "host/tlv.h"
#include "host/trace/trace_command.h"
#include "host/workplace.h"

namespace host {
namespace {

void RunFile(const Options& options) {
  const Script script(options.file);
  Workplace workplace(options);
  LookAtScript(script, workplace.Work());
  RefuseErrors({&script, 1}, workplace.Beginning());
  RunScriptFile(script, workplace.Work());
  workplace.Finish();
}

// The commands, with the lines of standard input in the place of "-".
std::vector<std::string> CommandsOf(const Options& options) {
  std::vector<std::string> commands;
  for (const std::string& command : options.commands) {
    if (command != "-") {
      commands.push_back(command);
      continue;
    }
    TextInput input(command);
    while (const std::optional<std::string> line = input.NextLine()) {
      if (!WithoutBlanks(*line).empty()) commands.push_back(*line);
    }
  }
  if (commands.empty()) throw Failure(kScriptFault, "there is no command on standard input");
  return commands;
}

void SendCommands(const Options& options) {
  const std::vector<std::string> commands = CommandsOf(options);
  Workplace workplace(options);
  // Checks all commands before the first one is sent.
  for (const std::string& command : commands) workplace.Check(command);
  workplace.Work().ResetCard();
  for (const std::string& command : commands) {
    workplace.Work().Send(command, options.expected);
  }
  workplace.Finish();
}

int StartShell(const Options& options) {
  const bool interactive = InputIsTerminal();
  Workplace workplace(options, !interactive || !OutputIsTerminal());
  const int code = RunShell(workplace, options.showSecrets, interactive);
  workplace.Finish();
  return code;
}

void ShowReaders(const Options& options) {
  for (const int32_t kind : ReaderKinds()) {
    const bool listed = options.listedKind == 0 || options.listedKind == kind;
    if (options.simulate && listed) LoadSimulator(kind);
  }
  PrintReaders(std::cout, options.listedKind, options.ports);
}

// The arguments joined; if there are none, standard input.
std::string DataOf(const Options& options) {
  std::string text;
  for (const std::string& part : options.data) text += part;
  return options.data.empty() ? TextInput("-").Rest() : text;
}

void ShowDecoded(const Options& options) {
  const std::string data = DataOf(options);
  if (options.decodedKind == "tlv") {
    PrintTlv(std::cout, data);
  } else {
    PrintDecoded(std::cout, options.decodedKind, data);
  }
}

void EditTags(const CLI::App& tags, const Options& options) {
  if (tags.got_subcommand("list")) PrintTags(std::cout);
  if (tags.got_subcommand("find")) PrintTag(std::cout, options.entry.tag);
  if (tags.got_subcommand("add")) AddTag(options.entry, options.replace);
  if (tags.got_subcommand("remove")) RemoveTag(options.entry.tag);
  if (tags.got_subcommand("import")) {
    const size_t count = ImportTags(ReadTagList(options.tagList));
    std::cout << count << (count == 1 ? " entry\n" : " entries\n");
  }
}

int Carry(const CLI::App& app, const Options& options) {
  if (app.got_subcommand("run")) RunFile(options);
  if (app.got_subcommand("test")) return TestFiles(options);
  if (app.got_subcommand("batch")) return RunBatch(options);
  if (app.got_subcommand("check")) {
    return CheckFiles(std::cout, options.files, CircumstancesOf(options), options.format == "json");
  }
  if (app.got_subcommand("lsp")) return ServeEditor(CircumstancesOf(options));
  if (app.got_subcommand("apdu")) SendCommands(options);
  if (app.got_subcommand("shell")) return StartShell(options);
  if (app.got_subcommand("readers")) ShowReaders(options);
  if (app.got_subcommand("tlv")) PrintTlv(std::cout, DataOf(options));
  if (app.got_subcommand("trace")) return TraceRecording(options);
  if (app.got_subcommand("decode")) ShowDecoded(options);
  if (app.got_subcommand("tags")) EditTags(*app.get_subcommand("tags"), options);
  return kDone;
}

int Work(std::vector<std::string> arguments) {
  Options options;
  CLI::App app;
  DescribeOptions(app, options);
  try {
    CheckArguments(arguments);
    options.arguments = arguments;
    std::reverse(arguments.begin(), arguments.end());  // parse takes them in reverse order
    app.parse(std::move(arguments));
    return Carry(app, options);
  } catch (const CLI::Success& request) {
    return app.exit(request);
  } catch (const CLI::ParseError& error) {
    const std::vector<std::string> strange = app.remaining();
    const bool named = app.get_subcommands().empty() && !strange.empty() && strange[0][0] != '-';
    const std::string fault = named ? "there is no command " + strange[0] : error.what();
    PrintFailure(Failure(kUsageFault, fault + "\nTry: orvane --help"));
    return kUsageFault;
  } catch (const Failure& failure) {
    PrintFailure(failure);
    return failure.Code();
  }
}

}  // namespace

int Main(std::vector<std::string> arguments) {
  OpenStandardDescriptors();
  const StandardStreams streams;
  try {
    const int code = Work(std::move(arguments));
    if (!std::cout.bad()) std::cout.flush();
    std::cerr.flush();
    return code == kDone && std::cerr.bad() ? kFileFault : code;
  } catch (const Failure& failure) {  // there is no standard output
    PrintFailure(failure);
    return failure.Code();
  } catch (const std::exception& error) {
    PrintFailure({kScriptFault, error.what()});
    return kScriptFault;
  }
}

}  // namespace host
