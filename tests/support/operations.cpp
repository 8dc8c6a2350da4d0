#include "support/operations.hpp"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "l2vpn_cfg/modules.hpp"
#include "l2vpn_cfg/schema.hpp"
#include "l2vpn_stat/modules.hpp"
#include "l2vpn_stat/schema.hpp"
#include "l2vpn_sync/modules.hpp"
#include "l2vpn_sync/schema.hpp"

namespace harness {
namespace {

// The unused argument of __sendsingle is filled, to show that it is one.
#define OPERATIONS(X, identifier)                                                                 \
  Operations{#X,                                                                                  \
             &mesh::wire::schemaOf<X>,                                                            \
             mesh::msg::messageOf<X>.id,                                                          \
             &receiveModule,                                                                      \
             &sendModule,                                                                         \
             [](const uint8_t* data, uint32_t length, void* record) {                             \
               return X##__unpack(data, length, static_cast<X*>(record));                         \
             },                                                                                   \
             [](void* record) { X##_free__unpacked(static_cast<X*>(record)); },                   \
             [](const void* record, uint8_t* buffer, uint32_t* length) {                          \
               return X##__pack(static_cast<const X*>(record), buffer, length);                   \
             },                                                                                   \
             [](uint32_t destination, const void* record, uint64_t extra) {                       \
               return X##__sendsingle(destination, static_cast<const X*>(record), 0xDEAD, extra); \
             },                                                                                   \
             [](uint32_t destination, const void* records, uint32_t count, uint64_t extra) {      \
               return X##__sendbatch(destination, static_cast<const X*>(records), count, extra);  \
             },                                                                                   \
             [](uint32_t destination, const void* records, uint32_t count) {                      \
               return X##__sendmsg(destination, static_cast<const X*>(records), count);           \
             },                                                                                   \
             [](uint32_t destination, const void* records, uint32_t count, uint64_t extra) {      \
               return X##__sendtomsg(destination, static_cast<const X*>(records), count, extra);  \
             },                                                                                   \
             reinterpret_cast<const void*>(&X##__unpack),                                         \
             reinterpret_cast<const void*>(&X##_free__unpacked)},

void addConfiguration(std::vector<Operations>& all) {
  using namespace mesh::l2vpn_cfg;
  all.insert(all.end(), {L2VPN_CFG_MESSAGES(OPERATIONS)});
}

void addStatistics(std::vector<Operations>& all) {
  using namespace mesh::l2vpn_stat;
  all.insert(all.end(), {L2VPN_STAT_MESSAGES(OPERATIONS)});
}

void addSynchronisation(std::vector<Operations>& all) {
  using namespace mesh::l2vpn_sync;
  all.insert(all.end(), {L2VPN_SYNC_MESSAGES(OPERATIONS)});
}

}  // namespace

const std::vector<Operations>& allOperations() {
  static const std::vector<Operations> all = [] {
    std::vector<Operations> list;
    addConfiguration(list);
    addStatistics(list);
    addSynchronisation(list);
    return list;
  }();
  return all;
}

const Operations& operationsOf(const char* name) {
  for (const Operations& operations : allOperations()) {
    if (std::strcmp(operations.name, name) == 0) {
      return operations;
    }
  }
  std::fprintf(stderr, "no message %s\n", name);
  std::abort();
}

}  // namespace harness
