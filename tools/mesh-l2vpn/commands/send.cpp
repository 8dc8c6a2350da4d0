// send: sends one message from JSON to a node.

#include "commands/commands.hpp"
#include "inspect/bytes/input.hpp"
#include "inspect/json/record_json.hpp"
#include "inspect/messages/codec.hpp"
#include "middleware.hpp"

namespace tool {

void runSend(const SendOptions& options, Session& session) {
  const KnownMessage& message = messageNamed(options.message);
  const Bytes bytes = encodeJson(message, readAll(options.file), options.byteText, Form::AsSent);
  const uint32_t to = options.to.value();
  Node node(options.middleware, sendingAddress(options.from));
  node.send(to, message.id(), bytes, options.extra);
  node.close();
  session.say("sent " + std::to_string(bytes.size()) + " bytes of " + std::string(message.name) +
              " to node " + std::to_string(to));
}

}  // namespace tool
