#include "support/note.hpp"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>

namespace platform_test {
namespace {

std::atomic<int64_t> out = 0;

constexpr std::chrono::seconds patience{10};

uint32_t unpackNote(const uint8_t* data, uint32_t length, void* record) {
  // Leaves the record untouched, as a decoder that rejects a short table does.
  if (length > 0) {
    auto* note = static_cast<Note*>(record);
    note->length = length;
    note->text = static_cast<char*>(std::malloc(length));
    std::memcpy(note->text, data, length);
    ++out;
  }
  return sizeof(Note);
}

void freeNote(void* record) {
  auto* note = static_cast<Note*>(record);
  if (note->text != nullptr) {
    std::free(note->text);
    note->text = nullptr;
    --out;
  }
}

}  // namespace

void registerNotes() {
  for (const uint32_t id : {noteId, otherNoteId}) {
    if (MESH_RegIDLFuncHook(id, &unpackNote, &freeNote) != MESH_OK) {
      std::abort();
    }
  }
}

int64_t notesOut() {
  return out;
}

void collect(const mesh_received* received, void* user) {
  const auto* note = static_cast<const Note*>(received->record);
  static_cast<std::vector<Received>*>(user)->push_back(
      {.source = received->source,
       .id = received->msg_id,
       .extra = received->extra,
       .text = note->text != nullptr ? std::string(note->text, note->length) : std::string(),
       .untouched = note->untouched});
}

uint32_t sendNotes(uint32_t destination, const std::vector<std::string>& texts, uint64_t extra,
                   uint32_t id) {
  std::vector<mesh_msg_desc> descriptors;
  for (const std::string& text : texts) {
    descriptors.push_back({.data = reinterpret_cast<uintptr_t>(text.data()),
                           .msg_id = id,
                           .length = static_cast<uint32_t>(text.size())});
  }
  const auto count = static_cast<uint32_t>(descriptors.size());
  return extra == 0 ? MESH_SendMsg(destination, descriptors.data(), count)
                    : MESH_SendToMsg(destination, descriptors.data(), count, extra);
}

std::vector<Received> receiveNotes(mesh_node* node, size_t count) {
  std::vector<Received> notes;
  const auto end = std::chrono::steady_clock::now() + patience;
  while (notes.size() < count && std::chrono::steady_clock::now() < end) {
    if (mesh_node_receive(node, 100, &collect, &notes) < 0) {
      break;
    }
  }
  return notes;
}

uint64_t receiveUntil(mesh_node* node, uint64_t mesh_node_statistics::*counter, uint64_t value,
                      std::vector<Received>* notes) {
  std::vector<Received> unwanted;
  const auto end = std::chrono::steady_clock::now() + patience;
  while (statisticsOf(node).*counter != value && std::chrono::steady_clock::now() < end) {
    if (mesh_node_receive(node, 100, &collect, notes != nullptr ? notes : &unwanted) < 0) {
      break;
    }
  }
  return statisticsOf(node).*counter;
}

mesh_node_statistics statisticsOf(mesh_node* node) {
  mesh_node_statistics statistics{};
  if (mesh_node_stats(node, &statistics) != MESH_OK) {
    std::abort();
  }
  return statistics;
}

}  // namespace platform_test
