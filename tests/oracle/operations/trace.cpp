#include "oracle/operations/trace.hpp"

#include "oracle/values/text.hpp"

namespace oracle {
namespace {

constexpr uint32_t reportCode = 22;
constexpr uint32_t allocationCode = 12;
constexpr uint32_t unpackOwner = 12;
constexpr uint32_t sendOwner = 25088;

std::string text(uint64_t number) {
  return std::to_string(number);
}

std::string blockName(uint32_t block) {
  return block == 0 ? "null" : joined({"#", text(block)});
}

std::string pointerName(bool isNull) {
  return isNull ? "null" : "nonNull";
}

std::string log(uint32_t code, const std::string& function,
                std::initializer_list<std::string_view> words) {
  return joined({"log level=2 code=", text(code), " file=\"\" function=\"", function,
                 "\" text=\"[VELTA]:", joined(words), "\""});
}

std::string alloc(const std::string& symbol, uint32_t size, uint32_t owner,
                  const std::string& caller, uint32_t block) {
  return joined({symbol, " size=", text(size), " owner=", text(owner), " caller=\"", caller,
                 "\" -> ", blockName(block)});
}

std::string release(const std::string& symbol, uint32_t block, uint32_t owner,
                    const std::string& caller) {
  return joined(
      {symbol, " ", blockName(block), " owner=", text(owner), " caller=\"", caller, "\""});
}

}  // namespace

std::string unpackAllocLine(uint32_t size, const std::string& caller, uint32_t block) {
  return alloc("unpackAlloc", size, unpackOwner, caller, block);
}

std::string unpackFreeLine(uint32_t block, const std::string& caller) {
  return release("unpackFree", block, unpackOwner, caller);
}

std::string memAllocLine(uint32_t size, const std::string& caller, uint32_t block) {
  return alloc("memAlloc", size, sendOwner, caller, block);
}

std::string memFreeLine(uint32_t block, const std::string& caller) {
  return release("memFree", block, sendOwner, caller);
}

std::string sendMsgLine(uint32_t destination, uint32_t count) {
  return joined({"MESH_SendMsg destination=", text(destination), " count=", text(count)});
}

std::string sendToMsgLine(uint32_t destination, uint32_t count, uint64_t extra) {
  return joined({"MESH_SendToMsg destination=", text(destination), " count=", text(count),
                 " extra=", text(extra)});
}

std::string unpackParametersLine(const std::string& function, bool dataIsNull, uint32_t length,
                                 bool recordIsNull) {
  const int32_t signedLength = static_cast<int32_t>(length);
  return log(reportCode, function,
             {"Param invalid(", pointerName(dataIsNull), ", ", std::to_string(signedLength), ", ",
              pointerName(recordIsNull), ")"});
}

std::string packParametersLine(const std::string& function, bool bufferIsNull, uint32_t room,
                               bool recordIsNull) {
  return log(reportCode, function,
             {"Param invalid(", pointerName(bufferIsNull), ", ", text(room), ", ",
              pointerName(recordIsNull), ")"});
}

std::string tableOffsetLine(const std::string& function, uint32_t tablePosition, uint32_t length) {
  return log(reportCode, function,
             {"Table offset(", text(tablePosition), ") is out of range(4 - ", text(length), ")"});
}

std::string vtableOffsetLine(const std::string& function, uint32_t tablePosition, uint32_t length) {
  return log(
      reportCode, function,
      {"Vtable offset(", text(tablePosition), ") is out of range(4 - ", text(length - 4), ")"});
}

std::string vtableLengthLine(const std::string& function, uint32_t vtableLength, uint32_t left) {
  return log(reportCode, function,
             {"Vtable Len(", text(vtableLength), ") is out of range(0 - ", text(left), ")"});
}

std::string rootAllocationFailedLine(const std::string& function, uint32_t size) {
  return log(allocationCode, function, {"Malloc unpack data unsuccess, size(", text(size), ")"});
}

std::string tableAllocationFailedLine(const std::string& function, uint32_t size) {
  return log(allocationCode, function,
             {"Malloc unpack data unsuccess,                size(", text(size), ")"});
}

}  // namespace oracle
