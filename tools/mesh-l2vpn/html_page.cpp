#include "html_page.hpp"

#include "hex.hpp"
#include "html_template.hpp"
#include "record_json.hpp"

namespace tool {
namespace {

const char* partName(Part part) {
  static constexpr const char* names[] = {"root",   "frame",    "entry",   "scalar",  "word",
                                          "length", "contents", "unknown", "padding", "unread"};
  return names[static_cast<int>(part)];
}

Json dataOf(const Message& message, const Reading& reading, std::span<const uint8_t> bytes) {
  Json ranges = Json::array();
  for (const Range& range : reading.ranges) {
    ranges.push_back({{"at", range.at},
                      {"size", range.size},
                      {"part", partName(range.part)},
                      {"path", range.path},
                      {"meaning", range.meaning},
                      {"value", range.value},
                      {"target", range.target}});
  }
  Json faults = Json::array();
  for (const Fault& fault : reading.faults) {
    faults.push_back({{"at", fault.at},
                      {"size", fault.size},
                      {"text", faultText(fault)},
                      {"tolerated", fault.isTolerated}});
  }
  return {{"message", message.name},     {"accepted", reading.isAccepted()},
          {"bytes", toHex(bytes)},       {"ranges", std::move(ranges)},
          {"faults", std::move(faults)}, {"notes", reading.notes}};
}

// So that nothing in a text ends the script.
std::string escaped(std::string text) {
  for (size_t at = 0; (at = text.find('<', at)) != std::string::npos;) {
    text.replace(at, 1, "\\u003c");
  }
  return text;
}

}  // namespace

std::string htmlPage(const Message& message, const Reading& reading,
                     std::span<const uint8_t> bytes) {
  const std::string json =
      dataOf(message, reading, bytes).dump(-1, ' ', true, Json::error_handler_t::replace);
  return std::string(htmlHead).append(escaped(json)).append(htmlTail);
}

}  // namespace tool
