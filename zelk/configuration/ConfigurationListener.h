// ConfigurationListener: lets an application watch values of a specification.
//
// Derive from it, override the notifications you need and tell it what to watch: a whole
// specification, a container or one parameter reference. An event goes to the listeners of the
// nearest watched item only (the parameter reference, else its closest watched container), and
// only for values in complete trees.
//
// Notifications run synchronously on the thread that made the change, after the change is in the
// tree, with no lock of a value tree or of the manager's value cache held, but with the
// process-wide listener lock held (recursive): notifications are delivered one at a time in the
// whole process, and the lock is the same one that starting, stopping and destroying listeners
// take. Inside a notification a listener may:
//   - read the tree it is told about and any other, and call getValueGroup, composeHelpMessage and
//     composeUsageMessage;
//   - change values (the notifications that follow run nested, on the same thread);
//   - start or stop watching, its own items included, call stopListeningAndWait() on itself (it
//     returns at once) or destroy itself;
//   - hand work to another thread that does not need the listener lock.
// It must not wait for another thread that changes values, starts or stops watching, or destroys
// a listener: that thread waits for the listener lock, which the notification holds until it
// returns. Queue such work and return instead.
//
// An item is watched by its place in the specification: the specification's id and the ids of the
// containers down to the item (case ignored), not by the object. A listener therefore keeps
// watching when enableConfiguration, reset or a reload of the registry makes the specification
// anew, and never hears about an item it did not ask for, whatever became of the old objects. The
// same place in another manager is the same place.
//
// Destroying a listener safely: a notification may be running on another thread at the moment a
// listener is destroyed, and the base destructor runs only after the derived class's members are
// gone. So a derived class calls stopListeningAndWait() first in its own destructor: from then on
// no notification reaches it, and one that was running has returned. (The base destructor still
// stops all watching, for listeners whose notifications touch nothing of the derived class.)
//
//   class PortWatcher : public zelk::configuration::ConfigurationListener {
//   public:
//     ~PortWatcher() override { stopListeningAndWait(); }
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
  // Stops watching every item and waits for a notification in progress on another thread (see
  // stopListeningAndWait), then releases the implementation. By then a derived class's members
  // are already destroyed: derived classes call stopListeningAndWait() in their own destructor.
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

  // Stops watching every item, then waits until a notification that another thread is delivering
  // to this listener has returned; when it returns, no notification is running in this listener
  // on another thread and none will start. Called from inside one of this listener's own
  // notifications it cannot wait for that one: it stops the watching and returns at once, and the
  // notification finishes as usual. The wait lasts as long as the broadcast in progress (the other
  // listeners of the same event included), so the caller must not hold anything that a
  // notification waits for. The listener may start listening again afterwards.
  void stopListeningAndWait();

private:
  ConfigurationListener(const ConfigurationListener&) = delete;
  ConfigurationListener& operator=(const ConfigurationListener&) = delete;

  boost::scoped_ptr<impl::ConfigurationListenerImpl> mImpl;
};

}  // namespace zelk::configuration
