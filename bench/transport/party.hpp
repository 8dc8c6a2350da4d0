// Who sends and receives: a node of the middleware, or raw ZeroMQ.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "mesh_l2vpn/l2vpn_sync.h"

namespace transport_bench {

enum class Transport { Ipc, Tcp, Curve, Inproc };

enum class Way {
  Raw,      // PUSH and PULL sockets, and one part of as many bytes as our message
  Tables,   // mesh_node_send of tables that were packed before
  Records,  // __sendsingle or __sendbatch: packs too
};

inline constexpr uint32_t firstSender = 1;
inline constexpr uint32_t firstReceiver = 10'001;
inline constexpr uint32_t mostRecords = 512;

struct Keys {
  char publicKey[41];
  char secretKey[41];
};

enum class Kind {
  Rate,     // from all senders to all receivers in turns, as fast as they are taken
  Latency,  // a call there, an equal one back
  Crowd,    // nodes of one process that may open 4,096 files; each sends one call to the next
};

// One measurement.
struct Setup {
  Kind kind;
  Transport transport;
  Way way;
  uint32_t records;  // of a call
  uint32_t senders;
  uint32_t receivers;
  std::string name = {};
  double seconds = 0;
  std::string directory = {};                    // for sockets and keys
  uint16_t ports[2] = {};                        // tcp: of the sender and of the receiver
  const Keys* keys = nullptr;                    // of both
  const std::vector<uint8_t>* tables = nullptr;  // of mostRecords records
};

// For one thread. Failures end the process.
class Party {
 public:
  virtual ~Party() = default;
  // One call of setup.records records. Waits for room.
  virtual void send(uint32_t to) = 0;
  // False if no call arrived in time. Checks a call that did. `wait`: 100 ms, else none.
  virtual bool receive(bool wait) = 0;
  // Checks that nothing was lost, and closes.
  virtual void close() = 0;
};

std::unique_ptr<Party> openNode(const Setup& setup, uint32_t address);
std::unique_ptr<Party> openRaw(const Setup& setup, uint32_t address);

inline std::unique_ptr<Party> openParty(const Setup& setup, uint32_t address) {
  return setup.way == Way::Raw ? openRaw(setup, address) : openNode(setup, address);
}

// The tables that __sendbatch makes of mostRecords records. Opens and closes a node.
std::vector<uint8_t> packTables();

inline constexpr uint32_t tableSize = 200;

[[noreturn, gnu::format(printf, 1, 2)]] void fail(const char* format, ...);

}  // namespace transport_bench
