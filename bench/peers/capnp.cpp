// Cap'n Proto, unpacked: the message is built in a reused first segment, which is the encoding (one
// segment needs no frame), and its fields are copied out of a reader over the received words.
#include <capnp/message.h>

#include <array>
#include <optional>

#include "bench/peers/peer.hpp"
#include "shapes.capnp.h"

namespace bench::peer {
namespace {

template <typename Record>
struct Fields;

#define SET_SCALAR(n) message.setF##n(record.f##n);
#define SET_ARRAY(n, size) message.setF##n(kj::arrayPtr(record.f##n, size));
#define SET_STRING(n) message.setF##n(kj::arrayPtr(record.f##n, record.f##n##_len));
#define GET_SCALAR(n) record.f##n = message.getF##n();
#define GET_ARRAY(n, count)                         \
  {                                                 \
    const auto bytes = message.getF##n();           \
    if (bytes.size() != count) return false;        \
    std::memcpy(record.f##n, bytes.begin(), count); \
  }
#define GET_STRING(n)                                        \
  {                                                          \
    const auto bytes = message.getF##n();                    \
    record.f##n##_len = static_cast<uint32_t>(bytes.size()); \
    record.f##n = duplicate(bytes.begin(), bytes.size());    \
  }
#define FIELDS(Shape_, RecordType)                                          \
  template <>                                                               \
  struct Fields<RecordType> {                                               \
    using Message = shapes::capnp::Shape_;                                  \
    static void set(Message::Builder message, const RecordType& record) {   \
      BENCH_FIELDS_##Shape_(SET_SCALAR, SET_ARRAY, SET_STRING)              \
    }                                                                       \
    static bool get(Message::Reader message, RecordType& record) {          \
      BENCH_FIELDS_##Shape_(GET_SCALAR, GET_ARRAY, GET_STRING) return true; \
    }                                                                       \
  };
BENCH_SHAPES(FIELDS)

template <typename RecordType>
class Codec {
 public:
  using Record = RecordType;

  Bytes encode(const Record& record) {
    // The old builder clears the segment, as the new one requires.
    builder_.reset();
    builder_.emplace(kj::arrayPtr(segment_.data(), segment_.size()));
    Fields<Record>::set(builder_->template initRoot<typename Fields<Record>::Message>(), record);
    const auto segments = builder_->getSegmentsForOutput();
    if (segments.size() != 1) {
      return {};
    }
    const auto bytes = segments[0].asBytes();
    return {bytes.begin(), bytes.size()};
  }

  bool decode(Bytes bytes, Record& record) {
    const kj::ArrayPtr<const ::capnp::word> segment(
        reinterpret_cast<const ::capnp::word*>(bytes.data()), bytes.size() / sizeof(::capnp::word));
    ::capnp::SegmentArrayMessageReader reader(kj::arrayPtr(&segment, 1));
    return Fields<Record>::get(reader.getRoot<typename Fields<Record>::Message>(), record);
  }

 private:
  std::array<::capnp::word, 128> segment_{};
  std::optional<::capnp::MallocMessageBuilder> builder_;
};

#define ADD(Shape_, RecordType) &&addCodec<Codec<RecordType>>("capnp")
[[maybe_unused]] const bool added = true BENCH_SHAPES(ADD);

}  // namespace
}  // namespace bench::peer
