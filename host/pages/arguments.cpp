#include <CLI/CLI.hpp>
#include <sstream>

#include "host/pages/pages.h"

namespace host {

std::vector<const CLI::App*> CommandsOf(const CLI::App& app) {
  return app.get_subcommands([](const CLI::App*) { return true; });
}

std::vector<Argument> ArgumentsOf(const CLI::App& command) {
  std::vector<Argument> arguments;
  for (const CLI::Option* option : command.get_options()) {
    Argument argument{.names = {}, .value = {}, .choices = {}, .help = option->get_description()};
    for (const std::string& name : option->get_snames()) argument.names.push_back("-" + name);
    for (const std::string& name : option->get_lnames()) argument.names.push_back("--" + name);
    // TYPE:{one,other}
    const std::string type = option->get_type_size() == 0 ? "" : option->get_type_name();
    argument.value =
        argument.names.empty() ? option->get_name(true) : type.substr(0, type.find(':'));
    const size_t open = type.find('{'), close = type.find('}');
    if (open < close && close != type.npos) {
      std::istringstream choices(type.substr(open + 1, close - open - 1));
      for (std::string each; std::getline(choices, each, ',');) argument.choices.push_back(each);
    }
    arguments.push_back(argument);
  }
  return arguments;
}

}  // namespace host
