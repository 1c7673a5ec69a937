#include "zelk/configuration/GroupItem.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/Container.h"
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

class GroupItemTest : public ::testing::Test {
protected:
  GroupItemTest() : mManager(Factory::createManager()) {}

  Parameter* parameter(const char* id) {
    return Factory::createParameter(id, "", "A parameter", Parameter::STRING, 0, 0, 0,
                                    mManager.get());
  }
  ParameterRef* ref(const char* id, int32_t characteristics = 0) {
    return Factory::createParameterRef(parameter(id), characteristics, "");
  }

  std::unique_ptr<ConfigurationManager> mManager;
};

std::string contractMessage(void (*call)()) {
  try {
    call();
  } catch (const zelk::ContractViolationException& e) {
    return e.what();
  }
  return "no contract violation";
}

TEST_F(GroupItemTest, ConstraintIdsAreFormedFromTheParentAtTheFirstAttachment) {
  Container* db = Factory::createContainer("db", "", "The database", 0);
  Factory::addItemToGroupItem(db, ref("a"));
  Factory::addItemToGroupItem(db, ref("b"));
  OneOf* choice = Factory::createOneOf(0);
  EXPECT_STREQ("", choice->getId());
  Factory::addItemToGroupItem(db, choice);
  EXPECT_STREQ("db_oo2", choice->getId());

  // A constraint in a constraint is named after the constraint, not the container.
  LogicalGroup* both = Factory::createLogicalGroup(0);
  Factory::addItemToGroupItem(choice, both);
  EXPECT_STREQ("db_oo2_lg0", both->getId());
  EXPECT_EQ(db, both->getContainer());
  EXPECT_EQ(choice, both->getConstraint());

  // Attaching again does not rename.
  Container* other = Factory::createContainer("other", "", "Another", 0);
  choice->setContainer(other);
  EXPECT_STREQ("db_oo2", choice->getId());
  choice->setContainer(db);

  OneOf* first = Factory::createOneOf(0);
  Container* c = Factory::createContainer("c", "", "C", 0);
  Factory::addItemToGroupItem(c, first);
  EXPECT_STREQ("c_oo0", first->getId());

  Factory::destroy(db);
  Factory::destroy(other);
  Factory::destroy(c);
}

TEST_F(GroupItemTest, CharacteristicsDropTheBitsThatDoNotApply) {
  const int32_t all = GroupItem::OPTIONAL | GroupItem::UNBOUNDED | GroupItem::HIDDEN;
  Container* container = Factory::createContainer("c", "", "C", all);
  EXPECT_EQ(GroupItem::OPTIONAL | GroupItem::UNBOUNDED, container->getCharacteristics());
  EXPECT_FALSE(container->isHidden());
  EXPECT_TRUE(container->isUnbounded());
  container->setHidden(true);
  EXPECT_FALSE(container->isHidden());
  container->setOptional(false);
  EXPECT_EQ(GroupItem::UNBOUNDED, container->getCharacteristics());

  LogicalGroup* group = Factory::createLogicalGroup(all);
  EXPECT_EQ(GroupItem::OPTIONAL, group->getCharacteristics());
  EXPECT_FALSE(group->isUnbounded());
  EXPECT_FALSE(group->isHidden());
  OneOf* oneOf = Factory::createOneOf(all);
  EXPECT_EQ(GroupItem::OPTIONAL, oneOf->getCharacteristics());

  ParameterRef* r = ref("p", all);
  EXPECT_EQ(all, r->getCharacteristics());
  EXPECT_TRUE(r->isHidden());
  r->setHidden(false);
  EXPECT_EQ(GroupItem::OPTIONAL | GroupItem::UNBOUNDED, r->getCharacteristics());

  Factory::destroy(container);
  Factory::destroy(group);
  Factory::destroy(oneOf);
  Factory::destroy(r);
}

TEST_F(GroupItemTest, ChildrenOfConstraintsTakeTheirLinksOptionalityAndHiddenness) {
  Container* c = Factory::createContainer("c", "", "C", 0);
  OneOf* oneOf = Factory::createOneOf(0);
  Factory::addItemToGroupItem(c, oneOf);
  ParameterRef* inOneOf = ref("x");
  Factory::addItemToGroupItem(oneOf, inOneOf);
  // Sitting directly in a one-of makes an item optional whatever its bit says.
  EXPECT_TRUE(inOneOf->isOptional());
  EXPECT_EQ(0, inOneOf->getCharacteristics());
  EXPECT_EQ(oneOf, inOneOf->getOneOf());
  EXPECT_EQ(nullptr, inOneOf->getLogicalGroup());
  EXPECT_EQ(oneOf, inOneOf->getCollection());
  EXPECT_EQ(c, inOneOf->getContainer());

  LogicalGroup* group = Factory::createLogicalGroup(0);
  Factory::addItemToGroupItem(oneOf, group);
  ParameterRef* inGroup = ref("y");
  Factory::addItemToGroupItem(group, inGroup);
  EXPECT_FALSE(inGroup->isOptional());
  EXPECT_EQ(group, inGroup->getLogicalGroup());
  EXPECT_EQ(nullptr, inGroup->getOneOf());
  EXPECT_EQ(c, inGroup->getContainer());

  ParameterRef* direct = ref("z");
  Factory::addItemToGroupItem(c, direct);
  EXPECT_FALSE(direct->isOptional());
  EXPECT_EQ(c, direct->getCollection());
  EXPECT_EQ(nullptr, direct->getConstraint());

  // A constraint cannot store the hidden bit, so asking for it hides neither it nor its children.
  LogicalGroup* hiddenGroup = Factory::createLogicalGroup(GroupItem::HIDDEN);
  Factory::addItemToGroupItem(c, hiddenGroup);
  ParameterRef* inHidden = ref("w");
  Factory::addItemToGroupItem(hiddenGroup, inHidden);
  EXPECT_FALSE(hiddenGroup->isHidden());
  EXPECT_FALSE(inHidden->isHidden());

  Factory::destroy(c);
}

TEST_F(GroupItemTest, DescendantTests) {
  Container* outer = Factory::createContainer("outer", "", "Outer", 0);
  Container* inner = Factory::createContainer("inner", "", "Inner", 0);
  OneOf* oneOf = Factory::createOneOf(0);
  ParameterRef* a = ref("a");
  ParameterRef* b = ref("b");
  ParameterRef* loose = ref("loose");
  Factory::addItemToGroupItem(outer, inner);
  Factory::addItemToGroupItem(inner, oneOf);
  Factory::addItemToGroupItem(oneOf, a);
  Factory::addItemToGroupItem(outer, b);

  EXPECT_FALSE(loose->isDescendantOf(outer));
  EXPECT_TRUE(b->isDescendantOf(outer));
  EXPECT_FALSE(b->isDescendantOf(inner));
  EXPECT_TRUE(a->isDescendantOf(oneOf));
  EXPECT_TRUE(a->isDescendantOf(inner));
  EXPECT_TRUE(a->isDescendantOf(outer));
  EXPECT_FALSE(outer->isDescendantOf(inner));

  EXPECT_TRUE(a->isDirectDescendantOf(oneOf));
  EXPECT_FALSE(a->isDirectDescendantOf(outer));
  // For a container the test is on the container link, which items in its constraints share.
  EXPECT_TRUE(a->isDirectDescendantOf(inner));
  EXPECT_TRUE(b->isDirectDescendantOf(outer));
  EXPECT_FALSE(b->isDirectDescendantOf(oneOf));

  try {
    a->isDescendantOf(nullptr);
    ADD_FAILURE() << "no contract violation";
  } catch (const zelk::ContractViolationException& e) {
    EXPECT_STREQ("Contract violation: \"collection != 0\"", e.what());
  }
  EXPECT_THROW(a->isDirectDescendantOf(nullptr), zelk::ContractViolationException);

  Factory::destroy(loose);
  Factory::destroy(outer);
}

TEST_F(GroupItemTest, NamesTypesAndDescriptions) {
  Parameter* p = Factory::createParameter("level", "Level", "The level", Parameter::INT32, 0, 0, 0,
                                          mManager.get());
  ParameterRef* plain = Factory::createParameterRef(p, 0, "");
  ParameterRef* described = Factory::createParameterRef(p, 0, "Here it means speed");
  EXPECT_STREQ("level", plain->getId());
  EXPECT_STREQ("The level", plain->getDescription());
  EXPECT_STREQ("Here it means speed", described->getDescription());
  EXPECT_EQ(GroupItem::PARAMETER_REF, plain->getItemType());
  EXPECT_STREQ("ParameterRef", plain->getItemTypeName());

  Container* unnamed = Factory::createContainer("c1", "", "First", 0);
  Container* named = Factory::createContainer("c2", "Second", "The second", 0);
  EXPECT_STREQ("c1", unnamed->getName());
  EXPECT_STREQ("Second", named->getName());
  EXPECT_STREQ("The second", named->getDescription());
  EXPECT_STREQ("Container", named->getItemTypeName());
  OneOf* oneOf = Factory::createOneOf(0);
  LogicalGroup* group = Factory::createLogicalGroup(0);
  EXPECT_EQ(GroupItem::ONE_OF, oneOf->getItemType());
  EXPECT_STREQ("One Of", oneOf->getItemTypeName());
  EXPECT_EQ(GroupItem::LOGICAL_GROUP, group->getItemType());
  EXPECT_STREQ("Logical Group", group->getItemTypeName());

  for (GroupItem* item : std::initializer_list<GroupItem*>{plain, described, unnamed, named,
                                                           oneOf, group}) {
    Factory::destroy(item);
  }
}

TEST_F(GroupItemTest, FactoryContracts) {
  EXPECT_EQ("Contract violation: \"id != 0 && *id != '\\0'\"",
            contractMessage([] { Factory::createContainer("", "n", "d", 0); }));
  EXPECT_EQ("Contract violation: \"description != 0 && *description != '\\0'\"",
            contractMessage([] { Factory::createContainer("id", "n", nullptr, 0); }));
  EXPECT_EQ("Contract violation: \"mParameter != 0\"",
            contractMessage([] { Factory::createParameterRef(nullptr, 0, ""); }));
  EXPECT_EQ("Contract violation: \"specification != 0\"",
            contractMessage([] { Factory::addItemToSpecification(nullptr, nullptr); }));
  EXPECT_EQ("Contract violation: \"collection != 0\"",
            contractMessage([] { Factory::addItemToGroupItem(nullptr, nullptr); }));
  EXPECT_EQ("Contract violation: \"item != 0\"", contractMessage([] {
              Container* c = Factory::createContainer("c", "", "C", 0);
              std::unique_ptr<Container> owner(c);
              Factory::addItemToGroupItem(c, nullptr);
            }));
  EXPECT_EQ("Contract violation: \"item != 0\"",
            contractMessage([] { Factory::copyItemToCollection(nullptr, nullptr); }));
  EXPECT_EQ(nullptr, Factory::clone(nullptr, true));
  Factory::destroy(static_cast<const GroupItem*>(nullptr));

  try {
    Container* c = Factory::createContainer("c", "", "C", 0);
    std::unique_ptr<Container> owner(c);
    c->getItem(0);
    ADD_FAILURE() << "no contract violation";
  } catch (const zelk::ContractViolationException& e) {
    EXPECT_STREQ("Contract violation: \"index < mItems.size()\"", e.what());
    EXPECT_STREQ("impl/GroupItemCollectionImpl", e.getFile());
  }
}

TEST_F(GroupItemTest, SpecificationsTakeTheirIdentityFromTheItemsContainer) {
  Specification* plain =
      Factory::createSpecification("tool", "", "", "The tool", false, mManager.get());
  EXPECT_STREQ("tool", plain->getId());
  EXPECT_STREQ("tool", plain->getName());
  EXPECT_STREQ("tool", plain->getTitle());
  EXPECT_STREQ("The tool", plain->getDescription());
  EXPECT_FALSE(plain->isOptional());
  EXPECT_STREQ("tool", plain->getItemsContainer()->getId());
  EXPECT_EQ(0, plain->getItemsContainer()->getCharacteristics());

  Specification* full = Factory::createSpecification("backup", "Backup", "Backing up",
                                                     "Backs up a database", true, mManager.get());
  EXPECT_STREQ("Backup", full->getName());
  EXPECT_STREQ("Backing up", full->getTitle());
  EXPECT_TRUE(full->isOptional());
  EXPECT_EQ(plain, mManager->getSpecification("tool"));
  EXPECT_EQ(full, mManager->getSpecification("backup"));

  Specification* titled =
      Factory::createSpecification("t", "Named", "", "Titled by name", false, mManager.get());
  EXPECT_STREQ("Named", titled->getTitle());
}

}  // namespace
