#pragma once

#include <sys/types.h>

#include <string>

// The PC/SC service pcscd with the virtual reader of vsmartcard-vpcd, for as long as this object
// lives. One that runs already is used and left running; else one is started and stopped. Only one
// object on a machine at a time: another program's waits.
class PcscService {
 public:
  PcscService();
  ~PcscService();
  PcscService(const PcscService&) = delete;
  PcscService& operator=(const PcscService&) = delete;

  // The package or the right that this machine lacks for the service; empty if it lacks nothing.
  const std::string& Lack() const { return lack_; }
  // What went wrong at the start; empty if the service runs.
  const std::string& Fault() const { return fault_; }

 private:
  void Start();
  void Stop();

  int lock_;
  pid_t process_ = -1;
  std::string lack_;
  std::string fault_;
};
