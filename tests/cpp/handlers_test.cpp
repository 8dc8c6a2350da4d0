// What a receiver does with each message: mesh_l2vpn/handlers.hpp.
#include <gtest/gtest.h>

#include "mesh_l2vpn/messages.hpp"

namespace {

using mesh_l2vpn::dispatch;
using mesh_l2vpn::handlers;
using mesh_l2vpn::message;

// What a middleware hands to its C callback.
struct Received {
  uint32_t source;
  uint32_t msg_id;
  void* record;
};

// A function for each record.
struct AllFunctions {
  const void** seen;
  std::string_view* name;
#define MESH_L2VPN_TAKE(X, identifier)    \
  void operator()(const X& given) const { \
    *seen = &given;                       \
    *name = #X;                           \
  }
  L2VPN_MESSAGES(MESH_L2VPN_TAKE)
#undef MESH_L2VPN_TAKE
};

TEST(Dispatch, CallsTheFunctionOfEachRecord) {
  const void* seen = nullptr;
  std::string_view name;
  const AllFunctions see{&seen, &name};
  mesh_l2vpn::for_each_message([&](auto of) {
    const typename decltype(of)::record record{};
    EXPECT_TRUE(dispatch(of.id, &record, see)) << of.name;
    EXPECT_EQ(seen, &record) << of.name;
    EXPECT_EQ(name, of.name);
    seen = nullptr;
    EXPECT_FALSE(dispatch(of.id + 1, &record, see)) << of.name;
    EXPECT_EQ(seen, nullptr) << of.name;
  });
}

TEST(Dispatch, PrefersTheExactFunctionToAGenericOne) {
  std::string seen;
  const auto see = [&seen](uint32_t id, const void* record) {
    return dispatch(
        id, record, [&seen](const l2vpn_sync_stp& stp) { seen = std::to_string(stp.f3); },
        [&seen](const auto& other) { seen = message<std::decay_t<decltype(other)>>::name; });
  };
  const l2vpn_sync_stp stp{1, 2, 3, 4};
  EXPECT_TRUE(see(l2vpn_sync_stp__msg_id, &stp));
  EXPECT_EQ(seen, "4");
  const l2vpn_stat_pw_stat statistics{};
  EXPECT_TRUE(see(l2vpn_stat_pw_stat__msg_id, &statistics));
  EXPECT_EQ(seen, "l2vpn_stat_pw_stat");
  EXPECT_FALSE(see(0, &stp)) << "no message";
}

TEST(Dispatch, GivesCopiesToFunctionsThatTakeValues) {
  const l2vpn_sync_stp stp{1, 2, 3, 4};
  uint32_t seen = 0;
  EXPECT_TRUE(dispatch(l2vpn_sync_stp__msg_id, &stp, [&seen](l2vpn_sync_stp copy) {
    copy.f3 += 1;
    seen = copy.f3;
  }));
  EXPECT_EQ(seen, 5U);
  EXPECT_EQ(stp.f3, 4U);
}

TEST(Handlers, CountWhatTheyDoNotHandle) {
  int calls = 0;
  handlers watch([&calls](const l2vpn_sync_stp&) { ++calls; },
                 [&calls](const l2vpn_stat_pw_stat&) { calls += 10; });
  const l2vpn_sync_stp stp{};
  const l2vpn_stat_pw_stat statistics{};
  const l2vpn_sync_extnhp other{};
  EXPECT_TRUE(watch(l2vpn_sync_stp__msg_id, &stp));
  EXPECT_TRUE(watch(l2vpn_stat_pw_stat__msg_id, &statistics));
  EXPECT_EQ(watch.unhandled(), 0U);
  EXPECT_FALSE(watch(l2vpn_sync_extnhp__msg_id, &other));
  EXPECT_FALSE(watch(7, &other));
  EXPECT_EQ(watch.unhandled(), 2U);
  EXPECT_EQ(calls, 11);
}

TEST(Handlers, GiveTheRestToAGenericFunction) {
  uint32_t exact = 0;
  uint32_t rest = 0;
  handlers watch([&exact](const l2vpn_sync_stp&, uint32_t source) { exact = source; },
                 [&rest](const auto&, uint32_t source) { rest += source; });
  const l2vpn_sync_stp stp{};
  const l2vpn_sync_extnhp other{};
  EXPECT_TRUE(watch(l2vpn_sync_stp__msg_id, &stp, 5U));
  EXPECT_TRUE(watch(l2vpn_sync_extnhp__msg_id, &other, 6U));
  EXPECT_EQ(exact, 5U);
  EXPECT_EQ(rest, 6U);
  EXPECT_EQ(watch.unhandled(), 0U);
}

TEST(Handlers, WithoutFunctionsCountEverything) {
  handlers none;
  const l2vpn_sync_stp stp{};
  EXPECT_FALSE(none(l2vpn_sync_stp__msg_id, &stp));
  EXPECT_EQ(none.unhandled(), 1U);
}

TEST(Handlers, KeepTheStateOfTheirFunctions) {
  uint32_t last = 0;
  handlers watch([count = 0U, &last](const l2vpn_sync_stp&) mutable { last = ++count; });
  const l2vpn_sync_stp stp{};
  watch(l2vpn_sync_stp__msg_id, &stp);
  watch(l2vpn_sync_stp__msg_id, &stp);
  EXPECT_EQ(last, 2U);
}

TEST(Handlers, AreTheMiddlewaresCallback) {
  uint32_t source = 0;
  uint32_t value = 0;
  handlers watch(
      [&source](const l2vpn_sync_stp&, const Received& received) { source = received.source; },
      [&value](const l2vpn_sync_extnhp& extnhp) { value = extnhp.f5; });
  void (*const callback)(const Received*, void*) = watch.deliver<Received>;
  l2vpn_sync_stp stp{};
  l2vpn_sync_extnhp extnhp{};
  extnhp.f5 = 6;
  const Received first{3, l2vpn_sync_stp__msg_id, &stp};
  const Received second{3, l2vpn_sync_extnhp__msg_id, &extnhp};
  const Received third{3, 0, nullptr};
  callback(&first, &watch);
  callback(&second, &watch);
  callback(&third, &watch);
  EXPECT_EQ(source, 3U);
  EXPECT_EQ(value, 6U);
  EXPECT_EQ(watch.unhandled(), 1U);
}

}  // namespace
