#pragma once

#include <cstdint>
#include <memory>

#include "readers/reader_tool_base.h"

namespace orvane {

// The content of a reader slot. It owns the driver of the kind that was opened last. An exception
// of a driver or a vendor's library stops here, with the result 0. Without a driver the operations
// give 0.
class CReaderTool final {
 public:
  CReaderTool() = default;
  CReaderTool(const CReaderTool&) = delete;
  CReaderTool& operator=(const CReaderTool&) = delete;
  virtual ~CReaderTool() { Drop(); }

  virtual std::int32_t OpenByName(const char* name, std::int32_t kind);
  virtual std::int32_t OpenByPort(std::int32_t port, std::int32_t kind, std::int32_t baud);
  virtual std::int32_t Close();
  virtual void SetSlot(std::uint32_t slot);
  virtual std::int32_t ResetCard(std::uint8_t* atr, std::uint32_t* atrLen);
  virtual std::int32_t Transmit(const std::uint8_t* cmd, std::uint32_t cmdLen, std::uint8_t* resp,
                                std::uint32_t* respLen);

  // Makes sure that the slot has a driver of this kind; closes and drops one of another kind. 0 if
  // there is no such kind; the slot is then empty.
  std::int32_t SelectTool(std::int32_t kind);

  std::int32_t ListReaders(std::int32_t kind, ReaderInfo* list, std::int32_t count,
                           std::int32_t max);

 private:
  void Drop();

  std::unique_ptr<CReaderToolBase> m_pTool;
};

}  // namespace orvane
