// Sends arbitrary bytes to a node and receives its answers, without the middleware.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace platform_test {

// The header of a call, in wire order.
struct RawHeader {
  std::string magic = "ZMSH";
  uint16_t version = 5;
  uint8_t kind = 0;
  uint8_t flags = 0;
  uint32_t source = 99;
  uint32_t destination = 0;
  uint64_t incarnation = 0x1122334455667788;
  uint64_t sequence = 1;
  uint64_t confirmed = 0;
  uint64_t extra = 0;
  uint32_t count = 0;
  uint32_t payloadBytes = 0;

  std::string bytes() const;
};

std::string littleEndian(uint64_t value, size_t width);

// A CURVE key pair in Z85.
struct KeyPair {
  std::string publicKey;
  std::string secretKey;
};

KeyPair newKeyPair();

class RawSender {
 public:
  explicit RawSender(const std::string& endpoint);
  // Connects with keys, and with discardUnsent().
  RawSender(const std::string& endpoint, const std::string& serverPublicKey, const KeyPair& own);
  struct Listening {};
  // Listens instead of connecting, for one node.
  RawSender(Listening, const std::string& endpoint);
  ~RawSender();
  RawSender(const RawSender&) = delete;
  RawSender& operator=(const RawSender&) = delete;

  // Makes the destructor drop undelivered messages instead of waiting.
  void discardUnsent();

  void send(const std::vector<std::string>& parts);

  // Sends a well-formed call with one note.
  void sendNote(RawHeader header, const std::string& text);

  // Waits for a message of one part, ten seconds at most.
  std::string receive();

 private:
  void* context_;
  void* socket_;
};

}  // namespace platform_test
