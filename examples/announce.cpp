// Sends messages of every kind to the program of watch.c.
//
//   announce [RECORDS]    RECORDS: how many records to stream, 1000000 by default
//
// To send your own messages: open a node, call the services' _send_init once, fill records, and
// pass them to X__sendmsg or X__sendtomsg.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "ddm/osal_workstation.h"
#include "mesh_l2vpn/l2vpn_cfg.h"
#include "mesh_l2vpn/l2vpn_stat.h"
#include "mesh_l2vpn/l2vpn_sync.h"
#include "samples.h"
#include "zarnimesh/node.h"

namespace {

constexpr uint32_t recordsPerBatch = 512;

// Whether a send succeeded. Prints why not.
bool sent(const char* what, uint32_t result) {
  if (result != MESH_OK) {
    std::fprintf(stderr, "announce: %s: %s (%s)\n", what, mesh_result_text(result),
                 mesh_node_last_error());
  }
  return result == MESH_OK;
}

void say(const char* text) {
  std::printf("announce | %s\n", text);
  std::fflush(stdout);
}

l2vpn_sync_vpls_ac circuit(uint32_t number) {
  l2vpn_sync_vpls_ac record{};
  record.f0 = number;
  record.f1 = 100;
  record.f3 = 0xC0000207;
  record.f4 = 1;
  record.f6 = static_cast<uint16_t>(1000 + number);
  std::fill(std::begin(record.f8), std::end(record.f8), static_cast<uint8_t>(number));
  return record;
}

bool announceOneUpdate() {
  say("an attachment circuit changed: l2vpn_sync_vpls_ac_update__sendtomsg");
  const l2vpn_sync_vpls_ac_update update{.f0 = 7, .f1 = circuit(42)};
  return sent("update",
              l2vpn_sync_vpls_ac_update__sendtomsg(watcher_address, &update, 1, purpose_show));
}

bool announceABatch() {
  say("four circuits in one call: l2vpn_sync_vpls_ac__sendbatch");
  const std::vector<l2vpn_sync_vpls_ac> circuits{circuit(1), circuit(2), circuit(3), circuit(4)};
  return sent("batch",
              l2vpn_sync_vpls_ac__sendbatch(watcher_address, circuits.data(),
                                            static_cast<uint32_t>(circuits.size()), purpose_show));
}

bool announceStatistics() {
  say("statistics: l2vpn_stat_pw_stat__sendtomsg");
  l2vpn_stat_pw_stat statistics{};
  statistics.f0 = 4711;
  statistics.f5 = 1'234'567;
  statistics.f6 = 9'876'543'210;
  return sent("statistics",
              l2vpn_stat_pw_stat__sendtomsg(watcher_address, &statistics, 1, purpose_show));
}

bool announceADebugKey() {
  say("a key with a byte string: dbginfo_key_l2vpn__sendtomsg");
  uint8_t text[] = {'v', 's', 'i', ' ', 'b', 'l', 'u', 'e'};
  const dbginfo_key_l2vpn key{.f0 = 3, .f1 = 0, .f2 = 0, .f3_len = sizeof text, .f3 = text};
  return sent("key", dbginfo_key_l2vpn__sendtomsg(watcher_address, &key, 1, purpose_show));
}

bool announceADelete() {
  say("the circuit goes: l2vpn_sync_vpls_ac_delete__sendtomsg");
  const l2vpn_sync_vpls_ac_delete gone{.f0 = 7, .f1 = circuit(42)};
  return sent("delete",
              l2vpn_sync_vpls_ac_delete__sendtomsg(watcher_address, &gone, 1, purpose_show));
}

bool announceEveryType() {
  std::printf("announce | one record of each of the %zu message types\n", sample_message_count);
  std::fflush(stdout);
  std::vector<uint64_t> record;
  for (size_t index = 0; index < sample_message_count; ++index) {
    const sample_message& message = sample_messages[index];
    record.assign(message.record_size / sizeof(uint64_t) + 1, 0);
    message.fill(record.data());
    if (!sent(message.name, message.send(watcher_address, record.data(), purpose_sample))) {
      return false;
    }
  }
  return true;
}

bool streamRecords(uint64_t count) {
  std::printf("announce | %llu circuits, %u a call\n", static_cast<unsigned long long>(count),
              recordsPerBatch);
  std::fflush(stdout);
  const auto start = std::chrono::steady_clock::now();
  std::vector<l2vpn_sync_vpls_ac> batch(recordsPerBatch);
  for (uint64_t first = 0; first < count; first += recordsPerBatch) {
    const auto size = static_cast<uint32_t>(std::min<uint64_t>(recordsPerBatch, count - first));
    for (uint32_t index = 0; index < size; ++index) {
      stream_fill(&batch[index], first + index);
    }
    if (!sent("stream",
              l2vpn_sync_vpls_ac__sendtomsg(watcher_address, batch.data(), size, purpose_stream))) {
      return false;
    }
  }
  const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
  std::printf("announce | handed over in %.2f s\n", taken.count());
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  const uint64_t records = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 1'000'000;
  if (records == 0) {
    std::fprintf(stderr, "announce: RECORDS is a number above 0\n");
    return 2;
  }
  mesh_node_options options;
  mesh_node_options_default(&options);
  options.linger_ms = 30'000;
  mesh_node* node = nullptr;
  if (mesh_node_open(announcer_address, &options, &node) != MESH_OK ||
      l2vpn_cfg_send_init() != MESH_OK || l2vpn_stat_send_init() != MESH_OK ||
      l2vpn_sync_send_init() != MESH_OK) {
    std::fprintf(stderr, "announce: %s\n", mesh_node_last_error());
    return 1;
  }
  const bool complete = announceOneUpdate() && announceABatch() && announceStatistics() &&
                        announceADebugKey() && announceADelete() && announceEveryType() &&
                        streamRecords(records);
  mesh_node_close(node);
  std::printf("announce | memory taken by the codec, by owner:\n");
  const bool clean = ddm_osal_memory_report(stdout) == 0;
  return complete && clean ? EXIT_SUCCESS : EXIT_FAILURE;
}
