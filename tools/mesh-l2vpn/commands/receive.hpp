// Receiving, for commands that are a node.
#pragma once

#include <functional>

#include "commands/commands.hpp"
#include "middleware.hpp"

namespace tool {

// Hands over each table that arrives, until the options or the user end it. Calls whenIdle() before
// it waits for more. The caller catches interruptions before.
void receiveAll(Node& node, const ReceiverOptions& options,
                const std::function<void(const Table&)>& handler,
                const std::function<void()>& whenIdle);

}  // namespace tool
