// What goes wrong: a result, and a text that the thread keeps about it.
#pragma once

#include "zarnimesh/node.h"

namespace zarnimesh {

// Keeps the text for mesh_node_last_error and returns `result`.
[[nodiscard, gnu::cold, gnu::format(printf, 2, 3)]] mesh_result fail(mesh_result result,
                                                                     const char* format, ...);

// The text kept last on this thread; empty when there is none.
const char* lastError();

}  // namespace zarnimesh
