#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/batch/job_store.h"
#include "host/batch/line_queue.h"
#include "host/child_process.h"

namespace host {

// Runs the workers of a batch, one per reader. Only the supervisor writes to the store.
class Supervisor {
 public:
  struct Reader {
    std::string name;
    std::string doing;          // for people
    std::optional<size_t> row;  // the row that it works on
  };
  struct Hooks {
    std::function<void(const std::string&)> tell;          // prints a line for people
    std::function<void(const std::vector<Reader>&)> show;  // called a few times a second
    std::function<void(size_t row, RowState, const std::string& reason)> ended;
  };

  Supervisor(JobStore& store, Hooks hooks) : store_(store), hooks_(std::move(hooks)) {}

  // Starts a worker process with these arguments.
  void Start(const std::string& reader, const std::vector<std::string>& arguments);

  // Runs until no row waits and none is worked on, or until all workers have ended. With failFast
  // it begins no row once another one has failed, here or at another station. Gives the exit code:
  // 0; 1 if that is why it has ended; 4 or 5 after a worker's trouble; 130 after Ctrl-C. Throws
  // Failure (kFileFault) if the store cannot be written; then the workers halt.
  int Run(const std::string& scriptDigest, bool fresh, bool failFast);

  // True if a row of this run has no known end.
  bool HasLeftBegun() const { return leftBegun_; }

  // Begins no more rows.
  void Finish();

 private:
  struct Worker {
    Reader reader;
    std::unique_ptr<ChildProcess> process;
    std::optional<std::string> ready;  // the ATR of a card that waits for a row
    bool stopped = false;
    bool ended = false;
  };

  void Take(const LineQueue::Line& line);
  void TakeMessage(Worker& worker, const std::string& text);
  void TakeEnd(Worker& worker, const std::string& text);
  void Died(Worker& worker);
  void HandOut();
  void Answer(Worker& worker, const std::string& text) { answers_.emplace_back(&worker, text); }
  void SendAnswers();
  void Stop(const char* how);
  void HeedInterrupts();
  void HeedFailures();

  JobStore& store_;
  Hooks hooks_;
  std::vector<std::unique_ptr<Worker>> workers_;
  std::vector<std::pair<Worker*, std::string>> answers_;  // sent when the store is flushed
  LineQueue lines_;
  int interrupts_ = 0;
  size_t failed_ = 0;     // the rows that had failed before this run
  bool failing_ = false;  // a row has failed, so no further one begins
  bool leftBegun_ = false;
  int code_ = 0;
};

}  // namespace host
