#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "host/reader_address.h"

namespace host {

// Throws Failure (kReaderFault) unless a payment HSM's address is an IPv4 address in numbers and
// dots with a port. The library would not report such an address, or would misread it.
void CheckMachine(const ReaderAddress& address);

// The name under which PC/SC knows a reader of its kind; empty if it has none.
std::string PcscName(const ReaderAddress& address);

// The names of the PC/SC readers, or why there are none.
std::string PcscReaders();

// Why a reader did not open: a sentence without its full stop.
std::string WhyNotOpened(const ReaderAddress& address);

// What is wrong with the card in an open reader; empty if that is not known.
std::string CardTrouble(const ReaderAddress& address);

// How often cards have entered or left a PC/SC reader, as far as PC/SC counts it, and whether one
// is there now.
struct CardMovements {
  uint32_t count;
  bool present;
  bool operator==(const CardMovements&) const = default;
};
// None if that is not known, as for readers of other kinds. Sends nothing to the card.
std::optional<CardMovements> AskForMovements(const ReaderAddress& address);

// Switches the power of the card in this reader off and on, which Orvane's library cannot do. Gives
// what went wrong, a sentence without its full stop; empty on success. The library's open
// connections to the card are useless afterwards.
std::string PowerOffAndOn(const std::string& reader);

}  // namespace host
