#pragma once

#include <cstdint>
#include <memory>

#include "readers/reader_tool_base.h"

namespace orvane {

// A new driver for this kind, with nothing open; null if there is no such kind. Making one never
// fails on account of hardware or libraries.
std::unique_ptr<CReaderToolBase> MakeTool(std::int32_t kind);

}  // namespace orvane
