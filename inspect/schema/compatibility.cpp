#include "inspect/schema/compatibility.hpp"

#include <algorithm>

#include "inspect/messages/codec.hpp"
#include "inspect/reader/acceptance.hpp"
#include "inspect/schema/facts.hpp"
#include "inspect/schema/samples.hpp"
#include "wire/compact_size.hpp"

namespace inspect {
namespace {

using mesh::wire::Kind;
using mesh::wire::Schema;
using mesh::wire::Slot;

constexpr size_t samplesOfEach = 48;

bool isByteString(const Slot& slot) {
  return slot.kind == Kind::Array || slot.kind == Kind::Bytes;
}

// Compares slot by slot; the path is that of the table.
class Comparison {
 public:
  explicit Comparison(Direction& found) : found_(found) {}

  void compare(const Schema& writer, const Schema& reader, const std::string& path) {
    const size_t common = std::min(writer.slots.size(), reader.slots.size());
    for (size_t index = 0; index < common; ++index) {
      compare(writer.slots[index], reader.slots[index], path + reader.slots[index].name.data());
    }
    for (const Slot& slot : writer.slots.subspan(common)) {
      found_.add(Compatibility::Lossy, path + slot.name.data() + ": the reader does not know it");
    }
    for (const Slot& slot : reader.slots.subspan(common)) {
      found_.add(Compatibility::Lossy,
                 path + slot.name.data() + ": the writer does not send it, it is read as absent");
    }
  }

 private:
  void compare(const Slot& writer, const Slot& reader, const std::string& path) {
    const auto add = [&](Compatibility verdict, const std::string& reason) {
      found_.add(verdict, path + ": " + reason);
    };
    if (isByteString(writer) && isByteString(reader)) {
      if (reader.kind == Kind::Array &&
          (writer.kind == Kind::Bytes || writer.size != reader.size)) {
        add(Compatibility::Incompatible,
            "the reader takes " + kindOf(reader) + " alone, the writer sends " + kindOf(writer));
      }
    } else if (writer.kind != reader.kind) {
      add(Compatibility::Incompatible,
          "the reader takes " + kindOf(reader) + ", the writer sends " + kindOf(writer));
    } else if (writer.kind == Kind::Scalar) {
      if (writer.size < reader.size) {
        add(Compatibility::Incompatible,
            "the reader takes " + kindOf(reader) + ", beyond the writer's " + kindOf(writer));
      } else if (writer.size > reader.size) {
        add(Compatibility::Lossy,
            "the reader takes the lower half or less, " + kindOf(reader) + " of " + kindOf(writer));
      }
    } else {
      compare(*writer.nested, *reader.nested, path + (writer.kind == Kind::Vector ? "[]." : "."));
    }
  }

  Direction& found_;
};

// Whether a reader has read what the writer's record holds, as far as both know it.
bool hasSameValues(const Schema& writer, const uint8_t* written, const Schema& reader,
                   const uint8_t* read);

std::span<const uint8_t> byteString(const Slot& slot, const uint8_t* record) {
  if (slot.kind == Kind::Array) {
    return {record + slot.recordOffset, slot.size};
  }
  const auto* const bytes = loadAs<const uint8_t*>(record + slot.recordOffset);
  return {bytes, bytes == nullptr ? 0 : loadAs<uint32_t>(record + slot.countOffset)};
}

bool hasSameItems(const Slot& writer, const uint8_t* written, const Slot& reader,
                  const uint8_t* read) {
  const auto* const sent = loadAs<const uint8_t*>(written + writer.recordOffset);
  const auto* const taken = loadAs<const uint8_t*>(read + reader.recordOffset);
  const auto count = loadAs<uint32_t>(written + writer.countOffset);
  if (count != loadAs<uint32_t>(read + reader.countOffset)) {
    return false;
  }
  for (uint64_t item = 0; item < count; ++item) {
    if (!hasSameValues(*writer.nested, sent + item * writer.size, *reader.nested,
                       taken + item * reader.size)) {
      return false;
    }
  }
  return true;
}

bool hasSameValue(const Slot& writer, const uint8_t* written, const Slot& reader,
                  const uint8_t* read) {
  if (isByteString(writer)) {
    return isByteString(reader) &&
           std::ranges::equal(byteString(writer, written), byteString(reader, read));
  }
  if (writer.kind != reader.kind) {
    return false;
  }
  const uint8_t* const sent = written + writer.recordOffset;
  const uint8_t* const taken = read + reader.recordOffset;
  switch (writer.kind) {
    case Kind::Scalar: {
      uint64_t wide = 0;
      std::memcpy(&wide, sent, writer.size);
      uint64_t narrow = 0;
      std::memcpy(&narrow, taken, reader.size);
      return (wide & (UINT64_MAX >> (64 - 8 * reader.size))) == narrow;
    }
    case Kind::Table:
      return hasSameValues(*writer.nested, sent, *reader.nested, taken);
    default:
      return hasSameItems(writer, written, reader, read);
  }
}

// Whether nothing was read of a slot that the writer does not have: what an absent slot leaves.
bool isAbsent(const Slot& slot, const uint8_t* record) {
  const uint32_t begin = mesh::wire::recordBegin(slot);
  return std::all_of(record + begin, record + mesh::wire::recordEnd(slot),
                     [](uint8_t byte) { return byte == 0; });
}

bool hasSameValues(const Schema& writer, const uint8_t* written, const Schema& reader,
                   const uint8_t* read) {
  const size_t common = std::min(writer.slots.size(), reader.slots.size());
  for (size_t index = 0; index < common; ++index) {
    if (!hasSameValue(writer.slots[index], written, reader.slots[index], read)) {
      return false;
    }
  }
  return std::ranges::all_of(reader.slots.subspan(common),
                             [read](const Slot& slot) { return isAbsent(slot, read); });
}

// Empty if the reader takes the message and reads the record.
std::string contradiction(const KnownMessage& writer, const uint8_t* record,
                          const KnownMessage& reader, std::span<const uint8_t> bytes) {
  if (acceptanceOf(reader.schema(), bytes) != Acceptance::Accepted) {
    return "a message of the writer is at fault";
  }
  return hasSameValues(writer.schema(), record, reader.schema(), decode(reader, bytes).data())
             ? ""
             : "a value of the writer is read as another";
}

Direction compareMessages(const KnownMessage& writer, const KnownMessage& reader) {
  Direction direction = compare(writer.schema(), reader.schema());
  if (writer.id() != reader.id()) {
    direction.add(Compatibility::Incompatible, "the identifier " + hex(writer.id()) +
                                                   " is not the reader's " + hex(reader.id()));
  }
  confirm(writer, reader, direction);
  return direction;
}

}  // namespace

void Direction::add(Compatibility reasonFor, std::string_view reason) {
  verdict = std::max(verdict, reasonFor);
  reasons.emplace_back(reason);
}

Direction compare(const Schema& writer, const Schema& reader) {
  Direction direction;
  Comparison(direction).compare(writer, reader, "");
  return direction;
}

void confirm(const KnownMessage& writer, const KnownMessage& reader, Direction& direction) {
  for (size_t number = 0; number < samplesOfEach; ++number) {
    const OwnedRecord record = sampleOf(writer, number);
    std::vector<Bytes> messages;
    messages.push_back(encodeCompact(record));
    if (writer.isSentFixed()) {
      messages.push_back(encodeFixed(record));
    }
    for (const Bytes& bytes : messages) {
      ++direction.samples;
      const std::string found = contradiction(writer, record.data(), reader, bytes);
      if (!found.empty() && direction.verdict != Compatibility::Incompatible) {
        direction.add(Compatibility::Incompatible, found);
      }
    }
  }
}

std::vector<MessageCompatibility> compatibility(const LoadedSchema& old,
                                                const LoadedSchema& recent) {
  std::vector<MessageCompatibility> all;
  for (const KnownMessage& message : old.messages()) {
    MessageCompatibility& entry = all.emplace_back();
    entry.name = message.name;
    if (const KnownMessage* const other = recent.find(message.name)) {
      entry.oldReader = compareMessages(*other, message);
      entry.newReader = compareMessages(message, *other);
    } else {
      entry.newReader.add(Compatibility::Incompatible, "the new schema no longer has it");
    }
  }
  for (const KnownMessage& message : recent.messages()) {
    if (old.find(message.name) == nullptr) {
      MessageCompatibility& entry = all.emplace_back();
      entry.name = message.name;
      entry.oldReader.add(Compatibility::Lossy, "the old schema does not know it");
    }
  }
  return all;
}

std::string differenceOn(const Table& table, const LoadedSchema& old, const LoadedSchema& recent) {
  const KnownMessage* const one = old.find(table.id);
  const KnownMessage* const other = recent.find(table.id);
  if (one == nullptr || other == nullptr) {
    return one == other ? "" : "only one schema has the identifier " + hex(table.id);
  }
  const bool isTaken = acceptanceOf(one->schema(), table.bytes) != Acceptance::Rejected;
  if (isTaken != (acceptanceOf(other->schema(), table.bytes) != Acceptance::Rejected)) {
    std::string text = isTaken ? "only the old" : "only the new";
    return text.append(" schema takes this ").append(one->name);
  }
  // Only messages as the old schema writes them: what another writer added is no difference.
  const Direction said = compare(one->schema(), other->schema());
  if (!isTaken || said.verdict == Compatibility::Incompatible) {
    return "";
  }
  const OwnedRecord record = decode(*one, table.bytes);
  if (!encodesTo(record, table.bytes)) {
    return "";
  }
  const std::string found = contradiction(*one, record.data(), *other, table.bytes);
  return found.empty() ? "" : std::string(one->name) + ": " + found;
}

Compatibility worstOf(const std::vector<MessageCompatibility>& messages) {
  Compatibility worst = Compatibility::Same;
  for (const MessageCompatibility& message : messages) {
    worst = std::max({worst, message.oldReader.verdict, message.newReader.verdict});
  }
  return worst;
}

const char* nameOf(Compatibility verdict) {
  static constexpr const char* names[] = {"same", "compatible with losses", "incompatible"};
  return names[static_cast<int>(verdict)];
}

Json toJson(const std::vector<MessageCompatibility>& messages) {
  const auto direction = [](const Direction& found) {
    return Json{
        {"verdict", nameOf(found.verdict)}, {"reasons", found.reasons}, {"samples", found.samples}};
  };
  Json list = Json::array();
  for (const MessageCompatibility& message : messages) {
    list.push_back({{"message", message.name},
                    {"oldReader", direction(message.oldReader)},
                    {"newReader", direction(message.newReader)}});
  }
  return {{"verdict", nameOf(worstOf(messages))}, {"messages", std::move(list)}};
}

}  // namespace inspect
