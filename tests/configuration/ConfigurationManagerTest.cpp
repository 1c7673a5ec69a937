#include "zelk/configuration/ConfigurationManager.h"

#include <functional>
#include <memory>

#include <gtest/gtest.h>

#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/Group.h"
#include "zelk/configuration/Validator.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/ValueProvider.h"
#include "zelk/configuration/impl/ConfigurationManagerImpl.h"
#include "zelk/configuration/impl/ValueProviderImpl.h"
#include "configuration/Models.h"

using namespace zelk::configuration;
using zelk::test::messageOf;
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
  static std::string key(Validator* v) { return v->getName(); }
  static std::string key(EnumDefinition* e) { return e->getName(); }
  static std::string key(ValueProvider* p) { return p->getId(); }

  std::unique_ptr<ConfigurationManager> mManager;
};

TEST_F(ConfigurationManagerTest, DuplicatesAreAcceptedAndReportedOnLookUp) {
  ConfigurationManager* m = mManager.get();
  Specification* first = Factory::createSpecification("tool", "", "", "First", false, m);
  Specification* second = Factory::createSpecification("tool", "", "", "Second", false, m);
  Factory::createSpecification("other", "", "", "Other", false, m);
  EXPECT_EQ(3u, ids(m->getSpecificationEnumerator()).size());
  EXPECT_EQ("Duplicate specification \"tool\"",
            messageOf([&] { m->getSpecification("tool"); }));
  // Keys are exact: another case is another key.
  EXPECT_EQ(nullptr, m->getSpecification("TOOL"));
  EXPECT_TRUE(m->unregisterSpecification("tool"));
  EXPECT_FALSE(m->unregisterSpecification("tool"));
  Factory::destroy(first, false, m);
  Factory::destroy(second, false, m);

  Factory::createParameter("p", "", "", Parameter::BOOL, nullptr, nullptr, nullptr, m);
  Factory::createGroup("p", "A group named like the parameter", m);
  EXPECT_EQ("Duplicate item \"p\"",
            messageOf([&] { m->getGlobalItem("p"); }));
  m->registerValueProvider(new LoggedProvider("XML_FILE"));
  m->registerValueProvider(new LoggedProvider("XML_FILE"));
  EXPECT_EQ("Duplicate provider \"XML_FILE\"",
            messageOf([&] { m->getValueProvider("XML_FILE"); }));
  EXPECT_EQ(2u, ids(m->getValueProviderEnumerator()).size());
  EXPECT_FALSE(m->unregisterGlobalItem("nosuch"));
}

TEST_F(ConfigurationManagerTest, EnumeratorsWalkTheLiveRegistryInKeyOrder) {
  ConfigurationManager* m = mManager.get();
  EXPECT_TRUE(ids(m->getSpecificationEnumerator()).empty());
  Factory::createSpecification("b", "", "", "B", false, m);
  Factory::createSpecification("a", "", "", "A", false, m);
  Factory::createSpecification("B", "", "", "Capital B", false, m);
  Factory::createSpecification("a", "", "", "A again", false, m);
  EXPECT_EQ((std::vector<std::string>{"B", "a", "a", "b"}), ids(m->getSpecificationEnumerator()));

  std::unique_ptr<zelk::IEnumerator<Specification*>> e(m->getSpecificationEnumerator());
  e->moveNext();
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
}

TEST_F(ConfigurationManagerTest, TypeCheckedLookUps) {
  ConfigurationManager* m = mManager.get();
  Parameter* level =
      Factory::createParameter("level", "", "", Parameter::INT32, nullptr, nullptr, nullptr, m);
  Factory::createGroup("common", "Common", m);
  EXPECT_EQ(level, m->getParameter("level"));
  EXPECT_EQ(nullptr, m->getGroup("nosuch"));
  EXPECT_EQ("\"level\" is not a group",
            messageOf([&] { m->getGroup("level"); }));
  EXPECT_EQ("\"common\" is not a parameter",
            messageOf([&] { m->getParameter("common"); }));
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
  EXPECT_TRUE(ids(m->getSpecificationEnumerator()).empty());

  // What is taken back is the caller's: values bound to it later hold nothing of the registry
  // that was cleared meanwhile.
  Specification* kept = Factory::createSpecification("kept", "", "", "K", false, m);
  m->unregisterSpecification("kept");
  m->getImpl()->clearCaches();
  ValueGroup(kept).addValue("x", "1");
  Factory::destroy(kept, false, m);

  // Factory::destroy with unregister takes an object out first.
  LoggedValidator* v = new LoggedValidator("v");
  m->registerValidator(v);
  Factory::destroy(v, true, m);
  EXPECT_EQ(nullptr, m->getValidator("v"));
  EXPECT_EQ("validator v", gDestroyed.back());

  // The manager's destructor clears too.
  m->registerValidator(new LoggedValidator("last"));
  mManager.reset();
  EXPECT_EQ("validator last", gDestroyed.back());
}

TEST_F(ConfigurationManagerTest, ContractsAndDefaultProviderNames) {
  ConfigurationManager* m = mManager.get();
  const std::function<void()> contracts[] = {
      [&] { m->registerSpecification(nullptr); },
      [&] { m->registerValueProvider(nullptr); },
      [&] { m->registerValidator(nullptr); },
      [&] { m->registerGlobalItem(nullptr); },
      [&] { m->registerEnumDefinition(nullptr); },
      [&] { m->getGlobalItem(""); },
      [&] { m->unregisterValidator(nullptr); },
      [&] { m->composeUsageMessage("", nullptr); },
      [&] { m->composeHelpMessage(nullptr, 80, 20, ""); },
      [&] { m->getImpl()->composeUsageMessage("s", ""); },
  };
  for (const auto& call : contracts) {
    EXPECT_THROW(call(), zelk::ContractViolationException);
  }
  // Unregistering hands the objects back.
  LoggedProvider* provider = new LoggedProvider("XML_FILE");
  m->registerValueProvider(provider);
  EXPECT_TRUE(m->unregisterValueProvider("XML_FILE"));
  Factory::destroy(provider, false, m);
  EnumDefinition* e = Factory::createEnumDefinition("e", m);
  EXPECT_EQ((std::vector<std::string>{"e"}), ids(m->getEnumDefinitionEnumerator()));
  EXPECT_TRUE(m->unregisterEnumDefinition("e"));
  Factory::destroy(e, false, m);
  EXPECT_EQ(1u, ids(m->getValidatorEnumerator()).size());
  EXPECT_TRUE(ids(m->getEnumDefinitionEnumerator()).empty());
  EXPECT_STREQ("", m->composeUsageMessage("nosuch", ""));
}

}  // namespace
