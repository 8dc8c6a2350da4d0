// send: one message from JSON to a node.

#include <iostream>

#include "codec.hpp"
#include "commands/byte_text_option.hpp"
#include "commands/commands.hpp"
#include "commands/talk_options.hpp"
#include "input.hpp"
#include "record_json.hpp"

namespace tool {
namespace {

struct Options {
  SendOptions talk;
  std::string message;
  std::string file = "-";
  ByteTextOption bytes;
  uint64_t extra = 0;
};

void run(const Options& options, const Session& session) {
  const Message& message = messageNamed(options.message);
  const Bytes bytes =
      encodeAsSent(fromJson(message, parseJson(readAll(options.file)), options.bytes.form()));
  const auto to = static_cast<uint32_t>(options.talk.to);
  Node node(options.talk.middleware, options.talk.sender());
  node.send(to, message.id(), bytes, options.extra);
  node.close();
  session.say("sent " + std::to_string(bytes.size()) + " bytes of " + std::string(message.name) +
              " to node " + std::to_string(to));
}

}  // namespace

void addSend(CLI::App& app, Session& session) {
  CLI::App* const command = app.add_subcommand("send", "One message from JSON to a node");
  const auto options = makeOptions<Options>();
  options->talk.addTo(*command, "Address of the receiving node");
  options->talk.toOption->required();
  command->add_option("-m,--message", options->message, "Name or identifier")->required();
  command->add_option("FILE", options->file, "JSON; - for the standard input")
      ->capture_default_str();
  options->bytes.addTo(*command);
  command->add_option("--extra", options->extra, "The word that travels along")
      ->check(unlikeOctal());
  command->footer("Example:\n  echo '{\"f0\": 7}' | mesh-l2vpn send --to 2 -m l2vpn_sync_stp");
  command->callback([options, &session] { run(*options, session); });
}

}  // namespace tool
