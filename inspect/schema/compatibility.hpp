// Whether programs of two schemas understand each other's messages, and what gets lost.
#pragma once

#include <string>
#include <vector>

#include "inspect/captures/traffic.hpp"
#include "inspect/schema/loaded_schema.hpp"

namespace inspect {

enum class Compatibility : uint8_t {
  Same,
  Lossy,         // what is read is right, but it is not everything
  Incompatible,  // something is rejected, or read as what it is not
};

// A reader of one schema on messages of the other.
struct Direction {
  Compatibility verdict = Compatibility::Same;
  std::vector<std::string> reasons;
  size_t samples = 0;  // messages that were written by one schema and read by the other

  void add(Compatibility reasonFor, std::string_view reason);
};

// What the schemas say: `reader` on messages of `writer`.
Direction compare(const mesh::wire::Schema& writer, const mesh::wire::Schema& reader);

// What the bytes say: messages made after `writer` are read after `reader`. Raises the verdict
// where they say otherwise.
void confirm(const KnownMessage& writer, const KnownMessage& reader, Direction& direction);

struct MessageCompatibility {
  std::string name;
  Direction oldReader;  // of new messages
  Direction newReader;  // of old messages
};

// Every message of either schema, the old ones first.
std::vector<MessageCompatibility> compatibility(const LoadedSchema& old,
                                                const LoadedSchema& recent);

// A table that was captured: empty if both schemas take it, and read the same where compare() says
// so; else what differs.
std::string differenceOn(const Table& table, const LoadedSchema& old, const LoadedSchema& recent);

Compatibility worstOf(const std::vector<MessageCompatibility>& messages);
const char* nameOf(Compatibility verdict);
Json toJson(const std::vector<MessageCompatibility>& messages);

}  // namespace inspect
