#pragma once

#include <fstream>
#include <string>

namespace host {

// A file for a report, which is emptied before the run: nobody takes an older report for this
// run's, and what can't be written is known before a command goes to a card.
class ReportFile {
 public:
  // Throws Failure (kFileFault).
  explicit ReportFile(const std::string& name);

  // Writes the whole report. Throws Failure (kFileFault), and leaves the file empty then.
  void Write(const std::string& report);

 private:
  [[noreturn]] void Fail();

  std::string name_;
  std::ofstream out_;
};

}  // namespace host
