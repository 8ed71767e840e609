#include "readers/ty_com_reader_tool.h"

#include "readers/port_list.h"

namespace orvane {

std::int32_t CTYCOMReaderTool::ListReaders(std::int32_t, ReaderInfo* list, std::int32_t count,
                                           std::int32_t max) {
  static constexpr PortListing kPorts{
      .kind = ReaderKindTyCom, .name = ComName, .most = 0, .honoursMax = true};
  return ListPorts(kPorts, list, count, max);
}

}  // namespace orvane
