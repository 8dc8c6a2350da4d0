// Captures: pcapng files with one packet per table.
//
// A packet of link type 147 (user 0) is a header of 32 bytes and the table. The header's numbers
// are little-endian:
//
//    0  "MESH"       tells tables from other traffic of this link type
//    4  u16 version, 1
//    6  u16 length of this header, 32
//    8  u32 source, u32 destination, u32 identifier, u32 zero
//   24  u64 extra, as passed to the send operation
//
// Blocks with the messages' schemas stand between the packets: see capture_schemas.hpp.
//
// The option epb_dropcount of a packet counts the calls missed before it.
#pragma once

#include <cstdio>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "inspect/bytes/failure.hpp"
#include "inspect/bytes/input.hpp"
#include "inspect/captures/capture_schemas.hpp"
#include "inspect/captures/traffic.hpp"

namespace inspect {

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

// Writes a capture. Passes tables on to the system in pieces; a crash of this program loses what
// was not flushed.
class CaptureWriter {
 public:
  // Truncates an existing file. "-" is the standard output.
  explicit CaptureWriter(const std::string& file);
  // Passes on what is left, without telling whether it succeeds.
  ~CaptureWriter();
  CaptureWriter(const CaptureWriter&) = delete;
  CaptureWriter& operator=(const CaptureWriter&) = delete;

  // The first table of a message comes with the message's schema.
  void write(const Table& table);

  // Writes the last block: the numbers of received tables and lost calls.
  void writeStatistics(uint64_t received, uint64_t lost);

  // Passes on what was written so far.
  void flush();

  // Fails if the system reports a delayed error. Nothing can be written afterwards.
  void close();

 private:
  [[noreturn]] void fail() const;
  template <typename AppendBody>
  void addBlock(uint32_t type, AppendBody appendBody);

  std::string name_;
  File file_;
  std::vector<uint8_t> blocks_;   // to be written
  std::set<uint32_t> described_;  // identifiers whose schemas are written
};

// Reads a capture. Holds one block at a time.
class CaptureReader {
 public:
  explicit CaptureReader(std::unique_ptr<InputFile> file) : file_(std::move(file)) {}
  // Fails if the file cannot be opened.
  explicit CaptureReader(const std::string& file)
      : CaptureReader(std::make_unique<InputFile>(file)) {}

  // The next table; its bytes are valid until the next call. None at the end and at a fault.
  std::optional<Table> next();

  // The fault that ended reading, with its position; empty if none.
  [[nodiscard]] const std::string& fault() const { return fault_; }
  // Throws the fault, if there is one.
  void throwFault() const;
  // Calls that the recorder missed. A killed recorder does not report those after its last table.
  [[nodiscard]] uint64_t lost() const;
  // What differs between the capture's schemas and this program's.
  [[nodiscard]] const std::vector<std::string>& schemaNotes() const { return schemas_.notes(); }
  // Packets that are not tables.
  [[nodiscard]] uint64_t otherPackets() const { return otherPackets_; }
  [[nodiscard]] uint64_t position() const { return position_; }

 private:
  struct Interface {
    bool isOurs;
    uint64_t unitsPerSecond;
    uint64_t lost = 0;  // from its last statistics, which count from the beginning
  };

  bool readBlock();
  bool readBody(size_t length);
  bool fail(const std::string& text, Cause cause = Cause::BadInput);
  bool failReading(const std::string& text);
  template <typename Integer>
  [[nodiscard]] Integer load(size_t at) const;
  bool takeInterface();
  void takeSection();
  bool takeStatistics();
  // The value of an option of the block, whose options begin at `at`; empty if absent.
  [[nodiscard]] std::span<const uint8_t> option(size_t at, uint16_t code) const;
  // The value of an option that is a 64-bit count.
  [[nodiscard]] std::optional<uint64_t> countOption(size_t at, uint16_t code) const;
  bool takePacket(std::optional<Table>& table);

  std::unique_ptr<InputFile> file_;
  std::vector<uint8_t> block_;  // its body, without type and lengths
  uint32_t type_ = 0;
  bool isSwapped_ = false;
  bool hasSection_ = false;
  std::vector<Interface> interfaces_;
  CaptureSchemas schemas_;
  std::string fault_;
  Cause faultCause_ = Cause::BadInput;
  uint64_t position_ = 0;  // of the block being read
  uint64_t nextPosition_ = 0;
  uint64_t lostBefore_ = 0;     // in the sections before
  uint64_t lostByPackets_ = 0;  // in this one
  uint64_t otherPackets_ = 0;
};

}  // namespace inspect
