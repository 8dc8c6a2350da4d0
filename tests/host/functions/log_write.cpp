#include <cstdio>

#include "ddm/osal.h"
#include "host/functions/observer.hpp"

void DDM_OsalLogWrite(const void* env, uint32_t level, uint32_t code, const char* file,
                      uint32_t /*line*/, const char* function, const char* format, ...) {
  char text[400];
  std::snprintf(text, sizeof text, "log %s %u %u \"%s\" %s %s",
                *static_cast<const char* const*>(env), level, code, file, function, format);
  hostNote(text);
}
