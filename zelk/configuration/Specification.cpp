#include "zelk/configuration/Specification.h"

#include "zelk/configuration/Container.h"
#include "zelk/configuration/impl/SpecificationImpl.h"
#include "zelk/util/Contracts.h"

namespace zelk::configuration {

Specification::Specification(const char* id, const char* name, const char* title,
                             const char* description)
    : mImpl(new impl::SpecificationImpl(this, id, name, title, description)) {
  ZELK_CONTRACT(mImpl);
}

Specification::~Specification() {}

const GroupItem* Specification::findItem(const char* id) const {
  return mImpl->getItemsContainer()->findItem(id);
}

const Container* Specification::findContainer(const char* id) const {
  return mImpl->getItemsContainer()->findContainer(id);
}

const ParameterRef* Specification::findParameterRef(const char* id) const {
  return mImpl->getItemsContainer()->findParameterRef(id);
}

const char* Specification::getId() const { return mImpl->getItemsContainer()->getId(); }

const char* Specification::getName() const { return mImpl->getItemsContainer()->getName(); }

const char* Specification::getTitle() const { return mImpl->getTitle(); }

const char* Specification::getDescription() const {
  return mImpl->getItemsContainer()->getDescription();
}

bool Specification::isOptional() const { return mImpl->getItemsContainer()->isOptional(); }

const Container* Specification::getItemsContainer() const { return mImpl->getItemsContainer(); }

Container* Specification::getItemsContainer() { return mImpl->getItemsContainer(); }

bool Specification::accept(GroupItemVisitor& visitor) const { return mImpl->accept(visitor); }

impl::SpecificationImpl* Specification::getImpl() const { return mImpl.get(); }

}  // namespace zelk::configuration
