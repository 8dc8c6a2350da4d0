// Another program, run by a test.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <string>
#include <vector>

namespace platform_test {

class ChildProcess {
 public:
  // Starts the program with its standard output, and its standard error when `errors` is set, going
  // to the test.
  explicit ChildProcess(const std::vector<std::string>& arguments, bool errors = false);
  // Kills it unless it was waited for.
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  // The next line of its output, without the end of line; empty at its end. Nothing is waited for
  // longer than `patience`.
  std::string readLine();
  std::string readAll();

  void kill();
  // Nothing is ever written to its standard input; this ends it.
  void endInput();
  // SIGSTOP and SIGCONT.
  void stop();
  void goOn();

  // Its exit code, or minus the signal that ended it: SIGKILL when it did not end by itself.
  int wait();

 private:
  static constexpr std::chrono::seconds patience{60};

  // The next bytes of its output; 0 at its end or when there are none in time.
  size_t readSome(char* to, size_t most);

  pid_t process_ = -1;
  int output_ = -1;
  int input_ = -1;
};

// The helper program of these tests, with its arguments.
std::vector<std::string> peer(const std::vector<std::string>& arguments);

}  // namespace platform_test
