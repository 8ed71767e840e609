#include <editline/readline.h>

#include <cstdlib>

#include "host/platform.h"

namespace host {

std::optional<std::string> EditLine(const std::string& prompt) {
  char* text = readline(prompt.c_str());
  if (text == nullptr) return std::nullopt;
  std::string line(text);
  std::free(text);
  return line;
}

void RememberLine(const std::string& line) { add_history(line.c_str()); }

}  // namespace host
