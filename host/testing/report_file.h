#pragma once

#include <fstream>
#include <string>

namespace host {

// A file for a report. It is emptied before the run, so that nobody takes an older report for this
// run's, and a failure to write shows before a command goes to a card.
class ReportFile {
 public:
  // Throws Failure (kFileFault).
  explicit ReportFile(const std::string& name);

  // Writes the whole report. Throws Failure (kFileFault); the file is then empty.
  void Write(const std::string& report);

 private:
  [[noreturn]] void Fail();

  std::string name_;
  std::ofstream out_;
};

}  // namespace host
