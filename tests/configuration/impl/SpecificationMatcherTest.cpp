#include "zelk/configuration/impl/SpecificationMatcher.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "configuration/impl/BackupToolModel.h"
#include "zelk/configuration/impl/ValueAccess.h"
#include "zelk/configuration/impl/ValueState.h"

using namespace zelk::configuration;
using zelk::test::BackupToolModel;

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
    EXPECT_EQ("backup", boundTo(root));
    EXPECT_EQ("target", boundTo(target));
    EXPECT_STREQ("target", target.getName()) << "a bound value takes the specification's id";
    EXPECT_EQ("db", boundTo(db));
    EXPECT_EQ("dbname", boundTo(dbname));
    EXPECT_EQ("-", boundTo(misplaced)) << "names are resolved in their own container only";
    // An unknown group stays unbound; its children are resolved against the enclosing container.
    EXPECT_EQ("-", boundTo(unknown));
    EXPECT_EQ("full", boundTo(full));
    EXPECT_EQ("-", boundTo(bogus));
  }

  // A root of another name is resolved against the specification all the same.
  ValueGroup cli("CLI");
  Value since = cli.addValue("since", "monday");
  EXPECT_EQ(Texts(), match(cli, *model.spec));
  EXPECT_EQ("-", boundTo(cli));
  EXPECT_EQ("since", boundTo(since));
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

}  // namespace
