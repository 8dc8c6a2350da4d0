// The mark of a function that the shared object exports; everything else is hidden.
#pragma once

#define ZARNIMESH_EXPORT extern "C" [[gnu::visibility("default")]]
