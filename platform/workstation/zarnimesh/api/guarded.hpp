// Stops exceptions at the C boundary.
#pragma once

#include <exception>
#include <new>

#include "zarnimesh/error.hpp"

namespace zarnimesh {

// Returns the result of `body`, or the result for its exception.
template <typename Body>
[[nodiscard]] mesh_result guarded(Body&& body) {
  try {
    return body();
  } catch (const std::bad_alloc&) {
    return fail(MESH_OUT_OF_MEMORY, "out of memory");
  } catch (const std::exception& problem) {
    return fail(MESH_SYSTEM_ERROR, "%s", problem.what());
  }
}

}  // namespace zarnimesh
