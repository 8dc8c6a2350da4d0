// mesh-l2vpn: shows, creates, sends and records Layer-2 VPN messages.

#include <fcntl.h>
#include <unistd.h>

#include <iostream>
#include <new>

#include "options.hpp"

namespace {

int exitCode(tool::Exit exit) {
  return static_cast<int>(exit);
}

// Otherwise a file opened later could get the number of a closed standard stream.
void occupyStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) < 0) {
      // Opened for the wrong direction, so that using it is an error.
      open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
  }
}

int fail(const inspect::Failure& failure) {
  // Prints earlier output first. If that fails too, the first failure is enough.
  std::cout.exceptions(std::ios::goodbit);
  std::cout.flush();
  tool::complain(failure.what());
  return exitCode(tool::exitFor(failure.cause()));
}

int run(int count, char** words) {
  // An output that fails ends the command at once.
  std::cout.exceptions(std::ios::badbit);
  try {
    const tool::Exit exit = tool::runCommandLine(count, words);
    std::cout.flush();
    return exitCode(exit);
  } catch (const inspect::Failure& failure) {
    return fail(failure);
  } catch (const std::ios::failure&) {
    return fail(tool::outputFailure());
  } catch (const std::bad_alloc&) {
    return fail({inspect::Cause::System, "out of memory"});
  } catch (const std::exception& error) {
    return fail({inspect::Cause::System, error.what()});
  }
}

}  // namespace

int main(int count, char** words) {
  occupyStandardStreams();
  std::ios::sync_with_stdio(false);
  return run(count, words);
}
