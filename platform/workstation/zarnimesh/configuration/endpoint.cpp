#include "zarnimesh/configuration/endpoint.hpp"

#include <arpa/inet.h>
#include <sys/un.h>

#include <charconv>
#include <utility>

namespace zarnimesh {
namespace {

constexpr std::pair<std::string_view, Transport> schemes[] = {
    {"ipc://", Transport::Ipc},
    {"inproc://", Transport::Inproc},
    {"tcp://", Transport::Tcp},
};

std::string_view hostOf(std::string_view hostAndPort) {
  return hostAndPort.substr(0, hostAndPort.rfind(':'));
}

const char* checkHostAndPort(std::string_view text) {
  const size_t colon = text.rfind(':');
  if (colon == std::string_view::npos || colon == 0) {
    return "a tcp endpoint must be tcp://host:port";
  }
  const std::string_view port = text.substr(colon + 1);
  uint16_t number = 0;
  const auto [end, error] = std::from_chars(port.data(), port.data() + port.size(), number);
  if (error != std::errc{} || end != port.data() + port.size() || number == 0) {
    return "a tcp port must be a number from 1 to 65535";
  }
  const std::string_view host = text.substr(0, colon);
  const bool bracketed = host.front() == '[' && host.back() == ']';
  if (!bracketed && host.find_first_of(":[]") != std::string_view::npos) {
    return "an IPv6 address must be in brackets";
  }
  return nullptr;
}

bool isLoopback(const std::string& host) {
  in_addr address{};
  const bool ipv4 = inet_pton(AF_INET, host.c_str(), &address) == 1;
  return host == "[::1]" || (ipv4 && ntohl(address.s_addr) >> 24 == 127);
}

}  // namespace

std::string Endpoint::text() const {
  for (const auto& [prefix, scheme] : schemes) {
    if (scheme == transport) {
      return std::string(prefix) + rest;
    }
  }
  return rest;
}

const char* parseEndpoint(std::string_view text, Endpoint& out) {
  for (const auto& [prefix, scheme] : schemes) {
    if (!text.starts_with(prefix)) {
      continue;
    }
    const std::string_view rest = text.substr(prefix.size());
    if (rest.empty()) {
      return "the part after // is missing";
    }
    if (scheme == Transport::Ipc && rest.front() != '/') {
      return "an ipc endpoint must be ipc:// and an absolute path";
    }
    if (scheme == Transport::Ipc && rest.size() >= sizeof sockaddr_un{}.sun_path) {
      return "the path is too long for a socket";
    }
    if (scheme == Transport::Tcp) {
      if (const char* wrong = checkHostAndPort(rest)) {
        return wrong;
      }
    }
    out = {.transport = scheme, .rest = std::string(rest)};
    if (scheme == Transport::Tcp && hostOf(out.rest) == "localhost") {
      // The resolver may not know the name, or may map it to another address.
      out.rest.replace(0, hostOf(out.rest).size(), "127.0.0.1");
    }
    return nullptr;
  }
  return "an endpoint must start with ipc://, inproc:// or tcp://";
}

mesh_result checkBindable(const Endpoint& endpoint, bool hasKeys) {
  if (endpoint.transport != Transport::Tcp) {
    return MESH_OK;
  }
  const std::string host(hostOf(endpoint.rest));
  if (!hasKeys && !isLoopback(host)) {
    return fail(MESH_BAD_CONFIGURATION,
                "%s: a node without keys can receive only at a loopback address (127.x.y.z, [::1], "
                "localhost)",
                endpoint.text().c_str());
  }
  return MESH_OK;
}

}  // namespace zarnimesh
