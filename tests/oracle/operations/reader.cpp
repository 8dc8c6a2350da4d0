#include "oracle/operations/reader.hpp"

#include <optional>

#include "oracle/operations/decoding.hpp"
#include "oracle/operations/trace.hpp"
#include "oracle/values/text.hpp"

namespace oracle {
namespace {

bool lengthTooSmall(uint32_t length) {
  return static_cast<int32_t>(length) < 4;
}

void append(std::vector<std::string>& trace, const std::vector<std::string>& lines) {
  trace.insert(trace.end(), lines.begin(), lines.end());
}

void releaseParts(const Description& message, const std::string& caller, Value& record,
                  std::vector<std::string>& trace) {
  for (size_t slot = 0; slot < message.fields.size(); ++slot) {
    const Field& field = message.fields[slot];
    FieldValue& value = record[slot];
    if (field.kind == Kind::Table || field.kind == Kind::Vector) {
      for (Value& item : value.items) {
        releaseParts(*field.nested, caller, item, trace);
      }
    }
    if (field.kind == Kind::Bytes || field.kind == Kind::Vector) {
      trace.push_back(unpackFreeLine(value.block, caller));
      FieldValue released;
      released.kind = field.kind;
      released.length = value.length;
      value = released;
    }
  }
}

}  // namespace

UnpackResult unpack(const Description& message, const uint8_t* data, uint32_t length,
                    bool recordIsNull, bool reversed, int failingAllocation) {
  UnpackResult result;
  result.returned = message.recordSize;
  result.record = zeroValue(message);
  const std::string function = message.name + "_unpack";
  if (data == nullptr || lengthTooSmall(length) || recordIsNull) {
    result.trace.push_back(unpackParametersLine(function, data == nullptr, length, recordIsNull));
    return result;
  }
  Decoding decoding(data, length, reversed, failingAllocation);
  const uint64_t root = decoding.numberAt(0, 4);
  bool decoded = false;
  if (message.ownRoot) {
    const std::optional<uint64_t> vtable = decoding.vtableOf(root, function);
    if (!vtable) {
      result.trace = decoding.trace();
      return result;
    }
    decoded =
        decoding.decodeSlots(message, root, *vtable, function, Decoder::OfRoot, result.record);
  } else {
    decoded = decoding.decodeTableAt(message, root, result.record);
  }
  result.recordTouched = true;
  result.trace = decoding.trace();
  if (!decoded) {
    append(result.trace, release(message, result.record));
  }
  return result;
}

DecodeResult decodeTable(const Description& message, const uint8_t* data, uint32_t length,
                         bool recordIsNull, uint32_t tablePosition, bool reversed,
                         int failingAllocation) {
  DecodeResult result;
  result.record = zeroValue(message);
  if (data == nullptr || lengthTooSmall(length) || recordIsNull) {
    if (!message.tableReaderChecksParameters) {
      misuse(joined({"the table reader of ", message.name, " does not check its parameters"}));
    }
    result.trace.push_back(unpackParametersLine(message.name + "_unpack_non_root", data == nullptr,
                                                length, recordIsNull));
    return result;
  }
  Decoding decoding(data, length, reversed, failingAllocation);
  result.decoded = decoding.decodeTableAt(message, tablePosition, result.record);
  result.trace = decoding.trace();
  return result;
}

std::vector<std::string> freeUnpacked(const Description& message, const Value& record) {
  Value copy = record;
  return release(message, copy);
}

std::vector<std::string> release(const Description& message, Value& record) {
  std::vector<std::string> trace;
  if (message.hasOutOfLineParts) {
    releaseParts(message, message.name + "_free_unpacked", record, trace);
  }
  return trace;
}

}  // namespace oracle
