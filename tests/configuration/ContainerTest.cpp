#include "zelk/configuration/Container.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/Group.h"
#include "zelk/configuration/LogicalGroup.h"
#include "zelk/configuration/OneOf.h"
#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/impl/Factory.h"
#include "zelk/util/ContractViolationException.h"

using namespace zelk::configuration;
using zelk::configuration::impl::Factory;

namespace {

class ContainerTest : public ::testing::Test {
protected:
  ContainerTest() : mManager(Factory::createManager()) {}

  ParameterRef* ref(const char* id, int32_t characteristics = 0) {
    Parameter* p = static_cast<Parameter*>(mManager->getGlobalItem(id));
    if (p == nullptr) {
      p = Factory::createParameter(id, "", "A parameter", Parameter::STRING, 0, 0, 0,
                                   mManager.get());
    }
    return Factory::createParameterRef(p, characteristics, "");
  }

  std::unique_ptr<ConfigurationManager> mManager;
};

TEST_F(ContainerTest, SearchesLookThroughConstraintsButNotIntoNestedContainers) {
  // tool: [a, oneOf(lg(param, b)), nested: [hidden], c]
  Specification* spec = Factory::createSpecification("tool", "", "", "Tool", false, mManager.get());
  Container* top = spec->getItemsContainer();
  Factory::addItemToGroupItem(top, ref("a"));
  OneOf* oneOf = Factory::createOneOf(0);
  Factory::addItemToGroupItem(top, oneOf);
  LogicalGroup* group = Factory::createLogicalGroup(0);
  Factory::addItemToGroupItem(oneOf, group);
  ParameterRef* param = ref("param");
  Factory::addItemToGroupItem(group, param);
  Factory::addItemToGroupItem(group, ref("b"));
  Container* nested = Factory::createContainer("Nested", "", "Nested", 0);
  Factory::addItemToGroupItem(top, nested);
  ParameterRef* hidden = ref("hidden");
  Factory::addItemToGroupItem(nested, hidden);
  Factory::addItemToGroupItem(top, ref("c"));

  EXPECT_EQ(param, spec->findItem("PARAM"));
  EXPECT_EQ(param, top->findParameterRef("Param"));
  EXPECT_EQ(param, spec->findParameterRef("param"));
  EXPECT_EQ(nullptr, spec->findItem("hidden"));
  EXPECT_EQ(nullptr, spec->findParameterRef("hidden"));
  EXPECT_EQ(hidden, nested->findParameterRef("HIDDEN"));
  EXPECT_EQ(nested, spec->findContainer("nested"));
  EXPECT_EQ(nested, spec->findItem("NESTED"));
  EXPECT_EQ(oneOf, spec->findItem("tool_oo1"));
  EXPECT_EQ(group, spec->findItem("TOOL_OO1_LG0"));
  // Only the requested kind is found.
  EXPECT_EQ(nullptr, spec->findContainer("param"));
  EXPECT_EQ(nullptr, spec->findParameterRef("nested"));
  EXPECT_EQ(nullptr, spec->findItem("nosuch"));
  // A whole-string comparison, no prefixes.
  EXPECT_EQ(nullptr, spec->findItem("para"));

  // Constraints look at their direct children only.
  EXPECT_EQ(group, oneOf->findItem("tool_oo1_lg0"));
  EXPECT_EQ(nullptr, oneOf->findItem("param"));
  EXPECT_EQ(param, group->findItem("PARAM"));
  EXPECT_EQ(nullptr, group->findContainer("param"));

  try {
    spec->findItem("");
    ADD_FAILURE() << "no contract violation";
  } catch (const zelk::ContractViolationException& e) {
    EXPECT_STREQ("Contract violation: \"id && *id\"", e.what());
  }
  EXPECT_THROW(oneOf->findParameterRef(nullptr), zelk::ContractViolationException);
}

TEST_F(ContainerTest, ConstraintLevelParameterSearchNeverFindsAReference) {
  Container* top = Factory::createContainer("top", "", "Top", 0);
  std::unique_ptr<Container> owner(top);
  OneOf* oneOf = Factory::createOneOf(0);
  Factory::addItemToGroupItem(top, oneOf);
  ParameterRef* x = ref("x");
  Factory::addItemToGroupItem(oneOf, x);
  Container* inner = Factory::createContainer("x", "", "A container named like the parameter", 0);
  Factory::addItemToGroupItem(oneOf, inner);

  // The selection by type code 0 picks containers, which are not references.
  EXPECT_EQ(nullptr, oneOf->findParameterRef("x"));
  EXPECT_EQ(x, oneOf->findItem("x"));
  EXPECT_EQ(inner, oneOf->findContainer("X"));
  // The container-level search does find it.
  EXPECT_EQ(x, top->findParameterRef("x"));
}

TEST_F(ContainerTest, ACopiedGroupContainerCanBeSearchedLikeTheOriginal) {
  Group* common = Factory::createGroup("common", "Common options", mManager.get());
  Container* items = common->getItemsContainer();
  Factory::addItemToGroupItem(items, ref("verbose", GroupItem::OPTIONAL));
  OneOf* mode = Factory::createOneOf(GroupItem::OPTIONAL);
  Factory::addItemToGroupItem(items, mode);
  LogicalGroup* pair = Factory::createLogicalGroup(0);
  Factory::addItemToGroupItem(mode, pair);
  Factory::addItemToGroupItem(pair, ref("user"));
  Factory::addItemToGroupItem(pair, ref("password"));
  Factory::addItemToGroupItem(mode, ref("token"));

  Specification* spec = Factory::createSpecification("tool", "", "", "Tool", false, mManager.get());
  Factory::addItemToSpecification(spec, ref("level"));
  Factory::copyItemToCollection(spec->getItemsContainer(), common->getItemsContainer());

  const Container* copy = spec->findContainer("COMMON");
  ASSERT_NE(nullptr, copy);
  EXPECT_NE(items, copy);
  EXPECT_EQ(spec->getItemsContainer(), copy->getContainer());
  EXPECT_STREQ("Common options", copy->getDescription());
  ASSERT_EQ(2u, copy->getNumberOfItems());

  // Every copied item lives in the copy and is found through it, however deep.
  const ParameterRef* user = copy->findParameterRef("user");
  ASSERT_NE(nullptr, user);
  EXPECT_EQ(copy, user->getContainer());
  EXPECT_NE(nullptr, copy->findParameterRef("password"));
  EXPECT_NE(nullptr, copy->findParameterRef("token"));
  EXPECT_NE(nullptr, copy->findParameterRef("verbose"));
  EXPECT_TRUE(user->isDescendantOf(spec->getItemsContainer()));
  EXPECT_FALSE(user->isDescendantOf(items));

  // The copied constraints are named after their new parents, which carry the same ids.
  const GroupItem* copiedMode = copy->getItem(1);
  EXPECT_STREQ("common_oo1", copiedMode->getId());
  EXPECT_STREQ("common_oo1_lg0", copy->findItem("common_oo1_lg0")->getId());
  EXPECT_TRUE(copy->findParameterRef("token")->isOptional());
  EXPECT_TRUE(copiedMode->isOptional());

  // The copy is independent of the group.
  EXPECT_EQ(2u, items->getNumberOfItems());
  EXPECT_NE(items->findParameterRef("user"), user);
}

TEST_F(ContainerTest, ClonesCopyAttributesAndOptionallyChildren) {
  Container* original = Factory::createContainer(
      "db", "Database", "The database", GroupItem::OPTIONAL | GroupItem::UNBOUNDED);
  std::unique_ptr<Container> owner(original);
  Factory::addItemToGroupItem(original, ref("name"));
  OneOf* oneOf = Factory::createOneOf(0);
  Factory::addItemToGroupItem(original, oneOf);
  Factory::addItemToGroupItem(oneOf, ref("fast"));
  Factory::addItemToGroupItem(oneOf, ref("safe"));

  std::unique_ptr<GroupItem> shallow(Factory::clone(original, false));
  const Container* shallowCopy = static_cast<const Container*>(shallow.get());
  EXPECT_STREQ("db", shallowCopy->getId());
  EXPECT_STREQ("Database", shallowCopy->getName());
  EXPECT_STREQ("The database", shallowCopy->getDescription());
  EXPECT_EQ(original->getCharacteristics(), shallowCopy->getCharacteristics());
  EXPECT_EQ(0u, shallowCopy->getNumberOfItems());
  EXPECT_EQ(nullptr, shallowCopy->getContainer());

  std::unique_ptr<GroupItem> deep(Factory::clone(original, true));
  const Container* deepCopy = static_cast<const Container*>(deep.get());
  ASSERT_EQ(2u, deepCopy->getNumberOfItems());
  const GroupItem* copiedOneOf = deepCopy->getItem(1);
  EXPECT_STREQ("db_oo1", copiedOneOf->getId());
  EXPECT_NE(oneOf, copiedOneOf);
  const ParameterRef* safe = deepCopy->findParameterRef("safe");
  ASSERT_NE(nullptr, safe);
  EXPECT_EQ(deepCopy, safe->getContainer());
  EXPECT_EQ(copiedOneOf, safe->getCollection());
  EXPECT_EQ(original->findParameterRef("safe")->getParameter(), safe->getParameter());

  // A one-of filled before it is attached still hands its container to its children.
  OneOf* late = Factory::createOneOf(0);
  ParameterRef* early = ref("early");
  Factory::addItemToGroupItem(late, early);
  Factory::addItemToGroupItem(original, late);
  EXPECT_EQ(original, early->getContainer());
  EXPECT_EQ(early, original->findParameterRef("early"));
}

TEST_F(ContainerTest, CopyElementsFromAppendsCopiesInOrder) {
  Container* source = Factory::createContainer("src", "", "Source", 0);
  std::unique_ptr<Container> sourceOwner(source);
  Factory::addItemToGroupItem(source, ref("one"));
  Factory::addItemToGroupItem(source, ref("two"));
  Container* target = Factory::createContainer("dst", "", "Target", 0);
  std::unique_ptr<Container> targetOwner(target);
  Factory::addItemToGroupItem(target, ref("zero"));

  target->copyElementsFrom(*source);
  ASSERT_EQ(3u, target->getNumberOfItems());
  EXPECT_STREQ("zero", target->getItem(0)->getId());
  EXPECT_STREQ("one", target->getItem(1)->getId());
  EXPECT_STREQ("two", target->getItem(2)->getId());
  EXPECT_EQ(target, target->getItem(2)->getContainer());
  EXPECT_EQ(2u, source->getNumberOfItems());
}

}  // namespace
