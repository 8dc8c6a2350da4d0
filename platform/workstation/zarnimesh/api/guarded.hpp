// Stops exceptions and forked children at the C boundary.
#pragma once

#include <exception>
#include <new>

#include "zarnimesh/error.hpp"
#include "zarnimesh/node/node_registry.hpp"

namespace zarnimesh {

// Returns the result of `body`, or the result for its exception. In a forked child it does not run.
template <typename Body>
[[nodiscard]] mesh_result guarded(Body&& body) {
  if (isForkedChild()) {
    return fail(MESH_NOT_OPEN, "this process was forked while nodes were open; call exec first");
  }
  try {
    return body();
  } catch (const std::bad_alloc&) {
    return fail(MESH_OUT_OF_MEMORY, "out of memory");
  } catch (const std::exception& problem) {
    return fail(MESH_SYSTEM_ERROR, "%s", problem.what());
  } catch (...) {
    return fail(MESH_SYSTEM_ERROR, "a handler ended with an exception");
  }
}

}  // namespace zarnimesh
