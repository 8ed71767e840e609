#include <CLI/CLI.hpp>
#include <sstream>

#include "host/pages/pages.h"
#include "host/text.h"

namespace host {
namespace {

std::string Escaped(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '\\') {
      escaped += "\\e";
    } else if (c == '-') {
      escaped += "\\-";
    } else {
      escaped += c;
    }
  }
  // A line that begins with one of these would be a request.
  if (escaped.starts_with('.') || escaped.starts_with('\'')) escaped.insert(0, "\\&");
  return escaped;
}

std::string Bold(const std::string& text) { return "\\fB" + Escaped(text) + "\\fR"; }
std::string Italic(const std::string& text) { return "\\fI" + Escaped(text) + "\\fR"; }

void AddArgument(std::ostream& out, const Argument& argument) {
  out << ".TP\n";
  for (size_t at = 0; at < argument.names.size(); ++at) {
    out << (at > 0 ? ", " : "") << Bold(argument.names[at]);
  }
  if (!argument.value.empty()) {
    out << (argument.names.empty() ? "" : " ") << Italic(argument.value);
  }
  out << '\n' << Escaped(argument.help) << '\n';
}

void AddCommand(std::ostream& out, const CLI::App& command, const std::string& name) {
  out << ".SS " << Escaped(name) << '\n' << Escaped(command.get_description()) << ".\n";
  for (const Argument& argument : ArgumentsOf(command)) {
    if (argument.names.empty() || argument.names.back() != "--help") AddArgument(out, argument);
  }
  for (const CLI::App* each : CommandsOf(command)) {
    AddCommand(out, *each, name + " " + each->get_name());
  }
  std::istringstream footer(command.get_footer());
  for (std::string line; std::getline(footer, line);) {
    if (line.starts_with("orvane --help")) continue;  // it stands below
    out << (line.empty() ? ".PP" : Escaped(line)) << '\n';
  }
}

// The sections of the footer: a title, and lines indented by two blanks. Numbers in front of lines
// make them items.
void AddSections(std::ostream& out, const std::string& footer) {
  constexpr size_t kIndent = 2;
  std::istringstream in(footer);
  for (std::string line; std::getline(in, line);) {
    if (line == "Try it") break;  // depends on this machine
    if (line.empty()) continue;
    if (line[0] != ' ') {
      out << ".SH " << Escaped(UpperCase(line)) << '\n';
      continue;
    }
    line.erase(0, line.find_first_not_of(' '));
    if (line.size() > kIndent && IsDigit(line[0]) && line[1] == ' ') {
      out << ".TP\n" << Bold(line.substr(0, 1)) << '\n';
      line.erase(0, 1 + kIndent);
    } else if (line.starts_with("A shell")) {
      out << ".PP\n";
    }
    out << Escaped(line) << '\n';
  }
}

}  // namespace

std::string ManualPage(const CLI::App& app) {
  std::ostringstream out;
  std::string summary = app.get_description();
  summary.pop_back();  // the full stop
  summary[0] = 'r';
  out << ".TH ORVANE 1 \"\" \"orvane " ORVANE_VERSION "\" \"User Commands\"\n"
      << ".SH NAME\norvane \\- " << Escaped(summary) << "\n.SH SYNOPSIS\n.B orvane\n"
      << ".I COMMAND\n[\\fIOPTION\\fR]... [\\fIARGUMENT\\fR]...\n.SH OPTIONS\n";
  for (const Argument& argument : ArgumentsOf(app)) AddArgument(out, argument);
  out << ".SH COMMANDS\n";
  for (const CLI::App* command : CommandsOf(app)) {
    AddCommand(out, *command, "orvane " + command->get_name());
  }
  AddSections(out, app.get_footer());
  out << ".SH SEE ALSO\n\\fBorvane\\fR(3), and all pages for a browser in "
         "\\fIshare/doc/orvane/html/index.html\\fR of the installation.\n";
  return out.str();
}

}  // namespace host
