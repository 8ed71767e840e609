#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "host/batch/job_store.h"
#include "host/batch/supervisor.h"
#include "host/testing/test_report.h"

namespace host {

// 3 rows: 2 done, 1 failed
std::string Numbers(const RowCounts& counts);

// What is known of a row, in one line.
std::string DescribeRow(size_t row, const RowRecord& record);

// Counts, rate, the rows that failed and those in the middle.
void PrintStatus(std::ostream& out, const std::vector<RowRecord>& records);

// The batch as the page of orvane test shows it, a case a row.
TestReport ReportOf(const std::string& name, const std::vector<RowRecord>& records);

// A line of a terminal that shows how far a batch is.
class BatchProgress {
 public:
  BatchProgress(std::ostream& out, bool shown) : out_(out), shown_(shown) {}

  void RowEnded() { ++ended_; }
  void Show(const RowCounts& counts, const std::vector<Supervisor::Reader>& readers);
  void Clear();
  bool Shown() const { return shown_; }

 private:
  using Clock = std::chrono::steady_clock;

  std::ostream& out_;
  bool shown_;
  size_t ended_ = 0;  // in this run
  size_t width_ = 0;
  Clock::time_point start_ = Clock::now();
  Clock::time_point next_ = start_;
};

}  // namespace host
