// The workstation's middleware, loaded at run time: few commands need it.
#pragma once

#include <functional>
#include <memory>
#include <span>
#include <string>

#include "inspect/captures/traffic.hpp"
#include "zarnimesh/mesh.h"
#include "zarnimesh/node.h"

namespace tool {

using namespace inspect;

// A node of this process. One at a time.
class Node {
 public:
  // `library`: the path of a libzarnimesh; empty for the installed one. Fails if it cannot be
  // loaded or the node does not open.
  Node(const std::string& library, uint32_t address);
  ~Node();
  Node(const Node&) = delete;
  Node& operator=(const Node&) = delete;

  // Fails with the middleware's error text.
  void send(uint32_t destination, uint32_t id, std::span<const uint8_t> table, uint64_t extra);

  // Waits for the tables of one call and passes each to the handler, not decoded. The first table
  // after missed calls tells their number. Returns whether a call came.
  bool receive(int timeoutMs, const std::function<void(const Table&)>& handler);

  [[nodiscard]] mesh_node_statistics statistics() const;
  // Calls to this node that did not arrive, including those before a sender's first call that did.
  [[nodiscard]] uint64_t missedCalls() const;

  // Fails if the middleware could not deliver what was sent.
  void close();

 private:
  struct Functions;

  static void takeRecord(const mesh_received* received, void* self);
  static void takeUnknown(uint32_t source, uint32_t id, const uint8_t* data, uint32_t length,
                          uint64_t extra, void* self);
  void take(uint32_t source, uint32_t id, std::span<const uint8_t> bytes, uint64_t extra);

  std::unique_ptr<Functions> functions_;
  uint32_t address_;
  mesh_node* node_ = nullptr;
  const std::function<void(const Table&)>* handler_ = nullptr;
  std::string failure_;
  uint64_t missedSoFar_ = 0;
};

// The address of a node that only sends: the wanted one; for 0 one that differs in every process.
uint32_t sendingAddress(uint32_t wanted);

}  // namespace tool
