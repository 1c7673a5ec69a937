// Validator plug-ins: the example "portNumber" library, installed into a temporary plug-ins
// directory, is found through the host extension point "ParameterValidator", registered by a new
// manager, named by a parameter of a registry and used to check that parameter's values.
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/InstallationFixture.h"
#include "support/MainLogCapture.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/Validator.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/impl/ConfigurationRegistryLoaderImpl.h"
#include "zelk/configuration/impl/Factory.h"

using namespace zelk::configuration;

namespace {

const char* const NOT_A_PORT = "Value is not a port number (1 to 65535)";

// The names of the validators registered in manager, in key order.
std::vector<std::string> validatorNames(const ConfigurationManager& manager) {
  std::vector<std::string> names;
  std::unique_ptr<zelk::IEnumerator<Validator*>> it(manager.getValidatorEnumerator());
  while (it->hasNext()) {
    names.push_back(it->getCurrent()->getName());
    it->moveNext();
  }
  return names;
}

// The text validate() returns, "<null>" for none; the array is released.
std::string problems(char* text) {
  const std::string result = text != nullptr ? text : "<null>";
  delete[] text;
  return result;
}

TEST(ValidatorPluginTest, APluginValidatorChecksTheParametersThatNameIt) {
  zelk::test::InstallationFixture installation;
  installation.copyIntoPlugins(ZELK_EXAMPLE_VALIDATOR_PLUGIN, "network/libzelkportvalidator.so");
  std::unique_ptr<ConfigurationManager> manager(impl::Factory::createManager());
  EXPECT_EQ((std::vector<std::string>{"portNumber", "storageLocation"}), validatorNames(*manager));

  const std::string registry =
      "<ConfigurationRegistry crgSchemaVersion=\"1.1\">"
      "<Parameters>"
      "<Parameter id=\"port\" type=\"string\" validator=\"portNumber\" description=\"Ports\"/>"
      "</Parameters>"
      "<Specifications>"
      "<Specification id=\"server\" description=\"A server\">"
      "<ParameterRef id=\"port\" unbounded=\"true\"/>"
      "</Specification>"
      "</Specifications>"
      "</ConfigurationRegistry>";
  impl::ConfigurationRegistryLoaderImpl loader(manager.get());
  loader.loadBuffer(registry.data(), registry.size(), "server.crg", 0);

  const Parameter* port = static_cast<const Parameter*>(manager->getParameter("port"));
  ASSERT_NE(nullptr, port);
  const Validator* validator = port->getValidator();
  ASSERT_EQ(manager->getValidator("portNumber"), validator);

  ValueGroup values(manager->getSpecification("server"));
  values.addUnboundedValue("port", "80");
  EXPECT_EQ("<null>", problems(validator->validate(values.getUnboundedValue("port"))));
  values.addUnboundedValue("port", "http");
  values.addUnboundedValue("port", "443");
  values.addUnboundedValue("port", "70000");
  EXPECT_EQ(std::string(NOT_A_PORT) + "\n" + NOT_A_PORT + "\n",
            problems(validator->validate(values.getUnboundedValue("port"))));
  EXPECT_EQ(NOT_A_PORT, problems(validator->validate("0")));
}

TEST(ValidatorPluginTest, LibrariesThatCannotServeAreSkippedWithALogEntry) {
  zelk::test::InstallationFixture installation;
  installation.writePluginsFile("libbroken.so", "this is not a shared library");
  installation.copyIntoPlugins(std::string(ZELK_TEST_PLUGIN_BUILD_DIR) + "/libzelk_test_GoodPlugin.so",
                               "libother.so");
  installation.copyIntoPlugins(ZELK_EXAMPLE_VALIDATOR_PLUGIN, "libport.so");
  zelk::test::MainLogCapture log;
  std::unique_ptr<ConfigurationManager> manager(impl::Factory::createManager());

  EXPECT_EQ((std::vector<std::string>{"portNumber", "storageLocation"}), validatorNames(*manager));
  EXPECT_TRUE(log.contains("libbroken.so") && log.contains("libother.so")) << log.dump();

  // Without a plug-ins directory only the library's own validator is there.
  zelk::test::InstallationFixture bare(zelk::test::InstallationFixture::ETC);
  std::unique_ptr<ConfigurationManager> plain(impl::Factory::createManager());
  EXPECT_EQ(std::vector<std::string>{"storageLocation"}, validatorNames(*plain));
}

}  // namespace
