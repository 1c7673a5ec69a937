#include "zelk/configuration/impl/RegistryGeneration.h"

#include "zelk/configuration/Container.h"
#include "zelk/configuration/GroupItemCollection.h"
#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/impl/ContainerImpl.h"
#include "zelk/configuration/impl/Factory.h"
#include "zelk/configuration/impl/GlobalItemImpl.h"

namespace zelk::configuration::impl {

namespace {

template <typename T>
void append(std::vector<T*>& to, const std::vector<T*>& from) {
  to.insert(to.end(), from.begin(), from.end());
}

template <typename T>
void destroyAll(const std::vector<T*>& objects) {
  for (T* object : objects) {
    Factory::destroy(object, false, 0);
  }
}

}  // namespace

RegistryGeneration::RegistryGeneration() {}

RegistryGeneration::~RegistryGeneration() {
  // Specifications first: their parameter references point to the global items, which point to
  // the validators and enumeration definitions.
  destroyAll(mSpecifications);
  destroyAll(mGlobalItems);
  destroyAll(mValidators);
  destroyAll(mEnumDefinitions);
}

void RegistryGeneration::retire(const std::vector<Specification*>& specifications,
                                const std::vector<GlobalItem*>& globalItems,
                                const std::vector<Validator*>& validators,
                                const std::vector<EnumDefinition*>& enumDefinitions) {
  append(mSpecifications, specifications);
  append(mGlobalItems, globalItems);
  append(mValidators, validators);
  append(mEnumDefinitions, enumDefinitions);
}

void RegistryGeneration::stamp(const Specification& specification,
                               RegistryGeneration* generation) {
  specification.getItemsContainer()->getContainerImpl()->setGeneration(generation);
}

void RegistryGeneration::stamp(const GlobalItem& item, RegistryGeneration* generation) {
  item.getImpl()->setGeneration(generation);
}

RegistryGeneration* RegistryGeneration::of(const Specification& specification) {
  return specification.getItemsContainer()->getContainerImpl()->getGeneration();
}

RegistryGeneration* RegistryGeneration::of(const GlobalItem& item) {
  return item.getImpl()->getGeneration();
}

RegistryGeneration* RegistryGeneration::of(const GroupItem* item) {
  if (item == 0) {
    return 0;
  }
  // Items in a logical group or one-of reach the container through the constraint.
  while (const GroupItemCollection* up = item->getCollection()) {
    item = up;
  }
  if (item->getItemType() != GroupItem::CONTAINER) {
    return 0;
  }
  return static_cast<const Container*>(item)->getContainerImpl()->getGeneration();
}

RegistryGeneration* RegistryGeneration::of(const Parameter* parameter) {
  return parameter != 0 ? of(static_cast<const GlobalItem&>(*parameter)) : 0;
}

}  // namespace zelk::configuration::impl
