// The host stand-in: contexts and sessions, its exceptions, memory, installation directories,
// the file system and the main log.
#include <algorithm>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "support/InstallationFixture.h"
#include "support/MainLogCapture.h"
#include "support/TempDir.h"
#include "support/TextFiles.h"
#include "zelk/host/FormattedHostException.h"
#include "zelk/host/HostContext.h"
#include "zelk/host/HostDirectories.h"
#include "zelk/host/HostErrorReporter.h"
#include "zelk/host/HostFileSystem.h"
#include "zelk/host/HostMainLog.h"
#include "zelk/host/HostProcess.h"

namespace zelk::host {
namespace {

TEST(HostContextTest, CurrentContextIsPerThreadAndCarriesItsSession) {
  EXPECT_TRUE(hostProcessInit());
  ASSERT_EQ(nullptr, HostContext::current());
  HostSession* defaultSession = hostCurrentSession();
  ASSERT_NE(nullptr, defaultSession);

  // The scope guard pattern of the loaders: remember, clear, install, restore.
  HostContext outer(1, 2);
  HostContext::makeCurrent(&outer);
  HostContext* remembered = HostContext::current();
  HostContext::makeCurrent(nullptr);
  auto* mine = new HostContext(200, 500);
  HostContext::makeCurrent(mine, true);
  EXPECT_EQ(mine->getSession(), hostCurrentSession());
  HostErrorReporter::setEnabled(hostCurrentSession(), true);
  EXPECT_TRUE(HostErrorReporter::isEnabled(mine->getSession()));
  EXPECT_FALSE(HostErrorReporter::isEnabled(outer.getSession()));

  // Another thread has no current context.
  HostContext* seenElsewhere = mine;
  std::thread([&seenElsewhere] { seenElsewhere = HostContext::current(); }).join();
  EXPECT_EQ(nullptr, seenElsewhere);

  HostContext::makeCurrent(nullptr);
  HostContext::makeCurrent(remembered);
  delete mine;
  EXPECT_EQ(&outer, HostContext::current());
  EXPECT_EQ(outer.getSession(), hostCurrentSession());
  HostContext::makeCurrent(nullptr);
  EXPECT_EQ(defaultSession, hostCurrentSession());

  // Destroying the current context leaves no dangling current context.
  {
    HostContext temporary(200, 500);
    HostContext::makeCurrent(&temporary);
  }
  EXPECT_EQ(nullptr, HostContext::current());
}

TEST(HostContextTest, FormattedHostExceptionFormatsAndReportsWhenEnabled) {
  const FormattedHostException e("REGEX ERROR #%d: %s", 14, "missing )");
  EXPECT_STREQ("REGEX ERROR #14: missing )", e.what());
  EXPECT_EQ(4095u, std::strlen(FormattedHostException("%s", std::string(5000, 'x').c_str()).what()));
  const HostErrorReporter plain;
  EXPECT_EQ(nullptr, static_cast<const char*>(plain));
  EXPECT_EQ(nullptr, plain.asKernelException());
  HostErrorReporter::setEnabled(nullptr, true);  // ignored
  EXPECT_FALSE(HostErrorReporter::isEnabled(nullptr));

  HostContext context(200, 500);
  HostContext::makeCurrent(&context);
  ::testing::internal::CaptureStderr();
  e.reportErrors("loading");
  EXPECT_EQ("", ::testing::internal::GetCapturedStderr());
  HostErrorReporter::setEnabled(hostCurrentSession(), true);
  ::testing::internal::CaptureStderr();
  e.reportErrors("loading");
  EXPECT_EQ("loading: -100: REGEX ERROR #14: missing )\n",
            ::testing::internal::GetCapturedStderr());
  HostContext::makeCurrent(nullptr);
}

std::string look(bool (*lookUp)(char*), bool* succeeded = nullptr) {
  char buffer[HOST_PATH_BUFFER_SIZE];
  std::fill(buffer, buffer + sizeof buffer, 'x');
  const bool ok = lookUp(buffer);
  if (succeeded != nullptr) {
    *succeeded = ok;
  }
  return buffer;
}

TEST(HostDirectoriesTest, AnswersWhatTheEmbeddingProgramSet) {
  hostResetDirectories();
  bool ok = false;
  EXPECT_EQ(ZELK_HOST_EXPECTED_DEFAULT_ETC_DIR, look(&hostGetEtcDir, &ok));
  EXPECT_TRUE(ok);

  hostSetDirectories("/opt/z/etc", "/opt/z/plugins/", "/opt/z/config");
  EXPECT_EQ("/opt/z/plugins/", look(&hostGetPluginsDir, &ok));
  EXPECT_TRUE(ok);

  // Null and empty mean the host cannot give the directory: false and an empty buffer.
  hostSetDirectories(nullptr, "", "/c");
  EXPECT_EQ("", look(&hostGetEtcDir, &ok));
  EXPECT_FALSE(ok);
  EXPECT_EQ("", look(&hostGetPluginsDir, &ok));

  // A path that does not fit the 1024-byte buffer cannot be given either.
  const std::string longest(HOST_PATH_BUFFER_SIZE - 1, 'a');
  const std::string tooLong(HOST_PATH_BUFFER_SIZE, 'a');
  hostSetDirectories(longest.c_str(), tooLong.c_str(), nullptr);
  EXPECT_EQ(longest, look(&hostGetEtcDir, &ok));
  EXPECT_EQ("", look(&hostGetPluginsDir, &ok));
  EXPECT_FALSE(ok);

  EXPECT_EQ('/', hostGetDirSeparator("/any/path"));
  hostResetDirectories();
}

TEST(HostDirectoriesTest, InstallationFixtureSetsAndRestoresTheDirectories) {
  hostSetDirectories("/before/etc", nullptr, "/before/config");
  {
    zelk::test::InstallationFixture installation;
    EXPECT_EQ(installation.pluginsDir(), look(&hostGetPluginsDir));
    EXPECT_EQ(HOST_FILE_DIRECTORY, hostFileExists(installation.pluginsDir().c_str()));
  }
  bool ok = true;
  EXPECT_EQ("/before/etc", look(&hostGetEtcDir));
  EXPECT_EQ("", look(&hostGetPluginsDir, &ok));
  EXPECT_FALSE(ok);
  {
    zelk::test::InstallationFixture partial(zelk::test::InstallationFixture::ETC);
    EXPECT_EQ(partial.etcDir(), look(&hostGetEtcDir));
    EXPECT_EQ("", look(&hostGetConfigDir, &ok));
    EXPECT_FALSE(ok);
  }
  hostResetDirectories();
}

TEST(HostFileSystemTest, TellsKindsOfPathsAndListsEveryEntryOnce) {
  zelk::test::TempDir dir;
  zelk::test::writeTextFile(dir.file("a.crg"), "");
  dir.makeDirectory("c");
  EXPECT_EQ(HOST_FILE_REGULAR, hostFileExists(dir.file("a.crg").c_str()));
  EXPECT_EQ(HOST_FILE_DIRECTORY, hostFileExists((dir.file("c") + "/").c_str()));
  EXPECT_EQ(HOST_FILE_NOT_FOUND, hostFileExists(dir.file("a.crg/below").c_str()));
  EXPECT_EQ(HOST_FILE_NOT_FOUND, hostFileExists(nullptr));

  std::unique_ptr<HostDirectory> listing(hostOpenDir(dir.path().c_str()));
  ASSERT_NE(nullptr, listing);
  std::vector<std::string> names;
  while (const char* name = listing->next()) {
    names.push_back(name);
  }
  EXPECT_EQ(nullptr, listing->next());
  std::sort(names.begin(), names.end());
  EXPECT_EQ((std::vector<std::string>{".", "..", "a.crg", "c"}), names);
  listing->close();
  listing->close();
  EXPECT_EQ(nullptr, hostOpenDir(dir.file("a.crg").c_str()));
  EXPECT_EQ(nullptr, hostOpenDir(nullptr));
}


using ::testing::MatchesRegex;

TEST(HostMainLogTest, KeepsEntriesInOrderAndAppendsEachToTheLogFileWithATimestamp) {
  zelk::test::MainLogCapture capture;
  hostAddToMainLog(nullptr, nullptr);
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
  const std::vector<std::pair<std::string, std::string>> expected = {
      {"", ""},
      {"Configuration", "loadConfigurationFile: [succeeded]"},
      {"Plugins", "100% %s"},
      {"Configuration", "not in the file"}};
  EXPECT_EQ(expected, hostGetMainLog());
  hostClearMainLog();
  EXPECT_TRUE(hostGetMainLog().empty());
  EXPECT_FALSE(hostSetMainLogFile(dir.file("no/such/dir/main.log").c_str()));
}

// A process that logs for as long as it runs keeps a fixed number of entries: the newest.
TEST(HostMainLogTest, KeepsTheNewestEntriesUpToItsCapacity) {
  zelk::test::MainLogCapture capture;
  const std::size_t written = zelk::host::MAIN_LOG_CAPACITY * 3 + 7;
  for (std::size_t i = 0; i < written; ++i) {
    hostAddToMainLog("Configuration", std::to_string(i).c_str());
  }
  const auto entries = hostGetMainLog();
  ASSERT_EQ(zelk::host::MAIN_LOG_CAPACITY, entries.size());
  EXPECT_EQ(std::to_string(written - zelk::host::MAIN_LOG_CAPACITY), entries.front().second);
  EXPECT_EQ(std::to_string(written - 1), entries.back().second);
}

TEST(HostMainLogTest, TakesEntriesFromManyThreads) {
  zelk::test::MainLogCapture capture;
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([t] {
      for (int i = 0; i < 200; ++i) {
        hostAddToMainLog("Threads", std::to_string(t).c_str());
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(800u, capture.texts("Threads").size());  // within the log's capacity
}

}  // namespace
}  // namespace zelk::host
