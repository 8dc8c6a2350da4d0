#include "inspect/messages/messages.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <numeric>

#include "inspect/bytes/failure.hpp"
#include "l2vpn_cfg/schema.hpp"
#include "l2vpn_stat/schema.hpp"
#include "l2vpn_sync/schema.hpp"

namespace inspect {
namespace {

#define CFG(X, identifier) {#X, "l2vpn_cfg", &mesh::msg::messageOf<X>},
#define STAT(X, identifier) {#X, "l2vpn_stat", &mesh::msg::messageOf<X>},
#define SYNC(X, identifier) {#X, "l2vpn_sync", &mesh::msg::messageOf<X>},

// Not L2VPN_MESSAGES: each message is told its service.
constexpr KnownMessage knownMessages[] = {L2VPN_CFG_MESSAGES(CFG) L2VPN_STAT_MESSAGES(STAT)
                                              L2VPN_SYNC_MESSAGES(SYNC)};

const KnownMessage* orNull(const KnownMessage* found) {
  return found == std::end(knownMessages) ? nullptr : found;
}

constexpr size_t longestName = 63;

// The Levenshtein distance. `other` is a message's name.
size_t editDistance(std::string_view one, std::string_view other) {
  std::array<size_t, longestName + 1> row{};
  std::iota(row.begin(), row.end(), size_t{0});
  for (size_t i = 0; i < one.size(); ++i) {
    size_t diagonal = row[0]++;
    for (size_t j = 0; j < std::min(other.size(), longestName); ++j) {
      const size_t exchanged = diagonal + (one[i] == other[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({row[j] + 1, row[j + 1] + 1, exchanged});
    }
  }
  return row[std::min(other.size(), longestName)];
}

bool parseNumber(std::string_view digits, int base, uint32_t& number) {
  const char* const end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, number, base);
  return error == std::errc{} && stop == end;
}

bool parseId(std::string_view text, uint32_t& id) {
  const bool isHex = text.starts_with("0x") || text.starts_with("0X");
  return parseNumber(isHex ? text.substr(2) : text, isHex ? 16 : 10, id);
}

// Whether the text is an identifier without its 0x.
bool isHexId(std::string_view text) {
  uint32_t id = 0;
  return parseNumber(text, 16, id) && findById(id) != nullptr;
}

}  // namespace

std::span<const KnownMessage> messages() {
  return knownMessages;
}

const KnownMessage* findById(uint32_t id) {
  return orNull(std::ranges::find(knownMessages, id, &KnownMessage::id));
}

const KnownMessage* findByName(std::string_view name) {
  return orNull(std::ranges::find(knownMessages, name, &KnownMessage::name));
}

std::string didYouMean(std::string_view name, std::span<const std::string_view> names) {
  struct Similar {
    size_t distance;
    std::string_view name;
  };
  std::vector<Similar> candidates;
  for (const std::string_view each : names) {
    // A substring matches: users drop the prefix.
    const bool isPart = name.size() >= 3 && each.find(name) != std::string_view::npos;
    const size_t distance = isPart ? 0 : editDistance(name, each);
    if (distance <= std::max<size_t>(2, name.size() / 4)) {
      candidates.push_back({distance, each});
    }
  }
  std::ranges::stable_sort(candidates, {}, [](const Similar& candidate) {
    return std::pair{candidate.distance, candidate.name.size()};
  });
  std::string text;
  for (const Similar& candidate :
       std::span(candidates).first(std::min<size_t>(3, candidates.size()))) {
    text.append(text.empty() ? "; did you mean " : ", ").append(candidate.name);
  }
  return text;
}

std::string didYouMean(std::string_view name) {
  std::vector<std::string_view> names;
  for (const KnownMessage& message : messages()) {
    names.push_back(message.name);
  }
  return didYouMean(name, names);
}

const KnownMessage& messageNamed(std::string_view nameOrId) {
  if (const KnownMessage* const message = findByName(nameOrId)) {
    return *message;
  }
  uint32_t id = 0;
  if (parseId(nameOrId, id)) {
    if (const KnownMessage* const message = findById(id)) {
      return *message;
    }
  }
  const std::string wanted(nameOrId);
  const std::string text =
      parseId(nameOrId, id) ? "unknown identifier " + wanted : "unknown message '" + wanted + "'";
  throw Failure(Cause::Usage,
                text + (isHexId(nameOrId) ? "; did you mean 0x" + wanted : didYouMean(nameOrId)));
}

}  // namespace inspect
