#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <new>

#include "orvane.h"
#include "readers/reader_tool.h"
#include "util/hex.h"

namespace {

using orvane::CReaderTool;

constexpr std::uint32_t kReaderSlots = 16;
constexpr std::uint32_t kListingSlot = 16;
constexpr std::size_t kAtrSize = 512;
constexpr std::size_t kBufferSize = 4096;

std::uint32_t CurrentReader = 0;
// Made on first use, never released. The last one serves GetReaderList alone, so that listing
// never disturbs an open reader.
std::array<CReaderTool*, kListingSlot + 1> ReaderSlots{};

CReaderTool* Slot(std::uint32_t index) {
  CReaderTool*& slot = ReaderSlots[index];
  if (slot == nullptr) slot = new (std::nothrow) CReaderTool;
  return slot;
}

void EncodeHexText(const std::uint8_t* octets, std::size_t count, char* text) {
  orvane::EncodeHex(octets, count, text);
  text[2 * count] = '\0';
}

}  // namespace

std::int32_t GetReaderList(std::int32_t kind, ReaderInfo* list, std::int32_t count,
                           std::int32_t max) {
  CReaderTool* const tool = Slot(kListingSlot);
  return tool != nullptr ? tool->ListReaders(kind, list, count, max) : 0;
}

std::int32_t SetReader(std::uint32_t index) {
  if (index >= kReaderSlots) return 0;
  CurrentReader = index;
  return 1;
}

std::int32_t OpenReader(std::int32_t port, std::int32_t kind, std::int32_t baud) {
  CReaderTool* const tool = Slot(CurrentReader);
  return tool != nullptr ? tool->OpenByPort(port, kind, baud) : 0;
}

std::int32_t OpenReaderA(const char* name, std::int32_t kind) {
  CReaderTool* const tool = Slot(CurrentReader);
  return tool != nullptr ? tool->OpenByName(name, kind) : 0;
}

std::int32_t CloseReader() {
  CReaderTool* const tool = Slot(CurrentReader);
  return tool != nullptr ? tool->Close() : 0;
}

std::int32_t Reset(char* atrHex) {
  CReaderTool* const tool = Slot(CurrentReader);
  if (tool == nullptr) return 0;
  std::uint8_t atr[kAtrSize] = {};
  std::uint32_t length = 0;
  if (tool->ResetCard(atr, &length) == 0) return 0;
  EncodeHexText(atr, length, atrHex);
  return 1;
}

void ChangeSlot(const char* slotHex) {
  CReaderTool* const tool = Slot(CurrentReader);
  if (tool == nullptr) return;
  const char* const end = std::find(slotHex, slotHex + 2, '\0');
  std::uint8_t slot = 0;
  orvane::DecodeHex({slotHex, static_cast<std::size_t>(end - slotHex)}, &slot);
  tool->SetSlot(slot);
}

std::int32_t SendCommand(const char* cmdHex, std::int32_t hexLen, char* respHex) {
  CReaderTool* const tool = Slot(CurrentReader);
  const auto digits = static_cast<std::size_t>(std::max(hexLen, 0));
  std::uint8_t response[kBufferSize];
  std::uint32_t responseLength = 0;
  std::int32_t done = 0;
  if (tool != nullptr && digits <= 2 * kBufferSize) {
    std::uint8_t command[kBufferSize];
    std::memset(command, 0, sizeof command);
    orvane::DecodeHex({cmdHex, digits}, command);
    done =
        tool->Transmit(command, static_cast<std::uint32_t>(digits / 2), response, &responseLength);
  }
  EncodeHexText(response, responseLength, respHex);
  return done != 0 ? 1 : 0;
}
