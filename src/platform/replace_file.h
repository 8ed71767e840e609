#pragma once

#include <string>
#include <string_view>

namespace orvane::platform {

// Makes `octets` the whole content of a file, which need not be there yet. False if that failed:
// the file is as it was, and nothing is left beside it.
//
// A new file is written beside the old one and takes its place in one step, with its permissions,
// once it has reached the disk: a process that is killed leaves the old content or the new one,
// and perhaps a file NAME.NUMBER.new besides. Where no such file can be made or take the place,
// the old one is overwritten, and being killed then may leave a mixture. A symbolic link stays
// what it is; its target is replaced.
bool ReplaceFileContents(const std::string& path, std::string_view octets);

}  // namespace orvane::platform
