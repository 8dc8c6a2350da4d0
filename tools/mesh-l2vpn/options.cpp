#include "options.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <span>

#include "commands/commands.hpp"
#include "inspect/captures/dissector.hpp"
#include "inspect/messages/messages.hpp"
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
      add(app, session, "show", "Show one message: identifier, sizes, all fields", &runShow);
  show.add_option("MESSAGE", showOptions.message, "Name or identifier")->required();
  addJson(show, showOptions.isJson);
  show.footer(
      "Examples:\n  mesh-l2vpn show l2vpn_sync_vpls_ac\n  mesh-l2vpn show 0x5EED5F0D --json");
}

void addTemplate(CLI::App& app, Session& session) {
  const auto [command, options] = add(
      app, session, "template", "Write a record of a message as JSON, to fill in", &runTemplate);
  command.add_option("MESSAGE", options.message, "Name or identifier")->required();
  command.footer("Example:\n  mesh-l2vpn template l2vpn_sync_stp > stp.json");
}

void addSchemas(CLI::App& app, Session& session) {
  const auto [schema, schemaOptions] =
      add(app, session, "schema", "Write a schema document (JSON) of all messages, or of one",
          &runSchema);
  schema.add_option("MESSAGE", schemaOptions.message, "Name or identifier")->check(notEmpty());
  schema.add_flag("--json-schema", schemaOptions.isJsonSchema,
                  "Only the JSON Schema (draft 2020-12) of records in JSON");
  schema.footer(
      "Examples:\n  mesh-l2vpn schema > 1.0.json\n"
      "  mesh-l2vpn schema --json-schema l2vpn_sync_stp > stp.schema.json");

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
  addStyle(decode, decodeOptions.style);
  addSelection(decode, decodeOptions);
  decode.add_flag("--line", decodeOptions.isOnOneLine, "Print JSON on one line");
  decode
      .add_flag("--capture", decodeOptions.isCapture,
                "The input is a capture; print one line of JSON per table")
      ->excludes("--binary", "--hex");
  decode.footer(
      "Examples:\n  mesh-l2vpn decode -m l2vpn_sync_vpls_ac_update update.bin\n"
      "  xxd -p update.bin | mesh-l2vpn decode -m 0x5EED5F0D -\n  mesh-l2vpn decode unknown.bin\n"
      "  mesh-l2vpn decode night.pcapng --where 'f1.f0 == 42' --source 7");

  const auto [encode, encodeOptions] =
      add(app, session, "encode", "Convert JSON to bytes; missing members are 0", &runEncode);
  CLI::Option* const message = addMessage(encode, encodeOptions.message);
  addJsonInput(encode, encodeOptions.file);
  CLI::Option* const fixed =
      encode.add_flag("--fixed", encodeOptions.isFixed, "Use the fixed arrangement");
  encode.add_flag("--compact", encodeOptions.isCompact, "Use the compact arrangement")
      ->excludes(fixed);
  addByteText(encode, encodeOptions.byteText);
  encode.add_flag("--hex", encodeOptions.isHex,
                  "Print hexadecimal text, the default on a terminal");
  CLI::Option* const capture =
      encode
          .add_flag("--capture", encodeOptions.isCapture,
                    "Write a capture; the input is JSON lines, as decode and listen print them")
          ->excludes(message, fixed, "--compact", "--hex");
  addPacket(encode, encodeOptions.packet);
  encode.get_option("--packet")->excludes(message, capture, fixed, "--compact", "--base64");
  encode.footer(
      "The default is the arrangement in which the message is sent.\n\n"
      "Examples:\n"
      "  echo '{\"f0\": 7, \"f1\": {\"f0\": 42}}' |\n"
      "    mesh-l2vpn encode -m l2vpn_sync_vpls_ac_update > update.bin\n"
      "  mesh-l2vpn encode -m dbginfo_key_l2vpn --hex key.json\n"
      "  mesh-l2vpn decode night.pcapng | mesh-l2vpn encode --capture > copy.pcapng\n"
      "  mesh-l2vpn encode --packet 7 night.pcapng > table.bin");
}

void addExplanations(CLI::App& app, Session& session) {
  const auto [explain, explainOptions] =
      add(app, session, "explain", "Explain a message byte by byte, with every fault", &runExplain);
  addInput(explain, explainOptions);
  addPacket(explain, explainOptions.packet);
  explain.add_flag("--html", explainOptions.isHtml, "Write a web page");
  addWhole(explain, explainOptions.isWhole);
  explain.footer(
      "Exit status 1 if there is a fault.\n\n"
      "Examples:\n  mesh-l2vpn explain -m l2vpn_sync_vpls_ac_update captured.bin\n"
      "  mesh-l2vpn explain --html -m 0x5EED5F0D captured.bin > captured.html");

  const auto [diff, diffOptions] =
      add(app, session, "diff", "Compare two messages, or the tables of two captures", &runDiff);
  addMessage(diff, diffOptions.message);
  diff.add_option("FIRST", diffOptions.file, "Bytes, hexadecimal text or capture")->required();
  diff.add_option("SECOND", diffOptions.second, "Bytes, hexadecimal text or capture")->required();
  addSelection(diff, diffOptions);
  addInputForm(diff, diffOptions.form);
  addJson(diff, diffOptions.isJson);
  addWhole(diff, diffOptions.isWhole);
  diff.footer(
      "Exit status 0 if the messages are equal, even with faults; 1 if they differ or receivers\n"
      "reject one. --json does not shorten long values.\n\n"
      "Examples:\n  mesh-l2vpn diff -m l2vpn_sync_vpls_ac before.bin after.bin\n"
      "  mesh-l2vpn diff --packet 7 monday.pcapng tuesday.pcapng\n"
      "  mesh-l2vpn diff monday.pcapng tuesday.pcapng");
}

void addTalk(CLI::App& app, Session& session) {
  const auto [send, sendOptions] =
      add(app, session, "send", "Send messages from JSON to a node", &runSend);
  addSender(send, sendOptions, "Address of the receiving node; default: that of each JSON line");
  addMessage(send, sendOptions.message);
  addJsonInput(send, sendOptions.file);
  addByteText(send, sendOptions.byteText);
  send.add_option("--extra", sendOptions.extra, "Integer that travels with the message")
      ->check(wholeNumber(0, UINT64_MAX));
  send.footer(
      "Without -m the input is JSON lines, as decode and listen print them.\n\n"
      "Examples:\n  echo '{\"f0\": 7}' | mesh-l2vpn send --to 2 -m l2vpn_sync_stp\n"
      "  mesh-l2vpn decode night.pcapng | mesh-l2vpn send --to 2");

  const auto [listen, listenOptions] =
      add(app, session, "listen", "Receive as a node and print JSON lines, until interrupted",
          &runListen);
  addReceiver(listen, listenOptions);
  addStyle(listen, listenOptions.style);
  listen.footer("Examples:\n  mesh-l2vpn listen 2\n  mesh-l2vpn listen 2 --count 10 | jq .record");
}

void addCaptures(CLI::App& app, Session& session) {
  const auto [record, recordOptions] =
      add(app, session, "record", "Receive as a node and write a pcapng file, until interrupted",
          &runRecord);
  addReceiver(record, recordOptions);
  record.add_option("FILE", recordOptions.file, "File to write; - for the standard output")
      ->required();
  record.add_flag("--overwrite", recordOptions.isOverwriting, "Replace an existing file");
  record.footer("Example:\n  mesh-l2vpn record 2 night.pcapng");

  const auto [replay, replayOptions] =
      add(app, session, "replay", "Send the tables of a capture again", &runReplay);
  addSender(replay, replayOptions, "Address of the receiving node; default: the recorded one");
  addCaptureInput(replay, replayOptions.file);
  addMessage(replay, replayOptions.message);
  addSelection(replay, replayOptions);
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
  addMessage(stat, statOptions.message);
  addSelection(stat, statOptions);
  addJson(stat, statOptions.isJson);
  stat.footer("Example:\n  mesh-l2vpn stat night.pcapng");

  CLI::App* const dissectorCommand =
      app.add_subcommand("dissector", "Write a Wireshark plugin (Lua) for captures");
  dissectorCommand->footer(
      "Example:\n"
      "  mkdir -p ~/.local/lib/wireshark/plugins\n"
      "  mesh-l2vpn dissector > ~/.local/lib/wireshark/plugins/mesh_l2vpn.lua");
  dissectorCommand->callback([] { std::cout << dissector(); });
}

std::vector<CompletionOptions::Option> optionsOf(const CLI::App& command, bool isProgram) {
  std::vector<CompletionOptions::Option> options;
  for (const CLI::Option* const option : command.get_options()) {
    // Every command has it; the program's own stands for them.
    if (isProgram || option != command.get_help_ptr()) {
      for (const std::string& name : option->get_lnames()) {
        options.push_back({name, option->get_description(), option->get_items_expected_min() > 0});
      }
    }
  }
  return options;
}

void addCompletion(CLI::App& app, Session& session) {
  const auto [command, options] =
      add(app, session, "completion", "Write a completion script for the shell", &runCompletion);
  command.add_option("SHELL", options.shell, "bash, fish or zsh")
      ->required()
      ->check(CLI::IsMember({"bash", "fish", "zsh"}));
  command.footer(
      "The package installs the scripts of all three.\n\n"
      "Example:\n  source <(mesh-l2vpn completion bash)");
  options.options = optionsOf(app, true);
  for (const CLI::App* const each : app.get_subcommands({})) {
    options.commands.push_back(
        {each->get_name(), each->get_description(), optionsOf(*each, false)});
  }
}

std::string unknownCommand(const CLI::App& app, const std::string& name) {
  std::vector<std::string_view> names;
  for (const CLI::App* const each : app.get_subcommands({})) {
    names.push_back(each->get_name());
  }
  return "unknown command '" + name + "'" + didYouMean(name, names);
}

void addHelp(CLI::App& app) {
  CLI::App* const help = app.add_subcommand("help", "Print help on the program or on a command");
  const auto name = std::make_shared<std::string>();
  help->add_option("COMMAND", *name, "Command");
  help->footer("Example:\n  mesh-l2vpn help decode");
  help->callback([&app, name] {
    const auto found =
        app.get_subcommands([&name](const CLI::App* each) { return each->get_name() == *name; });
    if (!name->empty() && found.empty()) {
      throw Failure(Cause::Usage, unknownCommand(app, *name));
    }
    const std::string program = app.get_name();
    std::cout << app.get_formatter()->make_help(
        name->empty() ? &app : found.front(),
        name->empty() ? program : program + ' ' + found.front()->get_name(),
        CLI::AppFormatMode::Normal);
  });
}

// Whether a word of the command line gives this option, or is this word.
bool isNamed(std::string_view word, const std::string& name) {
  const bool isShort = word.size() > 1 && word[0] == '-' && word[1] != '-';
  return word == name || word.starts_with(name + '=') ||
         (isShort && name.starts_with("--") && name[2] == word[1]);
}

// These words as the user wrote them, in the same order.
std::string asWritten(const std::vector<std::string>& names, std::span<char* const> words) {
  std::string text;
  for (const std::string_view word : words) {
    if (std::ranges::any_of(names,
                            [word](const std::string& name) { return isNamed(word, name); })) {
      text.append(text.empty() ? "" : " ").append(word);
    }
  }
  return text;
}

// What is wrong with the command line, on one line.
std::string textOf(const CLI::App& app, const CLI::ParseError& error,
                   std::span<char* const> words) {
  const std::string text = error.what();
  const std::vector<CLI::App*> chosen = app.get_subcommands();
  const std::string command = chosen.empty() ? "" : chosen.front()->get_name();
  const std::string before = command.empty() ? "" : command + ": ";
  const std::string after = "; see mesh-l2vpn " + command + (command.empty() ? "" : " ") + "--help";
  const std::vector<std::string> surplus = app.remaining(true);
  const auto word =
      std::ranges::find_if(surplus, [](const std::string& each) { return !each.starts_with('-'); });
  if (command.empty() && word != surplus.end()) {
    return unknownCommand(app, *word) + after;
  }
  if (!surplus.empty()) {
    return before + "not expected: " + asWritten(surplus, words) + after;
  }
  constexpr std::string_view excludes = " excludes ";
  if (const size_t at = text.find(excludes); at != std::string::npos) {
    return before + asWritten({text.substr(0, at), text.substr(at + excludes.size())}, words) +
           ": these exclude each other" + after;
  }
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
    return before + text.substr(0, text.find(':')) + " needs a value" + after;
  }
  return before + (command.empty() && words.size() < 2 ? "a command is required" : text) + after;
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
  addTemplate(app, session);
  addSchemas(app, session);
  addCodec(app, session);
  addExplanations(app, session);
  addTalk(app, session);
  addCaptures(app, session);
  addHelp(app);
  addCompletion(app, session);
  try {
    app.parse(count, words);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) {  // --help and --version
      app.exit(error);
      return Exit::Success;
    }
    complain(textOf(app, error, {words, static_cast<size_t>(count)}));
    return Exit::Usage;
  }
  return session.result;
}

}  // namespace tool
