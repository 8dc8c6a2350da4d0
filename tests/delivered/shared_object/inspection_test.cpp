// What libmesh_l2vpn.so exports, imports and needs.

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "mesh_l2vpn/messages.h"

namespace {

constexpr const char* library = MESH_L2VPN_LIBRARY;

std::vector<std::string> outputOf(const std::string& command) {
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), &pclose);
  std::vector<std::string> lines;
  std::array<char, 4096> line{};
  while (pipe != nullptr && std::fgets(line.data(), line.size(), pipe.get()) != nullptr) {
    lines.emplace_back(line.data());
    lines.back().erase(lines.back().find_last_not_of('\n') + 1);
  }
  return lines;
}

// The dynamic symbols that `nm -D` lists with these flags: name without version, to type letter.
std::map<std::string, char> symbols(const std::string& flags) {
  std::map<std::string, char> found;
  for (const std::string& line : outputOf("nm -D " + flags + " " + library)) {
    std::istringstream words(line);
    std::vector<std::string> parts{std::istream_iterator<std::string>(words), {}};
    const std::string name = parts.back().substr(0, parts.back().find('@'));
    found[name] = parts[parts.size() - 2][0];
  }
  return found;
}

std::set<std::string> namesOfFunctions() {
  std::set<std::string> names;
  for (const char* service : {"l2vpn_cfg", "l2vpn_stat", "l2vpn_sync"}) {
    for (const char* function : {"_recv_init", "_send_init", "__send_resource_clean"}) {
      names.insert(std::string(service) + function);
    }
  }
#define ADD(X, identifier)                                                               \
  for (const char* operation : {"__unpack", "_free__unpacked", "__pack", "__sendsingle", \
                                "__sendbatch", "__sendmsg", "__sendtomsg"}) {            \
    names.insert(std::string(#X) + operation);                                           \
  }
  L2VPN_MESSAGES(ADD)
  return names;
}

TEST(SharedObject, ExportsExactlyItsFunctions) {
  const std::set<std::string> expected = namesOfFunctions();
#define ONE_MORE(X, identifier) +1
  ASSERT_EQ(expected.size(), 7 * (0 L2VPN_MESSAGES(ONE_MORE)) + 3 * 3);
  std::set<std::string> exported;
  for (const auto& [name, type] : symbols("--defined-only")) {
    if (type == 'A') {
      EXPECT_EQ(name, "MESH_L2VPN_1") << "the version's own symbol";
      continue;
    }
    EXPECT_EQ(type, 'T') << name;
    exported.insert(name);
  }
  EXPECT_EQ(exported, expected);
}

TEST(SharedObject, ImportsOnlyMiddlewareBoundedMemoryAndLibc) {
  if (MESH_L2VPN_INSTRUMENTED) {
    GTEST_SKIP() << "an instrumented build imports its sanitizer";
  }
  const std::set<std::string> strong{"MESH_SendMsg",
                                     "MESH_SendToMsg",
                                     "MESH_RegIDLFuncHook",
                                     "MESH_RegIDLResorceCleanFuncHook",
                                     "dlsym",
                                     "malloc",
                                     "free",
                                     "memcpy",
                                     "memset",
                                     "pthread_mutex_lock",
                                     "pthread_mutex_unlock"};
  const std::set<std::string> weak{"memcpy_s",
                                   "memset_s",
                                   "memcpy_sOptAsm",
                                   "__cxa_finalize",
                                   "__gmon_start__",
                                   "_ITM_deregisterTMCloneTable",
                                   "_ITM_registerTMCloneTable"};
  for (const auto& [name, type] : symbols("--undefined-only")) {
    EXPECT_TRUE((type == 'U' && strong.contains(name)) || (type == 'w' && weak.contains(name)))
        << type << " " << name;
  }
  for (const char* name : {"memcpy_s", "memset_s", "memcpy_sOptAsm"}) {
    EXPECT_TRUE(symbols("--undefined-only").contains(name)) << name;
  }
}

TEST(SharedObject, NeedsTheCLibraryAlone) {
  if (MESH_L2VPN_INSTRUMENTED) {
    GTEST_SKIP() << "an instrumented build needs its sanitizer's libraries";
  }
  std::vector<std::string> needed;
  for (const std::string& line : outputOf(std::string("readelf -dW ") + library)) {
    if (line.find("(NEEDED)") != std::string::npos) {
      needed.push_back(line.substr(line.find('[')));
    }
  }
  EXPECT_EQ(needed, std::vector<std::string>{"[libc.so.6]"});
}

TEST(SharedObject, BindsLazilyAndIsNamedAfterItsAbi) {
  std::string dynamic;
  for (const std::string& line : outputOf(std::string("readelf -dW ") + library)) {
    dynamic += line + "\n";
  }
  EXPECT_EQ(dynamic.find("BIND_NOW"), std::string::npos) << dynamic;
  EXPECT_EQ(dynamic.find("TEXTREL"), std::string::npos) << dynamic;
  EXPECT_NE(dynamic.find("soname: [libmesh_l2vpn.so.1]"), std::string::npos) << dynamic;
}

TEST(SharedObject, RunsSixConstructors) {
  if (MESH_L2VPN_INSTRUMENTED) {
    GTEST_SKIP() << "an instrumented build registers its globals";
  }
  // Besides ours there is the C runtime's own frame_dummy.
  constexpr int pointers = 6 + 1;
  std::string size;
  for (const std::string& line : outputOf(std::string("readelf -dW ") + library)) {
    if (line.find("(INIT_ARRAYSZ)") != std::string::npos) {
      size = line.substr(line.find(')') + 1);
    }
  }
  EXPECT_EQ(std::stoi(size), pointers * static_cast<int>(sizeof(void*)));
}

class Loaded : public testing::Test {
 protected:
  void SetUp() override {
    handle_ = dlopen(library, RTLD_LAZY | RTLD_LOCAL);
    ASSERT_NE(handle_, nullptr) << dlerror();
  }
  void TearDown() override {
    if (handle_ != nullptr) {
      dlclose(handle_);
    }
  }
  template <typename Function>
  Function* find(const std::string& name) {
    return reinterpret_cast<Function*>(dlsym(handle_, name.c_str()));
  }

  void* handle_ = nullptr;
};

TEST_F(Loaded, EveryFunctionHasAnAddressOfItsOwn) {
  std::map<void*, std::string> byAddress;
  for (const std::string& name : namesOfFunctions()) {
    void* const address = dlsym(handle_, name.c_str());
    ASSERT_NE(address, nullptr) << name;
    const auto [other, isNew] = byAddress.emplace(address, name);
    EXPECT_TRUE(isNew) << name << " is where " << other->second << " is";
  }
}

TEST_F(Loaded, WorksWithoutMiddlewareAndHost) {
  const auto pack = find<decltype(l2vpn_sync_vpls_ac__pack)>("l2vpn_sync_vpls_ac__pack");
  const auto unpack = find<decltype(l2vpn_sync_vpls_ac__unpack)>("l2vpn_sync_vpls_ac__unpack");
  ASSERT_EQ(dlsym(RTLD_DEFAULT, "MESH_SendMsg"), nullptr) << "this process must have none";
  l2vpn_sync_vpls_ac record{};
  record.f0 = 0x01020304;
  record.f9[11] = 0xEE;
  std::array<uint8_t, 200> buffer{};
  auto length = static_cast<uint32_t>(buffer.size());
  ASSERT_EQ(pack(&record, buffer.data(), &length), 0U);
  EXPECT_EQ(length, 76U);
  l2vpn_sync_vpls_ac received{};
  EXPECT_EQ(unpack(buffer.data(), length, &received), sizeof received);
  EXPECT_EQ(received.f0, 0x01020304U);
  EXPECT_EQ(received.f9[11], 0xEE);
}

TEST_F(Loaded, ReleasesWhatUnpackingAllocated) {
  const auto pack = find<decltype(dbginfo_key_l2vpn__pack)>("dbginfo_key_l2vpn__pack");
  const auto unpack = find<decltype(dbginfo_key_l2vpn__unpack)>("dbginfo_key_l2vpn__unpack");
  const auto release =
      find<decltype(dbginfo_key_l2vpn_free__unpacked)>("dbginfo_key_l2vpn_free__unpacked");
  std::array<uint8_t, 3> text{1, 2, 3};
  const dbginfo_key_l2vpn record{9, 8, 7, 3, text.data()};
  std::array<uint8_t, 39> buffer{};
  auto length = static_cast<uint32_t>(buffer.size());
  ASSERT_EQ(pack(&record, buffer.data(), &length), 0U);
  dbginfo_key_l2vpn received{};
  unpack(buffer.data(), length, &received);
  ASSERT_EQ(received.f3_len, 3U);
  EXPECT_TRUE(std::equal(text.begin(), text.end(), received.f3));
  release(&received);
  EXPECT_EQ(received.f3, nullptr);
}

TEST(SharedObject, CanBeUnloaded) {
  if (MESH_L2VPN_INSTRUMENTED) {
    GTEST_SKIP() << "sanitizers keep libraries";
  }
  void* const handle = dlopen(library, RTLD_LAZY | RTLD_LOCAL);
  ASSERT_NE(handle, nullptr) << dlerror();
  ASSERT_EQ(dlclose(handle), 0);
  EXPECT_EQ(dlopen(library, RTLD_LAZY | RTLD_NOLOAD), nullptr);
}

}  // namespace
