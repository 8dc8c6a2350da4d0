// MessagePack (the C library): fields as an array, into a buffer that is cleared and kept; unpacked
// into a zone that is cleared and kept.
#include <msgpack.h>

#include "bench/peers/peer.hpp"

namespace bench::peer {
namespace {

template <typename Record>
struct Fields;

inline bool getScalar(const msgpack_object& object, auto& value) {
  value = static_cast<std::remove_reference_t<decltype(value)>>(object.via.u64);
  return object.type == MSGPACK_OBJECT_POSITIVE_INTEGER;
}

inline void packBytes(msgpack_packer& packer, const uint8_t* bytes, size_t count) {
  msgpack_pack_bin(&packer, count);
  msgpack_pack_bin_body(&packer, bytes, count);
}

inline bool isBytes(const msgpack_object& object) {
  return object.type == MSGPACK_OBJECT_BIN;
}

#define COUNT_FIELD(...) +1
#define SET_SCALAR(n) packScalar(packer, record.f##n);
#define SET_ARRAY(n, count) packBytes(packer, record.f##n, count);
#define SET_STRING(n) packBytes(packer, record.f##n, record.f##n##_len);
#define GET_SCALAR(n) \
  if (!getScalar(fields[n], record.f##n)) return false;
#define GET_ARRAY(n, count)                                                 \
  if (!isBytes(fields[n]) || fields[n].via.bin.size != count) return false; \
  std::memcpy(record.f##n, fields[n].via.bin.ptr, count);
#define GET_STRING(n)                         \
  if (!isBytes(fields[n])) return false;      \
  record.f##n##_len = fields[n].via.bin.size; \
  record.f##n = duplicate(fields[n].via.bin.ptr, fields[n].via.bin.size);
#define FIELDS(Shape_, RecordType)                                          \
  template <>                                                               \
  struct Fields<RecordType> {                                               \
    static constexpr uint32_t count =                                       \
        0 BENCH_FIELDS_##Shape_(COUNT_FIELD, COUNT_FIELD, COUNT_FIELD);     \
    static void set(msgpack_packer& packer, const RecordType& record) {     \
      BENCH_FIELDS_##Shape_(SET_SCALAR, SET_ARRAY, SET_STRING)              \
    }                                                                       \
    static bool get(const msgpack_object* fields, RecordType& record) {     \
      BENCH_FIELDS_##Shape_(GET_SCALAR, GET_ARRAY, GET_STRING) return true; \
    }                                                                       \
  };

// The packer's function for a field's width.
inline void packScalar(msgpack_packer& packer, uint8_t value) {
  msgpack_pack_uint8(&packer, value);
}
inline void packScalar(msgpack_packer& packer, uint16_t value) {
  msgpack_pack_uint16(&packer, value);
}
inline void packScalar(msgpack_packer& packer, uint32_t value) {
  msgpack_pack_uint32(&packer, value);
}
inline void packScalar(msgpack_packer& packer, uint64_t value) {
  msgpack_pack_uint64(&packer, value);
}

BENCH_SHAPES(FIELDS)

template <typename RecordType>
class Codec {
 public:
  using Record = RecordType;

  Codec() {
    msgpack_sbuffer_init(&buffer_);
    msgpack_zone_init(&zone_, MSGPACK_ZONE_CHUNK_SIZE);
  }
  ~Codec() {
    msgpack_zone_destroy(&zone_);
    msgpack_sbuffer_destroy(&buffer_);
  }
  Codec(const Codec&) = delete;
  Codec& operator=(const Codec&) = delete;

  Bytes encode(const Record& record) {
    msgpack_sbuffer_clear(&buffer_);
    msgpack_packer packer;
    msgpack_packer_init(&packer, &buffer_, msgpack_sbuffer_write);
    msgpack_pack_array(&packer, Fields<Record>::count);
    Fields<Record>::set(packer, record);
    return {reinterpret_cast<const uint8_t*>(buffer_.data), buffer_.size};
  }

  bool decode(Bytes bytes, Record& record) {
    msgpack_zone_clear(&zone_);
    msgpack_object root;
    const msgpack_unpack_return result = msgpack_unpack(reinterpret_cast<const char*>(bytes.data()),
                                                        bytes.size(), nullptr, &zone_, &root);
    return result == MSGPACK_UNPACK_SUCCESS && root.type == MSGPACK_OBJECT_ARRAY &&
           root.via.array.size == Fields<Record>::count &&
           Fields<Record>::get(root.via.array.ptr, record);
  }

 private:
  msgpack_sbuffer buffer_;
  msgpack_zone zone_;
};

#define ADD(Shape_, RecordType) &&addCodec<Codec<RecordType>>("msgpack")
[[maybe_unused]] const bool added = true BENCH_SHAPES(ADD);

}  // namespace
}  // namespace bench::peer
