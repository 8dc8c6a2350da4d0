#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "inspect/bytes/failure.hpp"
#include "inspect/captures/capture_file.hpp"
#include "inspect/captures/capture_format.hpp"
#include "inspect/messages/release.hpp"

namespace inspect {
namespace {

using namespace pcapng;

constexpr uint8_t nanoseconds = 9;  // a power of ten

template <typename Integer>
void append(std::vector<uint8_t>& bytes, Integer value) {
  const size_t end = bytes.size();
  bytes.resize(end + sizeof value);
  storeAs(bytes.data() + end, value);
}

void appendBytes(std::vector<uint8_t>& bytes, std::span<const uint8_t> added) {
  bytes.insert(bytes.end(), added.begin(), added.end());
  bytes.resize(padded(static_cast<uint32_t>(bytes.size())));
}

void appendOption(std::vector<uint8_t>& bytes, uint16_t code, std::span<const uint8_t> value) {
  append(bytes, code);
  append(bytes, static_cast<uint16_t>(value.size()));
  appendBytes(bytes, value);
}

void appendCount(std::vector<uint8_t>& bytes, uint16_t code, uint64_t count) {
  appendOption(bytes, code, {reinterpret_cast<const uint8_t*>(&count), sizeof count});
}

void appendTime(std::vector<uint8_t>& bytes, uint64_t time) {
  append(bytes, static_cast<uint32_t>(time >> 32));
  append(bytes, static_cast<uint32_t>(time));
}

std::span<const uint8_t> bytesOf(const char* text) {
  return {reinterpret_cast<const uint8_t*>(text), std::strlen(text)};
}

}  // namespace

CaptureWriter::CaptureWriter(const std::string& file)
    : name_(file),
      file_(file == "-" ? fdopen(dup(STDOUT_FILENO), "wb") : std::fopen(file.c_str(), "wb")) {
  if (!file_) {
    fail();
  }
  std::vector<uint8_t> section;
  append(section, byteOrderMagic);
  append(section, uint16_t{1});  // version 1.0
  append(section, uint16_t{0});
  append(section, UINT64_MAX);  // of unknown length
  appendOption(section, userApplication, bytesOf("mesh-l2vpn"));
  append(section, uint32_t{0});
  writeBlock(sectionHeader, section);

  std::vector<uint8_t> interface;
  append(interface, linkTypeUser0);
  append(interface, uint16_t{0});
  append(interface, uint32_t{0});  // nothing is cut off
  appendOption(interface, timestampResolution, {&nanoseconds, 1});
  append(interface, uint32_t{0});
  writeBlock(interfaceDescription, interface);
}

void CaptureWriter::write(const Table& table) {
  const auto length = static_cast<uint32_t>(tableHeaderLength + table.bytes.size());
  std::vector<uint8_t> packet;
  packet.reserve(20 + padded(length) + 16);
  append(packet, uint32_t{0});  // the interface
  appendTime(packet, table.time);
  append(packet, length);
  append(packet, length);
  appendBytes(packet, tableMagic);
  append(packet, tableVersion);
  append(packet, tableHeaderLength);
  append(packet, table.source);
  append(packet, table.destination);
  append(packet, table.id);
  append(packet, uint32_t{0});
  append(packet, table.extra);
  appendBytes(packet, table.bytes);
  if (table.missedBefore != 0) {
    appendCount(packet, dropCount, table.missedBefore);
    append(packet, uint32_t{0});
  }
  writeBlock(enhancedPacket, packet);
}

void CaptureWriter::writeStatistics(uint64_t received, uint64_t lost) {
  std::vector<uint8_t> statistics;
  append(statistics, uint32_t{0});
  appendTime(statistics, nowInNanoseconds());
  appendCount(statistics, receivedPackets, received);
  appendCount(statistics, droppedPackets, lost);
  append(statistics, uint32_t{0});
  writeBlock(interfaceStatistics, statistics);
}

void CaptureWriter::writeBlock(uint32_t type, const std::vector<uint8_t>& body) {
  const auto length = static_cast<uint32_t>(12 + body.size());
  std::vector<uint8_t> block;
  block.reserve(length);
  append(block, type);
  append(block, length);
  block.insert(block.end(), body.begin(), body.end());
  append(block, length);
  if (std::fwrite(block.data(), 1, block.size(), file_.get()) != block.size() ||
      std::fflush(file_.get()) != 0) {
    fail();
  }
}

void CaptureWriter::close() {
  if (std::fclose(file_.release()) != 0) {
    fail();
  }
}

void CaptureWriter::fail() const {
  throw Failure(Cause::System, name_ + ": " + std::strerror(errno));
}

}  // namespace inspect
