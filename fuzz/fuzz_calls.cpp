// Sequences of calls with an allocator that fails where the input says. In any order, the blocks in
// use are those that the records hold, a send reaches the middleware as a whole or not at all, and
// a block returns to where it came from.

#include <algorithm>
#include <array>
#include <cstring>
#include <map>
#include <set>
#include <vector>

#include "input.hpp"
#include "oracle/operations/writer.hpp"
#include "oracle/values/record_image.hpp"
#include "support/comparison.hpp"
#include "support/recorder.hpp"
#include "values.hpp"

namespace {

using harness::Operations;
using harness::recorder;
using oracle::Description;
using oracle::Kind;

constexpr uint32_t failure = 0xFFFFFFFF;
constexpr size_t mostCalls = 24;
constexpr size_t heldRecords = 3;

// The blocks that a record's pointers lead to.
void collectBlocks(const Description& message, const uint8_t* record,
                   std::set<const void*>& blocks) {
  for (const oracle::Field& field : message.fields) {
    const uint8_t* const place = record + field.offset;
    if (field.kind == Kind::Table) {
      collectBlocks(*field.nested, place, blocks);
    } else if (field.kind == Kind::Bytes || field.kind == Kind::Vector) {
      const void* block = nullptr;
      std::memcpy(&block, place, sizeof block);
      if (block != nullptr) {
        blocks.insert(block);
      }
    }
  }
}

class Calls {
 public:
  explicit Calls(FuzzedDataProvider& input) : input_(input) {
    harness::resetRecorder();
    if (input_.ConsumeBool()) {
      recorder().failingAllocations = input_.ConsumeIntegral<uint64_t>();
    }
  }

  void run() {
    for (size_t call = 0; call < mostCalls && input_.remaining_bytes() > 0; ++call) {
      Held& held = held_[input_.ConsumeIntegralInRange<size_t>(0, heldRecords - 1)];
      switch (input_.ConsumeIntegralInRange(0, 7)) {
        case 0:
        case 1:
        case 2:
          release(held);
          receive(held);
          break;
        case 3:
          release(held);
          break;
        case 4:
          pack(held);
          break;
        default:
          send(held);
          break;
      }
    }
    for (Held& held : held_) {
      release(held);
    }
    expect(recorder().blocks.empty(), "blocks are left");
  }

 private:
  struct Held {
    const Operations* operations = nullptr;
    std::vector<uint8_t> record;

    [[nodiscard]] const Description& message() const {
      return oracle::descriptionOf(operations->name);
    }
    [[nodiscard]] std::set<const void*> blocks() const {
      std::set<const void*> blocks;
      if (operations != nullptr) {
        collectBlocks(message(), record.data(), blocks);
      }
      return blocks;
    }
  };

  // A compact message, sometimes damaged.
  std::vector<uint8_t> takeMessage(const Description& message, bool reversed, bool& whole) {
    const oracle::Value value = fuzz::takeRecord(input_, message, fuzz::Lengths::True).value;
    std::vector<uint8_t> bytes;
    if (oracle::sendableSize(message, value)) {
      for (const auto& byte : oracle::compactBytes(message, value, reversed)) {
        bytes.push_back(byte.value_or(0));
      }
    }
    whole = !bytes.empty() && input_.ConsumeBool();
    if (!whole && !bytes.empty()) {
      const size_t at = input_.ConsumeIntegral<uint16_t>() % bytes.size();
      bytes[at] = input_.ConsumeIntegral<uint8_t>();
      bytes.resize(bytes.size() - input_.ConsumeIntegral<uint8_t>() % bytes.size());
    }
    return bytes;
  }

  void receive(Held& held) {
    held.operations = &fuzz::Head{input_.ConsumeIntegral<uint8_t>(), 0}.operations();
    held.record.assign(held.operations->schema().size, 0);
    const bool reversed = input_.ConsumeBool();
    bool whole = false;
    const std::vector<uint8_t> bytes = takeMessage(held.message(), reversed, whole);
    harness::useByteOrder(*held.operations, reversed);
    begin("__unpack of ", held);
    expect(held.operations->unpack(bytes.data(), static_cast<uint32_t>(bytes.size()),
                                   held.record.data()) == held.record.size(),
           "the result is not the record's size");
    end();
    expect(!refused() || held.blocks().empty(), "a record without its memory has blocks");
    expect(!whole || refused() || accepted(held, bytes), "a good message came out differently");
  }

  // Whether the record, packed, is the message again.
  static bool accepted(const Held& held, const std::vector<uint8_t>& bytes) {
    std::vector<uint8_t> again(bytes.size(), 0);
    auto length = static_cast<uint32_t>(bytes.size());
    if (held.operations->pack(held.record.data(), again.data(), &length) != 0) {
      return false;
    }
    again.resize(length);
    // A byte string of length 0 that is not null ends the first message with eight unwritten bytes.
    return std::equal(again.begin(), again.end(), bytes.begin());
  }

  void release(Held& held) {
    if (held.operations == nullptr) {
      return;
    }
    for (int time = 0; time < 2; ++time) {
      begin("_free__unpacked of ", held);
      held.operations->freeUnpacked(held.record.data());
      end();
      expect(held.blocks().empty(), "a released record has blocks");
    }
    held = {};
  }

  void pack(const Held& held) {
    if (held.operations == nullptr) {
      return;
    }
    auto length = input_.ConsumeIntegral<uint32_t>();
    std::vector<uint8_t> buffer(std::min<uint32_t>(length, 1U << 16));
    length = static_cast<uint32_t>(buffer.size());
    begin("__pack of ", held);
    const uint32_t result = held.operations->pack(held.record.data(), buffer.data(), &length);
    end();
    expect(result == 0 || result == failure, "a result of its own");
    expect(trace_.empty(), "__pack calls nothing");
  }

  void send(const Held& held) {
    if (held.operations == nullptr) {
      return;
    }
    const auto operation = input_.ConsumeIntegralInRange(0, 3);
    const uint32_t count = operation == 0 ? 1 : input_.ConsumeIntegralInRange<uint32_t>(0, 9);
    const uint64_t extra = input_.ConsumeBool() ? input_.ConsumeIntegral<uint64_t>() : 0;
    recorder().middlewareResult = input_.ConsumeBool() ? input_.ConsumeIntegral<uint32_t>() : 0;
    std::vector<uint8_t> records;
    for (uint32_t index = 0; index < count; ++index) {
      records.insert(records.end(), held.record.begin(), held.record.end());
    }
    recorder().sent.clear();
    begin("a send of ", held);
    uint32_t result = 0;
    switch (operation) {
      case 0:
        result = held.operations->sendSingle(1, records.data(), harness::unused, extra);
        break;
      case 1:
        result = held.operations->sendBatch(1, records.data(), count, extra);
        break;
      case 2:
        result = held.operations->sendMsg(1, records.data(), count);
        break;
      default:
        result = held.operations->sendToMsg(1, records.data(), count, extra);
        break;
    }
    end();
    const auto calls = std::count_if(trace_.begin(), trace_.end(), [](const std::string& line) {
      return line.starts_with("MESH_Send");
    });
    if (calls == 0) {
      expect(result == failure, "nothing was sent, and no failure said so");
      return;
    }
    expect(calls == 1 && !refused(), "the middleware was called without need");
    expect(result == recorder().middlewareResult, "the middleware's result was lost");
    expect(recorder().sent.size() == count, "a part of the records was sent");
    for (const harness::SentTable& sent : recorder().sent) {
      expect(sent.id == held.operations->id(), "sent as another message");
      expect(sent.bytes == recorder().sent[0].bytes, "the same record in other bytes");
    }
  }

  void begin(const char* call, const Held& held) {
    call_.assign(call).append(held.operations->name);
    static_cast<void>(harness::takeTrace());
  }

  // What holds after every call.
  void end() {
    trace_ = harness::takeTrace();
    for (const std::string& line : trace_) {
      expectOrigin(line);
    }
    std::set<const void*> blocks;
    for (const Held& held : held_) {
      blocks.merge(held.blocks());
    }
    bool same = blocks.size() == recorder().blocks.size();
    for (const auto& [block, number] : recorder().blocks) {
      same = same && blocks.count(block) == 1;
    }
    expect(same, "what is out is not what the records hold");
  }

  // A block goes back by the function and the owner that belong to where it came from.
  void expectOrigin(const std::string& line) {
    const bool unpack = line.starts_with("unpack");
    if (!unpack && !line.starts_with("mem")) {
      return;
    }
    expect(line.find(unpack ? " owner=12 " : " owner=25088 ") != std::string::npos,
           "a wrong owner");
    expect(line.find("not out") == std::string::npos, "a block went back that was not out");
    const size_t hash = line.find('#');
    if (hash == std::string::npos) {
      return;
    }
    const int number = std::atoi(line.c_str() + hash + 1);
    if (line.find(" -> ") != std::string::npos) {
      unpackBlocks_[number] = unpack;
    } else {
      expect(unpackBlocks_[number] == unpack, "a block went back elsewhere");
    }
  }

  [[nodiscard]] bool refused() const {
    return std::any_of(trace_.begin(), trace_.end(), [](const std::string& line) {
      return line.find("-> null") != std::string::npos;
    });
  }

  void expect(bool holds, const char* otherwise) const {
    if (holds) {
      return;
    }
    std::string text = call_ + ": " + otherwise + "\n";
    for (const std::string& line : trace_) {
      text += "    " + line + "\n";
    }
    fuzz::expectNone(text);
  }

  FuzzedDataProvider& input_;
  std::array<Held, heldRecords> held_;
  std::map<int, bool> unpackBlocks_;  // by number: whether the unpack allocator gave it
  std::string call_;
  std::vector<std::string> trace_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider input(data, size);
  Calls(input).run();
  return 0;
}
