#include "host/batch/postgres.h"

#include <algorithm>

#include "host/failure.h"
#include "host/platform.h"

namespace host {
namespace {

// libpq's functions; they are the same since its version 5.
struct Library {
  void* module = nullptr;
  void* (*connect)(const char*) = nullptr;
  int (*status)(const void*) = nullptr;
  const char* (*message)(const void*) = nullptr;
  void (*finish)(void*) = nullptr;
  void* (*run)(void*, const char*, int, const unsigned*, const char* const*, const int*, const int*,
               int) = nullptr;
  int (*resultStatus)(const void*) = nullptr;
  int (*rows)(const void*) = nullptr;
  int (*columns)(const void*) = nullptr;
  int (*isNull)(const void*, int, int) = nullptr;
  const char* (*value)(const void*, int, int) = nullptr;
  void (*clear)(void*) = nullptr;

  Library() {
    for (const char* name : {"libpq.so.5", "libpq.dll"}) {
      if (module == nullptr) module = LoadModule(name);
    }
    Find(connect, "PQconnectdb");
    Find(status, "PQstatus");
    Find(message, "PQerrorMessage");
    Find(finish, "PQfinish");
    Find(run, "PQexecParams");
    Find(resultStatus, "PQresultStatus");
    Find(rows, "PQntuples");
    Find(columns, "PQnfields");
    Find(isNull, "PQgetisnull");
    Find(value, "PQgetvalue");
    Find(clear, "PQclear");
  }

 private:
  template <typename Function>
  void Find(Function& function, const char* name) {
    void* const found = module != nullptr ? ModuleFunction(module, name) : nullptr;
    if (found == nullptr) {
      throw Failure(kFileFault, "there is no libpq, PostgreSQL's library (Debian: libpq5)");
    }
    function = reinterpret_cast<Function>(found);
  }
};

const Library& Libpq() {
  static const Library library;
  return library;
}

[[noreturn]] void Fail(const void* connection) {
  std::string text = Libpq().message(connection);
  while (text.ends_with('\n')) text.pop_back();
  std::replace(text.begin(), text.end(), '\t', ' ');  // a hint follows on its own line
  throw Failure(kFileFault, "the database: " + text);
}

}  // namespace

Postgres::Postgres(const std::string& address) : connection_(Libpq().connect(address.c_str())) {
  if (Libpq().status(connection_) == 0) return;
  try {
    Fail(connection_);
  } catch (const Failure&) {
    Libpq().finish(connection_);
    throw;
  }
}

Postgres::~Postgres() { Libpq().finish(connection_); }

std::vector<Postgres::Row> Postgres::Run(const std::string& statement, const Row& values) {
  constexpr int kCommandDone = 1, kRowsGiven = 2;
  std::vector<const char*> texts;
  for (const auto& value : values) texts.push_back(value ? value->c_str() : nullptr);
  const Library& pq = Libpq();
  void* const result = pq.run(connection_, statement.c_str(), static_cast<int>(texts.size()),
                              nullptr, texts.data(), nullptr, nullptr, 0);
  const int status = pq.resultStatus(result);
  std::vector<Row> rows;
  for (int row = 0; status == kRowsGiven && row < pq.rows(result); ++row) {
    Row& added = rows.emplace_back();
    for (int column = 0; column < pq.columns(result); ++column) {
      const bool null = pq.isNull(result, row, column) != 0;
      added.push_back(null ? std::nullopt
                           : std::optional<std::string>(pq.value(result, row, column)));
    }
  }
  pq.clear(result);
  if (status != kCommandDone && status != kRowsGiven) Fail(connection_);
  return rows;
}

}  // namespace host
