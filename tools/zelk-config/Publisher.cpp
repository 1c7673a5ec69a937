#include "Publisher.h"

#include <exception>
#include <fstream>
#include <ostream>
#include <sstream>

#include "CommandLine.h"
#include "Output.h"
#include "zelk/configuration/EtcdSource.h"
#include "zelk/configuration/impl/EtcdClient.h"

namespace zelk::configtool {

int publishValueFile(const Options& options, const std::string& path, std::ostream& out) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  if (!in) {
    printError("cannot read \"" + path + "\" to publish it");
    return EXIT_PROBLEMS;
  }
  try {
    const configuration::EtcdSource source = configuration::EtcdSource::parse(*options.etcd);
    configuration::impl::EtcdClient client(source);
    const long long expected =
        options.revision ? *options.revision : client.range(source.key).modRevision;
    const configuration::impl::EtcdClient::Swap swap =
        client.compareAndSwap(source.key, text.str(), expected);
    if (!swap.succeeded) {
      const std::string now = swap.currentModRevision == 0
                                  ? std::string("does not exist")
                                  : "is at revision " + std::to_string(swap.currentModRevision);
      printError("nothing was published: the etcd key \"" + source.key + "\" " + now +
                 ", not at revision " + std::to_string(expected) +
                 ", so it was changed since; look at it with -readKey, carry your edit over and "
                 "publish again with -revision " + std::to_string(swap.currentModRevision));
      return EXIT_PROBLEMS;
    }
    out << "Published \"" << path << "\" to the etcd key " << source.key << " at "
        << client.getEndpoint() << ": revision " << swap.revision << '\n';
  } catch (const std::exception& e) {
    printException(e);
    return EXIT_PROBLEMS;
  }
  return EXIT_CLEAN;
}

}  // namespace zelk::configtool
