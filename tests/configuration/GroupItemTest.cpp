// The specification model: constraint ids and characteristics, searches, copies and clones,
// parameters and their defaults, enumerations, the visitor walk and the descendant walk.
#include "zelk/configuration/GroupItem.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

#include <gtest/gtest.h>

#include "configuration/Models.h"
#include "zelk/configuration/Group.h"
#include "zelk/configuration/GroupItemVisitor.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/ConfigurationListener.h"
#include "zelk/configuration/impl/DescendantIterator.h"
#include "zelk/configuration/impl/ListenerManager.h"
#include "zelk/configuration/impl/ParameterSearchVisitor.h"

using namespace zelk::configuration;
using zelk::configuration::impl::DescendantIterator;
using zelk::configuration::impl::Factory;

namespace {

class GroupItemTest : public ::testing::Test {
protected:
  // The items container of a new specification of that id, owned by the manager.
  Container* root(const char* id) { return b.specification(id)->getItemsContainer(); }
  ParameterRef* ref(GroupItemCollection* parent, const char* id, int32_t characteristics = 0) {
    return b.ref(parent, id, Parameter::STRING, characteristics);
  }
  // A parameter and a reference to it that belongs to no collection.
  ParameterRef* loose(const char* id) {
    return Factory::createParameterRef(
        Factory::createParameter(id, "", "A parameter", Parameter::STRING, 0, 0, 0, b.manager()),
        0, "");
  }
  Parameter* parameter(const char* id, const char* name, Parameter::ValueType type,
                       const char* valueName = nullptr, const EnumDefinition* enumDef = nullptr) {
    return Factory::createParameter(id, name, "A parameter", type, valueName, nullptr, enumDef,
                                    b.manager());
  }

  zelk::test::SpecificationBuilder b;
};

TEST_F(GroupItemTest, ConstraintIdsAreFormedFromTheParentAtTheFirstAttachment) {
  Container* db = root("db");
  ref(db, "a");
  ref(db, "b");
  OneOf* choice = b.oneOf(db, 0);
  EXPECT_STREQ("db_oo2", choice->getId());
  // A constraint in a constraint is named after the constraint, not the container.
  LogicalGroup* both = b.logicalGroup(choice, 0);
  EXPECT_STREQ("db_oo2_lg0", both->getId());
  EXPECT_EQ(db, both->getContainer());
  // Attaching again does not rename.
  choice->setContainer(root("other"));
  EXPECT_STREQ("db_oo2", choice->getId());
  choice->setContainer(db);
}

TEST_F(GroupItemTest, CharacteristicsDropTheBitsThatDoNotApply) {
  const int32_t all = GroupItem::OPTIONAL | GroupItem::UNBOUNDED | GroupItem::HIDDEN;
  Container* top = root("top");
  Container* container = b.container(top, "c", all);
  EXPECT_EQ(GroupItem::OPTIONAL | GroupItem::UNBOUNDED, container->getCharacteristics());
  container->setHidden(true);
  EXPECT_FALSE(container->isHidden());
  container->setOptional(false);
  EXPECT_EQ(GroupItem::UNBOUNDED, container->getCharacteristics());
  EXPECT_EQ(GroupItem::OPTIONAL, b.oneOf(top, all)->getCharacteristics());
  ParameterRef* r = ref(top, "p", all);
  EXPECT_EQ(all, r->getCharacteristics());
  r->setHidden(false);
  EXPECT_EQ(GroupItem::OPTIONAL | GroupItem::UNBOUNDED, r->getCharacteristics());
}

TEST_F(GroupItemTest, ChildrenOfConstraintsTakeTheirLinksOptionalityAndHiddenness) {
  Container* c = root("c");
  OneOf* oneOf = b.oneOf(c, 0);
  ParameterRef* inOneOf = ref(oneOf, "x");
  // Sitting directly in a one-of makes an item optional whatever its bit says.
  EXPECT_TRUE(inOneOf->isOptional());
  EXPECT_EQ(0, inOneOf->getCharacteristics());
  EXPECT_EQ(c, inOneOf->getContainer());
  LogicalGroup* group = b.logicalGroup(oneOf, 0);
  ParameterRef* inGroup = ref(group, "y");
  EXPECT_FALSE(inGroup->isOptional());
  EXPECT_EQ(group, inGroup->getLogicalGroup());
  EXPECT_FALSE(ref(c, "z")->isOptional());
  // A constraint cannot store the hidden bit, so asking for it hides neither it nor its children.
  LogicalGroup* hiddenGroup = b.logicalGroup(c, GroupItem::HIDDEN);
  EXPECT_FALSE(hiddenGroup->isHidden());
  EXPECT_FALSE(ref(hiddenGroup, "w")->isHidden());
}

TEST_F(GroupItemTest, DescendantTests) {
  Container* outer = root("outer");
  Container* inner = b.container(outer, "inner", 0);
  OneOf* oneOf = b.oneOf(inner, 0);
  ParameterRef* a = ref(oneOf, "a");
  ParameterRef* direct = ref(outer, "b");
  std::unique_ptr<ParameterRef> unattached(loose("loose"));
  EXPECT_FALSE(unattached->isDescendantOf(outer));
  EXPECT_TRUE(direct->isDescendantOf(outer));
  EXPECT_FALSE(direct->isDescendantOf(inner));
  EXPECT_TRUE(a->isDescendantOf(outer));
  EXPECT_TRUE(a->isDirectDescendantOf(oneOf));
  EXPECT_FALSE(a->isDirectDescendantOf(outer));
  // For a container the test is on the container link, which items in its constraints share.
  EXPECT_TRUE(a->isDirectDescendantOf(inner));
  EXPECT_FALSE(direct->isDirectDescendantOf(oneOf));
}

TEST_F(GroupItemTest, SearchesLookThroughConstraintsButNotIntoNestedContainers) {
  // tool: [a, oneOf(lg(param, b)), nested: [hidden], c]
  Specification* spec = b.specification("tool");
  Container* top = spec->getItemsContainer();
  ref(top, "a");
  OneOf* oneOf = b.oneOf(top, 0);
  LogicalGroup* group = b.logicalGroup(oneOf, 0);
  ParameterRef* param = ref(group, "param");
  ref(group, "b");
  Container* nested = b.container(top, "Nested", 0);
  ParameterRef* hidden = ref(nested, "hidden");
  ref(top, "c");

  EXPECT_EQ(param, spec->findItem("PARAM"));
  EXPECT_EQ(hidden, nested->findParameterRef("HIDDEN"));
  EXPECT_EQ(nested, spec->findContainer("nested"));
  EXPECT_EQ(group, spec->findItem("TOOL_OO1_LG0"));
  EXPECT_EQ(nullptr, spec->findContainer("param"));  // only the requested kind is found
  EXPECT_EQ(nullptr, spec->findItem("para"));        // a whole-string comparison, no prefixes
  // Constraints look at their direct children only.
  EXPECT_EQ(group, oneOf->findItem("tool_oo1_lg0"));
  EXPECT_EQ(nullptr, oneOf->findItem("param"));
  EXPECT_EQ(param, group->findItem("PARAM"));

  // At the constraint level the selection by type code 0 picks containers, never references.
  ParameterRef* x = ref(oneOf, "x");
  Container* named = b.container(oneOf, "x", 0);
  EXPECT_EQ(nullptr, oneOf->findParameterRef("x"));
  EXPECT_EQ(named, oneOf->findContainer("X"));
  EXPECT_EQ(x, top->findParameterRef("x"));
}

TEST_F(GroupItemTest, ACopiedGroupContainerCanBeSearchedLikeTheOriginal) {
  Group* common = Factory::createGroup("common", "Common options", b.manager());
  Container* items = common->getItemsContainer();
  ref(items, "verbose", GroupItem::OPTIONAL);
  OneOf* mode = b.oneOf(items, GroupItem::OPTIONAL);
  LogicalGroup* pair = b.logicalGroup(mode, 0);
  ref(pair, "user");
  ref(pair, "password");
  ref(mode, "token");
  Specification* spec = b.specification("tool");
  ref(spec->getItemsContainer(), "level");
  Factory::copyItemToCollection(spec->getItemsContainer(), items);

  const Container* copy = spec->findContainer("COMMON");
  ASSERT_NE(nullptr, copy);
  EXPECT_EQ(spec->getItemsContainer(), copy->getContainer());
  ASSERT_EQ(2u, copy->getNumberOfItems());
  // Every copied item lives in the copy and is found through it, however deep.
  const ParameterRef* user = copy->findParameterRef("user");
  ASSERT_NE(nullptr, user);
  EXPECT_EQ(copy, user->getContainer());
  EXPECT_FALSE(user->isDescendantOf(items));
  // The copied constraints are named after their new parents, which carry the same ids.
  const GroupItem* copiedMode = copy->getItem(1);
  EXPECT_STREQ("common_oo1", copiedMode->getId());
  EXPECT_STREQ("common_oo1_lg0", copy->findItem("common_oo1_lg0")->getId());
  EXPECT_TRUE(copiedMode->isOptional());
}

TEST_F(GroupItemTest, ClonesCopyAttributesAndOptionallyChildren) {
  Container* original = b.container(root("r"), "db", GroupItem::OPTIONAL | GroupItem::UNBOUNDED);
  ref(original, "name");
  OneOf* oneOf = b.oneOf(original, 0);
  ref(oneOf, "fast");
  ref(oneOf, "safe");

  std::unique_ptr<GroupItem> shallow(original->clone(GroupItem::SHALLOW));
  EXPECT_EQ(0u, static_cast<const Container*>(shallow.get())->getNumberOfItems());
  std::unique_ptr<GroupItem> deep(original->clone(GroupItem::DEEP));
  const Container* deepCopy = static_cast<const Container*>(deep.get());
  ASSERT_EQ(2u, deepCopy->getNumberOfItems());
  const GroupItem* copiedOneOf = deepCopy->getItem(1);
  EXPECT_STREQ("db_oo1", copiedOneOf->getId());
  const ParameterRef* safe = deepCopy->findParameterRef("safe");
  ASSERT_NE(nullptr, safe);
  EXPECT_EQ(copiedOneOf, safe->getCollection());

  // A one-of filled before it is attached still hands its container to its children.
  OneOf* late = Factory::createOneOf(0);
  ParameterRef* early = loose("early");
  Factory::addItemToGroupItem(late, early);
  Factory::addItemToGroupItem(original, late);
  EXPECT_EQ(early, original->findParameterRef("early"));
}

TEST_F(GroupItemTest, ParameterValueNamesTypeNamesAndDefaults) {
  // The name (here the id) stands in for a missing or empty value name; a flag takes none.
  EXPECT_STREQ("level", parameter("level", "", Parameter::INT32)->getValueName());
  EXPECT_STREQ("FILE", parameter("path", "Path", Parameter::STRING, "FILE")->getValueName());
  EXPECT_STREQ("", parameter("verbose", "Verbose", Parameter::BOOL)->getValueName());
  const char* names[] = {"bool", "string", "int32", "uint32", "double", "OID", "enumeration",
                         "int64", "uint64"};
  for (int type = Parameter::BOOL; type <= Parameter::UINT64; ++type) {
    EXPECT_STREQ(names[type], Parameter::getValueTypeName(static_cast<Parameter::ValueType>(type)));
  }
  EXPECT_STREQ("unknown", Parameter::getValueTypeName(static_cast<Parameter::ValueType>(9)));
  EXPECT_THROW(parameter("p", "", static_cast<Parameter::ValueType>(9)),
               zelk::ContractViolationException);
  EXPECT_THROW(parameter("q", "", Parameter::ENUM), zelk::ContractViolationException);

  Parameter* count = parameter("count", "", Parameter::UINT32);
  Factory::setDefaultValueFor(count, "3");
  EXPECT_TRUE(count->getDefaultValue().isDefaultValue());
  // A reference without a default of its own shows the parameter's.
  std::unique_ptr<ParameterRef> plain(Factory::createParameterRef(count, 0, ""));
  std::unique_ptr<ParameterRef> own(Factory::createParameterRef(count, 0, ""));
  EXPECT_EQ(3u, plain->getDefaultValue().asUInt32());
  Factory::setDefaultValueFor(own.get(), "7");
  EXPECT_EQ(3u, count->getDefaultValue().asUInt32());
  std::unique_ptr<GroupItem> clone(own->clone(GroupItem::DEEP));
  EXPECT_EQ(7u, static_cast<ParameterRef*>(clone.get())->getDefaultValue().asUInt32());
  Factory::setDefaultValueFor(count, "4");
  EXPECT_EQ(4u, plain->getDefaultValue().asUInt32());
  count->setDefaultValue(Value::Null);
  EXPECT_TRUE(plain->getDefaultValue().isNull());
  // A text that does not fit the type is refused and the old default stays.
  Factory::setDefaultValueFor(count, "5");
  EXPECT_ANY_THROW(Factory::setDefaultValueFor(count, "-x"));
  EXPECT_EQ(5u, count->getDefaultValue().asUInt32());
  EXPECT_ANY_THROW(Factory::setDefaultValueFor(own.get(), "4294967296"));
  EXPECT_EQ(7u, own->getDefaultValue().asUInt32());
  Parameter* mode = parameter("mode", "", Parameter::ENUM, nullptr,
                              b.enumeration("modes", {"fast", "safe"}));
  Factory::setDefaultValueFor(mode, "safe");
  EXPECT_EQ(1, mode->getDefaultValue().asEnum());
  EXPECT_ANY_THROW(Factory::setDefaultValueFor(mode, "slow"));
}

TEST_F(GroupItemTest, EnumerationNumberingAndLookUps) {
  EnumDefinition* e = Factory::createEnumDefinition("letters", b.manager());
  EXPECT_EQ(1, Factory::addEnumValue(e, "b"));
  EXPECT_EQ(2, Factory::addEnumValue(e, "a"));
  EXPECT_EQ(11, Factory::addEnumValue(e, "c", 10));
  EXPECT_EQ(12, Factory::addEnumValue(e, "d"));
  // A repeated symbol keeps its value but still moves the counter.
  EXPECT_EQ(6, Factory::addEnumValue(e, "a", 5));
  EXPECT_EQ(7, Factory::addEnumValue(e, "e"));
  Factory::addEnumValue(e, "zeta", 0);

  ValidationErrors errors;
  EXPECT_EQ(1, e->getValue("a", &errors));
  EXPECT_EQ(6, e->getValue("e", &errors));
  ASSERT_EQ(6u, e->getNumberOfValues());
  EXPECT_STREQ("a", e->getSymbolicNameByIndex(0));
  EXPECT_STREQ("e", e->getSymbolicNameInDefinitionOrder(4));
  EXPECT_STREQ("c", e->getSymbolicName(10, &errors));
  // The first symbol in symbol order with the value wins.
  EXPECT_STREQ("b", e->getSymbolicName(0, &errors));
  EXPECT_EQ(0u, errors.getNumberOfErrors());

  EXPECT_EQ(0, e->getValue("B", &errors));  // exact
  EXPECT_EQ(nullptr, e->getSymbolicName(8, &errors));
  EXPECT_EQ(0, e->getValue("100%s", &errors));
  EXPECT_EQ((std::vector<std::string>{"Symbol \"B\" was not found", "Value 8 was not found",
                                      "Symbol \"100%s\" was not found"}),
            zelk::test::texts(errors));
  EXPECT_EQ("Symbol \"nosuch\" was not found",
            zelk::test::messageOf<ValidationException>([&] { e->getValue("nosuch", nullptr); }));
}

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

TEST_F(GroupItemTest, VisitsComeInTreeOrderAndFalseStopsTheWalkButNotTheSpecificationEnd) {
  // s: [a, oneOf(b, lg(c, d)), empty: [], e]
  Specification* spec = b.specification("s");
  ref(spec->getItemsContainer(), "a");
  OneOf* oneOf = b.oneOf(spec->getItemsContainer(), 0);
  ref(oneOf, "b");
  LogicalGroup* group = b.logicalGroup(oneOf, 0);
  ref(group, "c");
  ref(group, "d");
  b.container(spec->getItemsContainer(), "empty", 0);
  ref(spec->getItemsContainer(), "e");
  const std::string fullWalk =
      "SS:s CS:s P:a CM:s OS:s_oo1 P:b OM:s_oo1 LS:s_oo1_lg1 P:c LM:s_oo1_lg1 P:d LE:s_oo1_lg1 "
      "OE:s_oo1 CM:s CS:empty CE:empty CM:s P:e CE:s SE:s";
  Recorder recorder;
  EXPECT_TRUE(spec->accept(recorder));
  EXPECT_EQ(fullWalk, recorder.mCalls);
  GroupItemVisitor defaults;
  EXPECT_TRUE(spec->accept(defaults));

  Recorder stopAtMiddle("LM:s_oo1_lg1");
  EXPECT_FALSE(spec->accept(stopAtMiddle));
  EXPECT_EQ("SS:s CS:s P:a CM:s OS:s_oo1 P:b OM:s_oo1 LS:s_oo1_lg1 P:c LM:s_oo1_lg1 SE:s",
            stopAtMiddle.mCalls);
  // A start that refuses skips the children and the end of that collection.
  Recorder stopAtStart("OS:s_oo1");
  EXPECT_FALSE(spec->accept(stopAtStart));
  EXPECT_EQ("SS:s CS:s P:a CM:s OS:s_oo1 SE:s", stopAtStart.mCalls);
  // The end's refusal alone makes the result false.
  Recorder stopAtSpecEnd("SE:s");
  EXPECT_FALSE(spec->accept(stopAtSpecEnd));
  EXPECT_EQ(fullWalk, stopAtSpecEnd.mCalls);

  // A group wraps its items container.
  Group* common = Factory::createGroup("common", "Common", b.manager());
  ref(common->getItemsContainer(), "x");
  Recorder groupWalk;
  EXPECT_TRUE(common->accept(groupWalk));
  EXPECT_EQ("GS:common CS:common P:x CE:common GE:common", groupWalk.mCalls);
  Recorder stopped("P:x");
  EXPECT_FALSE(common->accept(stopped));
  EXPECT_EQ("GS:common CS:common P:x GE:common", stopped.mCalls);
}

// Container searches answer from an index: items added below after an earlier search are seen.
TEST_F(GroupItemTest, SearchesSeeItemsAddedBelowAfterAnEarlierSearch) {
  Container* top = root("root");
  ref(top, "a");
  LogicalGroup* group = b.logicalGroup(top, 0);
  EXPECT_EQ(nullptr, top->findParameterRef("b"));
  ref(group, "b");
  EXPECT_NE(nullptr, top->findParameterRef("B"));
  OneOf* choice = b.oneOf(group, 0);
  ref(choice, "c");
  Container* nested = b.container(choice, "inner", 0);
  EXPECT_NE(nullptr, top->findParameterRef("c"));
  EXPECT_EQ(nested, top->findContainer("INNER"));
  // The nested container's contents belong to its own searches only.
  ref(nested, "d");
  EXPECT_EQ(nullptr, top->findParameterRef("d"));
  EXPECT_NE(nullptr, nested->findParameterRef("d"));
  // The first item in walk order wins; types are kept apart.
  ParameterRef* first = ref(group, "dup");
  Container* sameName = b.container(top, "dup", 0);
  ref(top, "dup");
  EXPECT_EQ(first, top->findParameterRef("DUP"));
  EXPECT_EQ(sameName, top->findContainer("dup"));
  EXPECT_EQ(static_cast<const GroupItem*>(first), top->findItem("dup"));
}

// A reference whose id, once armed, waits until another search of the same container is done.
class WaitingRef : public ParameterRef {
public:
  explicit WaitingRef(const Parameter* parameter) : ParameterRef(parameter, 0, "") {}
  const char* getId() const override {
    if (armed.exchange(false)) {
      std::unique_lock<std::mutex> lock(mutex);
      otherSearchDone = done.wait_for(lock, std::chrono::seconds(10), [this] { return finished; });
    }
    return ParameterRef::getId();
  }
  void finish() const {
    std::lock_guard<std::mutex> lock(mutex);
    finished = true;
    done.notify_all();
  }

  mutable std::atomic<bool> armed{false};
  mutable bool otherSearchDone = false;

private:
  mutable std::mutex mutex;
  mutable std::condition_variable done;
  mutable bool finished = false;
};

TEST_F(GroupItemTest, SearchesOfOneContainerRunSideBySide) {
  Container* top = root("root");
  ref(top, "fast");
  WaitingRef* waiting = new WaitingRef(parameter("slow", "", Parameter::STRING));
  Factory::addItemToGroupItem(top, waiting);
  ASSERT_NE(nullptr, top->findParameterRef("fast"));  // builds the index

  waiting->armed = true;
  std::thread first([&] { top->findParameterRef("slow"); });
  while (waiting->armed) {
    std::this_thread::yield();
  }
  // The first search now waits inside the container; this one must not wait for it.
  EXPECT_NE(nullptr, top->findParameterRef("FAST"));
  waiting->finish();
  first.join();
  EXPECT_TRUE(waiting->otherSearchDone);
}

std::string walk(const GroupItemCollection* ancestor, int32_t itemType) {
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

TEST_F(GroupItemTest, DescendantWalksPassThroughConstraintsAndEndAtForeignItems) {
  // c: [a, oneOf(b, lg(d, nested: [e]), f), g]
  Container* c = root("c");
  ref(c, "a");
  OneOf* oneOf = b.oneOf(c, 0);
  ref(oneOf, "b");
  LogicalGroup* group = b.logicalGroup(oneOf, 0);
  ref(group, "d");
  ref(b.container(group, "nested", 0), "e");
  ref(oneOf, "f");
  ref(c, "g");
  EXPECT_EQ("a,c_oo1,b,c_oo1_lg1,d,nested,f,g", walk(c, DescendantIterator::ALL_ITEM_TYPES));
  EXPECT_EQ("a,b,d,f,g", walk(c, GroupItem::PARAMETER_REF));
  EXPECT_EQ("nested", walk(c, GroupItem::CONTAINER));
  EXPECT_EQ("", walk(c, GroupItem::ONE_OF));  // constraints are entered, not returned
  // A constraint as the ancestor walks only its own items.
  EXPECT_EQ("b,c_oo1_lg1,d,nested,f", walk(oneOf, DescendantIterator::ALL_ITEM_TYPES));
  EXPECT_EQ("d", walk(group, GroupItem::PARAMETER_REF));
  // Moved to a foreign container, a child of the one-of ends the walk of the one-of.
  const_cast<GroupItem*>(oneOf->getItem(1))->setContainer(root("foreign"));
  EXPECT_EQ("a,c_oo1,b,g", walk(c, DescendantIterator::ALL_ITEM_TYPES));
  const_cast<GroupItem*>(oneOf->getItem(1))->setContainer(c);
}

TEST_F(GroupItemTest, ContractsAndTypeNames) {
  Container* c = root("c");
  OneOf* oneOf = b.oneOf(c, 0);
  EnumDefinition* e = b.enumeration("e", {"a"});
  struct Listener : ConfigurationListener {
  } listener;
  impl::ParameterSearchVisitor search("x");
  const std::function<void()> contracts[] = {
      [] { Factory::createContainer("", "n", "d", 0); },
      [] { Factory::createContainer("id", "n", nullptr, 0); },
      [&] { Factory::createEnumDefinition("", b.manager()); },
      [] { Factory::addEnumValue(nullptr, "x"); },
      [&] { Factory::addEnumValue(e, "", 3); },
      [] { Factory::addItemToSpecification(nullptr, nullptr); },
      [&] { Factory::addItemToSpecification(b.specification("s"), nullptr); },
      [] { Factory::addItemToGroupItem(nullptr, nullptr); },
      [&] { Factory::addItemToGroupItem(c, nullptr); },
      [] { Factory::copyItemToCollection(nullptr, nullptr); },
      [] { Factory::setDefaultValueFor(static_cast<Parameter*>(nullptr), "1"); },
      [] { Factory::setDefaultValueFor(static_cast<ParameterRef*>(nullptr), "1"); },
      [&] { parameter("", "", Parameter::STRING); },
      [&] { parameter("p", "", static_cast<Parameter::ValueType>(-1)); },
      [] { Factory::createParameterRef(nullptr, 0, ""); },
      [&] { c->getItem(9); },
      [&] { c->findItem(""); },
      [&] { oneOf->findItem(""); },
      [&] { ref(c, "d")->isDescendantOf(nullptr); },
      [&] { e->getSymbolicNameByIndex(3); },
      [] { DescendantIterator(nullptr, -1); },
      [&] { search.getFoundItem(0); },
      [&] { listener.startListeningTo(static_cast<const Specification*>(nullptr)); },
      [&] { listener.startListeningTo(static_cast<const ParameterRef*>(nullptr)); },
      [&] { listener.stopListeningTo(static_cast<const Container*>(nullptr)); },
      [&] { impl::ListenerManager::getInstance()->addListener(&listener, nullptr); },
      [&] { impl::ListenerManager::getInstance()->removeListener(nullptr, c); },
  };
  for (const auto& call : contracts) {
    EXPECT_THROW(call(), zelk::ContractViolationException);
  }
  Factory::destroy(static_cast<const GroupItem*>(nullptr));
  Factory::destroy(static_cast<Validator*>(nullptr), true, b.manager());
  Group* group = Factory::createGroup("g", "G", b.manager());
  const std::pair<const char*, const char*> names[] = {
      {"Container", c->getItemTypeName()},
      {"One Of", oneOf->getItemTypeName()},
      {"Logical Group", b.logicalGroup(c, 0)->getItemTypeName()},
      {"ParameterRef", ref(c, "r")->getItemTypeName()},
      {"Parameter", parameter("q", "", Parameter::INT32)->getItemTypeName()},
      {"Group", group->getItemTypeName()},
  };
  for (const auto& name : names) {
    EXPECT_STREQ(name.first, name.second);
  }
  EXPECT_EQ(oneOf, ref(oneOf, "o")->getConstraint());
  EXPECT_FALSE(oneOf->isUnbounded());
}

}  // namespace
