// ConfigurationManager: the entry point of the configuration system.
//
// The process-wide manager (getInstance()) owns the registries of everything the system knows:
// specifications, enumeration definitions, global items (parameters and groups), validators and
// value providers. It is created on first use, loads the registry files, and is shut down at
// process exit. Tools enable it with their command line once and then read their values:
//
//   ConfigurationManager* manager = ConfigurationManager::getInstance();
//   manager->enableConfiguration(true, "tool.config", argc, argv, "tool");
//   ValueGroup values = manager->getValueGroup("tool", true, 0);
//   std::cout << manager->composeUsageMessage("tool");
//
// Look-ups return null for an unknown name and throw ConfigurationException
// "Duplicate <kind> "<name>"" when a name was registered twice. The registries take no locks:
// configure on one thread before reading values from several. Once set up, getValueGroup,
// composeUsageMessage and composeHelpMessage may be called from several threads at once;
// registering, enabling, resetting and setApplicationValues must not run beside them.
#pragma once

#include <cstddef>

#include <boost/scoped_ptr.hpp>

#include "zelk/configuration/ConfigurationManagerBase.h"
#include "zelk/configuration/FollowOptions.h"
#include "zelk/configuration/SourcePosition.h"
#include "zelk/util/IEnumerator.h"

namespace zelk::configuration {

struct EtcdSource;

class EnumDefinition;
class GlobalItem;
class GroupItem;
class ParameterRef;
class Specification;
class ValidationErrors;
class Validator;
class ValueGroup;
class ValueGroupItem;
class ValueProvider;

namespace impl {
class ConfigurationManagerImpl;
}

class ConfigurationManager : public ConfigurationManagerBase {
public:
  // The names of the three built-in provider kinds (also their registry ids).
  static const char* const COMMAND_LINE_PROVIDER_NAME;  // "CLI"
  static const char* const XML_FILE_PROVIDER_NAME;      // "XML_FILE"
  static const char* const APPLICATION_PROVIDER_NAME;   // "APP_VALUES"
  // The kind and id of the etcd provider (EtcdValueProvider).
  static const char* const ETCD_PROVIDER_NAME;  // "ETCD"

  // An empty manager. Prefer getInstance(), or impl::Factory::createManager() for an independent
  // manager with the default validators.
  ConfigurationManager();
  ~ConfigurationManager() override;

  // The process-wide manager, created on first use: it registers the default validators and loads
  // the registry files. If that load throws, the exception reaches the caller and later calls
  // return the partly loaded manager without loading again.
  static ConfigurationManager* getInstance();
  // As getInstance, but a failed first load is swallowed and the partly loaded (often empty)
  // manager returned: for tools that inspect or repair an installation rather than run in it.
  static ConfigurationManager* getInstanceIgnoringLoadFailure();
  // Deletes the process-wide manager (registered with atexit by getInstance()).
  static void shutdown();

  // Registries. register takes ownership (contract: not null; the object's name must not be
  // empty); get returns null when nothing is registered under the name and throws "Duplicate %s
  // "%s"" when several are; unregister removes every entry of the name without destroying it and
  // returns whether one was removed; enumerators walk the registry in key order and are deleted
  // by the caller. A registered value provider looks specifications up in this manager.
  void registerValueProvider(ValueProvider* provider);
  ValueProvider* getValueProvider(const char* name) const;
  bool unregisterValueProvider(const char* name);
  IEnumerator<ValueProvider*>* getValueProviderEnumerator() const;

  void registerValidator(Validator* validator);
  Validator* getValidator(const char* name) const;
  bool unregisterValidator(const char* name);
  IEnumerator<Validator*>* getValidatorEnumerator() const;

  void registerGlobalItem(GlobalItem* item);
  GlobalItem* getGlobalItem(const char* name) const;
  bool unregisterGlobalItem(const char* name);
  IEnumerator<GlobalItem*>* getGlobalItemEnumerator() const;

  void registerEnumDefinition(EnumDefinition* enumDefinition);
  EnumDefinition* getEnumDefinition(const char* name) const;
  bool unregisterEnumDefinition(const char* name);
  IEnumerator<EnumDefinition*>* getEnumDefinitionEnumerator() const;

  void registerSpecification(Specification* specification);
  Specification* getSpecification(const char* name) const;
  bool unregisterSpecification(const char* name);
  IEnumerator<Specification*>* getSpecificationEnumerator() const;

  // The global item of that name if it is a group, null when there is none; throws
  // ConfigurationException ""%s" is not a group" for another kind.
  GlobalItem* getGroup(const char* name);
  // The global item of that name if it is a parameter, null when there is none; throws
  // ConfigurationException ""%s" is not a parameter" for another kind.
  GlobalItem* getParameter(const char* name);

  // Resets the manager and builds the value providers of this run: "-loadConfiguration" files,
  // the command line (when specificationId is given), the application's file and, if allowed,
  // "machine.config". Each "-etcdConfiguration <settings>" on the command line, and then each
  // "etcdConfiguration" element directly below the root of those files (its attributes are the
  // settings), adds an etcd provider as addEtcdConfiguration does (see EtcdSource).
  void enableConfiguration(bool allowMachineConfig, const char* applicationConfigFile,
                           unsigned int argc, const char* const* argv,
                           const char* specificationId);
  // Adds an etcd provider (id "ETCD") for source after those there are, reads its key and enables
  // it; the main log says where the document came from. Throws as EtcdValueProvider's
  // enableProvider does, and then adds nothing.
  void addEtcdConfiguration(const EtcdSource& source);
  // Finds and loads the registry files ("zelk.crg" first); throws when "zelk.crg" is missing.
  void loadDefaultConfigurationRegistry();
  // Registers the storage-location validator and one validator per "ParameterValidator" plug-in.
  void registerDefaultValidators();
  // Clears every registry and cache, then registers the default validators and loads the
  // registry files again. Value trees and values handed out earlier keep their values, names,
  // types and defaults: the specifications they are bound to stay alive, unreachable from the
  // manager, until the last of them is released (the same holds when the manager is destroyed).
  void reset();

  // The largest registry or value file, in bytes, that this manager reads: 64 MiB unless set.
  // A larger file is refused before any of it is read, and a file that grows past the limit while
  // it is read is refused too: loading it throws ConfigurationException "File "<path>" is <size>
  // bytes long, more than the limit of <limit> bytes" (or "... is more than the limit of <limit>
  // bytes long ..."). The limit applies to the loads that follow, so the process-wide manager
  // reads its registry files again under a new limit on the next reset() or
  // enableConfiguration(). A zero limit is a contract violation. Single quoted values and names
  // in these files are limited to 64 KiB (zelk::host::XmlTokenReader::DEFAULT_MAX_TEXT_LENGTH).
  //
  //   manager->setMaxFileSize(256 << 20);
  //   manager->enableConfiguration(true, nullptr, argc, argv, "tool");
  void setMaxFileSize(std::size_t bytes);
  std::size_t getMaxFileSize() const;

  // Whether the loads that follow keep where each value was written, for tools that explain
  // values to a person: the line and column of each attribute of a value file (see
  // XmlFileValueProvider::placeEntries), the word of each command-line flag (see
  // CommandLineValueProvider::placeEntries) and the place of each registry "default"
  // (getDefaultPosition). Off unless set: keeping them costs a pass over each file's text, and a
  // value file's document is then kept beside its values.
  //
  //   manager->setKeepPositions(true);
  //   manager->enableConfiguration(true, nullptr, argc, argv, "tool");  // reloads, keeping them
  void setKeepPositions(bool keep);
  bool getKeepPositions() const;
  // Where the default that reference gives was written: its own "default" attribute, else its
  // parameter's. Unknown (line 0) when there is none, or when positions were not kept while the
  // registry was loaded.
  SourcePosition getDefaultPosition(const ParameterRef& reference) const;

  // The merged, validated and completed values of the specification, cached per id. Safe to
  // call from several threads once the manager is set up: a cached tree is handed out under a
  // short shared lock; threads that ask for an id not cached yet may each compute it, and all get
  // the tree stored first.
  ValueGroup getValueGroup(const char* specificationId, bool required, int flags) const;
  // Installs the application's own values (they take precedence over every other provider). The
  // group installed before is let go unchanged.
  void setApplicationValues(const ValueGroup& values, int flags);
  // Follows the value sources of the enabled configuration while the application runs: the
  // "-loadConfiguration" files, the application's file and "machine.config" (also when it is
  // created later), and every change source added in code. Each file is watched through its
  // directory (inotify), so that rename-over saves, delete and re-create, and a swapped symbolic
  // link to a directory are followed; where inotify cannot be had the files are polled at
  // options.pollInterval, and the main log says so. A change is read into a new tree for
  // specificationId and checked as getValueGroup checks it, and every value is converted to its
  // type and checked by its parameter's validator. A good change is put in force at once: later
  // getValueGroup calls (for any specification) hand out the new values, trees handed out
  // earlier stay as they were, and the listeners are told of every value and group added,
  // changed or removed, once, on the following thread, with no lock of this manager held. A bad
  // change is refused: every error goes to options.onRefused and the main log, and the values in
  // force stay exactly as they were. Content equal to the content in force causes nothing.
  //
  // Starts by reading the values of specificationId once (so it throws as getValueGroup does,
  // and ConfigurationException "The "%s" specification was not found"); a following started
  // before is stopped first. Listeners and callbacks run on the following thread: they may read
  // values, but must not call followValues, stopFollowing, reset or enableConfiguration (that
  // throws ConfigurationException), nor wait for a thread that does.
  //
  //   FollowOptions options;
  //   options.onRefused = [](const RefusedChange& r) { for (auto& e : r.errors) log(e); };
  //   manager->followValues("backup", options);
  void followValues(const char* specificationId, const FollowOptions& options = FollowOptions());
  // Stops following: no listener or callback is called for a change after this returns. Also
  // done by reset(), enableConfiguration() and the destructor. Does nothing when not following.
  void stopFollowing();
  bool isFollowing() const;

  // Matches values to specification and validates them; with a collector the errors are added to
  // it, without one a ValidationException is thrown.
  void validateValues(const Specification& specification, ValueGroup& values,
                      ValidationErrors* errors) const;

  // Usage and help text of the specification through the named provider ("CLI" when providerName
  // is null or empty). The pointer is valid until the next call of the same operation on the
  // same thread: each thread has its own buffer, so several threads may compose at once.
  const char* composeUsageMessage(const char* specificationId,
                                  const char* providerName = 0) const;
  const char* composeHelpMessage(const char* specificationId, unsigned long screenWidth,
                                 unsigned long maxParameterNameWidth,
                                 const char* providerName = 0) const;

  // Diagnostic text of an item; valid until the next getRepresentation call.
  const char* getRepresentation(const ValueGroupItem& item);
  const char* getRepresentation(const GroupItem& item);
  const char* getRepresentation(const Specification& specification);

  impl::ConfigurationManagerImpl* getImpl() const;

private:
  ConfigurationManager(const ConfigurationManager&) = delete;
  ConfigurationManager& operator=(const ConfigurationManager&) = delete;

  static ConfigurationManager* smInstance;
  boost::scoped_ptr<impl::ConfigurationManagerImpl> mImpl;
};

}  // namespace zelk::configuration
