#include "agreement/exhaustive/frame.hpp"

namespace exhaustive {
namespace {

using oracle::Field;
using oracle::Kind;

class Walk {
 public:
  explicit Walk(const Sample& sample) : bytes_(sample.bytes), reversed_(sample.reversed) {
    table(sample.message(), follow(0));
  }

  Frame frame;

 private:
  void table(const oracle::Description& message, size_t at) {
    const auto vtable = static_cast<uint32_t>(at - word(at));
    const uint64_t length = numberAt(bytes_, vtable, 2, reversed_);
    frame.tables.push_back({&message, at, vtable});
    note(vtable, length);
    for (size_t half = 0; half < length; half += 2) {
      frame.halves.push_back(vtable + half);
    }
    for (size_t slot = 0; slot < message.fields.size() && 6 + 2 * slot <= length; ++slot) {
      const uint64_t entry = numberAt(bytes_, vtable + 4 + 2 * slot, 2, reversed_);
      if (entry != 0) {
        field(message.fields[slot], at + entry);
      }
    }
  }

  void field(const Field& field, size_t at) {
    if (oracle::isScalar(field.kind)) {
      return;
    }
    const size_t target = follow(at);
    if (field.kind == Kind::Table) {
      table(*field.nested, target);
      return;
    }
    const uint64_t count = word(target);
    for (uint64_t item = 0; field.kind == Kind::Vector && item < count; ++item) {
      table(*field.nested, follow(target + 4 + 4 * item));
    }
  }

  uint64_t word(size_t at) {
    note(at, 4);
    frame.words.push_back(at);
    return numberAt(bytes_, at, 4, reversed_);
  }
  size_t follow(size_t at) { return at + word(at); }

  void note(size_t at, uint64_t size) {
    for (uint64_t byte = 0; byte < size; ++byte) {
      frame.bytes.insert(at + byte);
    }
  }

  const std::vector<uint8_t>& bytes_;
  bool reversed_;
};

}  // namespace

Frame frameOf(const Sample& sample) {
  return Walk(sample).frame;
}

uint64_t numberAt(const std::vector<uint8_t>& bytes, size_t at, uint32_t width, bool reversed) {
  uint64_t number = 0;
  for (uint32_t i = 0; i < width; ++i) {
    number |= uint64_t{bytes.at(at + i)} << (8 * (reversed ? width - 1 - i : i));
  }
  return number;
}

void putNumber(std::vector<uint8_t>& bytes, size_t at, uint32_t width, uint64_t number,
               bool reversed) {
  for (uint32_t i = 0; i < width; ++i) {
    bytes.at(at + i) = static_cast<uint8_t>(number >> (8 * (reversed ? width - 1 - i : i)));
  }
}

}  // namespace exhaustive
