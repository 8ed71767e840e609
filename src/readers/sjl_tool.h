#pragma once

#include <cstdint>
#include <string>

#include "readers/reader_tool_base.h"

namespace orvane {

// A payment HSM on the network: a command goes out as it is, and what one receive brings
// is the reply.
class CSJLTool final : public CReaderToolBase {
 public:
  ~CSJLTool() override;

  std::int32_t OpenByName(const char* name, std::int32_t kind) override;
  std::int32_t Close() override;
  std::int32_t ListReaders(std::int32_t kind, ReaderInfo* list, std::int32_t count,
                           std::int32_t max) override;
  std::int32_t ResetCard(std::uint8_t* atr, std::uint32_t* atrLen) override;
  std::int32_t Transmit(const std::uint8_t* cmd, std::uint32_t cmdLen, std::uint8_t* resp,
                        std::uint32_t* respLen) override;

 private:
  bool Connect(const char* address, std::uint16_t port);
  std::int32_t Fail(const char* message);

  std::int32_t m_nSocket = -1;
  std::string m_szError;  // text of the last failure
};

}  // namespace orvane
