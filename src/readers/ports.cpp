#include "readers/ports.h"

#include <algorithm>
#include <limits>

namespace orvane {

std::int32_t ListPorts(const PortListing& listing, ReaderInfo* list, std::int32_t count,
                       std::int32_t max) {
  constexpr auto kUnbounded = std::numeric_limits<std::int32_t>::max();
  const std::int32_t limit = std::min(listing.most > 0 ? listing.most : kUnbounded,
                                      listing.honoursMax && max > 0 ? max : kUnbounded);
  std::int32_t written = 0;
  while (written < std::min(count, limit)) {
    const std::int32_t port = written + 1;
    WriteRecord(list[written++], listing.kind, true, port, listing.name(port));
  }
  if (listing.usbPort != 0 && written < limit) {
    WriteRecord(list[written++], listing.kind, true, listing.usbPort, listing.usbName);
  }
  return written;
}

void WriteRecord(ReaderInfo& record, std::int32_t kind, bool hasPort, std::int32_t port,
                 std::string_view name) {
  record = {};
  record.kind = kind;
  record.hasPort = hasPort ? 1 : 0;
  record.port = port;
  name.copy(record.name, sizeof record.name - 1);
}

std::string ComName(std::int32_t port) { return "COM" + std::to_string(port); }

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
