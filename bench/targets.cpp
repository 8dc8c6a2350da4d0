// Every operation, full and sparse, of the messages with targets and of some other shapes.
#include "bench/groups.hpp"
#include "bench/operations.hpp"

namespace bench {
namespace {

constexpr uint32_t usualBatch = 256;

// `label` distinguishes the cases of one message.
template <typename Record>
void addMessage(const Shape& shape = {}, const std::string& label = "") {
  const std::string prefix = std::string("target/") + schema<Record>.name + label + "/";
  Shape sparse = shape;
  sparse.fill = Fill::Sparse;
  add(prefix + "copy", copyCase<Record>, shape);
  add(prefix + "single", singleCase<Record>, shape);
  add(prefix + "pack_full", packCase<Record>, shape);
  add(prefix + "pack_sparse", packCase<Record>, sparse);
  add(prefix + "pack_exact_sparse", packExactCase<Record>, sparse);
  add(prefix + "unpack_compact_full", unpackCompactCase<Record>, shape);
  add(prefix + "unpack_compact_sparse", unpackCompactCase<Record>, sparse);
  if (isSentFixed<Record> || partsSize(schema<Record>, shape) < largestCompactBatch) {
    add(prefix + "batch", batchCase<Record>, shape, usualBatch);
  }
  if constexpr (isSentFixed<Record>) {
    add(prefix + "unpack_fixed", unpackFixedCase<Record>, shape);
  }
  if constexpr (owns<Record>) {
    add(prefix + "free", freeCase<Record>, shape);
  }
}

}  // namespace

void addTargets() {
  addMessage<l2vpn_sync_stp>();
  addMessage<l2vpn_sync_vpls_exp>();
  addMessage<l2vpn_sync_vpls_ac>();
  addMessage<l2vpn_sync_vll_pw>();
  addMessage<l2vpn_sync_vpls_vsimac>();
  addMessage<l2vpn_sync_vpls_ac_update>();
  addMessage<l2vpn_sync_vll_pw_update>();
  addMessage<l2vpn_stat_pw_stat>();
  addMessage<dbginfo_key_l2vpn>();
  addMessage<dbginfo_endata_l2vpn>();
  addMessage<dbginfo_cmd_key_l2vpn>();
  addMessage<l2vpn_cfg_query_dfx_item>();
  addMessage<l2vpn_cfg_query_dfx_rec>({.items = 1}, "-1");
  addMessage<l2vpn_cfg_query_dfx_rec>({.items = 16}, "-16");
}

}  // namespace bench
