#include "host/batch/database_store.h"

#include <nlohmann/json.hpp>

#include "host/failure.h"
#include "host/text.h"

namespace host {
namespace {

using Json = nlohmann::json;

// The server's time, which is the same for all stations.
const std::string kNow =
    "to_char(clock_timestamp() AT TIME ZONE 'UTC', 'YYYY-MM-DD\"T\"HH24:MI:SS.MS\"Z\"')";
constexpr const char* kLocks = "7824";  // the class of the stations' locks

constexpr const char* kTables[] = {
    "CREATE TABLE orvane_batch (script text NOT NULL, source text NOT NULL, columns jsonb NOT "
    "NULL)",
    "CREATE TABLE orvane_jobs (row integer PRIMARY KEY, data jsonb NOT NULL, "
    "state text NOT NULL DEFAULT 'waiting' "
    "CHECK (state IN ('waiting', 'begun', 'done', 'failed', 'abandoned')), "
    "time text, begun text, reader text, atr text, card text, reason text, station integer)",
    "CREATE INDEX orvane_jobs_waiting ON orvane_jobs (row) WHERE state = 'waiting'",
    "CREATE TABLE orvane_cards (card text PRIMARY KEY, row integer NOT NULL)",
    "CREATE SEQUENCE orvane_stations AS integer",
};

RowState StateOf(const std::optional<std::string>& name) {
  return FindRowState(name.value_or("")).value_or(RowState::kBegun);
}

}  // namespace

void LoadJobs(const std::string& address, const std::string& scriptDigest, const Table& table) {
  Postgres database(address);
  Json rows = Json::array();
  for (const TableRow& row : table.rows) rows.push_back(row.values);
  database.Run("BEGIN");
  for (const char* statement : kTables) database.Run(statement);
  database.Run("INSERT INTO orvane_batch VALUES ($1, $2, $3::jsonb)",
               {scriptDigest, table.digest, Json(table.columns).dump()});
  database.Run(
      "INSERT INTO orvane_jobs (row, data) "
      "SELECT ordinality, value FROM jsonb_array_elements($1::jsonb) WITH ORDINALITY",
      {rows.dump()});
  database.Run("COMMIT");
}

DatabaseStore::DatabaseStore(const std::string& address, const std::string& scriptDigest)
    : database_(address) {
  database_.Run("SET synchronous_commit = on");
  const auto batch = database_.Run("SELECT script, columns FROM orvane_batch");
  if (batch.size() != 1 || batch[0][0] != scriptDigest) {
    throw Failure(kScriptFault, "the database has the batch of another script; nothing sent");
  }
  columns_ = Json::parse(*batch[0][1]);
  station_ = *database_.Run("SELECT nextval('orvane_stations')")[0][0];
  database_.Run("SELECT pg_advisory_lock($1::integer, $2::integer)", {kLocks, station_});
}

std::vector<RowRecord> DatabaseStore::RecordsIn(Postgres& database) {
  std::vector<RowRecord> records;
  for (const Postgres::Row& row :
       database.Run("SELECT state, time, begun, reader, atr, card, reason FROM orvane_jobs "
                    "ORDER BY row")) {
    const auto text = [&](size_t at) { return row[at].value_or(""); };
    records.push_back({.state = StateOf(row[0]),
                       .time = text(1),
                       .begun = text(2),
                       .reader = text(3),
                       .atr = text(4),
                       .card = text(5),
                       .reason = text(6)});
  }
  return records;
}

RowCounts DatabaseStore::Count() {
  RowCounts counts;
  for (const auto& row : database_.Run("SELECT state, count(*) FROM orvane_jobs GROUP BY state")) {
    counts[StateOf(row[0])] = std::stoul(*row[1]);
  }
  return counts;
}

bool DatabaseStore::Waits() {
  return !database_.Run("SELECT 1 FROM orvane_jobs WHERE state = 'waiting' LIMIT 1").empty();
}

std::vector<size_t> DatabaseStore::LeftBegun() {
  left_.clear();
  std::vector<size_t> rows;
  for (const auto& row : database_.Run(
           "SELECT row, station FROM orvane_jobs WHERE state = 'begun' AND NOT EXISTS ("
           "SELECT 1 FROM pg_locks WHERE locktype = 'advisory' AND granted AND "
           "database = (SELECT oid FROM pg_database WHERE datname = current_database()) AND "
           "classid = $1::oid AND objid = station::oid) ORDER BY row",
           {kLocks})) {
    rows.push_back(std::stoul(*row[0]));
    left_[rows.back()] = row[1].value_or("");
  }
  return rows;
}

// Changes nothing if another station has already done the same and begun the row.
void DatabaseStore::Put(size_t row, RowState state, const std::string& reason) {
  const auto left = left_.find(row);
  database_.Run("UPDATE orvane_jobs SET state = $2, reason = $3, time = " + kNow +
                    " WHERE row = $1::integer AND "
                    "(state = 'failed' OR (state = 'begun' AND station = $4::integer))",
                {std::to_string(row), NameOf(state), reason,
                 left != left_.end() ? std::optional(left->second) : std::nullopt});
}

std::optional<Job> DatabaseStore::Begin(const std::string& reader, const std::string& atr) {
  const auto rows = database_.Run(
      "UPDATE orvane_jobs SET state = 'begun', reader = $1, atr = $2, station = $3::integer, "
      "card = NULL, reason = NULL, begun = " +
          kNow + ", time = " + kNow +
          " WHERE state = 'waiting' AND row = (SELECT row FROM orvane_jobs WHERE state = 'waiting' "
          "ORDER BY row FOR UPDATE SKIP LOCKED LIMIT 1) RETURNING row, data",
      {reader, atr, station_});
  if (rows.empty()) return std::nullopt;
  return Job{std::stoul(*rows[0][0]), Json::parse(*rows[0][1])};
}

std::string DatabaseStore::Identify(size_t row, const std::string& card) {
  database_.Run("INSERT INTO orvane_cards VALUES ($1, $2::integer) ON CONFLICT DO NOTHING",
                {card, std::to_string(row)});
  const auto known = database_.Run(
      "SELECT row, state FROM orvane_cards JOIN orvane_jobs USING (row) WHERE orvane_cards.card = "
      "$1",
      {card});
  const size_t owner = std::stoul(*known.at(0)[0]);
  if (owner != row) return WhyRefused(card, owner, StateOf(known[0][1]));
  const auto noted = database_.Run(
      "UPDATE orvane_jobs SET card = $2, time = " + kNow +
          " WHERE row = $1::integer AND state = 'begun' AND station = $3::integer RETURNING row",
      {std::to_string(row), card, station_});
  if (noted.empty()) throw Failure(kFileFault, "the database: somebody else has taken the row");
  return "";
}

void DatabaseStore::End(size_t row, RowState state, const std::string& reason) {
  const auto ended = database_.Run(
      "UPDATE orvane_jobs SET state = $2, reason = NULLIF($3, ''), time = " + kNow +
          " WHERE row = $1::integer AND state = 'begun' AND station = $4::integer RETURNING row",
      {std::to_string(row), NameOf(state), reason, station_});
  if (ended.empty()) throw Failure(kFileFault, "the database: somebody else has taken the row");
}

}  // namespace host
