#include "readers/d8_reader_tool.h"

#include "readers/port_list.h"

namespace orvane {

std::int32_t CD8ReaderTool::ListReaders(std::int32_t, ReaderInfo* list, std::int32_t count,
                                        std::int32_t max) {
  static constexpr PortListing kPorts{.kind = ReaderKindD8,
                                      .name = ComName,
                                      .most = 16,
                                      .honoursMax = false,
                                      .usbPort = 100,
                                      .usbName = "COM100(D8USB)"};
  return ListPorts(kPorts, list, count, max);
}

}  // namespace orvane
