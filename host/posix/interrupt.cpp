#include "host/posix/interrupt.h"

#include <unistd.h>

#include <csignal>

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

}  // namespace

InterruptibleRead::InterruptibleRead() {
  interrupted = 0;
  reading = 1;
  HandleInterrupts(0);
}

InterruptibleRead::~InterruptibleRead() {
  HandleInterrupts(SA_RESTART);  // the libraries of readers know nothing of interrupted calls
  interrupted = 0;
  reading = 0;
}

bool InterruptibleRead::Interrupted() const { return interrupted != 0; }

std::FILE* TerminalStream() {
  static std::FILE* const stream = OutputIsTerminal() ? stdout : std::fopen(ttyname(0), "w");
  return stream != nullptr ? stream : stderr;
}

}  // namespace host
