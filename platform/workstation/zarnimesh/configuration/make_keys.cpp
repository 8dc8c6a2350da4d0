// zarnimesh-keys ADDRESS FILE
//
// Makes a node's CURVE keys and writes them to FILE, which must not exist. Prints the line for the
// key files of other nodes.
#include <fcntl.h>
#include <unistd.h>
#include <zmq.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "zarnimesh/configuration/key_ring.hpp"
#include "zarnimesh/configuration/text.hpp"

int main(int argc, char** argv) {
  const auto address = argc == 3 ? zarnimesh::parseAddress(argv[1]) : std::nullopt;
  if (!address) {
    std::fputs("usage: zarnimesh-keys ADDRESS FILE\n", stderr);
    return 2;
  }
  char publicKey[zarnimesh::keyTextLength + 1];
  char secretKey[zarnimesh::keyTextLength + 1];
  if (zmq_curve_keypair(publicKey, secretKey) != 0) {
    std::fprintf(stderr, "cannot make keys: %s\n", zmq_strerror(zmq_errno()));
    return 1;
  }
  const int file = open(argv[2], O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (file < 0 || dprintf(file, "own %s %s\n", publicKey, secretKey) < 0 || close(file) != 0) {
    std::fprintf(stderr, "%s: %s\n", argv[2], std::strerror(errno));
    return 1;
  }
  std::printf("node %u %s\n", *address, publicKey);
  return 0;
}
