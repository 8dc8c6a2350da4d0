/** @file
 * What a receiver does with each message. Included by mesh_l2vpn/messages.hpp.
 */
#ifndef MESH_L2VPN_HANDLERS_HPP
#define MESH_L2VPN_HANDLERS_HPP

#include "mesh_l2vpn/messages.hpp"

namespace mesh_l2vpn {

/** @cond */
namespace detail {

template <typename... F>
struct overloads : F... {
  explicit overloads(F... functions) : F(std::move(functions))... {}
  using F::operator()...;
};
template <>
struct overloads<> {};

template <typename F, typename... With>
constexpr bool takes_a_record() {
  bool takes = false;
  for_each_message([&takes](auto message) {
    using T = typename decltype(message)::record;
    takes = takes || std::is_invocable_v<F&, const T&, const With&...> ||
            std::is_invocable_v<F&, const T&>;
  });
  return takes;
}

// Where two functions take the record equally well, the call does not compile.
template <typename T, typename... F, typename... With>
bool call_for(overloads<F...>& functions, const void* record, const With&... with) {
  constexpr bool takes_all = (std::is_invocable_v<F&, const T&, const With&...> || ...);
  constexpr bool takes_record = (std::is_invocable_v<F&, const T&> || ...);
  static_assert(sizeof...(With) == 0 || !takes_all || !takes_record,
                "functions for one record that take different arguments");
  if constexpr (takes_all) {
    functions(*static_cast<const T*>(record), with...);
  } else if constexpr (takes_record) {
    functions(*static_cast<const T*>(record));
  }
  return takes_all || takes_record;
}

template <typename... F, typename... With>
bool call(overloads<F...>& functions, uint32_t id, const void* record, const With&... with) {
  static_assert((takes_a_record<F, With...>() && ...),
                "a function that takes no message's record, by const reference or by value");
  switch (id) {
#define MESH_L2VPN_CASE(X, identifier) \
  case identifier:                     \
    return call_for<X>(functions, record, with...);
    L2VPN_MESSAGES(MESH_L2VPN_CASE)
#undef MESH_L2VPN_CASE
    default:
      return false;
  }
}

}  // namespace detail
/** @endcond */

/** Calls the function that takes the record of message `id`, chosen as overloads are, with
 * *record. Returns whether there is one. Functions are lambdas or function objects; a generic
 * lambda takes what no other function takes. */
template <typename... F>
bool dispatch(uint32_t id, const void* record, F... functions) {
  detail::overloads<F...> all(std::move(functions)...);
  return detail::call(all, id, record);
}

/** What a receiver does with each message: one function for each record type.
 *
 *     mesh_l2vpn::handlers watch(
 *         [](const l2vpn_sync_vpls_ac_update& update, const mesh_received& received) { ... },
 *         [](const l2vpn_stat_pw_stat& statistics) { ... });
 *     mesh_node_receive(node, 1000, watch.deliver<mesh_received>, &watch);
 *
 * A function takes the record, or the record and what came with it; functions that fit the same
 * record take the same. One thread at a time calls the handlers. */
template <typename... F>
class handlers {
 public:
  explicit handlers(F... functions) : functions_(std::move(functions)...) {}

  /** Calls the function for the record of message `id`, with `with` where it takes that. Without
   * such a function it counts the record as unhandled, and returns false. */
  template <typename... With>
  bool operator()(uint32_t id, const void* record, const With&... with) {
    const bool handled = detail::call(functions_, id, record, with...);
    unhandled_ += handled ? 0 : 1;
    return handled;
  }

  /** Records without a function, until now. */
  [[nodiscard]] uint64_t unhandled() const noexcept { return unhandled_; }

  /** For a middleware that calls a C function for each record it received: `user` is the handlers,
   * `Received` the middleware's struct with members msg_id and record. Functions get it as `with`.
   */
  template <typename Received>
  static void deliver(const Received* received, void* user) {
    (*static_cast<handlers*>(user))(received->msg_id, received->record, *received);
  }

 private:
  detail::overloads<F...> functions_;
  uint64_t unhandled_ = 0;
};

}  // namespace mesh_l2vpn

#endif
