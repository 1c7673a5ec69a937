#include "zelk/util/FileSystemVisitor.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/TempDir.h"
#include "support/TextFiles.h"
#include "zelk/util/ContractViolationException.h"

namespace zelk {
namespace {

class Recorder : public FileSystemVisitor {
public:
  bool visitDirectory(const char* path) override {
    directories.insert(path);
    return path != stopAtDirectory;
  }
  bool visitFile(const char* path) override {
    files.insert(path);
    if (path == throwAtFile) {
      throw std::runtime_error("visitor failed");
    }
    return path != stopAtFile;
  }

  std::set<std::string> directories;
  std::set<std::string> files;
  std::string stopAtDirectory;
  std::string stopAtFile;
  std::string throwAtFile;
};

class FileSystemVisitorTest : public ::testing::Test {
protected:
  void SetUp() override {
    zelk::test::writeTextFile(dir.file("a.crg"), "");
    zelk::test::writeTextFile(dir.file("B.CRG"), "");
    dir.makeDirectory("sub/deeper");
    zelk::test::writeTextFile(dir.file("sub/c.crg"), "");
    zelk::test::writeTextFile(dir.file("sub/deeper/d.txt"), "");
  }

  zelk::test::TempDir dir;
};

TEST_F(FileSystemVisitorTest, FlatScanSeesFilesOnlyAndReturnsFalseWhenComplete) {
  Recorder recorder;
  // Kept on purpose: a complete non-recursive scan returns false.
  EXPECT_FALSE(recorder.scan(dir.path().c_str(), false));
  EXPECT_EQ((std::set<std::string>{dir.file("B.CRG"), dir.file("a.crg")}), recorder.files);
  EXPECT_TRUE(recorder.directories.empty());
}

TEST_F(FileSystemVisitorTest, RecursiveScanEntersEveryLevelAndReturnsTrueWhenComplete) {
  Recorder recorder;
  // A trailing '/' on the directory is not doubled.
  EXPECT_TRUE(recorder.scan((dir.path() + "/").c_str(), true));
  EXPECT_EQ((std::set<std::string>{dir.file("B.CRG"), dir.file("a.crg"), dir.file("sub/c.crg"),
                                   dir.file("sub/deeper/d.txt")}),
            recorder.files);
  EXPECT_EQ((std::set<std::string>{dir.file("sub"), dir.file("sub/deeper")}), recorder.directories);
}

TEST_F(FileSystemVisitorTest, ACallbackReturningFalseStopsTheWalk) {
  Recorder byFile;
  byFile.stopAtFile = dir.file("sub/deeper/d.txt");
  EXPECT_FALSE(byFile.scan(dir.path().c_str(), true));
  EXPECT_TRUE(byFile.files.count(byFile.stopAtFile));

  Recorder byDirectory;
  byDirectory.stopAtDirectory = dir.file("sub");
  EXPECT_FALSE(byDirectory.scan(dir.path().c_str(), true));
  EXPECT_EQ(0u, byDirectory.files.count(dir.file("sub/c.crg")));  // not entered

  Recorder flat;
  flat.stopAtFile = dir.file("a.crg");
  EXPECT_FALSE(flat.scan(dir.path().c_str(), false));
}

TEST_F(FileSystemVisitorTest, AMissingDirectoryReturnsTheRecursiveFlag) {
  Recorder recorder;
  EXPECT_TRUE(recorder.scan(dir.file("missing").c_str(), true));
  EXPECT_FALSE(recorder.scan(dir.file("missing").c_str(), false));
  EXPECT_TRUE(recorder.files.empty());
}

TEST_F(FileSystemVisitorTest, AThrowingCallbackPropagatesAndLaterScansStillWork) {
  Recorder recorder;
  recorder.throwAtFile = dir.file("sub/c.crg");
  EXPECT_THROW(recorder.scan(dir.path().c_str(), true), std::runtime_error);
  recorder.throwAtFile.clear();
  recorder.files.clear();
  EXPECT_TRUE(recorder.scan(dir.path().c_str(), true));
  EXPECT_EQ(4u, recorder.files.size());
}

TEST_F(FileSystemVisitorTest, LoopsOfSymbolicLinksEndAtTheDepthBound) {
  std::filesystem::create_directory_symlink(dir.file("sub"), dir.file("sub/deeper/loop"));
  Recorder recorder;
  EXPECT_TRUE(recorder.scan(dir.path().c_str(), true));
  EXPECT_LE(recorder.directories.size(), 2u * FileSystemVisitor::MAX_DEPTH + 2);
  EXPECT_GT(recorder.directories.size(), 3u);
}

TEST(FileSystemVisitorContractsTest, EndsWithAndContracts) {
  EXPECT_TRUE(FileSystemVisitor::endsWith("/etc/zelk.crg", ".crg"));
  EXPECT_FALSE(FileSystemVisitor::endsWith("/etc/zelk.CRG", ".crg"));
  EXPECT_TRUE(FileSystemVisitor::endsWith(".crg", ".crg"));
  EXPECT_FALSE(FileSystemVisitor::endsWith("crg", ".crg"));
  EXPECT_TRUE(FileSystemVisitor::endsWith("x", ""));
  EXPECT_TRUE(FileSystemVisitor::endsWith("/a/..", "/.."));

  struct Case {
    void (*call)();
    const char* message;
  };
  const Case cases[] = {
      {[] { FileSystemVisitor().scan(nullptr, true); },
       "Contract violation: \"directory != 0 && *directory != 0\""},
      {[] { FileSystemVisitor().scan("", false); },
       "Contract violation: \"directory != 0 && *directory != 0\""},
      {[] { FileSystemVisitor::endsWith(nullptr, "x"); }, "Contract violation: \"s != 0\""},
      {[] { FileSystemVisitor::endsWith("x", nullptr); }, "Contract violation: \"suffix != 0\""},
  };
  for (const Case& c : cases) {
    try {
      c.call();
      ADD_FAILURE() << "no exception for " << c.message;
    } catch (const ContractViolationException& e) {
      EXPECT_STREQ(c.message, e.what());
      EXPECT_STREQ("FileSystemVisitor", e.getFile());
      EXPECT_GT(e.getLine(), 0u);
    }
  }
}

}  // namespace
}  // namespace zelk
