// The mark of a function that the shared object exports; everything else is hidden.
#pragma once

#define DDM_OSAL_EXPORT extern "C" [[gnu::visibility("default")]]
