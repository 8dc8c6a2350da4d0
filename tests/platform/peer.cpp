// The tests' second process.
//
//   receive <address> <count>          receives `count` notes, prints its counters
//   count <address>                    receives until its input ends, prints its counters
//   stream <address> <to> <notes>      sends calls of `notes` notes until it is killed
//   hold <address> <calls>             opens a node and never receives, until it is killed; prints
//                                      "waiting" when so many calls of a peer have arrived
//   send <address> <to> <calls> <notes>
//                                      sends `calls` calls of `notes` notes
//   burst <address> <to> <calls> <notes>
//                                      the same, prints "sent" and does not close the node
//   open <descriptors> <nodes>         opens nodes with so few descriptors
//   log <lines> <burst>                writes log lines, some above the limit
//   crowd <owners> <callers>           allocates and frees a block per caller, reports twice
//   largest                            prints the largest block of 2^n MiB (up to 1024) it gets
//   amplify <items>                    decodes a message with four bytes per item
//
// Each prints "ready" when its node is open. The exit code is the result.
#include <poll.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "ddm/osal.h"
#include "ddm/osal_workstation.h"
#include "mesh_l2vpn/l2vpn_cfg.h"
#include "support/note.hpp"
#include "support/raw_sender.hpp"

namespace {

using namespace platform_test;

uint32_t number(const char* text) {
  return static_cast<uint32_t>(std::strtoul(text, nullptr, 0));
}

mesh_node* openAndReport(const char* address, const mesh_node_options* options) {
  mesh_node* node = nullptr;
  const mesh_result result = mesh_node_open(number(address), options, &node);
  if (result != MESH_OK) {
    std::printf("%s\n", mesh_node_last_error());
    std::exit(result);
  }
  std::puts("ready");
  std::fflush(stdout);
  return node;
}

int receive(const char* address, const char* count) {
  registerNotes();
  mesh_node* node = openAndReport(address, nullptr);
  const std::vector<Received> notes = receiveNotes(node, number(count));
  const mesh_node_statistics counted = statisticsOf(node);
  std::printf("notes %zu lost %" PRIu64 " missed %" PRIu64 "\n", notes.size(), counted.lost_calls,
              counted.missed_before_first);
  return mesh_node_close(node);
}

int count(const char* address) {
  registerNotes();
  mesh_node* node = openAndReport(address, nullptr);
  pollfd input{.fd = STDIN_FILENO, .events = POLLIN, .revents = 0};
  while (poll(&input, 1, 0) == 0) {
    static_cast<void>(mesh_node_receive(node, 50, nullptr, nullptr));
  }
  while (mesh_node_receive(node, 200, nullptr, nullptr) > 0) {
  }
  const mesh_node_statistics counted = statisticsOf(node);
  std::printf("calls %" PRIu64 " lost %" PRIu64 " missed %" PRIu64 " malformed %" PRIu64 "\n",
              counted.received_calls, counted.lost_calls, counted.missed_before_first,
              counted.malformed);
  return mesh_node_close(node);
}

int stream(const char* address, const char* to, const char* notes) {
  openAndReport(address, nullptr);
  const std::vector<std::string> texts(number(notes), std::string(100, 'n'));
  while (sendNotes(number(to), texts) == MESH_OK) {
  }
  std::printf("%s\n", mesh_node_last_error());
  return 1;
}

int hold(const char* address, const char* calls) {
  mesh_node* node = openAndReport(address, nullptr);
  mesh_peer_statistics peer{};
  uint32_t peers = 0;
  while (peer.waiting_calls < number(calls)) {
    static_cast<void>(mesh_node_peers(node, &peer, 1, &peers));
    usleep(1000);
  }
  std::puts("waiting");
  std::fflush(stdout);
  for (;;) {
    pause();
  }
}

int sendCalls(const char* to, const char* calls, const char* notes) {
  for (uint32_t call = 0; call < number(calls); ++call) {
    std::vector<std::string> texts;
    for (uint32_t i = 0; i < number(notes); ++i) {
      texts.push_back("note " + std::to_string(call) + "." + std::to_string(i));
    }
    if (const uint32_t result = sendNotes(number(to), texts); result != MESH_OK) {
      std::printf("%s\n", mesh_node_last_error());
      return static_cast<int>(result);
    }
  }
  return MESH_OK;
}

int send(const char* address, const char* to, const char* calls, const char* notes) {
  mesh_node* node = openAndReport(address, nullptr);
  const int result = sendCalls(to, calls, notes);
  return result != MESH_OK ? result : mesh_node_close(node);
}

int burst(const char* address, const char* to, const char* calls, const char* notes) {
  openAndReport(address, nullptr);
  if (const int result = sendCalls(to, calls, notes); result != MESH_OK) {
    return result;
  }
  std::puts("sent");
  std::fflush(stdout);
  for (;;) {
    pause();
  }
}

int openNodes(const char* descriptors, const char* nodes) {
  const rlimit few{.rlim_cur = number(descriptors), .rlim_max = number(descriptors)};
  if (setrlimit(RLIMIT_NOFILE, &few) != 0) {
    return 100;
  }
  for (uint32_t address = 1; address <= number(nodes); ++address) {
    mesh_node* node = nullptr;
    if (const mesh_result result = mesh_node_open(address, nullptr, &node); result != MESH_OK) {
      std::printf("%s\n", mesh_node_last_error());
      return result;
    }
    if (const uint32_t result = sendNotes(1, {"a"}); result != MESH_OK) {
      std::printf("%s\n", mesh_node_last_error());
      return static_cast<int>(result);
    }
  }
  return MESH_OK;
}

int log(const char* lines, const char* burst) {
  const char* env[] = {"PEER"};
  ddm_osal_log_limit(0, number(burst));
  for (uint32_t i = 0; i < number(lines); ++i) {
    DDM_OsalLogWrite(env, 2, 22, "", 1, "log", "line %u", i);
  }
  return 0;
}

void report() {
  const uint64_t out = ddm_osal_memory_report(stdout);
  ddm_osal_memory_faults faults{};
  ddm_osal_memory_faults_get(&faults);
  std::printf("%" PRIu64 " blocks in use\n%" PRIu64 " faults\n", out,
              faults.wrong_owner + faults.double_free + faults.foreign_free);
}

int crowd(const char* owners, const char* callers) {
  std::vector<std::string> names;
  for (uint32_t i = 0; i < number(callers); ++i) {
    names.push_back("caller " + std::to_string(i));
  }
  std::vector<void*> blocks;
  for (const std::string& name : names) {
    const auto owner = static_cast<uint32_t>(blocks.size() % number(owners));
    blocks.push_back(DDM_OsalMemAlloc(1, owner, name.c_str()));
  }
  report();
  for (size_t i = 0; i < blocks.size(); ++i) {
    DDM_OsalMemFree(blocks[i], static_cast<uint32_t>(i % number(owners)), "crowd");
  }
  std::puts("all freed");
  report();
  return 0;
}

int largest() {
  uint32_t mebibytes = 1024;
  void* block = nullptr;
  while (mebibytes > 0 && (block = DDM_OsalMemAlloc(mebibytes << 20, 12, "largest")) == nullptr) {
    mebibytes /= 2;
  }
  DDM_OsalMemFree(block, 12, "largest");
  std::printf("%u MiB\n", mebibytes);
  return 0;
}

// A message of l2vpn_cfg_query_dfx_rec. All its items are the same table without fields.
std::string manyItemsOfOneTable(uint32_t count) {
  std::string bytes = littleEndian(12, 4) + littleEndian(8, 2) + littleEndian(8, 2) +
                      littleEndian(0, 2) + littleEndian(4, 2) + littleEndian(8, 4) +
                      littleEndian(4, 4) + littleEndian(count, 4);
  // Each word is the distance to the table. The 4-byte vtable lies between the last word and the
  // table.
  for (uint32_t item = 0; item < count; ++item) {
    bytes += littleEndian(4 * (count - item) + 4, 4);
  }
  return bytes + littleEndian(4, 2) + littleEndian(4, 2) + littleEndian(4, 4);
}

int amplify(const char* items) {
  const std::string bytes = manyItemsOfOneTable(number(items));
  l2vpn_cfg_query_dfx_rec record{};
  l2vpn_cfg_query_dfx_rec__unpack(reinterpret_cast<const uint8_t*>(bytes.data()),
                                  static_cast<uint32_t>(bytes.size()), &record);
  ddm_osal_memory_usage usage;
  ddm_osal_memory_usage_get(12, &usage);
  std::printf("%zu bytes: %s, refused %" PRIu64 " times, peak %" PRIu64 "\n", bytes.size(),
              record.f1 == nullptr ? "nothing" : "decoded", usage.refusals, usage.peak_bytes_out);
  l2vpn_cfg_query_dfx_rec_free__unpacked(&record);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string command = argc > 1 ? argv[1] : "";
  if (command == "receive" && argc == 4) {
    return receive(argv[2], argv[3]);
  }
  if (command == "count" && argc == 3) {
    return count(argv[2]);
  }
  if (command == "stream" && argc == 5) {
    return stream(argv[2], argv[3], argv[4]);
  }
  if (command == "hold" && argc == 4) {
    return hold(argv[2], argv[3]);
  }
  if (command == "send" && argc == 6) {
    return send(argv[2], argv[3], argv[4], argv[5]);
  }
  if (command == "burst" && argc == 6) {
    return burst(argv[2], argv[3], argv[4], argv[5]);
  }
  if (command == "open" && argc == 4) {
    return openNodes(argv[2], argv[3]);
  }
  if (command == "log" && argc == 4) {
    return log(argv[2], argv[3]);
  }
  if (command == "crowd" && argc == 4) {
    return crowd(argv[2], argv[3]);
  }
  if (command == "largest" && argc == 2) {
    return largest();
  }
  if (command == "amplify" && argc == 3) {
    return amplify(argv[2]);
  }
  std::fputs("unknown command\n", stderr);
  return 100;
}
