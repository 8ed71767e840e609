#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace host {

// True if standard output is a terminal that understands colour sequences, unless the environment
// has NO_COLOR. Makes it ready for them and for UTF-8 where that takes a call.
bool OutputTakesColour();

bool InputIsTerminal();

// Where this program's file stands.
std::filesystem::path ProgramFolder();

// The ending of a module's file name.
std::string_view ModuleExtension();

// Loads a module for the rest of the process's life; what is looked for under its bare file name
// later is then this one.
bool LoadModule(const std::filesystem::path& file);

// True if a module stands loaded under this vendor's name and exports such a function.
bool LoadedModuleExports(std::string_view vendor, const char* function);

// Reads a line from the terminal, without its end; none at the end of input.
std::optional<std::string> EditLine(const std::string& prompt);

// Offers a line for recall by the arrow keys, where there is line editing.
void RememberLine(const std::string& line);

}  // namespace host
