#include "zelk/host/ExtensionPoint.h"

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

#include "../plugins/TestPluginObject.h"
#include "support/InstallationFixture.h"
#include "support/MainLogCapture.h"
#include "zelk/host/PluginRegistry.h"

namespace {

// When set, the next library load first renames the second file over the first, as someone
// racing the plug-in loader between its checks and the load would.
std::string gSwapTarget;
std::string gSwapSource;

}  // namespace

// Stands in for the dynamic loader's dlopen in this test program (the host library's calls bind
// to it) and hands every call on to the real one.
extern "C" void* dlopen(const char* file, int mode) {
  using Open = void* (*)(const char*, int);
  static const Open real = reinterpret_cast<Open>(dlsym(RTLD_NEXT, "dlopen"));
  if (!gSwapTarget.empty() && (mode & RTLD_NOLOAD) == 0) {
    std::rename(gSwapSource.c_str(), gSwapTarget.c_str());
    gSwapTarget.clear();
  }
  return real(file, mode);
}

namespace zelk::host {
namespace {

using ::testing::HasSubstr;

std::string built(const std::string& plugin) {
  return std::string(ZELK_TEST_PLUGIN_BUILD_DIR) + "/libzelk_test_" + plugin + ".so";
}

std::string made(Plugin* plugin) {
  std::unique_ptr<TestPluginObject> object(
      static_cast<TestPluginObject*>(plugin->createImplementation()));
  return object ? object->text : "(null)";
}

TEST(ExtensionPointTest, ListsPluginsRegisteredInTheProcess) {
  zelk::test::InstallationFixture installation;
  const int first = hostRegisterPlugin(
      "InProcessPoint", "first", [] { return static_cast<void*>(new TestPluginObject{"first"}); });
  const int second = hostRegisterPlugin("InProcessPoint", "second", [] { return nullptr; });
  {
    ExtensionPoint point("InProcessPoint", 1, 1);
    ASSERT_EQ(2u, point.pluginCount());
    EXPECT_STREQ("first", point.plugin(0)->getName());
    EXPECT_EQ("first", made(point.plugin(0)));
    EXPECT_EQ("(null)", made(point.plugin(1)));
    EXPECT_THROW(point.plugin(2), std::out_of_range);
  }
  hostUnregisterPlugin(first);
  hostUnregisterPlugin(second);
  EXPECT_EQ(0u, ExtensionPoint("InProcessPoint", 1, 1).pluginCount());
  EXPECT_THROW(ExtensionPoint(nullptr, 1, 1), std::invalid_argument);
}

TEST(ExtensionPointTest, LoadsPluginLibrariesFromThePluginsDirectory) {
  zelk::test::MainLogCapture log;
  zelk::test::InstallationFixture installation;
  const std::string good = installation.copyIntoPlugins(built("GoodPlugin"), "libgood.so");
  const std::string nested =
      installation.copyIntoPlugins(built("GoodPlugin"), "vendor/deeper/libnested.so");
  installation.writePluginsFile("readme.txt", "not a library");
  installation.writePluginsFile("zelk.crg", "<ConfigurationRegistry/>");

  ExtensionPoint point(ZELK_TEST_EXTENSION_POINT, 1, 1);
  ASSERT_EQ(2u, point.pluginCount()) << log.dump();
  EXPECT_EQ(good, point.plugin(0)->getName());
  EXPECT_EQ(nested, point.plugin(1)->getName());
  EXPECT_EQ("made by the good plug-in", made(point.plugin(1)));
  EXPECT_TRUE(log.entries().empty()) << log.dump();

  // Loaded once: a second extension point lists the same plug-ins without loading again.
  EXPECT_EQ(0u, hostLoadPlugins(ZELK_TEST_EXTENSION_POINT));
  EXPECT_EQ(point.plugin(0), ExtensionPoint(ZELK_TEST_EXTENSION_POINT, 1, 1).plugin(0));

  // Another installation does not see this one's libraries.
  zelk::test::InstallationFixture empty;
  EXPECT_EQ(0u, ExtensionPoint(ZELK_TEST_EXTENSION_POINT, 1, 1).pluginCount());
}

TEST(ExtensionPointTest, SkipsBrokenAndUnsafeLibrariesWithOneLogLineEach) {
  zelk::test::MainLogCapture log;
  zelk::test::InstallationFixture installation;
  installation.copyIntoPlugins(built("GoodPlugin"), "libgood.so");
  installation.copyIntoPlugins(built("NoCreatePlugin"), "libnocreate.so");
  installation.copyIntoPlugins(built("NoNamePlugin"), "libnoname.so");
  installation.copyIntoPlugins(built("OtherExtensionPlugin"), "libother.so");
  installation.writePluginsFile("libbroken.so", "this is not an ELF file");
  // Opening a FIFO for reading would wait for a writer; it must be refused without waiting.
  ASSERT_EQ(0, mkfifo((installation.pluginsDir() + "/libfifo.so").c_str(), 0644));
  const std::string groupWritable =
      installation.copyIntoPlugins(built("GoodPlugin"), "libgroupwritable.so");
  chmod(groupWritable.c_str(), 0775);
  const std::string worldWritable =
      installation.copyIntoPlugins(built("GoodPlugin"), "open/libinside.so");
  chmod((installation.pluginsDir() + "/open").c_str(), 0757);
  // A safe directory below an unsafe one does not make the library safe; a world-writable file.
  installation.copyIntoPlugins(built("GoodPlugin"), "team/safe/libdeep.so");
  chmod((installation.pluginsDir() + "/team").c_str(), 0775);
  chmod(installation.copyIntoPlugins(built("GoodPlugin"), "libopen.so").c_str(), 0757);
  // A link that leads out of the plug-ins directory.
  zelk::test::TempDir outside;
  const std::string elsewhere = outside.file("libelsewhere.so");
  std::filesystem::copy_file(built("GoodPlugin"), elsewhere);
  chmod(elsewhere.c_str(), 0755);
  std::filesystem::create_symlink(elsewhere, installation.pluginsDir() + "/liblink.so");

  ExtensionPoint point(ZELK_TEST_EXTENSION_POINT, 1, 1);
  ASSERT_EQ(1u, point.pluginCount()) << log.dump();
  EXPECT_EQ(installation.pluginsDir() + "/libgood.so", point.plugin(0)->getName());

  const std::string dir = installation.pluginsDir();
  const std::string skipped = "Skipped plug-in library \"" + dir;
  const std::vector<std::string> expected = {
      // The loader's message names the library by its own path.
      skipped + "/libbroken.so\": it cannot be loaded: " + dir + "/libbroken.so: ",
      skipped + "/libfifo.so\": it is not a regular file",
      skipped + "/libgroupwritable.so\": it is writable by group or others",
      skipped + "/liblink.so\": it leads outside the plug-ins directory",
      skipped + "/libnocreate.so\": it does not export createPlugin()",
      skipped + "/libnoname.so\": it does not export extensionPointName()",
      skipped + "/libopen.so\": it is writable by group or others",
      skipped + "/libother.so\": it belongs to extension point \"SomeOtherExtension\", not \"" +
          ZELK_TEST_EXTENSION_POINT + "\"",
      skipped + "/open/libinside.so\": the directory \"" + dir +
          "/open\" is writable by group or others",
      skipped + "/team/safe/libdeep.so\": the directory \"" + dir +
          "/team\" is writable by group or others",
  };
  const std::vector<std::string> lines = log.texts("Plugins");
  ASSERT_EQ(expected.size(), lines.size()) << log.dump();
  for (size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(0u, lines[i].find(expected[i])) << lines[i];
  }

  // The library of the other extension point is listed there.
  ExtensionPoint other("SomeOtherExtension", 1, 1);
  ASSERT_EQ(1u, other.pluginCount());
  EXPECT_EQ("made for another point", made(other.plugin(0)));
}

TEST(ExtensionPointTest, ALibrarySwappedInAfterTheChecksIsNotTheOneLoaded) {
  zelk::test::MainLogCapture log;
  zelk::test::InstallationFixture installation;
  gSwapTarget = installation.copyIntoPlugins(built("GoodPlugin"), "libswapped.so");
  gSwapSource = installation.copyIntoPlugins(built("OtherExtensionPlugin"), "staging/other.bin");
  ExtensionPoint point(ZELK_TEST_EXTENSION_POINT, 1, 1);
  ASSERT_TRUE(gSwapTarget.empty()) << "the library was never loaded";
  ASSERT_EQ(1u, point.pluginCount()) << log.dump();
  EXPECT_EQ("made by the good plug-in", made(point.plugin(0)));
  EXPECT_TRUE(log.entries().empty()) << log.dump();
}

TEST(ExtensionPointTest, APluginLibraryWhoseCreatePluginThrowsIsSkippedWhenAsked) {
  zelk::test::MainLogCapture log;
  zelk::test::InstallationFixture installation;
  const std::string path = installation.copyIntoPlugins(built("ThrowingPlugin"), "libthrows.so");
  ExtensionPoint point(ZELK_TEST_EXTENSION_POINT, 1, 1);
  ASSERT_EQ(1u, point.pluginCount());
  EXPECT_EQ(nullptr, point.plugin(0)->createImplementation());
  EXPECT_EQ(nullptr, point.plugin(0)->createImplementation());  // logged once
  EXPECT_EQ(std::vector<std::string>{"Skipped plug-in \"" + path + "\" of extension point \"" +
                                     ZELK_TEST_EXTENSION_POINT +
                                     "\": createPlugin() threw: the plug-in refuses to start"},
            log.texts("Plugins"));
}

}  // namespace
}  // namespace zelk::host
