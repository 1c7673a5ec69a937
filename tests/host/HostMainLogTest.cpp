#include "zelk/host/HostMainLog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "support/MainLogCapture.h"
#include "support/TempDir.h"
#include "support/TextFiles.h"

namespace zelk::host {
namespace {

using ::testing::MatchesRegex;

TEST(HostMainLogTest, KeepsEntriesInOrderUntilCleared) {
  zelk::test::MainLogCapture capture;
  hostAddToMainLog("Configuration", "first");
  hostAddToMainLog("Plugins", "second\nline");
  hostAddToMainLog(nullptr, nullptr);
  const std::vector<std::pair<std::string, std::string>> expected = {
      {"Configuration", "first"}, {"Plugins", "second\nline"}, {"", ""}};
  EXPECT_EQ(expected, hostGetMainLog());
  EXPECT_EQ(std::vector<std::string>{"first"}, capture.texts("Configuration"));
  EXPECT_TRUE(capture.contains("cond", "Plugins"));
  EXPECT_FALSE(capture.contains("cond", "Configuration"));
  hostClearMainLog();
  EXPECT_TRUE(hostGetMainLog().empty());
}

TEST(HostMainLogTest, AppendsEachEntryToTheLogFileWithATimestamp) {
  zelk::test::MainLogCapture capture;
  zelk::test::TempDir dir;
  const std::string path = dir.file("main.log");
  zelk::test::writeTextFile(path, "earlier\n");
  ASSERT_TRUE(hostSetMainLogFile(path.c_str()));
  hostAddToMainLog("Configuration", "loadConfigurationFile: [succeeded]");
  hostAddToMainLog("Plugins", "100% %s");
  ASSERT_TRUE(hostSetMainLogFile(nullptr));
  hostAddToMainLog("Configuration", "not in the file");

  const std::string text = zelk::test::readTextFile(path);
  EXPECT_THAT(text, MatchesRegex("earlier\n"
                                 "[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2} "
                                 "\\[Configuration\\] loadConfigurationFile: \\[succeeded\\]\n"
                                 "[-0-9]{10} [:0-9]{8} \\[Plugins\\] 100% %s\n"));
  EXPECT_EQ(3u, hostGetMainLog().size());
  EXPECT_FALSE(hostSetMainLogFile(dir.file("no/such/dir/main.log").c_str()));
}

TEST(HostMainLogTest, TakesEntriesFromManyThreads) {
  zelk::test::MainLogCapture capture;
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([t] {
      for (int i = 0; i < 500; ++i) {
        hostAddToMainLog("Threads", std::to_string(t).c_str());
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(2000u, capture.texts("Threads").size());
}

}  // namespace
}  // namespace zelk::host
