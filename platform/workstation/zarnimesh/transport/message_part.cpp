#include "zarnimesh/transport/message_part.hpp"

#include <array>
#include <atomic>

#include "zarnimesh/transport/handover.hpp"

#if defined(__SANITIZE_ADDRESS__)
#define ZARNIMESH_ADDRESS_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZARNIMESH_ADDRESS_SANITIZER
#endif
#endif
#ifdef ZARNIMESH_ADDRESS_SANITIZER
#include <sanitizer/asan_interface.h>
#endif

namespace zarnimesh {
namespace {

// Memory for messages to be sent, used in turns. One thread allocates a message, and ZeroMQ's
// thread releases it: with malloc, both would take the same lock for each message. malloc releases
// smaller blocks without a lock (of 120 bytes, 40 of them ZeroMQ's), and larger messages are few.
struct Slot {
  static constexpr size_t least = 81;
  static constexpr size_t size = 1024 - 16;

  std::atomic<bool> used;
  alignas(16) uint8_t bytes[size];
};

std::array<Slot, 512> slots;

// Lets the address sanitizer admit `size` bytes of the slot, and no others.
void admit([[maybe_unused]] Slot& slot, [[maybe_unused]] size_t size) {
#ifdef ZARNIMESH_ADDRESS_SANITIZER
  __asan_poison_memory_region(slot.bytes, sizeof slot.bytes);
  __asan_unpoison_memory_region(slot.bytes, size);
#endif
}

// Null when the next slot is in use.
Slot* takeSlot() {
  static thread_local size_t next = 0;
  Slot& slot = slots[next++ % slots.size()];
  const bool taken = !slot.used.load(std::memory_order_relaxed) &&
                     !slot.used.exchange(true, std::memory_order_acquire);
  return taken ? &slot : nullptr;
}

void releaseSlot(void* /*bytes*/, void* slotUsed) {
  Slot& slot = *static_cast<Slot*>(slotUsed);
  takeOver(slot.bytes);
  admit(slot, 0);
  slot.used.store(false, std::memory_order_release);
}

}  // namespace

bool MessagePart::allocate(size_t size) {
  Slot* const slot = size >= Slot::least && size <= Slot::size ? takeSlot() : nullptr;
  if (slot != nullptr) {
    admit(*slot, size);
    if (zmq_msg_init_data(&message_, slot->bytes, size, releaseSlot, slot) == 0) {
      return true;
    }
    releaseSlot(nullptr, slot);
  } else if (zmq_msg_init_size(&message_, size) == 0) {
    return true;
  }
  zmq_msg_init(&message_);
  return false;
}

}  // namespace zarnimesh
