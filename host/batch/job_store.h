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
  kBegun,  // commands may have gone to a card, and nothing tells how it ended
  kDone,
  kFailed,
  kAbandoned,  // it was begun and is not to be tried again
};
inline constexpr size_t kRowStates = 5;

std::string NameOf(RowState state);
std::optional<RowState> FindRowState(std::string_view name);

// What is known of a row: of its last try, but for the state. Empty: not known.
struct RowRecord {
  RowState state = RowState::kWaiting;
  std::string time = {};   // of the last change, 2026-11-23T14:33:15.123Z
  std::string begun = {};  // when
  std::string reader = {}, atr = {}, card = {};
  std::string reason = {};  // why it failed or waits again
};

// A row that is to be put on a card.
struct Job {
  size_t row;  // counted from 1
  std::vector<std::string> values;
};

struct RowCounts {
  size_t of[kRowStates] = {};
  size_t& operator[](RowState state) { return of[static_cast<size_t>(state)]; }
  size_t operator[](RowState state) const { return of[static_cast<size_t>(state)]; }
};

// The rows of a batch and their states, which outlive the process. What changes a state counts once
// Flush has returned. Everything throws Failure (kFileFault) where it can't be kept.
class JobStore {
 public:
  virtual ~JobStore() = default;

  virtual const std::vector<std::string>& Columns() const = 0;
  virtual std::vector<RowRecord> Records() = 0;
  virtual RowCounts Count() = 0;
  virtual bool Waits() { return Count()[RowState::kWaiting] > 0; }  // any row

  // The rows that were begun and that nobody works on.
  virtual std::vector<size_t> LeftBegun() = 0;
  // Sets the state of a row that nobody works on.
  virtual void Put(size_t row, RowState state, const std::string& reason) = 0;

  // Begins the next row that waits, for the card with this ATR in a reader.
  virtual std::optional<Job> Begin(const std::string& reader, const std::string& atr) = 0;
  // Notes which card a row that is begun is on. Gives why that card is not to be touched; then
  // nothing is noted. A card belongs to the first row that was begun on it, for good.
  virtual std::string Identify(size_t row, const std::string& card) = 0;
  virtual void End(size_t row, RowState state, const std::string& reason) {
    Put(row, state, reason);
  }
  virtual void Flush() = 0;
};

// The present time as in RowRecord.
std::string TimeNow();

// Seconds since 1970; none for what TimeNow does not give.
std::optional<double> ReadTime(const std::string& time);

// Why a card is refused that belongs to another row, or to this one, which is done.
std::string WhyRefused(const std::string& card, size_t row, RowState state);

}  // namespace host
