#include "zelk/configuration/impl/DescendantIterator.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/Container.h"
#include "zelk/configuration/LogicalGroup.h"
#include "zelk/configuration/OneOf.h"
#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/impl/Factory.h"
#include "zelk/util/ContractViolationException.h"

using namespace zelk::configuration;
using zelk::configuration::impl::DescendantIterator;
using zelk::configuration::impl::Factory;

namespace {

class DescendantIteratorTest : public ::testing::Test {
protected:
  DescendantIteratorTest() : mManager(Factory::createManager()) {
    // c: [a, oneOf(b, lg(d, nested: [e]), f), g]
    mRoot = Factory::createContainer("c", "", "Root", 0);
    Factory::addItemToGroupItem(mRoot, ref("a"));
    mOneOf = Factory::createOneOf(0);
    Factory::addItemToGroupItem(mRoot, mOneOf);
    Factory::addItemToGroupItem(mOneOf, ref("b"));
    mGroup = Factory::createLogicalGroup(0);
    Factory::addItemToGroupItem(mOneOf, mGroup);
    Factory::addItemToGroupItem(mGroup, ref("d"));
    Container* nested = Factory::createContainer("nested", "", "Nested", 0);
    Factory::addItemToGroupItem(mGroup, nested);
    Factory::addItemToGroupItem(nested, ref("e"));
    Factory::addItemToGroupItem(mOneOf, ref("f"));
    Factory::addItemToGroupItem(mRoot, ref("g"));
  }
  ~DescendantIteratorTest() override { Factory::destroy(mRoot); }

  ParameterRef* ref(const char* id) {
    Parameter* p = Factory::createParameter(id, "", "A parameter", Parameter::STRING, 0, 0, 0,
                                            mManager.get());
    return Factory::createParameterRef(p, 0, "");
  }

  static std::string walk(const GroupItemCollection* ancestor, int32_t itemType) {
    DescendantIterator it(ancestor, itemType);
    EXPECT_EQ(nullptr, it.getCurrent());
    std::string ids;
    while (it.next()) {
      if (!ids.empty()) ids += ",";
      ids += it.getCurrent()->getId();
    }
    EXPECT_EQ(nullptr, it.getCurrent());
    EXPECT_FALSE(it.next());
    return ids;
  }

  std::unique_ptr<ConfigurationManager> mManager;
  Container* mRoot;
  OneOf* mOneOf;
  LogicalGroup* mGroup;
};

TEST_F(DescendantIteratorTest, AllTypesVisitsConstraintsBeforeTheirChildren) {
  EXPECT_EQ("a,c_oo1,b,c_oo1_lg1,d,nested,f,g", walk(mRoot, DescendantIterator::ALL_ITEM_TYPES));
}

TEST_F(DescendantIteratorTest, TypeFiltersPassThroughConstraints) {
  EXPECT_EQ("a,b,d,f,g", walk(mRoot, GroupItem::PARAMETER_REF));
  EXPECT_EQ("nested", walk(mRoot, GroupItem::CONTAINER));
  // Constraints are entered, not returned.
  EXPECT_EQ("", walk(mRoot, GroupItem::ONE_OF));
}

TEST_F(DescendantIteratorTest, AConstraintAncestorWalksOnlyItsOwnItems) {
  EXPECT_EQ("b,c_oo1_lg1,d,nested,f", walk(mOneOf, DescendantIterator::ALL_ITEM_TYPES));
  EXPECT_EQ("d", walk(mGroup, GroupItem::PARAMETER_REF));
}

TEST_F(DescendantIteratorTest, EmptyCollectionsAndTheNullAncestor) {
  Container* empty = Factory::createContainer("empty", "", "Empty", 0);
  EXPECT_EQ("", walk(empty, DescendantIterator::ALL_ITEM_TYPES));
  Factory::destroy(empty);
  try {
    DescendantIterator it(nullptr, -1);
    ADD_FAILURE() << "no contract violation";
  } catch (const zelk::ContractViolationException& e) {
    EXPECT_STREQ("Contract violation: \"mCommonAncestor != 0\"", e.what());
  }
}

TEST_F(DescendantIteratorTest, ItemsThatBelongToAnotherContainerEndTheirCollection) {
  // Move a child of the one-of to a foreign container: the walk of the one-of stops there.
  Container* foreign = Factory::createContainer("foreign", "", "Foreign", 0);
  const_cast<GroupItem*>(mOneOf->getItem(1))->setContainer(foreign);
  EXPECT_EQ("a,c_oo1,b,g", walk(mRoot, DescendantIterator::ALL_ITEM_TYPES));
  const_cast<GroupItem*>(mOneOf->getItem(1))->setContainer(mRoot);
  Factory::destroy(foreign);
}

}  // namespace
