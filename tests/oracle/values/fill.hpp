// One walk over a record's slots; a source says what they hold.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "oracle/messages/description.hpp"
#include "oracle/values/value.hpp"

namespace oracle {

// Asked in slot order; a nested record or an item is asked for where it stands.
class Source {
 public:
  virtual ~Source() = default;

  // At the start of each record: bit n says whether slot n is filled. Nested records always are.
  virtual uint32_t presentSlots() { return UINT32_MAX; }
  virtual uint64_t scalar(uint32_t width) = 0;
  virtual std::vector<uint8_t> array(uint32_t size) = 0;
  virtual void fillString(FieldValue& field) = 0;
  // How many items; nothing where the pointer stays null.
  virtual std::optional<uint32_t> itemCount(FieldValue& field) = 0;
};

Value fill(const Description& message, Source& source);

}  // namespace oracle
