#include "inspect/reader/meaning.hpp"

namespace inspect {
Range rootRange(uint32_t table) {
  return {0, 4, Part::Root, "", "root", "table at " + std::to_string(table), table};
}

Range vtableOffsetRange(uint32_t at, const Path& path, uint32_t offset, uint32_t vtable) {
  const std::string value =
      std::to_string(static_cast<int32_t>(offset)) + ": at " + std::to_string(vtable);
  return {at, 4, Part::Head, path.text(), "table: vtable offset", value, vtable};
}

Range vtableLengthRange(uint32_t at, const Path& path, uint32_t length) {
  return {at, 2, Part::Head, path.text(), "vtable: length", std::to_string(length)};
}

Range tableLengthRange(uint32_t at, const Path& path, uint32_t length) {
  return {at, 2, Part::Head, path.text(), "vtable: table length (unused)", std::to_string(length)};
}

Range entryRange(uint32_t at, const Path& path, size_t index, uint32_t entry, uint32_t table) {
  Range range{at,         2, Part::Entry, path.text(), "entry of slot " + std::to_string(index),
              "0: absent"};
  if (entry != 0) {
    range.target = int64_t{table} + entry;
    range.value = std::to_string(entry) + ": at " + std::to_string(uint64_t{table} + entry);
  }
  return range;
}

Range unknownEntriesRange(uint32_t at, const Path& path, size_t firstIndex, uint32_t count) {
  const std::string first = std::to_string(firstIndex);
  return {at,
          2 * count,
          Part::Unknown,
          path.text(),
          count == 1
              ? "entry of slot " + first
              : "entries of slots " + first + " to " + std::to_string(firstIndex + count - 1),
          "unknown to this library"};
}

Range halfEntryRange(uint32_t at, const Path& path) {
  return {at, 1, Part::Unknown, path.text(), "vtable: half an entry", ""};
}

Range scalarRange(uint32_t at, const Path& path, uint32_t size, uint64_t value) {
  return {at, size, Part::Scalar, path.text(), "value", numberText(value)};
}

Range wordRange(uint32_t at, const Path& path, uint32_t offset, uint64_t target) {
  const std::string value = std::to_string(offset) + ": points to " + std::to_string(target);
  return {at, 4, Part::Word, path.text(), "offset word", value, static_cast<int64_t>(target)};
}

Range lengthRange(uint32_t at, const Path& path, uint32_t length) {
  return {at, 4, Part::Length, path.text(), "length", std::to_string(length)};
}

Range countRange(uint32_t at, const Path& path, uint32_t count) {
  return {at, 4, Part::Length, path.text(), "count", std::to_string(count)};
}

Range contentsRange(uint32_t at, const Path& path, std::span<const uint8_t> contents) {
  const auto size = static_cast<uint32_t>(contents.size());
  return {at, size, Part::Contents, path.text(), "contents", contentsText(contents)};
}

}  // namespace inspect
