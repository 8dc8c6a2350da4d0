// A buffer received as any message: the engine against the reference model, byte by byte and call
// by call. What the record then holds is encoded and decoded again, until nothing changes.

#include <algorithm>
#include <vector>

#include "input.hpp"
#include "oracle/operations/sender.hpp"
#include "oracle/operations/writer.hpp"
#include "oracle/values/record_image.hpp"
#include "support/comparison.hpp"
#include "support/recorder.hpp"

namespace {

using harness::Operations;

// A few bytes can ask for an item of 16 KiB each. More than this is refused: gigabytes of zeros
// find nothing.
constexpr uint32_t largestBlock = uint32_t{1} << 19;

oracle::Value received(const Operations& operations, std::span<const uint8_t> bytes) {
  const oracle::Description& message = oracle::descriptionOf(operations.name);
  harness::resetRecorder();
  harness::recorder().largestBlock = largestBlock;
  oracle::RecordImage record(message, uint8_t{0});
  operations.unpack(bytes.data(), static_cast<uint32_t>(bytes.size()), record.data());
  const oracle::Value value = oracle::load(message, record.data());
  operations.freeUnpacked(record.data());
  return value;
}

void expectSame(const Operations& operations, const char* arrangement, const oracle::Value& value,
                const oracle::Value& expected) {
  if (!(value == expected)) {
    fuzz::expectNone(std::string(operations.name) + ": its " + arrangement +
                     " arrangement, received, differs at " + oracle::difference(value, expected));
  }
}

void expectFixedPoint(const Operations& operations, const oracle::Value& value, bool reversed) {
  const oracle::Description& message = oracle::descriptionOf(operations.name);
  const std::optional<uint32_t> size = oracle::sendableSize(message, value);
  fuzz::expectNone(harness::comparePack(operations, value, size.value_or(64), reversed));
  if (size) {
    const std::vector<uint8_t> first = harness::packed(operations, value, reversed);
    const oracle::Value again = received(operations, first);
    expectSame(operations, "compact", again, oracle::asReceived(value));
    if (harness::packed(operations, again, reversed) != first) {
      fuzz::expectNone(std::string(operations.name) + ": the second encoding is not the first");
    }
  }
  if (message.sentFixed) {
    fuzz::expectNone(
        harness::compareSend(operations, oracle::Operation::Single, {value}, 0, reversed));
    const std::vector<uint8_t> image = harness::recorder().sent.at(0).bytes;
    expectSame(operations, "fixed", received(operations, image), value);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < fuzz::headSize) {
    return -1;
  }
  const fuzz::Head head{data[0], data[1]};
  const Operations& operations = head.operations();
  std::vector<uint8_t> shifted(head.alignment() + size - fuzz::headSize);
  std::copy(data + fuzz::headSize, data + size,
            shifted.begin() + static_cast<std::ptrdiff_t>(head.alignment()));
  const std::span body = std::span(shifted).subspan(head.alignment());

  fuzz::expectNone(harness::compareUnpack(operations, body,
                                          {.reversed = head.reversed(),
                                           .failingAllocation = head.failingAllocation(),
                                           .recordShift = head.alignment(),
                                           .largestBlock = largestBlock}));
  expectFixedPoint(operations, received(operations, body), head.reversed());
  return 0;
}
