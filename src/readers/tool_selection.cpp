#include "readers/tool_selection.h"

#include "readers/drivers.h"

namespace orvane {

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

}  // namespace orvane
