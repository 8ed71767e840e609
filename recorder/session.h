#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "recordings/session_log.h"
#include "src/readers/winscard_types.h"

namespace recorder {

using recordings::Event;
using recordings::Steady;

// False if calls should be recorded but cannot be: the caller then sends nothing more. The first
// call begins the recording that the environment asks for.
bool Ready();

// Appends the event of a call, if there is a recording.
void Record(Event event, Steady::time_point begin, Steady::time_point end);

// The number of an opened reader, from 1 on; 0 for an unknown handle. Only the low 32 bits of a
// handle count: callers may change the others.
int64_t AddReader(winscard::SCARDHANDLE card);
int64_t ReaderOf(winscard::SCARDHANDLE card);

// Puts a command into its event, and hides the data that must not be shown.
void SetCommand(Event& event, const std::string& digits);

std::string ToHex(const void* octets, std::size_t count);
std::string CodeText(winscard::DWORD code);  // as 0x80100069

}  // namespace recorder
