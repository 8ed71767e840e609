#include "host/batch/batch_report.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "host/platform.h"
#include "host/testing/markup.h"
#include "host/text.h"

namespace host {
namespace {

constexpr size_t kMostOfRate = 50;  // the rate is that of the last so many rows

size_t All(const RowCounts& counts) {
  size_t all = 0;
  for (const size_t each : counts.of) all += each;
  return all;
}

RowCounts CountOf(const std::vector<RowRecord>& records) {
  RowCounts counts;
  for (const RowRecord& record : records) ++counts[record.state];
  return counts;
}

bool HasEnded(const RowRecord& record) {
  return record.state == RowState::kDone || record.state == RowState::kFailed;
}

std::string ShownRate(double perMinute) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f a minute", perMinute);
  return text;
}

// The rate of the rows that ended last; empty for fewer than two.
std::string RateOf(const std::vector<RowRecord>& records) {
  std::vector<double> times;
  for (const RowRecord& record : records) {
    const std::optional<double> time = ReadTime(record.time);
    if (HasEnded(record) && time) times.push_back(*time);
  }
  std::sort(times.begin(), times.end());
  if (times.size() > kMostOfRate) times.erase(times.begin(), times.end() - kMostOfRate);
  if (times.size() < 2 || times.back() <= times.front()) return "";
  return ShownRate(static_cast<double>(times.size() - 1) * 60 / (times.back() - times.front()));
}

Moment MomentOf(const std::string& time) {
  const auto seconds = std::chrono::duration<double>(ReadTime(time).value_or(0));
  return Moment(std::chrono::duration_cast<Moment::duration>(seconds));
}

CaseState CaseStateOf(RowState state) {
  constexpr CaseState kStates[kRowStates] = {CaseState::kNotRun, CaseState::kBroken,
                                             CaseState::kPassed, CaseState::kFailed,
                                             CaseState::kBroken};
  return kStates[static_cast<size_t>(state)];
}

}  // namespace

std::string Numbers(const RowCounts& counts) {
  std::string text = Counted(All(counts), "row") + ':';
  for (const RowState state : {RowState::kDone, RowState::kFailed, RowState::kBegun,
                               RowState::kAbandoned, RowState::kWaiting}) {
    if (counts[state] == 0) continue;
    text +=
        (text.ends_with(':') ? " " : ", ") + std::to_string(counts[state]) + ' ' + NameOf(state);
  }
  return text;
}

std::string DescribeRow(size_t row, const RowRecord& record) {
  std::string text = NameOf(record.state) + "  row " + std::to_string(row);
  if (!record.begun.empty()) text += "  begun " + record.begun;
  if (!record.reader.empty()) text += "  in " + record.reader;
  if (!record.card.empty()) text += "  card " + record.card;
  if (!record.atr.empty()) text += "  ATR " + record.atr;
  text = Printable(text);
  if (!record.reason.empty()) text += "  " + PrintableLines(record.reason);
  return text;
}

void PrintStatus(std::ostream& out, const std::vector<RowRecord>& records) {
  out << Numbers(CountOf(records)) << '\n';
  if (const std::string rate = RateOf(records); !rate.empty()) out << rate << '\n';
  for (const RowState state : {RowState::kFailed, RowState::kBegun, RowState::kAbandoned}) {
    for (size_t at = 0; at < records.size(); ++at) {
      if (records[at].state == state) out << DescribeRow(at + 1, records[at]) << '\n';
    }
  }
}

TestReport ReportOf(const std::string& name, const std::vector<RowRecord>& records) {
  TestReport report;
  report.counted = "row";
  TestFile& file = report.files.emplace_back();
  file.name = name;
  std::optional<Moment> begin, end;
  for (size_t at = 0; at < records.size(); ++at) {
    const RowRecord& record = records[at];
    TestCase& row = file.cases.emplace_back();
    row.name = "row " + std::to_string(at + 1);
    if (!record.card.empty()) row.name += ", card " + record.card;
    row.line = at + 1;
    row.state = CaseStateOf(record.state);
    row.reason = record.reason;
    if (record.state == RowState::kBegun || record.state == RowState::kAbandoned) {
      row.reason = NameOf(record.state) + (record.reason.empty() ? "" : ": " + record.reason);
    }
    if (record.begun.empty()) continue;
    const Moment begun = MomentOf(record.begun), last = MomentOf(record.time);
    row.duration = last - begun;
    begin = begin ? std::min(*begin, begun) : begun;
    end = end ? std::max(*end, last) : last;
    row.steps.push_back({Step::Kind::kReader, 0, record.reader, 0});
    if (!record.atr.empty()) row.steps.push_back({Step::Kind::kAtr, 0, record.atr, 0});
  }
  file.begin = begin.value_or(std::chrono::system_clock::now());
  file.duration = report.duration = end.value_or(file.begin) - file.begin;
  return report;
}

void BatchProgress::Show(const RowCounts& counts, const std::vector<Supervisor::Reader>& readers) {
  const Clock::time_point now = Clock::now();
  if (!shown_ || now < next_) return;
  next_ = now + std::chrono::milliseconds(250);
  std::string text = "  " + Numbers(counts);
  if (ended_ > 0) {
    const double seconds = std::chrono::duration<double>(now - start_).count();
    const double each = seconds / static_cast<double>(ended_);
    const double left = std::ceil(each * static_cast<double>(counts[RowState::kWaiting]));
    text +=
        ", " + ShownRate(60 / each) + ", " +
        ShownDuration(std::chrono::duration_cast<Duration>(std::chrono::duration<double>(left))) +
        " left";
  }
  for (const Supervisor::Reader& reader : readers) {
    text += "  |  " + Printable(reader.name) + ' ' + Printable(reader.doing);
  }
  // A line that wraps could not be overwritten.
  const size_t room = OutputWidth() - 1;
  if (text.size() > room) text.resize(room);
  while (!text.empty() && (text.back() & 0x80) != 0) text.pop_back();
  out_ << '\r' << text << std::string(width_ - std::min(width_, text.size()), ' ') << std::flush;
  width_ = text.size();
}

void BatchProgress::Clear() {
  if (width_ > 0) out_ << '\r' << std::string(width_, ' ') << '\r' << std::flush;
  width_ = 0;
}

}  // namespace host
