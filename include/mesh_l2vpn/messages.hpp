/** @file
 * Every message of the library for C++17: the operations of mesh_l2vpn/operations.h, chosen by the
 * type of the record.
 *
 * 1. Messages. Each record type belongs to one message, and each message has a record type of its
 *    own. So `message<T>` is the message of record T, and no function needs a message's name.
 * 2. Cost. Everything is inline: the compiler makes the same calls of the exported functions as for
 *    C. `pack` to a vector allocates that vector; nothing else allocates.
 * 3. Results. std::error_code with the value that the operation returned: 0, errc::failed for the
 *    library's own failure, or the middleware's result. The category is mesh_l2vpn::category().
 * 4. Exceptions. None are thrown, except by the vector of `pack` and by handlers of the caller. The
 *    header compiles without exceptions and without RTTI.
 * 5. Threads, byte order, host services: as mesh_l2vpn/operations.h says.
 */
#ifndef MESH_L2VPN_MESSAGES_HPP
#define MESH_L2VPN_MESSAGES_HPP

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>
#include <utility>
#include <vector>

#include "mesh_l2vpn/messages.h"

/** The C++ interface to the messages. */
namespace mesh_l2vpn {

/** The message of a record type:
 *
 *     using record = T;
 *     name, id                        the message's name (a string_view) and identifier
 *     unpack, free_unpacked, pack,    the seven operations, as constants: pointers to the
 *     send_single, send_batch,        exported functions
 *     send_msg, send_to_msg
 *     may_own_memory                  false: free_unpacked does nothing, nobody needs to call it
 *
 * Other types have no message: message<int> is incomplete. */
template <typename T>
struct message;

/** @cond */
// Records of l2vpn_cfg can own memory, records of the other services do not.
#define MESH_L2VPN_OWNING_MESSAGE(X, identifier) MESH_L2VPN_MESSAGE(X, identifier, true)
#define MESH_L2VPN_PLAIN_MESSAGE(X, identifier) MESH_L2VPN_MESSAGE(X, identifier, false)
#define MESH_L2VPN_MESSAGE(X, identifier, owning)               \
  template <>                                                   \
  struct message<X> {                                           \
    using record = X;                                           \
    static constexpr std::string_view name = #X;                \
    static constexpr uint32_t id = identifier;                  \
    static constexpr bool may_own_memory = owning;              \
    static constexpr auto* unpack = &X##__unpack;               \
    static constexpr auto* free_unpacked = &X##_free__unpacked; \
    static constexpr auto* pack = &X##__pack;                   \
    static constexpr auto* send_single = &X##__sendsingle;      \
    static constexpr auto* send_batch = &X##__sendbatch;        \
    static constexpr auto* send_msg = &X##__sendmsg;            \
    static constexpr auto* send_to_msg = &X##__sendtomsg;       \
  };
L2VPN_CFG_MESSAGES(MESH_L2VPN_OWNING_MESSAGE)
L2VPN_STAT_MESSAGES(MESH_L2VPN_PLAIN_MESSAGE)
L2VPN_SYNC_MESSAGES(MESH_L2VPN_PLAIN_MESSAGE)
#undef MESH_L2VPN_OWNING_MESSAGE
#undef MESH_L2VPN_PLAIN_MESSAGE
#undef MESH_L2VPN_MESSAGE
/** @endcond */

/** Whether T is the record of a message. */
template <typename T, typename = void>
inline constexpr bool is_record = false;
/** @cond */
template <typename T>
inline constexpr bool is_record<T, std::void_t<decltype(message<T>::id)>> = true;
/** @endcond */

/** Calls `visitor(message<T>{})` for every message, service by service, in registration order. */
template <typename Visitor>
constexpr void for_each_message(Visitor&& visitor) {
#define MESH_L2VPN_VISIT(X, identifier) visitor(message<X>{});
  L2VPN_MESSAGES(MESH_L2VPN_VISIT)
#undef MESH_L2VPN_VISIT
}

/** The library's own failure, where an operation reports it. */
enum class errc {
  failed = -1 /**< 0xFFFFFFFF: the record cannot be encoded, or memory or room was refused */
};

/** @cond */
namespace detail {

// Visible everywhere, so that all shared objects of a process have one category.
class MESH_L2VPN_API message_category final : public std::error_category {
 public:
  [[nodiscard]] const char* name() const noexcept override { return "mesh_l2vpn"; }
  [[nodiscard]] std::string message(int value) const override {
    if (value == 0) {
      return "success";
    }
    if (value == static_cast<int>(errc::failed)) {
      return "the record cannot be encoded, or memory or room was refused";
    }
    return "result " + std::to_string(static_cast<unsigned>(value)) + " of the middleware";
  }
};

// Never destroyed: messages may be sent while the process exits. Not a static of a function either:
// that would test at each result whether it exists.
union MESH_L2VPN_API category_holder {
  message_category category;
  constexpr category_holder() : category() {}
  ~category_holder() {}
};
MESH_L2VPN_API inline const category_holder the_category;

}  // namespace detail
/** @endcond */

/** The category of the results of the operations and of the middleware. */
inline const std::error_category& category() noexcept {
  return detail::the_category.category;
}

/** What an operation, an S_recv_init or the middleware returned, as an error_code. */
inline std::error_code result(uint32_t value) noexcept {
  return {static_cast<int>(value), category()};
}

inline std::error_code make_error_code(errc value) noexcept {
  return {static_cast<int>(value), category()};
}

/** Items that someone else owns, as std::span. Containers with data() and size(), std::span and
 * arrays convert to it. */
template <typename T>
class span {
 public:
  constexpr span() noexcept = default;
  constexpr span(T* data, size_t size) noexcept : data_(data), size_(size) {}
  template <typename Items, typename Data = decltype(std::data(std::declval<Items&>())),
            typename =
                std::enable_if_t<std::is_convertible_v<std::remove_pointer_t<Data> (*)[], T (*)[]>>>
  constexpr span(Items&& items) noexcept : data_(std::data(items)), size_(std::size(items)) {}

  [[nodiscard]] constexpr T* data() const noexcept { return data_; }
  [[nodiscard]] constexpr size_t size() const noexcept { return size_; }
  [[nodiscard]] constexpr bool empty() const noexcept { return size_ == 0; }
  [[nodiscard]] constexpr T* begin() const noexcept { return data_; }
  [[nodiscard]] constexpr T* end() const noexcept { return data_ + size_; }

 private:
  T* data_ = nullptr;
  size_t size_ = 0;
};

/** The bytes of a message. */
using bytes = span<const uint8_t>;

/** @cond */
namespace detail {

// Lengths of the operations have 32 bits. More becomes the largest: __unpack refuses it, and __pack
// fills less.
constexpr uint32_t length_of(size_t size) noexcept {
  return static_cast<uint32_t>(std::min<size_t>(size, UINT32_MAX));
}

}  // namespace detail
/** @endcond */

/** A record that releases what unpacking allocated for it. It is moved, not copied. After a move,
 * and by default, it is all zeros and owns nothing. */
template <typename T>
class unpacked {
 public:
  unpacked() noexcept { clear(); }
  unpacked(unpacked&& other) noexcept : record_(other.release()) {}
  unpacked& operator=(unpacked other) noexcept {
    std::swap(record_, other.record_);
    return *this;
  }
  ~unpacked() {
    if constexpr (message<T>::may_own_memory) {
      message<T>::free_unpacked(&record_);
    }
  }

  T& operator*() noexcept { return record_; }
  const T& operator*() const noexcept { return record_; }
  T* operator->() noexcept { return &record_; }
  const T* operator->() const noexcept { return &record_; }

  /** Hands out the record with its blocks; the caller releases them with message<T>::free_unpacked.
   */
  [[nodiscard]] T release() noexcept {
    const T record = record_;
    clear();
    return record;
  }

 private:
  void clear() noexcept { std::memset(&record_, 0, sizeof record_); }

  T record_;
};

/** The record in the bytes of a message. It does not say whether the library accepted them, as
 * __unpack does not: a rejection leaves zeros, or fields before the fault. checked_unpack of
 * mesh_l2vpn/inspect.hpp says it, and why. */
template <typename T>
[[nodiscard]] unpacked<T> unpack(bytes data) noexcept {
  unpacked<T> record;
  message<T>::unpack(data.data(), detail::length_of(data.size()), &*record);
  return record;
}

/** Packs into `buffer`, and cuts it to the message's exact size. A failure leaves it as it was. Of
 * a buffer above 4 GiB only the first 4 GiB count. */
template <typename T>
[[nodiscard]] std::error_code pack(const T& record, span<uint8_t>& buffer) noexcept {
  uint32_t length = detail::length_of(buffer.size());
  const uint32_t packed = message<T>::pack(&record, buffer.data(), &length);
  buffer = {buffer.data(), length};  // a failure left the length
  return result(packed);
}

/** The message of a record, of exactly its size. Empty for a record that cannot be encoded; no
 * message is empty. The library logs a message of more than sizeof(T) + 1024 bytes as a request for
 * its size. */
template <typename T>
[[nodiscard]] std::vector<uint8_t> pack(const T& record) {
  uint8_t room[sizeof(T) + 1024];
  if constexpr (message<T>::may_own_memory) {
    std::memset(room, 0, sizeof room);  // the end of a message can be left unwritten
  }
  span<uint8_t> packed(room);
  if (!pack(record, packed)) {
    return {packed.begin(), packed.end()};
  }
  uint32_t length = UINT32_MAX;
  if (message<T>::pack(&record, nullptr, &length) != 0) {
    return {};
  }
  std::vector<uint8_t> large(length);
  return message<T>::pack(&record, large.data(), &length) == 0 ? large : std::vector<uint8_t>();
}

/** Sends one record in the message's own arrangement. `extra` travels with it if it is not 0. */
template <typename T>
[[nodiscard]] std::enable_if_t<is_record<T>, std::error_code> send(uint32_t destination,
                                                                   const T& record,
                                                                   uint64_t extra = 0) noexcept {
  return result(message<T>::send_single(destination, &record, 0, extra));
}

/** Sends contiguous records in one call of the middleware: all or none. `records` is a span, a
 * vector, an array or anything else with std::data and std::size. Sending none fails. */
template <typename Records>
[[nodiscard]] std::enable_if_t<!is_record<Records>, std::error_code> send(
    uint32_t destination, const Records& records, uint64_t extra = 0) noexcept {
  using T = std::remove_cv_t<std::remove_pointer_t<decltype(std::data(records))>>;
  const size_t count = std::size(records);
  if (count > UINT32_MAX) {
    return errc::failed;
  }
  return result(message<T>::send_to_msg(destination, std::data(records),
                                        static_cast<uint32_t>(count), extra));
}

}  // namespace mesh_l2vpn

/** @cond */
template <>
struct std::is_error_code_enum<mesh_l2vpn::errc> : std::true_type {};
/** @endcond */

/* dispatch and handlers, for the receiving side. */
#include "mesh_l2vpn/handlers.hpp"

#endif
