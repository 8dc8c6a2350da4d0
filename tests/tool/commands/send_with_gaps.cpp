// Sends a table once per sequence number, without the middleware. Skipped numbers look like lost
// calls.
//
//   send_with_gaps ENDPOINT SOURCE DESTINATION IDENTIFIER FILE SEQUENCE...

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "support/raw_sender.hpp"

int main(int count, char** words) {
  using namespace platform_test;
  if (count < 7) {
    return 2;
  }
  std::ostringstream contents;
  contents << std::ifstream(words[5], std::ios::binary).rdbuf();
  const std::string table = contents.str();
  RawHeader header;
  header.source = static_cast<uint32_t>(std::strtoul(words[2], nullptr, 0));
  header.destination = static_cast<uint32_t>(std::strtoul(words[3], nullptr, 0));
  header.incarnation += header.source;  // each source has its own numbers
  header.count = 1;
  header.payloadBytes = static_cast<uint32_t>(table.size());
  const std::string entry =
      littleEndian(std::strtoul(words[4], nullptr, 0), 4) + littleEndian(table.size(), 4);
  RawSender sender(words[1]);
  for (int word = 6; word < count; ++word) {
    header.sequence = std::strtoull(words[word], nullptr, 0);
    sender.send({header.bytes() + entry + table});
  }
  return 0;
}
