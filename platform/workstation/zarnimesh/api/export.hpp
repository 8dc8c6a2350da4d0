// Marks a function that the shared object exports. All others are hidden.
#pragma once

#define ZARNIMESH_EXPORT extern "C" [[gnu::visibility("default")]]
