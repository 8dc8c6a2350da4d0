#include "inspect/reader/own_encoding.hpp"

#include <algorithm>

#include "inspect/bytes/memory_limit.hpp"
#include "inspect/messages/codec.hpp"
#include "inspect/reader/table_reader.hpp"

namespace inspect {
namespace {

// Only with a vector can a few bytes ask for much memory.
bool hasVector(const mesh::wire::Schema& schema) {
  return std::ranges::any_of(schema.slots, [](const mesh::wire::Slot& slot) {
    return slot.kind == mesh::wire::Kind::Vector;
  });
}

// What decoding takes of a message that a writer wrote: it writes every item and array.
uint64_t mostMemory(std::span<const uint8_t> bytes) {
  return std::min<uint64_t>(memoryLimit, 4096 + 8 * uint64_t{bytes.size()});
}

}  // namespace

bool isOwnEncoding(const KnownMessage& message, std::span<const uint8_t> bytes) {
  if (bytes.size() < 4 || bytes.size() > INT32_MAX ||
      (hasVector(message.schema()) && judge(message, bytes).memory > mostMemory(bytes))) {
    return false;
  }
  // A rejected message may leave a count without items in the record, which has no encoding.
  return encodesTo(decode(message, bytes), bytes);
}

}  // namespace inspect
