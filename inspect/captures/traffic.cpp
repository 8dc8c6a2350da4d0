#include "inspect/captures/traffic.hpp"

#include <algorithm>
#include <cstdio>
#include <ctime>

#include "inspect/bytes/hex.hpp"
#include "inspect/messages/codec.hpp"
#include "inspect/reader/acceptance.hpp"
#include "inspect/reader/own_encoding.hpp"
#include "inspect/reader/table_reader.hpp"
#include "inspect/schema/facts.hpp"

namespace inspect {
namespace {

constexpr uint64_t second = 1'000'000'000;

// Adds the record, or why there is none.
void addContents(Json& json, const KnownMessage& message, std::span<const uint8_t> bytes,
                 ByteText form) {
  if (isOwnEncoding(message, bytes)) {
    json["record"] = toJson(message.schema(), decode(message, bytes).data(), form);
    return;
  }
  const Verdict verdict = judge(message, bytes);
  for (const Fault& fault : verdict.faults) {
    json["faults"].push_back(faultText(fault));
  }
  if (verdict.isAccepted()) {
    try {
      refuseTooMuchMemory(verdict);
      json["record"] = toJson(message.schema(), decode(message, bytes).data(), form);
      return;
    } catch (const Failure& failure) {
      json["faults"].push_back(failure.what());
    }
  }
  json["bytes"] = toHex(bytes);
}

}  // namespace

uint64_t nowInNanoseconds() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  return static_cast<uint64_t>(now.tv_sec) * second + static_cast<uint64_t>(now.tv_nsec);
}

std::string timeText(uint64_t nanoseconds) {
  const auto seconds = static_cast<time_t>(nanoseconds / second);
  tm parts{};
  gmtime_r(&seconds, &parts);
  char text[80];
  const size_t length = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &parts);
  std::snprintf(text + length, sizeof text - length, ".%09uZ",
                static_cast<unsigned>(nanoseconds % second));
  return text;
}

Json tableJson(const Table& table, ByteText form) {
  const KnownMessage* const message = findById(table.id);
  Json json = {{"time", timeText(table.time)},
               {"source", table.source},
               {"destination", table.destination},
               {"message", message == nullptr ? Json() : Json(message->name)},
               {"identifier", hex(table.id)},
               {"extra", table.extra},
               {"length", table.bytes.size()}};
  if (table.missedBefore != 0) {
    json["missedBefore"] = table.missedBefore;
  }
  if (message != nullptr) {
    addContents(json, *message, table.bytes, form);
  } else {
    json["bytes"] = toHex(table.bytes);
  }
  return json;
}

bool isAccepted(const Table& table) {
  const KnownMessage* const message = findById(table.id);
  return message != nullptr && acceptanceOf(message->schema(), table.bytes) != Acceptance::Rejected;
}

}  // namespace inspect
