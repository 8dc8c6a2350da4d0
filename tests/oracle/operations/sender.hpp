// What sending records does: the calls made, and the descriptors the middleware is handed.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "oracle/messages/description.hpp"
#include "oracle/operations/writer.hpp"
#include "oracle/values/value.hpp"

namespace oracle {

enum class Operation { Single, Batch, Msg, ToMsg };

struct Descriptor {
  uint64_t offset = 0;  // of the table from the first byte of the buffer it lies in
  uint32_t id = 0;
  WrittenBytes bytes;
};

struct Sent {
  std::vector<std::string> trace;
  uint32_t result = 0;
  bool reachedMiddleware = false;
  bool toMsg = false;  // MESH_SendToMsg rather than MESH_SendMsg
  uint64_t extra = 0;
  uint32_t destination = 0;
  std::vector<Descriptor> descriptors;
};

// Single takes the first record and ignores `count`; Msg ignores `extra`. The array may be null;
// it need hold no more records than the operation reads before it ends.
Sent send(const Description& message, Operation operation, uint32_t destination,
          const std::optional<std::vector<Value>>& recordsOrNull, uint32_t count, uint64_t extra,
          bool reversed, bool allocationFails, uint32_t middlewareResult);

}  // namespace oracle
