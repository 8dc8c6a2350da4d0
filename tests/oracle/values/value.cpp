#include "oracle/values/value.hpp"

#include <algorithm>
#include <cstdio>
#include <ostream>

#include "oracle/values/text.hpp"

namespace oracle {
namespace {

constexpr size_t bytesPrinted = 64;

std::string printField(const FieldValue& field) {
  switch (field.kind) {
    case Kind::U8:
    case Kind::U16:
    case Kind::U32:
    case Kind::U64:
      return std::to_string(field.scalar);
    case Kind::Array:
      return print(field.bytes);
    case Kind::Bytes:
      return joined({"length ", std::to_string(field.length), " ",
                     field.isNull ? "null" : print(field.bytes)});
    case Kind::Table:
      return print(nested(field));
    case Kind::Vector: {
      std::string text = joined({"count ", std::to_string(field.length)});
      if (field.isNull) {
        return joined({text, " null"});
      }
      for (const Value& item : field.items) {
        text.append(joined({" ", print(item)}));
      }
      return text;
    }
  }
  misuse("unknown field kind");
}

std::string differenceOfFields(const FieldValue& left, const FieldValue& right) {
  if (left.kind == Kind::Array || left.kind == Kind::Bytes) {
    const size_t shared = std::min(left.bytes.size(), right.bytes.size());
    for (size_t i = 0; i < shared && left.isNull == right.isNull; ++i) {
      if (left.bytes[i] != right.bytes[i]) {
        return joined({"[", std::to_string(i), "]: ", std::to_string(left.bytes[i]), " is not ",
                       std::to_string(right.bytes[i])});
      }
    }
  }
  if (left.kind == Kind::Table || left.kind == Kind::Vector) {
    const size_t shared = std::min(left.items.size(), right.items.size());
    for (size_t i = 0; i < shared; ++i) {
      const std::string inner = difference(left.items[i], right.items[i]);
      if (!inner.empty()) {
        const std::string item =
            left.kind == Kind::Vector ? joined({"[", std::to_string(i), "]"}) : "";
        return joined({item, ".", inner});
      }
    }
  }
  return joined({": ", printField(left), " is not ", printField(right)});
}

}  // namespace

bool operator==(const FieldValue& left, const FieldValue& right) {
  return left.kind == right.kind && left.scalar == right.scalar && left.bytes == right.bytes &&
         left.isNull == right.isNull && left.length == right.length && left.items == right.items;
}

bool operator==(const Value& left, const Value& right) {
  return left.message == right.message && left.fields == right.fields;
}

FieldValue zeroField(const Field& field) {
  FieldValue zero;
  zero.kind = field.kind;
  if (field.kind == Kind::Array) {
    zero.bytes.assign(field.size, 0);
  }
  if (field.kind == Kind::Table) {
    zero.items.push_back(zeroValue(*field.nested));
  }
  return zero;
}

Value zeroValue(const Description& message) {
  Value zero;
  zero.message = &message;
  zero.fields.reserve(message.fields.size());
  for (const Field& field : message.fields) {
    zero.fields.push_back(zeroField(field));
  }
  return zero;
}

void setBytes(FieldValue& field, const std::vector<uint8_t>& contents) {
  field.isNull = false;
  field.length = static_cast<uint32_t>(contents.size());
  field.bytes = contents;
}

void setItems(FieldValue& field, const std::vector<Value>& items) {
  field.isNull = false;
  field.length = static_cast<uint32_t>(items.size());
  field.items = items;
}

Value& nested(FieldValue& field) {
  return field.items.at(0);
}

const Value& nested(const FieldValue& field) {
  return field.items.at(0);
}

Value asReceived(const Value& value) {
  Value received = value;
  for (FieldValue& field : received.fields) {
    const bool pointerForm = field.kind == Kind::Bytes || field.kind == Kind::Vector;
    if (pointerForm && (field.isNull || field.length == 0)) {
      FieldValue absent;
      absent.kind = field.kind;
      field = absent;
    }
    for (Value& item : field.items) {
      item = asReceived(item);
    }
  }
  return received;
}

std::string print(const std::vector<uint8_t>& bytes) {
  std::string text = "[";
  for (size_t i = 0; i < bytes.size() && i < bytesPrinted; ++i) {
    char digits[4];
    std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned>(bytes[i]));
    text.append(joined({i == 0 ? "" : " ", digits}));
  }
  if (bytes.size() > bytesPrinted) {
    text.append(joined({" ... of ", std::to_string(bytes.size())}));
  }
  return joined({text, "]"});
}

std::string print(const Value& value) {
  if (value.message == nullptr) {
    return "(no record)";
  }
  std::string text = joined({value.message->name, " {"});
  for (size_t slot = 0; slot < value.fields.size(); ++slot) {
    text.append(joined({slot == 0 ? "" : ", ", value.message->fields.at(slot).name, " = ",
                        printField(value.fields[slot])}));
  }
  return joined({text, "}"});
}

std::string difference(const Value& left, const Value& right) {
  if (left.message != right.message || left.fields.size() != right.fields.size()) {
    return joined({print(left), " is not of the type of ", print(right)});
  }
  for (size_t slot = 0; slot < left.fields.size(); ++slot) {
    if (!(left.fields[slot] == right.fields[slot])) {
      return joined({left.message->fields.at(slot).name,
                     differenceOfFields(left.fields[slot], right.fields[slot])});
    }
  }
  return "";
}

std::ostream& operator<<(std::ostream& out, const Value& value) {
  return out << print(value);
}

}  // namespace oracle
