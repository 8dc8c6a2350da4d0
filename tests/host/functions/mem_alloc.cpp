#include <cstdio>
#include <cstdlib>

#include "ddm/osal.h"
#include "host/functions/observer.hpp"

void* DDM_OsalMemAlloc(uint32_t size, uint32_t owner, const char* caller) {
  char text[200];
  std::snprintf(text, sizeof text, "alloc %u %u %s", size, owner, caller);
  hostNote(text);
  return std::malloc(size);
}
