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
class ParameterRef;
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

// Where one entry of a value was written: a file's line and column, a word of the tool's command
// line, or nothing known (the source's name then says where it came from).
struct EntryPlace {
  std::string file;
  unsigned int line = 0;  // 0 when not known
  unsigned int column = 0;
  int argument = 0;  // the word of the tool's command line (1 the first); 0 when none
};

// One source's part in a value, for -values -explain: the entries it gave and where each was
// written, and whether a source of higher precedence overrode it (a bounded value is taken from
// the first source that gives it; every source adds to an unbounded one).
struct Contribution {
  std::size_t source = FROM_UNKNOWN;  // an index into the sources, or FROM_DEFAULT
  std::vector<std::string> texts;
  std::vector<EntryPlace> places;  // one for each text
  bool overridden = false;
};

class SourceTracker {
public:
  // Asks every enabled provider of the manager, in the manager's order, for its values of the
  // specification and merges them as the manager does. A provider whose answer fails is left
  // out: the manager's own retrieval reports the same problem.
  // With firstToolWord 0 or more, it also notes every source's part in each value
  // (contributionsOf): firstToolWord is where the tool's own arguments begin in the words the
  // manager was enabled with. The manager must keep positions
  // (ConfigurationManager::setKeepPositions) for the places of the entries to be known.
  void replay(configuration::ConfigurationManager& manager,
              const configuration::Specification& specification, int firstToolWord = -1);

  // The value files that gave nothing for the specification (a root element with a typo, another
  // tool's file: the library reads them without complaint), in the manager's order.
  const std::vector<std::string>& getSilentFiles() const { return mSilentFiles; }

  // The merged copy, whose values sourcesOf knows.
  const configuration::ValueGroup& getReplay() const { return mReplay; }

  // The source of each entry of a value of the replayed tree, or nothing when it is not known.
  std::vector<std::size_t> sourcesOf(const configuration::ValueBase& replayed) const;

  // After an explaining replay: every source's part in a value of the replayed tree, in order of
  // precedence, then the default it overrode; empty when the value is not known.
  std::vector<Contribution> contributionsOf(const configuration::ValueBase& replayed) const;
  // After an explaining replay: where entry (0 the first) of a value of the replayed tree was
  // written, among the parts in force; nothing known when it is not.
  EntryPlace placeOf(const configuration::ValueBase& replayed, std::size_t entry) const;
  // The default of reference, where the registry gives it, as the one contribution of a value
  // that no source gave (overridden false); nothing when it has none.
  std::vector<Contribution> defaultOf(const configuration::ParameterRef& reference) const;

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
  // Notes the part of the provider's answer in each value it lands on when its copy is merged
  // into the replay.
  void explainAnswer(const configuration::ValueProvider& provider,
                     const configuration::Specification& specification,
                     const configuration::ValueGroup& answer,
                     const configuration::ValueGroup& copy);
  void explainGroup(const configuration::ValueGroup& answer, const configuration::ValueGroup& copy,
                    const configuration::ValueGroup* target, std::size_t source,
                    const std::map<uint32_t, std::vector<EntryPlace>>& places);

  std::vector<std::string> mNames;
  std::vector<std::string> mLabels;
  std::vector<std::string> mMachineNames;
  configuration::ValueGroup mReplay;
  std::vector<std::string> mSilentFiles;
  std::map<uint32_t, std::vector<std::size_t>> mEntrySources;
  configuration::ConfigurationManager* mManager = nullptr;
  // By the instance id of a value of the replay: every source's part in it.
  std::map<uint32_t, std::vector<Contribution>> mContributions;
  // Where the tool's arguments begin in what the manager was given; below 0 when not explaining.
  int mFirstToolWord = -1;
};

}  // namespace zelk::configtool
