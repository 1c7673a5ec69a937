// XmlFileValueProviderImpl: reads an XML value file once, and answers each specification with the
// matched part of it.
//
// The file is kept as a compact document until the first request, which turns it into a value
// tree, rewriting parameters written as elements (the form used for values given several times)
// into plain values; the tree rewritten for that first specification is kept for later ones on
// purpose, and the document is dropped.
//
//   XmlFileValueProviderImpl impl(3, "");
//   impl.setArguments("/etc/backup/values.xml", 0);
//   ValueGroup raw = impl.getSpecificationValues(*spec, 0);
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "zelk/configuration/SourcePosition.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/impl/ValueProviderImpl.h"
#include "zelk/configuration/impl/XmlValueDocument.h"

namespace zelk::host {
class XmlTokenReader;
}

namespace zelk::configuration::impl {

class XmlFileValueProviderImpl : public ValueProviderImpl {
public:
  XmlFileValueProviderImpl(int priority, const std::string& description);
  ~XmlFileValueProviderImpl() override;

  // Loads the file at path. Throws ConfigurationException "File \"%s\" was not found" when it
  // cannot be opened, ConfigurationException naming its size and the limit when it is larger than
  // getMaxFileSize() (see openXmlFile), and ValidationException with the reader's message when it
  // is malformed; in each case the tree loaded before stays.
  void setArguments(const char* path, int options) override;
  // Loads argv[0]; throws ConfigurationException "Must provide at least one argument" when argc
  // is not positive.
  void setArguments(int argc, const char* const* argv, const char* specificationId,
                    int options) override;

  // A deep copy of the file's tree matched to spec, narrowed to the group matched to spec's items
  // container (a new empty group for spec when there is none). Throws ConfigurationException for a
  // parameter element without a "value" attribute, ValidationException when matching fails.
  ValueGroup getSpecificationValues(const Specification& spec, int options) const override;

  const char* getXmlFilePath() const { return mXmlFilePath.c_str(); }

  // Where each entry of the values of answer, a tree that getValues gave for spec, was written in
  // the file: by the value's instance id, the position of each entry in entry order (the attribute,
  // or the "value" attribute of a parameter written as an element); by a group's, its element.
  // Empty unless the manager kept positions when the file was loaded
  // (ConfigurationManager::setKeepPositions).
  std::map<uint32_t, std::vector<SourcePosition>> placeEntries(const Specification& spec,
                                                               const ValueGroup& answer) const;

  // The largest file setArguments reads: the limit of the manager the provider is registered
  // with, else the reader's default (64 MiB).
  std::size_t getMaxFileSize() const;

  // The attributes of each element named name directly below the root, elements and attributes
  // in document order. Answers from the document as loaded, before the first request.
  std::vector<std::vector<std::pair<std::string, std::string>>> findTopElements(
      const char* name) const;

protected:
  // Places the items of values, a tree that getSpecificationValues gave for spec, by
  // placeEntries; none when positions were not kept.
  ItemPlacer makePlacer(const Specification& spec, const ValueGroup& values) const override;

  // For kinds that read value documents from elsewhere: their own kind, which is also their id.
  XmlFileValueProviderImpl(const char* kind, int priority);
  // Loads a document given as text, named documentName in messages. Throws as setArguments does
  // for a malformed document or one larger than getMaxFileSize(); the tree loaded before stays.
  void loadText(const std::string& text, const std::string& documentName);

private:
  // Loads the document the reader was opened on, replacing the one held.
  void load(zelk::host::XmlTokenReader& reader);

  // The file as read, until the first request turns it into mValues (kept after it when it has
  // the positions of its attributes); before the first load, a document of one empty element
  // named "XML_FILE".
  mutable XmlValueDocument mDocument;
  // The tree rewritten for the first request.
  mutable ValueGroup mValues;
  // The name of the document loaded, for positions.
  std::string mDocumentName;
  // True once mValues was built from mDocument.
  mutable bool mFixed;
  // The specification mValues was rewritten for.
  mutable const Specification* mBuiltFor;
  std::string mXmlFilePath;
};

}  // namespace zelk::configuration::impl
