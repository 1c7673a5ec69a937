// -readKey -cluster settings: the value document an etcd key holds, with its revision.

#include <exception>

#include "Command.h"
#include "CommandLine.h"
#include "Commands.h"
#include "Output.h"
#include "OutputFormat.h"
#include "zelk/configuration/EtcdSource.h"
#include "zelk/configuration/impl/EtcdClient.h"

namespace zelk::configtool {

int runReadKey(const CommandContext& context) {
  try {
    const configuration::EtcdSource source = configuration::EtcdSource::parse(*context.options.etcd);
    configuration::impl::EtcdClient client(source);
    const configuration::impl::EtcdClient::Range read = client.range(source.key);
    KeyContent content;
    content.endpoint = client.getEndpoint();
    content.key = source.key;
    content.found = read.found;
    content.revision = read.modRevision;
    content.document = read.value;
    chosenFormat(context.options).writeKey(context.out, content);
  } catch (const std::exception& e) {
    printException(e);
    return EXIT_PROBLEMS;
  }
  return EXIT_CLEAN;
}

}  // namespace zelk::configtool
