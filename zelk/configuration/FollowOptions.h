// FollowOptions: how a manager follows the value sources of a specification while the
// application runs (ConfigurationManager::followValues), and the reports it gives.
//
// A change to a value file (or another followed source) is read into a new value tree, checked
// like a tree that getValueGroup hands out and, in addition, every value converted to its type
// and checked by its parameter's validator. A good change is put in force in one step and the
// listeners are told; a bad one is refused, and the values in force stay exactly as they were.
//
//   zelk::configuration::FollowOptions options;
//   options.onRefused = [](const zelk::configuration::RefusedChange& refused) {
//     for (const std::string& error : refused.errors) std::cerr << error << '\n';
//   };
//   manager->followValues("backup", options);
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace zelk::configuration {

// One difference between the values in force before and after a change.
struct ValueChange {
  enum Kind { VALUE_ADDED, VALUE_CHANGED, VALUE_REMOVED, GROUP_ADDED, GROUP_REMOVED };
  Kind kind;
  // The item's names from the specification's root down, joined by "/" ("target/path"); a
  // repeated group carries its position among the groups of its name ("target[2]/path").
  std::string path;
  // The texts before and after, entries of a value given several times joined by ", "; empty
  // for the side where the item is absent and for groups.
  std::string oldText;
  std::string newText;
};

// A change put in force.
struct AppliedChange {
  // What changed: the paths of the value files read again (or a cluster key).
  std::vector<std::string> sources;
  // Every value and group that differs, in tree order.
  std::vector<ValueChange> changes;
};

// A change refused: the values in force were kept.
struct RefusedChange {
  std::vector<std::string> sources;
  // Every error, worded as the library words them when loading and validating.
  std::vector<std::string> errors;
};

struct FollowOptions {
  // A change is read this long after the last event that announced it, so that the events of
  // one save (or of several files saved together) cause one re-read.
  std::chrono::milliseconds coalescingDelay{100};
  // How often files are compared when they are polled: where inotify cannot be had, or always
  // with forcePolling.
  std::chrono::milliseconds pollInterval{1000};
  bool forcePolling = false;
  // The options word of getValueGroup used to build and validate the new tree.
  int flags = 0;
  // Called on the following thread for every refused change (also written to the main log).
  std::function<void(const RefusedChange&)> onRefused;
  // Called on the following thread for every change put in force, after the listeners.
  std::function<void(const AppliedChange&)> onApplied;
};

}  // namespace zelk::configuration
