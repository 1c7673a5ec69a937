// Validator: a named check of the texts of a parameter's values.
//
// Applications derive from Validator and implement validate(const char*); register the object
// with ConfigurationManager::registerValidator and name it in a parameter's validator attribute.
// Results are null for an acceptable value, or an error text allocated with new[] that the caller
// releases with delete[].
//
//   class PortValidator : public Validator {
//   public:
//     PortValidator() : Validator("port") {}
//     using Validator::validate;
//     char* validate(const char* value) const override {
//       return std::atoi(value) > 0 ? 0 : zelk::cloneString("Not a port");
//     }
//   };
#pragma once

#include <boost/scoped_ptr.hpp>

namespace zelk::configuration {

class ValueBase;

namespace impl {
class ValidatorImpl;
}

class Validator {
public:
  // Contract: name is neither null nor empty.
  explicit Validator(const char* name);
  // Takes ownership of impl (a contract: not null).
  explicit Validator(impl::ValidatorImpl* impl);
  virtual ~Validator();

  // Checks every text of value (each entry of an unbounded value) with validate(const char*).
  // Returns null when all pass, else every error followed by a newline, in one new[] array.
  virtual char* validate(const ValueBase& value) const;
  // Checks one text. Returns null when it is acceptable, else a new[] error text.
  virtual char* validate(const char* value) const = 0;

  const char* getName() const;
  impl::ValidatorImpl* getImpl() const;

private:
  Validator(const Validator&) = delete;
  Validator& operator=(const Validator&) = delete;

  boost::scoped_ptr<impl::ValidatorImpl> mImpl;
};

}  // namespace zelk::configuration
