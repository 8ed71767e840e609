#include "host/batch/supervisor.h"

#include <algorithm>
#include <chrono>
#include <nlohmann/json.hpp>
#include <utility>

#include "host/failure.h"
#include "host/platform.h"
#include "host/text.h"

namespace host {
namespace {

using Json = nlohmann::json;

constexpr std::chrono::milliseconds kBetweenLooks{100};
constexpr const char* kStop = R"({"do":"stop"})";
constexpr const char* kHalt = R"({"do":"halt"})";

}  // namespace

void Supervisor::Start(const std::string& reader, const std::vector<std::string>& arguments) {
  auto worker = std::make_unique<Worker>();
  worker->reader = {reader, "starts", std::nullopt};
  worker->process = std::make_unique<ChildProcess>(arguments);
  lines_.Read(worker->process->Output(), workers_.size());
  workers_.push_back(std::move(worker));
}

int Supervisor::Run(const std::string& scriptDigest, bool fresh, bool failFast) {
  failed_ = store_.Count()[RowState::kFailed];
  const Json begin = {
      {"do", "begin"}, {"script", scriptDigest}, {"columns", store_.Columns()}, {"fresh", fresh}};
  for (const auto& worker : workers_) WriteLine(worker->process->Input(), begin.dump());
  const auto alive = [](const auto& worker) { return !worker->ended; };
  while (std::any_of(workers_.begin(), workers_.end(), alive)) {
    // One flush serves all lines that have come so far.
    std::optional<LineQueue::Line> line = lines_.Next(kBetweenLooks);
    for (; line; line = lines_.Next(std::chrono::milliseconds(0))) Take(*line);
    HeedInterrupts();
    if (failFast) HeedFailures();
    HandOut();
    store_.Flush();
    SendAnswers();
    std::vector<Reader> readers;
    for (const auto& worker : workers_) {
      if (!worker->ended) readers.push_back(worker->reader);
    }
    hooks_.show(readers);
  }
  // Trouble that has left no row begun is not why rows are left.
  if (failing_ && !leftBegun_ && code_ <= kReaderFault) return kExpectationFailed;
  return code_;
}

void Supervisor::Take(const LineQueue::Line& line) {
  Worker& worker = *workers_[line.from];
  if (!line.text) return Died(worker);
  try {
    TakeMessage(worker, *line.text);
  } catch (const Json::exception&) {
    hooks_.tell(worker.reader.name + ": its worker is not understood");
    if (code_ == kDone) code_ = kReaderFault;
    if (!std::exchange(worker.stopped, true)) WriteLine(worker.process->Input(), kHalt);
  }
}

void Supervisor::TakeMessage(Worker& worker, const std::string& text) {
  const Json message = Json::parse(text);
  const std::string what = message.at("tell");
  if (what == "waits") {
    worker.reader.doing = "waits for " + message.at("for").get<std::string>();
  } else if (what == "ready") {
    worker.ready = message.at("atr");
    worker.reader.name = message.at("reader");
    worker.reader.doing = "has a card and waits for a row";
  } else if (what == "card" && worker.reader.row) {
    const std::string why = store_.Identify(*worker.reader.row, message.at("card"));
    Answer(worker, why.empty() ? R"({"do":"go"})" : Json({{"do", "refuse"}, {"why", why}}).dump());
  } else if (what == "end" && worker.reader.row) {
    TakeEnd(worker, text);
  } else if (what == "trouble") {
    code_ = std::max(code_, message.at("code").get<int>());
    hooks_.tell(worker.reader.name + ": " + message.at("reason").get<std::string>());
  }
}

void Supervisor::TakeEnd(Worker& worker, const std::string& text) {
  const Json message = Json::parse(text);
  const size_t row = *std::exchange(worker.reader.row, std::nullopt);
  const RowState state =
      FindRowState(message.at("state").get<std::string>()).value_or(RowState::kBegun);
  const std::string reason = message.at("reason");
  store_.End(row, state, reason);
  leftBegun_ = leftBegun_ || state == RowState::kBegun;
  worker.reader.doing = "changes the card";
  hooks_.ended(row, state, reason);
}

void Supervisor::Died(Worker& worker) {
  worker.ended = true;
  worker.ready.reset();
  const std::string how = worker.process->WaitForEnd();
  if (!worker.reader.row) {
    if (how.empty() || code_ != kDone) return;
    code_ = kReaderFault;
    return hooks_.tell(worker.reader.name + ": its worker has ended, " + how);
  }
  const size_t row = *std::exchange(worker.reader.row, std::nullopt);
  const std::string reason = "its worker has ended" + (how.empty() ? "" : ", " + how);
  store_.End(row, RowState::kBegun, reason);
  leftBegun_ = true;
  code_ = std::max<int>(code_, kReaderFault);
  hooks_.ended(row, RowState::kBegun, reason);
}

// Gives the next row to each worker with a card. If no row waits, a worker is kept as long as a row
// is worked on: that row may come back.
void Supervisor::HandOut() {
  bool none = false;
  for (const auto& worker : workers_) {
    if (!worker->ready || worker->stopped || none) continue;
    const std::optional<Job> job = store_.Begin(worker->reader.name, *worker->ready);
    none = !job;
    if (!job) continue;
    worker->ready.reset();
    worker->reader.row = job->row;
    worker->reader.doing = "row " + std::to_string(job->row);
    Answer(*worker, Json({{"do", "row"}, {"row", job->row}, {"values", job->values}}).dump());
  }
  const auto works = [](const auto& worker) { return worker->reader.row.has_value(); };
  if (std::any_of(workers_.begin(), workers_.end(), works)) return;
  if (none || !store_.Waits()) Stop(kStop);
}

void Supervisor::SendAnswers() {
  for (const auto& [worker, text] : std::exchange(answers_, {})) {
    if (!worker->ended) WriteLine(worker->process->Input(), text);
  }
}

void Supervisor::Stop(const char* how) {
  for (const auto& worker : workers_) {
    if (worker->ended || (worker->stopped && how == kStop)) continue;
    worker->stopped = true;
    WriteLine(worker->process->Input(), how);
  }
}

void Supervisor::Finish() { Stop(kStop); }

void Supervisor::HeedInterrupts() {
  const int interrupts = Interrupts();
  if (interrupts == interrupts_) return;
  interrupts_ = interrupts;
  code_ = kInterrupted;
  hooks_.tell(interrupts == 1 ? "stops once the rows that are begun are done; Ctrl-C halts them"
                              : "halts");
  Stop(interrupts == 1 ? kStop : kHalt);
}

// A failed row that another station lets wait again counts no more.
void Supervisor::HeedFailures() {
  if (failing_) return;
  const size_t failed = store_.Count()[RowState::kFailed];
  failing_ = failed > failed_;
  failed_ = std::min(failed_, failed);
  if (!failing_) return;
  if (store_.Waits()) {
    hooks_.tell(
        "stops: a row has failed; rows that are begun come to their end, the others stay waiting");
  }
  Finish();
}

}  // namespace host
