// A binding never changes. How a bound module uses its byte order and the fallback allocator.

#include <gtest/gtest.h>

#include <array>

#include "host/binding.hpp"
#include "host/first_use.hpp"
#include "l2vpn_cfg/schema.hpp"
#include "l2vpn_stat/schema.hpp"
#include "l2vpn_sync/schema.hpp"
#include "mesh_l2vpn/l2vpn_cfg.h"
#include "mesh_l2vpn/l2vpn_stat.h"
#include "mesh_l2vpn/l2vpn_sync.h"

namespace {

using harness::Buffer;
using harness::Scene;
using harness::Trace;
using mesh::host::Module;

struct Service {
  Module* receive;
  Module* send;
  uint32_t (*receiveInit)();
  uint32_t (*sendInit)();
  void (*clean)();
};

const std::array<Service, 3> services{
    Service{&mesh::l2vpn_cfg::receiveModule, &mesh::l2vpn_cfg::sendModule, &l2vpn_cfg_recv_init,
            &l2vpn_cfg_send_init, &l2vpn_cfg__send_resource_clean},
    Service{&mesh::l2vpn_stat::receiveModule, &mesh::l2vpn_stat::sendModule, &l2vpn_stat_recv_init,
            &l2vpn_stat_send_init, &l2vpn_stat__send_resource_clean},
    Service{&mesh::l2vpn_sync::receiveModule, &mesh::l2vpn_sync::sendModule, &l2vpn_sync_recv_init,
            &l2vpn_sync_send_init, &l2vpn_sync__send_resource_clean}};

// The scenario notes the lines of its trace, then "end". No other line means an empty trace.
TEST(Binding, IsNotMadeByInitialisersNorByCleaning) {
  for (const Service& service : services) {
    EXPECT_EQ(harness::inANewProcess([&] {
                harness::meet({});
                service.receiveInit();
                service.sendInit();
                service.clean();
                for (const std::string& line : harness::takeTrace()) {
                  harness::note(line);
                }
                harness::note("end");
              }),
              Trace({"end"}));
  }
}

Buffer bytesOf(const Module& module) {
  const auto* const bytes = reinterpret_cast<const uint8_t*>(&module);
  return {bytes, bytes + sizeof module};
}

TEST(Binding, IsNotUndoneByCleaning) {
  for (const Service& service : services) {
    EXPECT_EQ(harness::inANewProcess([&] {
                harness::meet({});
                for (Module* const module : {service.receive, service.send}) {
                  mesh::host::bindHost(module->env);
                  mesh::host::bindUnpackAllocator(*module);
                }
                const Buffer receive = bytesOf(*service.receive);
                const Buffer send = bytesOf(*service.send);
                service.clean();
                harness::note(bytesOf(*service.receive) == receive ? "kept" : "changed");
                harness::note(bytesOf(*service.send) == send ? "kept" : "changed");
              }),
              Trace({"kept", "kept"}));
  }
}

// The sizes that the fallback allocator requests from the C library.
TEST(FallbackAllocator, PassesASizeOfZeroOn) {
  EXPECT_EQ(harness::inANewProcess([] {
              harness::meet({0});
              dbginfo_key_l2vpn__sendbatch(5, nullptr, 0, 0);
              harness::note(std::to_string(harness::lastMalloc()));
              l2vpn_stat_pw_stat__sendbatch(5, nullptr, 0, 0);
              harness::note(std::to_string(harness::lastMalloc()));
            }),
            Trace({"65536", "0"}));
}

// All messages that the sender makes of the first record, and the records that the receiver reads.
std::vector<Buffer> encodings(Scene& scene, uint32_t swapBytes) {
  const harness::Modules modules = harness::modulesOf(scene.operations);
  for (Module* const module : {modules.send, modules.receive}) {
    mesh::host::bindCodec(*module);
    module->swapBytes.store(swapBytes);
  }
  harness::resetRecorder();
  const void* const record = scene.records.data();
  scene.operations.sendSingle(5, record, 0xDEAD, 0);
  scene.operations.sendBatch(5, record, 1, 0);
  scene.pack(record, scene.target.data());
  std::vector<Buffer> all{harness::firstBytes(scene.target, scene.packed.size())};
  for (const harness::SentTable& table : harness::recorder().sent) {
    all.push_back(table.bytes);
  }
  scene.unpack(all[0]);
  const bool same = oracle::load(scene.message, scene.received.data()) ==
                    oracle::load(scene.message, scene.records.data());
  scene.operations.freeUnpacked(scene.received.data());
  all.push_back({same});
  return all;
}

TEST(ByteOrder, IsReversedByAnySwitchButZero) {
  EXPECT_EQ(harness::inANewProcess([] {
              harness::meet({});
              for (const harness::Operations& operations : harness::allOperations()) {
                Scene scene(operations);
                const std::vector<Buffer> plain = encodings(scene, 0);
                const std::vector<Buffer> reversed = encodings(scene, 1);
                for (size_t index = 0; index < 3; ++index) {
                  if (plain.at(index) == reversed.at(index)) {
                    harness::note(std::string(operations.name) + " is not reversed");
                  }
                }
                if (reversed.at(3) != Buffer{1}) {
                  harness::note(std::string(operations.name) + " is not received");
                }
                for (const uint32_t value : {2U, 0x100U, 0x10000U, 0x80000000U, 0xFFFFFFFFU}) {
                  if (encodings(scene, value) != reversed) {
                    harness::note(std::string(operations.name) + " " + std::to_string(value));
                  }
                }
              }
            }),
            Trace());
}

}  // namespace
