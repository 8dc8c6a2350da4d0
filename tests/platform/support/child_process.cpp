#include "support/child_process.hpp"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <stdexcept>
#include <thread>
#include <utility>

namespace platform_test {

ChildProcess::ChildProcess(const std::vector<std::string>& arguments, bool errors) {
  int pipe[2];
  int input[2];
  if (pipe2(pipe, O_CLOEXEC) != 0 || pipe2(input, O_CLOEXEC) != 0) {
    throw std::runtime_error("no pipe");
  }
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO);
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
  close(input[0]);
  output_ = pipe[0];
  input_ = input[1];
  if (error != 0) {
    close(output_);
    closeInput();
    throw std::runtime_error(arguments[0] + ": " + std::strerror(error));
  }
}

ChildProcess::~ChildProcess() {
  if (process_ > 0) {
    kill();
    wait();
  }
  close(output_);
  closeInput();
}

size_t ChildProcess::readSome(char* to, size_t most) {
  pollfd readable{.fd = output_, .events = POLLIN, .revents = 0};
  const auto wait = std::chrono::duration_cast<std::chrono::milliseconds>(patience);
  if (poll(&readable, 1, static_cast<int>(wait.count())) != 1) {
    return 0;
  }
  const ssize_t got = read(output_, to, most);
  return got > 0 ? static_cast<size_t>(got) : 0;
}

std::string ChildProcess::readLine() {
  std::string line;
  char byte;
  while (readSome(&byte, 1) == 1 && byte != '\n') {
    line += byte;
  }
  return line;
}

std::string ChildProcess::readAll() {
  std::string text;
  char bytes[4096];
  while (const size_t got = readSome(bytes, sizeof bytes)) {
    text.append(bytes, got);
  }
  return text;
}

void ChildProcess::kill() {
  ::kill(process_, SIGKILL);
}

void ChildProcess::closeInput() {
  if (input_ >= 0) {
    close(std::exchange(input_, -1));
  }
}

void ChildProcess::stop() {
  ::kill(process_, SIGSTOP);
  siginfo_t stopped;
  waitid(P_PID, static_cast<id_t>(process_), &stopped, WSTOPPED);
}

void ChildProcess::resume() {
  ::kill(process_, SIGCONT);
}

int ChildProcess::wait() {
  int status = 0;
  const auto end = std::chrono::steady_clock::now() + patience;
  while (waitpid(process_, &status, WNOHANG) == 0) {
    if (std::chrono::steady_clock::now() > end) {
      kill();
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
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
