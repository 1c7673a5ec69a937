// ApplicationValueProviderImpl: holds the value group that the application installed and answers
// every specification with it; listeners hear when a matched group is replaced.
//
//   ApplicationValueProviderImpl impl(0, "");
//   impl.setArguments(ValueGroup(spec), 0);
#pragma once

#include <string>

#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/impl/ValueProviderImpl.h"

namespace zelk::configuration::impl {

class ApplicationValueProviderImpl : public ValueProviderImpl {
public:
  ApplicationValueProviderImpl(int priority, const std::string& description);
  ~ApplicationValueProviderImpl() override;

  // Shares values (announcing the removal of the matched group held before and the addition of
  // the new one when it is matched).
  void setArguments(const ValueGroup& values, int options) override;
  // The group held (shared), whatever spec is; a new empty group for spec when it is null.
  ValueGroup getSpecificationValues(const Specification& spec, int options) const override;
  // Lets the group held go (unchanged, and its removal unannounced), then disables the provider.
  void reset() override;

private:
  ValueGroup mValues;
};

}  // namespace zelk::configuration::impl
