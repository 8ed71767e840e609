#pragma once

#include <string>
#include <vector>

#include "fuzz/answer.h"

namespace orvane_fuzz {

// The libraries of all reader makers and the network, played by the input: every call into them
// takes the input's next line if that is an Answer, and works well otherwise. They stand in for
// platform/module.h and platform/socket.h.

// Where the answers come from, until the next call.
void AnswerFrom(Input& input);

// From now on there is no such library, or no such function to be found in any.
void Hide(std::string name);

// The commands that reached a card since the last call of this function, as octets.
std::vector<std::string> TakeSentCommands();

// The library that threw the last exception since the last call of this function; empty if none
// did.
std::string TakeThrower();

// Every library unloaded and every list given back. Not every socket closed: a tool that opens
// again drops the connection that it had.
void ExpectAllReleased();

}  // namespace orvane_fuzz
