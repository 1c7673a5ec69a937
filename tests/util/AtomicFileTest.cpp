#include "zelk/util/AtomicFile.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/TempDir.h"
#include "support/TextFiles.h"

namespace {

using ::testing::ElementsAre;
using zelk::test::readTextFile;
using zelk::test::TempDir;
using zelk::test::writeTextFile;

std::vector<std::string> entries(const std::string& directory) {
  std::vector<std::string> names;
  DIR* dir = opendir(directory.c_str());
  if (dir == nullptr) return names;
  while (const dirent* entry = readdir(dir)) {
    const std::string name = entry->d_name;
    if (name != "." && name != "..") names.push_back(name);
  }
  closedir(dir);
  std::sort(names.begin(), names.end());
  return names;
}

// Restores the system's write() when a test ends, however it ends.
struct WriteFunctionGuard {
  explicit WriteFunctionGuard(zelk::WriteFunction write) {
    zelk::setWriteFunctionForTesting(write);
  }
  ~WriteFunctionGuard() { zelk::setWriteFunctionForTesting(nullptr); }
};

// A disk with room for 100 more bytes: the write that would go past them fails as a full disk
// does, after writing what fits.
std::size_t roomLeft = 0;
ssize_t writeToSmallDisk(int fd, const void* data, std::size_t size) {
  if (roomLeft == 0) {
    errno = ENOSPC;
    return -1;
  }
  const std::size_t now = std::min(size, roomLeft);
  roomLeft -= now;
  return ::write(fd, data, now);
}

TEST(AtomicFileTest, ReplacesWholeAndKeepsPermissions) {
  TempDir dir;
  const std::string path = dir.file("values.xml");
  writeTextFile(path, "old content that is longer than the new one");
  ASSERT_EQ(0, chmod(path.c_str(), 0640));

  const zelk::FileWriteResult result = zelk::replaceFile(path, std::string("new"));
  EXPECT_TRUE(result) << result.reason;
  EXPECT_EQ("new", readTextFile(path));
  struct stat info;
  ASSERT_EQ(0, stat(path.c_str(), &info));
  EXPECT_EQ(0640u, info.st_mode & 07777);
  EXPECT_THAT(entries(dir.path()), ElementsAre("values.xml"));  // no temporary left

  // A new file: created with the umask's permissions; a file in a missing directory is not.
  const mode_t mask = umask(022);
  EXPECT_TRUE(zelk::replaceFile(dir.file("new.xml"), std::string("x")));
  umask(mask);
  ASSERT_EQ(0, stat(dir.file("new.xml").c_str(), &info));
  EXPECT_EQ(0644u, info.st_mode & 07777);
  const zelk::FileWriteResult missing = zelk::replaceFile(dir.file("no/such.xml"), "x", 1);
  EXPECT_FALSE(missing);
  EXPECT_EQ(ENOENT, missing.error);
  EXPECT_EQ("No such file or directory", missing.reason);
}

TEST(AtomicFileTest, FullDiskLeavesTheOldFileByteForByte) {
  TempDir dir;
  const std::string path = dir.file("good.xml");
  const std::string good = "<tool name=\"good\"/>\n";
  writeTextFile(path, good);
  const WriteFunctionGuard guard(writeToSmallDisk);
  roomLeft = 100;
  const zelk::FileWriteResult result = zelk::replaceFile(path, std::string(10000, 'x'));
  EXPECT_FALSE(result);
  EXPECT_EQ(ENOSPC, result.error);
  EXPECT_EQ("No space left on device", result.reason);
  EXPECT_EQ(good, readTextFile(path));
  EXPECT_THAT(entries(dir.path()), ElementsAre("good.xml"));
}

TEST(AtomicFileTest, FollowsALinkAndKeepsIt) {
  TempDir dir;
  writeTextFile(dir.file("real.xml"), "old");
  ASSERT_EQ(0, symlink("real.xml", dir.file("link.xml").c_str()));
  EXPECT_TRUE(zelk::replaceFile(dir.file("link.xml"), std::string("new")));
  struct stat info;
  ASSERT_EQ(0, lstat(dir.file("link.xml").c_str(), &info));
  EXPECT_TRUE(S_ISLNK(info.st_mode));
  EXPECT_EQ("new", readTextFile(dir.file("real.xml")));
}

// A FIFO would block the writer until a reader came; a directory or device cannot be a file.
TEST(AtomicFileTest, RefusesWhatIsNotARegularFileAtOnce) {
  TempDir dir;
  const std::string fifo = dir.file("fifo.xml");
  ASSERT_EQ(0, mkfifo(fifo.c_str(), 0600));
  const std::string directory = dir.makeDirectory("directory.xml");
  const struct {
    std::string path;
    std::string reason;
  } cases[] = {
      {fifo, "it is a FIFO, not a regular file"},
      {directory, "it is a directory, not a regular file"},
      {"/dev/null", "it is a character device, not a regular file"},
  };
  for (const auto& c : cases) {
    const auto start = std::chrono::steady_clock::now();
    const zelk::FileWriteResult result = zelk::replaceFile(c.path, std::string("x"));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5)) << c.path;
    EXPECT_FALSE(result) << c.path;
    EXPECT_EQ(c.reason, result.reason) << c.path;
  }
  struct stat info;
  ASSERT_EQ(0, lstat(fifo.c_str(), &info));
  EXPECT_TRUE(S_ISFIFO(info.st_mode));
  EXPECT_THAT(entries(dir.path()), ElementsAre("directory.xml", "fifo.xml"));
}

}  // namespace
