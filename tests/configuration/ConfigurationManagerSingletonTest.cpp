// The process-wide manager, in its own executable because it changes process-wide state. Every
// test runs in a temporary installation, empty unless the test writes registry files into it.
#include "zelk/configuration/ConfigurationManager.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "support/InstallationFixture.h"
#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/Validator.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/impl/Factory.h"

using namespace zelk::configuration;
using zelk::configuration::impl::Factory;

namespace {

class ConfigurationManagerSingletonTest : public ::testing::Test {
protected:
  ~ConfigurationManagerSingletonTest() override { ConfigurationManager::shutdown(); }

  zelk::test::InstallationFixture mInstallation;
};

TEST_F(ConfigurationManagerSingletonTest, AFailedFirstLoadIsNotRetried) {
  EXPECT_THROW(ConfigurationManager::getInstance(), ConfigurationException);
  ConfigurationManager* instance = ConfigurationManager::getInstance();
  ASSERT_NE(nullptr, instance);
  EXPECT_EQ(instance, ConfigurationManager::getInstance());
  // The default validators were registered before the load failed.
  EXPECT_NE(nullptr, instance->getValidator("storageLocation"));

  // After a shut-down the next call starts over.
  ConfigurationManager::shutdown();
  EXPECT_THROW(ConfigurationManager::getInstance(), ConfigurationException);
  EXPECT_NE(nullptr, ConfigurationManager::getInstance());
}

TEST_F(ConfigurationManagerSingletonTest, OnlyOtherManagersCanBeDestroyed) {
  // Destroying null still brings the default manager to life (its failed load passes on).
  EXPECT_THROW(Factory::destroy(static_cast<ConfigurationManager*>(nullptr)),
               ConfigurationException);
  ConfigurationManager* instance = ConfigurationManager::getInstance();
  try {
    Factory::destroy(instance);
    ADD_FAILURE() << "no exception";
  } catch (const ConfigurationException& e) {
    EXPECT_STREQ("Cannot destroy the default Confguration ConfigurationManager", e.what());
  }
  EXPECT_EQ(instance, ConfigurationManager::getInstance());

  ConfigurationManager* other = Factory::createManager();
  EXPECT_NE(instance, other);
  EXPECT_NE(nullptr, other->getValidator("storageLocation"));
  Factory::destroy(other);
  Factory::destroy(static_cast<ConfigurationManager*>(nullptr));
}

TEST_F(ConfigurationManagerSingletonTest, TheRegistryLoadFindsTheManagerUnderConstruction) {
  // The loader is given no manager and asks getInstance() for one while the first getInstance()
  // still holds the creation lock: it must get the instance at once.
  mInstallation.writeEtcFile("zelk.crg",
                             "<?xml version=\"1.0\"?>\n"
                             "<ConfigurationRegistry crgSchemaVersion=\"1.1\">\n"
                             "  <Parameters>\n"
                             "    <Parameter id=\"level\" type=\"uint32\" description=\"Level\"/>\n"
                             "  </Parameters>\n"
                             "</ConfigurationRegistry>\n");
  ConfigurationManager* instance = ConfigurationManager::getInstance();
  ASSERT_NE(nullptr, instance);
  EXPECT_NE(nullptr, instance->getParameter("level"));
  EXPECT_NE(nullptr, instance->getValidator("storageLocation"));
  EXPECT_EQ(instance, ConfigurationManager::getInstance());
}

TEST_F(ConfigurationManagerSingletonTest, RepeatedStartsShutDownsAndResetsKeepNothingBehind) {
  // Every cycle builds the whole registry again; LeakSanitizer (in the sanitizer build) checks at
  // exit that shut-downs and resets freed what the cycles made.
  mInstallation.writeEtcFile("zelk.crg",
                             "<ConfigurationRegistry>\n"
                             "  <Enumerations><Enumeration id=\"mode\"><Value label=\"a\"/>"
                             "</Enumeration></Enumerations>\n"
                             "  <Parameters><Parameter id=\"level\" type=\"uint32\" default=\"4\" "
                             "description=\"Level\"/></Parameters>\n"
                             "  <Specifications><Specification id=\"tool\" description=\"T\">"
                             "<ParameterRef id=\"level\" optional=\"true\"/></Specification>"
                             "</Specifications>\n"
                             "</ConfigurationRegistry>\n");
  for (int cycle = 0; cycle < 20; ++cycle) {
    ConfigurationManager* instance = ConfigurationManager::getInstance();
    ASSERT_NE(nullptr, instance->getSpecification("tool")) << cycle;
    const char* argv[] = {"tool", "-level", "7"};
    instance->enableConfiguration(false, nullptr, 3, argv, "tool");
    EXPECT_EQ(7u, instance->getValueGroup("tool", true, 0).getValue("level").asUInt32());
    if (cycle % 4 == 1) {
      // A reset in the middle of a life drops the providers and caches and loads the files again.
      instance->reset();
      EXPECT_EQ(instance, ConfigurationManager::getInstance());
      EXPECT_NE(nullptr, instance->getEnumDefinition("mode"));
      EXPECT_EQ(nullptr, instance->getValueProvider("CLI"));
    }
    ConfigurationManager* other = Factory::createManager();
    EXPECT_NE(instance, other);
    Factory::destroy(other);
    ConfigurationManager::shutdown();
    ConfigurationManager::shutdown();  // a second shut-down has nothing left to do
  }
}

}  // namespace
