// One case per operation: a pass over all records is one iteration. A case of the plain copy makes
// the same pass.
#pragma once

#include <benchmark/benchmark.h>

#include <bit>
#include <vector>

#include "bench/encoded.hpp"
#include "bench/placement.hpp"
#include "bench/plain_copy.hpp"

namespace bench {

// Converts nanoseconds per pass to nanoseconds per record, for all threads together.
inline void report(benchmark::State& state, uint32_t records, double bytesPerRecord) {
  using benchmark::Counter;
  state.counters["ns_per_record"] = Counter(
      records * 1e-9, Counter::kIsIterationInvariantRate | Counter::kAvgThreads | Counter::kInvert);
  state.counters["bytes_per_record"] = Counter(bytesPerRecord, Counter::kAvgThreads);
  state.counters["records"] = Counter(records, Counter::kAvgThreads);
}

// Threads have different records.
inline Shape ofThread(Shape shape, const benchmark::State& state) {
  shape.seed += static_cast<uint64_t>(state.thread_index());
  return shape;
}

template <typename Record>
void copyCase(benchmark::State& state, Shape shape) {
  const Records<Record> records(ofThread(shape, state));
  Placed<uint8_t> room(records.partsBytes());
  const CopyFunction copy = opaqueCopy();
  Placed<Record> into(1);
  timePasses(state, [&records, copy, to = into.data(), parts = room.data()] {
    for (const Record& record : records) {
      copyRecord(copy, to, &record, parts);
    }
  });
  report(state, records.size(), static_cast<double>(sizeof(Record) + records.partsBytes()));
}

template <typename Record>
void packCase(benchmark::State& state, Shape shape) {
  const Records<Record> records(ofThread(shape, state));
  const Encoded encoded = encodeCompact(records);
  // Room for the largest record, as in a process that packs any record.
  uint32_t room = 1024;
  encoded.each([&](const uint8_t*, uint32_t length) { room = std::max(room, length); });
  Placed<uint8_t> buffer(room);
  timePasses(state, [&records, room, to = buffer.data()] {
    for (const Record& record : records) {
      uint32_t length = room;
      Exported<Record>::pack(&record, to, &length);
    }
  });
  report(state, records.size(), encoded.bytesPerRecord());
}

// Packs into a buffer of exactly the message's length.
template <typename Record>
void packExactCase(benchmark::State& state, Shape shape) {
  const Records<Record> records(ofThread(shape, state));
  const Encoded encoded = encodeCompact(records);
  std::vector<uint32_t> lengths;
  uint32_t largest = 0;
  encoded.each([&](const uint8_t*, uint32_t length) {
    lengths.push_back(length);
    largest = std::max(largest, length);
  });
  Placed<uint8_t> buffer(largest);
  timePasses(state, [&records, room = lengths.data(), to = buffer.data()] {
    const uint32_t* next = room;
    for (const Record& record : records) {
      uint32_t length = *next++;
      Exported<Record>::pack(&record, to, &length);
    }
  });
  report(state, records.size(), encoded.bytesPerRecord());
}

// If the record owns memory, releases each record at once.
template <typename Record>
void unpackAll(benchmark::State& state, const Encoded& encoded, uint32_t records) {
  Placed<Record> into(1);
  timePasses(state, [&encoded, to = into.data()] {
    encoded.each([to](const uint8_t* data, uint32_t length) {
      Exported<Record>::unpack(data, length, to);
      if constexpr (owns<Record>) {
        Exported<Record>::release(to);
      }
    });
  });
  report(state, records, encoded.bytesPerRecord());
}

template <typename Record>
void unpackCompactCase(benchmark::State& state, Shape shape) {
  const Records<Record> records(ofThread(shape, state));
  unpackAll<Record>(state, encodeCompact(records), records.size());
}

template <typename Record>
void unpackFixedCase(benchmark::State& state, Shape shape) {
  static_assert(isSentFixed<Record>);
  const Records<Record> records(ofThread(shape, state));
  unpackAll<Record>(state, encodeAsSent(records), records.size());
}

// All records hold their memory before the first release.
template <typename Record>
void freeCase(benchmark::State& state, Shape shape) {
  static_assert(owns<Record>);
  const Records<Record> records(shape);
  const Encoded encoded = encodeCompact(records);
  std::vector<Record> unpacked(records.size());
  for (auto _ : state) {
    state.PauseTiming();
    Record* into = unpacked.data();
    encoded.each([&](const uint8_t* data, uint32_t length) {
      Exported<Record>::unpack(data, length, into++);
    });
    state.ResumeTiming();
    for (Record& record : unpacked) {
      Exported<Record>::release(&record);
    }
    benchmark::ClobberMemory();
  }
  report(state, records.size(), encoded.bytesPerRecord());
}

template <typename Record>
void singleCase(benchmark::State& state, Shape shape) {
  const Records<Record> records(ofThread(shape, state));
  const Encoded encoded = encodeAsSent(records);
  timePasses(state, [&records] {
    for (const Record& record : records) {
      Exported<Record>::sendSingle(anyDestination, &record);
    }
  });
  report(state, records.size(), encoded.bytesPerRecord());
}

// The tables of a compact batch may take 65,536 bytes together. Stays below, as their sizes differ.
inline constexpr uint32_t largestCompactBatch = 60000;

// The largest batch size, a power of two up to `wanted`, that the library accepts.
template <typename Record>
uint32_t batchOf(uint32_t wanted, uint32_t records, const Encoded& encoded) {
  uint32_t batch = std::bit_floor(std::min(wanted, records));
  while (!isSentFixed<Record> && batch > 1 &&
         batch * encoded.bytesPerRecord() > largestCompactBatch) {
    batch /= 2;
  }
  return batch;
}

template <typename Record>
void batchCase(benchmark::State& state, Shape shape, uint32_t wanted) {
  const Records<Record> records(ofThread(shape, state));
  const Encoded encoded = encodeAsSent(records);
  const uint32_t batch = batchOf<Record>(wanted, records.size(), encoded);
  const uint32_t batches = records.size() / batch;
  if (Exported<Record>::sendBatch(capturingDestination, records.begin(), batch) != 0 ||
      takeCaptured().ends.size() != batch) {
    failRoundTrip(schema<Record>.name, "__sendbatch fails");
  }
  timePasses(state, [first = records.begin(), batch, batches] {
    const Record* next = first;
    for (uint32_t index = 0; index < batches; ++index, next += batch) {
      Exported<Record>::sendBatch(anyDestination, next, batch);
    }
  });
  report(state, batches * batch, encoded.bytesPerRecord());
  state.counters["batch"] = benchmark::Counter(batch, benchmark::Counter::kAvgThreads);
}

}  // namespace bench
