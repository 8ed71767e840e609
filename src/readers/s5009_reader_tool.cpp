#include "readers/s5009_reader_tool.h"

#include "readers/port_list.h"

namespace orvane {

std::int32_t CS5009ReaderTool::ListReaders(std::int32_t, ReaderInfo* list, std::int32_t count,
                                           std::int32_t max) {
  static constexpr PortListing kPorts{
      .kind = ReaderKindS5009, .name = ComName, .most = 0, .honoursMax = true};
  return ListPorts(kPorts, list, count, max);
}

}  // namespace orvane
