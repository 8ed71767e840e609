#include "host/check/check_file.h"

#include <orvane.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "host/definitions.h"
#include "host/failure.h"
#include "host/platform.h"
#include "host/reader_address.h"
#include "host/text.h"
#include "host/text_input.h"

namespace host {
namespace {

using Json = nlohmann::ordered_json;

std::vector<Diagnostic> CheckInput(TextInput& in, const Circumstances& circumstances) {
  Checker checker(circumstances);
  while (const std::optional<std::string> line = in.NextLine()) checker.Read(*line);
  return checker.End();
}

const char* NameOf(Severity severity) { return severity == Severity::kError ? "error" : "warning"; }

void PrintLine(std::ostream& out, const std::string& file, const Diagnostic& found) {
  out << Printable(file) << ':' << found.line << ':' << found.column << ": "
      << NameOf(found.severity) << ": " << found.text << '\n';
}

Json ObjectOf(const std::string& file, const Diagnostic& found) {
  return {{"file", file},
          {"line", found.line},
          {"column", found.column},
          {"severity", NameOf(found.severity)},
          {"text", found.text}};
}

bool IsError(const Diagnostic& found) { return found.severity == Severity::kError; }

}  // namespace

Circumstances CircumstancesOf(const Options& options) {
  const std::string fallback =
      options.simulate ? "" : EnvironmentVariable("ORVANE_READER").value_or("");
  const std::string& reader = options.reader.empty() ? fallback : options.reader;
  Circumstances circumstances{
      .variables = Definitions(options), .kind = {}, .defaultKind = options.kind};
  try {
    circumstances.kind = !reader.empty()    ? ReadReaderAddress(reader, options.kind).kind
                         : options.simulate ? static_cast<int32_t>(ReaderKindPcsc)
                                            : options.kind;
  } catch (const Failure&) {  // reported when the reader is opened
  }
  return circumstances;
}

int CheckFiles(std::ostream& out, const std::vector<std::string>& files,
               const Circumstances& circumstances, bool json) {
  Json objects = Json::array();
  int code = kDone;
  for (const std::string& file : files) {
    TextInput in(file);
    for (const Diagnostic& found : CheckInput(in, circumstances)) {
      code = std::max<int>(code, IsError(found) ? kScriptFault : kExpectationFailed);
      if (json) {
        objects.push_back(ObjectOf(in.Name(), found));
      } else {
        PrintLine(out, in.Name(), found);
      }
    }
  }
  if (json) out << objects.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
  return code;
}

void RefuseErrors(std::span<const Script> scripts, const Circumstances& circumstances) {
  Circumstances strict = circumstances;
  strict.warns = false;
  Checker checker(strict);
  for (const Script& script : scripts) {
    script.ForEach([&](const Statement& statement, size_t) {
      checker.Read(statement);
      return true;
    });
    const std::vector<Diagnostic> found = checker.End();
    if (found.empty()) continue;
    const Diagnostic& first = found.front();
    const size_t more = found.size() - 1;
    throw ScriptFailure(
        kScriptFault,
        script.Name() + ":" + std::to_string(first.line) + ": " + first.text +
            (more > 0 ? "\n  and " + Counted(more, "more error") + ", which orvane check shows"
                      : ""));
  }
}

}  // namespace host
