#include "zelk/configuration/ConfigurationManager.h"

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/EnumDefinition.h"
#include "zelk/configuration/Group.h"
#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/Validator.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/ValueProvider.h"
#include "zelk/configuration/impl/ConfigurationManagerImpl.h"
#include "zelk/configuration/impl/Factory.h"
#include "zelk/configuration/impl/ValueProviderImpl.h"
#include "zelk/util/ContractViolationException.h"

using namespace zelk::configuration;
using zelk::configuration::impl::Factory;

namespace {

std::vector<std::string> gDestroyed;

class LoggedValidator : public Validator {
public:
  explicit LoggedValidator(const char* name) : Validator(name) {}
  ~LoggedValidator() override { gDestroyed.push_back(std::string("validator ") + getName()); }
  using Validator::validate;
  char* validate(const char*) const override { return nullptr; }
};

class LoggedProviderImpl : public impl::ValueProviderImpl {
public:
  explicit LoggedProviderImpl(const char* id) : impl::ValueProviderImpl("CLI", 1, id) {}
  ValueGroup getSpecificationValues(const Specification&, int) const override {
    return ValueGroup::Null;
  }
};

class LoggedProvider : public ValueProvider {
public:
  explicit LoggedProvider(const char* id) : ValueProvider(new LoggedProviderImpl(id)) {}
  ~LoggedProvider() override { gDestroyed.push_back(std::string("provider ") + getId()); }
  const char* getName() const override { return "CLI"; }
};

class ConfigurationManagerTest : public ::testing::Test {
protected:
  ConfigurationManagerTest() : mManager(Factory::createManager()) { gDestroyed.clear(); }

  template <typename T>
  static std::vector<std::string> ids(zelk::IEnumerator<T*>* raw) {
    std::unique_ptr<zelk::IEnumerator<T*>> enumerator(raw);
    std::vector<std::string> result;
    for (; enumerator->hasNext(); enumerator->moveNext()) {
      result.push_back(key(enumerator->getCurrent()));
    }
    return result;
  }
  static std::string key(Specification* s) { return s->getId(); }
  static std::string key(GlobalItem* g) { return g->getId(); }
  static std::string key(Validator* v) { return v->getName(); }
  static std::string key(ValueProvider* p) { return p->getId(); }
  static std::string key(EnumDefinition* e) { return e->getName(); }

  static std::string message(void (*call)(ConfigurationManager*), ConfigurationManager* manager) {
    try {
      call(manager);
    } catch (const std::exception& e) {
      return e.what();
    }
    return "no exception";
  }

  std::unique_ptr<ConfigurationManager> mManager;
};

TEST_F(ConfigurationManagerTest, DuplicatesAreAcceptedAndReportedOnLookUp) {
  ConfigurationManager* m = mManager.get();
  Specification* first = Factory::createSpecification("tool", "", "", "First", false, m);
  Specification* second = Factory::createSpecification("tool", "", "", "Second", false, m);
  Factory::createSpecification("other", "", "", "Other", false, m);
  EXPECT_EQ(3u, m->getImpl()->getNumberOfSpecifications());
  EXPECT_EQ("Duplicate specification \"tool\"",
            message([](ConfigurationManager* m) { m->getSpecification("tool"); }, m));
  // Keys are exact: another case is another key.
  EXPECT_EQ(nullptr, m->getSpecification("TOOL"));
  EXPECT_TRUE(m->unregisterSpecification("tool"));
  EXPECT_EQ(nullptr, m->getSpecification("tool"));
  EXPECT_FALSE(m->unregisterSpecification("tool"));
  EXPECT_EQ(1u, m->getImpl()->getNumberOfSpecifications());
  // Unregistering hands the objects back.
  Factory::destroy(first, false, m);
  Factory::destroy(second, false, m);

  Factory::createParameter("p", "", "", Parameter::BOOL, nullptr, nullptr, nullptr, m);
  Factory::createGroup("p", "A group named like the parameter", m);
  EXPECT_EQ("Duplicate item \"p\"",
            message([](ConfigurationManager* m) { m->getGlobalItem("p"); }, m));
  Factory::createEnumDefinition("e", m);
  Factory::createEnumDefinition("e", m);
  EXPECT_EQ("Duplicate enumeration definition \"e\"",
            message([](ConfigurationManager* m) { m->getEnumDefinition("e"); }, m));
  m->registerValidator(new LoggedValidator("storageLocation"));
  EXPECT_EQ("Duplicate validator \"storageLocation\"",
            message([](ConfigurationManager* m) { m->getValidator("storageLocation"); }, m));
  m->registerValueProvider(new LoggedProvider("XML_FILE"));
  m->registerValueProvider(new LoggedProvider("XML_FILE"));
  EXPECT_EQ("Duplicate provider \"XML_FILE\"",
            message([](ConfigurationManager* m) { m->getValueProvider("XML_FILE"); }, m));
  EXPECT_EQ(2u, m->getImpl()->getNumberOfValueProviders());
  EXPECT_EQ(2u, m->getImpl()->getNumberOfGlobalItems());
  EXPECT_EQ(2u, m->getImpl()->getNumberOfEnumDefinitions());
  EXPECT_EQ(2u, m->getImpl()->getNumberOfValidators());
  EXPECT_FALSE(m->unregisterValueProvider("nosuch"));
  EXPECT_FALSE(m->unregisterValidator("nosuch"));
  EXPECT_FALSE(m->unregisterGlobalItem("nosuch"));
  EXPECT_FALSE(m->unregisterEnumDefinition("nosuch"));
  EXPECT_EQ(nullptr, m->getValueProvider("nosuch"));
  EXPECT_EQ(nullptr, m->getEnumDefinition("nosuch"));
}

TEST_F(ConfigurationManagerTest, ContractsOnRegistrationAndKeys) {
  ConfigurationManager* m = mManager.get();
  try {
    m->registerSpecification(nullptr);
    ADD_FAILURE() << "no contract violation";
  } catch (const zelk::ContractViolationException& e) {
    EXPECT_STREQ("Contract violation: \"specification != 0\"", e.what());
    EXPECT_STREQ("impl/ConfigurationManagerImpl", e.getFile());
  }
  EXPECT_EQ("Contract violation: \"provider != 0\"",
            message([](ConfigurationManager* m) { m->registerValueProvider(nullptr); }, m));
  EXPECT_EQ("Contract violation: \"validator != 0\"",
            message([](ConfigurationManager* m) { m->registerValidator(nullptr); }, m));
  EXPECT_EQ("Contract violation: \"item != 0\"",
            message([](ConfigurationManager* m) { m->registerGlobalItem(nullptr); }, m));
  EXPECT_EQ("Contract violation: \"enumDefinition != 0\"",
            message([](ConfigurationManager* m) { m->registerEnumDefinition(nullptr); }, m));
  try {
    m->getGlobalItem("");
    ADD_FAILURE() << "no contract violation";
  } catch (const zelk::ContractViolationException& e) {
    EXPECT_STREQ("Contract violation: \"objectKey != 0 && *objectKey != '\\0'\"", e.what());
    EXPECT_STREQ("impl/ObjectMap", e.getFile());
  }
  EXPECT_EQ("Contract violation: \"objectKey != 0 && *objectKey != '\\0'\"",
            message([](ConfigurationManager* m) { m->unregisterValidator(nullptr); }, m));
}

TEST_F(ConfigurationManagerTest, EnumeratorsWalkTheLiveRegistryInKeyOrder) {
  ConfigurationManager* m = mManager.get();
  std::unique_ptr<zelk::IEnumerator<Specification*>> empty(m->getSpecificationEnumerator());
  EXPECT_FALSE(empty->hasNext());
  EXPECT_EQ(nullptr, empty->getCurrent());
  empty->moveNext();
  EXPECT_FALSE(empty->hasNext());

  Factory::createSpecification("b", "", "", "B", false, m);
  Factory::createSpecification("a", "", "", "A", false, m);
  Factory::createSpecification("B", "", "", "Capital B", false, m);
  Factory::createSpecification("a", "", "", "A again", false, m);
  EXPECT_EQ((std::vector<std::string>{"B", "a", "a", "b"}), ids(m->getSpecificationEnumerator()));

  std::unique_ptr<zelk::IEnumerator<Specification*>> e(m->getSpecificationEnumerator());
  ASSERT_TRUE(e->hasNext());
  EXPECT_STREQ("B", e->getCurrent()->getId());
  e->moveNext();
  EXPECT_STREQ("A", e->getCurrent()->getDescription());
  e->moveNext();
  EXPECT_STREQ("A again", e->getCurrent()->getDescription());
  e->reset();
  EXPECT_STREQ("B", e->getCurrent()->getId());

  // The default validator of a new manager, then providers in byte order of their ids.
  EXPECT_EQ((std::vector<std::string>{"storageLocation"}), ids(m->getValidatorEnumerator()));
  m->registerValueProvider(new LoggedProvider("XML_FILE"));
  m->registerValueProvider(new LoggedProvider("CLI"));
  m->registerValueProvider(new LoggedProvider("APP_VALUES"));
  EXPECT_EQ((std::vector<std::string>{"APP_VALUES", "CLI", "XML_FILE"}),
            ids(m->getValueProviderEnumerator()));
  EXPECT_TRUE(ids(m->getGlobalItemEnumerator()).empty());
  EXPECT_TRUE(ids(m->getEnumDefinitionEnumerator()).empty());
}

TEST_F(ConfigurationManagerTest, TypeCheckedLookUps) {
  ConfigurationManager* m = mManager.get();
  Parameter* level =
      Factory::createParameter("level", "", "", Parameter::INT32, nullptr, nullptr, nullptr, m);
  Group* common = Factory::createGroup("common", "Common", m);
  EXPECT_EQ(level, m->getParameter("level"));
  EXPECT_EQ(common, m->getGroup("common"));
  EXPECT_EQ(nullptr, m->getGroup("nosuch"));
  EXPECT_EQ(nullptr, m->getParameter("nosuch"));
  EXPECT_EQ("\"level\" is not a group",
            message([](ConfigurationManager* m) { m->getGroup("level"); }, m));
  EXPECT_EQ("\"common\" is not a parameter",
            message([](ConfigurationManager* m) { m->getParameter("common"); }, m));
  EXPECT_EQ(GlobalItem::GROUP, common->getItemType());
  EXPECT_STREQ("Group", common->getItemTypeName());
  EXPECT_STREQ("common", common->getName());
  EXPECT_STREQ("common", common->getItemsContainer()->getId());
  EXPECT_STREQ("Common", common->getItemsContainer()->getDescription());
}

TEST_F(ConfigurationManagerTest, ClearCachesDestroysEverythingInItsOrder) {
  ConfigurationManager* m = mManager.get();
  m->registerValidator(new LoggedValidator("a-validator"));
  m->registerValueProvider(new LoggedProvider("b-provider"));
  m->registerValueProvider(new LoggedProvider("a-provider"));
  Factory::createSpecification("s", "", "", "S", false, m);
  Factory::createEnumDefinition("e", m);
  m->getImpl()->clearCaches();
  EXPECT_EQ((std::vector<std::string>{"provider a-provider", "provider b-provider",
                                      "validator a-validator"}),
            gDestroyed);
  EXPECT_EQ(0u, m->getImpl()->getNumberOfValidators());
  EXPECT_EQ(0u, m->getImpl()->getNumberOfValueProviders());
  EXPECT_EQ(0u, m->getImpl()->getNumberOfSpecifications());
  EXPECT_EQ(0u, m->getImpl()->getNumberOfEnumDefinitions());

  // Factory::destroy with unregister takes an object out first.
  LoggedValidator* v = new LoggedValidator("v");
  m->registerValidator(v);
  Factory::destroy(v, true, m);
  EXPECT_EQ(nullptr, m->getValidator("v"));
  EXPECT_EQ("validator v", gDestroyed.back());
  Factory::destroy(static_cast<Validator*>(nullptr), true, m);

  // The manager's destructor clears too.
  m->registerValidator(new LoggedValidator("last"));
  mManager.reset();
  EXPECT_EQ("validator last", gDestroyed.back());
}

TEST_F(ConfigurationManagerTest, ComposeSubstitutesTheCommandLineProviderName) {
  ConfigurationManager* m = mManager.get();
  // A null or empty provider name becomes "CLI", so only the specification id can break a
  // contract here.
  EXPECT_EQ("Contract violation: \"specificationId != 0 && *specificationId != '\\0'\"",
            message([](ConfigurationManager* m) { m->composeUsageMessage("", nullptr); }, m));
  EXPECT_EQ("Contract violation: \"specificationId != 0 && *specificationId != '\\0'\"",
            message([](ConfigurationManager* m) { m->composeHelpMessage(nullptr, 80, 20, ""); },
                    m));
  EXPECT_EQ(
      "Contract violation: \"providerName != 0 && *providerName != '\\0'\"",
      message([](ConfigurationManager* m) { m->getImpl()->composeUsageMessage("s", ""); }, m));
  EXPECT_STREQ("CLI", ConfigurationManager::COMMAND_LINE_PROVIDER_NAME);
  EXPECT_STREQ("XML_FILE", ConfigurationManager::XML_FILE_PROVIDER_NAME);
  EXPECT_STREQ("APP_VALUES", ConfigurationManager::APPLICATION_PROVIDER_NAME);
}

TEST_F(ConfigurationManagerTest, RegistrationFailuresDestroyTheNewObject) {
  ConfigurationManager* m = mManager.get();
  // An empty id passes the item's construction only for containers; a specification's id is the
  // registry key, whose contract fails on registration.
  EXPECT_EQ("Contract violation: \"objectKey != 0 && *objectKey != '\\0'\"",
            message([](ConfigurationManager* m) {
              Factory::createSpecification("", "", "", "No id", false, m);
            },
                    m));
  EXPECT_EQ(0u, m->getImpl()->getNumberOfSpecifications());
}

}  // namespace
