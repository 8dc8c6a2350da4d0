#include "zarnimesh/listener.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <utility>

#include "zarnimesh/inproc_table.hpp"
#include "zarnimesh/runtime_directory.hpp"

namespace zarnimesh {
namespace {

// The transport's own thread closes a listening socket; it is busy for longer only in a system that
// has come to a halt.
constexpr std::chrono::milliseconds closingTime{1000};

// The transport replaces whatever is at the path it binds. Only a socket may be, that of a node
// that has ended without taking it away.
mesh_result makeSureNothingElseIsThere(const std::string& path) {
  struct stat status {};
  if (lstat(path.c_str(), &status) == 0 && !S_ISSOCK(status.st_mode)) {
    return fail(MESH_BAD_CONFIGURATION, "%s: there is something that is no socket", path.c_str());
  }
  return MESH_OK;
}

}  // namespace

mesh_result Listener::open(std::shared_ptr<Context> context, const Settings& settings,
                           uint32_t address) {
  context_ = std::move(context);
  if (settings.defaultTransport == Transport::Ipc) {
    // Asked of every node that may come to use it: senders trust it as much as receivers do.
    if (const auto result = prepareRuntimeDirectory(settings.runtimeDirectory); result != MESH_OK) {
      return result;
    }
  }
  endpoint_ = settings.endpointOf(address);
  if (const mesh_result result = makeBindable(endpoint_); result != MESH_OK) {
    return result;
  }
  if (endpoint_.transport == Transport::Ipc) {
    if (const auto result = makeSureNothingElseIsThere(endpoint_.rest); result != MESH_OK) {
      return result;
    }
  }
  if (const mesh_result result = claim(); result != MESH_OK) {
    return result;
  }
  return openSocket(settings);
}

// Makes sure that nobody alive receives at the endpoint; for tcp, binding tells that.
mesh_result Listener::claim() {
  if (endpoint_.transport == Transport::Ipc) {
    return lock_.acquire(endpoint_.rest + ".lock");
  }
  if (endpoint_.transport == Transport::Inproc) {
    generation_ = InprocTable::instance().add(endpoint_.rest);
    if (!generation_) {
      return fail(MESH_ADDRESS_IN_USE, "%s: held by a node of this process",
                  endpoint_.text().c_str());
    }
  }
  return MESH_OK;
}

mesh_result Listener::openSocket(const Settings& settings) {
  const std::string endpoint =
      generation_ ? InprocTable::boundEndpoint(endpoint_.rest, *generation_) : endpoint_.text();
  socket_ = Socket(zmq_socket(context_->handle(), ZMQ_PULL));
  if (!socket_ || !socket_.set(ZMQ_RCVHWM, settings.receiveQueueCalls) ||
      !socket_.set(ZMQ_LINGER, 0) || !socket_.set(ZMQ_MAXMSGSIZE, settings.partLimit()) ||
      !socket_.set(ZMQ_IPV6, endpoint.starts_with("tcp://[") ? 1 : 0) ||
      zmq_bind(socket_.handle(), endpoint.c_str()) != 0) {
    return failFromTransport(endpoint.c_str());
  }
  bound_ = endpoint;
  if (endpoint_.transport == Transport::Ipc && chmod(endpoint_.rest.c_str(), 0600) != 0) {
    return fail(MESH_SYSTEM_ERROR, "%s: %s", endpoint_.rest.c_str(), std::strerror(errno));
  }
  return MESH_OK;
}

void Listener::close() {
  // The order matters: whoever may open the endpoint next must find the listening socket gone.
  if (generation_) {
    InprocTable::instance().remove(endpoint_.rest);
    generation_.reset();
  }
  if (!bound_.empty() && endpoint_.transport != Transport::Inproc) {
    stopListening();
  }
  bound_.clear();
  socket_.close();
  lock_.release();
  context_.reset();
}

void Listener::stopListening() {
  Socket watcher = watchEvents(*context_, socket_, ZMQ_EVENT_CLOSED | ZMQ_EVENT_CLOSE_FAILED);
  if (zmq_unbind(socket_.handle(), bound_.c_str()) == 0 && watcher) {
    const auto end = std::chrono::steady_clock::now() + closingTime;
    while (nextEvent(watcher) == 0 && std::chrono::steady_clock::now() < end) {
      zmq_pollitem_t item{.socket = watcher.handle(), .fd = 0, .events = ZMQ_POLLIN, .revents = 0};
      static_cast<void>(zmq_poll(&item, 1, 50));
    }
  }
  if (endpoint_.transport == Transport::Ipc) {
    unlink(endpoint_.rest.c_str());
  }
}

}  // namespace zarnimesh
