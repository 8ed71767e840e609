#include <csignal>

#include "host/platform.h"

namespace host {
namespace {

volatile std::sig_atomic_t noted = 0;
volatile std::sig_atomic_t most = 0;

void Note(int signal) {
  if (noted == most) {
    std::signal(signal, SIG_DFL);
    raise(signal);
  }
  noted = noted + 1;
}

}  // namespace

void NoteInterrupts(int count) {
  most = count;
  struct sigaction action {};
  action.sa_handler = Note;
  action.sa_flags = SA_RESTART;  // the libraries of readers know nothing of interrupted calls
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaction(signal, &action, nullptr);
  // The write that goes past a limit of file sizes, or to nobody, tells of it.
  for (const int signal : {SIGXFSZ, SIGPIPE}) std::signal(signal, SIG_IGN);
}

int Interrupts() { return noted; }

}  // namespace host
