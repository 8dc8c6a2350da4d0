// Keeps the library's thread from looking after nodes: a node's peer hook waits.
#pragma once

#include <future>

#include "support/node_fixture.hpp"

namespace platform_test {

class HeldLibraryThread {
 public:
  // `address` of a node of its own.
  explicit HeldLibraryThread(uint32_t address) {
    mesh_node_options options = defaults();
    options.transport = MESH_TRANSPORT_INPROC;
    options.peer_user = this;
    options.peer = [](const mesh_peer_event*, void* user) {
      auto* const self = static_cast<HeldLibraryThread*>(user);
      if (!self->held_) {
        self->held_ = true;
        self->holds_.set_value();
        self->released_.get_future().wait();
      }
    };
    EXPECT_EQ(mesh_node_open(address, &options, &node_), MESH_OK) << mesh_node_last_error();
    const mesh_msg_desc empty{};
    EXPECT_EQ(mesh_node_send(node_, address, &empty, 1, 0, -1), MESH_OK);
    holds_.get_future().wait();
  }
  ~HeldLibraryThread() {
    released_.set_value();
    static_cast<void>(mesh_node_receive(node_, 10'000, nullptr, nullptr));
    EXPECT_EQ(mesh_node_close(node_), MESH_OK);
  }
  HeldLibraryThread(const HeldLibraryThread&) = delete;
  HeldLibraryThread& operator=(const HeldLibraryThread&) = delete;

 private:
  mesh_node* node_ = nullptr;
  bool held_ = false;  // the library's thread's
  std::promise<void> holds_;
  std::promise<void> released_;
};

}  // namespace platform_test
