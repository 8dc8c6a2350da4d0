#!/usr/bin/env bash
# What the C++ header refuses while a program is compiled, and with which words.
#
#   rejected.sh CXX [FLAG...]      FLAG: where the headers are
set -euo pipefail
compiler=("$@" -std=c++17 -fsyntax-only -x c++ -)

compile() {
  printf '#include "mesh_l2vpn/messages.hpp"\nvoid use(uint32_t id, const void* record) {\n%s\n}\n' "$1" |
    "${compiler[@]}" 2>&1
}
# The second argument: a pattern of the compiler's text.
rejects() {
  if text=$(compile "$1"); then
    echo "FAILED: this compiles: $1"
    exit 1
  fi
  grep -qE "$2" <<<"$text" || { echo "FAILED: without \"$2\": $text"; exit 1; }
}

stp='[](const l2vpn_sync_stp&) {}'
compile "mesh_l2vpn::dispatch(id, record, $stp); mesh_l2vpn::unpacked<l2vpn_sync_stp> a; auto b = std::move(a);"
rejects "mesh_l2vpn::dispatch(id, record, $stp, $stp);" 'ambiguous'
rejects "mesh_l2vpn::dispatch(id, record, $stp, [](int) {});" "takes no message's record"
rejects "mesh_l2vpn::dispatch(id, record, [](l2vpn_sync_stp&) {});" "takes no message's record"
rejects "mesh_l2vpn::handlers h($stp, [](const auto&, int) {}); h(id, record, 1);" 'different arguments'
rejects "mesh_l2vpn::unpacked<l2vpn_sync_stp> a; auto b = a;" 'deleted'
rejects "(void)id; auto a = mesh_l2vpn::unpack<int>({});" 'message<int>'
