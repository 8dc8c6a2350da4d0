#include "options.hpp"

#include <CLI/CLI.hpp>
#include <charconv>
#include <cmath>
#include <iostream>
#include <sstream>

#include "captures/dissector.hpp"
#include "commands/commands.hpp"
#include "texts/printable.hpp"

namespace tool {
namespace {

CLI::Validator notEmpty() {
  return {[](std::string& text) { return text.empty() ? "is empty" : std::string(); }, ""};
}

// CLI11 reads 010 as octal.
CLI::Validator notOctal() {
  return {[](std::string& text) {
            return text.size() > 1 && text[0] == '0' && text[1] >= '0' && text[1] <= '9'
                       ? text + " begins with a zero: write it without, or 0x for hexadecimal"
                       : std::string();
          },
          ""};
}

// A finite number above 0.
CLI::Validator positive() {
  return {[](std::string& text) {
            double value = 0;
            const auto [stop, error] =
                std::from_chars(text.data(), text.data() + text.size(), value);
            return error == std::errc{} && stop == text.data() + text.size() &&
                           std::isfinite(value) && value > 0
                       ? std::string()
                       : text + " is no number above 0";
          },
          "POSITIVE"};
}

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

CLI::Option* addMessage(CLI::App& command, std::string& message) {
  return command.add_option("-m,--message", message, "Name or identifier");
}

void addJson(CLI::App& command, bool& isJson, const char* description = "As a JSON object") {
  command.add_flag("--json", isJson, description);
}

void addByteText(CLI::App& command, ByteText& form) {
  command.add_flag_callback(
      "--base64", [&form] { form = ByteText::Base64; },
      "Byte strings of records are base64, not hexadecimal");
}

void addInputForm(CLI::App& command, InputForm& form) {
  CLI::Option* const binary = command.add_flag_callback(
      "--binary", [&form] { form = InputForm::Binary; }, "The input is bytes");
  command
      .add_flag_callback(
          "--hex", [&form] { form = InputForm::Hex; }, "The input is hexadecimal text")
      ->excludes(binary);
}

void addInput(CLI::App& command, InputOptions& options) {
  addMessage(command, options.message)->check(notEmpty());
  command
      .add_option("FILE", options.file,
                  "Bytes, or their hexadecimal text; - for the standard input")
      ->capture_default_str();
  addInputForm(command, options.form);
}

void addJsonInput(CLI::App& command, std::string& file) {
  command.add_option("FILE", file, "JSON; - for the standard input")->capture_default_str();
}

void addMiddleware(CLI::App& command, std::string& middleware) {
  command.add_option("--middleware", middleware, "The path of a libzarnimesh")
      ->envname("MESH_L2VPN_MIDDLEWARE");
}

CLI::Option* addSender(CLI::App& command, SenderOptions& options, const char* toDescription) {
  addMiddleware(command, options.middleware);
  command
      .add_option("--from", options.from, "Address of the sending node; one of its own otherwise")
      ->check(notOctal());
  return command
      .add_option_function<uint64_t>(
          "--to", [&options](uint64_t to) { options.to = static_cast<uint32_t>(to); },
          toDescription)
      ->check(notOctal())
      ->check(CLI::Range(uint64_t{0}, uint64_t{UINT32_MAX}));
}

void addReceiver(CLI::App& command, ReceiverOptions& options) {
  addMiddleware(command, options.middleware);
  command.add_option("ADDRESS", options.address, "Address of the node to be")
      ->required()
      ->check(notOctal());
  command.add_option("--count", options.count, "End after that many tables")->check(notOctal());
  command.add_option("--seconds", options.seconds, "End after that time")->check(positive());
}

void addCaptureInput(CLI::App& command, std::string& file) {
  command.add_option("FILE", file, "A capture; - for the standard input")->required();
}

void addCatalogue(CLI::App& app, Session& session) {
  const auto [list, listOptions] =
      add(app, session, "list", "The messages, with identifiers and sizes", &runList);
  list.add_option("--service", listOptions.service, "Of one service alone")
      ->check(CLI::IsMember({"l2vpn_cfg", "l2vpn_stat", "l2vpn_sync"}));
  addJson(list, listOptions.isJson, "As a JSON array");
  list.footer("Examples:\n  mesh-l2vpn list --service l2vpn_cfg\n  mesh-l2vpn list --json");

  const auto [show, showOptions] =
      add(app, session, "show", "One message: identity, sizes, slots", &runShow);
  show.add_option("MESSAGE", showOptions.message, "Name or identifier")->required();
  addJson(show, showOptions.isJson);
  show.footer(
      "Examples:\n  mesh-l2vpn show l2vpn_sync_vpls_ac\n  mesh-l2vpn show 0x5EED5F0D --json");
}

void addCodec(CLI::App& app, Session& session) {
  const auto [decode, decodeOptions] =
      add(app, session, "decode",
          "Bytes in, JSON out; without a message the raw table and what it could be", &runDecode);
  addInput(decode, decodeOptions);
  addByteText(decode, decodeOptions.byteText);
  decode.add_flag("--line", decodeOptions.isOnOneLine, "JSON on one line");
  decode
      .add_flag("--capture", decodeOptions.isCapture,
                "The input is a capture: a line of JSON for each table")
      ->excludes("--binary", "--hex");
  decode.footer(
      "Examples:\n  mesh-l2vpn decode -m l2vpn_sync_vpls_ac_update update.bin\n"
      "  xxd -p update.bin | mesh-l2vpn decode -m 0x5EED5F0D -\n  mesh-l2vpn decode unknown.bin\n"
      "  mesh-l2vpn decode night.pcapng | jq 'select(.faults)'");

  const auto [encode, encodeOptions] =
      add(app, session, "encode", "JSON in, bytes out; what is missing is 0", &runEncode);
  addMessage(encode, encodeOptions.message)->required();
  addJsonInput(encode, encodeOptions.file);
  CLI::Option* const fixed =
      encode.add_flag("--fixed", encodeOptions.isFixed, "In the fixed arrangement");
  encode.add_flag("--compact", encodeOptions.isCompact, "In the compact arrangement")
      ->excludes(fixed);
  addByteText(encode, encodeOptions.byteText);
  encode.add_flag("--hex", encodeOptions.isHex, "As hexadecimal text, as on a terminal");
  encode.footer(
      "Without --fixed or --compact in the arrangement that the message is sent in.\n\n"
      "Examples:\n"
      "  echo '{\"f0\": 7, \"f1\": {\"f0\": 42}}' |\n"
      "    mesh-l2vpn encode -m l2vpn_sync_vpls_ac_update > update.bin\n"
      "  mesh-l2vpn encode -m dbginfo_key_l2vpn --hex key.json");
}

void addExplanations(CLI::App& app, Session& session) {
  const auto [explain, explainOptions] =
      add(app, session, "explain", "A message byte by byte, with every fault it has", &runExplain);
  addInput(explain, explainOptions);
  explain.add_flag("--html", explainOptions.isHtml, "As one page for a browser");
  explain.add_flag("--all", explainOptions.isWhole, "Long contents as a whole");
  explain.footer(
      "Exit status 1 when there is a fault.\n\n"
      "Examples:\n  mesh-l2vpn explain -m l2vpn_sync_vpls_ac_update captured.bin\n"
      "  mesh-l2vpn explain --html -m 0x5EED5F0D captured.bin > captured.html");

  const auto [diff, diffOptions] = add(
      app, session, "diff", "What differs between two messages, by field and by byte", &runDiff);
  addMessage(diff, diffOptions.message)->check(notEmpty());
  diff.add_option("FIRST", diffOptions.file, "Bytes, or their hexadecimal text")->required();
  diff.add_option("SECOND", diffOptions.second, "The same")->required();
  addInputForm(diff, diffOptions.form);
  addJson(diff, diffOptions.isJson);
  diff.footer(
      "Exit status 0 when they are the same, faults and all; 1 when they differ, or receivers\n"
      "reject one. Long values are shortened; --json has them whole.\n\n"
      "Example:\n  mesh-l2vpn diff -m l2vpn_sync_vpls_ac before.bin after.bin");
}

void addTalk(CLI::App& app, Session& session) {
  const auto [send, sendOptions] =
      add(app, session, "send", "One message from JSON to a node", &runSend);
  addSender(send, sendOptions, "Address of the receiving node")->required();
  addMessage(send, sendOptions.message)->required();
  addJsonInput(send, sendOptions.file);
  addByteText(send, sendOptions.byteText);
  send.add_option("--extra", sendOptions.extra, "The word that travels along")->check(notOctal());
  send.footer("Example:\n  echo '{\"f0\": 7}' | mesh-l2vpn send --to 2 -m l2vpn_sync_stp");

  const auto [listen, listenOptions] =
      add(app, session, "listen", "What arrives at a node, as JSON lines, until interrupted",
          &runListen);
  addReceiver(listen, listenOptions);
  addByteText(listen, listenOptions.byteText);
  listen.footer("Examples:\n  mesh-l2vpn listen 2\n  mesh-l2vpn listen 2 --count 10 | jq .record");
}

void addCaptures(CLI::App& app, Session& session) {
  const auto [record, recordOptions] =
      add(app, session, "record", "What arrives at a node, into a pcapng file, until interrupted",
          &runRecord);
  addReceiver(record, recordOptions);
  record.add_option("FILE", recordOptions.file, "The file to write; - for the standard output")
      ->required();
  record.footer("Example:\n  mesh-l2vpn record 2 night.pcapng");

  const auto [replay, replayOptions] =
      add(app, session, "replay", "A capture's tables, sent again", &runReplay);
  addSender(replay, replayOptions, "Address of the receiving node; the recorded one otherwise");
  addCaptureInput(replay, replayOptions.file);
  CLI::Option* const speed =
      replay.add_option("--speed", replayOptions.speed, "As many times as fast as it was recorded")
          ->check(positive());
  CLI::Option* const rate =
      replay.add_option("--rate", replayOptions.rate, "That many tables a second")
          ->check(positive())
          ->excludes(speed);
  replay.add_flag("--at-once", replayOptions.isAtOnce, "As fast as the receiver takes them")
      ->excludes(speed)
      ->excludes(rate);
  replay.footer(
      "Examples:\n  mesh-l2vpn replay --to 2 night.pcapng\n"
      "  mesh-l2vpn replay --rate 1000 night.pcapng");

  const auto [stat, statOptions] =
      add(app, session, "stat", "What a capture holds, by message: counts, bytes, rates, rejects",
          &runStat);
  addCaptureInput(stat, statOptions.file);
  addJson(stat, statOptions.isJson);
  stat.footer("Example:\n  mesh-l2vpn stat night.pcapng");

  CLI::App* const dissectorCommand =
      app.add_subcommand("dissector", "A Lua program that shows captures in Wireshark");
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
      add(app, session, "completion", "A script that makes a shell complete this program's words",
          &runCompletion);
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
  CLI::App app("Sees, makes and records the messages of the Layer-2 VPN feature.", "mesh-l2vpn");
  app.require_subcommand(1);
  app.fallthrough();
  app.add_flag("-q,--quiet", session.isQuiet, "Say nothing but the output");
  app.add_option("--color", session.color, "auto, always or never; NO_COLOR is heeded")
      ->check(CLI::IsMember({"auto", "always", "never"}));
  app.set_version_flag("--version", MESH_L2VPN_VERSION);
  app.footer(
      "Messages are named by name or identifier.\n\n"
      "Exit status: 0 done; 1 the input is at fault, or diff found a difference;\n"
      "2 wrong usage; 3 a file, the output or the middleware failed.\n\n"
      "Examples:\n"
      "  mesh-l2vpn show l2vpn_sync_vpls_ac\n"
      "  mesh-l2vpn decode -m 0x5EED5F0D captured.bin\n"
      "  mesh-l2vpn COMMAND --help");
  addCatalogue(app, session);
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
