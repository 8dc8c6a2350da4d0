#include "inspect/reader/meaning.hpp"

namespace inspect {
namespace {

std::string number(uint64_t value) {
  return std::to_string(value);
}

}  // namespace

Range rootRange(uint32_t table) {
  return {0, 4, Part::Root, "", "root", "table at " + number(table), table};
}

Range vtableOffsetRange(uint32_t at, const Path& path, uint32_t offset, uint32_t vtable) {
  const std::string value = std::to_string(static_cast<int32_t>(offset)) + ": at " + number(vtable);
  return {at, 4, Part::Head, path.text(), "table: vtable offset", value, vtable};
}

Range vtableLengthRange(uint32_t at, const Path& path, uint32_t length) {
  return {at, 2, Part::Head, path.text(), "vtable: length", number(length)};
}

Range tableLengthRange(uint32_t at, const Path& path, uint32_t length) {
  return {at, 2, Part::Head, path.text(), "vtable: table length (unused)", number(length)};
}

Range entryRange(uint32_t at, const Path& path, size_t index, uint32_t entry, uint32_t table) {
  Range range{at, 2, Part::Entry, path.text(), "entry of slot " + number(index), "0: absent"};
  if (entry != 0) {
    range.target = int64_t{table} + entry;
    range.value = number(entry) + ": at " + number(uint64_t{table} + entry);
  }
  return range;
}

Range unknownEntriesRange(uint32_t at, const Path& path, size_t firstIndex, uint32_t count) {
  const std::string first = number(firstIndex);
  return {at,
          2 * count,
          Part::Unknown,
          path.text(),
          count == 1 ? "entry of slot " + first
                     : "entries of slots " + first + " to " + number(firstIndex + count - 1),
          "unknown to this library"};
}

Range halfEntryRange(uint32_t at, const Path& path) {
  return {at, 1, Part::Unknown, path.text(), "vtable: half an entry", ""};
}

Range scalarRange(uint32_t at, const Path& path, uint32_t size, uint64_t value) {
  return {at, size, Part::Scalar, path.text(), "value", numberText(value)};
}

Range wordRange(uint32_t at, const Path& path, uint32_t offset, uint64_t target) {
  const std::string value = number(offset) + ": points to " + number(target);
  return {at, 4, Part::Word, path.text(), "offset word", value, static_cast<int64_t>(target)};
}

Range lengthRange(uint32_t at, const Path& path, uint32_t length) {
  return {at, 4, Part::Length, path.text(), "length", number(length)};
}

Range countRange(uint32_t at, const Path& path, uint32_t count) {
  return {at, 4, Part::Length, path.text(), "count", number(count)};
}

Range contentsRange(uint32_t at, const Path& path, std::span<const uint8_t> contents) {
  const auto size = static_cast<uint32_t>(contents.size());
  return {at, size, Part::Contents, path.text(), "contents", contentsText(contents)};
}

}  // namespace inspect
