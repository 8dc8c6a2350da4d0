// dissector: captures in Wireshark.

#include "captures/dissector.hpp"

#include <iostream>

#include "commands/commands.hpp"

namespace tool {

void addDissector(CLI::App& app, Session& /*session*/) {
  CLI::App* const command =
      app.add_subcommand("dissector", "A Lua program that shows captures in Wireshark");
  command->footer(
      "Example:\n"
      "  mesh-l2vpn dissector > ~/.local/lib/wireshark/plugins/mesh_l2vpn.lua");
  command->callback([] { std::cout << dissector(); });
}

}  // namespace tool
