#pragma once

#include <cstddef>
#include <string_view>

namespace host {

bool IsConsole(int descriptor);

// Like ReadSome and WriteSome, at a console. What is typed has its line end; a line that begins
// with Ctrl-Z is the end. EINTR after Ctrl-C, if that doesn't end the program.
std::ptrdiff_t ReadFromConsole(char* area, size_t size);
std::ptrdiff_t WriteToConsole(int descriptor, std::string_view text);

}  // namespace host
