// ValueProviderImpl: the base of every value provider implementation: id, kind name, priority,
// enabled flag, the last composed help and usage texts, and the fixed pipeline of getValues
// (gather, match to the specification, validate the structure).
#pragma once

#include <cstddef>
#include <string>

#include "zelk/configuration/ValueProvider.h"
#include "zelk/configuration/impl/ItemPlacer.h"

namespace zelk::configuration {
class ConfigurationManager;
}

namespace zelk::configuration::impl {

class ValueProviderImpl {
public:
  // Contract: name is not empty ("Must provide a name"). An empty id becomes name + "-" + the
  // next number of one process-wide counter ("CLI-1", "CLI-2", "XML_FILE-3" ...).
  ValueProviderImpl(const std::string& name, int priority, const std::string& id);
  virtual ~ValueProviderImpl();

  // The provider's raw value tree for spec, before matching and validation.
  virtual ValueGroup getSpecificationValues(const Specification& spec, int options) const = 0;
  // getSpecificationValues, then matching (errors thrown as one ValidationException), then
  // structural validation with options (thrown the same way).
  virtual ValueGroup getValues(const Specification& spec, int options) const;
  // Where the items of values (as getSpecificationValues gave them for spec) were written, so
  // that getValues places the errors it finds in them; none by default. Asked only after errors.
  virtual ItemPlacer makePlacer(const Specification& spec, const ValueGroup& values) const;
  // Contracts: screenWidth > 0 and maxParameterNameWidth < screenWidth. The text is kept until
  // the next call or reset().
  virtual const char* composeHelpMessage(const Specification& spec, size_t screenWidth,
                                         size_t maxParameterNameWidth) const;
  virtual const char* composeUsageMessage(const Specification& spec) const;
  // Disables the provider and empties the stored texts. Providers that hold values drop their
  // references to them without changing them: trees handed out earlier may share those values.
  virtual void reset();
  // Each throws ConfigurationException "... is not supported" unless a provider overrides it.
  virtual void setArguments(const ValueGroup& values, int options);
  virtual void setArguments(const char* argument, int options);
  virtual void setArguments(int argc, const char* const* argv, const char* specificationId,
                            int options);

  const char* getId() const { return mId.c_str(); }
  const char* getName() const { return mName.c_str(); }
  int getPriority() const { return mPriority; }
  bool getEnabled() const { return mEnabled; }
  void setEnabled(bool enabled) { mEnabled = enabled; }
  // The manager the provider is registered with, where it looks specifications up; null while
  // it is registered nowhere (it then uses the process-wide manager). Set by the manager.
  ConfigurationManager* getManager() const { return mManager; }
  void setManager(ConfigurationManager* manager) { mManager = manager; }

protected:
  std::string mId;
  std::string mName;
  int mPriority;
  bool mEnabled;
  ConfigurationManager* mManager;
  mutable std::string mHelpText;
  mutable std::string mUsageText;

private:
  // The last generated id number; providers are set up on one thread, so it is a plain integer.
  static int smGeneratedIds;
};

}  // namespace zelk::configuration::impl
