#include <cstdio>

#include "ddm/osal.h"
#include "host/functions/observer.hpp"

uint32_t DDM_OsalMemUseFlagGet(uint32_t owner) {
  char text[40];
  std::snprintf(text, sizeof text, "useFlagGet %u", owner);
  hostNote(text);
  return hostUseFlag();
}
