// The value providers end to end, on the archive and restore tools (see Models.h): the command
// line and value files become matched, validated value trees; the process-wide manager asks its
// providers in registry key order, merges and validates their trees and caches the result per
// specification id; the application's own values are announced.
#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>

#include "configuration/Models.h"
#include "support/TempDir.h"
#include "support/TextFiles.h"
#include "zelk/configuration/ApplicationValueProvider.h"
#include "zelk/configuration/ConfigurationListener.h"
#include "zelk/configuration/UnboundedValue.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/ValueFileWriter.h"
#include "zelk/configuration/ValueGroupIterator.h"
#include "zelk/configuration/ValueIterator.h"
#include "zelk/configuration/XmlFileValueProvider.h"
#include "zelk/configuration/impl/CommandLineValueProvider.h"
#include "zelk/configuration/impl/CommandLineValueProviderImpl.h"
#include "zelk/configuration/impl/ConfigurationManagerImpl.h"
#include "zelk/configuration/impl/ParameterPrefixIndex.h"
#include "zelk/util/ContractViolationException.h"

using namespace zelk::configuration;
using zelk::configuration::impl::CommandLineValueProviderImpl;
using zelk::test::messageOf;
typedef zelk::test::ArchiveToolModel Model;

namespace {

// The manager skips the required and one-of checks of providers.
const int PROVIDER_CHECKS = 0x14;

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
  EXPECT_EQ("app", values.getValue("name").asString());
  EXPECT_EQ("/file2", values.getValue("target").asString());
  EXPECT_EQ(8, values.getValue("level").asInt32());
  UnboundedValue paths = values.getUnboundedValue("paths");
  ASSERT_EQ(3u, paths.getValueCount());
  EXPECT_EQ("/f2", paths.asString(2));
  // A bounded container merges into the first file's group; an unbounded one gets one per file.
  EXPECT_EQ(1u, values.getItemCount("db"));
  EXPECT_EQ(7, values.getValueGroup("db").getValue("dbport").asInt32());
  EXPECT_EQ(2u, values.getItemCount("mirror"));
}

// A provider of the application's own: it answers its id as "name" and as one of the "paths".
class OwnProvider : public ValueProvider {
public:
  class Impl : public impl::ValueProviderImpl {
  public:
    Impl(const char* id, int priority) : impl::ValueProviderImpl("OWN", priority, id) {}
    ValueGroup getSpecificationValues(const Specification& spec, int) const override {
      ValueGroup values(&spec);
      values.addValue("name", getId());
      values.addValue("paths", getId());
      return values;
    }
  };
  OwnProvider(const char* id, int priority) : ValueProvider(new Impl(id, priority)) {
    getImpl()->setEnabled(true);
  }
  const char* getName() const override { return "OWN"; }
};

TEST_F(ValueRetrievalTest, ProvidersAnswerInTheByteOrderOfTheirIdsWhateverTheirPriorities) {
  // Registered out of order, with priorities that contradict the order.
  mManager->registerValueProvider(new OwnProvider("defaults", -100));
  addFile("<archive name=\"file1\"><paths value=\"file1\"/></archive>");
  mManager->registerValueProvider(new OwnProvider(ConfigurationManager::ETCD_PROVIDER_NAME, 50));
  addCommandLine({"-name", "cli", "-paths", "cli"});
  addFile("<archive name=\"file2\"><paths value=\"file2\"/></archive>");
  ValueGroup mine(mModel.archive);
  mine.addValue("paths", "app");
  mine.addValue("target", "/t");
  mManager->setApplicationValues(mine, 0);
  mManager->registerValueProvider(new OwnProvider("AAA", 1000));

  std::vector<std::string> order;
  std::unique_ptr<zelk::IEnumerator<ValueProvider*>> providers(
      mManager->getValueProviderEnumerator());
  for (; providers->hasNext(); providers->moveNext()) {
    order.push_back(providers->getCurrent()->getId());
  }
  ASSERT_EQ(7u, order.size());
  EXPECT_EQ("CLI-", order[2].substr(0, 4));  // a generated id, "CLI-" and a number
  order[2] = "CLI-n";
  EXPECT_EQ((std::vector<std::string>{"AAA", "APP_VALUES", "CLI-n", "ETCD", "XML_FILE",
                                      "XML_FILE", "defaults"}),
            order);

  ValueGroup values = mManager->getValueGroup("archive", false, 0);
  EXPECT_EQ("AAA", values.getValue("name").asString());
  UnboundedValue paths = values.getUnboundedValue("paths");
  std::vector<std::string> answers;
  for (size_t i = 0; i < paths.getValueCount(); ++i) answers.push_back(paths.asString(i));
  EXPECT_EQ((std::vector<std::string>{"AAA", "app", "cli", "ETCD", "file1", "file2", "defaults"}),
            answers);
}

TEST_F(ValueRetrievalTest, ValuesAreCachedPerIdWhateverTheFlagsOrCase) {
  impl::CommandLineValueProvider* cli = addCommandLine({"-target", "/t"});
  const uint32_t first = mManager->getValueGroup("archive", true, 0).getInstanceId();
  const char* argv[] = {"tool", "-target", "/other"};
  cli->enableProvider(3, argv, "archive", 0);
  ValueGroup cached = mManager->getValueGroup("archive", false, 0x10);
  EXPECT_EQ(first, cached.getInstanceId());
  EXPECT_EQ("/t", cached.getValue("target").asString());

  // Registering a provider keeps the cache; installing application values clears it.
  addFile("<archive target=\"/late\"/>");
  EXPECT_EQ(first, mManager->getValueGroup("archive", true, 0).getInstanceId());
  mManager->setApplicationValues(ValueGroup(mModel.archive), 0);
  ValueGroup fresh = mManager->getValueGroup("archive", true, 0);
  EXPECT_EQ("/other", fresh.getValue("target").asString());
  EXPECT_EQ("/t", cached.getValue("target").asString());  // handed out earlier, still alive
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
  ValueGroup fromOther = other->getValueGroup("archive", true, 0);
  EXPECT_EQ("/there", fromOther.getValue("target").asString());
  EXPECT_EQ("/here", mManager->getValueGroup("archive", true, 0).getValue("target").asString());

  // Taken back, the provider outlives the manager and looks in the process-wide one again; the
  // manager's values outlive it too.
  other->unregisterValueProvider(cli->getId());
  impl::Factory::destroy(other);
  EXPECT_EQ("/there", fromOther.getValue("target").asString());
  EXPECT_EQ(3, fromOther.getValue("level").asInt32());
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
  EXPECT_EQ(empty.getInstanceId(), mManager->getValueGroup("restore", true, 0).getInstanceId());

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
  mManager->registerValueProvider(new ApplicationValueProvider(0, ""));
  EXPECT_EQ("Duplicate provider \"APP_VALUES\"",
            messageOf([&] { mManager->setApplicationValues(mine, 0); }));
}


const char* const ARCHIVE_FILE =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!-- the nightly archive -->\n"
    "<archive name=\"nightly\" target=\"/backups\" LEVEL=\"5\" verbose=\"true\">\n"
    "  <paths value=\"/home\"/>\n"
    "  <paths value=\"/etc\"/>\n"
    "  <PATHS value=\"/var\"><ignored value=\"x\"/></PATHS>\n"
    "  <db dbname=\"main\" dbport=\"6000\"/>\n"
    "  <mirror host=\"a\"/>\n"
    "  <mirror host=\"b\"/>\n"
    "</archive>\n";

// Values for two tools in one file, below an element that names neither.
const char* const SHARED_FILE =
    "<configuration>\n"
    "  <restore source=\"/backups\"><hosts value=\"h1\"/><hosts value=\"h2\"/></restore>\n"
    "  <archive target=\"/t\"/>\n"
    "</configuration>\n";

// The tree as text: names, texts and nesting, in order; what a round trip must keep.
std::string dump(const ValueGroup& group) {
  std::string text = std::string(group.getName()) + "{";
  for (std::size_t i = 0; i < group.getItemCount(); ++i) {
    const auto item = group.getItem(i);
    if (item->isValueGroup()) {
      text += dump(*boost::static_pointer_cast<ValueGroup>(item));
      continue;
    }
    text += std::string(item->getName()) + "=";
    for (ValueIterator entry = static_cast<const ValueBase&>(*item).getIterator(); entry.next();)
      text += "[" + entry.asString() + "]";
  }
  return text + "}";
}

class XmlFileValueProviderTest : public ::testing::Test {
protected:
  XmlFileValueProviderTest() : mManager(new ConfigurationManager()), mModel(mManager) {}
  ~XmlFileValueProviderTest() override { delete mManager; }

  // Writes content to a file and has provider load it.
  std::string load(XmlFileValueProvider& provider, const std::string& name,
                   const std::string& content) {
    const std::string path = mDir.file(name);
    zelk::test::writeTextFile(path, content);
    provider.enableProvider(path.c_str(), 0);
    return path;
  }

  zelk::test::TempDir mDir;
  ConfigurationManager* mManager;
  zelk::test::ArchiveToolModel mModel;
  XmlFileValueProvider mProvider{3, "nightly values"};
};

TEST_F(XmlFileValueProviderTest, AValueFileBecomesAMatchedTree) {
  const std::string path = load(mProvider, "archive.xml", ARCHIVE_FILE);
  EXPECT_EQ(path, mProvider.getXmlFilePath());
  ValueGroup values = mProvider.getValues(*mModel.archive, 0);
  EXPECT_EQ(5, values.getValue("level").asInt32());
  // Three elements of the unbounded parameter become three entries; their contents are dropped.
  UnboundedValue paths = values.getUnboundedValue("paths");
  ASSERT_EQ(3u, paths.getValueCount());
  EXPECT_EQ("/var", paths.asString(2));
  EXPECT_EQ(6000, values.getValueGroup("db").getValue("dbport").asInt32());
  EXPECT_EQ(2u, values.getItemCount("mirror"));
  // Every request gets its own copy.
  values.getValue("name").set("changed");
  EXPECT_EQ("nightly", mProvider.getValues(*mModel.archive, 0).getValue("name").asString());
}

TEST_F(XmlFileValueProviderTest, OneFileServesSeveralToolsRewrittenForTheFirst) {
  load(mProvider, "shared.xml", SHARED_FILE);
  ValueGroup restore = mProvider.getValues(*mModel.restore, PROVIDER_CHECKS);
  EXPECT_EQ(2u, restore.getUnboundedValue("hosts").getValueCount());
  EXPECT_EQ("/t", mProvider.getValues(*mModel.archive, 0).getValue("target").asString());

  // Asked for the archive first, the restore tool's "hosts" elements stay elements, which the
  // restore tool does not know.
  XmlFileValueProvider archiveFirst(2, "");
  load(archiveFirst, "shared.xml", SHARED_FILE);
  EXPECT_EQ(1u, archiveFirst.getValues(*mModel.archive, PROVIDER_CHECKS).getItemCount());
  EXPECT_EQ(0u, messageOf([&] {
                  archiveFirst.getValues(*mModel.restore, PROVIDER_CHECKS);
                }).find("\"hosts\" is not a recognized container"));

  // A file without a part for the tool gives an empty group for it, not a null one; a new file
  // is rewritten again, for the next tool asked.
  load(mProvider, "restore.xml", "<restore><hosts value=\"h\"/></restore>");
  EXPECT_EQ(1u, mProvider.getValues(*mModel.restore, 0).getUnboundedValue("hosts").getValueCount());
  EXPECT_EQ(0u, mProvider.getValues(*mModel.archive, PROVIDER_CHECKS).getItemCount());
}

TEST_F(XmlFileValueProviderTest, FailuresSayWhatWentWrongAndKeepTheTree) {
  load(mProvider, "archive.xml", ARCHIVE_FILE);
  const std::string missing = mDir.file("missing%s.xml");
  EXPECT_EQ("File \"" + missing + "\" was not found",
            messageOf([&] { mProvider.setArguments(missing.c_str(), 0); }));
  const std::string broken = mDir.file("broken.xml");
  zelk::test::writeTextFile(broken, "<archive name=\"x\">\n  <db dbname=\"y\">\n");
  try {
    mProvider.setArguments(broken.c_str(), 0);
    ADD_FAILURE() << "no exception";
  } catch (const ValidationException& e) {
    EXPECT_NE(std::string::npos, std::string(e.what()).find("line 3, column 1")) << e.what();
  }
  EXPECT_EQ("nightly", mProvider.getValues(*mModel.archive, 0).getValue("name").asString());

  EXPECT_EQ("Must provide at least one argument",
            messageOf([&] { mProvider.setArguments(0, nullptr, "archive", 0); }));

  load(mProvider, "novalue.xml", "<archive><paths Value=\"ok\"/><paths/></archive>");
  EXPECT_EQ("\"paths\" is not a valid parameter",
            messageOf([&] { mProvider.getValues(*mModel.archive, 0); }));
  // An unknown element's attributes are resolved against the enclosing container.
  load(mProvider, "unknown.xml",
       "<archive bogus=\"%s%n\" target=\"t\"><nosuch level=\"1\"/></archive>");
  EXPECT_EQ("\"bogus\" is not a recognized parameter\n\"nosuch\" is not a recognized container",
            messageOf([&] { mProvider.getValues(*mModel.archive, PROVIDER_CHECKS); }));
  // Texts are checked against the parameter's type when they are read.
  load(mProvider, "level.xml", "<archive level=\"%999999999d\"/>");
  Value level = mProvider.getValues(*mModel.archive, PROVIDER_CHECKS).getValue("level");
  EXPECT_EQ("\"%999999999d\" is not a valid Int32", messageOf([&] { level.asInt32(); }));
}

TEST_F(XmlFileValueProviderTest, WrittenValuesReadBackTheSame) {
  // Texts that need escaping (a tab and a line end would otherwise read back as spaces) and
  // non-ASCII text, an unbounded parameter, a one-of member and two instances of a container.
  load(mProvider, "archive.xml",
       "<archive name=\"a &amp; &lt;b&gt; &quot;q&quot; '&#9;x&#10;y&#13;z\" target=\"Gr\xC3\xBC\xC3\x9F "
       "\xE2\x82\xAC \xF0\x9F\x98\x80\" fast=\"true\"><paths value=\"/a b\"/><paths value=\"\"/>"
       "<db dbname=\"main\"/><mirror host=\"m1\"/><mirror host=\"m2\"/></archive>");
  const ValueGroup values = mProvider.getValues(*mModel.archive, 0);
  const std::string path = mDir.file("written.xml");
  ValueFileWriter::writeFile(path.c_str(), *mModel.archive, values);
  XmlFileValueProvider reader(1, "");
  reader.enableProvider(path.c_str(), 0);
  EXPECT_EQ(dump(values), dump(reader.getValues(*mModel.archive, 0)));
  EXPECT_NE(std::string::npos, zelk::test::readTextFile(path).find(
      "<archive name=\"a &amp; &lt;b&gt; &quot;q&quot; '&#9;x&#10;y&#13;z\""));
  std::ostringstream stream;  // the stream form writes the same text
  ValueFileWriter::write(stream, *mModel.archive, values);
  EXPECT_EQ(zelk::test::readTextFile(path), stream.str());
  EXPECT_EQ("File \"" + mDir.path() + "\" cannot be written",
            messageOf([&] { ValueFileWriter::writeFile(mDir.path().c_str(), *mModel.archive, values); }));
  EXPECT_THROW(ValueFileWriter::writeFile("", *mModel.archive, values),
               zelk::ContractViolationException);

  // Trees that cannot be written: nothing is written then.
  const auto refused = [&](const ValueGroup& tree) {
    return messageOf([&] { ValueFileWriter::writeFile(mDir.file("refused.xml").c_str(), *mModel.archive, tree); });
  };
  EXPECT_EQ("The values do not belong to the \"archive\" specification: their group is bound to "
            "\"restore\"", refused(ValueGroup(mModel.restore)));
  ValueGroup tree(mModel.archive);
  tree.addValue("name", "bell\x07");
  EXPECT_EQ("The text of \"name\" holds the character U+0007 at offset 4, which XML 1.0 cannot carry",
            refused(tree));
  tree.getValue("name").set("\xC3(");
  EXPECT_EQ("The text of \"name\" is not UTF-8 (byte 0xC3 at offset 0)", refused(tree));
  tree.getValue("name").set(std::string(1025, 'x').c_str());
  EXPECT_EQ("The text of \"name\" is 1025 bytes long; a value file holds at most 1024 bytes a value",
            refused(tree));
  tree = ValueGroup(mModel.archive);
  tree.addValue("dbname", "not here");
  EXPECT_EQ("The value tree does not fit the \"archive\" specification: \"dbname\" is not an item "
            "of \"archive\"", refused(tree));
  EXPECT_FALSE(std::ifstream(mDir.file("refused.xml")).good());
}

class CommandLineValueProviderTest : public ::testing::Test {
protected:
  CommandLineValueProviderTest() : mModel(mSingleton.manager()), mProvider(1, "") {}

  // Parses "tool" followed by words for the tool id, then gets the values for the archive tool.
  ValueGroup parse(const std::vector<std::string>& words, int options = 0,
                   int checks = PROVIDER_CHECKS, const char* id = "archive") {
    std::vector<const char*> argv(1, "tool");
    for (const std::string& word : words) argv.push_back(word.c_str());
    mProvider.enableProvider(static_cast<int>(argv.size()), argv.data(), id, options);
    return mProvider.getValues(*mModel.archive, checks | options);
  }

  // The message of what parse throws.
  std::string error(const std::vector<std::string>& words, int options = 0,
                    int checks = PROVIDER_CHECKS, const char* id = "archive") {
    return messageOf([&] { parse(words, options, checks, id); });
  }

  zelk::test::SingletonManager mSingleton;
  Model mModel;
  impl::CommandLineValueProvider mProvider;
};

TEST_F(CommandLineValueProviderTest, ATypicalCommandLineBecomesAMatchedTree) {
  ValueGroup tree = parse({"-verb", " -NAME ", "  nightly ", "-tar", "/backups", "-paths", "/a",
                           "-paths", "/b", "-lev", "7", "-SECRETMODE"});
  ASSERT_EQ(6u, tree.getItemCount());
  for (size_t i = 0; i < tree.getItemCount(); ++i) EXPECT_TRUE(tree.getItem(i)->isMatched()) << i;
  EXPECT_TRUE(tree.getValue("verbose").asBool());
  EXPECT_EQ("nightly", tree.getValue("name").asString());
  UnboundedValue paths = tree.getUnboundedValue("paths");
  ASSERT_EQ(2u, paths.getValueCount());
  EXPECT_EQ("/b", paths.asString(1));
  // A hidden parameter is never abbreviated, but its full name is bound late.
  EXPECT_TRUE(tree.getValue("secretMode").asBool());
  EXPECT_EQ("\"secret\" is not a recognized parameter", error({"-secret"}));
}

TEST_F(CommandLineValueProviderTest, WordsAreReadOneByOne) {
  EXPECT_EQ("\"5\" is not a recognized parameter", error({"-v", "-5"}));
  EXPECT_EQ("Must provide a value for the \"name\" parameter.", error({"-n", "-5"}));
  EXPECT_TRUE(parse({"-verbose", "", "-target", "t"}).getValue("verbose").asBool());
  EXPECT_EQ("The \"file.txt\" command line argument is not recognized", error({"file.txt"}));
  mProvider.reset();
  EXPECT_EQ("A command line parameter cannot be empty", error({"-target", "t", " - "}));
  EXPECT_FALSE(mProvider.getEnabled());  // parsing stopped there

  // Option 2 takes bare words as flags and skips the unmatched check that would report them.
  ValueGroup tree = parse({"file.txt", "verbose"}, 0x2);
  EXPECT_STREQ("file.txt", tree.getItem(0)->getName());
  EXPECT_TRUE(tree.getValue("verbose").asBool());
  EXPECT_EQ("A command line parameter cannot be empty", error({" "}, 0x2));
}

TEST_F(CommandLineValueProviderTest, ArgumentsAreCheckedBeforeParsing) {
  const char* programOnly[] = {"tool"};
  // The standard invalid-argument kind, not a ConfigurationException.
  auto invalid = [&](int argc, const char* const* argv, const char* id) {
    return messageOf<std::invalid_argument>([&] { mProvider.enableProvider(argc, argv, id, 0); });
  };
  EXPECT_EQ("<no exception>", invalid(0, nullptr, nullptr));  // argc is tested first
  EXPECT_EQ("Must provide an argument array", invalid(1, nullptr, "archive"));
  EXPECT_EQ("Must provide a Specification id", invalid(1, programOnly, ""));
  EXPECT_EQ("The \"nosuch%s\" specification was not found", invalid(1, programOnly, "nosuch%s"));
}

TEST_F(CommandLineValueProviderTest, FlagsAreAbbreviatedUnlessExactNamesAreAsked) {
  // No preference for an exact name; candidates anywhere in the tree, in specification order.
  EXPECT_EQ(
      "The flag \"po\" is ambiguous, matching the following allowed flags: port, portRange. "
      "Please be more specific.",
      error({"-po", "1"}));
  ValueGroup exact = parse({"-PORT", "8", "-portrange", "1-9"}, 0x1);
  EXPECT_EQ("1-9", exact.getValue("portRange").asString());
  EXPECT_EQ("\"po\" is not a recognized parameter", error({"-po", "1"}, 0x1));
}

TEST_F(CommandLineValueProviderTest, RepetitionsAndOtherToolsAreLeftToTheirOwners) {
  EXPECT_EQ(
      "A required flag was not specified. You must provide one of the following flags: "
      "target",
      error({"-fast", "-small"}, 0, 0));
  EXPECT_EQ(
      "The \"fast\" and \"small\" parameters are mutually exclusive, you can only specify "
      "one.",
      error({"-fast", "-small", "-target", "t"}, 0, 0));
  EXPECT_EQ("The \"name\" parameter cannot be provided more than once",
            error({"-name", "a", "-name", "b"}));
  // Values parsed for the restore tool never reach the archive tool.
  EXPECT_EQ(0u,
            parse({"-hosts", "h1", "-hosts", "h2"}, 0, PROVIDER_CHECKS, "restore").getItemCount());
  EXPECT_EQ(2u, mProvider.getValues(*mModel.restore, 0).getUnboundedValue("hosts").getValueCount());
}

TEST_F(CommandLineValueProviderTest, HostileWordsGiveOrdinaryMessages) {
  EXPECT_EQ("The \"%s%s%s%n\" command line argument is not recognized", error({"%s%s%s%n"}));
  EXPECT_EQ("\"%999999999d\" is not a valid Int32", error({"-level", "%999999999d"}));
  EXPECT_EQ("\"%s%s%s%n\" is not a recognized parameter", error({"-%s%s%s%n", "%n"}));
  const std::string invalid = "\xff\xfe\xc3(\x80";
  EXPECT_EQ("\"" + invalid + "\" is not a recognized parameter", error({"-" + invalid}));
  const std::string longWord(200000, 'x');
  EXPECT_EQ(longWord, parse({"-name", longWord}).getValue("name").asString());
  EXPECT_EQ(4095u, error({longWord}).size());  // messages are cut, not overflowed

  // Candidate names with conversions are part of a format that reads nothing.
  Specification* percent =
      Model::Factory::createSpecification("percent", "", "", "A tool", false, mSingleton.manager());
  mModel.ref(percent->getItemsContainer(), "p%s%n1", Parameter::STRING, 0);
  mModel.ref(percent->getItemsContainer(), "p%s%n2", Parameter::STRING, 0);
  EXPECT_EQ(
      "The flag \"p%s\" is ambiguous, matching the following allowed flags: p%s%n1, "
      "p%s%n2. Please be more specific.",
      error({"-p%s", "x"}, 0, 0, "percent"));
}

TEST_F(CommandLineValueProviderTest, ThePrefixIndexAnswersAsTheWalkDoes) {
  // Names sharing prefixes in several cases (non-ASCII bytes are not folded), spread over a
  // nested container, one-ofs and logical groups, some hidden, one parameter used twice.
  ConfigurationManager* manager = mSingleton.manager();
  Specification* spec =
      Model::Factory::createSpecification("wide", "", "", "A tool", false, manager);
  GroupItemCollection* parents[4] = {spec->getItemsContainer()};
  parents[1] = mModel.container(parents[0], "inner", Model::OPTIONAL);
  parents[2] = Model::Factory::createOneOf(0);
  Model::Factory::addItemToGroupItem(parents[1], parents[2]);
  parents[3] = Model::Factory::createLogicalGroup(Model::OPTIONAL);
  Model::Factory::addItemToGroupItem(parents[0], parents[3]);
  const char* const stems[] = {"port", "Port",  "portRange", "PORTAL",    "po",
                               "p",    "x-ray", "X_RAY",     "\xc3\xa9t", "\xc3\x89T"};
  std::vector<std::string> queries = {"zzz", "\xc3", "-", "portRange99"};
  const Parameter* first = 0;
  size_t visible = 1;
  for (int i = 0; i < 120; ++i) {
    const std::string name = std::string(stems[i % 10]) + (i < 10 ? "" : std::to_string(i / 7));
    for (size_t length = 1; length <= name.size(); ++length)
      queries.push_back(name.substr(0, length));
    const Parameter* parameter =
        Model::Factory::createParameter(("n" + std::to_string(i)).c_str(), name.c_str(),
                                        "A parameter", Parameter::STRING, 0, 0, 0, manager);
    first = first ? first : parameter;
    visible += i % 9 == 4 ? 0 : 1;
    Model::Factory::addItemToGroupItem(
        parents[i % 4],
        Model::Factory::createParameterRef(parameter, i % 9 == 4 ? Model::HIDDEN : 0, 0));
  }
  Model::Factory::addItemToGroupItem(parents[0], Model::Factory::createParameterRef(first, 0, 0));
  for (const Specification* searched : {static_cast<const Specification*>(spec),
                                        static_cast<const Specification*>(mModel.archive)}) {
    impl::ParameterPrefixIndex index(*searched);
    for (const std::string& query : queries) {
      EXPECT_EQ(CommandLineValueProviderImpl::findByPrefix(*searched, query.c_str()),
                index.find(query.c_str()))
          << query;
    }
  }
  EXPECT_EQ(visible, impl::ParameterPrefixIndex(*spec).find("").size());
}

}  // namespace
