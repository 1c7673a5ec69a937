// The XML value file provider driven end to end: value files become matched, validated value
// trees of the archive and restore tools (see impl/ArchiveToolModel.h).
#include "zelk/configuration/XmlFileValueProvider.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "configuration/impl/ArchiveToolModel.h"
#include "support/TempDir.h"
#include "support/TextFiles.h"
#include "zelk/configuration/UnboundedValue.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/ValueFileWriter.h"
#include "zelk/configuration/ValueGroupIterator.h"
#include "zelk/configuration/ValueIterator.h"

using namespace zelk::configuration;
using zelk::test::messageOf;

namespace {

// The manager skips the required and one-of checks of providers.
const int PROVIDER_CHECKS = 0x14;

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
  EXPECT_STREQ("XML_FILE", mProvider.getId());
  EXPECT_STREQ("XML_FILE", mProvider.getName());
  const std::string path = load(mProvider, "archive.xml", ARCHIVE_FILE);
  EXPECT_EQ(path, mProvider.getXmlFilePath());
  ValueGroup values = mProvider.getValues(*mModel.archive, 0);
  EXPECT_EQ(mModel.archive->getItemsContainer(), values.getGroupItem());
  EXPECT_EQ("nightly", values.getValue("name").asString());
  EXPECT_EQ(5, values.getValue("level").asInt32());
  EXPECT_TRUE(values.getValue("verbose").asBool());
  // Three elements of the unbounded parameter become three entries; their contents are dropped.
  UnboundedValue paths = values.getUnboundedValue("paths");
  ASSERT_EQ(3u, paths.getValueCount());
  EXPECT_EQ("/var", paths.asString(2));
  EXPECT_EQ(6000, values.getValueGroup("db").getValue("dbport").asInt32());
  ValueGroupIterator mirrors = values.getValueGroupIterator("mirror");
  ASSERT_TRUE(mirrors.next() && mirrors.next());
  EXPECT_EQ(mModel.mirror, mirrors.getCurrent().getGroupItem());
  EXPECT_EQ("b", mirrors.getCurrent().getValue("host").asString());
  // Every request gets its own copy.
  values.getValue("name").set("changed");
  EXPECT_EQ("nightly", mProvider.getValues(*mModel.archive, 0).getValue("name").asString());
}

TEST_F(XmlFileValueProviderTest, OneFileServesSeveralToolsRewrittenForTheFirst) {
  load(mProvider, "shared.xml", SHARED_FILE);
  ValueGroup restore = mProvider.getValues(*mModel.restore, PROVIDER_CHECKS);
  EXPECT_EQ("/backups", restore.getValue("source").asString());
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
  ValueGroup archive = mProvider.getValues(*mModel.archive, PROVIDER_CHECKS);
  EXPECT_EQ(mModel.archive->getItemsContainer(), archive.getGroupItem());
  EXPECT_EQ(0u, archive.getItemCount());
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
  const char* argv[] = {missing.c_str(), "ignored"};
  EXPECT_EQ("File \"" + missing + "\" was not found",
            messageOf([&] { mProvider.setArguments(2, argv, "archive", 0); }));
  EXPECT_EQ("setArguments(const ValueGroup&, int) is not supported",
            messageOf([&] { mProvider.setArguments(ValueGroup("x"), 0); }));

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

TEST_F(XmlFileValueProviderTest, FormatDirectivesInFileContentsAreQuotedAsWritten) {
  // Values keep the directives; reading one as a number quotes it.
  load(mProvider, "values.xml", "<archive name=\"%s%s%s%n\" level=\"%999999999d\" target=\"t\"/>");
  ValueGroup values = mProvider.getValues(*mModel.archive, PROVIDER_CHECKS);
  EXPECT_EQ("%s%s%s%n", values.getValue("name").asString());
  EXPECT_EQ("\"%999999999d\" is not a valid Int32",
            messageOf([&] { values.getValue("level").asInt32(); }));
  // Names and malformed tokens are quoted in the ordinary messages.
  load(mProvider, "names.xml", "<archive target=\"t\"><db dbname=\"x\" dbport=\"%n\"/></archive>");
  EXPECT_EQ("\"%n\" is not a valid Int32", messageOf([&] {
              mProvider.getValues(*mModel.archive, PROVIDER_CHECKS)
                  .getValueGroup("db").getValue("dbport").asInt32();
            }));
  EXPECT_EQ("Unexpected \"%\" at line 1, column 10 in \"" + mDir.file("broken.xml") +
                "\"; expected \"<\"",
            messageOf([&] {
              load(mProvider, "broken.xml", "<archive>%s%s%s%n<%999999999d/></archive>");
            }));
  // A missing file is named as given.
  EXPECT_EQ("File \"" + mDir.file("%s%s%s%n.xml") + "\" was not found",
            messageOf([&] { mProvider.enableProvider(mDir.file("%s%s%s%n.xml").c_str(), 0); }));
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

}  // namespace
