#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

enum class RowState {
  kWaiting,
  kBegun,  // commands may have gone to a card; the outcome is not known
  kDone,
  kFailed,
  kAbandoned,  // was begun and will not be tried again
};
inline constexpr size_t kRowStates = 5;

std::string NameOf(RowState state);
std::optional<RowState> FindRowState(std::string_view name);

// What is known of a row's last try, and the row's state. Empty: not known.
struct RowRecord {
  RowState state = RowState::kWaiting;
  std::string time = {};   // of the last change, 2026-11-23T14:33:15.123Z
  std::string begun = {};  // when the last try began
  std::string reader = {}, atr = {}, card = {};
  std::string reason = {};  // why it failed or waits again
};

// A row to be written to a card.
struct Job {
  size_t row;  // counted from 1
  std::vector<std::string> values;
};

struct RowCounts {
  size_t of[kRowStates] = {};
  size_t& operator[](RowState state) { return of[static_cast<size_t>(state)]; }
  size_t operator[](RowState state) const { return of[static_cast<size_t>(state)]; }
};

// The rows of a batch and their states, which outlive the process. A change of state counts once
// Flush has returned. All functions throw Failure (kFileFault) if the store cannot be read or
// written.
class JobStore {
 public:
  virtual ~JobStore() = default;

  virtual const std::vector<std::string>& Columns() const = 0;
  virtual std::vector<RowRecord> Records() = 0;
  virtual RowCounts Count() = 0;
  virtual bool Waits() { return Count()[RowState::kWaiting] > 0; }  // true if any row waits

  // The rows that were begun and that no station works on.
  virtual std::vector<size_t> LeftBegun() = 0;
  // Sets the state of a row that no station works on.
  virtual void Put(size_t row, RowState state, const std::string& reason) = 0;

  // Begins the next waiting row, for the card with this ATR in a reader. Empty if no row waits.
  virtual std::optional<Job> Begin(const std::string& reader, const std::string& atr) = 0;
  // Notes that a begun row is on this card. Gives the empty text, or why this card must not be
  // touched; then nothing is noted. A card belongs for good to the first row that was begun on it.
  virtual std::string Identify(size_t row, const std::string& card) = 0;
  virtual void End(size_t row, RowState state, const std::string& reason) {
    Put(row, state, reason);
  }
  virtual void Flush() = 0;
};

// The present time in the form of RowRecord.
std::string TimeNow();

// Seconds since 1970; empty for a text that is not in TimeNow's form.
std::optional<double> ReadTime(const std::string& time);

// Why a card is refused: it belongs to another row, or to this one, which is done.
std::string WhyRefused(const std::string& card, size_t row, RowState state);

}  // namespace host
