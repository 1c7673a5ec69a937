#include "zelk/configuration/impl/ValueProviderImpl.h"

#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/impl/HelpGenerator.h"
#include "zelk/configuration/impl/SpecificationMatcher.h"
#include "zelk/configuration/impl/UsageGenerator.h"
#include "zelk/configuration/impl/ValueGroupValidator.h"
#include "zelk/util/Contracts.h"

namespace zelk::configuration::impl {

int ValueProviderImpl::smGeneratedIds = 0;

ValueProviderImpl::ValueProviderImpl(const std::string& name, int priority, const std::string& id)
    : mId(id), mName(name), mPriority(priority), mEnabled(false), mManager(0) {
  ZELK_CONTRACT_MESSAGE(!name.empty(), "Must provide a name");
  if (mId.empty()) {
    mId = mName + "-" + std::to_string(++smGeneratedIds);
  }
}

ValueProviderImpl::~ValueProviderImpl() {}

ValueGroup ValueProviderImpl::getValues(const Specification& spec, int options) const {
  ValueGroup group = getSpecificationValues(spec, options);
  ValidationErrors errors;
  SpecificationMatcher::match(group, spec, errors);
  // Matching errors are reported on their own, before any validation.
  errors.throwIfErrors();
  ValueGroupValidator::validate(spec, group, errors, options);
  if (errors.getNumberOfErrors() > 0) {
    // Found again with the places of the items, when the provider knows them.
    const ItemPlacer place = makePlacer(spec, group);
    if (place) {
      errors.clear();
      ValueGroupValidator::validate(spec, group, errors, options, &place);
    }
  }
  errors.throwIfErrors();
  return group;
}

ItemPlacer ValueProviderImpl::makePlacer(const Specification&, const ValueGroup&) const {
  return ItemPlacer();
}

const char* ValueProviderImpl::composeHelpMessage(const Specification& spec, size_t screenWidth,
                                                  size_t maxParameterNameWidth) const {
  ZELK_CONTRACT(screenWidth > 0);
  ZELK_CONTRACT(maxParameterNameWidth < screenWidth);
  HelpGenerator generator(screenWidth, maxParameterNameWidth);
  spec.accept(generator);
  mHelpText = generator.getHelp();
  return mHelpText.c_str();
}

const char* ValueProviderImpl::composeUsageMessage(const Specification& spec) const {
  UsageGenerator generator;
  spec.accept(generator);
  mUsageText = generator.getUsage();
  return mUsageText.c_str();
}

void ValueProviderImpl::reset() {
  mEnabled = false;
  mHelpText.clear();
  mUsageText.clear();
}

void ValueProviderImpl::setArguments(const ValueGroup&, int) {
  throw ConfigurationException("%s", "setArguments(const ValueGroup&, int) is not supported");
}

void ValueProviderImpl::setArguments(const char*, int) {
  throw ConfigurationException("%s", "setArguments(const char*, int) is not supported");
}

void ValueProviderImpl::setArguments(int, const char* const*, const char*, int) {
  // The doubled "const" is part of the message.
  throw ConfigurationException("%s",
                               "setArguments(int, const char const*, const char*, int) is not "
                               "supported");
}

}  // namespace zelk::configuration::impl
