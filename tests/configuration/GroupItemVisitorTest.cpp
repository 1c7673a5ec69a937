#include "zelk/configuration/GroupItemVisitor.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/Container.h"
#include "zelk/configuration/Group.h"
#include "zelk/configuration/LogicalGroup.h"
#include "zelk/configuration/OneOf.h"
#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/impl/Factory.h"

using namespace zelk::configuration;
using zelk::configuration::impl::Factory;

namespace {

// Records every call; returns false from the call named by mStopAt.
class Recorder : public GroupItemVisitor {
public:
  explicit Recorder(std::string stopAt = "") : mStopAt(std::move(stopAt)) {}

  bool visitSpecificationStart(const Specification& s) override { return record("SS", s.getId()); }
  bool visitSpecificationEnd(const Specification& s) override { return record("SE", s.getId()); }
  bool visitGroupStart(const Group& g) override { return record("GS", g.getId()); }
  bool visitGroupEnd(const Group& g) override { return record("GE", g.getId()); }
  bool visitContainerStart(const Container& c) override { return record("CS", c.getId()); }
  bool visitContainerMiddle(const Container& c) override { return record("CM", c.getId()); }
  bool visitContainerEnd(const Container& c) override { return record("CE", c.getId()); }
  bool visitOneOfStart(const OneOf& o) override { return record("OS", o.getId()); }
  bool visitOneOfMiddle(const OneOf& o) override { return record("OM", o.getId()); }
  bool visitOneOfEnd(const OneOf& o) override { return record("OE", o.getId()); }
  bool visitLogicalGroupStart(const LogicalGroup& l) override { return record("LS", l.getId()); }
  bool visitLogicalGroupMiddle(const LogicalGroup& l) override { return record("LM", l.getId()); }
  bool visitLogicalGroupEnd(const LogicalGroup& l) override { return record("LE", l.getId()); }
  bool visitParameterRef(const ParameterRef& r) override { return record("P", r.getId()); }

  std::string mCalls;

private:
  bool record(const char* kind, const char* id) {
    const std::string call = std::string(kind) + ":" + id;
    if (!mCalls.empty()) mCalls += " ";
    mCalls += call;
    return call != mStopAt;
  }

  std::string mStopAt;
};

class GroupItemVisitorTest : public ::testing::Test {
protected:
  GroupItemVisitorTest() : mManager(Factory::createManager()) {
    // s: [a, oneOf(b, lg(c, d)), empty: [], e]
    mSpec = Factory::createSpecification("s", "", "", "Spec", false, mManager.get());
    Factory::addItemToSpecification(mSpec, ref("a"));
    OneOf* oneOf = Factory::createOneOf(0);
    Factory::addItemToSpecification(mSpec, oneOf);
    Factory::addItemToGroupItem(oneOf, ref("b"));
    LogicalGroup* group = Factory::createLogicalGroup(0);
    Factory::addItemToGroupItem(oneOf, group);
    Factory::addItemToGroupItem(group, ref("c"));
    Factory::addItemToGroupItem(group, ref("d"));
    Factory::addItemToSpecification(mSpec, Factory::createContainer("empty", "", "Empty", 0));
    Factory::addItemToSpecification(mSpec, ref("e"));
  }

  ParameterRef* ref(const char* id) {
    Parameter* p = Factory::createParameter(id, "", "A parameter", Parameter::STRING, 0, 0, 0,
                                            mManager.get());
    return Factory::createParameterRef(p, 0, "");
  }

  std::unique_ptr<ConfigurationManager> mManager;
  Specification* mSpec;
};

const char* const FULL_WALK =
    "SS:s CS:s P:a CM:s OS:s_oo1 P:b OM:s_oo1 LS:s_oo1_lg1 P:c LM:s_oo1_lg1 P:d LE:s_oo1_lg1 "
    "OE:s_oo1 CM:s CS:empty CE:empty CM:s P:e CE:s SE:s";

TEST_F(GroupItemVisitorTest, StartMiddleAndEndComeInTreeOrder) {
  Recorder recorder;
  EXPECT_TRUE(mSpec->accept(recorder));
  EXPECT_EQ(FULL_WALK, recorder.mCalls);

  GroupItemVisitor defaults;
  EXPECT_TRUE(mSpec->accept(defaults));
}

TEST_F(GroupItemVisitorTest, FalseStopsTheWalkButTheSpecificationEndIsAlwaysCalled) {
  Recorder stopAtMiddle("LM:s_oo1_lg1");
  EXPECT_FALSE(mSpec->accept(stopAtMiddle));
  EXPECT_EQ("SS:s CS:s P:a CM:s OS:s_oo1 P:b OM:s_oo1 LS:s_oo1_lg1 P:c LM:s_oo1_lg1 SE:s",
            stopAtMiddle.mCalls);

  Recorder stopAtRef("P:b");
  EXPECT_FALSE(mSpec->accept(stopAtRef));
  EXPECT_EQ("SS:s CS:s P:a CM:s OS:s_oo1 P:b SE:s", stopAtRef.mCalls);

  // A start that refuses skips the children and the end of that collection.
  Recorder stopAtStart("OS:s_oo1");
  EXPECT_FALSE(mSpec->accept(stopAtStart));
  EXPECT_EQ("SS:s CS:s P:a CM:s OS:s_oo1 SE:s", stopAtStart.mCalls);

  // An empty container goes straight from start to end.
  Recorder stopAtEmptyEnd("CE:empty");
  EXPECT_FALSE(mSpec->accept(stopAtEmptyEnd));
  EXPECT_EQ(
      "SS:s CS:s P:a CM:s OS:s_oo1 P:b OM:s_oo1 LS:s_oo1_lg1 P:c LM:s_oo1_lg1 P:d LE:s_oo1_lg1 "
      "OE:s_oo1 CM:s CS:empty CE:empty SE:s",
      stopAtEmptyEnd.mCalls);

  Recorder stopAtSpecStart("SS:s");
  EXPECT_FALSE(mSpec->accept(stopAtSpecStart));
  EXPECT_EQ("SS:s", stopAtSpecStart.mCalls);

  // The end's refusal alone makes the result false.
  Recorder stopAtSpecEnd("SE:s");
  EXPECT_FALSE(mSpec->accept(stopAtSpecEnd));
  EXPECT_EQ(FULL_WALK, stopAtSpecEnd.mCalls);
}

TEST_F(GroupItemVisitorTest, GroupsWrapTheirItemsContainer) {
  Group* group = Factory::createGroup("common", "Common", mManager.get());
  Factory::addItemToGroupItem(group->getItemsContainer(), ref("x"));
  Recorder recorder;
  EXPECT_TRUE(group->accept(recorder));
  EXPECT_EQ("GS:common CS:common P:x CE:common GE:common", recorder.mCalls);

  Recorder stopped("P:x");
  EXPECT_FALSE(group->accept(stopped));
  EXPECT_EQ("GS:common CS:common P:x GE:common", stopped.mCalls);

  // A single item visited on its own.
  Recorder single;
  EXPECT_TRUE(group->getItemsContainer()->getItem(0)->accept(single));
  EXPECT_EQ("P:x", single.mCalls);
}

}  // namespace
