#include "ValuesWatch.h"

#include <signal.h>

#include <mutex>
#include <ostream>
#include <string>
#include <vector>

#include "Output.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/FollowOptions.h"

namespace zelk::configtool {

using namespace zelk::configuration;

namespace {

std::string joined(const std::vector<std::string>& texts) {
  std::string result;
  for (const std::string& text : texts) result += (result.empty() ? "" : ", ") + text;
  return result;
}

std::string describe(const ValueChange& change) {
  switch (change.kind) {
    case ValueChange::VALUE_ADDED: return change.path + ": added " + change.newText;
    case ValueChange::VALUE_CHANGED:
      return change.path + ": " + change.oldText + " -> " + change.newText;
    case ValueChange::VALUE_REMOVED: return change.path + ": removed (was " + change.oldText + ")";
    case ValueChange::GROUP_ADDED: return change.path + ": group added";
    case ValueChange::GROUP_REMOVED: return change.path + ": group removed";
  }
  return change.path;
}

}  // namespace

int watchValues(ConfigurationManager& manager, const char* specificationId, std::ostream& out) {
  // Blocked here, before the following threads start, so that they inherit the mask and the
  // signal is taken by sigwait below.
  sigset_t stop;
  sigemptyset(&stop);
  sigaddset(&stop, SIGINT);
  sigaddset(&stop, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &stop, nullptr);

  std::mutex printing;
  FollowOptions options;
  options.onApplied = [&](const AppliedChange& applied) {
    std::lock_guard<std::mutex> lock(printing);
    out << "applied: " << joined(applied.sources) << '\n';
    for (const ValueChange& change : applied.changes) out << "  " << describe(change) << '\n';
    out.flush();
  };
  options.onRefused = [&](const RefusedChange& refused) {
    std::lock_guard<std::mutex> lock(printing);
    out << "refused: " << joined(refused.sources) << '\n';
    for (const std::string& error : refused.errors) out << "  " << error << '\n';
    out.flush();
  };
  try {
    manager.followValues(specificationId, options);
  } catch (const std::exception& e) {
    printException(e);
    return EXIT_PROBLEMS;
  }
  {
    std::lock_guard<std::mutex> lock(printing);
    out << "watching; stop with Ctrl-C" << std::endl;
  }
  int signal = 0;
  sigwait(&stop, &signal);
  manager.stopFollowing();
  return EXIT_CLEAN;
}

}  // namespace zelk::configtool
