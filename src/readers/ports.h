#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "orvane.h"

namespace orvane {

// How a driver lists its ports.
struct PortListing {
  std::int32_t kind;
  std::string (*name)(std::int32_t port);
  std::int32_t most;         // the most records; 0 for no limit
  bool honoursMax;           // whether the host's max is a limit too
  std::int32_t usbPort = 0;  // the port of one more record at the end; 0 for none
  const char* usbName = nullptr;
};

// Writes one record per port from 1 up to count, within the listing's limits, then that of the USB
// port. Gives the number of records.
std::int32_t ListPorts(const PortListing& listing, ReaderInfo* list, std::int32_t count,
                       std::int32_t max);

// Writes one record; a name that is too long is cut.
void WriteRecord(ReaderInfo& record, std::int32_t kind, bool hasPort, std::int32_t port,
                 std::string_view name);

// "COM" followed by the port.
std::string ComName(std::int32_t port);

// The decimal number directly behind the marker, which may be anywhere in the name. 0 without
// digits; the largest number if there are too many. Empty if the marker is not there.
std::optional<std::int32_t> NumberBehind(std::string_view marker, std::string_view name);

}  // namespace orvane
