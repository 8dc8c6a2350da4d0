// Schemas in a capture. A block of local use stands before the first table of each message; its
// body is "MESH", a u16 version, a u16 zero, and a schema document of this message without its
// "jsonSchema", which blanks fill up to 4 bytes. Programs that do not know the block skip it.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "inspect/schema/loaded_schema.hpp"

namespace inspect {

// A block's body.
std::vector<uint8_t> schemaBlock(const KnownMessage& message);

// The schemas of a capture that are not this program's.
class CaptureSchemas {
 public:
  // Takes a block. Ignores one of another program.
  void take(std::span<const uint8_t> block);

  // The message as the capture describes it; null if this program knows it so, or the capture does
  // not.
  [[nodiscard]] const KnownMessage* find(uint32_t id) const {
    const auto found = messages_.find(id);
    return found == messages_.end() ? nullptr : found->second;
  }

  // One text for each message of another schema, and for each damaged block.
  [[nodiscard]] const std::vector<std::string>& notes() const { return notes_; }

  // At the next section, which describes its own tables. The notes stay, and the messages of tables
  // that the caller has kept.
  void clear() { messages_.clear(); }

 private:
  void add(std::string_view document);
  void note(const std::string& text);

  std::map<uint32_t, const KnownMessage*> messages_;
  std::vector<std::unique_ptr<LoadedSchema>> schemas_;
  std::vector<std::string> notes_;
  uint64_t taken_ = 0;  // bytes of documents
};

}  // namespace inspect
