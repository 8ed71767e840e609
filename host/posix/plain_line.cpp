#include <unistd.h>

#include "host/platform.h"
#include "host/posix/interrupt.h"

namespace host {

std::optional<std::string> EditLine(const std::string& prompt) {
  const InterruptibleRead reading;
  std::FILE* const terminal = TerminalStream();
  std::fputs(prompt.c_str(), terminal);
  std::fflush(terminal);
  std::string line;
  char octet = 0;
  while (read(STDIN_FILENO, &octet, 1) == 1) {
    if (octet == '\n') return line;
    line += octet;
  }
  std::fputc('\n', terminal);
  std::fflush(terminal);
  if (reading.Interrupted()) return "";
  return line.empty() ? std::nullopt : std::optional(line);
}

void RememberLine(const std::string&) {}

void ForgetLines() {}

}  // namespace host
