#pragma once

#include <cstdint>

#include "readers/reader_tool_base.h"

namespace orvane {

/// D8 readers, on a serial port or on USB.
class CD8ReaderTool final : public CReaderToolBase {
 public:
  std::int32_t ListReaders(std::int32_t kind, ReaderInfo* list, std::int32_t count,
                           std::int32_t max) override;
};

}  // namespace orvane
