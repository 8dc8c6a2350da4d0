// Protocol Buffers: one message object, reused for all records. Its documentation prefers this to
// arenas if the objects can be kept. The size is computed once.
#include <google/protobuf/util/json_util.h>

#include <array>

#include "bench/peers/peer.hpp"
#include "shapes.pb.h"

namespace bench::peer {
namespace {

template <typename Record>
struct Fields;

#define SET_SCALAR(n) message.set_f##n(record.f##n);
#define SET_ARRAY(n, count) message.set_f##n(record.f##n, count);
#define SET_STRING(n) message.set_f##n(record.f##n, record.f##n##_len);
#define GET_SCALAR(n) record.f##n = static_cast<decltype(record.f##n)>(message.f##n());
#define GET_ARRAY(n, count)                         \
  if (message.f##n().size() != count) return false; \
  std::memcpy(record.f##n, message.f##n().data(), count);
#define GET_STRING(n)                                               \
  record.f##n##_len = static_cast<uint32_t>(message.f##n().size()); \
  record.f##n = duplicate(message.f##n().data(), message.f##n().size());
#define FIELDS(Shape_, RecordType)                                          \
  template <>                                                               \
  struct Fields<RecordType> {                                               \
    using Message = shapes::Shape_;                                         \
    static void set(Message& message, const RecordType& record) {           \
      BENCH_FIELDS_##Shape_(SET_SCALAR, SET_ARRAY, SET_STRING)              \
    }                                                                       \
    static bool get(const Message& message, RecordType& record) {           \
      BENCH_FIELDS_##Shape_(GET_SCALAR, GET_ARRAY, GET_STRING) return true; \
    }                                                                       \
  };
BENCH_SHAPES(FIELDS)

template <typename RecordType>
class Codec {
 public:
  using Record = RecordType;

  Bytes encode(const Record& record) {
    Fields<Record>::set(message_, record);
    const size_t size = message_.ByteSizeLong();
    message_.SerializeWithCachedSizesToArray(bytes_.data());
    return {bytes_.data(), size};
  }

  bool decode(Bytes bytes, Record& record) {
    return message_.ParseFromArray(bytes.data(), static_cast<int>(bytes.size())) &&
           Fields<Record>::get(message_, record);
  }

 private:
  typename Fields<Record>::Message message_;
  std::array<uint8_t, 1024> bytes_{};
};

// Its JSON, beside ours, of objects that were decoded before.
template <typename RecordType>
void jsonCase(benchmark::State& state, Shape shape) {
  const Records<RecordType> records(shape);
  std::vector<typename Fields<RecordType>::Message> messages(records.size());
  for (uint32_t index = 0; index < records.size(); ++index) {
    Fields<RecordType>::set(messages[index], records.begin()[index]);
  }
  google::protobuf::util::JsonPrintOptions options;
  options.always_print_primitive_fields = true;
  double bytes = 0;
  timePasses(state, [&] {
    bytes = 0;
    for (const auto& message : messages) {
      std::string json;
      if (!google::protobuf::util::MessageToJsonString(message, &json, options).ok()) {
        failRoundTrip("protobuf", "a message has no JSON");
      }
      bytes += static_cast<double>(json.size());
    }
  });
  report(state, records.size(), bytes / records.size());
}

template <typename RecordType>
bool addJson() {
  const std::string prefix = std::string("inspect/") + schema<RecordType>.name + "/";
  add(prefix + "protobuf_json_full", jsonCase<RecordType>, Shape{.fill = Fill::Full});
  add(prefix + "protobuf_json_sparse", jsonCase<RecordType>, Shape{.fill = Fill::Sparse});
  return true;
}

#define ADD(Shape_, RecordType) &&addCodec<Codec<RecordType>>("protobuf") && addJson<RecordType>()
[[maybe_unused]] const bool added = true BENCH_SHAPES(ADD);

}  // namespace
}  // namespace bench::peer
