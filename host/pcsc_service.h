#pragma once

#include <string>

namespace host {

// Asks PC/SC itself what it has against a card in this reader, since the library keeps PC/SC's
// codes to itself: a sentence without its full stop; empty if the card answers. With an empty name
// it asks for the service alone.
std::string PcscTrouble(const std::string& reader);

// Takes the power from the card in this reader and gives it back, which nothing in the library
// does. Gives what was in the way, as above. A connection that the library has to the card is of
// no use behind it.
std::string PowerOffAndOn(const std::string& reader);

}  // namespace host
