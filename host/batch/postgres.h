#pragma once

#include <optional>
#include <string>
#include <vector>

namespace host {

// A connection to a PostgreSQL server through libpq, which is loaded at run time. All functions
// throw Failure (kFileFault).
class Postgres {
 public:
  // The values as texts; none means null.
  using Row = std::vector<std::optional<std::string>>;

  // The address in libpq's forms: postgresql://user@host/database, or a list of keyword=value.
  explicit Postgres(const std::string& address);
  Postgres(const Postgres&) = delete;
  Postgres& operator=(const Postgres&) = delete;
  ~Postgres();

  // Runs one statement with the values of $1, $2, ... and gives its rows.
  std::vector<Row> Run(const std::string& statement, const Row& values = {});

 private:
  void* connection_ = nullptr;
};

}  // namespace host
