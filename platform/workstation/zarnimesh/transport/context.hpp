// The process's ZeroMQ context.
#pragma once

#include <memory>
#include <mutex>

#include "zarnimesh/transport/authenticator.hpp"

namespace zarnimesh {

// Exists from the first open node to the last. Its destructor waits until lingering sockets have
// delivered their messages.
class Context {
 public:
  // The context that the open nodes share, or a new one. Null when ZeroMQ fails.
  static std::shared_ptr<Context> shared(int ioThreads);

  explicit Context(void* handle);
  // Ends ZeroMQ's context, which also ends the authenticator's thread.
  ~Context();
  Context(const Context&) = delete;
  Context& operator=(const Context&) = delete;

  void* handle() const { return handle_; }

  // The authenticator of nodes with keys. The first call starts it. Null when it cannot start; the
  // error text is then set.
  Authenticator* authenticator();

 private:
  void* handle_;
  std::mutex mutex_;  // guards the start of the authenticator
  std::unique_ptr<Authenticator> authenticator_;
};

}  // namespace zarnimesh
