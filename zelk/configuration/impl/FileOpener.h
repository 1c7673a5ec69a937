// FileOpener: the one way the library opens and replaces its files, so that the registry loader,
// the XML value file provider and the value file writer refuse and report alike.
//
//   zelk::host::XmlTokenReader reader;
//   openXmlFile(reader, path, manager->getMaxFileSize());   // throws when missing or too large
//
// The library's messages for a file it cannot use are fixed texts ("File "x" was not found",
// "File "x" cannot be written"). The system's reason ("Permission denied", "it is a FIFO, not a
// regular file", "No space left on device") goes with them: into the host's main log, as
// "File "x" was not found: <reason>", and onto the exception (ConfigurationException::getReason),
// where a tool can print it.
#pragma once

#include <cstddef>
#include <string>

namespace zelk::host {
class XmlTokenReader;
}

namespace zelk::configuration::impl {

// The category of every main-log entry of the library.
constexpr const char* MAIN_LOG_CATEGORY = "Configuration";

// Opens path with reader, which refuses files larger than maxFileSize bytes and files that are
// not regular files. Throws ConfigurationException "File "%s" was not found" (with the reason)
// when the file cannot be opened, and "File "<path>" is <size> bytes long, more than the limit of
// <limit> bytes" when it is too large (" (it grew while it was read)" for a file that grew past
// the limit while it was read).
void openXmlFile(zelk::host::XmlTokenReader& reader, const char* path, std::size_t maxFileSize);

// Logs "File "<path>" was not found: <reason>" and throws ConfigurationException "File "%s" was
// not found" carrying reason. With an empty reason, the reason stat() gives for path.
[[noreturn]] void throwFileNotFound(const std::string& path, std::string reason);

// Replaces the file at path with text (whole or not at all, see zelk/util/AtomicFile.h). On
// failure logs "File "<path>" cannot be written: <reason>" and throws ConfigurationException
// "File "%s" cannot be written" carrying the reason; the old file is then untouched.
void writeWholeFile(const std::string& path, const std::string& text);

}  // namespace zelk::configuration::impl
