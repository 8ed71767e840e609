#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/answer.h"
#include "host/command.h"
#include "host/reader_address.h"

namespace host {

// Puts the simulators in the vendor libraries' places: loads every module of the folder simulators
// beside the program, or of the installed layout. Throws Failure (kReaderFault) if there is none.
void LoadSimulators();

// The readers of one kind, offering this many ports where ports can't be asked for.
std::vector<std::string> ListReaders(int32_t kind, int32_t ports);

// The sixteen readers of the library, as scripts use them. Every failure is thrown as Failure
// (kReaderFault). What is open is closed at the end.
class Readers {
 public:
  // defaultKind is for addresses without one. simulate loads the simulators before the first
  // reader is opened; they are loaded anyway if that first reader is a simulated one.
  Readers(int32_t defaultKind, bool simulate) : defaultKind_(defaultKind), simulate_(simulate) {}
  ~Readers();
  Readers(const Readers&) = delete;
  Readers& operator=(const Readers&) = delete;

  // True once any reader has been asked for.
  bool Used() const { return used_; }
  // True if a simulator stands behind the current reader.
  bool Simulated() const;
  // Of the current reader; of none, the default kind's.
  Framing CurrentFraming() const;

  void Select(std::string_view number);
  // Opens the current reader, and gives what it opened.
  ReaderAddress Open(std::string_view text);
  void ChooseSlot(const std::string& slot);
  std::string ResetCard();  // the ATR
  Answer Send(const Command& command);

 private:
  void Prepare(const ReaderAddress& address);
  int32_t OpenKind() const;

  int32_t defaultKind_;
  bool simulate_;
  bool used_ = false;
  bool simulated_ = false;
  size_t current_ = 0;
  std::array<std::optional<int32_t>, 16> kinds_;  // of the readers that are open
};

}  // namespace host
