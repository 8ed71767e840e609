#pragma once

#include <memory>

#include "readers/reader_tool_base.h"

namespace orvane {

// Make new drivers with nothing open. A missing library or device is no failure here.
std::unique_ptr<CReaderToolBase> MakeTyUsbReaderTool();
std::unique_ptr<CReaderToolBase> MakeTyComReaderTool();
std::unique_ptr<CReaderToolBase> MakePcscReaderTool();
std::unique_ptr<CReaderToolBase> MakeWdReaderTool();
std::unique_ptr<CReaderToolBase> MakeD8ReaderTool();
std::unique_ptr<CReaderToolBase> MakeFm8201ReaderTool();
std::unique_ptr<CReaderToolBase> MakeS5009ReaderTool();
std::unique_ptr<CReaderToolBase> MakeTcpTool();
std::unique_ptr<CReaderToolBase> MakeIcrTool();
std::unique_ptr<CReaderToolBase> MakeBsitReaderTool();

}  // namespace orvane
