#include "zelk/configuration/impl/SpecificationImpl.h"

#include "zelk/configuration/Container.h"
#include "zelk/configuration/GroupItemVisitor.h"
#include "zelk/configuration/impl/Factory.h"
#include "zelk/util/Contracts.h"

namespace zelk::configuration::impl {

SpecificationImpl::SpecificationImpl(Specification* self, const char* id, const char* name,
                                     const char* title, const char* description)
    : mSelf(self),
      mItemsContainer(new Container(id, name, description, 0)),
      mTitle(title != 0 ? title : "") {
  ZELK_CONTRACT(mSelf != 0);
}

SpecificationImpl::~SpecificationImpl() { Factory::destroy(mItemsContainer); }

Specification* SpecificationImpl::getSelf() const {
  ZELK_CONTRACT(mSelf != 0);
  return mSelf;
}

const char* SpecificationImpl::getTitle() const {
  return mTitle.empty() ? mItemsContainer->getName() : mTitle.c_str();
}

bool SpecificationImpl::accept(GroupItemVisitor& visitor) const {
  const Specification& self = *getSelf();
  if (!visitor.visitSpecificationStart(self)) {
    return false;
  }
  const bool result = mItemsContainer->accept(visitor);
  // The end is called even when the walk of the items stopped.
  if (!visitor.visitSpecificationEnd(self)) {
    return false;
  }
  return result;
}

}  // namespace zelk::configuration::impl
