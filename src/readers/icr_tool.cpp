#include "readers/icr_tool.h"

#include "readers/port_list.h"

namespace orvane {

std::int32_t CICRTool::ListReaders(std::int32_t, ReaderInfo* list, std::int32_t count,
                                   std::int32_t max) {
  static constexpr auto kName = [](std::int32_t port) { return "ICR-" + ComName(port); };
  static constexpr PortListing kPorts{.kind = ReaderKindIcr,
                                      .name = kName,
                                      .most = 0,
                                      .honoursMax = true,
                                      .usbPort = 1001,
                                      .usbName = "ICR-COM1001(ICRUSB)"};
  return ListPorts(kPorts, list, count, max);
}

}  // namespace orvane
