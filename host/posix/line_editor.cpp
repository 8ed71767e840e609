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
class LineEditor {
 public:
  LineEditor() {
    void* const libedit = dlopen("libedit.so.2", RTLD_NOW | RTLD_LOCAL);
    std::FILE** output = nullptr;
    int (**readCharacter)(FILE*) = nullptr;
    if (libedit == nullptr || !Find(libedit, "readline", readLine_) ||
        !Find(libedit, "add_history", addHistory_) ||
        !Find(libedit, "clear_history", clearHistory_) || !Find(libedit, "rl_outstream", output) ||
        !Find(libedit, "rl_getc_function", readCharacter)) {
      return;
    }
    std::setlocale(LC_CTYPE, "C.UTF-8");
    *output = TerminalStream();
    *readCharacter = ReadCharacter;
    edits_ = true;
  }

  // None at the end of input and after Ctrl-C.
  std::optional<std::string> Read(const std::string& prompt) const {
    if (!edits_) return ReadPlainly(prompt);
    char* const text = readLine_(prompt.c_str());
    if (text == nullptr) return std::nullopt;
    std::string line(text);
    std::free(text);
    return line;
  }

  void Remember(const std::string& line) const {
    if (edits_) addHistory_(line.c_str());
  }
  void Forget() const {
    if (edits_) clearHistory_();
  }

 private:
  template <typename Pointer>
  static bool Find(void* libedit, const char* name, Pointer& found) {
    found = reinterpret_cast<Pointer>(dlsym(libedit, name));
    return found != nullptr;
  }

  static std::optional<std::string> ReadPlainly(const std::string& prompt) {
    std::fputs(prompt.c_str(), TerminalStream());
    std::fflush(TerminalStream());
    std::string line;
    for (int octet = ReadOctet(); octet != '\n'; octet = ReadOctet()) {
      if (octet == EOF)
        return interrupted != 0 || line.empty() ? std::nullopt : std::optional(line);
      line += static_cast<char>(octet);
    }
    return line;
  }

  bool edits_ = false;
  char* (*readLine_)(const char*) = nullptr;
  int (*addHistory_)(const char*) = nullptr;
  void (*clearHistory_)() = nullptr;
};

const LineEditor& Editor() {
  static const LineEditor editor;
  return editor;
}

}  // namespace

std::optional<std::string> EditLine(const std::string& prompt) {
  const InterruptibleRead guard;
  std::optional<std::string> line = Editor().Read(prompt);
  if (line) return line;
  std::fputc('\n', TerminalStream());
  std::fflush(TerminalStream());
  return interrupted != 0 ? std::optional<std::string>("") : std::nullopt;
}

void RememberLine(const std::string& line) { Editor().Remember(line); }

void ForgetLines() { Editor().Forget(); }

}  // namespace host
