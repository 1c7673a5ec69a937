#include "zelk/configuration/impl/FileOpener.h"

#include <sys/stat.h>

#include <cerrno>

#include "zelk/configuration/ConfigurationException.h"
#include "zelk/host/HostFileSystem.h"
#include "zelk/host/HostMainLog.h"
#include "zelk/host/HostProcess.h"
#include "zelk/host/XmlTokenReader.h"
#include "zelk/util/AtomicFile.h"

namespace zelk::configuration::impl {

namespace {

const bool hostInitialised = zelk::host::hostProcessInit();

[[noreturn]] void throwWithReason(ConfigurationException& exception, const std::string& reason) {
  zelk::host::hostAddToMainLog(MAIN_LOG_CATEGORY,
                               (std::string(exception.what()) + ": " + reason).c_str());
  exception.setReason(reason);
  throw exception;
}

}  // namespace

void throwFileNotFound(const std::string& path, std::string reason) {
  if (reason.empty()) {
    struct stat info;
    reason = stat(path.c_str(), &info) != 0 ? zelk::host::hostSystemErrorText(errno)
                                            : std::string("it cannot be opened");
  }
  ConfigurationException exception("File \"%s\" was not found", path.c_str());
  throwWithReason(exception, reason);
}

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
    throwWithReason(error, reader.getFailureReason().empty() ? std::string(reader.getErrorText())
                                                             : reader.getFailureReason());
  }
  // The reader's text names the file, its size and the limit; the path is an argument, never part
  // of the format.
  ConfigurationException error("%s", reader.getErrorText());
  error.setPosition(position);
  throw error;
}

void writeWholeFile(const std::string& path, const std::string& text) {
  const FileWriteResult result = replaceFile(path, text);
  if (!result) {
    ConfigurationException exception("File \"%s\" cannot be written", path.c_str());
    throwWithReason(exception, result.reason);
  }
}

}  // namespace zelk::configuration::impl
