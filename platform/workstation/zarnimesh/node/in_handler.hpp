// Whether the calling thread is in a handler or a peer hook of this library.
#pragma once

#include <utility>

namespace zarnimesh {

// The stack frame that calls the thread's innermost handler; null for none. A handler that leaves
// by longjmp does not reset it.
inline const char*& handlerFrame() {
  static thread_local const char* frame = nullptr;
  return frame;
}

// `frame`: where the stack frame of an exported function begins. The stack grows downwards: what a
// handler calls has a lower frame than its caller.
inline bool isInHandler(const char* frame) {
  return frame < handlerFrame();
}

// Marks the thread while it runs handlers or peer hooks.
class InHandler {
 public:
  [[gnu::always_inline]] InHandler()
      : outer_(std::exchange(handlerFrame(), static_cast<const char*>(__builtin_dwarf_cfa()))) {}
  ~InHandler() { handlerFrame() = outer_; }
  InHandler(const InHandler&) = delete;
  InHandler& operator=(const InHandler&) = delete;

 private:
  const char* const outer_;
};

}  // namespace zarnimesh
