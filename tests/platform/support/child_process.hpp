// Another program, run by a test.
#pragma once

#include <sys/types.h>

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

  // The next line of its output, without the end of line; empty at its end.
  std::string readLine();
  std::string readAll();

  void kill();

  // Its exit code, or minus the signal that ended it.
  int wait();

 private:
  pid_t process_ = -1;
  int output_ = -1;
};

// The helper program of these tests, with its arguments.
std::vector<std::string> peer(const std::vector<std::string>& arguments);

}  // namespace platform_test
