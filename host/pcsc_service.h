#pragma once

#include <string>

namespace host {

// Asks PC/SC itself what it has against a card in this reader, since the library keeps PC/SC's
// codes to itself: a sentence without its full stop; empty if the card answers. With an empty name
// it asks for the service alone.
std::string PcscTrouble(const std::string& reader);

}  // namespace host
