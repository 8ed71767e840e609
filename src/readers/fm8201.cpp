#include "readers/drivers.h"

namespace orvane {
namespace {

// A reader kind with nothing behind it: it never opens, and answers each command with success and
// no response.
class CFM8201ReaderTool final : public CReaderToolBase {
 public:
  std::int32_t Close() override { return 1; }

  std::int32_t Transmit(const std::uint8_t*, std::uint32_t, std::uint8_t* resp,
                        std::uint32_t* respLen) override {
    return resp == nullptr || respLen != nullptr ? 1 : 0;
  }
};

}  // namespace

std::unique_ptr<CReaderToolBase> MakeFm8201ReaderTool() {
  return std::make_unique<CFM8201ReaderTool>();
}

}  // namespace orvane
