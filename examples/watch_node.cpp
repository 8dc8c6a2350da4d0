// Watches a node: one lambda for each record type of interest, everything else is counted.
//
//   watch_node                 sends some messages to itself and handles them
//   watch_node ADDRESS         watches node ADDRESS until nothing arrives for ten seconds

#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include "mesh_l2vpn/messages.hpp"
#include "zarnimesh/node.h"

namespace {

struct CloseNode {
  void operator()(mesh_node* node) const { mesh_node_close(node); }
};

bool failed(const char* what, std::error_code result) {
  if (result) {
    std::fprintf(stderr, "watch_node: %s: %s (%s)\n", what, result.message().c_str(),
                 mesh_node_last_error());
  }
  return static_cast<bool>(result);
}

std::error_code sendSome(uint32_t destination) {
  l2vpn_sync_vpls_ac_update update{};
  update.f0 = 7;      // a value of the sender's
  update.f1.f0 = 42;  // the attachment circuit itself
  if (const std::error_code result = mesh_l2vpn::send(destination, update)) {
    return result;
  }
  std::vector<l2vpn_stat_pw_stat> statistics(3);
  statistics[2].f5 = 1000;
  if (const std::error_code result = mesh_l2vpn::send(destination, statistics)) {
    return result;  // all three arrive, or none
  }
  return mesh_l2vpn::send(destination, l2vpn_sync_stp{1, 2, 3, 4});
}

}  // namespace

int main(int argc, char** argv) {
  const bool toItself = argc < 2;
  const auto address = static_cast<uint32_t>(toItself ? 1 : std::strtoul(argv[1], nullptr, 0));
  mesh_node_options options;
  mesh_node_options_default(&options);
  if (toItself) {
    options.transport = MESH_TRANSPORT_INPROC;
  }
  mesh_node* opened = nullptr;
  if (failed("open", mesh_l2vpn::result(mesh_node_open(address, &options, &opened)))) {
    return EXIT_FAILURE;
  }
  const std::unique_ptr<mesh_node, CloseNode> node(opened);
  if (failed("register", mesh_l2vpn::result(l2vpn_cfg_recv_init())) ||
      failed("register", mesh_l2vpn::result(l2vpn_stat_recv_init())) ||
      failed("register", mesh_l2vpn::result(l2vpn_sync_recv_init())) ||
      (toItself && failed("send", sendSome(address)))) {
    return EXIT_FAILURE;
  }

  uint64_t packets = 0;
  mesh_l2vpn::handlers watch(
      [](const l2vpn_sync_vpls_ac_update& update, const mesh_received& received) {
        std::printf("node %u: circuit %u changed, value %u\n", received.source, update.f1.f0,
                    update.f0);
      },
      [&packets](const l2vpn_stat_pw_stat& statistics) { packets += statistics.f5; });
  const int patience = toItself ? 1'000 : 10'000;
  while (mesh_node_receive(node.get(), patience, watch.deliver<mesh_received>, &watch) > 0) {
  }
  std::printf("%" PRIu64 " packets; %" PRIu64 " other records\n", packets, watch.unhandled());
  return EXIT_SUCCESS;
}
