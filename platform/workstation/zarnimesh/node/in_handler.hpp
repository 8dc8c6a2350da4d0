// Whether the calling thread is in a handler of this library.
#pragma once

namespace zarnimesh {

inline bool& inHandler() {
  static thread_local bool is = false;
  return is;
}

inline bool isInHandler() {
  return inHandler();
}

}  // namespace zarnimesh
