#include "zarnimesh/transport/context.hpp"

#include <zmq.h>

#include <cerrno>
#include <utility>

namespace zarnimesh {
namespace {

// A node takes two sockets and some internal ones. ZeroMQ's default of 1023 is too low.
constexpr int maxSockets = 16384;

}  // namespace

std::shared_ptr<Context> Context::shared(int ioThreads) {
  static std::mutex mutex;
  static std::weak_ptr<Context> current;
  const std::lock_guard lock(mutex);
  if (auto context = current.lock()) {
    return context;
  }
  std::unique_ptr<void, int (*)(void*)> handle(zmq_ctx_new(), &zmq_ctx_term);
  if (handle == nullptr) {
    return nullptr;
  }
  auto context = std::make_shared<Context>(handle.get());
  static_cast<void>(handle.release());
  if (zmq_ctx_set(context->handle(), ZMQ_MAX_SOCKETS, maxSockets) != 0 ||
      zmq_ctx_set(context->handle(), ZMQ_IO_THREADS, ioThreads) != 0) {
    return nullptr;
  }
  current = context;
  return context;
}

Context::Context(void* handle) : handle_(handle) {}

Context::~Context() {
  while (zmq_ctx_term(handle_) != 0 && errno == EINTR) {
  }
}

Authenticator* Context::authenticator() {
  const std::lock_guard lock(mutex_);
  if (authenticator_ == nullptr) {
    auto starting = std::make_unique<Authenticator>();
    if (starting->start(handle_) != MESH_OK) {
      return nullptr;
    }
    authenticator_ = std::move(starting);
  }
  return authenticator_.get();
}

}  // namespace zarnimesh
