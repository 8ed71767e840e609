#pragma once

#include <map>
#include <string>
#include <vector>

#include "host/batch/job_store.h"
#include "host/batch/postgres.h"
#include "host/batch/table.h"

namespace host {

// The jobs of a batch in a PostgreSQL database, for several stations. A station holds a lock of the
// server while it is connected. So a begun row whose station holds no lock is abandoned work.
class DatabaseStore : public JobStore {
 public:
  // Throws Failure: kFileFault, and kScriptFault for a batch of another script.
  DatabaseStore(const std::string& address, const std::string& scriptDigest);

  const std::vector<std::string>& Columns() const override { return columns_; }
  std::vector<RowRecord> Records() override { return RecordsIn(database_); }
  RowCounts Count() override;
  bool Waits() override;
  std::vector<size_t> LeftBegun() override;
  void Put(size_t row, RowState state, const std::string& reason) override;
  std::optional<Job> Begin(const std::string& reader, const std::string& atr) override;
  std::string Identify(size_t row, const std::string& card) override;
  void End(size_t row, RowState state, const std::string& reason) override;
  void Flush() override {}  // the server has flushed what it confirms

  static std::vector<RowRecord> RecordsIn(Postgres& database);

 private:
  Postgres database_;
  std::vector<std::string> columns_;
  std::string station_;
  std::map<size_t, std::string> left_;  // rows left begun, and their stations
};

// Creates and fills the tables in a database that has none of them. Throws Failure (kFileFault).
void LoadJobs(const std::string& address, const std::string& scriptDigest, const Table& table);

}  // namespace host
