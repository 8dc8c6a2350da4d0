// Writes pages and headers from the schemas to the standard output.
//
//   mesh-l2vpn-catalogue                      the page of all messages, docs/messages.md
//   mesh-l2vpn-catalogue fingerprints         name, identifier, fingerprint, wire text: a
//                                             line each
//   mesh-l2vpn-catalogue functions SERVICE    the header SERVICE_functions.h

#include <cstdio>
#include <iostream>
#include <string_view>

#include "catalogue.hpp"

namespace {

void writeFingerprints() {
  for (const inspect::Service& service : inspect::services()) {
    for (const mesh::msg::Message* const message : service.messages) {
      std::cout << message->schema->name << ' ' << inspect::hex(message->id) << ' '
                << inspect::hex(inspect::fingerprint(*message)) << ' '
                << inspect::wireText(*message) << '\n';
    }
  }
}

bool write(const std::vector<std::string_view>& words) {
  if (words.empty()) {
    catalogue::writePage();
    return true;
  }
  if (words.size() == 1 && words[0] == "fingerprints") {
    writeFingerprints();
    return true;
  }
  if (words.size() == 2 && words[0] == "functions") {
    for (const inspect::Service& service : inspect::services()) {
      if (service.name == words[1]) {
        catalogue::writeFunctions(service);
        return true;
      }
    }
  }
  return false;
}

}  // namespace

int main(int count, char** words) {
  if (!write({words + 1, words + count})) {
    std::fputs("usage: mesh-l2vpn-catalogue [fingerprints | functions SERVICE]\n", stderr);
    return 2;
  }
  return std::cout.flush() ? 0 : 1;
}
