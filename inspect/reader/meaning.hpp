// The ranges of each kind, with their texts.
#pragma once

#include <span>

#include "inspect/reader/path.hpp"
#include "inspect/reader/reading.hpp"

namespace inspect {

Range rootRange(uint32_t table);

// A table's head: its vtable offset, and its vtable's two lengths.
Range vtableOffsetRange(uint32_t at, const Path& path, uint32_t offset, uint32_t vtable);
Range vtableLengthRange(uint32_t at, const Path& path, uint32_t length);
Range tableLengthRange(uint32_t at, const Path& path, uint32_t length);

// The entry of slot `index` of the table at `table`.
Range entryRange(uint32_t at, const Path& path, size_t index, uint32_t entry, uint32_t table);
Range unknownEntriesRange(uint32_t at, const Path& path, size_t firstIndex, uint32_t count);
Range halfEntryRange(uint32_t at, const Path& path);

Range scalarRange(uint32_t at, const Path& path, uint32_t size, uint64_t value);
Range wordRange(uint32_t at, const Path& path, uint32_t offset, uint64_t target);
Range lengthRange(uint32_t at, const Path& path, uint32_t length);
Range countRange(uint32_t at, const Path& path, uint32_t count);
Range contentsRange(uint32_t at, const Path& path, std::span<const uint8_t> contents);

}  // namespace inspect
