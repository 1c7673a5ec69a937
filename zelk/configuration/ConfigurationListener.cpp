#include "zelk/configuration/ConfigurationListener.h"

#include "zelk/configuration/Container.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/impl/ConfigurationListenerImpl.h"
#include "zelk/configuration/impl/ListenerManager.h"
#include "zelk/util/Contracts.h"

namespace zelk::configuration {

ConfigurationListener::ConfigurationListener() : mImpl(new impl::ConfigurationListenerImpl()) {}

ConfigurationListener::~ConfigurationListener() {
  mImpl->stopListeningToAll(this);
  // A notification that started before may still be running on another thread; the memory of
  // this object must outlive it.
  impl::ListenerManager::getInstance()->waitForDelivery();
}

void ConfigurationListener::onValueAdded(const ParameterRef*, const ValueAddedArguments&) {}

void ConfigurationListener::onValueChanged(const ParameterRef*, const ValueChangedArguments&) {}

void ConfigurationListener::onValueRemoved(const ParameterRef*, const ValueRemovedArguments&) {}

void ConfigurationListener::onValueGroupAdded(const Container*, const ValueGroupAddedArguments&) {}

void ConfigurationListener::onValueGroupRemoved(const Container*,
                                                const ValueGroupRemovedArguments&) {}

bool ConfigurationListener::startListeningTo(const Specification* specification) {
  ZELK_CONTRACT(specification != 0);
  return mImpl->startListeningTo(specification->getItemsContainer(), this);
}

bool ConfigurationListener::startListeningTo(const Container* container) {
  ZELK_CONTRACT(container != 0);
  return mImpl->startListeningTo(container, this);
}

bool ConfigurationListener::startListeningTo(const ParameterRef* parameterRef) {
  ZELK_CONTRACT(parameterRef != 0);
  return mImpl->startListeningTo(parameterRef, this);
}

bool ConfigurationListener::stopListeningTo(const Specification* specification) {
  ZELK_CONTRACT(specification != 0);
  return mImpl->stopListeningTo(specification->getItemsContainer(), this);
}

bool ConfigurationListener::stopListeningTo(const Container* container) {
  ZELK_CONTRACT(container != 0);
  return mImpl->stopListeningTo(container, this);
}

bool ConfigurationListener::stopListeningTo(const ParameterRef* parameterRef) {
  ZELK_CONTRACT(parameterRef != 0);
  return mImpl->stopListeningTo(parameterRef, this);
}

void ConfigurationListener::stopListeningAndWait() {
  mImpl->stopListeningToAll(this);
  mImpl->forgetItems();
  impl::ListenerManager::getInstance()->waitForDelivery();
}

}  // namespace zelk::configuration
