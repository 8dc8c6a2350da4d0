#include "zarnimesh/address_book.hpp"

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <utility>

namespace zarnimesh {
namespace {

constexpr std::string_view blanks = " \t\r";

// Cuts the next line off `text`.
std::string_view takeLine(std::string_view& text) {
  const size_t end = text.find('\n');
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  return line;
}

// Cuts the next word off `line`; empty when there is none.
std::string_view takeWord(std::string_view& line) {
  line.remove_prefix(std::min(line.find_first_not_of(blanks), line.size()));
  const std::string_view word = line.substr(0, line.find_first_of(blanks));
  line.remove_prefix(word.size());
  return word;
}

std::optional<uint32_t> parseAddress(std::string_view word) {
  const bool hex = word.starts_with("0x") || word.starts_with("0X");
  if (hex) {
    word.remove_prefix(2);
  }
  uint32_t address = 0;
  const char* last = word.data() + word.size();
  const auto [end, error] = std::from_chars(word.data(), last, address, hex ? 16 : 10);
  if (error != std::errc{} || end != last) {
    return std::nullopt;
  }
  return address;
}

}  // namespace

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
      return wrong("an address is a number below 2^32, decimal or 0x and hexadecimal");
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
      return wrong("something follows the endpoint");
    }
    if (!entries.emplace(*address, std::move(endpoint)).second) {
      return wrong("the address has an endpoint already");
    }
  }
  entries_ = std::move(entries);
  return MESH_OK;
}

mesh_result AddressBook::readFile(const std::string& path) {
  const auto cannotRead = [&] {
    return fail(MESH_BAD_CONFIGURATION, "address book %s: %s", path.c_str(), std::strerror(errno));
  };
  const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.c_str(), "re"), &std::fclose);
  if (file == nullptr) {
    return cannotRead();
  }
  std::string text;
  char piece[4096];
  while (const size_t got = std::fread(piece, 1, sizeof piece, file.get())) {
    text.append(piece, got);
  }
  if (std::ferror(file.get()) != 0) {
    return cannotRead();
  }
  return parse(text, "address book " + path);
}

const Endpoint* AddressBook::find(uint32_t address) const {
  const auto found = entries_.find(address);
  return found == entries_.end() ? nullptr : &found->second;
}

}  // namespace zarnimesh
