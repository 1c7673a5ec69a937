// RegistryChecker: loads registry files into a configuration manager of its own and reports
// every problem, each at its file, line and column where it has one:
//   - what the loader rejects, with the library's own message, at the place the loader gives;
//   - what loads but fails later, when a tool reads its values: one-ofs and logical groups with
//     fewer than two children, required logical groups without a required member, defaults that
//     a parameter's validator rejects, names declared twice;
//   - "hidden" on one-ofs and logical groups, which has no effect;
//   - parameters that no specification uses (only when every file loaded).
//
//   RegistryChecker checker;
//   checker.check({"etc/zelk.crg", "plugins/audit/audit.crg"});
//   checker.print(std::cout);
//   return checker.getFindings().empty() ? 0 : 1;
#pragma once

#include <cstddef>
#include <iosfwd>
#include <set>
#include <string>
#include <vector>

#include "RegistryIndex.h"

namespace zelk::configuration {
class ConfigurationManager;
struct SourcePosition;
}  // namespace zelk::configuration

namespace zelk::configtool {

struct Finding {
  static constexpr std::size_t NO_FILE = static_cast<std::size_t>(-1);

  std::size_t file = NO_FILE;  // the file's number in the index
  unsigned int line = 0;       // 0 when the place in the file is not known
  unsigned int column = 0;
  std::string message;
};

class RegistryChecker {
public:
  // Loads the files in order into a new manager (with the default validators and the validator
  // plug-ins of the host's plug-ins directory) and collects the problems. A file that fails to
  // load is reported and the next one is loaded all the same.
  // A maxFileSize other than 0 replaces the library's limit on the size of each file.
  void check(const std::vector<std::string>& files, std::size_t maxFileSize = 0);

  // A problem that belongs to no file, such as a missing main registry.
  void addProblem(const std::string& message);

  // The problems, in file order and then by position.
  std::vector<Finding> getFindings() const;

  // Writes each problem as "<file>:<line>:<column>: <message>" ("<file>: <message>" when the
  // place is not known), then a summary line.
  void print(std::ostream& out) const;

private:
  void loadFile(std::size_t file, configuration::ConfigurationManager& manager);
  void checkFiles();
  void checkModel(configuration::ConfigurationManager& manager);
  void add(const ElementRecord* where, std::size_t file, const std::string& message);
  void add(std::size_t file, const configuration::SourcePosition& position,
           const std::string& message);
  void add(std::size_t file, unsigned int line, unsigned int column, const std::string& message);

  RegistryIndex mIndex;
  std::vector<Finding> mFindings;
  bool mLoadFailed = false;
  std::set<std::string> mSeen;  // file:line:column: message, so that nothing is said twice
};

}  // namespace zelk::configtool
