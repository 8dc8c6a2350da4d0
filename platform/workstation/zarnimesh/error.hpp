// Failures: a result, and a text that the thread keeps.
#pragma once

#include "zarnimesh/node.h"

namespace zarnimesh {

// Stores the text for mesh_node_last_error and returns `result`.
[[nodiscard, gnu::cold, gnu::format(printf, 2, 3)]] mesh_result fail(mesh_result result,
                                                                     const char* format, ...);

// This thread's latest text. Empty when there is none.
const char* lastError();

}  // namespace zarnimesh
