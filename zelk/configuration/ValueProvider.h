// ValueProvider: one source of parameter values (the command line, an XML value file, values set
// by the application).
//
// A provider is built disabled; enableProvider() hands it its arguments and enables it. Asked for
// a specification's values, it gathers its raw tree, matches it to the specification and
// validates its structure. The ConfigurationManager owns the providers registered with it and
// merges their answers.
//
//   ValueProvider* cli = manager->getValueProvider(ConfigurationManager::COMMAND_LINE_PROVIDER_NAME);
//   if (cli != 0 && cli->getEnabled()) {
//     ValueGroup values = cli->getValues(*spec, 0);
//   }
//
// Provider order. The manager asks its enabled providers in the byte order of their ids (the
// registry key order), and for a value given once the first answer wins; an unbounded value
// collects the entries of every answer in the same order. The order is deliberate and decided
// by the id alone; the priority plays no part in it. Upper case sorts before lower case and
// "-" before letters:
//   "APP_VALUES"   values the application sets (setApplicationValues)
//   "CLI", "CLI-n" the command line
//   "ETCD"         etcd keys (EtcdValueProvider), in the order they were added: after the
//                  command line, before value files
//   "XML_FILE"     value files, in the order they were registered: the "-loadConfiguration"
//                  files, the application's file, then "machine.config"
// Providers with equal ids come in the order of their registration. An application's own
// provider lands wherever its id sorts: a lower-case id such as "defaults" comes after every
// provider above, "AAA" before them all. Choose the id for the place you want.
#pragma once

#include <cstddef>

#include <boost/scoped_ptr.hpp>

namespace zelk::configuration {

class Specification;
class ValueGroup;

namespace impl {
class ValueProviderImpl;
}

class ValueProvider {
public:
  // The provider's id, its registry key.
  virtual const char* getId() const;
  // The provider's kind: "CLI", "XML_FILE", "APP_VALUES" or "ETCD".
  virtual const char* getName() const = 0;
  // The provider's values for spec, matched and validated; throws ValidationException when they
  // do not fit.
  virtual ValueGroup getValues(const Specification& spec, int options);
  // Help text for spec; the pointer is valid until the next call or reset().
  virtual const char* composeHelpMessage(const Specification& spec, size_t screenWidth,
                                         size_t maxParameterNameWidth) const;
  // Usage text for spec; the pointer is valid until the next call or reset().
  virtual const char* composeUsageMessage(const Specification& spec) const;
  // Disables the provider and drops what it holds. Values handed out earlier (and the trees that
  // merged them) keep their values: they are let go, never emptied.
  virtual void reset();
  virtual ~ValueProvider();
  // Give the provider its arguments; a kind that takes no arguments of this form throws
  // ConfigurationException "... is not supported".
  virtual void setArguments(const ValueGroup& values, int options);
  virtual void setArguments(const char* argument, int options);
  virtual void setArguments(int argc, const char* const* argv, const char* specificationId,
                            int options);

  impl::ValueProviderImpl* getImpl() const;
  bool getEnabled() const;
  // The number the provider was built with: the manager numbers the providers it makes for files
  // and the command line in the order it creates them (from 1; the application provider has 0).
  // It is informational only: it does not decide which provider's value wins (see the provider
  // order above), and the numbers need not agree with that order.
  int getPriority() const;
  // Each calls the matching setArguments and then enables the provider; when setArguments throws
  // the provider stays disabled.
  void enableProvider(int argc, const char* const* argv, const char* specificationId, int options);
  void enableProvider(const char* argument, int options);
  void enableProvider(const ValueGroup& values, int options);

protected:
  // Takes ownership of impl (a contract: not null).
  explicit ValueProvider(impl::ValueProviderImpl* impl);

private:
  ValueProvider(const ValueProvider&) = delete;
  ValueProvider& operator=(const ValueProvider&) = delete;

  boost::scoped_ptr<impl::ValueProviderImpl> mImpl;
};

}  // namespace zelk::configuration
