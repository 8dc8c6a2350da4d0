#include "options.hpp"

#include <CLI/CLI.hpp>
#include <iostream>
#include <sstream>

#include "commands/commands.hpp"
#include "inspect/captures/dissector.hpp"
#include "inspect/texts/printable.hpp"
#include "shared_options.hpp"

namespace tool {
namespace {

// A command, and the options that it runs with.
template <typename Options>
struct Command {
  CLI::App& line;
  Options& options;
};

template <typename Options>
Command<Options> add(CLI::App& app, Session& session, const char* name, const char* description,
                     void (*run)(const Options&, Session&)) {
  const auto options = std::make_shared<Options>();
  CLI::App* const command = app.add_subcommand(name, description);
  command->callback([options, run, &session] { run(*options, session); });
  return {*command, *options};
}

void addCatalogue(CLI::App& app, Session& session) {
  const auto [list, listOptions] =
      add(app, session, "list", "List the messages with identifiers and sizes", &runList);
  list.add_option("--service", listOptions.service, "Only the messages of this service")
      ->check(CLI::IsMember({"l2vpn_cfg", "l2vpn_stat", "l2vpn_sync"}));
  addJson(list, listOptions.isJson, "Print a JSON array");
  list.footer("Examples:\n  mesh-l2vpn list --service l2vpn_cfg\n  mesh-l2vpn list --json");

  const auto [show, showOptions] =
      add(app, session, "show", "Show one message: identifier, sizes, slots", &runShow);
  show.add_option("MESSAGE", showOptions.message, "Name or identifier")->required();
  addJson(show, showOptions.isJson);
  show.footer(
      "Examples:\n  mesh-l2vpn show l2vpn_sync_vpls_ac\n  mesh-l2vpn show 0x5EED5F0D --json");
}

void addSchemas(CLI::App& app, Session& session) {
  const auto [schema, schemaOptions] =
      add(app, session, "schema", "Write a schema document (JSON) of all messages, or of one",
          &runSchema);
  schema.add_option("MESSAGE", schemaOptions.message, "Name or identifier")->check(notEmpty());
  schema.footer("Example:\n  mesh-l2vpn schema > 1.0.json");

  const auto [compat, compatOptions] =
      add(app, session, "compat", "Compare two schema documents: who can read whose messages",
          &runCompat);
  compat.add_option("OLD", compatOptions.old, "Schema document")->required();
  compat.add_option("NEW", compatOptions.recent, "Schema document")->required();
  compat.add_option("CAPTURE", compatOptions.capture, "Capture to read by both schemas");
  addJson(compat, compatOptions.isJson);
  compat.footer(
      "Exit status 1 if a message is incompatible, or if the schemas read the capture "
      "otherwise.\n\n"
      "Example:\n  mesh-l2vpn schema | mesh-l2vpn compat 1.0.json -");
}

void addCodec(CLI::App& app, Session& session) {
  const auto [decode, decodeOptions] =
      add(app, session, "decode", "Convert bytes to JSON; without -m show which messages fit",
          &runDecode);
  addInput(decode, decodeOptions);
  addByteText(decode, decodeOptions.byteText);
  decode.add_flag("--line", decodeOptions.isOnOneLine, "Print JSON on one line");
  decode
      .add_flag("--capture", decodeOptions.isCapture,
                "The input is a capture; print one line of JSON per table")
      ->excludes("--binary", "--hex");
  decode.footer(
      "Examples:\n  mesh-l2vpn decode -m l2vpn_sync_vpls_ac_update update.bin\n"
      "  xxd -p update.bin | mesh-l2vpn decode -m 0x5EED5F0D -\n  mesh-l2vpn decode unknown.bin\n"
      "  mesh-l2vpn decode night.pcapng | jq 'select(.faults)'");

  const auto [encode, encodeOptions] =
      add(app, session, "encode", "Convert JSON to bytes; missing members are 0", &runEncode);
  addMessage(encode, encodeOptions.message)->required();
  addJsonInput(encode, encodeOptions.file);
  CLI::Option* const fixed =
      encode.add_flag("--fixed", encodeOptions.isFixed, "Use the fixed arrangement");
  encode.add_flag("--compact", encodeOptions.isCompact, "Use the compact arrangement")
      ->excludes(fixed);
  addByteText(encode, encodeOptions.byteText);
  encode.add_flag("--hex", encodeOptions.isHex,
                  "Print hexadecimal text, the default on a terminal");
  encode.footer(
      "The default is the arrangement in which the message is sent.\n\n"
      "Examples:\n"
      "  echo '{\"f0\": 7, \"f1\": {\"f0\": 42}}' |\n"
      "    mesh-l2vpn encode -m l2vpn_sync_vpls_ac_update > update.bin\n"
      "  mesh-l2vpn encode -m dbginfo_key_l2vpn --hex key.json");
}

void addExplanations(CLI::App& app, Session& session) {
  const auto [explain, explainOptions] =
      add(app, session, "explain", "Explain a message byte by byte, with every fault", &runExplain);
  addInput(explain, explainOptions);
  explain.add_flag("--html", explainOptions.isHtml, "Write a web page");
  explain.add_flag("--all", explainOptions.isWhole, "Show long contents in full");
  explain.footer(
      "Exit status 1 if there is a fault.\n\n"
      "Examples:\n  mesh-l2vpn explain -m l2vpn_sync_vpls_ac_update captured.bin\n"
      "  mesh-l2vpn explain --html -m 0x5EED5F0D captured.bin > captured.html");

  const auto [diff, diffOptions] =
      add(app, session, "diff", "Compare two messages by field and by byte", &runDiff);
  addMessage(diff, diffOptions.message)->check(notEmpty());
  diff.add_option("FIRST", diffOptions.file, "Bytes or hexadecimal text")->required();
  diff.add_option("SECOND", diffOptions.second, "Bytes or hexadecimal text")->required();
  addInputForm(diff, diffOptions.form);
  addJson(diff, diffOptions.isJson);
  diff.footer(
      "Exit status 0 if the messages are equal, even with faults; 1 if they differ or receivers\n"
      "reject one. --json does not shorten long values.\n\n"
      "Example:\n  mesh-l2vpn diff -m l2vpn_sync_vpls_ac before.bin after.bin");
}

void addTalk(CLI::App& app, Session& session) {
  const auto [send, sendOptions] =
      add(app, session, "send", "Send one message from JSON to a node", &runSend);
  addSender(send, sendOptions, "Address of the receiving node")->required();
  addMessage(send, sendOptions.message)->required();
  addJsonInput(send, sendOptions.file);
  addByteText(send, sendOptions.byteText);
  send.add_option("--extra", sendOptions.extra, "Integer that travels with the message")
      ->check(wholeNumber(0, UINT64_MAX));
  send.footer("Example:\n  echo '{\"f0\": 7}' | mesh-l2vpn send --to 2 -m l2vpn_sync_stp");

  const auto [listen, listenOptions] =
      add(app, session, "listen", "Receive as a node and print JSON lines, until interrupted",
          &runListen);
  addReceiver(listen, listenOptions);
  addByteText(listen, listenOptions.byteText);
  listen.footer("Examples:\n  mesh-l2vpn listen 2\n  mesh-l2vpn listen 2 --count 10 | jq .record");
}

void addCaptures(CLI::App& app, Session& session) {
  const auto [record, recordOptions] =
      add(app, session, "record", "Receive as a node and write a pcapng file, until interrupted",
          &runRecord);
  addReceiver(record, recordOptions);
  record.add_option("FILE", recordOptions.file, "File to write; - for the standard output")
      ->required();
  record.footer("Example:\n  mesh-l2vpn record 2 night.pcapng");

  const auto [replay, replayOptions] =
      add(app, session, "replay", "Send the tables of a capture again", &runReplay);
  addSender(replay, replayOptions, "Address of the receiving node; default: the recorded one");
  addCaptureInput(replay, replayOptions.file);
  CLI::Option* const speed =
      replay.add_option("--speed", replayOptions.speed, "Multiple of the recorded pace")
          ->check(positive());
  CLI::Option* const rate = replay.add_option("--rate", replayOptions.rate, "Tables per second")
                                ->check(positive())
                                ->excludes(speed);
  replay.add_flag("--at-once", replayOptions.isAtOnce, "As fast as the receiver accepts them")
      ->excludes(speed)
      ->excludes(rate);
  replay.footer(
      "Examples:\n  mesh-l2vpn replay --to 2 night.pcapng\n"
      "  mesh-l2vpn replay --rate 1000 night.pcapng");

  const auto [stat, statOptions] =
      add(app, session, "stat", "Summarise a capture by message: counts, bytes, rates, rejects",
          &runStat);
  addCaptureInput(stat, statOptions.file);
  addJson(stat, statOptions.isJson);
  stat.footer("Example:\n  mesh-l2vpn stat night.pcapng");

  CLI::App* const dissectorCommand =
      app.add_subcommand("dissector", "Write a Wireshark plugin (Lua) for captures");
  dissectorCommand->footer(
      "Example:\n"
      "  mesh-l2vpn dissector > ~/.local/lib/wireshark/plugins/mesh_l2vpn.lua");
  dissectorCommand->callback([] { std::cout << dissector(); });
}

std::string longNames(const CLI::App& command, const char* separator, int leastValues) {
  std::string names;
  for (const CLI::Option* const option : command.get_options()) {
    for (const std::string& name : option->get_lnames()) {
      if (option->get_items_expected_min() >= leastValues) {
        names.append(names.empty() ? "--" : separator).append(name);
      }
    }
  }
  return names;
}

void addCompletion(CLI::App& app, Session& session) {
  const auto [command, options] =
      add(app, session, "completion", "Write a completion script for the shell", &runCompletion);
  command.add_option("SHELL", options.shell, "bash or zsh")
      ->required()
      ->check(CLI::IsMember({"bash", "zsh"}));
  command.footer("Example:\n  source <(mesh-l2vpn completion bash)");
  options.options = longNames(app, " --", 0);
  options.optionsWithValue = longNames(app, "|--", 1);
  for (const CLI::App* const each : app.get_subcommands({})) {
    options.commands.push_back({each->get_name(), longNames(*each, " --", 0)});
  }
}

}  // namespace

Exit runCommandLine(int count, char** words) {
  Session session;
  CLI::App app("Shows, creates, sends and records Layer-2 VPN messages.", "mesh-l2vpn");
  app.require_subcommand(1);
  app.fallthrough();
  app.add_flag("-q,--quiet", session.isQuiet, "Print only the output");
  app.add_option("--color", session.color, "auto, always or never; auto respects NO_COLOR")
      ->check(CLI::IsMember({"auto", "always", "never"}));
  app.set_version_flag("--version", MESH_L2VPN_VERSION);
  app.footer(
      "Commands take a message's name or identifier.\n\n"
      "Exit status: 0 success; 1 the input has a fault, or diff found a difference;\n"
      "2 wrong usage; 3 a file, the output or the middleware failed.\n\n"
      "Examples:\n"
      "  mesh-l2vpn show l2vpn_sync_vpls_ac\n"
      "  mesh-l2vpn decode -m 0x5EED5F0D captured.bin\n"
      "  mesh-l2vpn COMMAND --help");
  addCatalogue(app, session);
  addSchemas(app, session);
  addCodec(app, session);
  addExplanations(app, session);
  addTalk(app, session);
  addCaptures(app, session);
  addCompletion(app, session);
  try {
    app.parse(count, words);
  } catch (const CLI::ParseError& error) {
    std::ostringstream text;
    const bool isHelp = app.exit(error, std::cout, text) == 0;
    std::istringstream lines(text.str());
    for (std::string line; std::getline(lines, line);) {
      std::cerr << printable(line) << '\n';
    }
    return isHelp ? Exit::Success : Exit::Usage;
  }
  return session.result;
}

}  // namespace tool
