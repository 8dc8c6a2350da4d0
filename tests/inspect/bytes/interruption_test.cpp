// Signals that end a command early. Each test has a process of its own, as they stay caught.

#include "inspect/bytes/interruption.hpp"

#include <gtest/gtest.h>

#include <csignal>

namespace inspect {
namespace {

[[noreturn]] void exitAfter(int signal) {
  catchInterruptions();
  const bool before = isInterrupted();
  raise(signal);
  std::_Exit(!before && isInterrupted() ? 0 : 1);
}

TEST(Interruption, IsNotedForEverySignal) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    EXPECT_EXIT(exitAfter(signal), testing::ExitedWithCode(0), "") << signal;
  }
}

TEST(Interruption, LeavesHangupIgnoredUnderNohup) {
  EXPECT_EXIT(
      {
        std::signal(SIGHUP, SIG_IGN);
        catchInterruptions();
        raise(SIGHUP);
        std::_Exit(isInterrupted() ? 1 : 0);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace inspect
