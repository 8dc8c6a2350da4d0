// What ranges of every kind say of themselves.
#pragma once

#include <span>

#include "reader/path.hpp"
#include "reader/reading.hpp"

namespace tool {

Range rootRange(uint32_t table);

// A table's frame: its first word, and its vtable's two lengths.
Range distanceRange(uint32_t at, const Path& path, uint32_t distance, uint32_t vtable);
Range vtableLengthRange(uint32_t at, const Path& path, uint32_t length);
Range tableLengthRange(uint32_t at, const Path& path, uint32_t length);

// Of the slot `index` of a table at `table`.
Range entryRange(uint32_t at, const Path& path, size_t index, uint32_t entry, uint32_t table);
Range unknownEntriesRange(uint32_t at, const Path& path, size_t firstIndex, uint32_t count);
Range halfEntryRange(uint32_t at, const Path& path);

Range scalarRange(uint32_t at, const Path& path, uint32_t size, uint64_t value);
Range wordRange(uint32_t at, const Path& path, uint32_t offset, uint64_t target);
Range lengthRange(uint32_t at, const Path& path, uint32_t length);
Range countRange(uint32_t at, const Path& path, uint32_t count);
Range contentsRange(uint32_t at, const Path& path, std::span<const uint8_t> contents);

}  // namespace tool
