#include "zelk/host/HostDirectories.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "support/InstallationFixture.h"
#include "support/TempDir.h"
#include "support/TextFiles.h"
#include "zelk/host/HostFileSystem.h"

namespace zelk::host {
namespace {

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
  EXPECT_EQ("/opt/z/etc", look(&hostGetEtcDir, &ok));
  EXPECT_TRUE(ok);
  EXPECT_EQ("/opt/z/plugins/", look(&hostGetPluginsDir, &ok));
  EXPECT_TRUE(ok);
  EXPECT_EQ("/opt/z/config", look(&hostGetConfigDir, &ok));
  EXPECT_TRUE(ok);

  // Null and empty mean the host cannot give the directory: false and an empty buffer.
  hostSetDirectories(nullptr, "", "/c");
  EXPECT_EQ("", look(&hostGetEtcDir, &ok));
  EXPECT_FALSE(ok);
  EXPECT_EQ("", look(&hostGetPluginsDir, &ok));
  EXPECT_FALSE(ok);
  EXPECT_EQ("/c", look(&hostGetConfigDir, &ok));

  // A path that does not fit the 1024-byte buffer cannot be given either.
  const std::string longest(HOST_PATH_BUFFER_SIZE - 1, 'a');
  const std::string tooLong(HOST_PATH_BUFFER_SIZE, 'a');
  hostSetDirectories(longest.c_str(), tooLong.c_str(), nullptr);
  EXPECT_EQ(longest, look(&hostGetEtcDir, &ok));
  EXPECT_TRUE(ok);
  EXPECT_EQ("", look(&hostGetPluginsDir, &ok));
  EXPECT_FALSE(ok);

  EXPECT_EQ('/', hostGetDirSeparator());
  EXPECT_EQ('/', hostGetDirSeparator("/any/path"));
  hostResetDirectories();
}

TEST(HostDirectoriesTest, InstallationFixtureSetsAndRestoresTheDirectories) {
  hostSetDirectories("/before/etc", nullptr, "/before/config");
  {
    zelk::test::InstallationFixture installation;
    EXPECT_EQ(installation.etcDir(), look(&hostGetEtcDir));
    EXPECT_EQ(installation.pluginsDir(), look(&hostGetPluginsDir));
    EXPECT_EQ(installation.configDir(), look(&hostGetConfigDir));
    EXPECT_EQ(HOST_FILE_DIRECTORY, hostFileExists(installation.pluginsDir().c_str()));
  }
  bool ok = true;
  EXPECT_EQ("/before/etc", look(&hostGetEtcDir));
  EXPECT_EQ("", look(&hostGetPluginsDir, &ok));
  EXPECT_FALSE(ok);
  EXPECT_EQ("/before/config", look(&hostGetConfigDir));
  {
    zelk::test::InstallationFixture partial(zelk::test::InstallationFixture::ETC);
    EXPECT_EQ(partial.etcDir(), look(&hostGetEtcDir));
    EXPECT_EQ("", look(&hostGetConfigDir, &ok));
    EXPECT_FALSE(ok);
  }
  hostResetDirectories();
}

TEST(HostFileSystemTest, TellsFilesFromDirectoriesAndMissingPaths) {
  zelk::test::TempDir dir;
  zelk::test::writeTextFile(dir.file("file.txt"), "x");
  dir.makeDirectory("sub");
  EXPECT_EQ(HOST_FILE_REGULAR, hostFileExists(dir.file("file.txt").c_str()));
  EXPECT_EQ(HOST_FILE_DIRECTORY, hostFileExists(dir.file("sub").c_str()));
  EXPECT_EQ(HOST_FILE_DIRECTORY, hostFileExists((dir.file("sub") + "/").c_str()));
  EXPECT_EQ(HOST_FILE_NOT_FOUND, hostFileExists(dir.file("missing").c_str()));
  EXPECT_EQ(HOST_FILE_NOT_FOUND, hostFileExists(dir.file("file.txt/below").c_str()));
  EXPECT_EQ(HOST_FILE_NOT_FOUND, hostFileExists(""));
  EXPECT_EQ(HOST_FILE_NOT_FOUND, hostFileExists(nullptr));
}

TEST(HostFileSystemTest, ListsEveryEntryOnceAndEndsWithNull) {
  zelk::test::TempDir dir;
  zelk::test::writeTextFile(dir.file("a.crg"), "");
  zelk::test::writeTextFile(dir.file("b.txt"), "");
  dir.makeDirectory("c");
  std::unique_ptr<HostDirectory> listing(hostOpenDir(dir.path().c_str()));
  ASSERT_NE(nullptr, listing);
  std::vector<std::string> names;
  while (const char* name = listing->next()) {
    names.push_back(name);
  }
  EXPECT_EQ(nullptr, listing->next());
  std::sort(names.begin(), names.end());
  EXPECT_EQ((std::vector<std::string>{".", "..", "a.crg", "b.txt", "c"}), names);
  listing->close();
  listing->close();
  EXPECT_EQ(nullptr, listing->next());

  EXPECT_EQ(nullptr, hostOpenDir(dir.file("missing").c_str()));
  EXPECT_EQ(nullptr, hostOpenDir(dir.file("a.crg").c_str()));
  EXPECT_EQ(nullptr, hostOpenDir(""));
  EXPECT_EQ(nullptr, hostOpenDir(nullptr));
}

}  // namespace
}  // namespace zelk::host
