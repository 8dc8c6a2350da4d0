// The functions that the shared object exports.
#pragma once

// Marks one. All others are hidden.
#define ZARNIMESH_EXPORT extern "C" [[gnu::visibility("default")]]

namespace zarnimesh {

// Where the frame of the exported function begins. It depends on the function's caller alone, not
// on what the compiler inlines.
[[gnu::always_inline]] inline const char* exportedFrame() {
  return static_cast<const char*>(__builtin_dwarf_cfa());
}

}  // namespace zarnimesh
