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

// Puts a simulator in the place of the kind's vendor library, if it has one: loads it from the
// folder simulators beside the program, or of the installed layout. Throws Failure (kReaderFault)
// if there is none.
void LoadSimulator(int32_t kind);

// Puts a fresh card with this serial number, 16 digits, into the readers of the kind's simulator,
// or the recording at its first command again. LoadSimulator has loaded it.
void FeedSimulator(int32_t kind, const std::string& serialNumber);

// The readers of one kind, offering this many ports where ports can't be asked for.
std::vector<std::string> ListReaders(int32_t kind, int32_t ports);

// The sixteen readers of the library, as scripts use them. Every failure is thrown as Failure
// (kReaderFault). What is open is closed at the end.
class Readers {
 public:
  // defaultKind is for addresses without one. simulate loads a kind's simulator before a
  // reader of it is opened. defaultReader is what OpenDefault opens otherwise; it may be empty.
  // coldReset takes the power from a card and gives it back before its reader is opened for the
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

  // True once a reader has been named or the default one has opened.
  bool Used() const { return used_; }
  size_t Number() const { return current_; }  // of the current reader
  bool IsOpen() const { return places_[current_] && places_[current_]->open; }
  // Loads all simulators, if simulate says so.
  void PrepareLists() const;

  // True if a simulator stands behind the current reader.
  bool Simulated() const;
  // Of the current reader; of none, that of the one that OpenDefault would open.
  Framing CurrentFraming() const;

  void Select(std::string_view number);
  // Opens the current reader, and gives what it opened.
  ReaderAddress Open(std::string_view text);
  // Opens the reader that is meant where none is named: a simulated one if simulate says so, else
  // the default one, else the only PC/SC reader that there is.
  ReaderAddress OpenDefault();
  void ChooseSlot(const std::string& slot);
  // The ATR. A PC/SC reader that gives none is opened afresh and asked once more: another program
  // may have reset its card, or the service may have restarted.
  std::string ResetCard();
  // Makes sure that the command can be sent at all.
  void Check(const CardCommand& command);
  // Without a response the connection to a payment HSM is closed, so that a response that
  // comes late is not taken for the next command's; the next use opens it afresh.
  Response Send(const CardCommand& command);
  // Of the current reader; of none, that of the one that OpenDefault would open.
  int32_t CurrentKind() const;

 private:
  // A reader that has been opened. Where it is not open now, its next use opens it afresh.
  struct Place {
    ReaderAddress address;
    bool open = true;
    std::string slot;  // empty: none was chosen
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
  std::set<std::string> coldResets_;  // the readers whose cards have had theirs
  bool used_ = false;
  size_t current_ = 0;
  std::array<std::optional<Place>, 16> places_;
};

}  // namespace host
