// Values from an etcd key through the manager, against a real etcd: where the cluster stands
// among the other sources, the ways a tool names its cluster, and a start with the cluster away.
// In its own executable because it changes process-wide state (host directories, the default
// manager, the main log).
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "configuration/Models.h"
#include "support/EtcdServer.h"
#include "support/MainLogCapture.h"
#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/EtcdSource.h"
#include "zelk/configuration/EtcdValueProvider.h"
#include "zelk/configuration/ValidationException.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/impl/EtcdValueProviderImpl.h"

namespace zelk::configuration {
namespace {

const std::string TOOL_REGISTRY =
    "<ConfigurationRegistry crgSchemaVersion=\"1.1\"><Parameters>"
    "<Parameter id=\"a\" type=\"string\" description=\"A\"/>"
    "<Parameter id=\"b\" type=\"string\" description=\"B\"/>"
    "<Parameter id=\"x\" type=\"string\" description=\"X\"/></Parameters>"
    "<Specifications><Specification id=\"tool\" description=\"Tool\">"
    "<ParameterRef id=\"a\" optional=\"true\"/><ParameterRef id=\"b\" optional=\"true\"/>"
    "<ParameterRef id=\"x\" optional=\"true\"/></Specification></Specifications>"
    "</ConfigurationRegistry>";

class EtcdValueProviderTest : public ::testing::Test {
protected:
  EtcdValueProviderTest() { mInstallation.writeEtcFile("zelk.crg", TOOL_REGISTRY); }
  ~EtcdValueProviderTest() override { ConfigurationManager::shutdown(); }

  void enable(std::vector<const char*> argv, bool machine = true) {
    ConfigurationManager::getInstance()->enableConfiguration(
        machine, nullptr, static_cast<unsigned int>(argv.size()), argv.data(), "tool");
  }
  // a, b and x as the tool reads them ("-" for none).
  static std::string values() {
    ValueGroup group = ConfigurationManager::getInstance()->getValueGroup("tool", false, 0);
    std::string text;
    for (const char* name : {"a", "b", "x"}) {
      Value value = group.getValue(name);
      text += std::string(text.empty() ? "" : " ") + name + "=" +
              (value.isNull() ? "-" : value.asString());
    }
    return text;
  }
  static std::vector<std::string> providerNames() {
    std::vector<std::string> names;
    std::unique_ptr<IEnumerator<ValueProvider*>> providers(
        ConfigurationManager::getInstance()->getValueProviderEnumerator());
    for (; providers->hasNext(); providers->moveNext()) {
      names.push_back(providers->getCurrent()->getName());
    }
    return names;
  }
  std::string settings(const std::string& more = "") const {
    return "endpoints=" + mEtcd.endpoint() + ";key=/fleet/tools" + more;
  }

  test::InstallationFixture mInstallation;
  test::EtcdServer mEtcd;
  test::MainLogCapture mLog;
};

TEST_F(EtcdValueProviderTest, TheClusterBeatsFilesAndTheCommandLineBeatsTheCluster) {
  const int64_t revision =
      mEtcd.put("/fleet/tools", "<fleet><tool b=\"cluster\" x=\"cluster\"/></fleet>");
  mInstallation.writeConfigFile("machine.config",
                                "<machine><tool a=\"machine\" b=\"machine\" x=\"machine\"/>"
                                "</machine>");
  const std::string source = settings();
  enable({"tool", "-etcdConfiguration", source.c_str(), "-x", "cli"});
  EXPECT_EQ("a=machine b=cluster x=cli", values());
  EXPECT_EQ((std::vector<std::string>{"CLI", "ETCD", "XML_FILE"}), providerNames());
  EXPECT_TRUE(mLog.contains("loadEtcdConfiguration: [succeeded]\n [endpoint = \"" +
                            mEtcd.endpoint() + "\", key = \"/fleet/tools\", revision = " +
                            std::to_string(revision) + "]"))
      << mLog.dump();

  // Named by a value file the tool reads instead; a key that holds nothing gives nothing.
  mInstallation.writeConfigFile("machine.config",
                                "<machine><etcdConfiguration endpoints=\"" + mEtcd.endpoint() +
                                    "\" key=\"/fleet/tools\"/><tool a=\"machine\" b=\"machine\"/>"
                                    "<etcdConfiguration endpoints=\"" + mEtcd.endpoint() +
                                    "\" key=\"/fleet/none\"/></machine>");
  enable({"tool"});
  EXPECT_EQ("a=machine b=cluster x=cluster", values());
  EXPECT_EQ((std::vector<std::string>{"CLI", "ETCD", "ETCD", "XML_FILE"}), providerNames());

  // An application adds one in code; it comes after those there are.
  enable({"tool"}, false);
  mEtcd.put("/fleet/other", "<fleet><tool a=\"app\" b=\"other\"/></fleet>");
  EtcdSource other = mEtcd.source("/fleet/other");
  ConfigurationManager::getInstance()->addEtcdConfiguration(other);
  EXPECT_EQ("a=app b=other x=-", values());
}

TEST_F(EtcdValueProviderTest, BadSourcesAreRefusedWithTheirReason) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"key=/k", "names no endpoints"},
      {"endpoints=http://127.0.0.1:1", "names no key"},
      {settings(";colour=red"), "Unknown etcd setting \"colour\""},
      {settings(";whenAway=sometimes"), "\"fail\" or \"lastReceived\", not \"sometimes\""},
      {settings(";whenAway=lastReceived"), "names no lastReceivedFile"},
      {settings(";requestTimeoutMs=0"), "positive number of milliseconds"},
      {settings(";user"), "has no value"}};
  for (const auto& c : cases) {
    const std::string message = test::messageOf<ConfigurationException>(
        [&] { enable({"tool", "-etcdConfiguration", c.first.c_str()}); });
    EXPECT_NE(std::string::npos, message.find(c.second)) << c.first << ": " << message;
  }
  EXPECT_EQ("Missing value for the -etcdConfiguration parameter",
            test::messageOf<ConfigurationException>([&] { enable({"tool", "-etcdConfiguration"}); }));

  // A malformed document is refused with the reader's message naming the key and revision.
  const int64_t revision = mEtcd.put("/fleet/tools", "<fleet><tool b=\"unclosed></fleet>");
  const std::string source = settings();
  const std::string message = test::messageOf<ValidationException>(
      [&] { enable({"tool", "-etcdConfiguration", source.c_str()}); });
  EXPECT_NE(std::string::npos,
            message.find("etcd key /fleet/tools at revision " + std::to_string(revision)))
      << message;
  EXPECT_EQ(std::vector<std::string>{}, providerNames());  // the command line was not reached
}

TEST_F(EtcdValueProviderTest, AStartWithTheClusterAwayFailsOrUsesTheLastDocumentReceived) {
  const std::string kept = mInstallation.root() + "/fleet-tools.xml";
  const int64_t revision = mEtcd.put("/fleet/tools", "<fleet><tool b=\"cluster\"/></fleet>");
  const std::string lastReceived = settings(";whenAway=lastReceived;lastReceivedFile=" + kept);
  enable({"tool", "-etcdConfiguration", lastReceived.c_str()});
  EXPECT_EQ("a=- b=cluster x=-", values());
  std::ifstream in(kept);
  std::stringstream text;
  text << in.rdbuf();
  EXPECT_EQ(impl::EtcdValueProviderImpl::makeLastReceived("<fleet><tool b=\"cluster\"/></fleet>",
                                                          revision),
            text.str());

  mEtcd.stop();
  test::MainLogCapture log;
  enable({"tool", "-etcdConfiguration", lastReceived.c_str()});
  EXPECT_EQ("a=- b=cluster x=-", values());
  auto* provider = dynamic_cast<EtcdValueProvider*>(
      ConfigurationManager::getInstance()->getValueProvider("ETCD"));
  ASSERT_NE(nullptr, provider);
  EXPECT_TRUE(provider->isFromLastReceived());
  EXPECT_EQ(revision, provider->getRevision());
  EXPECT_TRUE(log.contains("loadEtcdConfiguration: [started from the last document received]\n"
                           " [key = \"/fleet/tools\", revision = " +
                           std::to_string(revision) + ", file = \"" + kept + "\"]\n"
                           " [The etcd cluster could not be reached at " + mEtcd.endpoint()))
      << log.dump();

  // Told to fail, or with nothing kept, the start fails naming the endpoint.
  const std::string failing = settings(";connectTimeoutMs=300");
  const std::string message = test::messageOf<ConfigurationException>(
      [&] { enable({"tool", "-etcdConfiguration", failing.c_str()}); });
  EXPECT_EQ(0u, message.find("The etcd cluster could not be reached at " + mEtcd.endpoint()))
      << message;
  EXPECT_TRUE(log.contains("loadEtcdConfiguration: [failed]")) << log.dump();
  const std::string none =
      settings(";whenAway=lastReceived;lastReceivedFile=" + mInstallation.root() + "/none.xml");
  EXPECT_NE(std::string::npos,
            test::messageOf<ConfigurationException>([&] {
              enable({"tool", "-etcdConfiguration", none.c_str()});
            }).find("and no last document received is kept in \"" + mInstallation.root() +
                    "/none.xml\""));
}

}  // namespace
}  // namespace zelk::configuration
