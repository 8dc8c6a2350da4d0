#include "oracle/operations/sender.hpp"

#include "oracle/operations/trace.hpp"
#include "oracle/values/text.hpp"

namespace oracle {
namespace {

constexpr uint64_t descriptorSize = 16;
constexpr uint64_t batchRegion = 0x10000;
constexpr uint32_t largestAutomatic = 1024;

// One send operation under way.
class Sending {
 public:
  Sending(const Description& message, uint32_t destination,
          const std::optional<std::vector<Value>>& recordsOrNull, uint64_t extra, bool reversed,
          bool allocationFails, uint32_t middlewareResult)
      : message_(message),
        records_(recordsOrNull),
        reversed_(reversed),
        allocationFails_(allocationFails),
        middlewareResult_(middlewareResult) {
    sent_.destination = destination;
    sent_.extra = extra;
  }

  Sent sendSingle() { return message_.sentFixed ? sendSingleFixed() : sendSingleCompact(); }

  Sent sendBatch(uint32_t count) {
    return message_.sentFixed ? sendBatchFixed(count) : sendBatchCompact(count);
  }

  Sent fail() {
    sent_.result = failure;
    sent_.descriptors.clear();
    return sent_;
  }

 private:
  Sent sendSingleCompact() {
    if (!records_) {
      return fail();
    }
    const std::optional<uint32_t> size = sendableSize(message_, record(0));
    if (!size || !allocate(*size, "__sendsingle")) {
      return fail();
    }
    describe(0, compactBytes(message_, record(0), reversed_));
    callMiddleware(1);
    release("__sendsingle");
    return sent_;
  }

  Sent sendSingleFixed() {
    const uint32_t length = fixedLength(message_);
    const bool onTheHeap = length > largestAutomatic;
    if (onTheHeap && !allocate(length, "__sendsingle")) {
      return fail();
    }
    describe(0, fixedBytes(record(0)));
    callMiddleware(1);
    if (onTheHeap) {
      release("__sendsingle");
    }
    return sent_;
  }

  Sent sendBatchCompact(uint32_t count) {
    const uint64_t size = descriptorSize * count + batchRegion;
    if (!allocate(static_cast<uint32_t>(size), "__sendbatch")) {
      return fail();
    }
    if (size > largestU32 || !describeCompactBatch(count)) {
      release("__sendbatch");
      return fail();
    }
    callMiddleware(count);
    release("__sendbatch");
    return sent_;
  }

  bool describeCompactBatch(uint32_t count) {
    uint64_t used = 0;
    for (uint32_t i = 0; i < count; ++i) {
      if (used >= batchRegion || !records_) {
        return false;
      }
      const std::optional<uint32_t> size = sendableSize(message_, record(i));
      if (!size || *size > batchRegion - used) {
        return false;
      }
      describe(used, compactBytes(message_, record(i), reversed_));
      used += *size;
    }
    return true;
  }

  Sent sendBatchFixed(uint32_t count) {
    const uint64_t length = fixedLength(message_);
    const uint64_t size = (length + descriptorSize) * count;
    if (!allocate(static_cast<uint32_t>(size), "__sendbatch")) {
      return fail();
    }
    if (size > largestU32) {
      release("__sendbatch");
      return fail();
    }
    for (uint32_t i = 0; i < count; ++i) {
      describe(i * length, fixedBytes(record(i)));
    }
    callMiddleware(count);
    release("__sendbatch");
    return sent_;
  }

  const Value& record(size_t index) const {
    if (!records_ || index >= records_->size()) {
      misuse(joined({"a send of ", message_.name, " would read a record that is not there"}));
    }
    return (*records_)[index];
  }

  WrittenBytes fixedBytes(const Value& value) const {
    const std::vector<uint8_t> image = fixedImage(message_, value, reversed_);
    return {image.begin(), image.end()};
  }

  void describe(uint64_t offset, const WrittenBytes& bytes) {
    sent_.descriptors.push_back({offset, message_.id, bytes});
  }

  bool allocate(uint32_t size, const std::string& operation) {
    sent_.trace.push_back(memAllocLine(size, message_.name + operation, allocationFails_ ? 0 : 1));
    return !allocationFails_;
  }

  void release(const std::string& operation) {
    sent_.trace.push_back(memFreeLine(1, message_.name + operation));
  }

  void callMiddleware(uint32_t count) {
    sent_.reachedMiddleware = true;
    sent_.toMsg = sent_.extra != 0;
    sent_.result = middlewareResult_;
    sent_.trace.push_back(sent_.toMsg ? sendToMsgLine(sent_.destination, count, sent_.extra)
                                      : sendMsgLine(sent_.destination, count));
  }

  const Description& message_;
  const std::optional<std::vector<Value>>& records_;
  bool reversed_;
  bool allocationFails_;
  uint32_t middlewareResult_;
  Sent sent_;
};

}  // namespace

Sent send(const Description& message, Operation operation, uint32_t destination,
          const std::optional<std::vector<Value>>& recordsOrNull, uint32_t count, uint64_t extra,
          bool reversed, bool allocationFails, uint32_t middlewareResult) {
  const uint64_t passedOn = operation == Operation::Msg ? 0 : extra;
  Sending sending(message, destination, recordsOrNull, passedOn, reversed, allocationFails,
                  middlewareResult);
  switch (operation) {
    case Operation::Single:
      return sending.sendSingle();
    case Operation::Batch:
      return sending.sendBatch(count);
    case Operation::Msg:
    case Operation::ToMsg:
      if (count == 0) {
        return sending.fail();
      }
      return count == 1 ? sending.sendSingle() : sending.sendBatch(count);
  }
  misuse("unknown operation");
}

}  // namespace oracle
