#pragma once

#include <string>
#include <string_view>

namespace orvane::platform {

// Makes `octets` the whole content of a file of the current folder, which need not be there yet.
// Its name is ASCII. False if that failed: the file is as it was, and nothing is left beside it.
// Folders, pipes and devices are no files. A file size limit ends no process.
//
// A new file is written beside the old one, readable for its owner alone. Once it has reached the
// disk it has the old one's owner, permissions, access-control list and attributes, and takes its
// place in one step: a process that is killed leaves the old content or the new one, and perhaps a
// file NAME.NUMBER.new besides, which the next call removes. Where no such file can be made or take
// the place, the old one is overwritten, and being killed then may leave a mixture. A symbolic link
// stays what it is; its target is replaced.
bool ReplaceFileContents(const std::string& name, std::string_view octets);

}  // namespace orvane::platform
