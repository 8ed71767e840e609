#pragma once

#include <cstdint>

#include "readers/reader_tool_base.h"

namespace orvane {

// A reader kind with nothing behind it: it never opens, and answers every command with success and
// no response.
class CFM8201ReaderTool final : public CReaderToolBase {
 public:
  std::int32_t Close() override;
  void SetSlot(std::uint32_t slot) override;
  std::int32_t Transmit(const std::uint8_t* cmd, std::uint32_t cmdLen, std::uint8_t* resp,
                        std::uint32_t* respLen) override;
};

}  // namespace orvane
