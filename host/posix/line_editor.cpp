#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <system_error>
#include <utility>

#include "host/platform.h"
#include "host/text.h"

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

// While it lives, Ctrl-C makes a read fail with EINTR. After the first one has lived, a first
// Ctrl-C outside does nothing and a second one ends the program.
class InterruptibleRead {
 public:
  InterruptibleRead() {
    interrupted = 0;
    reading = 1;
    HandleInterrupts(0);
  }
  ~InterruptibleRead() {
    HandleInterrupts(SA_RESTART);  // readers' libraries do not expect interrupted calls
    interrupted = 0;
    reading = 0;
  }
  InterruptibleRead(const InterruptibleRead&) = delete;
  InterruptibleRead& operator=(const InterruptibleRead&) = delete;
};

// The terminal on which the person types, even if standard output goes elsewhere.
std::FILE* TerminalStream() {
  static std::FILE* const stream = OutputIsTerminal() ? stdout : std::fopen(ttyname(0), "w");
  return stream != nullptr ? stream : stderr;
}

int ReadOctet() {
  unsigned char octet = 0;
  return read(STDIN_FILENO, &octet, 1) == 1 ? octet : EOF;
}

// One character of UTF-8 in libedit's form; EOF at the end of input and after Ctrl-C. libedit's own
// function would read on after Ctrl-C.
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

// Line editing, if libedit is installed. It is loaded only when a person types: linking it and its
// three libraries would cost a fifth of the time of a single command.
struct LineEditor {
  char* (*readLine)(const char*) = nullptr;
  int (*addHistory)(const char*) = nullptr;
  void (*clearHistory)() = nullptr;
  char** line = nullptr;
  int* completed = nullptr;  // not 0: no completion of files by libedit
};

Completer completer;

const LineEditor& Editor();

char* Copied(const std::string& text) { return strdup(text.c_str()); }

// Gives libedit the replacement for the word, followed by the words to choose from; null for none.
// libedit frees them all. `end` is the position of the word's end, in characters.
char** Complete(const char* typed, int, int end) try {
  const LineEditor& editor = Editor();
  if (editor.completed == nullptr || editor.line == nullptr) return nullptr;
  *editor.completed = 1;
  std::string_view before = *editor.line;
  size_t at = 0;
  for (int characters = 0; at < before.size(); ++at) {
    if (BeginsCharacter(before[at]) && characters++ == end) break;
  }
  const std::vector<std::string> words =
      completer ? completer(before.substr(0, at)) : std::vector<std::string>();
  if (words.empty()) return nullptr;
  std::string common = words[0];
  for (const std::string& word : words) {
    common.resize(static_cast<size_t>(
        std::mismatch(common.begin(), common.end(), word.begin(), word.end()).first -
        common.begin()));
  }
  if (words.size() > 1 && common.size() < std::strlen(typed)) common = typed;
  auto** const list = static_cast<char**>(std::calloc(words.size() + 2, sizeof(char*)));
  list[0] = Copied(common);
  if (words.size() > 1) std::transform(words.begin(), words.end(), list + 1, Copied);
  return list;
} catch (const std::exception&) {  // must not pass through libedit
  return nullptr;
}

LineEditor LoadLineEditor() {
  void* const libedit = dlopen("libedit.so.2", RTLD_NOW | RTLD_LOCAL);
  LineEditor editor;
  std::FILE** output = nullptr;
  int (**readCharacter)(FILE*) = nullptr;
  char** (**complete)(const char*, int, int) = nullptr;
  const char** wordBreaks = nullptr;
  int* appended = nullptr;
  const auto find = [libedit](const char* name, auto& found) {
    found = reinterpret_cast<std::decay_t<decltype(found)>>(ModuleFunction(libedit, name));
    return found != nullptr;
  };
  if (libedit == nullptr || !find("readline", editor.readLine) ||
      !find("add_history", editor.addHistory) || !find("clear_history", editor.clearHistory) ||
      !find("rl_outstream", output) || !find("rl_getc_function", readCharacter) ||
      !find("rl_line_buffer", editor.line) || !find("rl_attempted_completion_function", complete) ||
      !find("rl_attempted_completion_over", editor.completed) ||
      !find("rl_basic_word_break_characters", wordBreaks) ||
      !find("rl_completion_append_character", appended)) {
    return {};
  }
  std::setlocale(LC_CTYPE, "C.UTF-8");
  *output = TerminalStream();
  *readCharacter = ReadCharacter;
  *complete = Complete;
  *wordBreaks = " \t(),=";
  *appended = 0;
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

void CompleteWith(Completer words) { completer = std::move(words); }

std::optional<std::string> HistoryFile() {
  const std::string folder = EnvironmentVariable("XDG_STATE_HOME").value_or("");
  if (folder.starts_with('/')) return folder + "/orvane/history";
  const std::string home = EnvironmentVariable("HOME").value_or("");
  if (home.starts_with('/')) return home + "/.local/state/orvane/history";
  return std::nullopt;
}

bool WriteForOwner(const std::string& file, const std::string& text) {
  std::error_code error;
  const std::filesystem::path folder = std::filesystem::path(file).parent_path();
  if (std::filesystem::create_directories(folder, error)) chmod(folder.c_str(), S_IRWXU);
  const std::string made = file + "." + std::to_string(getpid());
  const int descriptor = open(made.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (descriptor < 0) return false;
  std::ptrdiff_t written = 0;
  for (size_t at = 0; at < text.size() && written >= 0; at += static_cast<size_t>(written)) {
    written = WriteSome(descriptor, std::string_view(text).substr(at));
    if (written < 0) break;
  }
  const bool done =
      close(descriptor) == 0 && written >= 0 && std::rename(made.c_str(), file.c_str()) == 0;
  if (!done) unlink(made.c_str());
  return done;
}

void ForgetLines() {
  if (Editor().clearHistory != nullptr) Editor().clearHistory();
}

}  // namespace host
