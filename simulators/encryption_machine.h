#pragma once

// A simulated encryption machine on the loopback interface. It runs as long as the object lives.

#include <atomic>
#include <chrono>
#include <deque>
#include <map>
#include <mutex>
#include <thread>

#include "loopback_socket.h"

namespace simulator {

// What the machine does on a request.
struct Reaction {
  struct Part {
    std::chrono::milliseconds after;  // counted from the request
    Octets octets;
  };
  std::vector<Part> parts;  // empty: it never answers
  bool closes = false;      // closes the connection and does not answer
};

// Serves any number of connections at once, on a thread of its own. A request is what one receive
// brings. Without a prepared reaction, the answer is the request itself.
class EncryptionMachine {
 public:
  EncryptionMachine();
  ~EncryptionMachine();
  EncryptionMachine(const EncryptionMachine&) = delete;
  EncryptionMachine& operator=(const EncryptionMachine&) = delete;

  // The name that opens it: its address, a colon, and the port that the system chose.
  const std::string& Name() const { return name_; }

  // Prepares a reaction. The first one prepared is for the next request, and so on.
  void Prepare(Reaction reaction);

  // The events so far, one per line, each line with its end. Connections count from 1:
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

  mutable std::mutex mutex_;  // guards the members below, which the caller's thread uses too
  std::deque<Reaction> reactions_;
  std::string journal_;

  std::atomic<bool> ends_ = false;
  std::thread thread_;
};

}  // namespace simulator
