#pragma once

#include <cstdint>

#include "readers/reader_tool_base.h"

namespace orvane {

/// A reader of identity cards.
class CICRTool final : public CReaderToolBase {
 public:
  std::int32_t ListReaders(std::int32_t kind, ReaderInfo* list, std::int32_t count,
                           std::int32_t max) override;
};

}  // namespace orvane
