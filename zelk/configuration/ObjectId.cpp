#include "zelk/configuration/ObjectId.h"

namespace zelk::configuration {

ObjectId::ObjectId() : mDatabase(0), mContainer(0), mPage(0), mSlot(0) {}

ObjectId::ObjectId(uint16_t database, uint16_t container, uint16_t page, uint16_t slot)
    : mDatabase(database), mContainer(container), mPage(page), mSlot(slot) {}

bool ObjectId::isNull() const {
  return mDatabase == 0 && mContainer == 0 && mPage == 0 && mSlot == 0;
}

bool ObjectId::operator==(const ObjectId& other) const {
  return mDatabase == other.mDatabase && mContainer == other.mContainer &&
         mPage == other.mPage && mSlot == other.mSlot;
}

bool ObjectId::operator!=(const ObjectId& other) const { return !(*this == other); }

}  // namespace zelk::configuration
