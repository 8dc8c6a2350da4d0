#include "inspect/bytes/interruption.hpp"

#include <csignal>

namespace inspect {
namespace {

volatile std::sig_atomic_t interrupted = 0;

void interrupt(int /*signal*/) {
  interrupted = 1;
}

}  // namespace

void catchInterruptions() {
  struct sigaction action {};
  action.sa_handler = &interrupt;
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
  // Under nohup the program continues.
  struct sigaction before {};
  if (sigaction(SIGHUP, nullptr, &before) == 0 && before.sa_handler != SIG_IGN) {
    sigaction(SIGHUP, &action, nullptr);
  }
}

bool isInterrupted() {
  return interrupted != 0;
}

}  // namespace inspect
