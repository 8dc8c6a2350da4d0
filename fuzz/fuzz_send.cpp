// Any record through __pack and the senders: the engine against the reference model, in every room,
// with every combination of null pointers, with records that cannot be encoded, in every number.

#include <vector>

#include "input.hpp"
#include "oracle/operations/sender.hpp"
#include "oracle/operations/writer.hpp"
#include "support/comparison.hpp"
#include "values.hpp"

namespace {

using harness::Operations;

// The host refuses larger blocks.
constexpr uint64_t largestBlock = uint64_t{1} << 20;

void pack(FuzzedDataProvider& input, const fuzz::Head& head) {
  const Operations& operations = head.operations();
  const oracle::Description& message = oracle::descriptionOf(operations.name);
  const fuzz::Taken record = fuzz::takeRecord(input, message, fuzz::Lengths::MayLie);
  const auto nulls = input.ConsumeIntegralInRange<uint8_t>(0, 15);
  harness::Packing how{.reversed = head.reversed(),
                       .recordIsNull = nulls == 1,
                       .bufferIsNull = (nulls & 2) != 0,
                       .lengthIsNull = nulls == 4,
                       .bufferShift = head.alignment(),
                       .recordShift = input.ConsumeIntegralInRange<size_t>(0, 7)};
  const uint32_t size = oracle::sendableSize(message, record.value).value_or(0);
  const bool nearlyExact = input.ConsumeBool();
  how.room = nearlyExact ? size + static_cast<uint32_t>(input.ConsumeIntegralInRange(-8, 8))
                         : input.ConsumeIntegral<uint32_t>();
  if (record.lies && size <= how.room) {
    how.bufferIsNull = true;
  }
  // In a buffer of the exact size a sanitizer sees any overrun, whatever room is claimed; a buffer
  // of the claimed room shows what else is written.
  how.block = record.lies ? 0 : size == 0 || !nearlyExact ? size : how.room;
  fuzz::expectNone(harness::comparePack(operations, record.value, how));
}

// Whether every operation with these records fails before it writes the one whose length lies.
bool isNeverWritten(const oracle::Description& message, const oracle::Value& value, bool inABatch) {
  const std::optional<uint32_t> size = oracle::sendableSize(message, value);
  return !size || (inABatch && *size > 0x10000);
}

// The same records several times over: batches that outgrow their region.
void repeat(std::vector<oracle::Value>& values, size_t times) {
  uint64_t size = 0;
  for (const oracle::Value& value : values) {
    size += value.message->recordSize + oracle::compactSize(*value.message, value);
  }
  if (size * times > largestBlock) {
    return;
  }
  const std::vector<oracle::Value> once = values;
  for (size_t time = 1; time < times; ++time) {
    values.insert(values.end(), once.begin(), once.end());
  }
}

void send(FuzzedDataProvider& input, const fuzz::Head& head, oracle::Operation operation) {
  const Operations& operations = head.operations();
  const oracle::Description& message = oracle::descriptionOf(operations.name);
  const uint64_t extra = input.ConsumeBool() ? input.ConsumeIntegral<uint64_t>() : 0;
  const uint32_t middlewareResult = input.ConsumeBool() ? input.ConsumeIntegral<uint32_t>() : 0;
  bool allocationFails = input.ConsumeIntegralInRange(0, 7) == 0;
  const bool single = operation == oracle::Operation::Single;
  const size_t count = single ? 1 : input.ConsumeIntegralInRange<size_t>(0, 6);
  std::vector<oracle::Value> values;
  for (size_t index = 0; index < count; ++index) {
    const fuzz::Taken record = fuzz::takeRecord(input, message, fuzz::Lengths::MayLie);
    const bool batch = operation == oracle::Operation::Batch || (!single && count > 1);
    allocationFails =
        allocationFails || (record.lies && !isNeverWritten(message, record.value, batch));
    values.push_back(record.value);
  }
  repeat(values, single ? 1 : input.ConsumeIntegralInRange<size_t>(1, 64));
  fuzz::expectNone(harness::compareSend(operations, operation, values, extra, head.reversed(),
                                        allocationFails, middlewareResult));
}

void sendNothing(FuzzedDataProvider& input, const fuzz::Head& head, oracle::Operation operation) {
  const Operations& operations = head.operations();
  const oracle::Description& message = oracle::descriptionOf(operations.name);
  harness::Sending how{.operation = operation,
                       .count = input.ConsumeIntegral<uint32_t>(),
                       .extra = input.ConsumeIntegral<uint64_t>(),
                       .reversed = head.reversed()};
  const bool batch = operation == oracle::Operation::Batch ||
                     (operation != oracle::Operation::Single && how.count > 1);
  const uint64_t size = message.sentFixed
                            ? uint64_t{how.count} * (oracle::fixedLength(message) + 16)
                            : uint64_t{how.count} * 16 + 0x10000;
  how.allocationFails = batch && static_cast<uint32_t>(size) > largestBlock;
  const bool wraps = size > UINT32_MAX;
  if (message.sentFixed && how.count != 0 && !how.allocationFails && !(batch && wraps)) {
    return;  // the caller's duty: fixed records are there
  }
  if (message.sentFixed && operation == oracle::Operation::Single) {
    return;
  }
  fuzz::expectNone(harness::compareNullSend(operations, how));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < fuzz::headSize) {
    return -1;
  }
  const fuzz::Head head{data[0], data[1]};
  FuzzedDataProvider input(data + fuzz::headSize, size - fuzz::headSize);
  constexpr std::array operations{oracle::Operation::Single, oracle::Operation::Batch,
                                  oracle::Operation::Msg, oracle::Operation::ToMsg};
  const auto choice = input.ConsumeIntegralInRange<size_t>(0, 15);
  if (choice < 8) {
    pack(input, head);
  } else if (choice < 15) {
    send(input, head, operations[choice % operations.size()]);
  } else {
    sendNothing(input, head, operations[input.ConsumeIntegral<uint8_t>() % operations.size()]);
  }
  return 0;
}
