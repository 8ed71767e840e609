#include "common/module.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <utility>

#include "common/call.h"
#include "common/card_files.h"
#include "common/replayed_card.h"
#include "common/virtual_card.h"
#include "recordings/process.h"

namespace simulator {
namespace {

std::unique_ptr<SmartCard> card;       // null until it is needed
std::shared_ptr<const Replay> replay;  // null for the virtual card
bool replayChosen = false;

bool present = true;
uint32_t movements = 0;
void (*restoreModule)() = nullptr;

std::string TextOf(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

// Gives the empty text, or why the recording cannot be used.
std::string Load(const std::filesystem::path& file, bool anyOrder, std::string name) {
  try {
    replay = std::make_shared<Replay>(
        Replay{recordings::ReadRecording(file), anyOrder, std::move(name)});
    return "";
  } catch (const recordings::Fault& fault) {
    const std::string line = fault.Line() > 0 ? ":" + std::to_string(fault.Line()) : "";
    return TextOf(file) + line + ": " + fault.what();
  }
}

// If the recording cannot be read, the reader stays empty: the virtual card is not what was asked
// for.
void LoadFromEnvironment() {
  if (std::exchange(replayChosen, true)) return;
  const auto file = recordings::EnvironmentPath("ORVANE_CARD");
  if (!file) return;
  const auto anyOrder = recordings::EnvironmentPath("ORVANE_CARD_ANY_ORDER");
  const std::string trouble = Load(*file, anyOrder && *anyOrder == "1", TextOf(*file));
  if (trouble.empty()) return;
  std::fprintf(stderr, "orvane simulator: there is no card, as ORVANE_CARD is no recording: %s\n",
               trouble.c_str());
  present = false;
}

}  // namespace

SmartCard& Card() {
  LoadFromEnvironment();
  if (!card && replay) card = std::make_unique<ReplayedCard>(replay);
  if (!card) card = std::make_unique<VirtualCard>();
  return *card;
}

std::vector<std::string> RecordedReaders() {
  LoadFromEnvironment();
  std::vector<std::string> names;
  if (!replay) return names;
  for (const auto& event : replay->recording.events) {
    const bool opened = event.type == recordings::EventType::kOpen && event.kind == "PC/SC" &&
                        !event.name.empty() && event.failed.empty();
    if (opened && std::find(names.begin(), names.end(), event.name) == names.end()) {
      names.push_back(event.name);
    }
  }
  return names;
}

bool CardPresent() {
  LoadFromEnvironment();
  return present;
}

uint32_t CardMovements() { return movements; }

AtRestart::AtRestart(void (*restore)()) { restoreModule = restore; }

}  // namespace simulator

void SimulatorRestart(void) {
  using namespace simulator;
  ForgetCalls();
  card = nullptr;
  SetSerialNumber(kFirstSerialNumber);
  present = true;
  movements = 0;
  if (restoreModule) restoreModule();
}

void SimulatorInsertCard(int32_t nowPresent) {
  using namespace simulator;
  if (present == (nowPresent != 0)) return;
  present = !present;
  ++movements;
  if (present) Card().Reset();
}

void SimulatorFeedCard(const char* serialNumber) {
  using namespace simulator;
  SimulatorInsertCard(0);
  card = nullptr;
  SetSerialNumber(serialNumber);
  SimulatorInsertCard(1);
}

const char* SimulatorReplay(const char* file, int32_t anyOrder) {
  using namespace simulator;
  static std::string trouble;
  const std::shared_ptr<const Replay> before = std::exchange(replay, nullptr);
  const std::u8string name(file, file != nullptr ? file + std::strlen(file) : file);
  trouble = file != nullptr ? Load(name, anyOrder != 0, "") : "";
  if (!trouble.empty()) {
    replay = before;
    return trouble.c_str();
  }
  replayChosen = true;
  card = nullptr;
  return nullptr;
}

int64_t SimulatorDiffered(void) {
  const auto* replayed = dynamic_cast<simulator::ReplayedCard*>(&simulator::Card());
  return replayed != nullptr ? static_cast<int64_t>(replayed->DifferedAt()) : 0;
}
