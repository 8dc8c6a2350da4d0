#include "host/process.hpp"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <mutex>

// For coverage builds: _exit loses a process's counts unless they are written first.
extern "C" [[gnu::weak]] int __llvm_profile_write_file();

namespace harness {
namespace {

std::mutex notesLock;
Lines notes;

void writeNotes(int pipe) {
  std::string text;
  for (const std::string& line : notes) {
    text += line + "\n";
  }
  for (size_t at = 0; at < text.size();) {
    const ssize_t written = write(pipe, text.data() + at, text.size() - at);
    if (written <= 0) {
      _exit(2);
    }
    at += static_cast<size_t>(written);
  }
}

Lines readLines(int pipe) {
  std::string text;
  char piece[4096];
  for (ssize_t got = 0; (got = read(pipe, piece, sizeof piece)) > 0;) {
    text.append(piece, static_cast<size_t>(got));
  }
  Lines lines;
  for (size_t at = 0, end = 0; (end = text.find('\n', at)) != std::string::npos; at = end + 1) {
    lines.push_back(text.substr(at, end - at));
  }
  return lines;
}

}  // namespace

Lines inANewProcess(const std::function<void()>& scenario) {
  int ends[2];
  if (pipe(ends) != 0) {
    return {"no pipe"};
  }
  std::fflush(nullptr);  // otherwise the child would write buffered output again
  const pid_t child = fork();
  if (child == 0) {
    close(ends[0]);
    notes.clear();
    scenario();
    writeNotes(ends[1]);
    if (&__llvm_profile_write_file != nullptr) {
      __llvm_profile_write_file();
    }
    _exit(0);
  }
  close(ends[1]);
  Lines lines = readLines(ends[0]);
  close(ends[0]);
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status) ||
      WEXITSTATUS(status) != 0) {
    lines.emplace_back("ended badly");
  }
  return lines;
}

void note(const std::string& line) {
  const std::lock_guard guard(notesLock);
  notes.push_back(line);
}

void forgetNotes() {
  const std::lock_guard guard(notesLock);
  notes.clear();
}

}  // namespace harness
