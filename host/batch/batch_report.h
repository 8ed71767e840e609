#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "host/batch/job_store.h"
#include "host/batch/supervisor.h"
#include "host/testing/test_report.h"

namespace host {

// For example "3 rows: 2 done, 1 failed".
std::string Numbers(const RowCounts& counts);

// All that is known of a row: a line, and the further lines of its reason.
std::string DescribeRow(size_t row, const RowRecord& record);

// Prints counts, rate, and the rows that failed, were begun or were given up.
void PrintStatus(std::ostream& out, const std::vector<RowRecord>& records);

// The batch as a report for the page of orvane test, one case per row.
TestReport ReportOf(const std::string& name, const std::vector<RowRecord>& records);

// The line of a terminal that shows the progress of a batch.
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
