#include "zelk/configuration/Validator.h"

#include "zelk/configuration/impl/ValidatorImpl.h"
#include "zelk/util/Contracts.h"

namespace zelk::configuration {

Validator::Validator(const char* name) : mImpl(new impl::ValidatorImpl(name)) {}

Validator::Validator(impl::ValidatorImpl* impl) : mImpl(impl) { ZELK_CONTRACT(mImpl != 0); }

Validator::~Validator() {}

char* Validator::validate(const ValueBase& value) const { return mImpl->validate(*this, value); }

const char* Validator::getName() const { return mImpl->getName(); }

impl::ValidatorImpl* Validator::getImpl() const { return mImpl.get(); }

}  // namespace zelk::configuration
