// Static tracepoints (docs/observing.md), in cold code alone. Each is a no-operation until somebody
// traces it. Where <sys/sdt.h> is missing there are none, and nothing is computed for them.
#pragma once

#include <cstdint>

#ifdef MESH_L2VPN_PROBES
#include <sys/sdt.h>
#define MESH_PROBE2(name, one, two) DTRACE_PROBE2(mesh_l2vpn, name, one, two)
#else
#define MESH_PROBE2(name, one, two) static_cast<void>(0)
#endif

namespace mesh::host {

// Where the decoding of a buffer failed first.
#ifdef MESH_L2VPN_PROBES
class FaultPlace {
 public:
  // Of a table's head, or of a slot's value. The first call counts: it is the innermost table's.
  void note(uint64_t position, int64_t slot = -1) {
    if (!isKnown_) {
      *this = FaultPlace(position, slot);
    }
  }
  void forget() { *this = FaultPlace(); }
  void probeRejection(uint32_t id) const {
    DTRACE_PROBE3(mesh_l2vpn, rejected, id, position_, slot_);
  }

  FaultPlace() = default;

 private:
  FaultPlace(uint64_t position, int64_t slot) : position_(position), slot_(slot), isKnown_(true) {}

  uint64_t position_ = 0;
  int64_t slot_ = -1;
  bool isKnown_ = false;
};
#else
struct FaultPlace {
  void note(uint64_t /*position*/, int64_t /*slot*/ = -1) {}
  void forget() {}
  void probeRejection(uint32_t /*id*/) const {}
};
#endif

}  // namespace mesh::host
