// Every message's exported operations by its record's type, called by name as users call them.
// Calls through the table of tests/support/exported.hpp would add their own cost to what is
// measured.
#pragma once

#include "l2vpn_cfg/schema.hpp"
#include "l2vpn_stat/schema.hpp"
#include "l2vpn_sync/schema.hpp"
#include "mesh_l2vpn/messages.h"

namespace bench {

template <typename Record>
struct Exported;

template <typename Record>
inline constexpr const mesh::wire::Schema& schema = mesh::wire::schemaOf<Record>;

template <typename Record>
inline constexpr bool isSentFixed =
    mesh::msg::messageOf<Record>.policy.arrangement == mesh::msg::Arrangement::Fixed;

template <typename Record>
inline constexpr bool owns = mesh::wire::ownsMemory(schema<Record>);

}  // namespace bench

#define BENCH_EXPORTED(X, identifier)                                                 \
  template <>                                                                         \
  struct bench::Exported<X> {                                                         \
    static uint32_t pack(const X* record, uint8_t* buffer, uint32_t* length) {        \
      return X##__pack(record, buffer, length);                                       \
    }                                                                                 \
    static uint32_t unpack(const uint8_t* data, uint32_t length, X* record) {         \
      return X##__unpack(data, length, record);                                       \
    }                                                                                 \
    static void release(X* record) { X##_free__unpacked(record); }                    \
    static uint32_t sendSingle(uint32_t destination, const X* record) {               \
      return X##__sendsingle(destination, record, 0, 0);                              \
    }                                                                                 \
    static uint32_t sendBatch(uint32_t destination, const X* first, uint32_t count) { \
      return X##__sendbatch(destination, first, count, 0);                            \
    }                                                                                 \
  };

L2VPN_MESSAGES(BENCH_EXPORTED)
