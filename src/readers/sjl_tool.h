#pragma once

#include <cstdint>

#include "readers/reader_tool_base.h"

namespace orvane {

/// An encryption machine on the network.
class CSJLTool final : public CReaderToolBase {
 public:
  std::int32_t ListReaders(std::int32_t kind, ReaderInfo* list, std::int32_t count,
                           std::int32_t max) override;
};

}  // namespace orvane
