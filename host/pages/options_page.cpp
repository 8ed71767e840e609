#include <CLI/CLI.hpp>
#include <sstream>

#include "host/pages/pages.h"

namespace host {
namespace {

// Escapes what a table's cell would take for markup.
std::string Escaped(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    if (std::string_view("\\|*_<[`").find(c) != std::string_view::npos) escaped += '\\';
    escaped += c;
  }
  return escaped;
}

void AddCommand(std::ostream& out, const CLI::App& command, const std::string& name) {
  out << "\n## " << name << "\n\n" << Escaped(command.get_description()) << ".\n\n";
  const char* head = "| | |\n|---|---|\n";
  for (const Argument& argument : ArgumentsOf(command)) {
    if (!argument.names.empty() && argument.names.back() == "--help") continue;
    std::string shown;
    for (const std::string& each : argument.names) shown += (shown.empty() ? "" : ", ") + each;
    if (!argument.value.empty()) shown += (shown.empty() ? "" : " ") + argument.value;
    out << head << "| `" << shown << "` | " << Escaped(argument.help) << " |\n";
    head = "";
  }
  for (const CLI::App* each : CommandsOf(command)) {
    AddCommand(out, *each, name + " " + each->get_name());
  }
}

}  // namespace

std::string OptionsPage(const CLI::App& app) {
  std::ostringstream out;
  out << "# All options\n\nEvery subcommand of `orvane`, and every option that it takes. "
         "[The program](program.md) shows them at work.\n";
  for (const CLI::App* command : CommandsOf(app)) {
    AddCommand(out, *command, "orvane " + command->get_name());
  }
  return out.str();
}

}  // namespace host
