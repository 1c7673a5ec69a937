// Start-up on real installation trees: registry discovery, the process-wide manager's first load
// and its life cycle, and enableConfiguration's providers and main-log entries. In its own executable because it
// changes process-wide state (host directories, the default manager, the main log).
#include <gtest/gtest.h>
#include <memory>
#include <unistd.h>
#include <utility>

#include "configuration/Models.h"
#include "support/MainLogCapture.h"
#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/UnboundedValue.h"
#include "zelk/configuration/Validator.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/ValueProvider.h"
#include "zelk/configuration/XmlFileValueProvider.h"
#include "zelk/configuration/impl/ConfigurationManagerImpl.h"
#include "zelk/configuration/impl/ContextManager.h"
#include "zelk/host/HostContext.h"
#include "zelk/host/HostErrorReporter.h"

namespace zelk::configuration {
namespace {

std::string registry(const std::string& body) {
  return "<ConfigurationRegistry crgSchemaVersion=\"1.1\">" + body + "</ConfigurationRegistry>";
}

std::string parameter(const std::string& id) {
  return "<Parameters><Parameter id=\"" + id +
         "\" type=\"string\" description=\"D\"/></Parameters>";
}

std::string specificationUsing(const std::string& id, const std::string& parameterId) {
  return "<Specifications><Specification id=\"" + id + "\" description=\"D\"><ParameterRef id=\"" +
         parameterId + "\"/></Specification></Specifications>";
}

const char* const GARBAGE = "this is not a registry";

// The tool's registry: flags a (bool), b and x (strings), all optional.
const std::string TOOL_REGISTRY = registry(
    "<Parameters><Parameter id=\"a\" type=\"bool\" description=\"A\"/>"
    "<Parameter id=\"b\" type=\"string\" description=\"B\"/>"
    "<Parameter id=\"x\" type=\"string\" description=\"X\"/></Parameters>"
    "<Specifications><Specification id=\"tool\" description=\"Tool\">"
    "<ParameterRef id=\"a\" optional=\"true\"/><ParameterRef id=\"b\" optional=\"true\"/>"
    "<ParameterRef id=\"x\" optional=\"true\"/></Specification></Specifications>");

class ConfigurationManagerStartupTest : public ::testing::Test {
protected:
  ~ConfigurationManagerStartupTest() override { ConfigurationManager::shutdown(); }

  // Each registered provider's name and priority, in registry order.
  static std::vector<std::pair<std::string, int>> providers(ConfigurationManager& manager) {
    std::vector<std::pair<std::string, int>> result;
    IEnumerator<ValueProvider*>* providers = manager.getValueProviderEnumerator();
    for (; providers->hasNext(); providers->moveNext()) {
      result.emplace_back(providers->getCurrent()->getName(),
                          providers->getCurrent()->getPriority());
    }
    delete providers;
    return result;
  }

  static size_t globalItemCount(const ConfigurationManager& manager) {
    std::unique_ptr<IEnumerator<GlobalItem*>> items(manager.getGlobalItemEnumerator());
    size_t count = 0;
    for (; items->hasNext(); items->moveNext()) {
      ++count;
    }
    return count;
  }

  static std::string fileEntry(const std::string& path, bool succeeded) {
    return std::string("loadConfigurationFile: [") + (succeeded ? "succeeded" : "failed") +
           "]\n [file = \"" + path + "\"]";
  }

  test::InstallationFixture mInstallation;
  test::MainLogCapture mLog;
};

TEST_F(ConfigurationManagerStartupTest, DiscoveryLoadsTheMainRegistryFirstThenTheOthersInOrder) {
  // The main registry's name is compared ignoring case (its suffix, like every registry's, must
  // be ".crg" exactly); "A.crg" sorts before it but uses it.
  mInstallation.writeEtcFile("ZELK.crg", registry(parameter("base")));
  mInstallation.writeEtcFile("A.crg", registry(specificationUsing("fromA", "base")));
  // Not found: the suffix is compared exactly, and the etc directory is scanned flat.
  mInstallation.writeEtcFile("upper.CRG", GARBAGE);
  mInstallation.writeEtcFile("sub/nested.crg", GARBAGE);
  // The plug-ins tree is scanned at every depth, in sorted path order: a/deep/c.crg comes before
  // b.crg, which uses what c.crg declares.
  mInstallation.writePluginsFile("a/deep/c.crg", registry(parameter("deep")));
  mInstallation.writePluginsFile("b.crg", registry(specificationUsing("fromB", "deep")));
  // A second main-registry name is loaded as an ordinary file.
  mInstallation.writePluginsFile("other/zelk.crg", registry(parameter("other")));

  ConfigurationManager manager;
  manager.loadDefaultConfigurationRegistry();
  EXPECT_NE(nullptr, manager.getSpecification("fromA"));
  EXPECT_NE(nullptr, manager.getSpecification("fromB"));
  EXPECT_NE(nullptr, manager.getParameter("other"));
  EXPECT_EQ(3u, globalItemCount(manager));
}

TEST_F(ConfigurationManagerStartupTest, WithoutTheMainRegistryNothingIsLoaded) {
  mInstallation.writeEtcFile("sub/zelk.crg", registry(parameter("p")));
  mInstallation.writeEtcFile("zelk.crg.old", registry(parameter("p")));
  mInstallation.writePluginsFile("extra.crg", registry(parameter("extra")));
  ConfigurationManager manager;
  EXPECT_EQ("Unable to find the zelk.crg file.",
            test::messageOf<ConfigurationException>(
                [&] { manager.loadDefaultConfigurationRegistry(); }));
  EXPECT_EQ(0u, globalItemCount(manager));
}

TEST_F(ConfigurationManagerStartupTest, TheFirstGetInstanceLoadsTheRegistriesOnce) {
  mInstallation.writeEtcFile("zelk.crg", TOOL_REGISTRY);
  mInstallation.writePluginsFile("broken.crg", registry(specificationUsing("broken", "nothing")));
  EXPECT_EQ("Parameter \"nothing\" was not found",
            test::messageOf<ConfigurationException>([] { ConfigurationManager::getInstance(); }));
  // Kept on purpose: the partly loaded manager is the default one and the load is not retried.
  ConfigurationManager* instance = ConfigurationManager::getInstance();
  EXPECT_NE(nullptr, instance->getSpecification("tool"));
  EXPECT_NE(nullptr, instance->getSpecification("broken"));

}

TEST_F(ConfigurationManagerStartupTest, EnableConfigurationBuildsProvidersInPriorityOrder) {
  mInstallation.writeEtcFile("zelk.crg", TOOL_REGISTRY);
  mInstallation.writeConfigFile("values.xml", "<tool b=\"from file\"/>");
  mInstallation.writeConfigFile("machine.config", "<tool/>");
  const std::string application = mInstallation.writeConfigFile("app/tool.config", "<tool/>");
  ConfigurationManager* manager = ConfigurationManager::getInstance();

  const char* argv[] = {"tool", "-LOADCONFIGURATION", "values.xml", "-a", "-b", "v", "-x", "y"};
  manager->enableConfiguration(true, application.c_str(), 8, argv, "tool");

  const std::vector<std::pair<std::string, int>> expected = {
      {"CLI", 2}, {"XML_FILE", 1}, {"XML_FILE", 3}, {"XML_FILE", 4}};
  EXPECT_EQ(expected, providers(*manager));
  const std::vector<std::string> log = {
      "enableConfiguration:\n [allow machine config = true]\n [application config file = \"" +
          application + "\"]\n [command line = \"tool\", \"-LOADCONFIGURATION\", \"values.xml\", "
                        "\"-a\", \"-b\", \"v\", \"-x\", \"y\"]",
      fileEntry("values.xml", true),  // the name as given, not the path it was found at
      fileEntry(application, true),
      fileEntry(mInstallation.configDir() + "/machine.config", true)};
  EXPECT_EQ(log, mLog.texts("Configuration")) << mLog.dump();

  // The command line holds the flags without the switch and its file.
  ValueGroup values = manager->getValueGroup("tool", true, 0);
  EXPECT_EQ("v", values.getValue("b").asString());
  EXPECT_EQ(3u, values.getItemCount());

  // Every call starts over; a missing machine file takes no priority and leaves no log entry,
  // and without a specification id the command line is dropped.
  ::unlink((mInstallation.configDir() + "/machine.config").c_str());
  test::MainLogCapture again;
  manager->enableConfiguration(true, nullptr, 0, nullptr, "tool");
  EXPECT_TRUE(providers(*manager).empty());
  EXPECT_EQ(std::vector<std::string>{"enableConfiguration:\n [allow machine config = true]\n"
                                     " [application config file = \"\"]\n [command line = ]"},
            again.texts("Configuration"));
  const char* flags[] = {"tool", "-loadConfiguration", "values.xml", "-b", "v"};
  manager->enableConfiguration(false, "", 5, flags, nullptr);
  EXPECT_EQ((std::vector<std::pair<std::string, int>>{{"XML_FILE", 1}}), providers(*manager));
}

TEST_F(ConfigurationManagerStartupTest, FilesLargerThanTheLimitAreRefusedBeforeTheyAreRead) {
  mInstallation.writeEtcFile("zelk.crg", TOOL_REGISTRY);
  const std::string values = "<tool b=\"" + std::string(1000, 'v') + "\"/>";
  mInstallation.writeConfigFile("values.xml", values);
  ConfigurationManager* manager = ConfigurationManager::getInstance();
  EXPECT_EQ(64u << 20, manager->getMaxFileSize());
  const std::size_t limit = TOOL_REGISTRY.size();
  ASSERT_LT(limit, values.size());
  manager->setMaxFileSize(limit);
  const char* argv[] = {"tool", "-loadConfiguration", "values.xml"};
  EXPECT_EQ("File \"" + mInstallation.configDir() + "/values.xml\" is " +
                std::to_string(values.size()) + " bytes long, more than the limit of " +
                std::to_string(limit) + " bytes",
            test::messageOf<ConfigurationException>([&] { manager->enableConfiguration(false, nullptr, 3, argv, "tool"); }));
  EXPECT_EQ(fileEntry("values.xml", false), mLog.texts("Configuration").back());
  // The registry files are read under the limit too, from the next reset on.
  manager->setMaxFileSize(limit - 1);
  EXPECT_EQ("File \"" + mInstallation.etcDir() + "/zelk.crg\" is " + std::to_string(limit) +
                " bytes long, more than the limit of " + std::to_string(limit - 1) + " bytes",
            test::messageOf<ConfigurationException>([&] { manager->reset(); }));
}

TEST_F(ConfigurationManagerStartupTest, EnableConfigurationReportsBadFiles) {
  mInstallation.writeEtcFile("zelk.crg", TOOL_REGISTRY);
  ConfigurationManager* manager = ConfigurationManager::getInstance();
  const char* const missingValue = "Missing value for the -loadConfiguration parameter";
  const auto enable = [&](std::vector<const char*> argv, const char* application = nullptr) {
    return test::messageOf<ConfigurationException>([&] {
      manager->enableConfiguration(false, application, static_cast<unsigned int>(argv.size()),
                                   argv.data(), "tool");
    });
  };
  EXPECT_EQ(missingValue, enable({"tool", "-loadConfiguration"}));
  EXPECT_EQ(missingValue, enable({"tool", "-loadConfiguration", "-x", "file.xml"}));

  // A bare name missing from the working directory is looked up in the configuration directory;
  // the message names that path, the log the name as given.
  test::MainLogCapture log;
  EXPECT_EQ("File \"" + mInstallation.configDir() + "/nothing.xml\" was not found",
            enable({"tool", "-loadConfiguration", "nothing.xml", "-a"}));
  EXPECT_EQ(fileEntry("nothing.xml", false), log.texts("Configuration").back());
  EXPECT_TRUE(providers(*manager).empty());  // the command line was not reached

  const std::string missingApplication = mInstallation.root() + "/none/app.config";
  EXPECT_EQ("File \"" + missingApplication + "\" was not found",
            enable({"tool", "-a"}, missingApplication.c_str()));
  EXPECT_EQ(fileEntry(missingApplication, false), log.texts("Configuration").back());
  // The providers made before the failure stay.
  EXPECT_EQ((std::vector<std::pair<std::string, int>>{{"CLI", 1}}), providers(*manager));
}

// A validator that tells when it is destroyed.
class WatchedValidator : public Validator {
public:
  explicit WatchedValidator(bool& destroyed) : Validator("watched"), mDestroyed(destroyed) {}
  ~WatchedValidator() override { mDestroyed = true; }
  using Validator::validate;
  char* validate(const char*) const override { return nullptr; }

private:
  bool& mDestroyed;
};

TEST_F(ConfigurationManagerStartupTest, TreesHandedOutOutliveAResetAndTakeTheOldRegistryAlong) {
  mInstallation.writeEtcFile(
      "zelk.crg",
      registry("<Enumerations><Enumeration id=\"modes\"><Value label=\"fast\"/>"
               "<Value label=\"slow\"/></Enumeration></Enumerations>"
               "<Parameters><Parameter id=\"level\" type=\"uint32\" description=\"L\"/>"
               "<Parameter id=\"mode\" type=\"enum\" enumType=\"modes\" default=\"slow\" "
               "description=\"M\"/><Parameter id=\"path\" type=\"string\" description=\"P\"/>"
               "<Parameter id=\"name\" type=\"string\" description=\"N\"/></Parameters>"
               "<Specifications><Specification id=\"tool\" description=\"T\">"
               "<ParameterRef id=\"level\" optional=\"true\"/>"
               "<ParameterRef id=\"mode\" optional=\"true\"/>"
               "<ParameterRef id=\"path\" optional=\"true\" unbounded=\"true\"/>"
               "<Container id=\"db\" optional=\"true\" description=\"D\">"
               "<ParameterRef id=\"name\" optional=\"true\"/></Container>"
               "</Specification></Specifications>"));
  const std::string file =
      mInstallation.writeConfigFile("values.xml", "<tool><path value=\"/f\"/><db name=\"d\"/></tool>");
  ConfigurationManager* manager = ConfigurationManager::getInstance();
  const char* argv[] = {"tool", "-level", "7", "-path", "/c"};
  manager->enableConfiguration(false, file.c_str(), 5, argv, "tool");
  bool destroyed = false;
  manager->registerValidator(new WatchedValidator(destroyed));
  {
    // A default the application sets from a value of the registry's own does not keep the
    // registry alive by itself.
    const Parameter* level = static_cast<const Parameter*>(manager->getParameter("level"));
    const_cast<Parameter*>(level)->setDefaultValue(Value::create(
        manager->getSpecification("tool")->findParameterRef("level"), "5"));
    ValueGroup mine(manager->getSpecification("tool"));
    mine.addValue("level", "8");
    manager->setApplicationValues(mine, 0);
    ValueGroup merged = manager->getValueGroup("tool", true, 0);
    Value mode = merged.getValue("mode");  // the registry's own default, not part of the tree
    ValueGroup db = merged.getValueGroup("db");
    const std::string before = manager->getRepresentation(merged);

    // Every provider and every registry object goes, then a new start reads other values.
    manager->reset();
    const char* again[] = {"tool", "-level", "9"};
    manager->enableConfiguration(false, nullptr, 3, again, "tool");
    EXPECT_EQ(9u, manager->getValueGroup("tool", true, 0).getValue("level").asUInt32());
    EXPECT_FALSE(destroyed);

    EXPECT_EQ(before, manager->getRepresentation(merged));
    EXPECT_EQ(8u, merged.getValue("level").asUInt32());
    EXPECT_EQ(8u, mine.getValue("level").asUInt32());
    EXPECT_EQ(2u, merged.getUnboundedValue("path").getValueCount());
    EXPECT_EQ("slow", mode.asString());
    EXPECT_EQ(Parameter::ENUM, mode.getValueType());
    EXPECT_EQ("d", db.getValue("name").asString());
    merged = ValueGroup::Null;
    // A default read on its own keeps the tree it came from, and so the registry, alive.
    EXPECT_EQ("slow", mode.asString());
    EXPECT_FALSE(destroyed);
  }
  // The last handle on the old registry's values took it along.
  EXPECT_TRUE(destroyed);
}

TEST(ContextManagerTest, RunsInAContextOfItsOwnAndRestoresThePreviousOne) {
  zelk::host::HostContext outer(1, 2);
  zelk::host::HostContext::makeCurrent(&outer);
  {
    impl::ContextManager scope;
    zelk::host::HostContext* inner = zelk::host::HostContext::current();
    ASSERT_NE(&outer, inner);
    EXPECT_EQ(inner, scope.getContext());
    EXPECT_TRUE(zelk::host::HostErrorReporter::isEnabled(zelk::host::hostCurrentSession()));
  }
  EXPECT_EQ(&outer, zelk::host::HostContext::current());
  zelk::host::HostContext::makeCurrent(nullptr);
}

using impl::Factory;
using ConfigurationManagerSingletonTest = ConfigurationManagerStartupTest;

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

  Factory::destroy(Factory::createManager());
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
}  // namespace zelk::configuration
