#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "recordings/session_log.h"
#include "src/readers/winscard_types.h"

namespace recorder {

using recordings::Event;
using recordings::Steady;

// False if calls are to be recorded and can't be: nothing more is sent then. Asked for the first
// time, it begins what the environment asks for.
bool Ready();

// Appends the event of a call, unless nothing is recorded.
void Record(Event event, Steady::time_point begin, Steady::time_point end);

// The numbers of opened readers, from 1 on; 0 for a handle that is not known. A handle counts with
// its low 32 bits, of which callers may make the rest.
int64_t AddReader(winscard::SCARDHANDLE card);
int64_t ReaderOf(winscard::SCARDHANDLE card);

// Puts a command into its event, with the data hidden that are not to be shown.
void SetCommand(Event& event, const std::string& digits);

std::string ToHex(const void* octets, std::size_t count);
std::string CodeText(winscard::DWORD code);  // as 0x80100069

}  // namespace recorder
