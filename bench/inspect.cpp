// libmesh_l2vpn_inspect on compact messages: the verdict beside the library's unpacking, and JSON.
#include "mesh_l2vpn/inspect.h"
#include "bench/groups.hpp"
#include "bench/operations.hpp"

namespace bench {
namespace {

void require(bool isSo, const mesh_l2vpn_message* message) {
  if (!isSo) {
    failRoundTrip(mesh_l2vpn_message_name(message), mesh_l2vpn_last_error());
  }
}

// JSON becomes the same bytes again.
void requireSameBytes(const mesh_l2vpn_message* message, const uint8_t* data, uint32_t length) {
  char* json = nullptr;
  require(mesh_l2vpn_to_json(message, data, length, &json) == 0, message);
  uint8_t* again = nullptr;
  size_t size = 0;
  require(mesh_l2vpn_from_json(message, json, std::strlen(json), MESH_L2VPN_COMPACT, &again,
                               &size) == 0,
          message);
  require(size == length && std::memcmp(data, again, size) == 0, message);
  mesh_l2vpn_free(again);
  mesh_l2vpn_free(json);
}

template <typename Record>
void verifyCase(benchmark::State& state, Shape shape) {
  const Records<Record> records(shape);
  const Encoded encoded = encodeCompact(records);
  const mesh_l2vpn_message* const message = mesh_l2vpn_message_by_name(schema<Record>.name);
  encoded.each([message](const uint8_t* data, uint32_t length) {
    require(mesh_l2vpn_verify(message, data, length, nullptr) == MESH_L2VPN_ACCEPTED, message);
  });
  timePasses(state, [&encoded, message] {
    encoded.each([message](const uint8_t* data, uint32_t length) {
      benchmark::DoNotOptimize(mesh_l2vpn_verify(message, data, length, nullptr));
    });
  });
  report(state, records.size(), encoded.bytesPerRecord());
}

template <typename Record>
void jsonCase(benchmark::State& state, Shape shape) {
  const Records<Record> records(shape);
  const Encoded encoded = encodeCompact(records);
  const mesh_l2vpn_message* const message = mesh_l2vpn_message_by_name(schema<Record>.name);
  encoded.each(
      [message](const uint8_t* data, uint32_t length) { requireSameBytes(message, data, length); });
  timePasses(state, [&encoded, message] {
    encoded.each([message](const uint8_t* data, uint32_t length) {
      char* json = nullptr;
      mesh_l2vpn_to_json(message, data, length, &json);
      mesh_l2vpn_free(json);
    });
  });
  report(state, records.size(), encoded.bytesPerRecord());
}

template <typename Record>
bool addMessage() {
  for (const Fill fill : {Fill::Full, Fill::Sparse}) {
    const std::string suffix = fill == Fill::Full ? "full" : "sparse";
    const std::string prefix = std::string("inspect/") + schema<Record>.name + "/";
    add(prefix + "unpack_" + suffix, unpackCompactCase<Record>, Shape{.fill = fill});
    add(prefix + "verify_" + suffix, verifyCase<Record>, Shape{.fill = fill});
    add(prefix + "json_" + suffix, jsonCase<Record>, Shape{.fill = fill});
  }
  return true;
}

[[maybe_unused]] const bool added =
    addMessage<l2vpn_sync_stp>() && addMessage<l2vpn_sync_vpls_ac>() &&
    addMessage<l2vpn_sync_vll_pw>() && addMessage<l2vpn_stat_pw_stat>() &&
    addMessage<dbginfo_key_l2vpn>() && addMessage<l2vpn_sync_vpls_ac_update>() &&
    addMessage<l2vpn_sync_vll_pw_update>();

}  // namespace
}  // namespace bench
