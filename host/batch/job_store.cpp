#include "host/batch/job_store.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <ctime>

#include "host/text.h"

namespace host {
namespace {

constexpr std::array<std::string_view, kRowStates> kNames = {"waiting", "begun", "done", "failed",
                                                             "abandoned"};

}  // namespace

std::string NameOf(RowState state) { return std::string(kNames[static_cast<size_t>(state)]); }

std::optional<RowState> FindRowState(std::string_view name) {
  const auto found = std::find(kNames.begin(), kNames.end(), name);
  if (found == kNames.end()) return std::nullopt;
  return static_cast<RowState>(found - kNames.begin());
}

std::string TimeNow() {
  using namespace std::chrono;
  const auto now = time_point_cast<milliseconds>(system_clock::now());
  const std::time_t seconds = system_clock::to_time_t(floor<std::chrono::seconds>(now));
  char text[32];
  std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", std::gmtime(&seconds));
  char fraction[8];
  std::snprintf(fraction, sizeof fraction, ".%03dZ",
                static_cast<int>(now.time_since_epoch().count() % 1000));
  return std::string(text) + fraction;
}

std::optional<double> ReadTime(const std::string& time) {
  int year = 0, month = 0, day = 0, hour = 0, minute = 0;
  double second = 0;
  if (std::sscanf(time.c_str(), "%d-%d-%dT%d:%d:%lf", &year, &month, &day, &hour, &minute,
                  &second) != 6) {
    return std::nullopt;
  }
  const std::chrono::sys_days date =
      std::chrono::year(year) / std::chrono::month(static_cast<unsigned>(month)) / day;
  return static_cast<double>(date.time_since_epoch().count()) * 86400 + hour * 3600 + minute * 60 +
         second;
}

std::string WhyRefused(const std::string& card, size_t row, RowState state) {
  return "the card " + Printable(card) + " belongs to row " + std::to_string(row) + ", which is " +
         NameOf(state);
}

}  // namespace host
