#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "host/batch/job_store.h"

namespace host {

// The batch that a journal belongs to.
struct BatchIdentity {
  std::string script, table;  // digests
  size_t rows = 0;
};

// A line of a journal: a row's new state, or news of a begun row.
struct JournalEntry {
  size_t row = 0;
  RowState state = RowState::kWaiting;
  std::string time = {}, reader = {}, atr = {}, card = {}, reason = {};  // empty: no news
};

// A journal is a text that only grows, one JSON object per line. The first line also names the
// batch. The last member of each line is its checksum: the first digits of the SHA-256 of the line
// up to there.
struct Journal {
  std::optional<BatchIdentity> batch;  // none: the journal is empty
  std::vector<JournalEntry> entries;
  // The number of octets in whole lines. A line without its end was cut off while it was written;
  // its news never counted.
  size_t whole = 0;
};

// A missing file is an empty journal. Throws Failure (kFileFault), also for a damaged line.
Journal ReadJournal(const std::string& file);

// The line with its line feed.
std::string JournalLine(const JournalEntry& entry, const BatchIdentity* batch = nullptr);

// The rows after all entries.
std::vector<RowRecord> RecordsOf(const Journal& journal);

// Applies an entry to a record.
void Apply(const JournalEntry& entry, RowRecord& record);

}  // namespace host
