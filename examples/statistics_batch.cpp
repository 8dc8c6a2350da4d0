// Sends the statistics of many pseudowires in one call, and adds up what arrives.
//
//   statistics_batch [COUNT]    COUNT: number of pseudowires, 1000 by default

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include "mesh_l2vpn/l2vpn_stat.h"
#include "zarnimesh/node.h"

namespace {

constexpr uint32_t address = 1;

struct Totals {
  uint64_t pseudowires = 0;
  uint64_t packets = 0;
};

std::vector<l2vpn_stat_pw_stat> statisticsOf(uint32_t count) {
  std::vector<l2vpn_stat_pw_stat> all(count);
  for (uint32_t index = 0; index < count; ++index) {
    all[index].f0 = index + 1;    // the pseudowire
    all[index].f5 = 10U * index;  // its packets
  }
  return all;
}

// C calls this: it must not throw.
void add(const mesh_received* received, void* user) noexcept {
  if (received->msg_id == l2vpn_stat_pw_stat__msg_id) {
    auto& totals = *static_cast<Totals*>(user);
    ++totals.pseudowires;
    totals.packets += static_cast<const l2vpn_stat_pw_stat*>(received->record)->f5;
  }
}

struct CloseNode {
  void operator()(mesh_node* node) const { mesh_node_close(node); }
};

}  // namespace

int main(int argc, char** argv) {
  const auto count = static_cast<uint32_t>(argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 1000);
  mesh_node_options options;
  mesh_node_options_default(&options);
  options.transport = MESH_TRANSPORT_INPROC;
  mesh_node* opened = nullptr;
  if (mesh_node_open(address, &options, &opened) != MESH_OK || l2vpn_stat_recv_init() != 0 ||
      l2vpn_stat_send_init() != 0) {
    std::fprintf(stderr, "statistics_batch: %s\n", mesh_node_last_error());
    return EXIT_FAILURE;
  }
  const std::unique_ptr<mesh_node, CloseNode> node(opened);

  const std::vector<l2vpn_stat_pw_stat> all = statisticsOf(count);
  // One allocation, one call of the middleware; all arrive or none.
  const uint32_t result = l2vpn_stat_pw_stat__sendbatch(address, all.data(), count, 0);
  if (result != 0) {
    std::fprintf(stderr, "statistics_batch: %s\n", mesh_result_text(result));
    return EXIT_FAILURE;
  }
  Totals totals;
  mesh_node_receive(node.get(), 5000, add, &totals);
  std::printf("%llu pseudowires, %llu packets\n",
              static_cast<unsigned long long>(totals.pseudowires),
              static_cast<unsigned long long>(totals.packets));
  return totals.pseudowires == count ? EXIT_SUCCESS : EXIT_FAILURE;
}
