#include "host/batch/journal_store.h"

#include "host/failure.h"
#include "host/text.h"

namespace host {

JournalStore::JournalStore(const Table& table, const std::string& scriptDigest,
                           const std::string& file)
    : table_(table), out_(file), records_(table.rows.size()) {
  const BatchIdentity batch{scriptDigest, table.digest, table.rows.size()};
  const Journal journal = ReadJournal(file);
  for (const auto& [own, other, what] :
       {std::tuple(&batch.script, journal.batch ? &journal.batch->script : nullptr, "script"),
        std::tuple(&batch.table, journal.batch ? &journal.batch->table : nullptr, "table")}) {
    if (other == nullptr || *own == *other) continue;
    throw Failure(kScriptFault,
                  Printable(file) + " is the journal of another " + what +
                      ", or of this one as it was before it was changed; nothing sent");
  }
  out_.Cut(journal.whole);
  counts_[RowState::kWaiting] = records_.size();
  for (size_t row = 1; row <= records_.size(); ++row) waiting_.insert(row);
  for (const JournalEntry& entry : journal.entries) Take(entry);
  if (!journal.batch) {
    std::string text;
    const std::string time = TimeNow();
    for (size_t row = 1; row <= records_.size(); ++row) {
      text += JournalLine({.row = row, .time = time}, row == 1 ? &batch : nullptr);
    }
    out_.Append(text);
  }
  out_.Flush();
}

void JournalStore::Take(const JournalEntry& entry) {
  RowRecord& record = records_[entry.row - 1];
  --counts_[record.state];
  Apply(entry, record);
  ++counts_[record.state];
  if (record.state == RowState::kWaiting) {
    waiting_.insert(entry.row);
  } else {
    waiting_.erase(entry.row);
  }
  if (!entry.card.empty()) cards_.emplace(entry.card, entry.row);
}

void JournalStore::Add(const JournalEntry& entry) {
  out_.Append(JournalLine(entry));
  flushed_ = false;
  Take(entry);
}

std::vector<size_t> JournalStore::LeftBegun() {
  std::vector<size_t> rows;
  for (size_t row = 1; row <= records_.size(); ++row) {
    if (records_[row - 1].state == RowState::kBegun) rows.push_back(row);
  }
  return rows;
}

void JournalStore::Put(size_t row, RowState state, const std::string& reason) {
  Add({.row = row, .state = state, .time = TimeNow(), .reason = reason});
}

std::optional<Job> JournalStore::Begin(const std::string& reader, const std::string& atr) {
  if (waiting_.empty()) return std::nullopt;
  const size_t row = *waiting_.begin();
  Add({.row = row, .state = RowState::kBegun, .time = TimeNow(), .reader = reader, .atr = atr});
  return Job{row, table_.rows[row - 1].values};
}

std::string JournalStore::Identify(size_t row, const std::string& card) {
  const auto known = cards_.find(card);
  if (known != cards_.end() && known->second != row) {
    return WhyRefused(card, known->second, records_[known->second - 1].state);
  }
  Add({.row = row, .state = RowState::kBegun, .time = TimeNow(), .card = card});
  return "";
}

void JournalStore::Flush() {
  if (!flushed_) out_.Flush();
  flushed_ = true;
}

}  // namespace host
