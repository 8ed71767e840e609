#include "host/script.h"

#include <fstream>
#include <iostream>

#include "host/failure.h"

namespace host {
namespace {

ScriptFailure At(const Script& script, size_t line, const Failure& failure) {
  return ScriptFailure(failure.Code(),
                       script.name + ":" + std::to_string(line) + ": " + failure.what());
}

void ReadLines(std::istream& in, Script& script) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  std::string line;
  while (std::getline(in, line)) {
    if (script.statements.empty() && line.starts_with(kByteOrderMark)) {
      line.erase(0, kByteOrderMark.size());
    }
    if (line.ends_with('\r')) line.pop_back();
    try {
      script.statements.push_back(ReadStatement(line));
    } catch (const Failure& failure) {
      throw At(script, script.statements.size() + 1, failure);
    }
  }
  if (in.bad()) throw Failure(kFileFault, "can't read " + script.name);
}

}  // namespace

Script ReadScript(const std::string& file) {
  Script script;
  script.name = file == "-" ? "<stdin>" : file;
  if (file == "-") {
    ReadLines(std::cin, script);
    return script;
  }
  std::ifstream in(file, std::ios::binary);
  if (!in) throw Failure(kFileFault, "can't open " + file);
  ReadLines(in, script);
  return script;
}

void RunScriptFile(const Script& script, Session& session) {
  for (size_t at = 0; at < script.statements.size(); ++at) {
    try {
      if (!session.Run(script.statements[at], at + 1)) break;
    } catch (const Failure& failure) {
      throw At(script, at + 1, failure);
    }
  }
  session.Summarise();
}

}  // namespace host
