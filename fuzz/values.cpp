#include "values.hpp"

#include <algorithm>

#include "oracle/values/fill.hpp"

namespace fuzz {
namespace {

using oracle::FieldValue;

// The order in which this consumes its input gives the committed corpus its meaning.
class InputSource : public oracle::Source {
 public:
  InputSource(FuzzedDataProvider& input, Lengths lengths) : input_(input), lengths_(lengths) {}

  [[nodiscard]] bool lies() const { return lies_; }

  uint32_t presentSlots() override { return input_.ConsumeIntegral<uint32_t>(); }

  uint64_t scalar(uint32_t width) override {
    switch (width) {
      case 1:
        return input_.ConsumeIntegral<uint8_t>();
      case 2:
        return input_.ConsumeIntegral<uint16_t>();
      case 4:
        return input_.ConsumeIntegral<uint32_t>();
      default:
        return input_.ConsumeIntegral<uint64_t>();
    }
  }

  // As many bytes as the input says, then zeros.
  std::vector<uint8_t> array(uint32_t size) override {
    std::vector<uint8_t> bytes =
        input_.ConsumeBytes<uint8_t>(std::min<uint32_t>(size, input_.ConsumeIntegral<uint8_t>()));
    bytes.resize(size, 0);
    return bytes;
  }

  void fillString(FieldValue& field) override {
    switch (input_.ConsumeIntegralInRange(0, lengths_ == Lengths::MayLie ? 5 : 4)) {
      case 0:
        return;
      case 1:  // a length without a pointer
        field.length = input_.ConsumeIntegral<uint32_t>();
        return;
      case 2:
        return oracle::setBytes(field, {});
      case 3:
        return oracle::setBytes(field,
                                input_.ConsumeBytes<uint8_t>(input_.ConsumeIntegral<uint8_t>()));
      case 4:  // up to about three times what a table's length can state
        return oracle::setBytes(field,
                                std::vector<uint8_t>(size_t{3} * input_.ConsumeIntegral<uint16_t>(),
                                                     input_.ConsumeIntegral<uint8_t>()));
      default:
        oracle::setBytes(field, {1});
        field.length = input_.ConsumeIntegral<uint32_t>();
        lies_ = lies_ || field.length > 1;
    }
  }

  std::optional<uint32_t> itemCount(FieldValue& field) override {
    const uint32_t form = input_.ConsumeIntegralInRange(0U, 5U);
    if (form == 1) {  // a count without a pointer
      field.length = input_.ConsumeIntegral<uint32_t>();
    }
    return form < 2 ? std::nullopt : std::optional(form - 2);
  }

 private:
  FuzzedDataProvider& input_;
  Lengths lengths_;
  bool lies_ = false;
};

}  // namespace

Taken takeRecord(FuzzedDataProvider& input, const oracle::Description& message, Lengths lengths) {
  InputSource source(input, lengths);
  oracle::Value value = oracle::fill(message, source);
  return {std::move(value), source.lies()};
}

}  // namespace fuzz
