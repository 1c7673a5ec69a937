// SourceTracker: which source gave each entry of each value of a specification. The manager
// merges the providers' answers in its own order; the tracker repeats that merge on copies of
// the answers, one provider at a time, and puts the entries that each step brings down to that
// provider.
//
//   SourceTracker sources;
//   sources.replay(*manager, *specification);
//   for (std::size_t source : sources.sourcesOf(replayedValue)) ...
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "zelk/configuration/ValueGroup.h"

namespace zelk::configuration {
class ConfigurationManager;
class Specification;
class ValueBase;
class ValueProvider;
}  // namespace zelk::configuration

namespace zelk::configtool {

// Where an entry came from when no provider gave it: an index beyond every source.
constexpr std::size_t FROM_DEFAULT = static_cast<std::size_t>(-1);
constexpr std::size_t FROM_UNKNOWN = static_cast<std::size_t>(-2);

// The name of the specification's defaults among the sources.
extern const char* const DEFAULT_SOURCE;

class SourceTracker {
public:
  // Asks every enabled provider of the manager, in the manager's order, for its values of the
  // specification and merges them as the manager does. A provider whose answer fails is left
  // out: the manager's own retrieval reports the same problem.
  void replay(configuration::ConfigurationManager& manager,
              const configuration::Specification& specification);

  // The value files that gave nothing for the specification (a root element with a typo, another
  // tool's file: the library reads them without complaint), in the manager's order.
  const std::vector<std::string>& getSilentFiles() const { return mSilentFiles; }

  // The merged copy, whose values sourcesOf knows.
  const configuration::ValueGroup& getReplay() const { return mReplay; }

  // The source of each entry of a value of the replayed tree, or nothing when it is not known.
  std::vector<std::size_t> sourcesOf(const configuration::ValueBase& replayed) const;

  // The sources in the order the manager asks them, named in three ways: long ("value file
  // /x/y.xml"), as a short label ("y.xml"), and for machines ("/x/y.xml").
  const std::vector<std::string>& getNames() const { return mNames; }
  const std::vector<std::string>& getLabels() const { return mLabels; }
  const std::vector<std::string>& getMachineNames() const { return mMachineNames; }

  // The name of each source in sources, taken from names (one of the lists above), "default"
  // for FROM_DEFAULT and unknown for what is not known.
  static std::vector<std::string> namesOf(const std::vector<std::size_t>& sources,
                                          const std::vector<std::string>& names,
                                          const char* unknown);

private:
  void addSource(const configuration::ValueProvider& provider);
  void record(const configuration::ValueGroup& group, std::size_t source);

  std::vector<std::string> mNames;
  std::vector<std::string> mLabels;
  std::vector<std::string> mMachineNames;
  configuration::ValueGroup mReplay;
  std::vector<std::string> mSilentFiles;
  std::map<uint32_t, std::vector<std::size_t>> mEntrySources;
};

}  // namespace zelk::configtool
