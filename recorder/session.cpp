#include "recorder/session.h"

#include <array>
#include <atomic>
#include <cstdio>
#include <map>
#include <mutex>

#include "recorder/next.h"
#include "recorder/next_module.h"
#include "recorder/recorder.h"
#include "recordings/command_apdu.h"
#include "recordings/process.h"

namespace recorder {
namespace {

RecorderSettings settings{};
thread_local bool hideAll = false;

// The session that the environment asked for; never released, since calls may come at exit.
recordings::SessionLog* log = nullptr;
std::atomic_flag reported;

std::mutex readersMutex;
std::map<std::uint32_t, int64_t> readers;

void Append(const char* line, uint64_t length) { log->Append({line, length}); }

int64_t NextReader() { return log->NextReader(); }

int32_t IsReady() {
  const std::string trouble = log->Trouble();
  if (!trouble.empty() && !reported.test_and_set()) {
    std::fprintf(stderr,
                 "orvane recorder: can't write the recording: %s; no card gets another command\n",
                 trouble.c_str());
  }
  return trouble.empty();
}

void BeginByEnvironment() {
  const auto file = recordings::EnvironmentPath("ORVANE_RECORD");
  if (settings.append != nullptr || !file) return;
  const auto shown = recordings::EnvironmentPath("ORVANE_RECORD_SECRETS");
  log = new recordings::SessionLog(*file, shown && *shown == "1");
  log->Begin();
  settings = {.append = Append,
              .ready = IsReady,
              .nextReader = NextReader,
              .origin = log->Origin().time_since_epoch().count(),
              .showSecrets = log->ShowsSecrets()};
}

}  // namespace

bool Ready() {
  static std::once_flag once;
  std::call_once(once, BeginByEnvironment);
  return settings.ready == nullptr || settings.ready() != 0;
}

void Record(Event event, Steady::time_point begin, Steady::time_point end) {
  if (settings.append == nullptr) return;
  const Steady::time_point origin{Steady::duration(settings.origin)};
  recordings::SetTimes(event, origin, begin, end);
  const std::string line = recordings::WriteEvent(event);
  settings.append(line.data(), line.size());
  settings.ready();
}

void* NextFunction(const char* name) {
  static void* const module = LoadNextModule();
  return module != nullptr ? FindFunction(module, name) : nullptr;
}

int64_t AddReader(winscard::SCARDHANDLE card) {
  if (settings.append == nullptr) return 0;
  const std::lock_guard lock(readersMutex);
  return readers[static_cast<std::uint32_t>(card)] = settings.nextReader();
}

int64_t ReaderOf(winscard::SCARDHANDLE card) {
  const std::lock_guard lock(readersMutex);
  const auto found = readers.find(static_cast<std::uint32_t>(card));
  return found != readers.end() ? found->second : 0;
}

void SetCommand(Event& event, const std::string& digits) {
  const bool secret = recordings::CarriesSecret(digits);
  event.command = digits;
  if (settings.showSecrets != 0 || !(secret || hideAll)) return;
  event.command = recordings::WithoutData(digits, recordings::FindParts(digits));
  if (event.command.find('*') == event.command.npos) return;
  event.hidden = secret ? "data of " + std::string(recordings::InstructionName(event.command))
                        : "data made from a secret";
}

std::string ToHex(const void* octets, std::size_t count) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  const auto* const first = static_cast<const std::uint8_t*>(octets);
  std::string digits;
  digits.reserve(2 * count);
  for (std::size_t at = 0; first != nullptr && at < count; ++at) {
    digits += kDigits[first[at] >> 4];
    digits += kDigits[first[at] & 0x0F];
  }
  return digits;
}

std::string CodeText(winscard::DWORD code) {
  std::array<char, 11> text{};
  std::snprintf(text.data(), text.size(), "0x%08X", code);
  return text.data();
}

}  // namespace recorder

extern "C" {

RECORDER_API void RecorderBegin(const RecorderSettings* settings) {
  recorder::settings = settings != nullptr ? *settings : RecorderSettings{};
}

RECORDER_API void RecorderHide(int32_t hide) { recorder::hideAll = hide != 0; }

}  // extern "C"
