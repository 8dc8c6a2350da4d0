// Sends a node whatever bytes a test likes, past the middleware.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace platform_test {

// The header of a call, field by field as it travels.
struct RawHeader {
  std::string magic = "ZMSH";
  uint16_t version = 1;
  uint16_t flags = 0;
  uint32_t source = 99;
  uint32_t destination = 0;
  uint64_t incarnation = 0x1122334455667788;
  uint64_t sequence = 1;
  uint64_t extra = 0;
  uint32_t count = 0;
  uint32_t zero = 0;
  uint64_t payloadBytes = 0;

  std::string bytes() const;
};

std::string littleEndian(uint64_t value, size_t width);

// CURVE keys in Z85.
struct KeyPair {
  std::string open;
  std::string secret;
};

KeyPair newKeyPair();

class RawSender {
 public:
  explicit RawSender(const std::string& endpoint);
  // Connects with keys. What was not delivered when it is destroyed is forgotten.
  RawSender(const std::string& endpoint, const std::string& serversOpenKey, const KeyPair& own);
  ~RawSender();
  RawSender(const RawSender&) = delete;
  RawSender& operator=(const RawSender&) = delete;

  // Lets what is not delivered go when it is destroyed, instead of waiting.
  void forget();

  void send(const std::vector<std::string>& parts);

  // A well-formed call of one note.
  void sendNote(RawHeader header, const std::string& text);

 private:
  void* context_;
  void* socket_;
};

}  // namespace platform_test
