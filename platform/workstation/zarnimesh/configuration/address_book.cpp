#include "zarnimesh/configuration/address_book.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <optional>
#include <utility>

#include "zarnimesh/configuration/text.hpp"

namespace zarnimesh {

mesh_result AddressBook::parse(std::string_view text, const std::string& name) {
  std::unordered_map<uint32_t, Endpoint> entries;
  for (unsigned number = 1; !text.empty(); ++number) {
    const auto wrong = [&](const char* what) {
      return fail(MESH_BAD_CONFIGURATION, "%s, line %u: %s", name.c_str(), number, what);
    };
    std::string_view line = takeLine(text);
    line = line.substr(0, line.find('#'));
    const std::string_view first = takeWord(line);
    if (first.empty()) {
      continue;
    }
    const std::optional<uint32_t> address = parseAddress(first);
    if (!address) {
      return wrong("an address must be a number below 2^32, decimal or hexadecimal with 0x");
    }
    const std::string_view second = takeWord(line);
    if (second.empty()) {
      return wrong("the endpoint is missing");
    }
    Endpoint endpoint;
    if (const char* what = parseEndpoint(second, endpoint)) {
      return wrong(what);
    }
    if (!takeWord(line).empty()) {
      return wrong("unexpected text after the endpoint");
    }
    if (!entries.emplace(*address, std::move(endpoint)).second) {
      return wrong("the address already has an endpoint");
    }
  }
  entries_ = std::move(entries);
  return MESH_OK;
}

mesh_result AddressBook::readFile(const std::string& path) {
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  const std::optional<std::string> text = file >= 0 ? contentsOf(file) : std::nullopt;
  const int error = errno;
  if (file >= 0) {
    close(file);
  }
  if (!text) {
    return fail(MESH_BAD_CONFIGURATION, "address book %s: %s", path.c_str(), std::strerror(error));
  }
  return parse(*text, "address book " + path);
}

const Endpoint* AddressBook::find(uint32_t address) const {
  const auto found = entries_.find(address);
  return found == entries_.end() ? nullptr : &found->second;
}

}  // namespace zarnimesh
