#include "encryption_machine.h"

#include <algorithm>

namespace simulator {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kLongestWait = 5;  // ms between looks for its end and for due octets
constexpr size_t kListening = 0;

}  // namespace

EncryptionMachine::EncryptionMachine() {
  sockets_.emplace_back();
  connections_.push_back(0);
  name_ = "127.0.0.1:" + std::to_string(sockets_[kListening].Port());
  thread_ = std::thread([this] { Run(); });
}

EncryptionMachine::~EncryptionMachine() {
  ends_ = true;
  thread_.join();
}

void EncryptionMachine::Prepare(Reaction reaction) {
  const std::lock_guard lock(mutex_);
  reactions_.push_back(std::move(reaction));
}

std::string EncryptionMachine::Journal() const {
  const std::lock_guard lock(mutex_);
  return journal_;
}

void EncryptionMachine::Run() {
  while (!ends_) {
    if (const auto place = LoopbackSocket::WaitForOne(sockets_, kLongestWait)) Serve(*place);
    SendWhatIsDue();
  }
}

void EncryptionMachine::Serve(size_t place) {
  if (place == kListening) {
    LoopbackSocket connection = sockets_[kListening].Accept();
    sockets_.push_back(std::move(connection));
    connections_.push_back(++opened_);
    Note(opened_, "opens");
    return;
  }
  const Octets request = sockets_[place].Receive();
  if (request.empty()) return Close(place);
  Note(connections_[place], "sends " + ToHex(request));
  const Reaction reaction = NextReaction().value_or(Reaction{{{{}, request}}});
  if (reaction.closes) return Close(place);
  for (const Reaction::Part& part : reaction.parts) {
    due_.push_back({Clock::now() + part.after, connections_[place], part.octets});
  }
}

void EncryptionMachine::SendWhatIsDue() {
  const auto now = Clock::now();
  for (const Due& due : due_) {
    const auto found = std::find(connections_.begin(), connections_.end(), due.connection);
    if (due.at > now || found == connections_.end()) continue;
    sockets_[static_cast<size_t>(found - connections_.begin())].Send(due.octets);
  }
  std::erase_if(due_, [&](const Due& due) { return due.at <= now; });
}

std::optional<Reaction> EncryptionMachine::NextReaction() {
  const std::lock_guard lock(mutex_);
  if (reactions_.empty()) return std::nullopt;
  Reaction reaction = std::move(reactions_.front());
  reactions_.pop_front();
  return reaction;
}

void EncryptionMachine::Close(size_t place) {
  Note(connections_[place], "closes");
  sockets_.erase(sockets_.begin() + static_cast<std::ptrdiff_t>(place));
  connections_.erase(connections_.begin() + static_cast<std::ptrdiff_t>(place));
}

void EncryptionMachine::Note(int connection, const std::string& event) {
  const std::lock_guard lock(mutex_);
  journal_ += std::to_string(connection) + ' ' + event + '\n';
}

}  // namespace simulator
