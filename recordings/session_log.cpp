#include "recordings/session_log.h"

#include <array>
#include <cstdio>
#include <ctime>

#include "recordings/process.h"

namespace recordings {
namespace {

using Microseconds = std::chrono::microseconds;

std::string TextOf(std::chrono::system_clock::time_point time) {
  using namespace std::chrono;
  const auto day = floor<days>(time);
  const year_month_day date(day);
  const hh_mm_ss clock(floor<Microseconds>(time - day));
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%06dZ",
                static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                static_cast<unsigned>(date.day()), static_cast<int>(clock.hours().count()),
                static_cast<int>(clock.minutes().count()),
                static_cast<int>(clock.seconds().count()),
                static_cast<int>(clock.subseconds().count()));
  return text.data();
}

// The name with this process's number in the place of %p.
std::filesystem::path FileFor(const std::filesystem::path& pattern) {
  constexpr char kMark[] = {'%', 'p'};
  auto name = pattern.native();
  const std::string number = std::to_string(ProcessNumber());
  for (size_t at = 0; at + 1 < name.size(); ++at) {
    if (name[at] != kMark[0] || name[at + 1] != kMark[1]) continue;
    name.replace(at, 2, std::filesystem::path(number).native());
    at += number.size() - 1;
  }
  return name;
}

}  // namespace

void SetTimes(Event& event, Steady::time_point origin, Steady::time_point begin,
              Steady::time_point end) {
  using std::chrono::duration_cast;
  event.at = duration_cast<Microseconds>(begin - origin).count();
  event.took = duration_cast<Microseconds>(end - begin).count();
}

void SessionLog::Begin() {
  const std::lock_guard lock(mutex_);
  BeginLocked();
}

void SessionLog::BeginLocked() {
  if (std::exchange(open_, true)) return;
  trouble_ = file_.Open(FileFor(name_), showSecrets_);
  if (!trouble_.empty()) return;
  trouble_ = file_.Append(WriteEvent({.type = EventType::kRecording,
                                      .begun = TextOf(begun_),
                                      .secrets = showSecrets_ ? "shown" : "hidden"}));
}

void SessionLog::Append(std::string_view line) {
  const std::lock_guard lock(mutex_);
  BeginLocked();
  if (trouble_.empty()) trouble_ = file_.Append(line);
}

std::string SessionLog::Trouble() const {
  const std::lock_guard lock(mutex_);
  return trouble_;
}

}  // namespace recordings
