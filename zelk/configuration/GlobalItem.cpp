#include "zelk/configuration/GlobalItem.h"

#include "zelk/configuration/impl/GlobalItemImpl.h"
#include "zelk/util/Contracts.h"

namespace zelk::configuration {

GlobalItem::GlobalItem(impl::GlobalItemImpl* impl) : mImpl(impl) { ZELK_CONTRACT(mImpl); }

GlobalItem::~GlobalItem() {}

const char* GlobalItem::getId() const { return mImpl->getId(); }

const char* GlobalItem::getName() const { return mImpl->getName(); }

const char* GlobalItem::getDescription() const { return mImpl->getDescription(); }

GlobalItem::ItemType GlobalItem::getItemType() const { return mImpl->getItemType(); }

const char* GlobalItem::getItemTypeName() const { return mImpl->getItemTypeName(); }

impl::GlobalItemImpl* GlobalItem::getImpl() const { return mImpl.get(); }

}  // namespace zelk::configuration
