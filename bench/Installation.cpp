#include "Installation.h"

#include <cstdlib>
#include <iostream>
#include <stdexcept>

#include "Workload.h"
#include "zelk/host/HostDirectories.h"

namespace bench {

Installation& Installation::instance() {
  static Installation installation;
  return installation;
}

Installation::Installation() : mRoot(makeTempDir("install")), mEtc(mRoot + "/etc") {
  for (const char* dir : {"/etc", "/plugins", "/config"}) {
    if (std::system(("mkdir -p '" + mRoot + dir + "'").c_str()) != 0) {
      throw std::runtime_error("cannot create " + mRoot + dir);
    }
  }
  writeFile(mEtc + "/zelk.crg",
            "<?xml version=\"1.0\"?>\n<ConfigurationRegistry crgSchemaVersion=\"1.1\">\n"
            "</ConfigurationRegistry>\n");
  activate();
}

Installation::~Installation() {
  if (std::system(("rm -rf '" + mRoot + "'").c_str()) != 0) {
    std::cerr << "could not remove " << mRoot << '\n';
  }
}

void Installation::activate() const {
  zelk::host::hostSetDirectories(mEtc.c_str(), (mRoot + "/plugins").c_str(),
                                 (mRoot + "/config").c_str());
}

}  // namespace bench
