#include "zelk/configuration/Parameter.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/EnumDefinition.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/impl/Factory.h"
#include "zelk/configuration/impl/StorageLocationValidator.h"
#include "zelk/util/ContractViolationException.h"

using namespace zelk::configuration;
using zelk::configuration::impl::Factory;

namespace {

class ParameterTest : public ::testing::Test {
protected:
  ParameterTest() : mManager(Factory::createManager()) {}

  Parameter* create(const char* id, const char* name, Parameter::ValueType type,
                    const char* valueName = nullptr, const EnumDefinition* enumDef = nullptr) {
    return Factory::createParameter(id, name, "A parameter", type, valueName, nullptr, enumDef,
                                    mManager.get());
  }

  std::string contractMessage(Parameter::ValueType type, const char* id,
                              const EnumDefinition* enumDef = nullptr) {
    try {
      Factory::createParameter(id, "", "d", type, nullptr, nullptr, enumDef, mManager.get());
    } catch (const zelk::ContractViolationException& e) {
      return e.what();
    }
    return "no contract violation";
  }

  std::unique_ptr<ConfigurationManager> mManager;
};

TEST_F(ParameterTest, IdentityTypesAndValueNames) {
  Parameter* level = create("level", "", Parameter::INT32);
  EXPECT_EQ(level, mManager->getGlobalItem("level"));
  EXPECT_EQ(GlobalItem::PARAMETER, level->getItemType());
  EXPECT_STREQ("Parameter", level->getItemTypeName());
  EXPECT_STREQ("level", level->getName());
  // The name (here the id) stands in for a missing value name.
  EXPECT_STREQ("level", level->getValueName());
  EXPECT_STREQ("int32", level->getValueTypeName());

  Parameter* size = create("size", "Size", Parameter::UINT64, "");
  EXPECT_STREQ("Size", size->getValueName());
  Parameter* path = create("path", "Path", Parameter::STRING, "FILE");
  EXPECT_STREQ("FILE", path->getValueName());
  // A flag takes no value text.
  Parameter* verbose = create("verbose", "Verbose", Parameter::BOOL);
  EXPECT_STREQ("", verbose->getValueName());
  EXPECT_EQ(Parameter::BOOL, verbose->getValueType());

  const char* names[] = {"bool", "string", "int32", "uint32", "double", "OID", "enumeration",
                         "int64", "uint64"};
  for (int type = Parameter::BOOL; type <= Parameter::UINT64; ++type) {
    EXPECT_STREQ(names[type], Parameter::getValueTypeName(static_cast<Parameter::ValueType>(type)));
  }
  EXPECT_STREQ("unknown", Parameter::getValueTypeName(static_cast<Parameter::ValueType>(9)));
  EXPECT_STREQ("unknown", Parameter::getValueTypeName(static_cast<Parameter::ValueType>(-1)));

  auto* validator = new impl::StorageLocationValidator();
  mManager->registerValidator(validator);
  EnumDefinition* modes = Factory::createEnumDefinition("modes", mManager.get());
  Parameter* mode = Factory::createParameter("mode", "", "", Parameter::ENUM, nullptr, validator,
                                             modes, mManager.get());
  EXPECT_EQ(validator, mode->getValidator());
  EXPECT_EQ(modes, mode->getEnumDefinition());
  EXPECT_EQ(nullptr, level->getEnumDefinition());
  EXPECT_EQ(nullptr, level->getValidator());
}

TEST_F(ParameterTest, ConstructionContracts) {
  EXPECT_EQ("Invalid value type", contractMessage(static_cast<Parameter::ValueType>(9), "p"));
  EXPECT_EQ("Invalid value type", contractMessage(static_cast<Parameter::ValueType>(-1), "p"));
  EXPECT_EQ("An EnumDefinition must be provided for enum parameters",
            contractMessage(Parameter::ENUM, "p"));
  EXPECT_EQ("Contract violation: \"id != 0 && *id != '\\0'\"",
            contractMessage(Parameter::STRING, ""));
  std::unique_ptr<zelk::IEnumerator<GlobalItem*>> items(mManager->getGlobalItemEnumerator());
  EXPECT_FALSE(items->hasNext());
}

TEST_F(ParameterTest, DefaultValues) {
  Parameter* level = create("level", "", Parameter::UINT32);
  EXPECT_TRUE(level->getDefaultValue().isNull());
  Factory::setDefaultValueFor(level, "3");
  Value defaultValue = level->getDefaultValue();
  ASSERT_FALSE(defaultValue.isNull());
  EXPECT_TRUE(defaultValue.isDefaultValue());
  EXPECT_EQ(3u, defaultValue.asUInt32());

  // A reference without a default of its own shows the parameter's.
  ParameterRef* plain = Factory::createParameterRef(level, 0, "");
  ParameterRef* own = Factory::createParameterRef(level, 0, "");
  EXPECT_EQ(3u, plain->getDefaultValue().asUInt32());
  Factory::setDefaultValueFor(own, "7");
  EXPECT_EQ(7u, own->getDefaultValue().asUInt32());
  EXPECT_EQ(3u, level->getDefaultValue().asUInt32());
  // A clone keeps the reference's own default.
  std::unique_ptr<GroupItem> clone(Factory::clone(own, true));
  EXPECT_EQ(7u, static_cast<ParameterRef*>(clone.get())->getDefaultValue().asUInt32());

  // Replacing the parameter's default.
  Factory::setDefaultValueFor(level, "4");
  EXPECT_EQ(4u, level->getDefaultValue().asUInt32());
  EXPECT_EQ(4u, plain->getDefaultValue().asUInt32());
  level->setDefaultValue(Value::Null);
  EXPECT_TRUE(level->getDefaultValue().isNull());
  EXPECT_TRUE(plain->getDefaultValue().isNull());

  // A text that does not fit the type is refused and the old default stays.
  Factory::setDefaultValueFor(level, "5");
  EXPECT_ANY_THROW(Factory::setDefaultValueFor(level, "-x"));
  EXPECT_EQ(5u, level->getDefaultValue().asUInt32());
  EXPECT_ANY_THROW(Factory::setDefaultValueFor(own, "4294967296"));
  EXPECT_EQ(7u, own->getDefaultValue().asUInt32());

  try {
    Factory::setDefaultValueFor(static_cast<Parameter*>(nullptr), "1");
    ADD_FAILURE() << "no contract violation";
  } catch (const zelk::ContractViolationException& e) {
    EXPECT_STREQ("Contract violation: \"parameter != 0\"", e.what());
  }
  try {
    Factory::setDefaultValueFor(static_cast<ParameterRef*>(nullptr), "1");
    ADD_FAILURE() << "no contract violation";
  } catch (const zelk::ContractViolationException& e) {
    EXPECT_STREQ("Contract violation: \"paramRef != 0\"", e.what());
  }
  Factory::destroy(plain);
  Factory::destroy(own);
}

TEST_F(ParameterTest, EnumerationDefaultsAreCheckedAgainstTheSymbols) {
  EnumDefinition* modes = Factory::createEnumDefinition("modes", mManager.get());
  Factory::addEnumValue(modes, "fast");
  Factory::addEnumValue(modes, "safe");
  Parameter* mode = create("mode", "", Parameter::ENUM, nullptr, modes);
  EXPECT_STREQ("mode", mode->getValueName());
  Factory::setDefaultValueFor(mode, "safe");
  EXPECT_EQ(1, mode->getDefaultValue().asEnum());
  EXPECT_ANY_THROW(Factory::setDefaultValueFor(mode, "slow"));
}

}  // namespace
