// ObjectId: the host database's identifier of a stored object.
//
// Four unsigned 16-bit fields, in this order: database, container, page and slot. Its text form
// is the four numbers in decimal joined by "-", such as "3-2-5-1"; impl::Convert reads and writes
// it (an optional leading "#" and missing trailing fields are accepted when reading).
//
//   ObjectId oid = impl::Convert::asOID("#3-2", &errors);   // 3-2-0-0
//   oid.getDatabase();                                       // 3
#pragma once

#include <cstdint>

namespace zelk::configuration {

class ObjectId {
public:
  // The zero id 0-0-0-0.
  ObjectId();
  ObjectId(uint16_t database, uint16_t container, uint16_t page, uint16_t slot);

  uint16_t getDatabase() const { return mDatabase; }
  uint16_t getContainer() const { return mContainer; }
  uint16_t getPage() const { return mPage; }
  uint16_t getSlot() const { return mSlot; }
  void setDatabase(uint16_t database) { mDatabase = database; }
  void setContainer(uint16_t container) { mContainer = container; }
  void setPage(uint16_t page) { mPage = page; }
  void setSlot(uint16_t slot) { mSlot = slot; }

  // True for 0-0-0-0.
  bool isNull() const;
  bool operator==(const ObjectId& other) const;
  bool operator!=(const ObjectId& other) const;

private:
  uint16_t mDatabase;
  uint16_t mContainer;
  uint16_t mPage;
  uint16_t mSlot;
};

}  // namespace zelk::configuration
