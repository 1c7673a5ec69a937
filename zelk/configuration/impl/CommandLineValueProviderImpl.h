// CommandLineValueProviderImpl: parses an argument vector into a value tree for one specification.
//
// setArguments() reads the words (argv[0] is the program name): "-flag value", "-flag" alone,
// and with option bit 2 bare words as flags. Each flag becomes a value of the root group, bound
// to the parameter it names (exactly with option bit 1, else by case-insensitive unambiguous
// prefix). getSpecificationValues() hands the tree out only for the specification it was parsed
// for.
//
//   CommandLineValueProviderImpl impl(1, "");
//   impl.setArguments(argc, argv, "backup", 0);
//   ValueGroup raw = impl.getSpecificationValues(*spec, 0);
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <boost/scoped_ptr.hpp>

#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/impl/ValueProviderImpl.h"

namespace zelk::configuration {
class ParameterRef;
class Specification;
class Value;
}  // namespace zelk::configuration

namespace zelk::configuration::impl {

class ParameterPrefixIndex;

class CommandLineValueProviderImpl : public ValueProviderImpl {
public:
  CommandLineValueProviderImpl(int priority, const std::string& id);
  ~CommandLineValueProviderImpl() override;

  // Parses argv for the specification specificationId (looked up in the manager the provider is
  // registered with, else in the process-wide one), replacing the values held. argc 0 clears and
  // returns. Throws std::invalid_argument for a null argv, a missing id or an unknown
  // specification, ConfigurationException for a bare word (without option bit 2), a lone "-" or
  // an ambiguous flag. On a throw the provider holds nothing.
  void setArguments(int argc, const char* const* argv, const char* specificationId,
                    int options) override;

  // The parsed values when they were parsed for spec (late-bound flags matched and filled in),
  // else a new empty group for spec.
  ValueGroup getSpecificationValues(const Specification& spec, int options) const override;

  // For the next setArguments only: the number of each of its words in the command line they
  // were taken from, which placeEntries then reports instead of their index in argv.
  void setWordNumbers(const std::vector<int>& numbers) { mWordNumbers = numbers; }

  // The word of the argument vector given to setArguments (0 the program) that gave each entry
  // of the values of answer, a tree that getValues gave: by the value's instance id, in entry
  // order. Empty unless the manager kept positions (ConfigurationManager::setKeepPositions)
  // when the words were parsed.
  std::map<uint32_t, std::vector<int>> placeEntries(const ValueGroup& answer) const;

  // Drops the parsed values (unchanged: trees handed out may share them), then disables the
  // provider.
  void reset() override;

  // The value for one flag: bound to the parameter the flag names (exactly, or by unambiguous
  // case-insensitive prefix when allowAbbreviation), else unbound and named by the flag. value may
  // be null. Throws ConfigurationException for an ambiguous prefix and the value's own errors.
  Value createValue(const Specification& spec, const char* flag, const char* value,
                    bool allowAbbreviation);

  // The parameter references whose names begin with prefix (case-insensitively, hidden ones
  // excluded), in the specification's visit order, by a walk of the whole specification.
  static std::vector<const ParameterRef*> findByPrefix(const Specification& spec,
                                                       const char* prefix);

private:
  // The abbreviation query of createValue. While setArguments parses for spec it is answered by
  // a prefix index built on first use, so that a long command line does not walk the
  // specification once per flag; otherwise by findByPrefix.
  std::vector<const ParameterRef*> findCandidates(const Specification& spec, const char* flag);

  // The parsed values, a group named "CLI" until the first parse.
  mutable ValueGroup mValues;
  // Set when a flag matched nothing by prefix, so the tree holds values still to be bound.
  mutable bool mNeedsMatching;
  // The specification being parsed for, and its prefix index once built; both are dropped when
  // setArguments returns, so the index never outlives a change of the specification.
  const Specification* mParsedSpecification;
  boost::scoped_ptr<ParameterPrefixIndex> mPrefixIndex;
  // With positions kept: the name of the value each flag made and the flag's word, in order.
  std::vector<std::pair<std::string, int>> mFlagWords;
  std::vector<int> mWordNumbers;
};

}  // namespace zelk::configuration::impl
