#include "readers/wd_reader_tool.h"

#include "readers/port_list.h"

namespace orvane {

std::int32_t CWDReaderTool::ListReaders(std::int32_t, ReaderInfo* list, std::int32_t,
                                        std::int32_t) {
  WriteRecord(list[0], ReaderKindWd, false, 0, "WDUSB1");
  return 1;
}

}  // namespace orvane
