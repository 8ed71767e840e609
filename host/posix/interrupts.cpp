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
  action.sa_flags = SA_RESTART;  // readers' libraries do not expect interrupted calls
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaction(signal, &action, nullptr);
  // A write beyond a file size limit, or to a closed pipe, reports its own failure.
  for (const int signal : {SIGXFSZ, SIGPIPE}) std::signal(signal, SIG_IGN);
}

int Interrupts() { return noted; }

}  // namespace host
