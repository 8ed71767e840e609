#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace host {

// What differs between systems. All texts are UTF-8.

// Opens standard input, output and error on the null device where they are closed, so that nothing
// that is opened later takes their numbers. To ReadSome and WriteSome they stay closed. Call it
// before anything else.
void OpenStandardDescriptors();

// A file for reading; -1, with the reason in errno, if it can't be opened.
int OpenFile(const std::string& name);
void CloseFile(int descriptor);

// Reads what is there, at most size octets, or waits for some. 0 at the end; -1 with the reason in
// errno. The area is at least 4,096 octets.
std::ptrdiff_t ReadSome(int descriptor, char* area, size_t size);

// Writes some of it and gives how much; -1 with the reason in errno.
std::ptrdiff_t WriteSome(int descriptor, std::string_view text);

// True if standard output is a terminal that understands colour sequences, unless the environment
// has NO_COLOR. Makes a terminal ready for them where that takes a call, until the program ends.
bool OutputTakesColour();

bool InputIsTerminal();
bool OutputIsTerminal();

}  // namespace host
