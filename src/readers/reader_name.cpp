#include "readers/reader_name.h"

#include <algorithm>
#include <limits>

namespace orvane {

std::optional<std::int32_t> NumberBehind(std::string_view marker, std::string_view name) {
  const std::size_t at = name.find(marker);
  if (at == std::string_view::npos) return std::nullopt;
  std::int64_t number = 0;
  for (const char c : name.substr(at + marker.size())) {
    if (c < '0' || c > '9') break;
    number =
        std::min<std::int64_t>(number * 10 + (c - '0'), std::numeric_limits<std::int32_t>::max());
  }
  return static_cast<std::int32_t>(number);
}

}  // namespace orvane
