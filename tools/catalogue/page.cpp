// The page of all messages, docs/messages.md.

#include <iostream>

#include "catalogue.hpp"
#include "wire/fixed_image.hpp"

namespace catalogue {

using namespace inspect;

namespace {

using mesh::msg::Arrangement;
using mesh::msg::Message;
using mesh::msg::RootDecoding;
using mesh::wire::Schema;
using mesh::wire::Slot;

constexpr const char* introduction =
    R"(# Messages

<!-- Written by mesh-l2vpn-catalogue from the schemas; do not edit. -->

Every message of the library: its identifier, its C record, its slots. The index comes first, then
one section for each record; the update and delete messages of a record stand in its section.

- Field fN is slot N. A byte string is the pair `fN_len` and `fN`, a vector the pair `fN_count` and
  `fN`; the tables give both C offsets.
- *Compact* is the length that `__pack` writes, from a record of zeros to one without zeros. "and more":
  byte strings or items add to it.
- *Fixed* is the length of the fixed arrangement. It does not depend on values. Positions of fields count
  from the first byte of the message; for `bytes[N]` and tables they are those of the offset word.
- A message with a bad head (root, vtable position or vtable length) leaves the caller's record *as it
  was* or *cleared*.
- The *fingerprint* identifies the wire format of a message: how it is sent, the order of its inline
  part, and the kinds and sizes of its slots in order, including nested ones, but not names. Peers with
  equal fingerprints understand each other. It is the 64-bit FNV-1a hash of a text that
  `mesh-l2vpn-catalogue fingerprints` prints.
)";

std::string fixedText(const Schema& schema) {
  return mesh::wire::hasFixedArrangement(schema) ? std::to_string(mesh::wire::fixedLength(schema))
                                                 : "-";
}

const char* sentText(const Message& message) {
  return message.policy.arrangement == Arrangement::Fixed ? "fixed" : "compact";
}

void writeIndex(const std::vector<Service>& services) {
  std::cout
      << "\n## Index\n\n"
         "| message | identifier | service | sent | record | slots | compact | fixed | fingerprint "
         "|\n|---|---|---|---|---|---|---|---|---|\n";
  for (const Service& service : services) {
    for (const Message* const message : service.messages) {
      const Schema& schema = *message->schema;
      std::cout << "| `" << schema.name << "` | " << hex(message->id) << " | " << service.name
                << " | " << sentText(*message) << " | " << schema.size << " | "
                << schema.slots.size() << " | " << compactText(schema) << " | " << fixedText(schema)
                << " | " << hex(fingerprint(*message)) << " |\n";
    }
  }
}

void writeOperations(const Schema& schema) {
  std::cout << '\n';
  for (const char* const operation : operations) {
    std::cout << (operation == operations[0] ? "`" : ", `") << schema.name << operation << '`';
  }
  std::cout << ".\n";
}

void writeFields(const Schema& schema) {
  const bool hasFixed = mesh::wire::hasFixedArrangement(schema);
  std::cout << "\n| slot | field | kind | width | C offset |" << (hasFixed ? " fixed |" : "")
            << "\n|---|---|---|---|---|" << (hasFixed ? "---|" : "") << '\n';
  for (size_t index = 0; index < schema.slots.size(); ++index) {
    const Slot& slot = schema.slots[index];
    std::cout << "| " << index << " | ";
    if (mesh::wire::isOutOfLine(slot.kind)) {
      const char* const count = slot.kind == mesh::wire::Kind::Bytes ? "_len" : "_count";
      std::cout << '`' << slot.name.data() << count << "`, `" << slot.name.data() << "` | "
                << kindOf(slot) << " | 4 + pointer | " << slot.countOffset << ", "
                << slot.recordOffset;
    } else {
      std::cout << '`' << slot.name.data() << "` | " << kindOf(slot) << " | " << slot.size << " | "
                << slot.recordOffset;
    }
    if (hasFixed) {
      std::cout << " | " << mesh::wire::fixedTable + mesh::wire::fixedEntry(schema, index);
    }
    std::cout << " |\n";
  }
}

void writeFacts(const Message& message) {
  const Schema& schema = *message.schema;
  std::cout << "\nIdentifier " << hex(message.id) << "; record of " << schema.size
            << " bytes; vtable of " << mesh::wire::vtableLength(schema) << " bytes; compact "
            << compactText(schema) << " bytes; sent "
            << (message.policy.arrangement == Arrangement::Fixed
                    ? std::string("as ").append(fixedText(schema)).append(" bytes")
                    : "compact")
            << "; a bad head leaves the record "
            << (message.policy.rootDecoding == RootDecoding::ByMessage ? "as it was" : "cleared")
            << ".\n";
}

void writeSections(const Service& service) {
  std::cout << "\n## " << service.name << "\n\n`" << service.name << "_recv_init`, `"
            << service.name << "_send_init`, `" << service.name << "__send_resource_clean`.\n";
  for (const Message* const message : service.messages) {
    const Schema& schema = *message->schema;
    if (isWrapper(schema)) {
      continue;
    }
    std::cout << "\n### " << schema.name << '\n';
    writeFacts(*message);
    writeOperations(schema);
    writeFields(schema);
    for (const Message* const wrapper : service.messages) {
      if (!isWrapper(*wrapper->schema) || wrapper->schema->slots[1].nested != &schema) {
        continue;
      }
      std::cout << "\n#### " << wrapper->schema->name << '\n';
      writeFacts(*wrapper);
      writeOperations(*wrapper->schema);
      writeFields(*wrapper->schema);
    }
  }
}

}  // namespace

void writePage() {
  std::cout << introduction;
  writeIndex(services());
  for (const Service& service : services()) {
    writeSections(service);
  }
}

}  // namespace catalogue
