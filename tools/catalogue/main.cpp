// Writes the page of all messages (docs/messages.md) to its output.

#include <cstdio>
#include <iostream>

#include "catalogue.hpp"
#include "wire/fixed_layout.hpp"

namespace {

using catalogue::Range;
using catalogue::Service;
using mesh::msg::Arrangement;
using mesh::msg::Message;
using mesh::msg::RootDecoding;
using mesh::wire::Record;
using mesh::wire::Slot;

constexpr const char* operations[] = {"__unpack",     "_free__unpacked", "__pack",
                                      "__sendsingle", "__sendbatch",     "__sendmsg",
                                      "__sendtomsg"};

constexpr const char* introduction =
    R"(# Messages

<!-- Written by mesh-l2vpn-catalogue from the schemas; do not edit. -->

Every message of the library: its identifier, its C record, its slots. The index comes first, then
one section for each record; the update and delete messages of a record stand in its section.

- Fields bear the number of their slot. A byte string in slot N is the pair `fN_len` and `fN`, a
  vector the pair `fN_count` and `fN`; both C offsets are given.
- *Compact* is the length of what `__pack` writes, from a record of zeros to one without a zero;
  "and more" where byte strings or items come on top.
- *Fixed* is the length of the fixed arrangement. Messages that are sent in it have it whatever
  their values; the others are sent in the compact arrangement. The position of a field is counted
  from the first byte of that message; for `bytes[N]` and tables it is that of the offset word.
- A message that is received with a bad frame (root, vtable position or vtable length) leaves the
  caller's record *as it was* or *cleared*.
)";

std::string hex(uint32_t id) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08X", id);
  return text;
}

std::string compactText(const Record& record) {
  const Range range = catalogue::compactRange(record);
  if (range.isOpen) {
    return std::to_string(range.from).append(" and more");
  }
  return std::to_string(range.from).append(" to ").append(std::to_string(range.to));
}

std::string fixedText(const Record& record) {
  return mesh::wire::hasFixedArrangement(record) ? std::to_string(mesh::wire::fixedLength(record))
                                                 : "-";
}

const char* sentText(const Message& message) {
  return message.policy.arrangement == Arrangement::Fixed ? "fixed" : "compact";
}

void writeIndex(const std::vector<Service>& services) {
  std::cout << "\n## Index\n\n"
               "| message | identifier | service | sent | record | slots | compact | fixed |\n"
               "|---|---|---|---|---|---|---|---|\n";
  for (const Service& service : services) {
    for (const Message* const message : service.messages) {
      const Record& record = *message->record;
      std::cout << "| `" << record.name << "` | " << hex(message->id) << " | " << service.name
                << " | " << sentText(*message) << " | " << record.size << " | "
                << record.slots.size() << " | " << compactText(record) << " | " << fixedText(record)
                << " |\n";
    }
  }
}

void writeOperations(const Record& record) {
  std::cout << '\n';
  for (const char* const operation : operations) {
    std::cout << (operation == operations[0] ? "`" : ", `") << record.name << operation << '`';
  }
  std::cout << ".\n";
}

void writeFields(const Record& record) {
  const bool hasFixed = mesh::wire::hasFixedArrangement(record);
  std::cout << "\n| slot | field | kind | width | C offset |" << (hasFixed ? " fixed |" : "")
            << "\n|---|---|---|---|---|" << (hasFixed ? "---|" : "") << '\n';
  for (size_t index = 0; index < record.slots.size(); ++index) {
    const Slot& slot = record.slots[index];
    std::cout << "| " << index << " | ";
    if (mesh::wire::isOutOfLine(slot.kind)) {
      const char* const count = slot.kind == mesh::wire::Kind::Bytes ? "_len" : "_count";
      std::cout << '`' << slot.name.data() << count << "`, `" << slot.name.data() << "` | "
                << catalogue::kindOf(slot) << " | 4 + pointer | " << slot.countOffset << ", "
                << slot.recordOffset;
    } else {
      std::cout << '`' << slot.name.data() << "` | " << catalogue::kindOf(slot) << " | "
                << slot.size << " | " << slot.recordOffset;
    }
    if (hasFixed) {
      std::cout << " | " << mesh::wire::fixedTable + mesh::wire::fixedEntry(record, index);
    }
    std::cout << " |\n";
  }
}

void writeFacts(const Message& message) {
  const Record& record = *message.record;
  std::cout << "\nIdentifier " << hex(message.id) << "; record of " << record.size
            << " bytes; vtable of " << mesh::wire::vtableLength(record) << " bytes; compact "
            << compactText(record) << " bytes; sent "
            << (message.policy.arrangement == Arrangement::Fixed
                    ? std::string("as ").append(fixedText(record)).append(" bytes")
                    : "compact")
            << "; a bad frame leaves the record "
            << (message.policy.rootDecoding == RootDecoding::ByMessage ? "as it was" : "cleared")
            << ".\n";
}

void writeSections(const Service& service) {
  std::cout << "\n## " << service.name << "\n\n`" << service.name << "_recv_init`, `"
            << service.name << "_send_init`, `" << service.name << "__send_resource_clean`.\n";
  for (const Message* const message : service.messages) {
    const Record& record = *message->record;
    if (catalogue::isWrapper(record)) {
      continue;
    }
    std::cout << "\n### " << record.name << '\n';
    writeFacts(*message);
    writeOperations(record);
    writeFields(record);
    for (const Message* const wrapper : service.messages) {
      if (!catalogue::isWrapper(*wrapper->record) || wrapper->record->slots[1].nested != &record) {
        continue;
      }
      std::cout << "\n#### " << wrapper->record->name << '\n';
      writeFacts(*wrapper);
      writeOperations(*wrapper->record);
      writeFields(*wrapper->record);
    }
  }
}

}  // namespace

int main() {
  const std::vector<Service> services = catalogue::services();
  std::cout << introduction;
  writeIndex(services);
  for (const Service& service : services) {
    writeSections(service);
  }
  return std::cout.flush() ? 0 : 1;
}
