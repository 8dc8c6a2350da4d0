// One call of one message's operation, made twice in unused modules, and the expected calls of the
// host, the middleware and the mutexes.
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

// A message with all data for the calls.
struct Scene {
  explicit Scene(const Operations& of);

  bool isFixed() const { return fixed != 0; }
  bool isOnStack() const { return fixed != 0 && fixed <= 1024; }
  bool ownsMemory() const { return message.hasOutOfLineParts; }
  const oracle::Field* nestedTable() const;  // the first, or null

  void unpack(const Buffer& bytes) {
    operations.unpack(bytes.data(), static_cast<uint32_t>(bytes.size()), received.data());
  }
  // __pack with the room that the first record needs plus `more`.
  void pack(const void* record, uint8_t* buffer, int more = 0) {
    auto length = static_cast<uint32_t>(static_cast<int>(packed.size()) + more);
    operations.pack(record, buffer, &length);
  }

  const Operations& operations;
  const oracle::Description& message;
  const uint32_t fixed;  // the image's length; 0 for a message that is sent compact
  const std::vector<oracle::Value> values;
  oracle::RecordImage records;      // two
  oracle::RecordImage unencodable;  // two; the second has no encoding
  oracle::RecordImage received;
  Buffer packed;  // the first record
  Buffer target;  // more room than `packed` needs
};

// The steps of one scene's call in one host.
class Expected {
 public:
  Expected(const Scene& scene, const Host& host) : scene_(scene), host_(host) {}

  // The first of the two calls makes the bindings.
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

// The expected lines: for each scene and each host two calls, each with a title.
Trace expectedLines(const Steps& steps, const std::list<Scene>& scenes,
                    const std::vector<Host>& hosts);

// The engine's lines, from a new process.
Trace observedLines(const Call& call, std::list<Scene>& scenes, const std::vector<Host>& hosts);

// The first call with different lines, or "".
std::string difference(const Trace& observed, const Trace& expected);

}  // namespace harness
