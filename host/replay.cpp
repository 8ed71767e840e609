#include "host/replay.h"

#include <orvane.h>

#include <algorithm>
#include <filesystem>
#include <utility>

#include "host/failure.h"
#include "host/platform.h"
#include "host/text.h"

namespace host {
namespace {

using recordings::EventType;
using recordings::RecordedEvent;

Replay* current = nullptr;

template <typename Function>
Function* SimulatorFunction(void* simulator, const char* name) {
  return reinterpret_cast<Function*>(ModuleFunction(simulator, name));
}

// The octets in groups, in the trace's form; hidden digits are *.
std::string Shown(const std::string& digits, bool hidden) {
  if (!hidden) return SpacedOctets(digits);
  return SpacedOctets(recordings::WithoutData(digits, recordings::FindParts(digits)));
}

}  // namespace

recordings::Recording ReadRecordingFile(const std::string& file) {
  try {
    return recordings::ReadRecording(std::u8string(file.begin(), file.end()));
  } catch (const recordings::Fault& fault) {
    const std::string name = Printable(file);
    if (fault.Line() == 0) throw Failure(kFileFault, name + ": " + fault.what());
    throw ScriptFailure(kScriptFault,
                        name + ":" + std::to_string(fault.Line()) + ": " + fault.what());
  }
}

Replay::Replay(const std::string& file, bool anyOrder)
    : file_(file), anyOrder_(anyOrder), recording_(ReadRecordingFile(file)) {
  for (const RecordedEvent& event : recording_.events) {
    if (event.type != EventType::kOpen || event.kind != KindName(ReaderKindTcp)) continue;
    throw ScriptFailure(kScriptFault, Printable(file) + ":" + std::to_string(event.line) +
                                          ": a payment HSM was recorded: that is no card");
  }
  current = this;
}

Replay::~Replay() { current = nullptr; }

void Replay::BeginIn(int32_t kind, void* simulator) {
  if (simulators_.contains(kind)) return;
  const auto begin =
      SimulatorFunction<const char*(const char*, int32_t)>(simulator, "SimulatorReplay");
  simulators_[kind] = SimulatorFunction<Differed>(simulator, "SimulatorDiffered");
  if (begin == nullptr || simulators_[kind] == nullptr) {
    throw Failure(kReaderFault, "the simulator of " + std::string(KindName(kind)) +
                                    " readers can't replay recordings");
  }
  if (const char* trouble = begin(file_.c_str(), anyOrder_)) throw Failure(kFileFault, trouble);
}

void Replay::Exchanged(const CardExchange& exchange) {
  const auto simulator = simulators_.find(exchange.kind);
  if (simulator == simulators_.end()) return;
  ++commands_;
  const int64_t line = simulator->second();
  if (line == 0 || std::exchange(differs_, true)) return;
  const auto expected = std::find_if(
      recording_.events.begin(), recording_.events.end(),
      [line](const RecordedEvent& event) { return static_cast<int64_t>(event.line) == line; });
  const bool ended = expected == recording_.events.end();
  throw Failure(kExpectationFailed,
                "command " + std::to_string(commands_) + " is not as recorded\n  sent      " +
                    Shown(exchange.command.digits, exchange.hidden) + "\n  recorded  " +
                    (ended ? "nothing more" : Shown(expected->command, exchange.hidden)) + "  " +
                    Printable(file_) + ":" + std::to_string(line));
}

void ReplayIn(int32_t kind, void* simulator) {
  if (current != nullptr) current->BeginIn(kind, simulator);
}

std::unique_ptr<Replay> ReplayFor(const Options& options) {
  if (!options.simulate) return nullptr;
  const std::string file =
      options.replay.empty() ? EnvironmentVariable("ORVANE_CARD").value_or("") : options.replay;
  if (file.empty()) return nullptr;
  const bool anyOrder =
      options.anyOrder || EnvironmentVariable("ORVANE_CARD_ANY_ORDER").value_or("") == "1";
  return std::make_unique<Replay>(file, anyOrder);
}

}  // namespace host
