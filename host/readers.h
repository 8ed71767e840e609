#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/command.h"
#include "host/reader_address.h"
#include "host/response.h"

namespace host {

// Puts a simulator in the place of the kind's vendor library, if it has one. Loads it from the
// folder simulators beside the program or in the installation. Throws Failure (kReaderFault) if
// there is none.
void LoadSimulator(int32_t kind);

// Puts a fresh card with this serial number of 16 digits into the readers of the kind's simulator,
// or the recording at its first command again. LoadSimulator must have loaded it.
void FeedSimulator(int32_t kind, const std::string& serialNumber);

// The readers of one kind. If its ports cannot be found out, gives this many.
std::vector<std::string> ListReaders(int32_t kind, int32_t ports);

// A text that is the same for all addresses of one reader. Lists the readers of the kind if it
// takes that: for PC/SC, and for names with blanks. A reader that is not listed has the address as
// it is written.
std::string IdentityOf(ReaderAddress address);

// The sixteen readers of the library, as scripts use them. Every failure is thrown as Failure
// (kReaderFault). The destructor closes all open readers.
class Readers {
 public:
  // defaultKind is for addresses without a kind. simulate loads a kind's simulator before one of
  // its readers is opened. defaultReader is the one that OpenDefault opens without simulate; it may
  // be empty. coldReset switches a card's power off and on before its reader is opened for the
  // first time.
  Readers(int32_t defaultKind, bool simulate, std::string defaultReader, bool coldReset = false)
      : defaultKind_(defaultKind),
        simulate_(simulate),
        coldReset_(coldReset),
        defaultReader_(std::move(defaultReader)) {}
  ~Readers() { CloseAll(); }
  Readers(const Readers&) = delete;
  Readers& operator=(const Readers&) = delete;

  void CloseAll();

  // True after a reader was named or the default one has opened.
  bool Used() const { return used_; }
  size_t Number() const { return current_; }  // of the current reader
  bool IsOpen() const { return places_[current_] && places_[current_]->open; }
  // Loads all simulators, if simulate is set.
  void PrepareLists() const;

  // True if the current reader is simulated.
  bool Simulated() const;
  // Of the current reader; if none was opened, of the one that OpenDefault would open.
  Framing CurrentFraming() const;

  void Select(std::string_view number);
  // Opens the current reader and gives the address that it opened.
  ReaderAddress Open(std::string_view text);
  // Opens the reader for a script that names none: a simulated one if simulate is set, else the
  // default one, else the only PC/SC reader.
  ReaderAddress OpenDefault();
  void ChooseSlot(const std::string& slot);
  // Gives the ATR. If a PC/SC reader gives none, opens it again and retries once: another program
  // may have reset its card, or the service may have restarted.
  std::string ResetCard();
  // Throws if the command cannot be sent at all.
  void Check(const CardCommand& command);
  // If a payment HSM gives no response, closes the connection, so that a late response is not taken
  // for the next command's. The next use opens it again.
  Response Send(const CardCommand& command);
  // Of the current reader; if none was opened, of the one that OpenDefault would open.
  int32_t CurrentKind() const;

 private:
  // A reader that was opened. If it is closed now, its next use opens it again.
  struct Place {
    ReaderAddress address;
    bool open = true;
    std::string slot;  // empty: none chosen
  };

  void ColdResetOnce(const ReaderAddress& address);
  ReaderAddress OpenAddress(std::string_view text);
  Place& Use();
  static bool Connect(const ReaderAddress& address, bool again);
  static bool Reopen(Place& place);
  static void Close(Place& place);

  int32_t defaultKind_;
  bool simulate_;
  bool coldReset_;
  std::string defaultReader_;
  std::set<std::string> coldResets_;  // the readers whose cards had one
  bool used_ = false;
  size_t current_ = 0;
  std::array<std::optional<Place>, kReaders> places_;
};

}  // namespace host
