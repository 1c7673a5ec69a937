// ConfigurationListener: lets an application watch values of a specification.
//
// Derive from it, override the notifications you need and tell it what to watch: a whole
// specification, a container or one parameter reference. An event goes to the listeners of the
// nearest watched item only (the parameter reference, else its closest watched container), and
// only for values in complete trees. Notifications run synchronously on the thread that changed
// the values. Destroying a listener stops all its watching.
//
//   class PortWatcher : public zelk::configuration::ConfigurationListener {
//   public:
//     ~PortWatcher() override {}
//     void onValueChanged(const ParameterRef*, const ValueChangedArguments& args) override {
//       std::cout << "port is now " << args.mValue->getName() << '\n';
//     }
//   };
//   PortWatcher watcher;
//   watcher.startListeningTo(specification);
#pragma once

#include <boost/scoped_ptr.hpp>

#include "zelk/configuration/ListenerArguments.h"

namespace zelk::configuration {

class Container;
class ParameterRef;
class Specification;

namespace impl {
class ConfigurationListenerImpl;
}

class ConfigurationListener {
public:
  ConfigurationListener();
  // Stops watching every item, then releases the implementation.
  virtual ~ConfigurationListener() = 0;

  // The notifications; each does nothing by default.
  virtual void onValueAdded(const ParameterRef* parameterRef, const ValueAddedArguments& args);
  virtual void onValueChanged(const ParameterRef* parameterRef, const ValueChangedArguments& args);
  virtual void onValueRemoved(const ParameterRef* parameterRef, const ValueRemovedArguments& args);
  virtual void onValueGroupAdded(const Container* container, const ValueGroupAddedArguments& args);
  virtual void onValueGroupRemoved(const Container* container,
                                   const ValueGroupRemovedArguments& args);

  // Start watching the specification's items container, a container or a parameter reference.
  // Return false when already watching it; a null argument is a ContractViolationException.
  bool startListeningTo(const Specification* specification);
  bool startListeningTo(const Container* container);
  bool startListeningTo(const ParameterRef* parameterRef);
  // Stop watching; return false when the item was not watched.
  bool stopListeningTo(const Specification* specification);
  bool stopListeningTo(const Container* container);
  bool stopListeningTo(const ParameterRef* parameterRef);

private:
  ConfigurationListener(const ConfigurationListener&) = delete;
  ConfigurationListener& operator=(const ConfigurationListener&) = delete;

  boost::scoped_ptr<impl::ConfigurationListenerImpl> mImpl;
};

}  // namespace zelk::configuration
