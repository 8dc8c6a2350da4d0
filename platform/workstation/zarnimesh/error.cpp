#include "zarnimesh/error.hpp"

#include <cstdarg>
#include <cstdio>

namespace zarnimesh {
namespace {

thread_local char text[512];

}  // namespace

mesh_result fail(mesh_result result, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  // vsnprintf cuts a text that is too long.
  static_cast<void>(std::vsnprintf(text, sizeof text, format, arguments));
  va_end(arguments);
  return result;
}

const char* lastError() {
  return text;
}

}  // namespace zarnimesh
