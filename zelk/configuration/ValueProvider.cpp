#include "zelk/configuration/ValueProvider.h"

#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/impl/ValueProviderImpl.h"
#include "zelk/util/Contracts.h"

namespace zelk::configuration {

ValueProvider::ValueProvider(impl::ValueProviderImpl* impl) : mImpl(impl) {
  ZELK_CONTRACT(mImpl != 0);
}

ValueProvider::~ValueProvider() {}

const char* ValueProvider::getId() const { return mImpl->getId(); }

ValueGroup ValueProvider::getValues(const Specification& spec, int options) {
  return mImpl->getValues(spec, options);
}

const char* ValueProvider::composeHelpMessage(const Specification& spec, size_t screenWidth,
                                              size_t maxParameterNameWidth) const {
  return mImpl->composeHelpMessage(spec, screenWidth, maxParameterNameWidth);
}

const char* ValueProvider::composeUsageMessage(const Specification& spec) const {
  return mImpl->composeUsageMessage(spec);
}

void ValueProvider::reset() { mImpl->reset(); }

void ValueProvider::setArguments(const ValueGroup& values, int options) {
  mImpl->setArguments(values, options);
}

void ValueProvider::setArguments(const char* argument, int options) {
  mImpl->setArguments(argument, options);
}

void ValueProvider::setArguments(int argc, const char* const* argv, const char* specificationId,
                                 int options) {
  mImpl->setArguments(argc, argv, specificationId, options);
}

impl::ValueProviderImpl* ValueProvider::getImpl() const { return mImpl.get(); }

bool ValueProvider::getEnabled() const { return mImpl->getEnabled(); }

int ValueProvider::getPriority() const { return mImpl->getPriority(); }

void ValueProvider::enableProvider(int argc, const char* const* argv, const char* specificationId,
                                   int options) {
  setArguments(argc, argv, specificationId, options);
  mImpl->setEnabled(true);
}

void ValueProvider::enableProvider(const char* argument, int options) {
  setArguments(argument, options);
  mImpl->setEnabled(true);
}

void ValueProvider::enableProvider(const ValueGroup& values, int options) {
  setArguments(values, options);
  mImpl->setEnabled(true);
}

}  // namespace zelk::configuration
