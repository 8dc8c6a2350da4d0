#include <cstdio>
#include <cstdlib>

#include "ddm/osal.h"
#include "host/functions/observer.hpp"

void DDM_OsalMemFree(void* block, uint32_t owner, const char* caller) {
  char text[200];
  std::snprintf(text, sizeof text, "free %s%u %s", block == nullptr ? "null " : "", owner, caller);
  hostNote(text);
  std::free(block);
}
