// Where a node receives.
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
  std::string rest;  // behind the "//": a path, a name, or host:port

  std::string text() const;
};

// Parses ipc://path, inproc://name and tcp://host:port; localhost is 127.0.0.1. Returns null, or
// what is wrong with it.
[[nodiscard]] const char* parseEndpoint(std::string_view text, Endpoint& out);

// Refuses a tcp endpoint that other machines could reach, unless whoever connects is asked for a
// key.
[[nodiscard]] mesh_result checkBindable(const Endpoint& endpoint, bool asksForKeys);

}  // namespace zarnimesh
