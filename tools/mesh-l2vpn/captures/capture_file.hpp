// Captures: pcapng files of tables, one packet a table.
//
// A packet of link type 147 (user 0) is a header of 32 bytes and the table. The header's numbers
// are little-endian:
//
//    0  "MESH"       so that other traffic of that link type is told apart
//    4  u16 version, 1
//    6  u16 length of this header, 32
//    8  u32 source, u32 destination, u32 identifier, u32 zero
//   24  u64 the word that travelled along
//
// Where calls were missed, the packet behind the gap has the option epb_dropcount: how many.
#pragma once

#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "bytes/failure.hpp"
#include "bytes/input.hpp"
#include "captures/traffic.hpp"

namespace tool {

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

// Writes a capture. Every table is handed to the system as a whole before the next is taken, so a
// crash of this program loses none of them.
class CaptureWriter {
 public:
  // Writes a new file, or to the standard output for "-". Fails where it cannot.
  explicit CaptureWriter(const std::string& file);

  void write(const Table& table);

  // How many tables arrived, and how many calls did not, as the last block.
  void writeStatistics(uint64_t received, uint64_t lost);

  // Fails where the system has kept an error until now. Nothing can be written any more.
  void close();

 private:
  [[noreturn]] void fail() const;
  void writeBlock(uint32_t type, const std::vector<uint8_t>& body);

  std::string name_;
  File file_;
};

// Reads a capture, block by block: it holds one block at a time.
class CaptureReader {
 public:
  explicit CaptureReader(std::unique_ptr<InputFile> file) : file_(std::move(file)) {}
  // Fails where the file cannot be opened.
  explicit CaptureReader(const std::string& file)
      : CaptureReader(std::make_unique<InputFile>(file)) {}

  // The next table; its bytes are good until the next call. Nothing at the end, or at a fault.
  std::optional<Table> next();

  // What is wrong with the file, and where; empty when nothing is. Reading ends there.
  [[nodiscard]] const std::string& fault() const { return fault_; }
  // Ends the command when there is a fault.
  void throwFault() const;
  // Calls that the recording node missed, as far as the file says: a recorder that was killed tells
  // none behind its last table.
  [[nodiscard]] uint64_t lost() const;
  // Packets that are no tables.
  [[nodiscard]] uint64_t otherPackets() const { return otherPackets_; }
  [[nodiscard]] uint64_t position() const { return position_; }

 private:
  struct Interface {
    bool isOurs;
    uint64_t unitsPerSecond;
    uint64_t lost = 0;  // as its last statistics say, which count from the beginning
  };

  bool readBlock();
  bool readBody(size_t length);
  bool fail(const std::string& text, Exit exit = Exit::BadInput);
  bool failReading(const std::string& text);
  template <typename Integer>
  [[nodiscard]] Integer load(size_t at) const;
  bool takeInterface();
  void takeSection();
  bool takeStatistics();
  // The value of an option of the block, whose options begin at `at`; empty when it has none.
  [[nodiscard]] std::span<const uint8_t> option(size_t at, uint16_t code) const;
  // The same as a count of 64 bits.
  [[nodiscard]] std::optional<uint64_t> countOption(size_t at, uint16_t code) const;
  bool takePacket(std::optional<Table>& table);

  std::unique_ptr<InputFile> file_;
  std::vector<uint8_t> block_;  // its body, without type and lengths
  uint32_t type_ = 0;
  bool isSwapped_ = false;
  bool hasSection_ = false;
  std::vector<Interface> interfaces_;
  std::string fault_;
  Exit faultExit_ = Exit::Success;
  uint64_t position_ = 0;  // of the block being read
  uint64_t nextPosition_ = 0;
  uint64_t lostBefore_ = 0;     // in the sections before
  uint64_t lostByPackets_ = 0;  // in this one
  uint64_t otherPackets_ = 0;
};

}  // namespace tool
