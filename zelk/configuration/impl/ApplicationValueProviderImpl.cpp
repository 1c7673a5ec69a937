#include "zelk/configuration/impl/ApplicationValueProviderImpl.h"

#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/Container.h"
#include "zelk/configuration/ListenerArguments.h"
#include "zelk/configuration/impl/ListenerManager.h"

namespace zelk::configuration::impl {

// The description is accepted for symmetry with the other providers; nothing reads it.
ApplicationValueProviderImpl::ApplicationValueProviderImpl(int priority, const std::string&)
    : ValueProviderImpl(ConfigurationManager::APPLICATION_PROVIDER_NAME, priority,
                        ConfigurationManager::APPLICATION_PROVIDER_NAME),
      mValues(ConfigurationManager::APPLICATION_PROVIDER_NAME) {}

ApplicationValueProviderImpl::~ApplicationValueProviderImpl() {}

void ApplicationValueProviderImpl::setArguments(const ValueGroup& values, int) {
  if (!mValues.isNull() && mValues.isMatched()) {
    ListenerManager::getInstance()->broadcastValueGroupRemoved(
        mValues.getContainer(), ValueGroupRemovedArguments(&mValues));
  }
  mValues = values;
  if (!mValues.isNull() && mValues.isMatched()) {
    ListenerManager::getInstance()->broadcastValueGroupAdded(mValues.getContainer(),
                                                             ValueGroupAddedArguments(&mValues));
  }
}

ValueGroup ApplicationValueProviderImpl::getSpecificationValues(const Specification& spec,
                                                                int) const {
  // A null group installed by the application contributes nothing, like an empty one.
  return mValues.isNull() ? ValueGroup(&spec) : mValues;
}

void ApplicationValueProviderImpl::reset() {
  // The application's group is let go, not reset: it is the application's own, and merged trees
  // handed out earlier share its values. Its removal is not announced.
  mValues = ValueGroup::Null;
  ValueProviderImpl::reset();
}

}  // namespace zelk::configuration::impl
