// ConfigurationRegistryLoaderImpl: reads one configuration registry file with the host's token
// reader and creates what it declares through the Factory, in the manager it was built for.
//
//   ConfigurationRegistryLoaderImpl loader(manager);   // null: the process-wide manager
//   loader.loadFile("/etc/zelk/zelk.crg", 0);
//
// The file is a root ConfigurationRegistry (optional crgSchemaVersion, at most
// CURRENT_SCHEMA_VERSION) holding the optional sections Enumerations, Parameters, Groups and
// Specifications, in this order. Element nesting is bounded by
// zelk::host::XmlTokenReader::MAX_NESTING_DEPTH, also for the items that a GroupRef copies, and
// attribute values are cut at MAX_ATTRIBUTE_LENGTH characters (those longer than the reader's text
// limit are refused). A file larger than the manager's getMaxFileSize() is refused unread.
//
// Every error it throws carries its SourcePosition as data (ConfigurationException::getPosition,
// and ValidationErrors::getPosition for each error of a ValidationException): the file, and for a
// problem with an element the line and column where the element starts, its name and the
// attribute concerned (the missing one, the one whose value is refused); for a syntax error the
// place the reader stopped at. Only the byte offset of the element being read is kept while
// reading; lines and columns are counted when a problem is reported.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/SourcePosition.h"
#include "zelk/configuration/impl/Version.h"
#include "zelk/host/XmlTokenReader.h"

namespace zelk::configuration {

class ConfigurationManager;
class EnumDefinition;
class Group;
class GroupItemCollection;

namespace impl {

class ConfigurationRegistryLoaderImpl {
public:
  // The newest schema version this loader reads: 1.1.
  static const Version CURRENT_SCHEMA_VERSION;
  // Attribute values longer than this are cut.
  static const std::size_t MAX_ATTRIBUTE_LENGTH = 1024;
  // The most group items that the GroupRef elements of one file may copy; a guard against files
  // whose groups reference each other so that the copies grow exponentially.
  static const std::size_t MAX_COPIED_ITEMS = 1000000;

  // The loader fills manager, or the process-wide manager when manager is null.
  explicit ConfigurationRegistryLoaderImpl(ConfigurationManager* manager);
  ConfigurationRegistryLoaderImpl(const ConfigurationRegistryLoaderImpl&) = delete;
  ConfigurationRegistryLoaderImpl& operator=(const ConfigurationRegistryLoaderImpl&) = delete;

  // Reads the file at path (see ConfigurationRegistryLoader::loadFile for what it throws); flags
  // are not used.
  void loadFile(const char* path, int flags);
  // The same for a registry held in memory; name stands for the file in error texts.
  void loadBuffer(const char* data, std::size_t size, const char* name, int flags);

  ConfigurationManager* getManager() const { return mManager; }

private:
  // One attribute an element accepts, and what the file gave for it.
  struct Attribute {
    const char* name;
    bool required;
    std::string value;
  };
  // The most attributes an element accepts.
  static constexpr std::size_t MAX_ATTRIBUTES = 8;

  void readDocument();
  // Reads one element with read, whose opening "<name" was taken at byte offset start: any error
  // thrown or recorded while reading it that has no position yet is placed at the element.
  template <typename Read>
  bool readElementAt(const char* element, std::size_t start, Read&& read);
  // The position of the element being read, with attribute (may be null).
  SourcePosition placeOf(const char* attribute) const;
  // When the manager keeps positions: tells it that item's "default" attribute stands at byte
  // offset start (0: at the element being read).
  void keepDefaultPosition(const void* item, std::size_t start) const;
  // Throws error placed at the element being read and its attribute.
  [[noreturn]] void throwAt(const char* attribute, ConfigurationException error) const;
  bool readRoot();
  bool readRootStart(std::string& prefix, std::string& schemaVersion);

  // Token helpers; each returns false when the token is missing, the reader then holding the
  // warning.
  bool expectToken(const char* token);
  // Reads name="value" pairs until ">" or "/>" (not consumed); an attribute of another name is
  // reported as unexpected.
  bool readAttributes(Attribute* attributes, std::size_t count);
  // The first required attribute that is missing or empty becomes the "missing attribute: "
  // error text.
  bool checkRequired(const Attribute* attributes, std::size_t count);
  // Consumes "/>" (true, and empty is set) or ">" (true, empty cleared).
  bool closeStartTag(bool& empty);
  // Consumes the "/>" of an element that has no content.
  bool closeEmptyElement();
  // Skips comments; true when endTag comes next (consumed). At the end of the input the end tag
  // is reported as missing.
  bool atEndTag(const char* endTag);

  typedef bool (ConfigurationRegistryLoaderImpl::*ElementReader)();
  bool readSection(const char* startTag, const char* emptyTag, const char* endTag,
                   const char* elementTag, ElementReader readElement);

  bool readEnumeration();
  bool readEnumValue(EnumDefinition* enumDefinition);
  bool readParameter();
  bool readGroup();
  bool readSpecification();
  bool readItems(GroupItemCollection* collection, const char* endTag);
  bool readContainer(GroupItemCollection* collection);
  bool readConstraint(GroupItemCollection* collection, bool oneOf);
  bool readGroupRef(GroupItemCollection* collection);
  bool readParameterRef(GroupItemCollection* collection);

  // Whether copying group's items at the current depth stays within the nesting and copy bounds;
  // records the error text when not.
  bool checkCopyBounds(const Group& group);
  // Records text with the current position as the reader's error.
  void fail(const std::string& text);

  static bool asBoolean(const std::string& text);

  ConfigurationManager* mManager;
  zelk::host::XmlTokenReader mReader;
  // The group whose items are being read: it is not visible to its own GroupRef elements.
  const Group* mCurrentGroup = nullptr;
  std::size_t mCopiedItems = 0;
  // Whether the manager keeps positions, read when a document starts.
  bool mKeepPositions = false;
  // While positions are kept: the byte offset of each attribute that readAttributes read last,
  // by its index in the element's table (0 when not given).
  std::size_t mAttributeStarts[MAX_ATTRIBUTES] = {};
  // The element being read: its name and the byte offset of its "<".
  const char* mElement = nullptr;
  std::size_t mElementStart = 0;
  // Where the error text the loader recorded itself (missing attribute, bounds) stands.
  SourcePosition mErrorPosition;
  char mBuffer[MAX_ATTRIBUTE_LENGTH + 1];
};

}  // namespace impl
}  // namespace zelk::configuration
