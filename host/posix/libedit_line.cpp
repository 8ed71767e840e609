#include <editline/readline.h>
#include <unistd.h>

#include <bit>
#include <clocale>
#include <cstdlib>

#include "host/platform.h"
#include "host/posix/interrupt.h"

namespace host {
namespace {

int ReadOctet() {
  unsigned char octet = 0;
  return read(STDIN_FILENO, &octet, 1) == 1 ? octet : EOF;
}

// One character of UTF-8, as libedit keeps it; EOF at the end of input and after Ctrl-C, where
// libedit's own function reads on.
int ReadCharacter(FILE*) {
  int code = ReadOctet();
  const int octets = std::countl_one(static_cast<unsigned char>(code));
  if (code < 0x80 || octets < 2 || octets > 4) return code;
  code &= 0xFF >> octets;
  for (int at = 1; at < octets; ++at) {
    const int octet = ReadOctet();
    if (octet == EOF) return EOF;
    code = code << 6 | (octet & 0x3F);
  }
  return code;
}

void Prepare() {
  std::setlocale(LC_CTYPE, "C.UTF-8");
  rl_outstream = TerminalStream();
  rl_getc_function = ReadCharacter;
}

}  // namespace

std::optional<std::string> EditLine(const std::string& prompt) {
  static const bool prepared = (Prepare(), true);
  static_cast<void>(prepared);
  const InterruptibleRead reading;
  char* const text = readline(prompt.c_str());
  if (text == nullptr) {
    std::fputc('\n', rl_outstream);
    std::fflush(rl_outstream);
    return reading.Interrupted() ? std::optional<std::string>("") : std::nullopt;
  }
  std::string line(text);
  std::free(text);
  return line;
}

void RememberLine(const std::string& line) { add_history(line.c_str()); }

void ForgetLines() { clear_history(); }

}  // namespace host
