// Another program that a test runs.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <string>
#include <vector>

namespace platform_test {

class ChildProcess {
 public:
  // Starts the program. The test reads its standard output, and also its standard error if `errors`
  // is set.
  explicit ChildProcess(const std::vector<std::string>& arguments, bool errors = false);
  // Kills the program unless wait() was called.
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  // The next line of output, without the newline. Empty at the end of the output. Each read waits
  // at most `patience`.
  std::string readLine();
  std::string readAll();

  void kill();
  // Closes its standard input, which stays empty.
  void closeInput();
  // SIGSTOP and SIGCONT.
  void stop();
  void resume();

  // The exit code, or the negated signal that ended it. Kills it if it does not end within
  // `patience`.
  int wait();

 private:
  static constexpr std::chrono::seconds patience{60};

  // The next bytes of output. 0 at the end or after `patience`.
  size_t readSome(char* to, size_t most);

  pid_t process_ = -1;
  int output_ = -1;
  int input_ = -1;
};

// The command line of the tests' second process (peer.cpp).
std::vector<std::string> peer(const std::vector<std::string>& arguments);

}  // namespace platform_test
