// The fixture of tests with nodes: a private directory, registered hooks, nodes that close.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <utility>

#include "support/note.hpp"
#include "support/temporary_directory.hpp"
#include "zarnimesh/mesh.h"
#include "zarnimesh/node.h"

namespace platform_test {

// The node of tests with one node.
inline constexpr uint32_t ownNode = 5;

inline std::chrono::milliseconds since(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                               start);
}

// The time limit of a waiting loop.
class Deadline {
 public:
  bool passed() const { return std::chrono::steady_clock::now() > end_; }

 private:
  const std::chrono::steady_clock::time_point end_ =
      std::chrono::steady_clock::now() + std::chrono::seconds(30);
};

// An open node. Converts to its handle.
class OpenNode {
 public:
  explicit OpenNode(mesh_node* node = nullptr) : node_(node) {}
  OpenNode(OpenNode&& other) noexcept : node_(std::exchange(other.node_, nullptr)) {}
  OpenNode& operator=(OpenNode&& other) noexcept {
    std::swap(node_, other.node_);
    return *this;
  }
  ~OpenNode() {
    if (node_ != nullptr) {
      EXPECT_EQ(close(), MESH_OK);
    }
  }

  operator mesh_node*() const { return node_; }
  mesh_node* release() { return std::exchange(node_, nullptr); }
  mesh_result close() { return mesh_node_close(release()); }

 private:
  mesh_node* node_;
};

inline mesh_node_options defaults() {
  mesh_node_options options;
  mesh_node_options_default(&options);
  return options;
}

// The defaults with short timeouts.
inline mesh_node_options impatient(mesh_transport transport = MESH_TRANSPORT_IPC) {
  mesh_node_options options = defaults();
  options.transport = transport;
  options.connect_timeout_ms = 300;
  options.send_timeout_ms = 300;
  options.linger_ms = 100;
  return options;
}

// For suites over both transports that need no configuration.
inline const auto bothTransports = ::testing::Values(MESH_TRANSPORT_IPC, MESH_TRANSPORT_INPROC);

inline std::string transportName(const ::testing::TestParamInfo<mesh_transport>& suite) {
  return suite.param == MESH_TRANSPORT_IPC ? "ipc" : "inproc";
}

class NodeFixture : public ::testing::Test {
 protected:
  NodeFixture() {
    setenv("ZARNIMESH_RUNTIME_DIR", directory_.path().c_str(), 1);
    unsetenv("ZARNIMESH_ADDRESS_BOOK");
    registerNotes();
    // An earlier test may have left the thread attached to a closed node.
    EXPECT_EQ(mesh_node_attach(nullptr), MESH_OK);
  }
  ~NodeFixture() override { EXPECT_EQ(notesOut(), 0) << "a record was not released"; }

  const std::string& directory() const { return directory_.path(); }

  static OpenNode open(uint32_t address, const mesh_node_options& options = defaults()) {
    mesh_node* node = nullptr;
    EXPECT_EQ(mesh_node_open(address, &options, &node), MESH_OK) << mesh_node_last_error();
    return OpenNode(node);
  }

  static mesh_result resultOfOpening(uint32_t address, const mesh_node_options& options) {
    mesh_node* node = nullptr;
    const mesh_result result = mesh_node_open(address, &options, &node);
    EXPECT_EQ(node == nullptr, result != MESH_OK);
    const OpenNode closing(node);
    return result;
  }

 private:
  TemporaryDirectory directory_;
};

}  // namespace platform_test
