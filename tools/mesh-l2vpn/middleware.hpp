// The workstation's middleware, loaded at run time: few commands need it.
#pragma once

#include <functional>
#include <map>
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

  // The latest call of a sender.
  struct Sender {
    uint64_t incarnation = 0;
    uint64_t sequence = 0;
  };
  static constexpr size_t mostSenders = 65536;

  uint64_t missedBefore(const mesh_received& received);

  std::unique_ptr<Functions> functions_;
  uint32_t address_;
  mesh_node* node_ = nullptr;
  std::map<uint32_t, Sender> senders_;  // by address
  uint64_t missedBeforeFirst_ = 0;
};

// The address of a node that only sends: the wanted one; for 0 one that differs in every process.
uint32_t sendingAddress(uint32_t wanted);

}  // namespace tool
