// Installation: a temporary host installation (etc, plugins and config directories, an empty main
// registry) that the process-wide configuration manager starts from; removed on destruction.
//
//   bench::Installation& here = bench::Installation::instance();
//   zelk::configuration::ConfigurationManager* m = zelk::configuration::ConfigurationManager::getInstance();
#pragma once

#include <string>

namespace bench {

class Installation {
public:
  // The one installation of the process, created and made the host's directories on first use.
  static Installation& instance();

  const std::string& root() const { return mRoot; }
  const std::string& etc() const { return mEtc; }
  // Makes this installation's directories the host's again (after a benchmark moved them).
  void activate() const;

private:
  Installation();
  ~Installation();

  std::string mRoot;
  std::string mEtc;
};

}  // namespace bench
