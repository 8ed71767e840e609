#pragma once

#include <functional>
#include <string>

#include "src/readers/winscard_types.h"

namespace recorder {

// Records a call that connects the reader of this name, and gives the call's code.
winscard::LONG Connect(std::string name, const std::function<winscard::LONG()>& connect,
                       const winscard::SCARDHANDLE* card, const winscard::DWORD* protocol);

}  // namespace recorder
