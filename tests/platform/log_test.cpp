// The host's log writer.
#include <gtest/gtest.h>
#include <regex.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <string>
#include <thread>
#include <vector>

#include "ddm/osal.h"
#include "ddm/osal_workstation.h"
#include "support/child_process.hpp"
#include "support/log_lines.hpp"

namespace platform_test {
namespace {

const char* const env[] = {"FRAMEWORK", "module"};

bool endsWith(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

// Whether the text matches the extended regular expression.
bool matches(const std::string& text, const char* expression) {
  regex_t compiled;
  EXPECT_EQ(regcomp(&compiled, expression, REG_EXTENDED | REG_NOSUB), 0);
  const bool found = regexec(&compiled, text.c_str(), 0, nullptr, 0) == 0;
  regfree(&compiled);
  return found;
}

TEST(Log, WritesOneLine) {
  const auto lines = logged([] {
    DDM_OsalLogWrite(env, 2, 22, "", 123, "dbg_unpack", "[TEST]:offset(%u) of %s", 7u, "buffer");
  });
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_TRUE(matches(lines[0],
                      "^[0-9]{4}(-[0-9]{2}){2} ([0-9]{2}:){2}[0-9]{2}\\.[0-9]{3} FRAMEWORK level 2 "
                      "code 22 dbg_unpack:123: \\[TEST\\]:offset\\(7\\) of buffer$"))
      << lines[0];
}

std::string localTime() {
  // Not std::time(): its clock may be some milliseconds late.
  const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  char text[32];
  text[std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", std::localtime(&now))] = '\0';
  return text;
}

TEST(Log, HasTheLocalTime) {
  setenv("TZ", "HERE-5:30", 1);
  tzset();
  const std::string before = localTime();
  const auto lines = logged([] { DDM_OsalLogWrite(env, 1, 2, "", 3, "f", "text"); });
  const std::string after = localTime();
  unsetenv("TZ");
  tzset();
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_GE(lines[0].substr(0, before.size()), before);
  EXPECT_LE(lines[0].substr(0, after.size()), after);
}

TEST(Log, IncludesTheFile) {
  const auto lines = logged([] { DDM_OsalLogWrite(env, 1, 2, "a.c", 3, "f", "text"); });
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_TRUE(endsWith(lines[0], "a.c f:3: text")) << lines[0];
}

TEST(Log, AcceptsNullTexts) {
  const char* const nameless[] = {nullptr};
  const auto lines = logged([&] {
    DDM_OsalLogWrite(nullptr, 1, 2, nullptr, 3, nullptr, "a");
    DDM_OsalLogWrite(nameless, 1, 2, nullptr, 3, nullptr, nullptr);
  });
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_TRUE(endsWith(lines[0], " - level 1 code 2 :3: a")) << lines[0];
}

TEST(Log, CutsALongTextToOneLine) {
  const std::string text = "a\nb\tc" + std::string(5000, 'x');
  const auto lines = logged([&] { DDM_OsalLogWrite(env, 1, 2, "", 3, "f", "%s", text.c_str()); });
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_NE(lines[0].find("a b cxxx"), std::string::npos);
  EXPECT_EQ(lines[0].size(), 1023u) << "and the end of the line";
}

TEST(Log, KeepsErrno) {
  static_cast<void>(logged([] {
    errno = 77;
    DDM_OsalLogWrite(env, 1, 2, "", 3, "f", "a");
    EXPECT_EQ(errno, 77);
  }));
}

TEST(Log, CountsLinesAboveTheLimit) {
  const auto lines = logged([] {
    ddm_osal_log_limit(0, 2);
    for (int i = 0; i < 10; ++i) {
      DDM_OsalLogWrite(env, 1, 2, "", 3, "f", "line %d", i);
    }
    ddm_osal_log_limit(0, 2);
    DDM_OsalLogWrite(env, 1, 2, "", 3, "f", "recovered");
    DDM_OsalLogWrite(env, 1, 2, "", 3, "f", "and on");
  });
  ASSERT_EQ(lines.size(), 5u);
  EXPECT_TRUE(endsWith(lines[0], "line 0"));
  EXPECT_TRUE(endsWith(lines[1], "line 1"));
  EXPECT_TRUE(endsWith(lines[2], "8 lines suppressed"));
  EXPECT_TRUE(endsWith(lines[3], "recovered"));
  EXPECT_TRUE(endsWith(lines[4], "and on"));
}

TEST(Log, RefillsALimitWithoutABurst) {
  const auto lines = logged([] {
    ddm_osal_log_limit(20, 0);
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    DDM_OsalLogWrite(env, 1, 2, "", 3, "f", "a line");
  });
  EXPECT_EQ(lines.size(), 1u);
}

TEST(Log, RefillsTheLimitOverTime) {
  const auto lines = logged([] {
    ddm_osal_log_limit(20, 1);
    DDM_OsalLogWrite(env, 1, 2, "", 3, "f", "first");
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    DDM_OsalLogWrite(env, 1, 2, "", 3, "f", "second");
  });
  EXPECT_EQ(lines.size(), 2u);
}

// Within a second, one line more than the burst passes at most.
TEST(Log, PassesNoMoreThanItsRate) {
  const auto start = std::chrono::steady_clock::now();
  const auto lines = logged([] {
    ddm_osal_log_limit(1, 5);
    for (int i = 0; i < 50; ++i) {
      DDM_OsalLogWrite(env, 1, 2, "", 3, "f", "line %d", i);
    }
    ddm_osal_log_limit(0, 1);
    DDM_OsalLogWrite(env, 1, 2, "", 3, "f", "the end, after the count of the others");
  });
  const auto passed =
      std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - start);
  EXPECT_GE(lines.size(), 5u);
  EXPECT_LE(lines.size(), static_cast<size_t>(2 * (6 + passed.count()))) << "with the counts";
}

TEST(Log, ReportsSuppressedLinesAtExit) {
  ChildProcess child(peer({"log", "5", "2"}), true);
  const auto lines = linesOf(child.readAll());
  EXPECT_EQ(child.wait(), 0);
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_TRUE(endsWith(lines[1], "line 1"));
  EXPECT_TRUE(endsWith(lines[2], "3 lines suppressed"));
}

TEST(Log, KeepsLinesOfThreadsApart) {
  const auto lines = logged([] {
    ddm_osal_log_limit(0, 300);
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
      threads.emplace_back([thread] {
        for (int i = 0; i < 100; ++i) {
          DDM_OsalLogWrite(env, 1, 2, "", 3, "f", "thread %d line %d.", thread, i);
        }
      });
    }
    for (std::thread& thread : threads) {
      thread.join();
    }
    ddm_osal_log_limit(0, 300);
    DDM_OsalLogWrite(env, 1, 2, "", 3, "f", "end.");
  });
  ASSERT_EQ(lines.size(), 302u);
  EXPECT_TRUE(endsWith(lines[300], "100 lines suppressed"));
  for (size_t i = 0; i < 300; ++i) {
    EXPECT_TRUE(matches(lines[i], "f:3: thread [0-9] line [0-9]+\\.$")) << lines[i];
  }
}

}  // namespace
}  // namespace platform_test
