#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "host/reader_address.h"

namespace host {

// Throws Failure (kReaderFault) where the library would not find out that the address of an
// payment HSM is no numbers-and-dots IPv4 address with a port, or take it for another.
void CheckMachine(const ReaderAddress& address);

// The name that PC/SC has for a reader of its kind; empty if it has none.
std::string PcscName(const ReaderAddress& address);

// The PC/SC readers that there are, or why there is none.
std::string PcscReaders();

// Why a reader did not open; a sentence without its full stop.
std::string WhyNotOpened(const ReaderAddress& address);

// What is wrong with the card of a reader that is open; empty if that can't be told.
std::string CardTrouble(const ReaderAddress& address);

// How often cards have come into a PC/SC reader and gone, as far as PC/SC counts them, and whether
// one is there.
struct CardMovements {
  uint32_t count;
  bool present;
  bool operator==(const CardMovements&) const = default;
};
// None where that can't be told, as of a reader of another kind. Nothing goes to the card.
std::optional<CardMovements> AskForMovements(const ReaderAddress& address);

// Takes the power from the card in this reader and gives it back, which nothing in the library
// does. Gives what was in the way: a sentence without its full stop; empty if nothing was. A
// connection that the library has to the card is of no use behind it.
std::string PowerOffAndOn(const std::string& reader);

}  // namespace host
