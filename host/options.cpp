#include "host/options.h"

#include <CLI/CLI.hpp>
#include <sstream>

#include "host/decode/decode.h"
#include "host/definitions.h"
#include "host/expectation.h"
#include "host/failure.h"
#include "host/help_text.h"
#include "host/platform.h"
#include "host/reader_address.h"
#include "host/reader_list.h"

namespace host {
namespace {

#ifndef INSTALLED_EXAMPLES  // the path from the program's folder, in an installation
#define INSTALLED_EXAMPLES "examples"
#endif

constexpr const char* kFooter = R"text(
Readers
  READER is [KIND:]PORT or [KIND:]NAME: "3:Virtual PCD 00 00", "5:100", "12:BSIT:2",
  "10:192.168.1.9:8000". Digits alone are a port. The program looks for a name in the list of its
  kind, first as it is written, then without blanks, because a script's literals lose theirs. It
  passes any other name on as it is. A name with parentheses or commas comes into a script through
  a variable: -D R="Name (1)", then @OPENREADER(%R).
  KIND in --kind may also be a name: pcsc, d8, tcp, ...
  If neither --reader nor the script names a reader, the program opens the one of ORVANE_READER in
  the environment, else the only PC/SC reader, as soon as it needs a card. With --simulate it opens
  "Simulated Reader 0", and touches no hardware.
  In a PC/SC reader @reset() takes no power from the card, and neither does closing: a verified PIN,
  the selected application and open keys stay. --cold-reset ends them at the start, as pulling the
  card does. It refuses readers of other kinds.

Scripts
  After a command %RESP holds the data of the answer and %SW its status word. After @reset() %ATR
  holds the answer to reset.
  A bad status word does not end a script, but @compare(%SW,9000,1) does, and so does the comment
  "; expect 9000" below the command.
  The program checks the whole script before it runs the first line. @setreader(N) takes 0 to 15,
  @setslot(S) two hexadecimal digits.
  Scripts and all other texts are UTF-8, with or without a mark, or UTF-16 with one.
  In the shell Ctrl-C drops the line. During a command it waits for the answer, and a second Ctrl-C
  ends the program.

Secrets
  ** stands for the data of commands that carry PINs or keys, for variables whose names say PIN,
  PUK, KEY, PASSWORD or SECRET, for what these are made from, and for what is made from them. The
  shell does not know the lines to come: it shows what stands before
  such a command.
  Other users can see the command line in the list of processes. Use --vars, --env and orvane apdu -
  for secrets.
  Each of -D, --vars and --env may be repeated. -D goes before --env, which goes before --vars. In a
  file of --vars, empty lines and lines that begin with ; or # do not count.

Tags
  Names of tags come from the file dictdata.bin in the current folder. For a tag that it lacks they
  come from the program's own list: ISO/IEC 7816, EMV and GlobalPlatform.
  orvane tags import examples/tags.txt fills the file.

Messages
  One page explains each message and says what to do about it: share/doc/orvane/html/messages.html
  of an installation, docs/html/messages.html of the zip, docs/messages.md of the sources.

Exit codes
  0  done
  1  an expectation did not hold, there is no such tag, a command is not as recorded, or two
     recordings differ
  2  the command line is wrong
  3  the script or the data is wrong: an undefined variable, a command that is not
     hexadecimal, BER-TLV data that is cut, ...
  4  reader or card trouble
  5  a file, standard input or standard output can't be read or written; nothing more is
     sent then
  A shell that reads no terminal gives the code of its first failure.
)text";

constexpr const char* kShortFooter =
    "\norvane --help tells how readers are named, what is hidden, where messages are explained, "
    "and the exit codes.";

// The command to try first, with the example of the build's checkout or of the installation.
std::string TryIt() try {
  const std::filesystem::path program = ProgramFolder();
  for (const std::filesystem::path& folder :
       {program / INSTALLED_EXAMPLES, program / "../../examples"}) {
    const std::filesystem::path file = (folder / "payment.orv").lexically_normal();
    std::error_code error;
    if (!std::filesystem::exists(file, error)) continue;
    const std::u8string name = file.u8string();
    return "\nTry it\n  orvane run --simulate \"" + std::string(name.begin(), name.end()) + "\"\n";
  }
  return "";
} catch (const Failure&) {  // the system does not say where the program is
  return "";
}

std::string DescribeVersion() {
  std::ostringstream text;
  text << "orvane " ORVANE_VERSION "\n" << SystemName() << "\n\n";
  PrintModules(text);
  std::string lines = text.str();
  lines.pop_back();  // the parser adds the last line end
  return lines;
}

// Replaces a kind's name by its number.
std::string ReadKind(std::string& text) {
  const std::optional<int32_t> kind = FindKind(text);
  if (!kind) return NoSuchKind(text).what();
  text = std::to_string(*kind);
  return "";
}

const CLI::Validator kKindNames(ReadKind, "");

void AddKind(CLI::App& command, Options& options) {
  command
      .add_option(
          "-k,--kind", options.kind,
          "The kind of readers that are named without one: a number or a name; by default pcsc")
      ->type_name("KIND")
      ->transform(kKindNames);
}

void AddReaderName(CLI::App& command, Options& options, const char* help) {
  command.add_option("-r,--reader", options.reader, help)->type_name("READER");
  AddKind(command, options);
}

void AddSimulation(CLI::App& command, Options& options) {
  command.add_flag("--simulate", options.simulate,
                   "Use simulated cards and readers instead of real ones");
  CLI::Option* replay = command
                            .add_option_function<std::string>(
                                "--replay",
                                [&options](const std::string& file) {
                                  options.replay = file;
                                  options.simulate = true;
                                },
                                "Simulate, and play a recording instead of the card. The program "
                                "ends with exit code 1 at the first command that differs")
                            ->type_name("FILE");
  command
      .add_flag("--any-order", options.anyOrder, "Let commands come earlier than they are recorded")
      ->needs(replay);
  command
      .add_option("--record", options.record,
                  "Record what goes to and from cards. %p in the name becomes this process's "
                  "number")
      ->type_name("FILE");
  command.add_flag("--cold-reset", options.coldReset,
                   "Switch a card's power off and on before its PC/SC reader opens");
}

void AddReader(CLI::App& command, Options& options) {
  AddReaderName(command, options, "Open this reader first");
  AddSimulation(command, options);
}

void AddTrace(CLI::App& command, Options& options) {
  command.add_option("--color", options.colour, "Colour: auto, always, never")
      ->type_name("WHEN")
      ->check(CLI::IsMember({"auto", "always", "never"}));
  command.add_flag("--show-secrets", options.showSecrets, "Show PINs and keys");
}

void AddTlv(CLI::App& command, Options& options) {
  command.add_flag("--tlv", options.tlv, "Show answers of BER-TLV data as trees");
}

void AddTag(CLI::App& command, Options& options) {
  command.add_option("TAG", options.entry.tag, "The tag, hexadecimal digits")->required();
}

void AddQuiet(CLI::App& command, Options& options) {
  command.add_flag("-q,--quiet", options.quiet, "Show only failures");
}

void AddDefinitions(CLI::App& command, Options& options) {
  const auto add = [&](const char* name, std::vector<std::string>& values, const char* help,
                       const char* type) {
    return command.add_option(name, values, help)->type_name(type)->allow_extra_args(false);
  };
  add("-D", options.definitions,
      "Set the variable %NAME. Other users can see the value in the list of processes",
      "NAME=VALUE")
      ->check(CheckDefinition);
  add("--vars", options.variableFiles, "Set the variables of a file of lines NAME=VALUE", "FILE");
  add("--env", options.environment, "Set %NAME to the environment's NAME", "NAME")
      ->check(CheckName);
}

void DescribeTest(CLI::App& test, Options& options) {
  test.add_option("FILE", options.tests,
                  "Scripts, each of whose headings ($ ...) opens a case; - is standard input")
      ->required();
  test.add_option(
          "--only", options.only,
          "Run the cases whose names have this text, in either case, and what stands before "
          "their file's first heading")
      ->type_name("TEXT")
      ->allow_extra_args(false);
  test.add_flag("--fail-fast", options.failFast, "End with the first case that fails");
  test.add_flag("-v,--verbose", options.verbose, "Show what orvane run shows");
  test.add_option("--junit", options.junit, "Write a report for CI servers, as JUnit's XML")
      ->type_name("FILE");
  test.add_option("--html", options.html,
                  "Write a report for people, one page that needs no other file")
      ->type_name("FILE");
  test.add_flag("--tap", options.tap, "Print only the Test Anything Protocol");
  test.footer(
      "\nA case ends with its first expectation that does not hold, and the next one begins; what "
      "it left in\nvariables stays. Trouble with reader or card ends the file.\n"
      "Exit code: 0 if nothing failed; 1 if an expectation did not hold; else 3 or 4 if a case "
      "broke off,\nfor a fault of its script or trouble with reader or card; 5 if a report can't "
      "be "
      "written; 130\nafter Ctrl-C, which still has the reports written.\n" +
      std::string(kShortFooter));
}

void DescribeBatch(CLI::App& batch, Options& options) {
  batch.add_option("FILE", options.file, "The script, which runs once for each row");
  batch
      .add_option("--table", options.batch.table,
                  "The rows: RFC 4180, the first line names the columns, which become variables")
      ->type_name("FILE");
  batch
      .add_option("--key", options.batch.key,
                  "The column whose value differs in each row; by default the first")
      ->type_name("COLUMN");
  batch
      .add_option("--journal", options.batch.journal,
                  "What becomes of each row; the same command goes on where it ends")
      ->type_name("FILE");
  batch
      .add_option("--jobs", options.batch.jobs,
                  "A PostgreSQL database in the place of table and journal, for several stations: "
                  "postgresql://HOST/DATABASE")
      ->type_name("ADDRESS");
  CLI::App& load = *batch.add_subcommand("load", "Fill the database of --jobs with --table");
  load.add_option("FILE", options.file, "The script")->required();
  load.fallthrough();
  load.callback([&options] { options.batch.load = true; });
  batch.add_flag("--status", options.batch.status, "Show what the journal says, and run nothing");
  CLI::Option* retry = batch.add_flag("--retry-begun", options.batch.retryBegun,
                                      "Begin again the rows that did not end");
  batch.add_flag("--skip-begun", options.batch.skipBegun, "Abandon rows that did not end")
      ->excludes(retry);
  batch.add_flag("--retry-failed", options.batch.retryFailed, "Begin again the rows that failed");
  batch.add_flag("--fail-fast", options.failFast,
                 "Begin no more rows once one has failed; the same command goes on");
  batch.add_option("-r,--reader", options.batch.readers, "A reader; each has a process of its own")
      ->type_name("READER")
      ->allow_extra_args(false);
  batch
      .add_option("--timeout", options.batch.timeout,
                  "The seconds that a reader waits for a card to come or go; by default for ever")
      ->type_name("SECONDS")
      ->check(CLI::Range(1, 1'000'000));
  batch.add_flag("--no-wait", options.batch.noWait,
                 "Do not wait for a card to go: a feeder has changed it by the next reset");
  batch.add_option("--log-dir", options.batch.logFolder, "Write a trace of each row, row-N.log")
      ->type_name("FOLDER");
  batch
      .add_option("--html", options.html,
                  "Write a report for people, one page that needs no other file")
      ->type_name("FILE");
  batch.add_option("--worker", options.batch.worker)->group("");  // for the program's own use
  batch.footer(
      "\nExit code: 0 if all rows are done or abandoned; 1 if one has failed; 2 if rows that were "
      "begun need\n--retry-begun or --skip-begun; 3 if script or table is wrong, or the journal is "
      "another's; 4 if\nrows are left for trouble with readers or cards; 5 if a file can't be "
      "written; 130 after Ctrl-C,\nwhich lets begun rows end; a second one halts them.\n" +
      std::string(kShortFooter));
}

void DescribeTags(CLI::App& tags, Options& options) {
  tags.require_subcommand(1);
  tags.add_subcommand("list", "List all entries");
  AddTag(*tags.add_subcommand("find", "Show one entry"), options);
  CLI::App& add = *tags.add_subcommand("add", "Add an entry");
  AddTag(add, options);
  add.add_option("NAME", options.entry.name, "What the tag stands for")->required();
  add.add_option("TEXT", options.entry.text, "More about it");
  add.add_flag("--replace", options.replace, "Put it in the place of an entry that is there");
  AddTag(*tags.add_subcommand("remove", "Remove an entry"), options);
  tags.add_subcommand("import", "Add or replace the entries of a list")
      ->add_option("FILE", options.tagList,
                   "The list, a line an entry: TAG NAME or TAG NAME | TEXT; - is standard input")
      ->required();
}

}  // namespace

bool WantsColour(const Options& options) {
  if (options.colour == "never") return false;
  const bool takes = OutputTakesColour();
  return takes || options.colour == "always";
}

void DescribeOptions(CLI::App& app, Options& options) {
  app.name("orvane");
  app.formatter(MakeHelpFormatter());      // the subcommands inherit it
  app.allow_windows_style_options(false);  // a path may begin with a slash
  app.description("Runs card scripts and APDUs against smart-card readers.");
  app.footer(kShortFooter);  // the subcommands inherit it
  app.require_subcommand(1);
  app.set_version_flag("--version", DescribeVersion,
                       "Show the version, the system and the modules that are found");

  CLI::App& run = *app.add_subcommand("run", "Run a script, one statement a line");
  run.add_option("FILE", options.file, "The script; - is standard input")->required();
  AddDefinitions(run, options);
  AddReader(run, options);
  AddTrace(run, options);
  AddTlv(run, options);
  AddQuiet(run, options);

  CLI::App& check = *app.add_subcommand("check", "Find mistakes in scripts, without a card");
  check.add_option("FILE", options.files, "A script; - is standard input")->required();
  AddDefinitions(check, options);
  AddReaderName(check, options, "The reader that the script finds; it is not opened");
  check.add_option("--format", options.format, "text, a line each, or json")
      ->type_name("FORMAT")
      ->check(CLI::IsMember({"text", "json"}));
  check.footer(
      "\nExit code: 0 if nothing is found; 1 if there are warnings alone; 3 if there is an error,\n"
      "which orvane run refuses before it sends anything.\n" +
      std::string(kShortFooter));

  CLI::App& test =
      *app.add_subcommand("test", "Run the cases of scripts, and tell which of them failed");
  DescribeTest(test, options);
  AddDefinitions(test, options);
  AddReader(test, options);
  AddTrace(test, options);
  AddTlv(test, options);
  AddQuiet(test, options);

  CLI::App& batch =
      *app.add_subcommand("batch", "Run a script on card after card, once for each row of a table");
  DescribeBatch(batch, options);
  AddKind(batch, options);
  AddDefinitions(batch, options);
  AddSimulation(batch, options);
  AddTlv(batch, options);
  AddQuiet(batch, options);

  CLI::App& apdu = *app.add_subcommand("apdu", "Bring up the card and send APDUs to it");
  apdu.add_option("HEX", options.commands,
                  "One APDU an argument; blanks are allowed. - is the lines of standard input, "
                  "which no list of processes shows")
      ->required();
  apdu.add_option("--expect", options.expected,
                  "What every answer should be: 9000, X for any digit, several as in "
                  "\"61XX or 9000\", with data as in \"6F .. 9000\". The program ends with exit "
                  "code 1 at the first answer that differs")
      ->type_name("PATTERN")
      ->check(CheckPattern);
  apdu.footer(
      "\nExit code: 0 if each APDU got an answer, whatever its status word says; 1 if one is not "
      "as\n--expect has it; 3 if an APDU is wrong, and none is sent then; 4 for trouble with "
      "reader "
      "or card.\n" +
      std::string(kShortFooter));
  AddReader(apdu, options);
  AddTrace(apdu, options);
  AddTlv(apdu, options);

  CLI::App& shell = *app.add_subcommand("shell", "Run statements as they are typed");
  AddDefinitions(shell, options);
  AddReader(shell, options);
  AddTrace(shell, options);
  AddTlv(shell, options);

  CLI::App& trace = *app.add_subcommand("trace", "Show, compare or convert recordings");
  trace.add_option("FILE", options.file, "The recording")->required();
  CLI::Option* diff =
      trace
          .add_option("--diff", options.other,
                      "Show where OTHER differs from FILE, with exit code 1 if it does")
          ->type_name("OTHER");
  CLI::Option* script = trace.add_flag(
      "--script", options.asScript, "Print a script that repeats it and expects what was recorded");
  trace.add_option("--pcap", options.pcap, "Write a capture for Wireshark; hidden data are 00")
      ->type_name("OUT")
      ->excludes(diff, script);
  script->excludes(diff);
  trace.add_flag("--times", options.times, "Show when each command came, and what it took");
  AddTrace(trace, options);
  AddTlv(trace, options);

  CLI::App& lsp = *app.add_subcommand("lsp", "Serve an editor (Language Server Protocol)");
  AddDefinitions(lsp, options);
  AddReaderName(lsp, options, "The reader that scripts find; it is not opened");
  lsp.footer("\nExit code: 0 if the editor asked for the end as it should, else 1.\n" +
             std::string(kShortFooter));

  std::vector<std::string> kinds = DecodedKinds();
  kinds.emplace_back("tlv");
  CLI::App& decode = *app.add_subcommand("decode", "Explain data of a card, field by field");
  decode
      .add_option("WHAT", options.decodedKind,
                  "atr, dol, afl, aip, tvr, cvm (a list of verification methods), sw, apdu or tlv")
      ->required()
      ->check(CLI::IsMember(kinds));
  decode.add_option("HEX", options.data, "The data; if there is none, standard input");

  CLI::App& tlv = *app.add_subcommand("tlv", "Show BER-TLV data as a tree");
  tlv.add_option("HEX", options.data, "The data; if there is none, standard input");

  DescribeTags(*app.add_subcommand("tags", "Edit the dictionary of tags, dictdata.bin"), options);

  CLI::App& readers = *app.add_subcommand("readers", "List readers");
  readers.add_option("-k,--kind", options.listedKind, "List only this kind")
      ->type_name("KIND")
      ->transform(kKindNames);
  readers
      .add_option("--ports", options.ports,
                  "Also offer this many ports of the kinds that can't list theirs")
      ->type_name("N")
      ->check(CLI::Range(1, 256));
  readers.add_flag("--simulate", options.simulate, "List the simulated readers");
  app.footer(kFooter + TryIt());
}

void CheckArguments(const std::vector<std::string>& arguments) {
  const bool octets = !arguments.empty() &&
                      (arguments[0] == "apdu" || arguments[0] == "decode" || arguments[0] == "tlv");
  for (const std::string& each : arguments) {
    if (octets && each.starts_with('[') && each.ends_with(']')) {
      throw Failure(kScriptFault, "'[' is no hexadecimal digit");
    }
  }
}

}  // namespace host
