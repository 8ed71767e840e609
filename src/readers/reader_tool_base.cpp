#include "readers/reader_tool_base.h"

#include <cstring>

namespace orvane {

std::int32_t CReaderToolBase::OpenByName(const char*, std::int32_t) { return 0; }

std::int32_t CReaderToolBase::OpenByPort(std::int32_t, std::int32_t, std::int32_t) { return 0; }

std::int32_t CReaderToolBase::Close() { return 0; }

std::int32_t CReaderToolBase::ListReaders(std::int32_t, ReaderInfo*, std::int32_t, std::int32_t) {
  return 0;
}

std::int32_t CReaderToolBase::GetKind() { return m_nKind; }

void CReaderToolBase::SetSlot(std::uint32_t) {}

std::int32_t CReaderToolBase::ResetCard(std::uint8_t*, std::uint32_t*) { return 0; }

std::int32_t CReaderToolBase::Transmit(const std::uint8_t*, std::uint32_t, std::uint8_t*,
                                       std::uint32_t*) {
  return 0;
}

std::int32_t CReaderToolBase::GetOpenFlag() { return m_nOpenFlag; }

void CReaderToolBase::SetName(std::string_view name) {
  std::memset(m_szName, 0, sizeof m_szName);
  name.copy(m_szName, sizeof m_szName - 1);
}

}  // namespace orvane
