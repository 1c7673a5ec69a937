#include "zelk/configuration/impl/ParameterRefImpl.h"

#include "zelk/configuration/GroupItemVisitor.h"
#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/impl/ValueState.h"
#include "zelk/util/Contracts.h"

namespace zelk::configuration::impl {

ParameterRefImpl::ParameterRefImpl(ParameterRef* self, const Parameter* parameter,
                                   int32_t characteristics, const char* description)
    : GroupItemImpl(self, characteristics),
      mParameter(parameter),
      mDescription(description != 0 ? description : "") {
  ZELK_CONTRACT(mParameter != 0);
}

ParameterRefImpl::~ParameterRefImpl() {}

const char* ParameterRefImpl::getId() const { return mParameter->getId(); }

const char* ParameterRefImpl::getItemTypeName() const { return "ParameterRef"; }

bool ParameterRefImpl::accept(GroupItemVisitor& visitor) const {
  return visitor.visitParameterRef(*static_cast<const ParameterRef*>(getSelf()));
}

GroupItem* ParameterRefImpl::clone(GroupItem::CopyType) const {
  ParameterRef* copy = new ParameterRef(mParameter, mCharacteristics, mDescription.c_str());
  copy->getParameterRefImpl()->mDefaultValue = mDefaultValue;
  return copy;
}

const Parameter* ParameterRefImpl::getParameter() const { return mParameter; }

const char* ParameterRefImpl::getDescription() const {
  return mDescription.empty() ? mParameter->getDescription() : mDescription.c_str();
}

Value ParameterRefImpl::getDefaultValue() const {
  if (mDefaultValue) {
    return Value(mDefaultValue);
  }
  return mParameter->getDefaultValue();
}

void ParameterRefImpl::setDefaultValueState(const boost::shared_ptr<ValueState>& state) {
  mDefaultValue = ValueState::keptByRegistry(state);
}

}  // namespace zelk::configuration::impl
