// Messages that the operations themselves made from records. Each is decoded once as a check before
// anything is timed.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "bench/middleware.hpp"
#include "bench/records.hpp"

namespace bench {

// Messages without gaps, as in a batch.
class Encoded {
 public:
  explicit Encoded(Captured captured)
      : bytes_(std::move(captured.bytes)), ends_(std::move(captured.ends)) {}

  // Calls `work` with each message's bytes and length.
  template <typename Work>
  [[gnu::always_inline]] void each(Work work) const {
    uint32_t start = 0;
    for (const uint32_t end : ends_) {
      work(bytes_.data() + start, end - start);
      start = end;
    }
  }

  [[nodiscard]] double bytesPerRecord() const {
    return static_cast<double>(bytes_.size()) / static_cast<double>(ends_.size());
  }

 private:
  Placed<uint8_t> bytes_;
  std::vector<uint32_t> ends_;
};

[[noreturn]] inline void failRoundTrip(const char* message, const char* what) {
  std::fprintf(stderr, "l2vpn_bench measures nothing: %s: %s\n", message, what);
  std::exit(1);
}

// Checks that every message decodes to its record.
template <typename Record>
void requireRoundTrip(const Records<Record>& records, const Encoded& encoded) {
  const Record* expected = records.begin();
  encoded.each([&](const uint8_t* data, uint32_t length) {
    Record decoded{};
    Exported<Record>::unpack(data, length, &decoded);
    if (!equal(schema<Record>, reinterpret_cast<const uint8_t*>(expected++),
               reinterpret_cast<const uint8_t*>(&decoded))) {
      failRoundTrip(schema<Record>.name, "a record is not what it was encoded from");
    }
    Exported<Record>::release(&decoded);
  });
  if (expected != records.end()) {
    failRoundTrip(schema<Record>.name, "messages are missing");
  }
}

template <typename Record>
uint32_t packedSize(const Record& record) {
  uint32_t length = UINT32_MAX;
  Exported<Record>::pack(&record, nullptr, &length);
  return length;
}

template <typename Record>
Encoded encodeCompact(const Records<Record>& records) {
  Captured messages;
  for (const Record& record : records) {
    const uint32_t size = packedSize(record);
    const size_t start = messages.bytes.size();
    messages.bytes.resize(start + size);
    uint32_t length = size;
    if (Exported<Record>::pack(&record, messages.bytes.data() + start, &length) != 0) {
      failRoundTrip(schema<Record>.name, "__pack fails");
    }
    messages.ends.push_back(static_cast<uint32_t>(start + length));
  }
  Encoded encoded(std::move(messages));
  requireRoundTrip(records, encoded);
  return encoded;
}

// The arrangement that the message is sent in.
template <typename Record>
Encoded encodeAsSent(const Records<Record>& records) {
  takeCaptured();
  for (const Record& record : records) {
    if (Exported<Record>::sendSingle(capturingDestination, &record) != 0) {
      failRoundTrip(schema<Record>.name, "__sendsingle fails");
    }
  }
  Encoded encoded(takeCaptured());
  requireRoundTrip(records, encoded);
  return encoded;
}

}  // namespace bench
