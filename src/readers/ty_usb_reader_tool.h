#pragma once

#include <cstdint>

#include "readers/reader_tool_base.h"

namespace orvane {

/// TY readers in USB keys.
class CTYUSBReaderTool final : public CReaderToolBase {
 public:
};

}  // namespace orvane
