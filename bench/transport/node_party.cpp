#include <cinttypes>
#include <cstring>
#include <utility>

#include "bench/transport/party.hpp"
#include "zarnimesh/node.h"

namespace transport_bench {
namespace {

constexpr int waitMs = 100;

void require(mesh_result result, const char* what) {
  if (result != MESH_OK) {
    fail("%s: %s: %s", what, mesh_result_text(result), mesh_node_last_error());
  }
}

// f0 counts from 1, so that a call's sum shows whether all of its records arrived.
std::vector<l2vpn_sync_vll_pw> makeRecords(uint32_t count) {
  std::vector<l2vpn_sync_vll_pw> records(count);
  for (uint32_t i = 0; i < count; ++i) {
    std::memset(&records[i], static_cast<int>(i % 255 + 1), sizeof records[i]);
    records[i].f0 = i + 1;
  }
  return records;
}

class NodeParty : public Party {
 public:
  NodeParty(const Setup& setup, uint32_t address)
      : setup_(setup), records_(makeRecords(setup.records)) {
    mesh_node_options options;
    mesh_node_options_default(&options);
    options.linger_ms = 20'000;  // a thousand nodes close at once
    options.runtime_directory = setup.directory.c_str();
    // The tcp endpoints of both.
    std::string book;
    std::string keyFile;
    if (setup.transport == Transport::Inproc) {
      options.transport = MESH_TRANSPORT_INPROC;
    } else if (setup.transport != Transport::Ipc) {
      for (int side = 0; side < 2; ++side) {
        book += std::to_string(side == 0 ? firstSender : firstReceiver) +
                " tcp://127.0.0.1:" + std::to_string(setup.ports[side]) + "\n";
      }
      if (setup.transport == Transport::Curve) {
        keyFile = setup.directory + "/" + std::to_string(address) + ".keys";
        options.key_file = keyFile.c_str();
      }
    }
    options.address_book = book.c_str();
    require(mesh_node_open(address, &options, &node_), "open");
    for (uint32_t i = 0; setup.way == Way::Tables && i < setup.records; ++i) {
      const uint8_t* const table = setup.tables->data() + size_t{i} * tableSize;
      descriptors_.push_back(
          {reinterpret_cast<uintptr_t>(table), l2vpn_sync_vll_pw__msg_id, tableSize});
    }
  }

  void send(uint32_t to) override {
    if (setup_.way == Way::Tables) {
      require(mesh_node_send(node_, to, descriptors_.data(), setup_.records, 0, -1), "send");
      return;
    }
    thread_local NodeParty* attached = nullptr;
    if (std::exchange(attached, this) != this) {
      require(mesh_node_attach(node_), "attach");
    }
    require(static_cast<mesh_result>(
                setup_.records == 1
                    ? l2vpn_sync_vll_pw__sendsingle(to, records_.data(), 0, 0)
                    : l2vpn_sync_vll_pw__sendbatch(to, records_.data(), setup_.records, 0)),
            "send");
  }

  bool receive(bool wait) override {
    sum_ = 0;
    const int64_t count = mesh_node_receive(
        node_, wait ? waitMs : 0,
        [](const mesh_received* received, void* user) {
          static_cast<NodeParty*>(user)->sum_ +=
              static_cast<const l2vpn_sync_vll_pw*>(received->record)->f0;
        },
        this);
    if (count < 0) {
      require(static_cast<mesh_result>(-count), "receive");
    }
    if (count == 0) {
      return false;
    }
    const uint64_t records = setup_.records;
    if (static_cast<uint64_t>(count) != records || sum_ != records * (records + 1) / 2) {
      fail("a call of %" PRIu64 " records arrived with %" PRId64 ", or with others", records,
           count);
    }
    return true;
  }

  void close() override {
    mesh_node_statistics statistics;
    require(mesh_node_stats(node_, &statistics), "statistics");
    if (statistics.malformed + statistics.unknown_identifiers + statistics.lost_calls +
            statistics.missed_before_first + statistics.duplicate_calls +
            statistics.undelivered_calls !=
        0) {
      fail("calls were lost");
    }
    require(mesh_node_close(std::exchange(node_, nullptr)), "close");
  }

 private:
  const Setup& setup_;
  const std::vector<l2vpn_sync_vll_pw> records_;
  std::vector<mesh_msg_desc> descriptors_;
  mesh_node* node_ = nullptr;
  uint64_t sum_ = 0;
};

}  // namespace

std::unique_ptr<Party> openNode(const Setup& setup, uint32_t address) {
  static const uint32_t registered = l2vpn_sync_recv_init();
  if (registered != 0) {
    fail("the receive side did not register");
  }
  return std::make_unique<NodeParty>(setup, address);
}

std::vector<uint8_t> packTables() {
  l2vpn_sync_recv_init();
  mesh_node_options options;
  mesh_node_options_default(&options);
  options.transport = MESH_TRANSPORT_INPROC;
  options.address_book = "";
  mesh_node* node = nullptr;
  require(mesh_node_open(firstSender, &options, &node), "open");
  const std::vector<l2vpn_sync_vll_pw> records = makeRecords(mostRecords);
  require(static_cast<mesh_result>(
              l2vpn_sync_vll_pw__sendbatch(firstSender, records.data(), mostRecords, 0)),
          "send");
  std::vector<uint8_t> tables;
  const int64_t count = mesh_node_receive(
      node, waitMs,
      [](const mesh_received* received, void* user) {
        auto& to = *static_cast<std::vector<uint8_t>*>(user);
        to.insert(to.end(), received->table, received->table + received->table_length);
      },
      &tables);
  if (count != mostRecords || tables.size() != size_t{mostRecords} * tableSize) {
    fail("%zu bytes of tables were packed", tables.size());
  }
  require(mesh_node_close(node), "close");
  return tables;
}

}  // namespace transport_bench
