#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "host/batch/job_store.h"

namespace host {

// What a journal belongs to.
struct BatchIdentity {
  std::string script, table;  // digests
  size_t rows = 0;
};

// A line of a journal: a row's new state, or what has become known of a row that is begun.
struct JournalEntry {
  size_t row = 0;
  RowState state = RowState::kWaiting;
  std::string time = {}, reader = {}, atr = {}, card = {}, reason = {};  // empty: not told
};

// A journal is a text to which lines are added, each of them a JSON object. The first line also has
// what the journal belongs to. The last member of each is the checksum, the first digits of the
// SHA-256 of what stands before it in the line.
struct Journal {
  std::optional<BatchIdentity> batch;  // none: nothing is in it
  std::vector<JournalEntry> entries;
  // How many octets are whole lines. A line without an end is one whose writing was cut off: what
  // it tells never counted.
  size_t whole = 0;
};

// A file that is not there is an empty journal. Throws Failure (kFileFault) also for a line that is
// damaged.
Journal ReadJournal(const std::string& file);

// With the line feed behind it.
std::string JournalLine(const JournalEntry& entry, const BatchIdentity* batch = nullptr);

// The rows behind all entries.
std::vector<RowRecord> RecordsOf(const Journal& journal);

// Changes a record as the entry says.
void Apply(const JournalEntry& entry, RowRecord& record);

}  // namespace host
