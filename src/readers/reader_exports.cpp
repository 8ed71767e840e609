#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <new>

#include "orvane.h"
#include "readers/reader_tool.h"
#include "util/entrance.h"
#include "util/hex.h"

namespace {

using orvane::CReaderTool;

constexpr std::uint32_t kReaderSlots = 16;
constexpr std::uint32_t kListingSlot = 16;
constexpr std::size_t kAtrSize = 512;
constexpr std::size_t kBufferSize = 4096;

std::uint32_t CurrentReader = 0;
// Made on first use, never released. The last one serves GetReaderList alone, so that a listing
// never disturbs an open reader.
std::array<CReaderTool*, kListingSlot + 1> ReaderSlots{};

// A slot's tool for the length of one export. Empty if memory ran out, or if a library calls back
// while it runs.
class Tool {
 public:
  explicit Tool(std::uint32_t index) {
    if (!m_entrance) return;
    CReaderTool*& slot = ReaderSlots[index];
    if (slot == nullptr) slot = new (std::nothrow) CReaderTool;
    m_tool = slot;
  }

  explicit operator bool() const { return m_tool != nullptr; }
  CReaderTool* operator->() const { return m_tool; }

 private:
  const orvane::Entrance m_entrance;
  CReaderTool* m_tool = nullptr;
};

void EncodeHexText(const std::uint8_t* octets, std::size_t count, char* text) {
  orvane::EncodeHex(octets, count, text);
  text[2 * count] = '\0';
}

}  // namespace

std::int32_t GetReaderList(std::int32_t kind, ReaderInfo* list, std::int32_t count,
                           std::int32_t max) {
  const Tool tool(kListingSlot);
  return tool ? tool->ListReaders(kind, list, count, max) : 0;
}

std::int32_t SetReader(std::uint32_t index) {
  const orvane::Entrance entrance;
  if (!entrance || index >= kReaderSlots) return 0;
  CurrentReader = index;
  return 1;
}

std::int32_t OpenReader(std::int32_t port, std::int32_t kind, std::int32_t baud) {
  const Tool tool(CurrentReader);
  return tool ? tool->OpenByPort(port, kind, baud) : 0;
}

std::int32_t OpenReaderA(const char* name, std::int32_t kind) {
  const Tool tool(CurrentReader);
  return tool ? tool->OpenByName(name, kind) : 0;
}

std::int32_t CloseReader() {
  const Tool tool(CurrentReader);
  return tool ? tool->Close() : 0;
}

std::int32_t Reset(char* atrHex) {
  const Tool tool(CurrentReader);
  if (!tool) return 0;
  std::uint8_t atr[kAtrSize] = {};
  std::uint32_t length = 0;
  if (tool->ResetCard(atr, &length) == 0) return 0;
  EncodeHexText(atr, length, atrHex);
  return 1;
}

void ChangeSlot(const char* slotHex) {
  const Tool tool(CurrentReader);
  if (!tool) return;
  const char* const end = std::find(slotHex, slotHex + 2, '\0');
  std::uint8_t slot = 0;
  orvane::DecodeHex({slotHex, static_cast<std::size_t>(end - slotHex)}, &slot);
  tool->SetSlot(slot);
}

std::int32_t SendCommand(const char* cmdHex, std::int32_t hexLen, char* respHex) {
  const Tool tool(CurrentReader);
  const auto digits = static_cast<std::size_t>(std::max(hexLen, 0));
  std::uint8_t response[kBufferSize];
  std::uint32_t responseLength = 0;
  std::int32_t done = 0;
  if (tool && digits <= 2 * kBufferSize) {
    std::uint8_t command[kBufferSize];
    const std::size_t length = digits / 2;
    std::memset(command, 0, length);  // clears no more than what is sent
    orvane::DecodeHex({cmdHex, digits}, command);
    done = tool->Transmit(command, static_cast<std::uint32_t>(length), response, &responseLength);
  }
  EncodeHexText(response, responseLength, respHex);
  return done != 0 ? 1 : 0;
}
