// Writes the golden file of every message into a directory: write_golden DIRECTORY.
//
// The bytes are the reference model's. The library has no part in them.

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <string>

#include "delivered/golden/ranges.hpp"
#include "delivered/golden/values.hpp"
#include "oracle/operations/writer.hpp"
#include "oracle/values/text.hpp"

namespace {

using oracle::joined;

// A longer run of one byte is written as a count.
constexpr size_t longRun = 32;
constexpr size_t bytesInARow = 16;

std::string formatted(const char* format, unsigned long long number) {
  char text[24];
  std::snprintf(text, sizeof text, format, number);
  return text;
}

size_t runAt(const std::vector<uint8_t>& bytes, size_t begin, size_t end) {
  const auto from = bytes.begin() + static_cast<std::ptrdiff_t>(begin);
  const auto to = bytes.begin() + static_cast<std::ptrdiff_t>(end);
  return static_cast<size_t>(
      std::find_if(from, to, [from](uint8_t byte) { return byte != *from; }) - from);
}

// Up to a row of bytes from `begin`, or one long run.
std::string rowOf(const std::vector<uint8_t>& bytes, size_t& begin, size_t end) {
  std::string text;
  for (size_t count = 0; begin < end && count < bytesInARow; ++count) {
    const size_t run = runAt(bytes, begin, end);
    const std::string byte = formatted("%02llx", bytes[begin]);
    if (run > longRun) {
      if (count == 0) {
        text = joined({std::to_string(run), " x ", byte});
        begin += run;
      }
      break;
    }
    text.append(joined({count == 0 ? "" : " ", byte}));
    ++begin;
  }
  return text;
}

std::string allOf(const std::vector<uint8_t>& bytes) {
  std::string text;
  for (size_t begin = 0; begin < bytes.size();) {
    text.append(joined({begin == 0 ? "" : " ", rowOf(bytes, begin, bytes.size())}));
  }
  return text;
}

void writeField(std::ostream& out, const std::string& path, const std::string& type,
                const std::string& contents) {
  std::string line = joined({"  ", path});
  line.resize(std::max<size_t>(line.size() + 1, 12), ' ');
  line.append(type);
  line.resize(std::max<size_t>(line.size() + 1, 25), ' ');
  out << line << contents << '\n';
}

bool isZero(const std::vector<uint8_t>& bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](uint8_t byte) { return byte == 0; });
}

void writeValue(std::ostream& out, const oracle::Value& value, const std::string& prefix) {
  for (size_t slot = 0; slot < value.fields.size(); ++slot) {
    const oracle::Field& shape = value.message->fields[slot];
    const oracle::FieldValue& field = value[slot];
    const std::string path = joined({prefix, shape.name});
    if (shape.kind == oracle::Kind::Table) {
      writeValue(out, oracle::nested(field), joined({path, "."}));
    } else if (shape.kind == oracle::Kind::Vector && !field.isNull) {
      writeField(out, path, "items", std::to_string(field.length));
      for (size_t item = 0; item < field.items.size(); ++item) {
        writeValue(out, field.items[item], joined({path, "[", std::to_string(item), "]."}));
      }
    } else if (shape.kind == oracle::Kind::Bytes && !field.isNull) {
      writeField(out, path, "bytes", allOf(field.bytes));
    } else if (shape.kind == oracle::Kind::Array && !isZero(field.bytes)) {
      writeField(out, path, joined({"bytes[", std::to_string(shape.size), "]"}),
                 allOf(field.bytes));
    } else if (oracle::isScalar(shape.kind) && field.scalar != 0) {
      const std::string digits = joined({"0x%0", std::to_string(2 * shape.size), "llx"});
      writeField(out, path, joined({"u", std::to_string(8 * shape.size)}),
                 formatted(digits.c_str(), field.scalar));
    }
  }
}

void writeImage(std::ostream& out, const oracle::Description& message, const std::string& title,
                const std::vector<uint8_t>& bytes, bool reversed) {
  out << "\nimage " << title << ": " << bytes.size() << " bytes\n";
  for (const golden::Range& range : golden::rangesOf(message, bytes, reversed)) {
    const char* separator = "| ";
    for (size_t begin = range.begin; begin < range.begin + range.size;) {
      std::string line = joined({"  ", formatted("%04llx", begin), "  "});
      line.append(rowOf(bytes, begin, range.begin + range.size));
      if (*separator != '\0') {
        line.resize(58, ' ');
        line.append(joined({separator, range.meaning}));
      }
      out << line << '\n';
      separator = "";
    }
  }
}

std::vector<uint8_t> compact(const oracle::Description& message, const oracle::Value& value,
                             bool reversed) {
  std::vector<uint8_t> bytes;
  for (const std::optional<uint8_t>& byte : oracle::compactBytes(message, value, reversed)) {
    bytes.push_back(byte.value());
  }
  return bytes;
}

void writeMessage(std::ostream& out, const oracle::Description& message) {
  const oracle::Value zero = oracle::zeroValue(message);
  const oracle::Value full = golden::fullValue(message);
  const oracle::Value sparse = golden::sparseValue(message);
  out << "message " << message.name << "\nidentifier " << formatted("0x%08llX", message.id)
      << "\nrecord " << message.recordSize << " bytes\nsent "
      << (message.sentFixed ? "fixed" : "compact") << "\n\nvalues zero\n\nvalues full\n";
  writeValue(out, full, "");
  out << "\nvalues sparse\n";
  writeValue(out, sparse, "");
  writeImage(out, message, "zero compact", compact(message, zero, false), false);
  writeImage(out, message, "full compact", compact(message, full, false), false);
  writeImage(out, message, "full compact reversed", compact(message, full, true), true);
  writeImage(out, message, "sparse compact", compact(message, sparse, false), false);
  if (message.sentFixed) {
    writeImage(out, message, "full fixed", oracle::fixedImage(message, full, false), false);
    writeImage(out, message, "full fixed reversed", oracle::fixedImage(message, full, true), true);
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: write_golden DIRECTORY\n";
    return 2;
  }
  for (const oracle::Description& message : oracle::descriptions()) {
    std::ofstream out(joined({argv[1], "/", message.name, ".txt"}));
    writeMessage(out, message);
    out.close();
    if (!out) {
      std::cerr << "cannot write the file of " << message.name << '\n';
      return 1;
    }
  }
  return 0;
}
