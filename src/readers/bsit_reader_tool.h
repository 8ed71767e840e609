#pragma once

#include <cstdint>

#include "readers/reader_tool_base.h"

namespace orvane {

/// BSIT readers.
class CBSITReaderTool final : public CReaderToolBase {
 public:
};

}  // namespace orvane
