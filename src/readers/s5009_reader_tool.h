#pragma once

#include <cstdint>

#include "readers/reader_tool_base.h"

namespace orvane {

/// The S5009 reader, in both its kinds.
class CS5009ReaderTool final : public CReaderToolBase {
 public:
  CS5009ReaderTool() { m_nSlot = 3; }

  std::int32_t ListReaders(std::int32_t kind, ReaderInfo* list, std::int32_t count,
                           std::int32_t max) override;
};

}  // namespace orvane
