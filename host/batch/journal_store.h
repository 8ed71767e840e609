#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "host/append_file.h"
#include "host/batch/job_store.h"
#include "host/batch/journal.h"
#include "host/batch/table.h"

namespace host {

// The jobs of a batch in a table, and a journal of their states.
class JournalStore : public JobStore {
 public:
  // Creates the journal, or continues an existing one. Throws Failure: kFileFault, and kScriptFault
  // for a journal of another script or table.
  JournalStore(const Table& table, const std::string& scriptDigest, const std::string& file);

  const std::vector<std::string>& Columns() const override { return table_.columns; }
  std::vector<RowRecord> Records() override { return records_; }
  RowCounts Count() override { return counts_; }
  std::vector<size_t> LeftBegun() override;
  void Put(size_t row, RowState state, const std::string& reason) override;
  std::optional<Job> Begin(const std::string& reader, const std::string& atr) override;
  std::string Identify(size_t row, const std::string& card) override;
  void Flush() override;

 private:
  void Add(const JournalEntry& entry);
  void Take(const JournalEntry& entry);

  const Table& table_;
  AppendFile out_;
  std::vector<RowRecord> records_;
  RowCounts counts_;
  std::set<size_t> waiting_;
  std::map<std::string, size_t> cards_;  // the row of each card
  bool flushed_ = true;
};

}  // namespace host
