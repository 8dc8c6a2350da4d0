#include "zarnimesh/configuration/key_ring.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zmq.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

#include "zarnimesh/configuration/text.hpp"

namespace zarnimesh {
namespace {

bool isKey(const std::string& text) {
  std::array<uint8_t, 32> bytes;
  return text.size() == keyTextLength && zmq_z85_decode(bytes.data(), text.c_str()) != nullptr;
}

// Null, or an error text about the open file.
const char* checkPrivate(int file) {
  struct stat status {};
  if (fstat(file, &status) != 0) {
    return std::strerror(errno);
  }
  if (!S_ISREG(status.st_mode)) {
    return "it is not a regular file";
  }
  if (status.st_uid != geteuid()) {
    return "it belongs to another user";
  }
  return (status.st_mode & 077) == 0 ? nullptr : "it is open to other users; its mode must be 0600";
}

}  // namespace

mesh_result KeyRing::readFile(const std::string& path) {
  const auto refuse = [&](const char* what) {
    return fail(MESH_BAD_CONFIGURATION, "keys %s: %s", path.c_str(), what);
  };
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (file < 0) {
    return refuse(std::strerror(errno));
  }
  const char* wrong = checkPrivate(file);
  std::optional<std::string> text;
  if (wrong == nullptr && !(text = contentsOf(file))) {
    wrong = std::strerror(errno);
  }
  close(file);
  return wrong != nullptr ? refuse(wrong) : parse(*text, "keys " + path);
}

mesh_result KeyRing::parse(std::string_view text, const std::string& name) {
  KeyRing read;
  for (unsigned number = 1; !text.empty(); ++number) {
    const auto wrong = [&](const char* what) {
      return fail(MESH_BAD_CONFIGURATION, "%s, line %u: %s", name.c_str(), number, what);
    };
    std::string_view line = takeLine(text);
    const std::string_view kind = takeWord(line);
    if (kind.empty() || kind.front() == '#') {
      continue;
    }
    const std::string_view first = takeWord(line);
    std::string key(takeWord(line));
    if (!isKey(key) || !takeWord(line).empty()) {
      return wrong("a line must be 'own PUBLIC SECRET' or 'node ADDRESS PUBLIC', with keys in Z85");
    }
    if (kind == "own") {
      std::array<char, keyTextLength + 1> derived;
      if (!read.ownSecret_.empty() || zmq_curve_public(derived.data(), key.c_str()) != 0 ||
          first != derived.data()) {
        return wrong("there must be one own line, with a public key that matches the secret key");
      }
      read.ownPublic_ = first;
      read.ownSecret_ = std::move(key);
    } else if (kind == "node") {
      const std::optional<uint32_t> address = parseAddress(first);
      if (!address || read.knows(key) || !read.nodes_.emplace(*address, key).second) {
        return wrong(
            "a node line needs an address below 2^32 and a key, and neither may be repeated");
      }
    } else {
      return wrong("a line must start with own or node");
    }
  }
  if (read.ownSecret_.empty()) {
    return fail(MESH_BAD_CONFIGURATION, "%s: the own line is missing", name.c_str());
  }
  *this = std::move(read);
  return MESH_OK;
}

bool KeyRing::knows(const std::string& key) const {
  return std::any_of(nodes_.begin(), nodes_.end(),
                     [&](const auto& node) { return node.second == key; });
}

const std::string* KeyRing::publicKeyOf(uint32_t address) const {
  const auto found = nodes_.find(address);
  return found == nodes_.end() ? nullptr : &found->second;
}

}  // namespace zarnimesh
