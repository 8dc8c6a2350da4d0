// stat: what a capture holds.

#include <algorithm>
#include <iostream>
#include <limits>
#include <map>
#include <tuple>

#include "../catalogue/catalogue.hpp"
#include "capture_file.hpp"
#include "commands/commands.hpp"
#include "progress.hpp"
#include "text_table.hpp"

namespace tool {
namespace {

struct Options {
  std::string file;
  bool isJson = false;
};

struct Count {
  uint64_t tables = 0;
  uint64_t bytes = 0;
  uint64_t rejected = 0;
  size_t shortest = std::numeric_limits<size_t>::max();
  size_t longest = 0;

  void add(const Table& table) {
    ++tables;
    bytes += table.bytes.size();
    rejected += isTaken(table) ? 0 : 1;
    shortest = std::min(shortest, table.bytes.size());
    longest = std::max(longest, table.bytes.size());
  }
};

// Places where the recorder missed calls.
struct Gaps {
  uint64_t places = 0;
  uint64_t calls = 0;

  void add(uint64_t missed) {
    ++places;
    calls += missed;
  }
};

struct Statistics {
  std::map<uint32_t, Count> byId;
  Count all;
  std::map<uint32_t, Gaps> gapsBySource;
  Gaps gaps;
  uint64_t first = std::numeric_limits<uint64_t>::max();
  uint64_t last = 0;
  uint64_t previous = 0;
  uint64_t longestPause = 0;

  void add(const Table& table) {
    byId[table.id].add(table);
    all.add(table);
    if (table.missedBefore != 0) {
      gaps.add(table.missedBefore);
      gapsBySource[table.source].add(table.missedBefore);
    }
    if (all.tables > 1 && table.time > previous) {
      longestPause = std::max(longestPause, table.time - previous);
    }
    previous = table.time;
    first = std::min(first, table.time);
    last = std::max(last, table.time);
  }

  [[nodiscard]] double seconds() const {
    return all.tables == 0 ? 0 : static_cast<double>(last - first) / 1e9;
  }
};

std::string nameOf(uint32_t id) {
  const Message* const message = findById(id);
  return message == nullptr ? "unknown " + catalogue::hex(id) : std::string(message->name);
}

Json jsonOf(const Count& count, double seconds) {
  return {{"tables", count.tables},
          {"bytes", count.bytes},
          {"shortest", count.shortest},
          {"longest", count.longest},
          {"rejected", count.rejected},
          {"perSecond", seconds > 0 ? Json(static_cast<double>(count.tables) / seconds) : Json()}};
}

std::string rateText(uint64_t count, double seconds) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f", static_cast<double>(count) / seconds);
  return seconds > 0 ? text : "-";
}

std::string placesText(const Gaps& gaps) {
  return std::to_string(gaps.places) + (gaps.places == 1 ? " place" : " places");
}

// The busiest messages first.
std::vector<std::pair<std::string, Count>> ranking(const Statistics& statistics) {
  std::vector<std::pair<std::string, Count>> all;
  for (const auto& [id, count] : statistics.byId) {
    all.emplace_back(nameOf(id), count);
  }
  std::ranges::sort(all, [](const auto& one, const auto& other) {
    return std::tie(other.second.tables, one.first) < std::tie(one.second.tables, other.first);
  });
  return all;
}

void printText(const Statistics& statistics, const CaptureReader& reader, const Session& session) {
  TextTable table({"message", "tables", "bytes", "length", "a second", "rejected"});
  const double seconds = statistics.seconds();
  const auto add = [&](const std::string& name, const Count& count) {
    const std::string shortest = std::to_string(count.shortest);
    table.add({name, std::to_string(count.tables), std::to_string(count.bytes),
               count.shortest == count.longest ? shortest
                                               : shortest + " to " + std::to_string(count.longest),
               rateText(count.tables, seconds), std::to_string(count.rejected)});
  };
  for (const auto& [name, count] : ranking(statistics)) {
    add(name, count);
  }
  if (statistics.all.tables != 0) {
    add("all", statistics.all);
    std::cout << table.text(session) << '\n'
              << timeText(statistics.first) << " to " << timeText(statistics.last) << ", "
              << seconds << " s\nlongest pause "
              << static_cast<double>(statistics.longestPause) / 1e9 << " s\n";
  }
  std::cout << "calls that the recorder missed: " << reader.lost();
  if (statistics.gaps.places != 0) {
    std::cout << ", in " << placesText(statistics.gaps);
  }
  std::cout << '\n';
  for (const auto& [source, gaps] : statistics.gapsBySource) {
    std::cout << "  of node " << source << ": " << gaps.calls << ", in " << placesText(gaps)
              << '\n';
  }
  std::cout << "packets that are no tables: " << reader.otherPackets() << '\n';
}

void printJson(const Statistics& statistics, const CaptureReader& reader) {
  Json json = {{"messages", Json::object()}};
  for (const auto& [name, count] : ranking(statistics)) {
    json["messages"][name] = jsonOf(count, statistics.seconds());
  }
  if (statistics.all.tables != 0) {
    json["all"] = jsonOf(statistics.all, statistics.seconds());
    json["first"] = timeText(statistics.first);
    json["last"] = timeText(statistics.last);
  }
  json["longestPause"] = static_cast<double>(statistics.longestPause) / 1e9;
  json["missedCalls"] = reader.lost();
  json["gaps"] = statistics.gaps.places;
  json["missedOf"] = Json::object();
  for (const auto& [source, gaps] : statistics.gapsBySource) {
    json["missedOf"][std::to_string(source)] = {{"calls", gaps.calls}, {"gaps", gaps.places}};
  }
  json["otherPackets"] = reader.otherPackets();
  json["fault"] = reader.fault().empty() ? Json() : Json(reader.fault());
  std::cout << json.dump(2) << '\n';
}

void run(const Options& options, Session& session) {
  CaptureReader reader(options.file);
  Statistics statistics;
  {
    Progress progress(session, "tables");
    while (const auto table = reader.next()) {
      statistics.add(*table);
      progress.add();
    }
  }
  if (options.isJson) {
    printJson(statistics, reader);
  } else {
    printText(statistics, reader, session);
  }
  if (!reader.fault().empty()) {
    throw Failure(Exit::BadInput, options.file + ": " + reader.fault());
  }
}

}  // namespace

void addStat(CLI::App& app, Session& session) {
  CLI::App* const command =
      app.add_subcommand("stat", "What a capture holds, by message: counts, bytes, rates, rejects");
  const auto options = makeOptions<Options>();
  command->add_option("FILE", options->file, "A capture; - for the standard input")->required();
  command->add_flag("--json", options->isJson, "As a JSON object");
  command->footer("Example:\n  mesh-l2vpn stat night.pcapng");
  command->callback([options, &session] { run(*options, session); });
}

}  // namespace tool
