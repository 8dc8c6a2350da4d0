#include "support/exported.hpp"

#include <algorithm>

#include "l2vpn_cfg/schema.hpp"
#include "l2vpn_stat/schema.hpp"
#include "l2vpn_sync/schema.hpp"

namespace exported {
namespace {

#define OPERATIONS(service, X)                                                          \
  {#X,                                                                                  \
   service,                                                                             \
   &mesh::msg::messageOf<X>,                                                            \
   [](const uint8_t* data, uint32_t length, void* record) {                             \
     return X##__unpack(data, length, static_cast<X*>(record));                         \
   },                                                                                   \
   [](void* record) { X##_free__unpacked(static_cast<X*>(record)); },                   \
   [](const void* record, uint8_t* buffer, uint32_t* length) {                          \
     return X##__pack(static_cast<const X*>(record), buffer, length);                   \
   },                                                                                   \
   [](uint32_t destination, const void* record, uint64_t unused, uint64_t extra) {      \
     return X##__sendsingle(destination, static_cast<const X*>(record), unused, extra); \
   },                                                                                   \
   [](uint32_t destination, const void* records, uint32_t count, uint64_t extra) {      \
     return X##__sendbatch(destination, static_cast<const X*>(records), count, extra);  \
   },                                                                                   \
   [](uint32_t destination, const void* records, uint32_t count) {                      \
     return X##__sendmsg(destination, static_cast<const X*>(records), count);           \
   },                                                                                   \
   [](uint32_t destination, const void* records, uint32_t count, uint64_t extra) {      \
     return X##__sendtomsg(destination, static_cast<const X*>(records), count, extra);  \
   }},

#define CFG(X, identifier) OPERATIONS("l2vpn_cfg", X)
#define STAT(X, identifier) OPERATIONS("l2vpn_stat", X)
#define SYNC(X, identifier) OPERATIONS("l2vpn_sync", X)

// Not L2VPN_MESSAGES: each message is told its service.
constexpr Operations operations[] = {L2VPN_CFG_MESSAGES(CFG) L2VPN_STAT_MESSAGES(STAT)
                                         L2VPN_SYNC_MESSAGES(SYNC)};

}  // namespace

std::span<const Operations> allOperations() {
  return operations;
}

const Operations* operationsOf(std::string_view name) {
  const Operations* const found = std::ranges::find(operations, name, &Operations::name);
  return found == std::end(operations) ? nullptr : found;
}

}  // namespace exported
