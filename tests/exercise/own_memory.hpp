// The library's own writable memory.
#pragma once

#include <cstddef>

namespace exercise {

// Makes everything that the loaded libmesh_l2vpn could write to of its own (its data, its zeroed
// data, its table of bound functions) read-only: from now on a write ends the process. Returns how
// many bytes that is, 0 when the library was not found.
size_t makeLibraryReadOnly();

// Undoes that: when the process ends, the loader writes there too.
size_t makeLibraryWritable();

}  // namespace exercise
