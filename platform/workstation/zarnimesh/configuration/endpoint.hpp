// The endpoints at which nodes receive.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "zarnimesh/error.hpp"

namespace zarnimesh {

enum class Transport {
  Ipc,
  Inproc,
  Tcp,
};

struct Endpoint {
  Transport transport = Transport::Ipc;
  std::string rest;  // after the "//": a path, a name, or host:port

  std::string text() const;
};

// Parses ipc://path, inproc://name and tcp://host:port. Replaces localhost by 127.0.0.1. Returns
// null, or an error text.
[[nodiscard]] const char* parseEndpoint(std::string_view text, Endpoint& out);

// Rejects a tcp endpoint that other machines can reach, unless peers need a key.
[[nodiscard]] mesh_result checkBindable(const Endpoint& endpoint, bool hasKeys);

}  // namespace zarnimesh
