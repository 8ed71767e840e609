#include "host/testing/report_file.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "host/failure.h"
#include "host/text.h"

namespace host {
namespace {

std::filesystem::path PathOf(const std::string& name) {
  return std::u8string(name.begin(), name.end());
}

}  // namespace

ReportFile::ReportFile(const std::string& name) : name_(name) {
  out_.open(PathOf(name), std::ios::binary | std::ios::trunc);
  if (!out_) Fail();
}

void ReportFile::Write(const std::string& report) {
  errno = 0;
  out_ << report << std::flush;
  if (!out_) Fail();
}

void ReportFile::Fail() {
  const int reason = errno;
  std::error_code error;
  if (out_.is_open()) std::filesystem::resize_file(PathOf(name_), 0, error);
  throw Failure(kFileFault,
                "can't write " + Printable(name_) +
                    (reason != 0 ? ": " + std::generic_category().message(reason) : ""));
}

}  // namespace host
