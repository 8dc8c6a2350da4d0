#include "commands/message_choice.hpp"

#include "json/raw_table.hpp"

namespace tool {

const Message& chooseMessage(const std::string& named, std::span<const uint8_t> bytes,
                             const Session& session) {
  if (!named.empty()) {
    return messageNamed(named);
  }
  const std::vector<Candidate> candidates = candidatesFor(bytes);
  if (candidates.empty()) {
    throw Failure(Exit::BadInput,
                  "every message has a fault in these bytes; name the one meant with --message");
  }
  const Message& chosen = *candidates.front().message;
  if (candidates.size() > 1 || candidates.front().fit != Fit::Exact) {
    session.say("taken for " + std::string(chosen.name) + ", the first of " +
                std::to_string(candidates.size()) + " that fit; --message names another");
  }
  return chosen;
}

}  // namespace tool
