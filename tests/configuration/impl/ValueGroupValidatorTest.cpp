// Matching raw value trees to a specification, and validating the matched trees: missing,
// unknown, repeated and conflicting items, and malformed specifications.
#include <gtest/gtest.h>

#include "configuration/Models.h"
#include "zelk/configuration/impl/SpecificationMatcher.h"
#include "zelk/configuration/impl/ValueAccess.h"
#include "zelk/configuration/impl/ValueGroupValidator.h"
#include "zelk/configuration/impl/ValueState.h"

using namespace zelk::configuration;
using zelk::test::BackupToolModel;
using zelk::test::SpecificationBuilder;

namespace {

typedef std::vector<std::string> Texts;

// The id of what item is bound to, or "-".
std::string boundTo(const ValueGroupItem& item) {
  return item.getGroupItem() != nullptr ? item.getGroupItem()->getId() : "-";
}

Texts match(ValueGroup& values, const Specification& spec) {
  ValidationErrors errors;
  impl::SpecificationMatcher::match(values, spec, errors);
  return zelk::test::texts(errors);
}

TEST(SpecificationMatcherTest, BindsARawTreeByNameAtEachDepth) {
  BackupToolModel model;
  // A tree as a value file gives it: every item named, nothing bound.
  ValueGroup root("backup");
  Value target = root.addValue("Target", "/b");
  ValueGroup db = root.addGroup("db");
  Value dbname = db.addValue("DBNAME", "sales");
  Value misplaced = db.addValue("target", "/elsewhere");
  ValueGroup unknown = root.addGroup("nosuch");
  Value full = unknown.addValue("full", nullptr);
  Value bogus = unknown.addValue("bogus", "1");

  for (int pass = 0; pass < 2; ++pass) {  // matching again is harmless
    EXPECT_EQ(Texts(), match(root, *model.spec));
    EXPECT_EQ("target", boundTo(target));
    EXPECT_STREQ("target", target.getName()) << "a bound value takes the specification's id";
    EXPECT_EQ("dbname", boundTo(dbname));
    EXPECT_EQ("-", boundTo(misplaced)) << "names are resolved in their own container only";
    // An unknown group stays unbound; its children are resolved against the enclosing container.
    EXPECT_EQ("-", boundTo(unknown));
    EXPECT_EQ("full", boundTo(full));
    EXPECT_EQ("-", boundTo(bogus));
  }

}

TEST(SpecificationMatcherTest, UnnamedItems) {
  BackupToolModel model;
  // Items made for a specification item and then unbound have no name of their own.
  ValueGroup root(model.spec->getItemsContainer());
  root.reset();
  Value lost = Value::create(model.spec->findParameterRef("target"), "/b");
  impl::ValueAccess::getState(lost)->reset();
  root.add(lost);
  Value kept = root.addValue("full", nullptr);
  ValueGroup nameless(model.db);
  nameless.reset();
  Value inner = Value::create(model.db->findParameterRef("dbname"), "x");
  impl::ValueAccess::getState(inner)->reset();
  nameless.add(inner);
  root.add(nameless);

  // The unnamed root is walked; the unnamed group below it is reported and not entered.
  EXPECT_EQ((Texts{"An unnamed value was found", "An unnamed value group was found"}),
            match(root, *model.spec));
  EXPECT_EQ("full", boundTo(kept));
}


const std::string MISSING =
    "A required flag was not specified. You must provide one of the following flags: ";
const std::string FULL_AND_INCREMENTAL =
    "The \"full\" and \"incremental\" parameters are mutually exclusive, you can only specify one.";

Texts check(const Specification& spec, ValueGroup values, int options = 0) {
  ValidationErrors errors;
  impl::SpecificationMatcher::match(values, spec, errors);
  impl::ValueGroupValidator::validate(spec, values, errors, options);
  return zelk::test::texts(errors);
}

class ValueGroupValidatorTest : public ::testing::Test {
protected:
  Texts check(const std::vector<std::string>& settings, int options = 0) {
    return ::check(*model.spec, model.values(settings), options);
  }
  BackupToolModel model;
};

TEST_F(ValueGroupValidatorTest, MissingItems) {
  ValueGroup complete = model.values({"incremental", "target=/b", "exclude=a", "exclude=b",
                                      "user=u", "password=p"});
  complete.addGroup("db").addValue("dbname", "sales");
  complete.addGroup("mirror").addValue("host", "h1");
  complete.addGroup("mirror").addValue("host", "h2");
  EXPECT_EQ(Texts(), ::check(*model.spec, complete));

  // One message, in specification order: every alternative of the required one-of (nested ones
  // included), then the required parameter.
  EXPECT_EQ(Texts{MISSING + "full, incremental, since, days, target"}, check({}));
  // A "help" value silences only this report.
  EXPECT_EQ(Texts(), check({"HELP"}));
  EXPECT_EQ(Texts{"The \"full\" parameter cannot be provided more than once"},
            check({"help", "full", "full"}));
  // The optional logical group is all or nothing.
  EXPECT_EQ(Texts{MISSING + "password"}, check({"full", "target=t", "user=u"}));
  EXPECT_EQ(Texts{MISSING + "user, password"}, check({"full", "target=t", "domain=d"}));
}

TEST_F(ValueGroupValidatorTest, WalksEndAtTheFirstContainerWithoutValues) {
  // The mirror groups after the absent db are not looked at by any check.
  ValueGroup values = model.values({"full", "target=t"});
  values.addGroup("mirror");
  values.addGroup("mirror").addValue("host", "h");
  EXPECT_EQ(Texts(), ::check(*model.spec, values));
  values.addGroup("db").addValue("dbname", "sales");
  EXPECT_EQ(Texts{MISSING + "host"}, ::check(*model.spec, values));

  SpecificationBuilder builder;
  Specification* restore = builder.specification("restore");
  builder.ref(restore->getItemsContainer(), "help", Parameter::BOOL, SpecificationBuilder::OPTIONAL);
  builder.ref(builder.container(restore->getItemsContainer(), "source", 0), "path",
              Parameter::STRING, 0);
  builder.ref(restore->getItemsContainer(), "force", Parameter::BOOL, 0);
  ValueGroup help(restore);
  help.addValue("help", nullptr);
  EXPECT_EQ(Texts{"The \"source\" container is required and it was not found"},
            ::check(*restore, help));
  ValueGroup source(restore);
  source.addGroup("source");
  EXPECT_EQ(Texts{MISSING + "path, force"}, ::check(*restore, source));
}

TEST_F(ValueGroupValidatorTest, UnknownRepeatedAndConflictingItems) {
  ValueGroup unknown = model.values({"bogus=1"});
  unknown.addGroup("nosuch").addValue("tag", "x");
  EXPECT_EQ((Texts{"\"bogus\" is not a recognized parameter",
                   "\"nosuch\" is not a recognized container"}),
            ::check(*model.spec, unknown));
  // A known value inside an unknown group is bound to the enclosing container's parameter.
  ValueGroup extra = model.values({"full", "target=t"});
  extra.addGroup("extra").addValue("verbose", nullptr);
  EXPECT_EQ(Texts{"\"extra\" is not a recognized container"}, ::check(*model.spec, extra));

  EXPECT_EQ(Texts{"The \"target\" parameter cannot be provided more than once"},
            check({"full", "target=a", "target=b"}));
  ValueGroup twice = model.values({"full", "target=t"});
  twice.addGroup("db").addValue("dbname", "a");
  twice.addGroup("db").addValue("dbname", "b");
  EXPECT_EQ(Texts{"The \"db\" container cannot be provided more than once"},
            ::check(*model.spec, twice));

  EXPECT_EQ(Texts{FULL_AND_INCREMENTAL}, check({"full", "incremental", "target=t"}));
  // A nested one-of that is given counts as one alternative of its parent.
  EXPECT_EQ((Texts{"The \"since\" and \"days\" parameters are mutually exclusive, you can only "
                   "specify one.",
                   "The \"full\", \"incremental\" and \"backup_oo2_oo2\" parameters are mutually "
                   "exclusive, you can only specify one."}),
            check({"days=2", "incremental", "target=t", "since=monday", "full"}));
}

TEST_F(ValueGroupValidatorTest, EachOptionBitSwitchesOneCheckOff) {
  EXPECT_EQ(Texts{MISSING + "target"}, check({"bogus=1", "full"}, 2));
  EXPECT_EQ(Texts{FULL_AND_INCREMENTAL}, check({"full", "incremental"}, 4));
  EXPECT_EQ(Texts(), check({"full", "target=a", "target=b"}, 8));
  EXPECT_EQ(Texts(), check({"full", "incremental", "target=t"}, 16));

  // An error already in the list stops validation after the first check.
  ValidationErrors errors;
  errors.addError("%s", "earlier");
  impl::ValueGroupValidator::validate(*model.spec, model.values({}), errors, 0);
  EXPECT_EQ(Texts{"earlier"}, zelk::test::texts(errors));
}

TEST(ValueGroupValidatorSpecificationTest, MalformedSpecificationsAndOddIds) {
  SpecificationBuilder builder;
  Specification* lonely = builder.specification("lonely");
  builder.ref(builder.logicalGroup(lonely->getItemsContainer(), 0), "a", Parameter::STRING, 0);
  const Texts tooFew{"Invalid specification: \"lonely\". A logical group must contain at least "
                     "two children"};
  EXPECT_EQ(tooFew, check(*lonely, ValueGroup(lonely)));

  Specification* loose = builder.specification("loose");
  LogicalGroup* allOptional = builder.logicalGroup(loose->getItemsContainer(), 0);
  builder.ref(allOptional, "b", Parameter::STRING, SpecificationBuilder::OPTIONAL);
  builder.ref(allOptional, "c", Parameter::STRING, SpecificationBuilder::OPTIONAL);
  builder.ref(loose->getItemsContainer(), "d", Parameter::STRING, 0);
  EXPECT_EQ(Texts{"Invalid specification: \"loose\". A required logical group must contain at "
                  "least one required item"},
            check(*loose, ValueGroup(loose)));

  // Ids are never read as formats with arguments.
  Specification* odd = builder.specification("odd");
  builder.ref(odd->getItemsContainer(), "rate%s", Parameter::STRING, 0);
  builder.ref(odd->getItemsContainer(), "100%%", Parameter::STRING, 0);
  OneOf* single = builder.oneOf(odd->getItemsContainer(), SpecificationBuilder::OPTIONAL);
  builder.ref(single, "x%n", Parameter::STRING, 0);
  EXPECT_EQ(Texts{MISSING + "rate%s, 100%"}, check(*odd, ValueGroup(odd)));
  ValueGroup values(odd);
  BackupToolModel::add(values, {"rate%s=1", "100%%=1", "x%n=1"});
  EXPECT_EQ(Texts{"Invalid specification: \"odd\". A one of must contain at least two children"},
            check(*odd, values));
}

}  // namespace
