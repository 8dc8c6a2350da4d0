#include "exercise/messages.hpp"

#include "l2vpn_cfg/schema.hpp"
#include "l2vpn_stat/schema.hpp"
#include "l2vpn_sync/schema.hpp"

namespace exercise {
namespace {

#define OPERATIONS(X, identifier)                                                                \
  Operations{#X,                                                                                 \
             &mesh::wire::schemaOf<X>,                                                           \
             mesh::msg::messageOf<X>.policy.arrangement == mesh::msg::Arrangement::Fixed,        \
             [](const uint8_t* data, uint32_t length, void* record) {                            \
               return X##__unpack(data, length, static_cast<X*>(record));                        \
             },                                                                                  \
             [](void* record) { X##_free__unpacked(static_cast<X*>(record)); },                  \
             [](const void* record, uint8_t* buffer, uint32_t* length) {                         \
               return X##__pack(static_cast<const X*>(record), buffer, length);                  \
             },                                                                                  \
             [](uint32_t destination, const void* record, uint64_t extra) {                      \
               return X##__sendsingle(destination, static_cast<const X*>(record), 0, extra);     \
             },                                                                                  \
             [](uint32_t destination, const void* records, uint32_t count, uint64_t extra) {     \
               return X##__sendbatch(destination, static_cast<const X*>(records), count, extra); \
             },                                                                                  \
             [](uint32_t destination, const void* records, uint32_t count) {                     \
               return X##__sendmsg(destination, static_cast<const X*>(records), count);          \
             },                                                                                  \
             [](uint32_t destination, const void* records, uint32_t count, uint64_t extra) {     \
               return X##__sendtomsg(destination, static_cast<const X*>(records), count, extra); \
             }},

}  // namespace

const std::vector<Operations>& messages() {
  static const std::vector<Operations> all{L2VPN_CFG_MESSAGES(OPERATIONS) L2VPN_STAT_MESSAGES(
      OPERATIONS) L2VPN_SYNC_MESSAGES(OPERATIONS)};
  return all;
}

}  // namespace exercise
