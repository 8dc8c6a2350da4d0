// Marks a function that the shared object exports. All others are hidden.
#pragma once

#define DDM_OSAL_EXPORT extern "C" [[gnu::visibility("default")]]
