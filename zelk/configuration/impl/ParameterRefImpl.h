// ParameterRefImpl: the referenced parameter (not owned), the reference's own description and its
// own default value.
#pragma once

#include <string>

#include <boost/shared_ptr.hpp>

#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/impl/GroupItemImpl.h"

namespace zelk::configuration::impl {

class ValueState;

class ParameterRefImpl : public GroupItemImpl {
public:
  // Contract: parameter is not null.
  ParameterRefImpl(ParameterRef* self, const Parameter* parameter, int32_t characteristics,
                   const char* description);
  ~ParameterRefImpl() override;

  // The parameter's id.
  const char* getId() const override;
  GroupItem::ItemType getItemType() const override { return GroupItem::PARAMETER_REF; }
  const char* getItemTypeName() const override;
  bool accept(GroupItemVisitor& visitor) const override;
  // A clone shares the default value's state with the original.
  GroupItem* clone(GroupItem::CopyType copyType) const override;

  const Parameter* getParameter() const;
  const char* getDescription() const;
  Value getDefaultValue() const;
  // The reference's own default value; null when none was set.
  const boost::shared_ptr<ValueState>& getDefaultValueState() const { return mDefaultValue; }
  void setDefaultValueState(const boost::shared_ptr<ValueState>& state);

private:
  const Parameter* mParameter;
  std::string mDescription;
  boost::shared_ptr<ValueState> mDefaultValue;
};

}  // namespace zelk::configuration::impl
