#include "zelk/configuration/PluginEntryPoints.h"

#include <dlfcn.h>

#include <string>

#include <gtest/gtest.h>

#include "support/InstallationFixture.h"
#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/ConfigurationManager.h"

using namespace zelk::configuration;

namespace {

typedef const char* (*NameFunction)();
typedef void* (*CreateFunction)();

class PluginEntryPointsTest : public ::testing::Test {
protected:
  PluginEntryPointsTest() {
    mLibrary = dlopen(ZELK_CONFIGURATION_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  }
  ~PluginEntryPointsTest() override {
    ConfigurationManager::shutdown();
    if (mLibrary != nullptr) {
      dlclose(mLibrary);
    }
  }

  zelk::test::InstallationFixture mInstallation;
  void* mLibrary;
};

TEST_F(PluginEntryPointsTest, TheHostFindsBothEntryPointsUnderTheirPlainNames) {
  ASSERT_NE(nullptr, mLibrary) << dlerror();
  NameFunction name = reinterpret_cast<NameFunction>(dlsym(mLibrary, "extensionPointName"));
  CreateFunction create = reinterpret_cast<CreateFunction>(dlsym(mLibrary, "createPlugin"));
  ASSERT_NE(nullptr, name);
  ASSERT_NE(nullptr, create);
  EXPECT_STREQ("Configuration Manager", name());
  EXPECT_EQ(std::string("Configuration Manager"), extensionPointName());

  // The empty installation has no registry files, so the first creation reports the failed load;
  // from then on the plug-in object is the one default manager.
  EXPECT_THROW(create(), ConfigurationException);
  void* first = create();
  void* second = create();
  ASSERT_NE(nullptr, first);
  EXPECT_EQ(first, second);
  ConfigurationManagerBase* base = static_cast<ConfigurationManagerBase*>(first);
  EXPECT_EQ(ConfigurationManager::getInstance(), dynamic_cast<ConfigurationManager*>(base));
}

}  // namespace
