// The command-line provider driven end to end: argument words become a matched and validated
// value tree of the archive tool (see ArchiveToolModel.h), through the process-wide manager.
#include "zelk/configuration/impl/CommandLineValueProvider.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "configuration/impl/ArchiveToolModel.h"
#include "zelk/configuration/LogicalGroup.h"
#include "zelk/configuration/UnboundedValue.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/impl/CommandLineValueProviderImpl.h"
#include "zelk/configuration/impl/ParameterPrefixIndex.h"
#include "zelk/configuration/impl/ParameterSearchVisitor.h"

using namespace zelk::configuration;
using zelk::configuration::impl::CommandLineValueProviderImpl;
typedef zelk::test::ArchiveToolModel Model;
using zelk::test::messageOf;

namespace {

// The manager skips the required and one-of checks of providers.
const int PROVIDER_CHECKS = 0x14;

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
  EXPECT_STREQ("CLI", mProvider.getName());
  EXPECT_EQ(mModel.archive->getItemsContainer(), tree.getGroupItem());
  ASSERT_EQ(6u, tree.getItemCount());
  for (size_t i = 0; i < tree.getItemCount(); ++i) EXPECT_TRUE(tree.getItem(i)->isMatched()) << i;
  EXPECT_TRUE(tree.getValue("verbose").asBool());
  EXPECT_EQ("nightly", tree.getValue("name").asString());
  EXPECT_EQ(7, tree.getValue("level").asInt32());
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
  EXPECT_EQ("Must provide a value for the \"name\" parameter.", error({"-n", "  "}));
  EXPECT_TRUE(parse({"-verbose", "", "-target", "t"}).getValue("verbose").asBool());
  EXPECT_EQ("\"-name\" is not a recognized parameter", error({"--name", "x"}));
  EXPECT_EQ("\"verbose\" is a boolean parameter and cannot accept a value",
            error({"-verbose", "yes"}));
  EXPECT_EQ("\"many\" is not a valid Int32", error({"-lev", "many"}));
  EXPECT_EQ("The \"file.txt\" command line argument is not recognized", error({"file.txt"}));
  EXPECT_EQ("The \"\" command line argument is not recognized", error({"", "-v"}));
  mProvider.reset();
  EXPECT_EQ("A command line parameter cannot be empty", error({"-target", "t", " - "}));
  // Parsing stopped there: the provider holds nothing and was not enabled.
  EXPECT_FALSE(mProvider.getEnabled());
  EXPECT_EQ(0u, mProvider.getValues(*mModel.archive, PROVIDER_CHECKS).getItemCount());

  // Option 2 takes bare words as flags and skips the unmatched check that would report them.
  ValueGroup tree = parse({"file.txt", "verbose"}, 0x2);
  EXPECT_STREQ("file.txt", tree.getItem(0)->getName());
  EXPECT_TRUE(tree.getValue("verbose").asBool());
  EXPECT_EQ("A command line parameter cannot be empty", error({" "}, 0x2));
}

TEST_F(CommandLineValueProviderTest, ArgumentsAreCheckedBeforeParsing) {
  const char* programOnly[] = {"tool"};
  auto invalid = [&](int argc, const char* const* argv, const char* id) {
    return messageOf([&] { mProvider.enableProvider(argc, argv, id, 0); });
  };
  EXPECT_EQ("no exception", invalid(0, nullptr, nullptr));  // argc is tested first
  EXPECT_THROW(mProvider.enableProvider(1, nullptr, "archive", 0), std::invalid_argument);
  EXPECT_EQ("Must provide an argument array", invalid(1, nullptr, "archive"));
  EXPECT_EQ("Must provide a Specification id", invalid(1, programOnly, nullptr));
  EXPECT_EQ("Must provide a Specification id", invalid(1, programOnly, ""));
  EXPECT_EQ("The \"nosuch%s\" specification was not found", invalid(1, programOnly, "nosuch%s"));
  EXPECT_EQ("setArguments(const char*, int) is not supported",
            messageOf([&] { mProvider.enableProvider("file.xml", 0); }));
}

TEST_F(CommandLineValueProviderTest, FlagsAreAbbreviatedUnlessExactNamesAreAsked) {
  // No preference for an exact name; candidates anywhere in the tree, in specification order.
  EXPECT_EQ(
      "The flag \"po\" is ambiguous, matching the following allowed flags: port, portRange. "
      "Please be more specific.",
      error({"-po", "1"}));
  EXPECT_EQ(
      "The flag \"PORT\" is ambiguous, matching the following allowed flags: port, "
      "portRange. Please be more specific.",
      error({"-PORT", "1"}));
  EXPECT_EQ(
      "The flag \"d\" is ambiguous, matching the following allowed flags: dbname, dbport. "
      "Please be more specific.",
      error({"-d", "x"}));
  ValueGroup exact = parse({"-PORT", "8", "-portrange", "1-9"}, 0x1);
  EXPECT_EQ(8, exact.getValue("port").asInt32());
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
  mProvider.reset();
  EXPECT_EQ(0u, mProvider.getValues(*mModel.restore, 0).getItemCount());
}

TEST_F(CommandLineValueProviderTest, HostileWordsGiveOrdinaryMessages) {
  EXPECT_EQ("The \"%s%s%s%n\" command line argument is not recognized", error({"%s%s%s%n"}));
  EXPECT_EQ("\"%999999999d\" is not a valid Int32", error({"-level", "%999999999d"}));
  EXPECT_EQ("\"%s%s%s%n\" is not a recognized parameter", error({"-%s%s%s%n", "%n"}));
  EXPECT_EQ("%s%n", parse({"-name", "%s%n", "-target", "\x01"}).getValue("name").asString());
  const std::string invalid = "\xff\xfe\xc3(\x80";
  EXPECT_EQ("\"" + invalid + "\" is not a recognized parameter", error({"-" + invalid}));
  const std::string longWord(200000, 'x');
  EXPECT_EQ(longWord, parse({"-name", longWord}).getValue("name").asString());
  EXPECT_EQ(4095u, error({longWord}).size());  // messages are cut, not overflowed
  EXPECT_EQ(4095u, error({"-" + longWord}).size());

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

  impl::ParameterSearchVisitor search("x");
  mModel.archive->accept(search);
  EXPECT_EQ("Contract violation: \"index < mFoundItems.size()\"",
            messageOf([&] { search.getFoundItem(0); }));
}

TEST_F(CommandLineValueProviderTest, AMillionWordsAreParsed) {
  std::vector<std::string> words;
  words.reserve(1000000);
  for (int i = 0; i < 500000; ++i) {
    words.push_back("-paths");
    words.push_back("/p" + std::to_string(i));
  }
  ValueGroup tree = parse(words);
  UnboundedValue paths = tree.getUnboundedValue("paths");
  ASSERT_EQ(500000u, paths.getValueCount());
  EXPECT_EQ("/p499999", paths.asString(499999));
  // A million words that are not flags: the first one is reported.
  words.assign(1000000, "%s%s%s%n");
  EXPECT_EQ("The \"%s%s%s%n\" command line argument is not recognized", error(words));
}

}  // namespace
