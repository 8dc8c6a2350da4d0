// The commands, one a file: each adds itself to the program.
#pragma once

#include <CLI/CLI.hpp>

#include "session.hpp"

namespace tool {

void addList(CLI::App& app, Session& session);
void addShow(CLI::App& app, Session& session);
void addDecode(CLI::App& app, Session& session);
void addEncode(CLI::App& app, Session& session);
void addExplain(CLI::App& app, Session& session);
void addDiff(CLI::App& app, Session& session);
void addSend(CLI::App& app, Session& session);
void addListen(CLI::App& app, Session& session);
void addRecord(CLI::App& app, Session& session);
void addReplay(CLI::App& app, Session& session);
void addStat(CLI::App& app, Session& session);
void addDissector(CLI::App& app, Session& session);
void addCompletion(CLI::App& app, Session& session);

// What a command read in, by its options.
template <typename Options>
std::shared_ptr<Options> makeOptions() {
  return std::make_shared<Options>();
}

}  // namespace tool
