#include "inspect/captures/capture_schemas.hpp"

#include <algorithm>
#include <cstring>

#include "inspect/bytes/failure.hpp"
#include "inspect/captures/capture_format.hpp"
#include "inspect/messages/release.hpp"
#include "inspect/schema/compatibility.hpp"
#include "inspect/schema/document.hpp"
#include "inspect/schema/facts.hpp"

namespace inspect {
namespace {

using namespace pcapng;

constexpr size_t headLength = 8;
// Bounds the memory: a document takes some ten times its length.
constexpr uint64_t mostTaken = uint64_t{1} << 20;
constexpr size_t mostNotes = 200;

// What this program makes of messages that were written after the capture's schema.
std::string differenceText(const KnownMessage& recorded) {
  const KnownMessage* const own = findById(recorded.id());
  const std::string name(recorded.name);
  if (own == nullptr) {
    return name + ": unknown to this program; shown by the capture's schema";
  }
  const Direction found = compare(recorded.schema(), own->schema());
  std::string text = name + ": recorded by another schema, shown by it; this version: ";
  text.append(nameOf(found.verdict));
  if (!found.reasons.empty()) {
    text.append(" (")
        .append(found.reasons.front())
        .append(found.reasons.size() > 1 ? ", ...)" : ")");
  }
  return text;
}

}  // namespace

std::vector<uint8_t> schemaBlock(const KnownMessage& message) {
  Json document = schemaDocument({&message, 1});
  document.erase("jsonSchema");
  const std::string text = document.dump();
  std::vector<uint8_t> block(headLength + padded(static_cast<uint32_t>(text.size())), ' ');
  std::memcpy(block.data(), tableMagic.data(), tableMagic.size());
  storeAs<uint32_t>(block.data() + tableMagic.size(), schemaVersion);
  std::memcpy(block.data() + headLength, text.data(), text.size());
  return block;
}

void CaptureSchemas::take(std::span<const uint8_t> block) {
  if (block.size() < headLength ||
      !std::ranges::equal(block.first(tableMagic.size()), tableMagic)) {
    return;
  }
  const auto document = block.subspan(headLength);
  taken_ += document.size();
  if (taken_ > mostTaken) {
    return note("more schemas than " + std::to_string(mostTaken) + " bytes are ignored");
  }
  try {
    if (loadAs<uint16_t>(block.data() + tableMagic.size()) != schemaVersion) {
      throw Failure(Cause::BadInput, "a schema of another version");
    }
    add({reinterpret_cast<const char*>(document.data()), document.size()});
  } catch (const std::exception& failure) {
    note(std::string("a schema is ignored: ") + failure.what());
  }
}

// The fingerprint guards against damage.
void CaptureSchemas::add(std::string_view document) {
  const Json json = parseJson(document);
  auto loaded = std::make_unique<LoadedSchema>(json);
  if (loaded->messages().size() != 1) {
    throw Failure(Cause::BadInput, "not one message");
  }
  const KnownMessage& message = loaded->messages().front();
  const uint64_t recorded = fingerprint(*message.message);
  if (json["messages"][0].value("fingerprint", "") != hex(recorded)) {
    throw Failure(Cause::BadInput, std::string(message.name) + " has another fingerprint");
  }
  const KnownMessage* const own = findById(message.id());
  if (own != nullptr && fingerprint(*own->message) == recorded) {
    messages_.erase(message.id());
    return;
  }
  note(differenceText(message));
  messages_[message.id()] = &message;
  schemas_.push_back(std::move(loaded));
}

void CaptureSchemas::note(const std::string& text) {
  if (notes_.size() < mostNotes && std::ranges::find(notes_, text) == notes_.end()) {
    notes_.push_back(text);
  }
}

}  // namespace inspect
