// mesh-l2vpn: see, make and record Layer-2 VPN messages.

#include <fcntl.h>
#include <unistd.h>

#include <iostream>
#include <new>
#include <sstream>

#include "commands/commands.hpp"
#include "texts/printable.hpp"

namespace {

int exitCode(tool::Exit exit) {
  return static_cast<int>(exit);
}

// A file that is opened must not become the standard output because that one is closed.
void occupyStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) < 0) {
      // The wrong way round, so that whoever uses it is told.
      open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
  }
}

int parse(CLI::App& app, int count, char** words, const tool::Session& session) {
  try {
    app.parse(count, words);
  } catch (const CLI::ParseError& error) {
    std::ostringstream text;
    const bool isHelp = app.exit(error, std::cout, text) == 0;
    std::istringstream lines(text.str());
    for (std::string line; std::getline(lines, line);) {
      std::cerr << tool::printable(line) << '\n';
    }
    std::cout.flush();
    return isHelp ? 0 : exitCode(tool::Exit::Usage);
  }
  std::cout.flush();
  return exitCode(session.result);
}

int fail(const tool::Failure& failure) {
  // What was printed before stands before; when that fails, there is enough to tell already.
  std::cout.exceptions(std::ios::goodbit);
  std::cout.flush();
  tool::complain(failure.what());
  return exitCode(failure.exit());
}

int run(CLI::App& app, int count, char** words, const tool::Session& session) {
  // An output that fails ends the command at once.
  std::cout.exceptions(std::ios::badbit);
  try {
    return parse(app, count, words, session);
  } catch (const tool::Failure& failure) {
    return fail(failure);
  } catch (const std::ios::failure&) {
    return fail(tool::outputFailure());
  } catch (const std::bad_alloc&) {
    return fail({tool::Exit::System, "out of memory"});
  } catch (const std::exception& error) {
    return fail({tool::Exit::System, error.what()});
  }
}

}  // namespace

int main(int count, char** words) {
  occupyStandardStreams();
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
      "2 wrong usage; 3 a file, the output or the middleware failed.\n\n"
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
