#include "zelk/configuration/EnumDefinition.h"

#include "zelk/configuration/impl/EnumDefinitionImpl.h"
#include "zelk/util/Contracts.h"

namespace zelk::configuration {

EnumDefinition::EnumDefinition(const char* name) : mImpl(new impl::EnumDefinitionImpl(name)) {
  ZELK_CONTRACT(mImpl);
}

EnumDefinition::~EnumDefinition() {}

const char* EnumDefinition::getName() const { return mImpl->getName(); }

int32_t EnumDefinition::addEnumValue(const char* symbol, int32_t value) {
  return mImpl->addEnumValue(symbol, value);
}

int32_t EnumDefinition::addEnumValue(const char* symbol) { return mImpl->addEnumValue(symbol); }

int32_t EnumDefinition::getValue(const char* symbol, ValidationErrors* errors) const {
  return mImpl->getValue(symbol, errors);
}

const char* EnumDefinition::getSymbolicName(int32_t value, ValidationErrors* errors) const {
  return mImpl->getSymbolicName(value, errors);
}

const char* EnumDefinition::getSymbolicNameByIndex(size_t index) const {
  return mImpl->getSymbolicNameByIndex(index);
}

const char* EnumDefinition::getSymbolicNameInDefinitionOrder(size_t index) const {
  return mImpl->getSymbolicNameInDefinitionOrder(index);
}

size_t EnumDefinition::getNumberOfValues() const { return mImpl->getNumberOfValues(); }

impl::EnumDefinitionImpl* EnumDefinition::getImpl() const { return mImpl.get(); }

}  // namespace zelk::configuration
