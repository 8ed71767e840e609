// Edits the table of exported names in a module file of this platform.
#pragma once

#include <string>
#include <vector>

namespace support {

// Changes the file's octets in place so that a look-up of this exported name finds nothing; all
// other names stay. False, and nothing changed, if the name isn't exported. The file is one that
// the tests' own build has made: it is not checked.
bool HideExport(std::vector<char>& file, const std::string& name);

}  // namespace support
