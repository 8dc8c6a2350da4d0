#include <zmq.h>

#include <unordered_map>

#include "bench/transport/party.hpp"
#include "zarnimesh/transport/frame.hpp"

namespace transport_bench {
namespace {

constexpr int waitMs = 100;

void require(bool holds, const char* what) {
  if (!holds) {
    fail("%s: %s", what, zmq_strerror(zmq_errno()));
  }
}

// Lives until the process ends: every call has arrived by then.
void* context() {
  static void* const shared = [] {
    void* const made = zmq_ctx_new();
    require(made != nullptr && zmq_ctx_set(made, ZMQ_MAX_SOCKETS, 16'384) == 0, "context");
    return made;
  }();
  return shared;
}

std::string endpointOf(const Setup& setup, uint32_t address) {
  switch (setup.transport) {
    case Transport::Ipc:
      return "ipc://" + setup.directory + "/raw-" + std::to_string(address);
    case Transport::Inproc:
      return "inproc://" + std::to_string(address);
    case Transport::Tcp:
    case Transport::Curve:
      break;
  }
  return "tcp://127.0.0.1:" + std::to_string(setup.ports[address < firstReceiver ? 0 : 1]);
}

// ZeroMQ's defaults: queues of 1,000 messages at either end.
class RawParty : public Party {
 public:
  RawParty(const Setup& setup, uint32_t address)
      : setup_(setup),
        own_(setup.keys[address < firstReceiver ? 0 : 1]),
        theirs_(setup.keys[address < firstReceiver ? 1 : 0]),
        message_(zarnimesh::headerSize + setup.records * zarnimesh::indexEntrySize) {
    message_.insert(message_.end(), setup.tables->begin(),
                    setup.tables->begin() + setup.records * ptrdiff_t{tableSize});
    pull_ = zmq_socket(context(), ZMQ_PULL);
    require(pull_ != nullptr, "socket");
    set(pull_, ZMQ_RCVTIMEO, waitMs);
    if (setup.transport == Transport::Curve) {
      set(pull_, ZMQ_CURVE_SERVER, 1);
      setKey(pull_, ZMQ_CURVE_SECRETKEY, own_.secretKey);
    }
    require(zmq_bind(pull_, endpointOf(setup, address).c_str()) == 0, "bind");
  }

  void send(uint32_t to) override {
    void*& push = push_[to];
    if (push == nullptr) {
      push = connect(to);
    }
    require(zmq_send(push, message_.data(), message_.size(), 0) >= 0, "send");
  }

  bool receive(bool wait) override {
    zmq_msg_t message;
    zmq_msg_init(&message);
    const int size = zmq_msg_recv(&message, pull_, wait ? 0 : ZMQ_DONTWAIT);
    require(size >= 0 || zmq_errno() == EAGAIN, "receive");
    const bool arrived = size >= 0;
    if (arrived && static_cast<size_t>(size) != message_.size()) {
      fail("a message of %zu bytes arrived with %d", message_.size(), size);
    }
    zmq_msg_close(&message);
    return arrived;
  }

  void close() override {
    for (const auto& [to, push] : push_) {
      zmq_close(push);
    }
    zmq_close(pull_);
  }

 private:
  static void set(void* socket, int option, int value) {
    require(zmq_setsockopt(socket, option, &value, sizeof value) == 0, "option");
  }

  static void setKey(void* socket, int option, const char* key) {
    require(zmq_setsockopt(socket, option, key, sizeof Keys::publicKey) == 0, "key");
  }

  void* connect(uint32_t to) {
    void* const push = zmq_socket(context(), ZMQ_PUSH);
    require(push != nullptr, "socket");
    if (setup_.transport == Transport::Curve) {
      setKey(push, ZMQ_CURVE_SERVERKEY, theirs_.publicKey);
      setKey(push, ZMQ_CURVE_PUBLICKEY, own_.publicKey);
      setKey(push, ZMQ_CURVE_SECRETKEY, own_.secretKey);
    }
    require(zmq_connect(push, endpointOf(setup_, to).c_str()) == 0, "connect");
    return push;
  }

  const Setup& setup_;
  const Keys& own_;
  const Keys& theirs_;
  std::vector<uint8_t> message_;
  void* pull_ = nullptr;
  std::unordered_map<uint32_t, void*> push_;
};

}  // namespace

std::unique_ptr<Party> openRaw(const Setup& setup, uint32_t address) {
  return std::make_unique<RawParty>(setup, address);
}

}  // namespace transport_bench
