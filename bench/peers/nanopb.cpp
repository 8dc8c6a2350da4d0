// nanopb: a static message, arrays in place, encoded into and decoded from memory.
#include <pb_decode.h>
#include <pb_encode.h>

#include <array>

#include "bench/peers/peer.hpp"
#include "shapes.pb.h"

namespace bench::peer {
namespace {

template <typename Record>
struct Fields;

#define SET_SCALAR(n) message.f##n = record.f##n;
#define SET_ARRAY(n, count) std::memcpy(message.f##n, record.f##n, count);
#define SET_STRING(n)                                              \
  message.f##n.size = static_cast<pb_size_t>(record.f##n##_len);   \
  if (record.f##n##_len > sizeof message.f##n.bytes) return false; \
  std::memcpy(message.f##n.bytes, record.f##n, record.f##n##_len);
#define GET_SCALAR(n) record.f##n = message.f##n;
#define GET_ARRAY(n, count) std::memcpy(record.f##n, message.f##n, count);
#define GET_STRING(n)                    \
  record.f##n##_len = message.f##n.size; \
  record.f##n = duplicate(message.f##n.bytes, message.f##n.size);
#define FIELDS(Shape_, RecordType)                                               \
  template <>                                                                    \
  struct Fields<RecordType> {                                                    \
    using Message = shapes_##Shape_;                                             \
    static const pb_msgdesc_t* descriptor() { return shapes_##Shape_##_fields; } \
    static bool set(Message& message, const RecordType& record) {                \
      BENCH_FIELDS_##Shape_(SET_SCALAR, SET_ARRAY, SET_STRING) return true;      \
    }                                                                            \
    static void get(const Message& message, RecordType& record) {                \
      BENCH_FIELDS_##Shape_(GET_SCALAR, GET_ARRAY, GET_STRING)                   \
    }                                                                            \
  };
BENCH_SHAPES(FIELDS)

template <typename RecordType>
class Codec {
 public:
  using Record = RecordType;

  Bytes encode(const Record& record) {
    typename Fields<Record>::Message message;
    pb_ostream_t stream = pb_ostream_from_buffer(bytes_.data(), bytes_.size());
    if (!Fields<Record>::set(message, record) ||
        !pb_encode(&stream, Fields<Record>::descriptor(), &message)) {
      return {};
    }
    return {bytes_.data(), stream.bytes_written};
  }

  bool decode(Bytes bytes, Record& record) {
    typename Fields<Record>::Message message;
    pb_istream_t stream = pb_istream_from_buffer(bytes.data(), bytes.size());
    if (!pb_decode(&stream, Fields<Record>::descriptor(), &message)) {
      return false;
    }
    Fields<Record>::get(message, record);
    return true;
  }

 private:
  std::array<uint8_t, 1024> bytes_{};
};

#define ADD(Shape_, RecordType) &&addCodec<Codec<RecordType>>("nanopb")
[[maybe_unused]] const bool added = true BENCH_SHAPES(ADD);

}  // namespace
}  // namespace bench::peer
