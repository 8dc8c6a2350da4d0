#include "exercise/round.hpp"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "exercise/host.hpp"

namespace exercise {
namespace {

constexpr uint32_t failure = 0xFFFFFFFF;
constexpr uint64_t unused = 0xDEAD;  // as __sendsingle's argument is
constexpr uint32_t middlewareResults[] = {0, 77};

void demand(bool good, const Operations& message, const char* what) {
  if (!good) {
    std::fprintf(stderr, "%s: %s\n", message.name.data(), what);
    std::_Exit(1);
  }
}

// The compact message, of its exact size.
std::vector<uint8_t> packed(const Operations& message, const void* record) {
  uint32_t length = UINT32_MAX;
  demand(message.pack(record, nullptr, &length) == 0, message, "__pack does not tell the size");
  std::vector<uint8_t> bytes(length);
  demand(message.pack(record, bytes.data(), &length) == 0, message, "__pack fails");
  demand(length == bytes.size(), message, "__pack changes its mind about the size");
  readAll(bytes.data(), bytes.size());
  return bytes;
}

// Memory as the allocator gives it: what unpacking leaves out shows in a memory checker.
class RawRecord {
 public:
  explicit RawRecord(uint32_t size) : bytes_(static_cast<uint8_t*>(std::malloc(size))) {}
  ~RawRecord() { std::free(bytes_); }
  RawRecord(const RawRecord&) = delete;
  RawRecord& operator=(const RawRecord&) = delete;
  uint8_t* data() { return bytes_; }

 private:
  uint8_t* bytes_;
};

// `received` holds the record whose compact message is `bytes`.
void unpackAndPackAgain(const Operations& message, const std::vector<uint8_t>& received,
                        const std::vector<uint8_t>& bytes, Tally& tally) {
  const uint64_t refusedBefore = refusedHere();
  RawRecord record(message.schema().size);
  const uint32_t size =
      message.unpack(received.data(), static_cast<uint32_t>(received.size()), record.data());
  demand(size == message.schema().size, message, "__unpack returns another size");
  readAll(record.data(), size);
  if (refusedHere() == refusedBefore) {
    demand(packed(message, record.data()) == bytes, message, "another message comes back");
  } else {
    demand(!ownsParts(message.schema(), record.data()), message, "a rejected record keeps blocks");
  }
  message.freeUnpacked(record.data());
  message.freeUnpacked(record.data());
  tally.operations += 6;
}

// The result of one send, and what reached the middleware, so far as memory was not refused.
void check(const Operations& message, uint32_t result, uint32_t wanted, uint64_t refusedBefore,
           uint32_t tables, Tally& tally) {
  ++tally.operations;
  if (refusedHere() != refusedBefore) {
    demand(result == failure, message, "a send without memory does not fail");
    return;
  }
  demand(result == wanted, message, "a send returns another result than the middleware's");
  ++tally.sends;
  tally.tables += tables;
}

// What the middleware is handed for the first record; nothing when memory was refused.
std::vector<uint8_t> sent(const Operations& message, const Records& records, Tally& tally) {
  answerWith(0);
  const uint64_t refused = refusedHere();
  check(message, message.sendSingle(3, records.data(), unused, 0), 0, refused, 1, tally);
  return refusedHere() == refused ? firstTable() : std::vector<uint8_t>();
}

void send(const Operations& message, const Records& records, Tally& tally) {
  for (const uint32_t result : middlewareResults) {
    answerWith(result);
    for (const uint64_t extra : {0U, 5U}) {
      uint64_t refused = refusedHere();
      check(message, message.sendSingle(3, records.data(), unused, extra), result, refused, 1,
            tally);
      refused = refusedHere();
      check(message, message.sendToMsg(3, records.data(), 1, extra), result, refused, 1, tally);
      if (message.schema().size < 4096 && message.name != "l2vpn_cfg_query_dfx_rec") {
        refused = refusedHere();
        check(message, message.sendBatch(3, records.data(), 3, extra), result, refused, 3, tally);
        refused = refusedHere();
        check(message, message.sendToMsg(3, records.data(), 2, extra), result, refused, 2, tally);
      }
    }
    uint64_t refused = refusedHere();
    check(message, message.sendMsg(3, records.data(), 1), result, refused, 1, tally);
    refused = refusedHere();
    check(message, message.sendBatch(3, records.data(), 1, 0), result, refused, 1, tally);
  }
}

}  // namespace

void runRound(const Operations& message, Random& random, bool refusals, Tally& tally) {
  const Records records(message.schema(), 3, random);
  refuseEvery(0);
  const std::vector<uint8_t> bytes = packed(message, records.data());
  refuseEvery(refusals ? 3 + random.below(5) : 0);
  unpackAndPackAgain(message, bytes, bytes, tally);
  if (const std::vector<uint8_t> table = sent(message, records, tally); !table.empty()) {
    unpackAndPackAgain(message, table, bytes, tally);
  }
  send(message, records, tally);
  refuseEvery(0);
}

void runDamaged(const Operations& message, Random& random, Tally& tally) {
  const Records records(message.schema(), 1, random);
  const std::vector<uint8_t> compact = packed(message, records.data());
  const std::vector<uint8_t> table = sent(message, records, tally);
  for (int round = 0; round < 20; ++round) {
    std::vector<uint8_t> bytes = round % 2 == 0 ? compact : table;
    damage(bytes, random);
    bytes.shrink_to_fit();
    RawRecord record(message.schema().size);
    std::memset(record.data(), 0, message.schema().size);
    refuseEvery(round % 4 == 3 ? 2 : 0);
    message.unpack(bytes.data(), static_cast<uint32_t>(bytes.size()), record.data());
    refuseEvery(0);
    readAll(record.data(), message.schema().size);
    message.freeUnpacked(record.data());
    tally.operations += 2;
  }
}

}  // namespace exercise
