#include "zelk/configuration/impl/GlobalItemImpl.h"

#include "zelk/util/Contracts.h"

namespace zelk::configuration::impl {

GlobalItemImpl::GlobalItemImpl(GlobalItem* self, const char* id, const char* name,
                               const char* description)
    : mSelf(self) {
  ZELK_CONTRACT(mSelf != 0);
  ZELK_CONTRACT(id != 0 && *id != '\0');
  mId = id;
  mName = name != 0 ? name : "";
  mDescription = description != 0 ? description : "";
}

GlobalItemImpl::~GlobalItemImpl() {}

GlobalItem* GlobalItemImpl::getSelf() const {
  ZELK_CONTRACT(mSelf != 0);
  return mSelf;
}

const char* GlobalItemImpl::getName() const {
  return mName.empty() ? mId.c_str() : mName.c_str();
}

}  // namespace zelk::configuration::impl
