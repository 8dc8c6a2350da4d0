#include "support/raw_sender.hpp"

#include <zmq.h>

#include <stdexcept>

#include "support/note.hpp"

namespace platform_test {

KeyPair newKeyPair() {
  char publicKey[41];
  char secretKey[41];
  if (zmq_curve_keypair(publicKey, secretKey) != 0) {
    throw std::runtime_error(zmq_strerror(zmq_errno()));
  }
  return {publicKey, secretKey};
}

std::string littleEndian(uint64_t value, size_t width) {
  std::string bytes;
  for (size_t i = 0; i < width; ++i) {
    bytes += static_cast<char>(value >> (8 * i) & 0xFF);
  }
  return bytes;
}

std::string RawHeader::bytes() const {
  return magic + littleEndian(version, 2) + littleEndian(kind, 1) + littleEndian(flags, 1) +
         littleEndian(source, 4) + littleEndian(destination, 4) + littleEndian(incarnation, 8) +
         littleEndian(sequence, 8) + littleEndian(confirmed, 8) + littleEndian(extra, 8) +
         littleEndian(count, 4) + littleEndian(payloadBytes, 4);
}

RawSender::RawSender(const std::string& endpoint)
    : context_(zmq_ctx_new()), socket_(zmq_socket(context_, ZMQ_DEALER)) {
  const int unlimited = 0;
  zmq_setsockopt(socket_, ZMQ_SNDHWM, &unlimited, sizeof unlimited);
  if (zmq_connect(socket_, endpoint.c_str()) != 0) {
    throw std::runtime_error(endpoint + ": " + zmq_strerror(zmq_errno()));
  }
}

RawSender::RawSender(const std::string& endpoint, const std::string& serverPublicKey,
                     const KeyPair& own)
    : context_(zmq_ctx_new()), socket_(zmq_socket(context_, ZMQ_DEALER)) {
  discardUnsent();
  if (zmq_setsockopt(socket_, ZMQ_CURVE_SERVERKEY, serverPublicKey.data(), 40) != 0 ||
      zmq_setsockopt(socket_, ZMQ_CURVE_PUBLICKEY, own.publicKey.data(), 40) != 0 ||
      zmq_setsockopt(socket_, ZMQ_CURVE_SECRETKEY, own.secretKey.data(), 40) != 0 ||
      zmq_connect(socket_, endpoint.c_str()) != 0) {
    throw std::runtime_error(endpoint + ": " + zmq_strerror(zmq_errno()));
  }
}

RawSender::RawSender(Listening, const std::string& endpoint)
    : context_(zmq_ctx_new()), socket_(zmq_socket(context_, ZMQ_DEALER)) {
  discardUnsent();
  if (zmq_bind(socket_, endpoint.c_str()) != 0) {
    throw std::runtime_error(endpoint + ": " + zmq_strerror(zmq_errno()));
  }
}

RawSender::~RawSender() {
  zmq_close(socket_);
  zmq_ctx_term(context_);
}

void RawSender::discardUnsent() {
  const int none = 0;
  zmq_setsockopt(socket_, ZMQ_LINGER, &none, sizeof none);
}

void RawSender::send(const std::vector<std::string>& parts) {
  for (size_t i = 0; i < parts.size(); ++i) {
    const int flags = i + 1 < parts.size() ? ZMQ_SNDMORE : 0;
    if (zmq_send(socket_, parts[i].data(), parts[i].size(), flags) < 0) {
      throw std::runtime_error(zmq_strerror(zmq_errno()));
    }
  }
}

void RawSender::sendNote(RawHeader header, const std::string& text) {
  header.count = 1;
  header.payloadBytes = static_cast<uint32_t>(text.size());
  send({header.bytes() + littleEndian(noteId, 4) + littleEndian(text.size(), 4) + text});
}

std::string RawSender::receive() {
  const int patience = 10'000;  // ms
  zmq_setsockopt(socket_, ZMQ_RCVTIMEO, &patience, sizeof patience);
  std::string bytes(1024, 0);
  const int size = zmq_recv(socket_, bytes.data(), bytes.size(), 0);
  if (size < 0) {
    throw std::runtime_error(zmq_strerror(zmq_errno()));
  }
  bytes.resize(static_cast<size_t>(size));
  return bytes;
}

}  // namespace platform_test
