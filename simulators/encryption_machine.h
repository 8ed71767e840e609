#pragma once

// A simulated encryption machine on the loopback interface, for as long as this object lives.

#include <atomic>
#include <chrono>
#include <deque>
#include <map>
#include <mutex>
#include <thread>

#include "loopback_socket.h"

namespace simulator {

// What the machine does upon a request.
struct Reaction {
  struct Part {
    std::chrono::milliseconds after;  // counted from the request
    Octets octets;
  };
  std::vector<Part> parts;  // none: no answer ever
  bool closes = false;      // the connection, instead of any answer
};

// It serves any number of connections at once, on a thread of its own. A request is what one
// receive brings; without another reaction being prepared, the answer is the request itself.
class EncryptionMachine {
 public:
  EncryptionMachine();
  ~EncryptionMachine();
  EncryptionMachine(const EncryptionMachine&) = delete;
  EncryptionMachine& operator=(const EncryptionMachine&) = delete;

  // The name that opens it: its address, a colon and its port, which the system chooses.
  const std::string& Name() const { return name_; }

  // Prepares the reaction to a coming request: the first one prepared goes to the next request.
  void Prepare(Reaction reaction);

  // What has happened so far, one line each, every line ended by '\n'. Connections count from 1:
  //   1 opens
  //   1 sends 00112233
  //   1 closes
  std::string Journal() const;

 private:
  struct Due {
    std::chrono::steady_clock::time_point at;
    int connection;
    Octets octets;
  };

  void Run();
  void SendWhatIsDue();
  void Serve(size_t place);
  void Note(int connection, const std::string& event);
  std::optional<Reaction> NextReaction();
  void Close(size_t place);

  std::string name_;
  std::vector<LoopbackSocket> sockets_;  // the listening one first
  std::vector<int> connections_;         // the number of each socket; 0 of the listening one
  std::deque<Due> due_;
  int opened_ = 0;

  mutable std::mutex mutex_;  // for what the caller's thread sees, which follows
  std::deque<Reaction> reactions_;
  std::string journal_;

  std::atomic<bool> ends_ = false;
  std::thread thread_;
};

}  // namespace simulator
