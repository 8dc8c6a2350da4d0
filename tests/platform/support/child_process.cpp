#include "support/child_process.hpp"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <stdexcept>

namespace platform_test {

ChildProcess::ChildProcess(const std::vector<std::string>& arguments, bool errors) {
  int pipe[2];
  if (pipe2(pipe, O_CLOEXEC) != 0) {
    throw std::runtime_error("no pipe");
  }
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, pipe[1], STDOUT_FILENO);
  if (errors) {
    posix_spawn_file_actions_adddup2(&actions, pipe[1], STDERR_FILENO);
  }
  std::vector<char*> argv;
  for (const std::string& argument : arguments) {
    argv.push_back(const_cast<char*>(argument.c_str()));
  }
  argv.push_back(nullptr);
  const int error = posix_spawn(&process_, argv[0], &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  close(pipe[1]);
  output_ = pipe[0];
  if (error != 0) {
    close(output_);
    throw std::runtime_error(arguments[0] + ": " + std::strerror(error));
  }
}

ChildProcess::~ChildProcess() {
  if (process_ > 0) {
    kill();
    wait();
  }
  close(output_);
}

std::string ChildProcess::readLine() {
  std::string line;
  char byte;
  while (read(output_, &byte, 1) == 1 && byte != '\n') {
    line += byte;
  }
  return line;
}

std::string ChildProcess::readAll() {
  std::string text;
  char bytes[4096];
  ssize_t got;
  while ((got = read(output_, bytes, sizeof bytes)) > 0) {
    text.append(bytes, static_cast<size_t>(got));
  }
  return text;
}

void ChildProcess::kill() {
  ::kill(process_, SIGKILL);
}

int ChildProcess::wait() {
  int status = 0;
  waitpid(process_, &status, 0);
  process_ = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

std::vector<std::string> peer(const std::vector<std::string>& arguments) {
  std::vector<std::string> command{PLATFORM_TEST_PEER};
  for (const std::string& argument : arguments) {
    command.push_back(argument);
  }
  return command;
}

}  // namespace platform_test
