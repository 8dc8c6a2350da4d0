// Messages from a schema document: every reader and writer that walks schemas at run time takes
// them like the library's own.
#pragma once

#include <deque>
#include <map>
#include <string>
#include <vector>

#include "inspect/json/record_json.hpp"
#include "inspect/messages/messages.hpp"

namespace inspect {

class LoadedSchema {
 public:
  // Fails for a document that describes no schema that this library could have: the slots must be
  // the record's layout in C, and the sizes within bounds.
  explicit LoadedSchema(const Json& document);
  LoadedSchema(const LoadedSchema&) = delete;
  LoadedSchema& operator=(const LoadedSchema&) = delete;

  [[nodiscard]] const std::deque<KnownMessage>& messages() const { return messages_; }
  // Null if there is none.
  [[nodiscard]] const KnownMessage* find(std::string_view name) const;
  [[nodiscard]] const KnownMessage* find(uint32_t id) const;

 private:
  struct Record {
    std::string name;
    std::vector<mesh::wire::Slot> slots;
    mesh::wire::Schema schema;
    // The slots of the record and of all in it, counted where they stand: what a walk visits.
    uint64_t visited = 0;
  };

  void addRecord(const Json& json);
  mesh::wire::Slot slotOf(const Json& json, Record& record) const;
  void addMessage(const Json& json);

  std::map<std::string, Record> records_;
  std::deque<std::string> texts_;
  std::deque<mesh::msg::Message> data_;
  std::deque<KnownMessage> messages_;
};

}  // namespace inspect
