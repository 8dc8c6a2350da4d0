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

enum class Existing { Kept, Overwritten };

// Writes a capture. Passes tables on to the system in pieces; a crash of this program loses what
// was not flushed. A block that cannot be written as a whole is taken back: the file stays a sound
// capture.
class CaptureWriter {
 public:
  // "-" is the standard output. Fails for an existing regular file that is to be kept.
  explicit CaptureWriter(const std::string& file, Existing existing = Existing::Overwritten);
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

  // Tables that were passed on.
  [[nodiscard]] uint64_t tables() const { return tables_; }

  // Fails if the system reports a delayed error. Nothing can be written afterwards.
  void close();

 private:
  [[noreturn]] void fail() const;
  template <typename AppendBody>
  void addBlock(uint32_t type, AppendBody appendBody);
  bool passOn();
  void takeBack(size_t size) const;

  std::string name_;
  int file_ = -1;
  std::vector<uint8_t> blocks_;   // to be written
  std::set<uint32_t> described_;  // identifiers whose schemas are written
  uint64_t tables_ = 0;
};

// Reads a capture. Holds one block at a time.
class CaptureReader {
 public:
  explicit CaptureReader(std::unique_ptr<InputFile> file) : file_(std::move(file)) {}
  // Fails if the file cannot be opened.
  explicit CaptureReader(const std::string& file)
      : CaptureReader(std::make_unique<InputFile>(file)) {}

  // The next table; its bytes are valid until the next call, its message as long as the reader is.
  // None at the end. A damaged block is a fault, and costs what is in it: reading continues at the
  // next sound block.
  std::optional<Table> next();

  // The first fault with its position, and how many follow; empty if there is none.
  [[nodiscard]] std::string fault() const;
  // Throws the fault, if there is one.
  void throwFault() const;
  // Calls that the recorder missed. A killed recorder does not report those after its last table.
  [[nodiscard]] uint64_t lost() const;
  // Packets so far, also those that are no tables.
  [[nodiscard]] uint64_t packets() const { return packets_; }
  // What differs between the capture's schemas and this program's.
  [[nodiscard]] const std::vector<std::string>& schemaNotes() const { return schemas_.notes(); }
  // Packets that are not tables.
  [[nodiscard]] uint64_t otherPackets() const { return otherPackets_; }
  // How much of the file is read, from 0 to 1; 0 for a pipe.
  [[nodiscard]] double progress() const { return file_->progress(); }

 private:
  struct Interface {
    uint16_t linkType = 0;
    uint64_t unitsPerSecond = 1'000'000;
    int64_t offset = 0;  // of its times, in seconds
    uint64_t lost = 0;   // from its last statistics, which count from the beginning
  };

  enum class Opening { Sound, Damaged, Over };

  bool readBlock();
  Opening openBlock();
  bool findBlock();
  bool startsBlock();
  void fail(const std::string& text, Cause cause = Cause::BadInput);
  void failReading(const std::string& text);
  template <typename Integer>
  [[nodiscard]] Integer load(size_t at) const;
  void takeInterface();
  void takeSection();
  void takeStatistics();
  // The value of an option of the block, whose options begin at `at`; empty if absent.
  [[nodiscard]] std::span<const uint8_t> option(size_t at, uint16_t code) const;
  // The value of an option that is a 64-bit number.
  [[nodiscard]] std::optional<uint64_t> numberOption(size_t at, uint16_t code) const;
  void takePacket(std::optional<Table>& table);
  // Why a packet is no table; empty for a table.
  static std::string foreignness(const Interface& interface, std::span<const uint8_t> packet);

  std::unique_ptr<InputFile> file_;
  std::span<const uint8_t> block_;  // its body, without type and lengths
  uint32_t type_ = 0;
  uint32_t length_ = 0;  // of the whole block
  bool isSwapped_ = false;
  bool hasSection_ = false;
  bool isAtEnd_ = false;
  std::vector<Interface> interfaces_;
  CaptureSchemas schemas_;
  std::string fault_;  // the first
  uint64_t faults_ = 0;
  Cause faultCause_ = Cause::BadInput;
  uint64_t position_ = 0;       // of the block being read
  uint64_t lostBefore_ = 0;     // in the sections before
  uint64_t lostByPackets_ = 0;  // in this one
  uint64_t tables_ = 0;
  uint64_t packets_ = 0;
  uint64_t otherPackets_ = 0;
  std::string foreignness_;  // of the last of them
};

}  // namespace inspect
