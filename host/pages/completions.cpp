#include <CLI/CLI.hpp>
#include <sstream>

#include "host/pages/pages.h"

namespace host {
namespace {

std::string Joined(const std::vector<std::string>& words, const char* between) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : between) + word;
  return text;
}

std::vector<std::string> NamesOf(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* each : CommandsOf(app)) names.push_back(each->get_name());
  return names;
}

// The command's subcommands, options and choices of positional arguments.
std::string WordsOf(const CLI::App& command) {
  std::vector<std::string> words = NamesOf(command);
  for (const Argument& argument : ArgumentsOf(command)) {
    const std::vector<std::string>& more =
        argument.names.empty() ? argument.choices : argument.names;
    words.insert(words.end(), more.begin(), more.end());
  }
  return Joined(words, " ");
}

// Text for a shell's single quotes; [ ] and : are escaped, since zsh interprets them.
std::string Plain(const std::string& text) {
  std::string plain;
  for (const char c : text) {
    if (c == '\'') {
      plain += "'\\''";
    } else if (c == '[' || c == ']' || c == ':' || c == '\\') {
      plain += std::string("\\") + c;
    } else {
      plain += c;
    }
  }
  return plain;
}

std::string ValueAction(const Argument& argument) {
  const bool file =
      argument.value == "FILE" || argument.value == "OTHER" || argument.value == "OUT";
  const std::string action = !argument.choices.empty() ? "(" + Joined(argument.choices, " ") + ")"
                             : file                    ? "_files"
                                                       : " ";
  return ":" + Plain(argument.value) + ":" + action;
}

void AddZshArguments(std::ostream& out, const CLI::App& command) {
  out << "      _arguments \\\n";
  for (const Argument& argument : ArgumentsOf(command)) {
    for (const std::string& name : argument.names) {
      out << "        '*" << name << "[" << Plain(argument.help) << "]"
          << (argument.value.empty() ? "" : ValueAction(argument)) << "' \\\n";
    }
    if (argument.names.empty()) out << "        '*" << ValueAction(argument) << "' \\\n";
  }
  const std::vector<std::string> names = NamesOf(command);
  if (!names.empty()) out << "        '1:command:(" << Joined(names, " ") << ")' \\\n";
  out << "        ;;\n";
}

}  // namespace

std::string BashCompletion(const CLI::App& app) {
  std::ostringstream out;
  out << "# Completion of orvane for bash.\n"
         "_orvane() {\n"
         "  local current=${COMP_WORDS[COMP_CWORD]} words\n"
         "  COMPREPLY=()\n"
         "  case $COMP_CWORD:${COMP_WORDS[1]} in\n"
         "    1:*) words='"
      << WordsOf(app) << "' ;;\n";
  for (const CLI::App* command : CommandsOf(app)) {
    out << "    *:" << command->get_name() << ") words='" << WordsOf(*command) << "' ;;\n";
  }
  out << "  esac\n"
         "  case ${COMP_WORDS[COMP_CWORD-1]} in\n";
  for (const CLI::App* command : CommandsOf(app)) {
    for (const Argument& argument : ArgumentsOf(*command)) {
      if (argument.names.empty() || argument.choices.empty()) continue;
      out << "    " << Joined(argument.names, "|") << ") words='" << Joined(argument.choices, " ")
          << "' ;;\n";
    }
  }
  out << "  esac\n"
         "  mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$current\")\n"
         "}\n"
         "complete -o default -o bashdefault -F _orvane orvane\n";
  return out.str();
}

std::string ZshCompletion(const CLI::App& app) {
  std::ostringstream out;
  out << "#compdef orvane\n"
         "# Completion of orvane for zsh.\n"
         "_orvane() {\n"
         "  local -a commands=(\n";
  for (const CLI::App* command : CommandsOf(app)) {
    out << "    '" << command->get_name() << ":" << Plain(command->get_description()) << "'\n";
  }
  out << "  )\n"
         "  if (( CURRENT == 2 )); then\n"
         "    _describe command commands\n"
         "    return\n"
         "  fi\n"
         "  shift words\n"
         "  (( CURRENT-- ))\n"
         "  case $words[1] in\n";
  for (const CLI::App* command : CommandsOf(app)) {
    out << "    " << command->get_name() << ")\n";
    AddZshArguments(out, *command);
  }
  out << "  esac\n"
         "}\n"
         "_orvane \"$@\"\n";
  return out.str();
}

}  // namespace host
