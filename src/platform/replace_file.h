#pragma once

#include <string>
#include <string_view>

namespace orvane::platform {

// Makes `octets` the whole content of a file in the current folder. The file need not exist. Its
// name is ASCII. On failure the result is false, the file is as it was, and nothing is left beside
// it. Folders, pipes and devices fail. A file size limit does not end the process.
//
// The octets go to a new file beside the old one, which only its owner can read. It gets the old
// one's owner, permissions, access-control list and attributes, is flushed to disk, and then
// replaces the old one in one step. A killed process leaves the old content or the new, and perhaps
// a file NAME.NUMBER.new, which the next call removes. Where a new file cannot be made or cannot
// replace the old one, the old one is overwritten; a process killed then may leave a mixture. A
// symbolic link stays; its target is replaced.
bool ReplaceFileContents(const std::string& name, std::string_view octets);

}  // namespace orvane::platform
