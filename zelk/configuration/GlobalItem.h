// GlobalItem: an item that the ConfigurationManager registers by id: a Parameter or a Group.
//
//   GlobalItem* item = ConfigurationManager::getInstance()->getGlobalItem("level");
//   if (item != 0 && item->getItemType() == GlobalItem::PARAMETER) {
//     const Parameter* p = static_cast<const Parameter*>(item);
//   }
#pragma once

#include <cstdint>

#include <boost/scoped_ptr.hpp>

namespace zelk::configuration {

namespace impl {
class Factory;
class GlobalItemImpl;
}  // namespace impl

class GlobalItem {
public:
  // The kinds of global items (their own codes, not those of GroupItem).
  enum ItemType : int32_t { PARAMETER = 0, GROUP = 1 };

  virtual ~GlobalItem();

  const char* getId() const;
  // The name if not empty, else the id.
  const char* getName() const;
  const char* getDescription() const;
  // PARAMETER or GROUP.
  ItemType getItemType() const;
  // "Parameter" or "Group".
  const char* getItemTypeName() const;

  impl::GlobalItemImpl* getImpl() const;

protected:
  // Takes ownership of impl (a contract: not null).
  explicit GlobalItem(impl::GlobalItemImpl* impl);

  boost::scoped_ptr<impl::GlobalItemImpl> mImpl;

private:
  GlobalItem(const GlobalItem&) = delete;
  GlobalItem& operator=(const GlobalItem&) = delete;
};

}  // namespace zelk::configuration
