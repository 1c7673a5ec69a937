#include "zelk/configuration/impl/FileOpener.h"

#include "zelk/configuration/ConfigurationException.h"
#include "zelk/host/HostProcess.h"
#include "zelk/host/XmlTokenReader.h"

namespace zelk::configuration::impl {

namespace {

const bool hostInitialised = zelk::host::hostProcessInit();

}  // namespace

void openXmlFile(zelk::host::XmlTokenReader& reader, const char* path, std::size_t maxFileSize) {
  reader.setMaxFileSize(maxFileSize);
  const char* name = path != nullptr ? path : "";
  if (reader.openFile(path)) {
    return;
  }
  // The file is the whole position: nothing of it was read.
  SourcePosition position;
  position.file = name;
  if (!reader.wasTooLarge()) {
    ConfigurationException error("File \"%s\" was not found", name);
    error.setPosition(position);
    throw error;
  }
  // The reader's text names the file, its size and the limit; the path is an argument, never part
  // of the format.
  ConfigurationException error("%s", reader.getErrorText());
  error.setPosition(position);
  throw error;
}

}  // namespace zelk::configuration::impl
