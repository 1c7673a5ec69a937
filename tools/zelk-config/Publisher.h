// Publisher: puts a value file into an etcd key for -values -publish, as a compare-and-swap on the
// revision the file was edited from, so that two people publishing at once never overwrite each
// other unseen: the second is told the newer revision and nothing of theirs is written.
//
//   Options options = ...;   // -cluster, -revision
//   int status = publishValueFile(options, "/tmp/fleet.xml", std::cout);
#pragma once

#include <iosfwd>
#include <string>

namespace zelk::configtool {

struct Options;

// Publishes path to the key of options.etcd (-cluster) if the key is at options.revision (without it: at the
// revision read just before). Writes what was done to out and returns EXIT_CLEAN; reports the
// problem and returns EXIT_PROBLEMS when the key moved on, the cluster cannot be reached or the
// file cannot be read.
int publishValueFile(const Options& options, const std::string& path, std::ostream& out);

}  // namespace zelk::configtool
