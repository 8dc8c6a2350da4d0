// mesh-l2vpn: see, make and record Layer-2 VPN messages.

#include <iostream>

#include "commands/commands.hpp"

namespace {

int exitCode(tool::Exit exit) {
  return static_cast<int>(exit);
}

int run(CLI::App& app, int count, char** words, tool::Session& session) {
  try {
    app.parse(count, words);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : exitCode(tool::Exit::Usage);
  } catch (const tool::Failure& failure) {
    std::cout.flush();
    std::cerr << "mesh-l2vpn: " << failure.what() << '\n';
    return exitCode(failure.exit());
  }
  return exitCode(std::cout.flush() ? session.result : tool::Exit::System);
}

}  // namespace

int main(int count, char** words) {
  std::ios::sync_with_stdio(false);
  tool::Session session;
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
      "2 wrong usage; 3 a file or the middleware failed.\n\n"
      "Examples:\n"
      "  mesh-l2vpn show l2vpn_sync_vpls_ac\n"
      "  mesh-l2vpn decode -m 0x5EED5F0D captured.bin\n"
      "  mesh-l2vpn COMMAND --help");
  tool::addList(app, session);
  tool::addShow(app, session);
  tool::addDecode(app, session);
  tool::addEncode(app, session);
  tool::addExplain(app, session);
  tool::addDiff(app, session);
  tool::addSend(app, session);
  tool::addListen(app, session);
  tool::addRecord(app, session);
  tool::addReplay(app, session);
  tool::addStat(app, session);
  tool::addDissector(app, session);
  tool::addCompletion(app, session);
  return run(app, count, words, session);
}
