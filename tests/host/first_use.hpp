// One call of one message's operation, made twice in modules that nobody has used yet, and the
// calls of the host, of the middleware and of the mutexes that it is to make.
#pragma once

#include <functional>
#include <list>
#include <string>
#include <utility>
#include <vector>

#include "delivered/golden/values.hpp"
#include "host/observed_host.hpp"
#include "oracle/messages/description.hpp"
#include "oracle/operations/writer.hpp"
#include "oracle/values/record_image.hpp"
#include "support/bytes.hpp"

namespace harness {

// A message with everything that the calls need.
struct Scene {
  explicit Scene(const Operations& of);

  bool isFixed() const { return fixed != 0; }
  bool isOnStack() const { return fixed != 0 && fixed <= 1024; }
  bool ownsMemory() const { return message.hasOutOfLineParts; }
  const oracle::Field* nestedTable() const;  // the first, or null

  void unpack(const Buffer& bytes) {
    operations.unpack(bytes.data(), static_cast<uint32_t>(bytes.size()), received.data());
  }
  // __pack with as much room as the first record needs, and `more`.
  void pack(const void* record, uint8_t* buffer, int more = 0) {
    auto length = static_cast<uint32_t>(static_cast<int>(packed.size()) + more);
    operations.pack(record, buffer, &length);
  }

  const Operations& operations;
  const oracle::Description& message;
  const uint32_t fixed;  // the image's length; 0 for a message that is sent compact
  const std::vector<oracle::Value> values;
  oracle::RecordImage records;      // two
  oracle::RecordImage unencodable;  // two, of which the second has no encoding
  oracle::RecordImage received;
  Buffer packed;  // the first record
  Buffer target;  // more room than that takes
};

// What one scene's call does in one host, step by step.
class Expected {
 public:
  Expected(const Scene& scene, const Host& host) : scene_(scene), host_(host) {}

  // The bindings are made by the first of the two calls.
  void bindHost(const char* direction);
  void bindUnpack(const char* direction);

  void log(const std::string& line) { add(host_.has(LogWrite), line); }
  void ofSending(const std::string& line) { add(host_.servesSending(), line); }
  void ofReceiving(const Trace& lines) {
    for (const std::string& line : lines) {
      add(host_.servesReceiving(), line);
    }
  }
  void always(const std::string& line) { add(true, line); }

  const Scene& scene() const { return scene_; }
  Trace take() { return std::exchange(trace_, {}); }

 private:
  void add(bool happens, const std::string& line) {
    if (happens) {
      trace_.push_back(line);
    }
  }

  const Scene& scene_;
  const Host& host_;
  Contents contents_;
  Trace trace_;
};

using Step = std::function<void(Expected&)>;
using Steps = std::vector<Step>;

using Call = std::function<void(Scene&)>;

// The lines of two calls in each host, for one scene after the other, each call with a title.
Trace expectedLines(const Steps& steps, const std::list<Scene>& scenes,
                    const std::vector<Host>& hosts);

// The same of the engine, in a new process.
Trace observedLines(const Call& call, std::list<Scene>& scenes, const std::vector<Host>& hosts);

// "", or the first call whose lines differ.
std::string difference(const Trace& observed, const Trace& expected);

}  // namespace harness
