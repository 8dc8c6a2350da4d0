// stat: summarises a capture.

#include <iostream>

#include "commands/commands.hpp"
#include "inspect/bytes/interruption.hpp"
#include "inspect/captures/capture_file.hpp"
#include "inspect/captures/statistics.hpp"
#include "inspect/json/record_json.hpp"
#include "inspect/texts/printable.hpp"
#include "inspect/texts/text_table.hpp"
#include "progress.hpp"

namespace tool {
namespace {

Json jsonOf(const Count& count, double seconds) {
  return {{"tables", count.tables},
          {"bytes", count.bytes},
          {"shortest", count.shortest},
          {"longest", count.longest},
          {"rejected", count.rejected},
          {"perSecond", seconds > 0 ? Json(static_cast<double>(count.tables) / seconds) : Json()}};
}

Json jsonOf(const Gaps& gaps) {
  return {{"calls", gaps.calls}, {"gaps", gaps.places}};
}

double inSeconds(uint64_t nanoseconds) {
  return static_cast<double>(nanoseconds) / 1e9;
}

std::string decimal(double value, int digits) {
  char text[400];  // room for the largest double
  std::snprintf(text, sizeof text, "%.*f", digits, value);
  return text;
}

std::string rateText(uint64_t count, double seconds) {
  return seconds > 0 ? decimal(static_cast<double>(count) / seconds, 1) : "-";
}

std::string gapsText(const Gaps& gaps) {
  return std::to_string(gaps.places) + (gaps.places == 1 ? " gap" : " gaps");
}

void printText(const Statistics& statistics, const CaptureReader& reader, const Session& session) {
  TextTable table({"message", "tables", "bytes", "length", "per second", "rejected"});
  const double seconds = inSeconds(statistics.duration());
  const auto add = [&](const std::string& name, const Count& count) {
    const std::string shortest = std::to_string(count.shortest);
    table.add({name, std::to_string(count.tables), std::to_string(count.bytes),
               count.shortest == count.longest ? shortest
                                               : shortest + " to " + std::to_string(count.longest),
               rateText(count.tables, seconds), std::to_string(count.rejected)});
  };
  for (const auto& [name, count] : statistics.ranking()) {
    add(name, count);
  }
  if (statistics.all.tables != 0) {
    add("all", statistics.all);
    std::cout << table.text(session.colors()) << '\n'
              << timeText(statistics.first) << " to " << timeText(statistics.last) << ", "
              << decimal(seconds, 3) << " s\nlongest pause "
              << decimal(inSeconds(statistics.longestPause), 3) << " s\n";
  }
  std::cout << "missed calls: " << reader.lost();
  if (statistics.gaps.places != 0) {
    std::cout << ", in " << gapsText(statistics.gaps);
  }
  std::cout << '\n';
  for (const auto& [source, gaps] : statistics.gapsBySource) {
    std::cout << "  from node " << source << ": " << gaps.calls << ", in " << gapsText(gaps)
              << '\n';
  }
  if (statistics.gapsOfOthers.places != 0) {
    std::cout << "  from other nodes: " << statistics.gapsOfOthers.calls << ", in "
              << gapsText(statistics.gapsOfOthers) << '\n';
  }
  std::cout << "other packets: " << reader.otherPackets() << '\n';
  for (const std::string& note : reader.schemaNotes()) {
    std::cout << "schema of " << printable(note) << '\n';
  }
}

void printJson(const Statistics& statistics, const CaptureReader& reader) {
  const double seconds = inSeconds(statistics.duration());
  Json json = {{"messages", Json::object()}};
  for (const auto& [name, count] : statistics.ranking()) {
    json["messages"][name] = jsonOf(count, seconds);
  }
  if (statistics.all.tables != 0) {
    json["all"] = jsonOf(statistics.all, seconds);
    json["first"] = timeText(statistics.first);
    json["last"] = timeText(statistics.last);
  }
  json["longestPause"] = inSeconds(statistics.longestPause);
  json["missedCalls"] = reader.lost();
  json["gaps"] = statistics.gaps.places;
  json["missedOf"] = Json::object();
  for (const auto& [source, gaps] : statistics.gapsBySource) {
    json["missedOf"][std::to_string(source)] = jsonOf(gaps);
  }
  if (statistics.gapsOfOthers.places != 0) {
    json["missedOf"]["others"] = jsonOf(statistics.gapsOfOthers);
  }
  json["otherPackets"] = reader.otherPackets();
  json["schemas"] = reader.schemaNotes();
  json["fault"] = reader.fault().empty() ? Json() : Json(reader.fault());
  std::cout << json.dump(2) << '\n';
}

}  // namespace

void runStat(const StatOptions& options, Session& session) {
  // The user ends the reading of a growing capture.
  catchInterruptions();
  const Selection selection = selectionOf(options, options.message);
  CaptureReader reader(options.file);
  Statistics statistics;
  {
    Progress progress(session, "tables");
    while (const auto table = nextSelected(reader, selection)) {
      statistics.add(*table);
      progress.add(reader.progress());
    }
  }
  if (options.isJson) {
    printJson(statistics, reader);
  } else {
    printText(statistics, reader, session);
  }
  reader.throwFault();
}

}  // namespace tool
