#include <iostream>

#include "host/platform.h"

namespace host {

std::optional<std::string> EditLine(const std::string& prompt) {
  std::cout << prompt << std::flush;
  std::string line;
  if (!std::getline(std::cin, line)) return std::nullopt;
  return line;
}

void RememberLine(const std::string&) {}

}  // namespace host
