// Each service's registrations with the middleware, their order, and the effect of a refusal.

#include <gtest/gtest.h>

#include <map>
#include <set>

#include "mesh_l2vpn/messages.h"
#include "oracle/messages/description.hpp"
#include "support/bytes.hpp"

namespace {

using harness::recorder;
using harness::Recorder;
using harness::Trace;

struct Service {
  const char* name;
  uint32_t (*receiveInit)();
  uint32_t (*sendInit)();
  void (*clean)();
};

const std::vector<Service> services{
    {"l2vpn_cfg", &l2vpn_cfg_recv_init, &l2vpn_cfg_send_init, &l2vpn_cfg__send_resource_clean},
    {"l2vpn_stat", &l2vpn_stat_recv_init, &l2vpn_stat_send_init, &l2vpn_stat__send_resource_clean},
    {"l2vpn_sync", &l2vpn_sync_recv_init, &l2vpn_sync_send_init, &l2vpn_sync__send_resource_clean}};

struct Functions {
  const void* unpack;
  const void* release;
};

#define FUNCTIONS(X, identifier)                 \
  {#X,                                           \
   {reinterpret_cast<const void*>(&X##__unpack), \
    reinterpret_cast<const void*>(&X##_free__unpacked)}},

const std::map<std::string, Functions> functionsOf{L2VPN_MESSAGES(FUNCTIONS)};

class Registration : public testing::TestWithParam<Service> {
 protected:
  Registration() {
    harness::resetRecorder();
    for (const oracle::Description& message : oracle::descriptions()) {
      if (message.service == GetParam().name) {
        messages_.push_back(&message);
      }
    }
  }
  const std::vector<const oracle::Description*>& messages() const { return messages_; }

  // Expects the first `count` messages, registered in order from the recorder's `first` on.
  void expectRegistered(size_t first, size_t count) const {
    const std::vector<Recorder::Registration>& registered = recorder().registered;
    ASSERT_EQ(registered.size(), first + count);
    for (size_t index = 0; index < count; ++index) {
      const oracle::Description& message = *messages()[index];
      const Recorder::Registration& registration = registered[first + index];
      EXPECT_EQ(registration.id, message.id) << message.name;
      EXPECT_EQ(registration.unpack, functionsOf.at(message.name).unpack) << message.name;
      EXPECT_EQ(registration.release, functionsOf.at(message.name).release) << message.name;
    }
  }

 private:
  std::vector<const oracle::Description*> messages_;  // in registration order
};

TEST_P(Registration, FollowsTheMessagesOrder) {
  EXPECT_EQ(GetParam().receiveInit(), 0U);
  expectRegistered(0, messages().size());
  EXPECT_EQ(harness::takeTrace(), Trace());
}

TEST_P(Registration, StopsAtTheFirstRefusal) {
  for (size_t refused = 1; refused <= messages().size(); ++refused) {
    for (const uint32_t result : {1U, 0x80000000U, 0xFFFFFFFEU, 0xFFFFFFFFU}) {
      harness::resetRecorder();
      recorder().refusedRegistration = static_cast<int>(refused);
      recorder().middlewareResult = result;
      EXPECT_EQ(GetParam().receiveInit(), result);
      EXPECT_EQ(recorder().registrations, static_cast<int>(refused));
      expectRegistered(0, refused - 1);
      EXPECT_EQ(harness::takeTrace(), Trace());
    }
  }
}

TEST_P(Registration, CanBeRepeated) {
  EXPECT_EQ(GetParam().receiveInit(), 0U);
  EXPECT_EQ(GetParam().receiveInit(), 0U);
  expectRegistered(messages().size(), messages().size());
  // Also after a refusal.
  harness::resetRecorder();
  recorder().refusedRegistration = 1;
  recorder().middlewareResult = 5;
  EXPECT_EQ(GetParam().receiveInit(), 5U);
  recorder().refusedRegistration = 0;
  EXPECT_EQ(GetParam().receiveInit(), 0U);
  expectRegistered(0, messages().size());
}

TEST_P(Registration, OfASenderRegistersItsCleanup) {
  for (const uint32_t result : {0U, 1U, 0x80000000U, 0xFFFFFFFFU}) {
    harness::resetRecorder();
    recorder().middlewareResult = result;
    EXPECT_EQ(GetParam().sendInit(), result);
    ASSERT_EQ(recorder().cleanHooks.size(), 1U);
    EXPECT_EQ(recorder().cleanHooks[0], GetParam().clean);
    EXPECT_EQ(recorder().registrations, 0);
  }
}

TEST_P(Registration, CleanupDoesNothing) {
  GetParam().clean();
  GetParam().clean();
  EXPECT_EQ(harness::takeTrace(), Trace());
  EXPECT_EQ(recorder().registrations, 0);
}

INSTANTIATE_TEST_SUITE_P(Of, Registration, testing::ValuesIn(services),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(Registrations, CoverEveryMessageOnce) {
  harness::resetRecorder();
  std::set<uint32_t> ids;
  std::set<const void*> functions;
  for (const Service& service : services) {
    EXPECT_EQ(service.receiveInit(), 0U);
  }
  for (const Recorder::Registration& registration : recorder().registered) {
    ids.insert(registration.id);
    functions.insert(registration.unpack);
    functions.insert(registration.release);
  }
  const size_t messages = oracle::descriptions().size();
  EXPECT_EQ(recorder().registered.size(), messages);
  EXPECT_EQ(ids.size(), messages) << "every identifier is used once";
  EXPECT_EQ(functions.size(), 2 * messages) << "every function is registered once";
}

TEST(Registrations, OfSendersAreThreeCleanups) {
  harness::resetRecorder();
  for (const Service& service : services) {
    EXPECT_EQ(service.sendInit(), 0U);
  }
  const auto& hooks = recorder().cleanHooks;
  EXPECT_EQ(std::set(hooks.begin(), hooks.end()).size(), 3U);
}

// Calls them like the middleware, through one function type for all messages.
TEST(Registrations, LeadToFunctionsThatDecode) {
  harness::resetRecorder();
  ASSERT_EQ(l2vpn_stat_recv_init(), 0U);
  using Unpack = uint32_t (*)(const uint8_t*, uint32_t, void*);
  const auto unpack =
      reinterpret_cast<Unpack>(reinterpret_cast<uintptr_t>(recorder().registered.at(0).unpack));
  const harness::Buffer bytes = harness::Layout().u32(10).u16(6, 8, 4).u32(6, 0x11111111);
  l2vpn_stat_pw_stat record;
  EXPECT_EQ(unpack(bytes.data(), static_cast<uint32_t>(bytes.size()), &record), sizeof record);
  EXPECT_EQ(record.f0, 0x11111111U);
}

}  // namespace
