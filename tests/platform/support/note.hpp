// The tests' message type: its table is any bytes, its record a counted copy of them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "zarnimesh/mesh.h"
#include "zarnimesh/node.h"

namespace platform_test {

inline constexpr uint32_t noteId = 0x1001;
inline constexpr uint32_t otherNoteId = 0x1002;  // same decoder

struct Note {
  uint32_t length;
  uint32_t untouched;  // never written by the decoder
  char* text;          // allocated; freed by the free hook
};

// Registers the hooks of both types.
void registerNotes();

// The process's decoded and not yet released copies.
int64_t notesOut();

// What a handler received.
struct Received {
  uint32_t source;
  uint32_t id;
  uint64_t extra;
  std::string text;
  uint32_t untouched;
  bool operator==(const Received&) const = default;
};

// A handler that appends to a std::vector<Received>.
void collect(const mesh_received* received, void* user);

// Sends one call with one note per text.
uint32_t sendNotes(uint32_t destination, const std::vector<std::string>& texts, uint64_t extra = 0,
                   uint32_t id = noteId);

// Receives until `count` notes have arrived, or for ten seconds.
std::vector<Received> receiveNotes(mesh_node* node, size_t count);

// Receives until the node's counter is `value`, or for ten seconds. Returns the counter.
uint64_t receiveUntil(mesh_node* node, uint64_t mesh_node_statistics::*counter, uint64_t value,
                      std::vector<Received>* notes = nullptr);

mesh_node_statistics statisticsOf(mesh_node* node);

}  // namespace platform_test
