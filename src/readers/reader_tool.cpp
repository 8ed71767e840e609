#include "readers/reader_tool.h"

#include "readers/drivers.h"

namespace orvane {
namespace {

// Null if there is no such kind.
std::unique_ptr<CReaderToolBase> MakeTool(std::int32_t kind) {
  switch (kind) {
    case ReaderKindTyUsb:
      return MakeTyUsbReaderTool();
    case ReaderKindTyCom:
      return MakeTyComReaderTool();
    case ReaderKindPcsc:
      return MakePcscReaderTool();
    case ReaderKindWd:
      return MakeWdReaderTool();
    case ReaderKindD8:
      return MakeD8ReaderTool();
    case ReaderKindFm8201:
      return MakeFm8201ReaderTool();
    case ReaderKindS5009:
    case ReaderKindS5009Ats:
      return MakeS5009ReaderTool();
    case ReaderKindTcp:
      return MakeTcpTool();
    case ReaderKindIcr:
      return MakeIcrTool();
    case ReaderKindBsit:
      return MakeBsitReaderTool();
    default:
      return nullptr;
  }
}

}  // namespace

std::int32_t CReaderTool::OpenByName(const char* name, std::int32_t kind) {
  if (SelectTool(kind) == 0) return 0;
  return Guarded([&] { return m_pTool->OpenByName(name, kind); });
}

std::int32_t CReaderTool::OpenByPort(std::int32_t port, std::int32_t kind, std::int32_t baud) {
  if (SelectTool(kind) == 0) return 0;
  return Guarded([&] { return m_pTool->OpenByPort(port, kind, baud); });
}

std::int32_t CReaderTool::Close() {
  if (!m_pTool) return 0;
  return Guarded([&] { return m_pTool->Close(); });
}

void CReaderTool::SetSlot(std::uint32_t slot) {
  if (!m_pTool) return;
  Guarded([&] {
    m_pTool->SetSlot(slot);
    return 1;
  });
}

std::int32_t CReaderTool::ResetCard(std::uint8_t* atr, std::uint32_t* atrLen) {
  if (!m_pTool) return 0;
  return Guarded([&] { return m_pTool->ResetCard(atr, atrLen); });
}

std::int32_t CReaderTool::Transmit(const std::uint8_t* cmd, std::uint32_t cmdLen,
                                   std::uint8_t* resp, std::uint32_t* respLen) {
  if (!m_pTool) return 0;
  return Guarded([&] { return m_pTool->Transmit(cmd, cmdLen, resp, respLen); });
}

std::int32_t CReaderTool::SelectTool(std::int32_t kind) {
  return Guarded([&] {
    if (m_pTool && m_pTool->GetKind() == kind) return 1;
    Drop();
    m_pTool = MakeTool(kind);
    return m_pTool ? 1 : 0;
  });
}

std::int32_t CReaderTool::ListReaders(std::int32_t kind, ReaderInfo* list, std::int32_t count,
                                      std::int32_t max) {
  SelectTool(kind);
  if (!m_pTool) return 0;
  return Guarded([&] { return m_pTool->ListReaders(kind, list, count, max); });
}

void CReaderTool::Drop() {
  CReaderTool::Close();
  m_pTool.reset();
}

}  // namespace orvane
