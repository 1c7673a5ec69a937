// XmlFileValueProvider: the value provider of one XML value file (provider id "XML_FILE").
//
// The manager makes one for each "-loadConfiguration" file, the application's configuration file
// and "machine.config". The file is read once when the provider is given its path: every element
// becomes a value group and every attribute a value of it. Asked for a specification, the provider
// returns the part of the file matched to that specification.
//
//   XmlFileValueProvider file(3, "");
//   file.enableProvider("/etc/backup/values.xml", 0);   // throws when missing or malformed
//   ValueGroup values = file.getValues(*spec, 0x14);
#pragma once

#include <string>

#include "zelk/configuration/ValueProvider.h"

namespace zelk::configuration {

namespace impl {
class XmlFileValueProviderImpl;
}

class XmlFileValueProvider : public ValueProvider {
public:
  // A disabled provider with the given priority and description; its id is "XML_FILE".
  XmlFileValueProvider(int priority, const std::string& description);
  ~XmlFileValueProvider() override;

  // "XML_FILE".
  const char* getName() const override;
  // The path last given, empty before the first.
  const char* getXmlFilePath() const;

  impl::XmlFileValueProviderImpl* getXmlFileImpl() const;
};

}  // namespace zelk::configuration
