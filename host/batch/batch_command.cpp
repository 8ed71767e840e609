#include "host/batch/batch_command.h"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <optional>

#include "host/batch/batch_report.h"
#include "host/batch/database_store.h"
#include "host/batch/journal_store.h"
#include "host/batch/sha256.h"
#include "host/batch/supervisor.h"
#include "host/batch/table.h"
#include "host/batch/table_check.h"
#include "host/batch/worker.h"
#include "host/failure.h"
#include "host/platform.h"
#include "host/readers.h"
#include "host/script.h"
#include "host/testing/html_report.h"
#include "host/testing/report_file.h"
#include "host/text.h"

namespace host {
namespace {

void Refuse(bool wrong, const std::string& message) {
  if (wrong) throw Failure(kUsageFault, message);
}

// Two workers must not write to the same card. A simulated reader is one for each of them.
void CheckReaders(const Options& options) {
  const std::vector<std::string>& readers = options.batch.readers;
  if (readers.size() < 2) return;
  std::map<std::string, std::string> named;
  for (const std::string& reader : readers) {
    std::string identity = reader;
    try {
      const ReaderAddress address = ReadReaderAddress(reader, options.kind);
      if (options.simulate && !KindLibrary(address.kind).empty()) continue;
      identity = IdentityOf(address);
    } catch (const Failure&) {  // its worker tells what is wrong with the address
    }
    const auto [other, isNew] = named.emplace(identity, reader);
    Refuse(!isNew,
           "a reader is named twice: " + Printable(other->second) + ", " + Printable(reader));
  }
}

// A worker gets its orders on standard input, so no file can come from there.
void CheckCommandLine(const Options& options) {
  const bool stations = !options.batch.jobs.empty();
  Refuse(options.file.empty(), "a script is needed: orvane batch FILE");
  Refuse(stations && !options.batch.journal.empty(), "--jobs is in the place of a journal");
  Refuse(stations && !options.batch.load && !options.batch.table.empty(),
         "--jobs is in the place of a table; orvane batch load puts one there");
  Refuse(!stations && options.batch.load, "a database is needed: --jobs ADDRESS");
  Refuse(options.batch.table.empty() && (!stations || options.batch.load),
         "a table is needed: --table FILE");
  Refuse(options.batch.journal.empty() && !stations, "a journal is needed: --journal FILE");
  const auto& variables = options.variableFiles;
  Refuse(options.file == "-" || options.batch.table == "-" ||
             std::find(variables.begin(), variables.end(), "-") != variables.end(),
         "a batch reads nothing from standard input");
  CheckReaders(options);
  Refuse(!options.record.empty() && options.batch.readers.size() > 1 &&
             options.record.find("%p") == options.record.npos,
         "several readers can't be recorded to one file: --record with %p in the name makes a file "
         "a reader");
}

// A report must not overwrite another file of the batch.
void CheckReport(const Options& options) {
  const auto path = [](const std::string& name) {
    return std::filesystem::path(std::u8string(name.begin(), name.end()));
  };
  for (const std::string& taken : {options.file, options.batch.table, options.batch.journal}) {
    std::error_code error;
    Refuse(!taken.empty() && !options.html.empty() &&
               (taken == options.html ||
                std::filesystem::equivalent(path(taken), path(options.html), error)),
           "a report would take the place of " + Printable(taken));
  }
}

Options ForCheck(const Options& options) {
  Options first = options;
  if (!options.batch.readers.empty()) first.reader = options.batch.readers.front();
  return first;
}

Table ReadCheckedTable(const Options& options, const Script& script) {
  Table table = ReadTable(options.batch.table);
  CheckTable(table, script, ForCheck(options), options.batch.key);
  return table;
}

class Batch {
 public:
  explicit Batch(const Options& options)
      : options_(options),
        script_(options.file),
        digest_(Sha256(script_.Text())),
        progress_(std::cout, !options.quiet && OutputIsTerminal()) {
    if (options.batch.jobs.empty()) {
      table_ = ReadCheckedTable(options, script_);
      store_ = std::make_unique<JournalStore>(table_, digest_, options.batch.journal);
    } else {
      store_ = std::make_unique<DatabaseStore>(options.batch.jobs, digest_);
    }
    if (!options.html.empty()) html_.emplace(options.html);
    if (!options.batch.logFolder.empty()) MakeLogFolder();
  }

  int Run() {
    NoteInterrupts(2);
    const bool fresh = IsFresh();
    Reopen();
    int code = kDone;
    if (store_->Count()[RowState::kWaiting] > 0) code = RunWorkers(fresh);
    progress_.Clear();
    const std::vector<RowRecord> records = store_->Records();
    if (html_) html_->Write(HtmlReport(ReportOf(script_.Name(), records)));
    if (output_) throw Failure(*output_);
    const RowCounts counts = store_->Count();
    if (!options_.quiet) std::cout << Numbers(counts) << '\n';
    return CodeOf(code, counts);
  }

 private:
  void MakeLogFolder() {
    std::error_code error;
    const std::filesystem::path folder(
        std::u8string(options_.batch.logFolder.begin(), options_.batch.logFolder.end()));
    std::filesystem::create_directories(folder, error);
    if (!std::filesystem::is_directory(folder, error)) {
      throw Failure(kFileFault, "can't make the folder " + Printable(options_.batch.logFolder));
    }
  }

  // True if no row was ever begun: then no card in a reader can be from an earlier run.
  bool IsFresh() {
    const std::vector<RowRecord> records = store_->Records();
    return std::all_of(records.begin(), records.end(),
                       [](const RowRecord& record) { return record.begun.empty(); });
  }

  // Lets rows of an earlier run wait again, or gives them up, as the options ask.
  void Reopen() {
    const std::vector<RowRecord> records = store_->Records();
    const std::vector<size_t> begun = store_->LeftBegun();
    if (!begun.empty() && !options_.batch.retryBegun && !options_.batch.skipBegun) {
      std::string text = "rows were begun and not finished; their cards may be half written:\n";
      for (const size_t row : begun) text += "  " + DescribeRow(row, records[row - 1]) + '\n';
      throw Failure(kUsageFault, text +
                                     "--retry-begun begins them again, --skip-begun gives them "
                                     "up; nothing sent");
    }
    for (const size_t row : begun) {
      if (options_.batch.retryBegun) store_->Put(row, RowState::kWaiting, "--retry-begun");
      if (options_.batch.skipBegun) store_->Put(row, RowState::kAbandoned, "--skip-begun");
    }
    for (size_t row = 1; options_.batch.retryFailed && row <= records.size(); ++row) {
      if (records[row - 1].state != RowState::kFailed) continue;
      store_->Put(row, RowState::kWaiting, "--retry-failed");
    }
    store_->Flush();
  }

  int RunWorkers(bool fresh) {
    Supervisor supervisor(
        *store_, {.tell = [&](const std::string& text) { Tell(supervisor, text); },
                  .show = [&](const auto& readers) { Show(supervisor, readers); },
                  .ended =
                      [&](size_t row, RowState state, const std::string& reason) {
                        progress_.RowEnded();
                        if (state == RowState::kDone) return;
                        Tell(supervisor,
                             "row " + std::to_string(row) + " " + NameOf(state) + ": " + reason);
                      }});
    const size_t readers = std::max<size_t>(1, options_.batch.readers.size());
    for (size_t at = 0; at < readers; ++at) {
      std::vector<std::string> arguments = options_.arguments;
      arguments.insert(arguments.begin() + 1, "--worker=" + std::to_string(at + 1));
      supervisor.Start(
          at < options_.batch.readers.size() ? options_.batch.readers[at] : "the only reader",
          arguments);
    }
    const int code = supervisor.Run(digest_, fresh, options_.failFast);
    leftBegun_ = supervisor.HasLeftBegun();
    return code;
  }

  // If standard output fails, the rows that are begun still run to their end.
  template <typename Write>
  void Guarded(Supervisor& supervisor, Write write) {
    if (output_) return;
    try {
      write();
    } catch (const Failure& failure) {
      output_ = failure;
      supervisor.Finish();
    }
  }

  void Tell(Supervisor& supervisor, const std::string& text) {
    Guarded(supervisor, [&] { progress_.Clear(); });
    PrintFailure(Failure(kDone, text));
  }

  void Show(Supervisor& supervisor, const std::vector<Supervisor::Reader>& readers) {
    if (progress_.Shown()) Guarded(supervisor, [&] { progress_.Show(store_->Count(), readers); });
  }

  // A row that another station works on is not left.
  int CodeOf(int code, const RowCounts& counts) {
    if (code == kInterrupted || code == kFileFault) return code;
    if (counts[RowState::kWaiting] > 0 || leftBegun_ || !store_->LeftBegun().empty()) {
      return code != kDone ? code : kReaderFault;
    }
    return counts[RowState::kFailed] > 0 ? kExpectationFailed : kDone;
  }

  const Options& options_;
  Script script_;
  std::string digest_;
  Table table_;
  std::unique_ptr<JobStore> store_;
  std::optional<ReportFile> html_;
  BatchProgress progress_;
  bool leftBegun_ = false;         // what the supervisor says of this run
  std::optional<Failure> output_;  // why nothing more can be shown
};

int ShowStatus(const Options& options) {
  if (!options.batch.jobs.empty()) {
    Postgres database(options.batch.jobs);
    PrintStatus(std::cout, DatabaseStore::RecordsIn(database));
    return kDone;
  }
  Refuse(options.batch.journal.empty(), "a journal is needed: --journal FILE");
  const Journal journal = ReadJournal(options.batch.journal);
  if (!journal.batch)
    throw Failure(kFileFault, Printable(options.batch.journal) + ": there is no journal yet");
  PrintStatus(std::cout, RecordsOf(journal));
  return kDone;
}

int Load(const Options& options) {
  const Script script(options.file);
  const Table table = ReadCheckedTable(options, script);
  LoadJobs(options.batch.jobs, Sha256(script.Text()), table);
  if (!options.quiet) std::cout << Counted(table.rows.size(), "row") << " loaded\n";
  return kDone;
}

}  // namespace

int RunBatch(const Options& options) {
  if (options.batch.worker > 0) return RunWorker(options);
  if (options.batch.status) return ShowStatus(options);
  CheckCommandLine(options);
  CheckReport(options);
  return options.batch.load ? Load(options) : Batch(options).Run();
}

}  // namespace host
