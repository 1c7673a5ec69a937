// The files the library reads and writes: only regular files, refused at once otherwise (a FIFO
// would block forever in open); the system's reason beside the fixed messages, in the main log
// and on the exception; files replaced whole or not at all; limits that work at their extremes.
// In its own executable because it changes process-wide state (host directories, the default
// manager, the main log).
#include <errno.h>
#include <signal.h>
#include <stdint.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "configuration/Models.h"
#include "support/MainLogCapture.h"
#include "support/TextFiles.h"
#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/ConfigurationRegistryLoader.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/ValueFileWriter.h"
#include "zelk/util/AtomicFile.h"

namespace zelk::configuration {
namespace {

using ::testing::HasSubstr;

const std::string TOOL_REGISTRY =
    "<ConfigurationRegistry crgSchemaVersion=\"1.1\"><Parameters>"
    "<Parameter id=\"b\" type=\"string\" description=\"B\"/></Parameters>"
    "<Specifications><Specification id=\"tool\" description=\"Tool\">"
    "<ParameterRef id=\"b\" optional=\"true\"/></Specification></Specifications>"
    "</ConfigurationRegistry>";

// The exception that call throws, or an exception saying that none was thrown.
template <typename F>
ConfigurationException thrownBy(F call) {
  try {
    call();
  } catch (const ConfigurationException& e) {
    return e;
  }
  return ConfigurationException("%s", "<no exception>");
}

class FileOpenerTest : public ::testing::Test {
protected:
  FileOpenerTest() {
    // Opening a FIFO waits for a writer that never comes: without the refusal the test would
    // hang. The alarm ends the process, so that it fails instead.
    alarm(60);
    mInstallation.writeEtcFile("zelk.crg", TOOL_REGISTRY);
  }
  ~FileOpenerTest() override {
    ConfigurationManager::shutdown();
    alarm(0);
  }

  std::string fifo(const std::string& path) {
    EXPECT_EQ(0, mkfifo(path.c_str(), 0600)) << path;
    return path;
  }

  test::InstallationFixture mInstallation;
  test::MainLogCapture mLog;
};

// A FIFO in every place a value file or registry file is read from is refused, with what it is.
TEST_F(FileOpenerTest, AFifoIsRefusedAtOnceWhereverAFileIsRead) {
  const std::string reason = "it is a FIFO, not a regular file";
  const std::string valueFifo = fifo(mInstallation.configDir() + "/values.xml");
  const std::string registryFifo = fifo(mInstallation.root() + "/loose.crg");
  // Skipped by the search, with a log line; the installation still loads.
  fifo(mInstallation.pluginsDir() + "/x.crg");
  fifo(mInstallation.etcDir() + "/y.crg");
  ConfigurationManager* manager = ConfigurationManager::getInstance();
  ASSERT_NE(nullptr, manager->getSpecification("tool"));
  for (const std::string name : {"x.crg", "y.crg"}) {
    EXPECT_TRUE(
        mLog.contains(std::string("Skipped registry file \"") +
                          (name[0] == 'x' ? mInstallation.pluginsDir() : mInstallation.etcDir()) +
                          "/" + name + "\": " + reason,
                      "Configuration"))
        << mLog.dump();
  }

  const char* loadArguments[] = {"tool", "-loadConfiguration", valueFifo.c_str()};
  const struct {
    const char* where;
    std::function<void()> call;
    std::string path;
  } places[] = {
      {"-loadConfiguration",
       [&] { manager->enableConfiguration(false, nullptr, 3, loadArguments, "tool"); }, valueFifo},
      {"application file",
       [&] { manager->enableConfiguration(false, valueFifo.c_str(), 1, loadArguments, "tool"); },
       valueFifo},
      {"machine.config",
       [&] {
         fifo(mInstallation.configDir() + "/machine.config");
         manager->enableConfiguration(true, nullptr, 1, loadArguments, "tool");
       },
       mInstallation.configDir() + "/machine.config"},
      {"registry file",
       [&] { ConfigurationRegistryLoader::loadFile(registryFifo.c_str(), manager, 0); },
       registryFifo},
  };
  for (const auto& place : places) {
    const ConfigurationException e = thrownBy(place.call);
    EXPECT_EQ("File \"" + place.path + "\" was not found", e.what()) << place.where;
    EXPECT_EQ(reason, e.getReason()) << place.where;
    EXPECT_TRUE(
        mLog.contains("File \"" + place.path + "\" was not found: " + reason, "Configuration"))
        << place.where << '\n'
        << mLog.dump();
  }
}

// The fixed message stays; the reason says what really went wrong.
TEST_F(FileOpenerTest, TheReasonGoesWithTheFixedMessage) {
  ConfigurationManager* manager = ConfigurationManager::getInstance();
  const std::string loop = mInstallation.root() + "/loop.xml";
  ASSERT_EQ(0, symlink(loop.c_str(), loop.c_str()));
  const std::string directory = mInstallation.root() + "/directory.xml";
  ASSERT_EQ(0, mkdir(directory.c_str(), 0755));
  const struct {
    std::string path;
    std::string reason;
  } cases[] = {
      {mInstallation.root() + "/missing.xml", "No such file or directory"},
      {loop, "Too many levels of symbolic links"},
      {directory, "it is a directory, not a regular file"},
      {"/dev/null", "it is a character device, not a regular file"},
  };
  for (const auto& c : cases) {
    const ConfigurationException e =
        thrownBy([&] { manager->enableConfiguration(false, c.path.c_str(), 0, nullptr, "tool"); });
    EXPECT_EQ("File \"" + c.path + "\" was not found", e.what());
    EXPECT_EQ(c.reason, e.getReason()) << c.path;
    EXPECT_TRUE(mLog.contains("File \"" + c.path + "\" was not found: " + c.reason)) << c.path;
  }
  // Copies keep the reason.
  ConfigurationException original("%s", "x");
  original.setReason("why");
  ConfigurationException copy(original);
  EXPECT_EQ("why", copy.getReason());
  copy = ConfigurationException("%s", "y");
  EXPECT_EQ("", copy.getReason());
}

// A full disk while a value file is replaced: the old file survives byte for byte, the temporary
// file goes, and the reason is the system's.
ssize_t failAsAFullDisk(int, const void*, std::size_t) {
  errno = ENOSPC;
  return -1;
}

TEST_F(FileOpenerTest, AFailedWriteLeavesTheOldFileAndSaysWhy) {
  ConfigurationManager* manager = ConfigurationManager::getInstance();
  const Specification& tool = *manager->getSpecification("tool");
  ValueGroup values(&tool);
  values.addValue("b", "new text");
  const std::string path = mInstallation.root() + "/good.xml";
  const std::string good = "<tool b=\"old\"/>\n";
  test::writeTextFile(path, good);

  zelk::setWriteFunctionForTesting(failAsAFullDisk);
  const ConfigurationException full =
      thrownBy([&] { ValueFileWriter::writeFile(path.c_str(), tool, values); });
  zelk::setWriteFunctionForTesting(nullptr);
  EXPECT_EQ("File \"" + path + "\" cannot be written", std::string(full.what()));
  EXPECT_EQ("No space left on device", full.getReason());
  EXPECT_TRUE(mLog.contains("File \"" + path + "\" cannot be written: No space left on device"));
  EXPECT_EQ(good, test::readTextFile(path));
  EXPECT_EQ(-1, access((path + ".tmp").c_str(), F_OK));

  // A FIFO as the target is refused without waiting for a reader; a good write replaces.
  const std::string target = fifo(mInstallation.root() + "/export.xml");
  const ConfigurationException toFifo =
      thrownBy([&] { ValueFileWriter::writeFile(target.c_str(), tool, values); });
  EXPECT_EQ("it is a FIFO, not a regular file", toFifo.getReason());
  ValueFileWriter::writeFile(path.c_str(), tool, values);
  EXPECT_THAT(test::readTextFile(path), HasSubstr("b=\"new text\""));
}

// The largest size limit there is works: nothing overflows in the reader's "limit + 1".
TEST_F(FileOpenerTest, TheLargestSizeLimitWorks) {
  const std::string path = mInstallation.configDir() + "/values.xml";
  test::writeTextFile(path, "<tool b=\"read\"/>");
  ConfigurationManager* manager = ConfigurationManager::getInstance();
  manager->setMaxFileSize(SIZE_MAX);
  manager->enableConfiguration(false, path.c_str(), 0, nullptr, "tool");
  EXPECT_EQ("read", manager->getValueGroup("tool", true, 0).getValue("b").asString());
}

}  // namespace
}  // namespace zelk::configuration
