#include "readers/reader_tool_base.h"

#include <algorithm>
#include <cstring>

#include "readers/ports.h"

namespace orvane {

std::int32_t CReaderToolBase::OpenByName(const char*, std::int32_t) { return 0; }

std::int32_t CReaderToolBase::OpenByPort(std::int32_t, std::int32_t, std::int32_t) { return 0; }

std::int32_t CReaderToolBase::Close() { return 0; }

std::int32_t CReaderToolBase::ListReaders(std::int32_t, ReaderInfo* list, std::int32_t count,
                                          std::int32_t max) {
  return m_ports != nullptr ? ListPorts(*m_ports, list, count, max) : 0;
}

std::int32_t CReaderToolBase::GetKind() { return m_nKind; }

void CReaderToolBase::SetSlot(std::uint32_t slot) { m_nSlot = static_cast<std::int32_t>(slot); }

std::int32_t CReaderToolBase::ResetCard(std::uint8_t*, std::uint32_t*) { return 0; }

std::int32_t CReaderToolBase::GetOpenFlag() { return m_nOpenFlag; }

std::int32_t CReaderToolBase::OpenByPortBehind(std::string_view marker, const char* name,
                                               std::int32_t kind) {
  const auto port = NumberBehind(marker, name);
  return port ? OpenByPort(*port, kind, 9600) : 0;
}

std::int32_t CReaderToolBase::GiveAtr(const Response& answer, std::uint8_t* atr,
                                      std::uint32_t* atrLen) {
  if (answer.length > kResponseSize) return 0;
  if (atr != nullptr && atrLen != nullptr) {
    *atrLen = answer.length;
    std::copy_n(answer.octets.begin(), answer.length, atr);
  }
  return 1;
}

void CReaderToolBase::SetName(std::string_view name) {
  std::memset(m_szName, 0, sizeof m_szName);
  name.copy(m_szName, sizeof m_szName - 1);
}

std::int32_t CReaderToolBase::FromZero(std::int32_t port) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(port) - 1);
}

}  // namespace orvane
