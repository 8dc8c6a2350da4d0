#include "host/first_use.hpp"

#include <algorithm>
#include <optional>
#include <utility>

namespace harness {
namespace {

// Byte strings that are too long, vectors with a count and no items.
oracle::Value withoutEncoding(oracle::Value value) {
  for (size_t slot = 0; slot < value.fields.size(); ++slot) {
    oracle::FieldValue& field = value[slot];
    if (field.kind == oracle::Kind::Table) {
      oracle::nested(field) = withoutEncoding(oracle::nested(field));
    } else if (field.kind == oracle::Kind::Bytes || field.kind == oracle::Kind::Vector) {
      field = oracle::zeroField(value.message->fields[slot]);
      if (field.kind == oracle::Kind::Bytes) {
        oracle::setBytes(field, {'x'});
      }
      field.length = 0xFFFFFFFF;
    }
  }
  return value;
}

Buffer packedBytes(const oracle::Description& message, const oracle::Value& value) {
  Buffer bytes;
  for (const std::optional<uint8_t>& byte : oracle::compactBytes(message, value, false)) {
    bytes.push_back(byte.value_or(0));
  }
  return bytes;
}

// Everything written after a binding has the host's byte order: the upper bytes of a table's
// position are zeros.
void noteIfReversed(const Buffer& table) {
  if (table.at(0) == 0 && table.at(3) != 0) {
    note("reversed");
  }
}

constexpr const char* titles[] = {"first call, ", "second call, "};

std::string textOf(const Scene& scene, const Host& host) {
  return scene.message.name + ", functions " + std::to_string(host.functions) + ", flag " +
         std::to_string(host.useFlag);
}

}  // namespace

Scene::Scene(const Operations& of)
    : operations(of),
      message(oracle::descriptionOf(of.name)),
      fixed(oracle::fixedLength(message)),
      values{golden::fullValue(message), golden::sparseValue(message)},
      records(message, values),
      unencodable(message, {values[0], withoutEncoding(values[1])}),
      received(message, uint8_t{0}),
      packed(packedBytes(message, values[0])),
      target(packed.size() + 1024) {}

const oracle::Field* Scene::nestedTable() const {
  for (const oracle::Field& field : message.fields) {
    if (field.kind == oracle::Kind::Table) {
      return &field;
    }
  }
  return nullptr;
}

void Expected::bindHost(const char* direction) {
  if (contents_.hostBound != 0) {
    return;
  }
  const std::string module = scene_.message.service + " " + direction;
  always(lockLine(module, "hostLock", contents_));
  always(lookUpLine("DDM_OsalLogWrite", 0));
  always(lookUpLine("DDM_OsalMemAlloc", 0));
  always(lookUpLine("DDM_OsalMemFree", 0));
  contents_.hostBound = 1;
  contents_.logWrite = host_.has(LogWrite) ? "DDM_OsalLogWrite" : "none";
  contents_.memAlloc = host_.servesSending() ? "DDM_OsalMemAlloc" : "malloc";
  contents_.memFree = host_.servesSending() ? "DDM_OsalMemFree" : "free";
  always(unlockLine(module, "hostLock", contents_));
}

void Expected::bindUnpack(const char* direction) {
  if (contents_.unpackBound != 0) {
    return;
  }
  const std::string module = scene_.message.service + " " + direction;
  always(lockLine(module, "unpackLock", contents_));
  always(lookUpLine("DDM_OsalMemUseFlagGet", 0));
  add(host_.has(MemUseFlagGet), useFlagLine());
  add(host_.asksForCache(), lookUpLine("DDM_OsalMemCacheAlloc", 0));
  add(host_.asksForCache(), lookUpLine("DDM_OsalMemFree", 0));
  contents_.unpackBound = 1;
  contents_.unpackAlloc = host_.servesReceiving() ? "DDM_OsalMemCacheAlloc" : "malloc";
  contents_.unpackFree = host_.servesReceiving() ? "DDM_OsalMemFree" : "free";
  always(unlockLine(module, "unpackLock", contents_));
}

Trace expectedLines(const Steps& steps, const std::list<Scene>& scenes,
                    const std::vector<Host>& hosts) {
  Trace lines;
  for (const Scene& scene : scenes) {
    for (const Host& host : hosts) {
      Expected expected(scene, host);
      for (const char* title : titles) {
        expected.always(title + textOf(scene, host));
        for (const Step& step : steps) {
          step(expected);
        }
      }
      for (const std::string& line : expected.take()) {
        lines.push_back(line);
      }
    }
  }
  return lines;
}

Trace observedLines(const Call& call, std::list<Scene>& scenes, const std::vector<Host>& hosts) {
  return inANewProcess([&] {
    for (Scene& scene : scenes) {
      for (const Host& host : hosts) {
        meet(host);
        // The binding must clear it before anything is written.
        modulesOf(scene.operations).send->swapBytes.store(0x100);
        for (const char* title : titles) {
          note(title + textOf(scene, host));
          resetRecorder();
          call(scene);
          for (const std::string& line : recorder().trace) {
            note(line);
          }
          for (const SentTable& table : recorder().sent) {
            noteIfReversed(table.bytes);
          }
          noteIfReversed(scene.target);
        }
      }
    }
  });
}

std::string difference(const Trace& observed, const Trace& expected) {
  const auto [at, other] =
      std::mismatch(observed.begin(), observed.end(), expected.begin(), expected.end());
  if (at == observed.end() && other == expected.end()) {
    return "";
  }
  const auto isTitle = [](const std::string& line) { return line.find(" call, ") != line.npos; };
  const auto part = [&](const Trace& trace, Trace::const_iterator line) {
    auto first = line;
    while (first != trace.begin() && (first == trace.end() || !isTitle(*first))) {
      --first;
    }
    std::string text;
    for (; first != trace.end() && (first <= line || !isTitle(*first)); ++first) {
      text += (first == line ? "\n> " : "\n  ") + *first;
    }
    return text;
  };
  return "\nobserved: " + part(observed, at) + "\nexpected: " + part(expected, other) + "\n";
}

}  // namespace harness
