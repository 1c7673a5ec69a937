// The process-wide manager, in its own executable because it changes process-wide state. Every
// test runs in a temporary installation, empty unless the test writes registry files into it.
#include "zelk/configuration/ConfigurationManager.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "support/InstallationFixture.h"
#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/Validator.h"
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

}  // namespace
