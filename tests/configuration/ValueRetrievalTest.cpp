// Retrieval of a tool's values through the process-wide manager: providers asked in registry key
// order and merged, the merged tree validated and cached per specification id, and the
// application's own values (see impl/ArchiveToolModel.h for the tools).
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "configuration/impl/ArchiveToolModel.h"
#include "support/TempDir.h"
#include "support/TextFiles.h"
#include "zelk/configuration/ApplicationValueProvider.h"
#include "zelk/configuration/ConfigurationListener.h"
#include "zelk/configuration/UnboundedValue.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/XmlFileValueProvider.h"
#include "zelk/configuration/impl/CommandLineValueProvider.h"
#include "zelk/configuration/impl/ConfigurationManagerImpl.h"

using namespace zelk::configuration;
using zelk::test::messageOf;

namespace {

class ValueRetrievalTest : public ::testing::Test {
protected:
  ValueRetrievalTest() : mManager(mSingleton.manager()), mModel(mManager) {}

  // Registers an enabled XML provider over a file holding content.
  XmlFileValueProvider* addFile(const std::string& content) {
    const std::string path = mDir.file("values" + std::to_string(++mFiles) + ".xml");
    zelk::test::writeTextFile(path, content);
    XmlFileValueProvider* provider = new XmlFileValueProvider(10, "");
    mManager->registerValueProvider(provider);
    provider->enableProvider(path.c_str(), 0);
    return provider;
  }

  // Registers an enabled command-line provider over "tool" and words, for the archive tool.
  impl::CommandLineValueProvider* addCommandLine(std::vector<const char*> argv) {
    argv.insert(argv.begin(), "tool");
    impl::CommandLineValueProvider* provider = new impl::CommandLineValueProvider(20, "");
    mManager->registerValueProvider(provider);
    provider->enableProvider(static_cast<int>(argv.size()), argv.data(), "archive", 0);
    return provider;
  }

  std::string error(const char* id, bool required, int flags = 0) {
    return messageOf([&] { mManager->getValueGroup(id, required, flags); });
  }

  zelk::test::SingletonManager mSingleton;
  zelk::test::TempDir mDir;
  int mFiles = 0;
  ConfigurationManager* mManager;
  zelk::test::ArchiveToolModel mModel;
};

TEST_F(ValueRetrievalTest, ApplicationValuesWinOverTheCommandLineOverFilesInOrder) {
  addFile(
      "<archive name=\"file1\" level=\"8\"><paths value=\"/f1\"/><db dbname=\"d1\"/>"
      "<mirror host=\"m1\"/></archive>");
  addFile(
      "<archive name=\"file2\" target=\"/file2\" level=\"9\" verbose=\"true\">"
      "<paths value=\"/f2\"/><db dbname=\"d2\" dbport=\"7\"/><mirror host=\"m2\"/></archive>");
  addCommandLine({"-name", "cli", "-paths", "/c"});
  ValueGroup mine(mModel.archive);
  mine.addValue("name", "app");
  mManager->setApplicationValues(mine, 0);

  ValueGroup values = mManager->getValueGroup("archive", true, 0);
  EXPECT_TRUE(values.isComplete());
  EXPECT_EQ("app", values.getValue("name").asString());
  EXPECT_EQ("/file2", values.getValue("target").asString());
  EXPECT_EQ(8, values.getValue("level").asInt32());
  EXPECT_TRUE(values.getValue("verbose").asBool());
  UnboundedValue paths = values.getUnboundedValue("paths");
  ASSERT_EQ(3u, paths.getValueCount());
  EXPECT_EQ("/c", paths.asString(0));
  EXPECT_EQ("/f2", paths.asString(2));
  // A bounded container merges into the first file's group; an unbounded one gets one per file.
  EXPECT_EQ(1u, values.getItemCount("db"));
  EXPECT_EQ("d1", values.getValueGroup("db").getValue("dbname").asString());
  EXPECT_EQ(7, values.getValueGroup("db").getValue("dbport").asInt32());
  EXPECT_EQ(2u, values.getItemCount("mirror"));
}

TEST_F(ValueRetrievalTest, ValuesAreCachedPerIdWhateverTheFlagsOrCase) {
  impl::CommandLineValueProvider* cli = addCommandLine({"-target", "/t"});
  const uint32_t first = mManager->getValueGroup("archive", true, 0).getInstanceId();
  const char* argv[] = {"tool", "-target", "/other"};
  cli->enableProvider(3, argv, "archive", 0);
  ValueGroup cached = mManager->getValueGroup("archive", false, 0x10);
  EXPECT_EQ(first, cached.getInstanceId());
  EXPECT_EQ("/t", cached.getValue("target").asString());
  // A specification whose id differs only in case shares the entry.
  impl::Factory::createSpecification("ARCHIVE", "", "", "Another tool", false, mManager);
  EXPECT_EQ(first, mManager->getValueGroup("ARCHIVE", true, 0).getInstanceId());

  // Registering a provider keeps the cache; installing application values clears it.
  addFile("<archive target=\"/late\"/>");
  EXPECT_EQ(first, mManager->getValueGroup("archive", true, 0).getInstanceId());
  mManager->setApplicationValues(ValueGroup(mModel.archive), 0);
  ValueGroup fresh = mManager->getValueGroup("archive", true, 0);
  EXPECT_EQ("/other", fresh.getValue("target").asString());
  EXPECT_EQ("/t", cached.getValue("target").asString());  // handed out earlier, still alive
  mManager->getImpl()->clearValueCache();
  EXPECT_NE(fresh.getInstanceId(), mManager->getValueGroup("archive", true, 0).getInstanceId());
}

TEST_F(ValueRetrievalTest, TreesHandedOutKeepTheirValuesWhateverBecomesOfTheProviders) {
  XmlFileValueProvider* file =
      addFile("<archive target=\"/file\" level=\"8\"><paths value=\"/f\"/><db dbname=\"d\"/></archive>");
  impl::CommandLineValueProvider* cli = addCommandLine({"-name", "cli", "-paths", "/c"});
  ValueGroup mine(mModel.archive);
  mine.addValue("port", "7");
  mManager->setApplicationValues(mine, 0);
  ValueGroup merged = mManager->getValueGroup("archive", true, 0);
  ValueGroup direct = cli->getValues(*mModel.archive, 0x14);
  const std::string before = mManager->getRepresentation(merged);

  // Each provider re-read, replaced, reset, then destroyed.
  const char* argv[] = {"tool", "-name", "again"};
  cli->enableProvider(3, argv, "archive", 0);
  file->enableProvider(mDir.file("values1.xml").c_str(), 0);
  mManager->setApplicationValues(ValueGroup(mModel.archive), 0);
  EXPECT_EQ("again", mManager->getValueGroup("archive", false, 0).getValue("name").asString());
  for (const char* id : {cli->getId(), file->getId(), "APP_VALUES"}) {
    ValueProvider* provider = mManager->getValueProvider(id);
    provider->reset();
    mManager->unregisterValueProvider(id);
    impl::Factory::destroy(provider, false, 0);
  }
  mManager->getImpl()->clearValueCache();

  EXPECT_EQ(before, mManager->getRepresentation(merged));
  EXPECT_EQ(7, merged.getValue("port").asInt32());
  EXPECT_EQ("cli", merged.getValue("name").asString());
  EXPECT_EQ(2u, merged.getUnboundedValue("paths").getValueCount());
  EXPECT_EQ("d", merged.getValueGroup("db").getValue("dbname").asString());
  EXPECT_EQ("cli", direct.getValue("name").asString());
  EXPECT_EQ(7, mine.getValue("port").asInt32());
}

TEST_F(ValueRetrievalTest, EachManagerResolvesItsProvidersSpecificationsInItself) {
  // Another manager with its own "archive" tool, beside the process-wide one.
  ConfigurationManager* other = impl::Factory::createManager();
  zelk::test::ArchiveToolModel otherModel(other);
  addCommandLine({"-target", "/here"});
  impl::CommandLineValueProvider* cli = new impl::CommandLineValueProvider(20, "");
  other->registerValueProvider(cli);
  const char* argv[] = {"tool", "-target", "/there"};
  cli->enableProvider(3, argv, "archive", 0);
  EXPECT_EQ("/there", other->getValueGroup("archive", true, 0).getValue("target").asString());
  EXPECT_EQ("/here", mManager->getValueGroup("archive", true, 0).getValue("target").asString());

  // Taken back, the provider outlives the manager and looks in the process-wide one again.
  other->unregisterValueProvider(cli->getId());
  impl::Factory::destroy(other);
  cli->enableProvider(3, argv, "archive", 0);
  EXPECT_EQ("/there", cli->getValues(*mModel.archive, 0x14).getValue("target").asString());
  delete cli;
}

TEST_F(ValueRetrievalTest, MissingValuesAndBrokenValues) {
  EXPECT_EQ("The \"nosuch%s\" specification was not found", error("nosuch%s", false));
  // A registered provider that is not enabled contributes nothing.
  mManager->registerValueProvider(new impl::CommandLineValueProvider(1, ""));
  EXPECT_EQ("The \"restore\" group was not found", error("restore", true));
  ValueGroup empty = mManager->getValueGroup("restore", false, 0);
  EXPECT_EQ(mModel.restore->getItemsContainer(), empty.getGroupItem());
  EXPECT_EQ(0u, empty.getItemCount());
  EXPECT_EQ(empty.getInstanceId(), mManager->getValueGroup("restore", true, 0).getInstanceId());
  impl::Factory::createSpecification("restore", "", "", "Again", false, mManager);
  EXPECT_EQ("Duplicate specification \"restore\"", error("restore", false));

  // Providers skip the required and one-of checks; the merged tree gets them with the caller's
  // flags, and a failure caches nothing.
  addFile("<archive fast=\"true\"/>");
  addCommandLine({"-small"});
  EXPECT_EQ(
      "A required flag was not specified. You must provide one of the following flags: "
      "target",
      error("archive", true));
  addFile("<archive target=\"/t\"/>");
  EXPECT_EQ(
      "The \"fast\" and \"small\" parameters are mutually exclusive, you can only specify "
      "one.",
      error("archive", true));
  EXPECT_TRUE(mManager->getValueGroup("archive", true, 0x10).getValue("small").asBool());
}

TEST_F(ValueRetrievalTest, AHelpRequestSkipsValidation) {
  impl::CommandLineValueProvider* cli = addCommandLine({"-help", "-fast", "-small"});
  EXPECT_TRUE(mManager->getValueGroup("archive", true, 0).getValue("help").asBool());
  // "help" given as false is no escape: only the required check ignores it.
  const char* argv[] = {"tool", "-fast", "-small"};
  cli->enableProvider(3, argv, "archive", 0);
  Value help(mModel.archive->findParameterRef("help"));
  help.set(false);
  ValueGroup mine(mModel.archive);
  mine.add(help);
  mManager->setApplicationValues(mine, 0);
  EXPECT_EQ("The \"fast\" and \"small\" parameters are mutually exclusive, you can only specify "
            "one.",
            error("archive", true));
}

class GroupWatcher : public ConfigurationListener {
public:
  ~GroupWatcher() override {}
  void onValueGroupAdded(const Container*, const ValueGroupAddedArguments& args) override {
    events.push_back("added " + std::to_string(args.mValueGroup->getItemCount()));
  }
  void onValueGroupRemoved(const Container*, const ValueGroupRemovedArguments& args) override {
    events.push_back("removed " + std::to_string(args.mValueGroup->getItemCount()));
  }
  std::vector<std::string> events;
};

TEST_F(ValueRetrievalTest, ApplicationValuesAreAnnounced) {
  GroupWatcher watcher;
  watcher.startListeningTo(mModel.archive);
  auto group = [&](const char* target) {
    ValueGroup values(mModel.archive);
    if (target != 0) values.addValue("target", target);
    values.complete();  // only complete groups are announced
    return values;
  };
  ValueGroup mine = group("/app");
  mManager->setApplicationValues(mine, 0);
  EXPECT_EQ("/app", mManager->getValueGroup("archive", true, 0).getValue("target").asString());
  // The provider is reset first, which lets the old group go unchanged and unannounced.
  ValueProvider* provider = mManager->getValueProvider("APP_VALUES");
  mManager->setApplicationValues(group("/next"), 0);
  EXPECT_EQ(provider, mManager->getValueProvider("APP_VALUES"));
  EXPECT_EQ("/app", mine.getValue("target").asString());
  mManager->setApplicationValues(ValueGroup("unmatched"), 0);
  mManager->setApplicationValues(ValueGroup(), 0);
  EXPECT_EQ(0u, mManager->getValueGroup("archive", false, 0).getItemCount());
  EXPECT_EQ(std::vector<std::string>({"added 1", "added 1"}), watcher.events);

  ApplicationValueProvider own(5, "");
  own.enableProvider(group("/own"), 0);
  own.enableProvider(group(0), 0);
  EXPECT_EQ(std::vector<std::string>({"added 1", "added 1", "added 1", "removed 1", "added 0"}),
            watcher.events);
  EXPECT_EQ("setArguments(int, const char const*, const char*, int) is not supported",
            messageOf([&] { own.enableProvider(0, nullptr, "archive", 0); }));
  mManager->registerValueProvider(new ApplicationValueProvider(0, ""));
  EXPECT_EQ("Duplicate provider \"APP_VALUES\"",
            messageOf([&] { mManager->setApplicationValues(mine, 0); }));
}

}  // namespace
