// send: sends one message from JSON to a node, or each table of lines of JSON.

#include "commands/inputs.hpp"
#include "inspect/json/record_json.hpp"
#include "inspect/messages/codec.hpp"
#include "middleware.hpp"

namespace tool {
namespace {

void sendLines(const SendOptions& options, Session& session) {
  Node node(options.middleware, sendingAddress(options.from));
  uint64_t sent = 0;
  const auto sentText = [&sent] { return std::to_string(sent) + " tables sent"; };
  try {
    readLines(options.file, options.byteText, [&](const Table& table) {
      node.send(options.to.value_or(table.destination), table.id, table.bytes,
                options.extra.value_or(table.extra));
      ++sent;
    });
    node.close();
  } catch (const Failure& failure) {
    throw Failure(failure.cause(), failure.what() + std::string("; ") + sentText());
  }
  session.say(sentText());
}

}  // namespace

void runSend(const SendOptions& options, Session& session) {
  if (options.message.empty()) {
    return sendLines(options, session);
  }
  if (!options.to) {
    throw Failure(Cause::Usage, "send: --to is required with --message");
  }
  const KnownMessage& message = messageNamed(options.message);
  const Bytes bytes = encodeJson(message, readAll(options.file), options.byteText, Form::AsSent);
  Node node(options.middleware, sendingAddress(options.from));
  node.send(*options.to, message.id(), bytes, options.extra.value_or(0));
  node.close();
  session.say("sent " + std::to_string(bytes.size()) + " bytes of " + std::string(message.name) +
              " to node " + std::to_string(*options.to));
}

}  // namespace tool
