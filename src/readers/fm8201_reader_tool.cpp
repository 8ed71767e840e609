#include "readers/fm8201_reader_tool.h"

namespace orvane {

std::int32_t CFM8201ReaderTool::Close() { return 1; }

void CFM8201ReaderTool::SetSlot(std::uint32_t slot) { m_nSlot = static_cast<std::int32_t>(slot); }

std::int32_t CFM8201ReaderTool::Transmit(const std::uint8_t*, std::uint32_t, std::uint8_t* resp,
                                         std::uint32_t* respLen) {
  return resp == nullptr || respLen != nullptr ? 1 : 0;
}

}  // namespace orvane
