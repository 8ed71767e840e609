#pragma once

#include <optional>
#include <string>
#include <vector>

namespace host {

// A connection to a PostgreSQL server, by libpq, which is loaded where it is there. Everything
// throws Failure (kFileFault).
class Postgres {
 public:
  // Texts; none for null.
  using Row = std::vector<std::optional<std::string>>;

  // As libpq takes it: postgresql://user@host/database or a list of keyword=value.
  explicit Postgres(const std::string& address);
  Postgres(const Postgres&) = delete;
  Postgres& operator=(const Postgres&) = delete;
  ~Postgres();

  // Runs one statement with $1, $2, ... and gives the rows that it gives.
  std::vector<Row> Run(const std::string& statement, const Row& values = {});

 private:
  void* connection_ = nullptr;
};

}  // namespace host
