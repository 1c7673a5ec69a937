// FileOpener: the one way the registry loader and the XML value file provider open their files,
// so that both refuse an oversized file alike, before reading it.
//
//   zelk::host::XmlTokenReader reader;
//   openXmlFile(reader, path, manager->getMaxFileSize());   // throws when missing or too large
#pragma once

#include <cstddef>

namespace zelk::host {
class XmlTokenReader;
}

namespace zelk::configuration::impl {

// Opens path with reader, which refuses files larger than maxFileSize bytes. Throws
// ConfigurationException "File "%s" was not found" when the file cannot be opened, and "File
// "<path>" is <size> bytes long, more than the limit of <limit> bytes" when it is too large ("File
// "<path>" is more than the limit of <limit> bytes long" for a pipe, with " (it grew while it was
// read)" for a file that grew past the limit while it was read).
void openXmlFile(zelk::host::XmlTokenReader& reader, const char* path, std::size_t maxFileSize);

}  // namespace zelk::configuration::impl
