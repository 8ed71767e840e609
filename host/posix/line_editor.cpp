#include <dlfcn.h>
#include <unistd.h>

#include <bit>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "host/platform.h"

namespace host {
namespace {

volatile std::sig_atomic_t reading = 0;
volatile std::sig_atomic_t interrupted = 0;

void Interrupt(int signal) {
  if (reading == 0 && interrupted != 0) {
    std::signal(signal, SIG_DFL);
    raise(signal);
  }
  interrupted = 1;
}

void HandleInterrupts(int flags) {
  struct sigaction action {};
  action.sa_handler = Interrupt;
  action.sa_flags = flags;
  sigaction(SIGINT, &action, nullptr);
}

// While it lives, Ctrl-C lets a read fail with EINTR. Once one has lived, the first Ctrl-C outside
// changes nothing, and the second one ends the program.
class InterruptibleRead {
 public:
  InterruptibleRead() {
    interrupted = 0;
    reading = 1;
    HandleInterrupts(0);
  }
  ~InterruptibleRead() {
    HandleInterrupts(SA_RESTART);  // the libraries of readers know nothing of interrupted calls
    interrupted = 0;
    reading = 0;
  }
  InterruptibleRead(const InterruptibleRead&) = delete;
  InterruptibleRead& operator=(const InterruptibleRead&) = delete;
};

// Where a person sees what is typed, even if standard output goes elsewhere.
std::FILE* TerminalStream() {
  static std::FILE* const stream = OutputIsTerminal() ? stdout : std::fopen(ttyname(0), "w");
  return stream != nullptr ? stream : stderr;
}

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

// Line editing, where libedit is installed. It is loaded when a person types: linked, it and the
// three libraries that it needs would take a fifth of the time of a single command.
struct LineEditor {
  char* (*readLine)(const char*) = nullptr;
  int (*addHistory)(const char*) = nullptr;
  void (*clearHistory)() = nullptr;
};

LineEditor LoadLineEditor() {
  void* const libedit = dlopen("libedit.so.2", RTLD_NOW | RTLD_LOCAL);
  LineEditor editor;
  std::FILE** output = nullptr;
  int (**readCharacter)(FILE*) = nullptr;
  const auto find = [libedit](const char* name, auto& found) {
    found = reinterpret_cast<std::decay_t<decltype(found)>>(ModuleFunction(libedit, name));
    return found != nullptr;
  };
  if (libedit == nullptr || !find("readline", editor.readLine) ||
      !find("add_history", editor.addHistory) || !find("clear_history", editor.clearHistory) ||
      !find("rl_outstream", output) || !find("rl_getc_function", readCharacter)) {
    return {};
  }
  std::setlocale(LC_CTYPE, "C.UTF-8");
  *output = TerminalStream();
  *readCharacter = ReadCharacter;
  return editor;
}

const LineEditor& Editor() {
  static const LineEditor editor = LoadLineEditor();
  return editor;
}

// Both give none at the end of input and after Ctrl-C.
std::optional<std::string> ReadEdited(const std::string& prompt) {
  char* const text = Editor().readLine(prompt.c_str());
  if (text == nullptr) return std::nullopt;
  std::string line(text);
  std::free(text);
  return line;
}

std::optional<std::string> ReadPlainly(const std::string& prompt) {
  std::fputs(prompt.c_str(), TerminalStream());
  std::fflush(TerminalStream());
  std::string line;
  for (int octet = ReadOctet(); octet != '\n'; octet = ReadOctet()) {
    if (octet == EOF) return interrupted != 0 || line.empty() ? std::nullopt : std::optional(line);
    line += static_cast<char>(octet);
  }
  return line;
}

}  // namespace

std::optional<std::string> EditLine(const std::string& prompt) {
  const InterruptibleRead guard;
  const bool edits = Editor().readLine != nullptr;
  std::optional<std::string> line = edits ? ReadEdited(prompt) : ReadPlainly(prompt);
  if (line) return line;
  std::fputc('\n', TerminalStream());
  std::fflush(TerminalStream());
  return interrupted != 0 ? std::optional<std::string>("") : std::nullopt;
}

void RememberLine(const std::string& line) {
  if (Editor().addHistory != nullptr) Editor().addHistory(line.c_str());
}

void ForgetLines() {
  if (Editor().clearHistory != nullptr) Editor().clearHistory();
}

}  // namespace host
