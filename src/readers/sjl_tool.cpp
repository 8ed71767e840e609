#include "readers/sjl_tool.h"

#include <string>

#include "platform/code_page.h"
#include "readers/port_list.h"

namespace orvane {

std::int32_t CSJLTool::ListReaders(std::int32_t, ReaderInfo* list, std::int32_t count,
                                   std::int32_t max) {
  // "Encryption machine" and the port, in the system's code page.
  static constexpr auto kName = [](std::int32_t port) {
    const std::string digits = std::to_string(port);
    return platform::AnsiText(u"\u52A0\u5BC6\u673A" + std::u16string(digits.begin(), digits.end()));
  };
  static constexpr PortListing kPorts{
      .kind = ReaderKindTcp, .name = kName, .most = 16, .honoursMax = false};
  return ListPorts(kPorts, list, count, max);
}

}  // namespace orvane
