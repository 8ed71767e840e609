#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace host {

// The files that are installed beside the program, made from the description of its command line.
std::string ManualPage(const CLI::App& app);
std::string OptionsPage(const CLI::App& app);  // Markdown
std::string BashCompletion(const CLI::App& app);
std::string ZshCompletion(const CLI::App& app);

// An option or a positional argument, in the form that these files need.
struct Argument {
  std::vector<std::string> names;  // with their hyphens; none for a positional one
  std::string value;               // what follows it, such as FILE; empty for a flag
  std::vector<std::string> choices;
  std::string help;
};

std::vector<Argument> ArgumentsOf(const CLI::App& command);
std::vector<const CLI::App*> CommandsOf(const CLI::App& app);

}  // namespace host
