#include "zelk/configuration/impl/UnboundedParameterValueFixer.h"

#include <string>

#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/Container.h"
#include "zelk/configuration/GroupItem.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/ValueBase.h"
#include "zelk/configuration/impl/ValueAccess.h"
#include "zelk/configuration/impl/ValueState.h"

namespace zelk::configuration::impl {

ValueGroup UnboundedParameterValueFixer::fix(const ValueGroup& values, const Specification& spec) {
  if (values.isNull()) {
    return ValueGroup::Null;
  }
  UnboundedParameterValueFixer fixer(spec);
  values.accept(fixer);
  return fixer.getResult();
}

UnboundedParameterValueFixer::UnboundedParameterValueFixer(const Specification& spec)
    : mRewrittenCount(0) {
  mContainers.push_back(spec.getItemsContainer());
}

const GroupItem* UnboundedParameterValueFixer::resolve(const Container& container,
                                                       const ValueGroup& group) {
  if (group.matches(container)) {
    return &container;
  }
  const char* name = group.getName();
  const GroupItem* item = container.findItem(name);
  if (item != 0 && item->getItemType() == GroupItem::PARAMETER_REF) {
    return item;
  }
  return container.findContainer(name);
}

bool UnboundedParameterValueFixer::visitValueGroupStart(ValueGroup& group) {
  const Container* current = mContainers.back();
  if (!mOutputs.empty() && mOutputs.back().isNull()) {
    pushEmptyContext(0);
    return true;
  }
  if (current != 0) {
    const GroupItem* item = resolve(*current, group);
    if (item != 0 && item->getItemType() == GroupItem::PARAMETER_REF) {
      rewrite(group);
      pushEmptyContext(0);
      return true;
    }
    if (item != 0) {
      current = static_cast<const Container*>(item);
    }
  }
  pushContext(current, group);
  return true;
}

bool UnboundedParameterValueFixer::visitValueBase(ValueBase& value) {
  if (!mOutputs.empty() && !mOutputs.back().isNull()) {
    boost::shared_ptr<ValueGroupItem> copy = value.clone(0);
    mOutputs.back().add(*copy);
  }
  return true;
}

bool UnboundedParameterValueFixer::visitValueGroupEnd(ValueGroup&) {
  mContainers.pop_back();
  mOutputs.pop_back();
  return true;
}

void UnboundedParameterValueFixer::pushContext(const Container* container,
                                               const ValueGroup& group) {
  mContainers.push_back(container);
  ValueGroup copy(group, 1);
  if (mOutputs.empty()) {
    mResult = copy;
  } else {
    mOutputs.back().add(copy);
  }
  mOutputs.push_back(copy);
}

void UnboundedParameterValueFixer::pushEmptyContext(const Container* container) {
  mContainers.push_back(container);
  mOutputs.push_back(ValueGroup::Null);
}

void UnboundedParameterValueFixer::rewrite(const ValueGroup& group) {
  const char* name = group.getName();
  // Attributes come before child elements, so the first item so named is the attribute if any.
  boost::shared_ptr<ValueGroupItem> attribute = group.findItem("value");
  if (!attribute || !attribute->isValue()) {
    throw ConfigurationException("\"%s\" is not a valid parameter", name);
  }
  boost::shared_ptr<ValueState> state =
      ValueAccess::getState(static_cast<const ValueBase&>(*attribute));
  const std::string text = state->hasValues() ? state->getText(0) : std::string();
  if (!mOutputs.empty()) {
    mOutputs.back().addValue(name, text.c_str());
  }
  ++mRewrittenCount;
}

}  // namespace zelk::configuration::impl
