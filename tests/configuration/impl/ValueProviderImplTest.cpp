#include "zelk/configuration/impl/ValueProviderImpl.h"

#include <string>

#include <gtest/gtest.h>

#include "configuration/Models.h"
#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/ValueGroup.h"

using namespace zelk::configuration;
using zelk::configuration::impl::ValueProviderImpl;

namespace {

class TestProviderImpl : public ValueProviderImpl {
public:
  TestProviderImpl(const std::string& name, int priority, const std::string& id)
      : ValueProviderImpl(name, priority, id) {}
  ValueGroup getSpecificationValues(const Specification&, int) const override {
    return ValueGroup::Null;
  }
  void remember(const char* help, const char* usage) {
    mHelpText = help;
    mUsageText = usage;
  }
  const std::string& helpText() const { return mHelpText; }
  const std::string& usageText() const { return mUsageText; }
};

// Accepts only the file-path form of arguments.
class FileProviderImpl : public TestProviderImpl {
public:
  FileProviderImpl() : TestProviderImpl("XML_FILE", 2, "XML_FILE") {}
  void setArguments(const char* argument, int) override {
    if (argument == nullptr) {
      throw ConfigurationException("%s", "no file");
    }
    mArgument = argument;
  }
  std::string mArgument;
};

class TestProvider : public ValueProvider {
public:
  explicit TestProvider(ValueProviderImpl* impl) : ValueProvider(impl) {}
  const char* getName() const override { return getImpl()->getName(); }
};

std::string failure(void (*call)(TestProvider&)) {
  TestProvider provider(new TestProviderImpl("APP_VALUES", 0, "APP_VALUES"));
  try {
    call(provider);
  } catch (const ConfigurationException& e) {
    EXPECT_FALSE(provider.getEnabled());
    return e.what();
  }
  return "no exception";
}

TEST(ValueProviderImplTest, GeneratedIdsShareOneCounter) {
  TestProviderImpl first("CLI", 1, "");
  TestProviderImpl named("CLI", 1, "mine");
  TestProviderImpl second("CLI", 1, "");
  TestProviderImpl third("XML_FILE", 1, "");
  const int n = std::stoi(std::string(first.getId()).substr(4));
  EXPECT_STREQ(("CLI-" + std::to_string(n)).c_str(), first.getId());
  EXPECT_STREQ("mine", named.getId());
  EXPECT_STREQ(("CLI-" + std::to_string(n + 1)).c_str(), second.getId());
  EXPECT_STREQ(("XML_FILE-" + std::to_string(n + 2)).c_str(), third.getId());

  // A reset forgets the state and the composed texts, not the priority.
  TestProviderImpl impl("APP_VALUES", -4, "APP_VALUES");
  impl.setEnabled(true);
  impl.remember("help", "usage");
  impl.reset();
  EXPECT_FALSE(impl.getEnabled());
  EXPECT_EQ("", impl.helpText());
  EXPECT_EQ("", impl.usageText());
  EXPECT_EQ(-4, impl.getPriority());
}

TEST(ValueProviderImplTest, UnsupportedArgumentFormsAreRefusedAndLeaveTheProviderDisabled) {
  EXPECT_EQ("setArguments(int, const char const*, const char*, int) is not supported",
            failure([](TestProvider& p) { p.enableProvider(0, nullptr, "spec", 0); }));
  EXPECT_EQ("setArguments(const char*, int) is not supported",
            failure([](TestProvider& p) { p.enableProvider("file", 0); }));
}

TEST(ValueProviderImplTest, EnableProviderGoesThroughTheOverride) {
  FileProviderImpl* impl = new FileProviderImpl();
  TestProvider provider(impl);
  EXPECT_THROW(provider.enableProvider(static_cast<const char*>(nullptr), 0),
               ConfigurationException);
  EXPECT_FALSE(provider.getEnabled());
  provider.enableProvider("values.xml", 0);
  EXPECT_TRUE(provider.getEnabled());
  EXPECT_EQ("values.xml", impl->mArgument);
}

TEST(ValueProviderImplTest, ContractsOnNamesWidthsAndImplementations) {
  EXPECT_THROW(TestProviderImpl("", 1, "id"), zelk::ContractViolationException);
  EXPECT_THROW(TestProvider(nullptr), zelk::ContractViolationException);
  TestProvider provider(new TestProviderImpl("CLI", 1, "help"));
  zelk::test::SpecificationBuilder builder;
  const Specification* spec = builder.specification("s");
  EXPECT_THROW(provider.composeHelpMessage(*spec, 0, 0), zelk::ContractViolationException);
  EXPECT_THROW(provider.composeHelpMessage(*spec, 80, 80), zelk::ContractViolationException);
  EXPECT_EQ("setArguments(const ValueGroup&, int) is not supported",
            failure([](TestProvider& p) { p.enableProvider(ValueGroup::Null, 0); }));
}

}  // namespace
