#include "zelk/configuration/impl/ConfigurationRegistryLoaderImpl.h"

#include <strings.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/Container.h"
#include "zelk/configuration/EnumDefinition.h"
#include "zelk/configuration/Group.h"
#include "zelk/configuration/GroupItemCollection.h"
#include "zelk/configuration/LogicalGroup.h"
#include "zelk/configuration/OneOf.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/impl/ConfigurationManagerImpl.h"
#include "zelk/configuration/impl/Convert.h"
#include "zelk/configuration/impl/EnumDefinitionImpl.h"
#include "zelk/configuration/impl/Factory.h"
#include "zelk/configuration/impl/FileOpener.h"
#include "zelk/configuration/impl/ValueTypeTable.h"
#include "zelk/host/HostProcess.h"

namespace zelk::configuration::impl {

namespace {

const bool hostInitialised = zelk::host::hostProcessInit();

const char* const ROOT_NAME = "ConfigurationRegistry";

// Tokens quoted in our own error texts are cut like the reader cuts its own.
const std::size_t MAX_TOKEN_IN_MESSAGE = 64;

std::string quoteToken(const std::string& token) {
  if (token.size() <= MAX_TOKEN_IN_MESSAGE) {
    return "\"" + token + "\"";
  }
  std::size_t cut = MAX_TOKEN_IN_MESSAGE;
  while (cut > 0 && (static_cast<unsigned char>(token[cut]) & 0xC0) == 0x80) {
    --cut;  // not inside a UTF-8 sequence
  }
  return "\"" + token.substr(0, cut) + "...\"";
}

int32_t characteristics(bool optional, bool unbounded, bool hidden) {
  return (optional ? GroupItem::OPTIONAL : 0) | (unbounded ? GroupItem::UNBOUNDED : 0) |
         (hidden ? GroupItem::HIDDEN : 0);
}

}  // namespace

const Version ConfigurationRegistryLoaderImpl::CURRENT_SCHEMA_VERSION(1, 1);

ConfigurationRegistryLoaderImpl::ConfigurationRegistryLoaderImpl(ConfigurationManager* manager)
    : mManager(manager != nullptr ? manager : ConfigurationManager::getInstance()) {
  mBuffer[0] = '\0';
}

void ConfigurationRegistryLoaderImpl::loadFile(const char* path, int /*flags*/) {
  openXmlFile(mReader, path, mManager->getMaxFileSize());
  readDocument();
}

void ConfigurationRegistryLoaderImpl::loadBuffer(const char* data, std::size_t size,
                                                 const char* name, int /*flags*/) {
  mReader.openBuffer(data, size, name);
  readDocument();
}

void ConfigurationRegistryLoaderImpl::readDocument() {
  mCurrentGroup = nullptr;
  mCopiedItems = 0;
  mElement = nullptr;
  mElementStart = 0;
  mErrorPosition = SourcePosition();
  mKeepPositions = mManager->getImpl()->getKeepPositions();
  readRoot();
  if (mReader.hasError()) {
    // The text may quote the file; it is read as a format without arguments, never formatted.
    ValidationErrors errors;
    errors.addErrorAsFormat(mReader.getErrorText());
    if (!mErrorPosition.isKnown()) {
      // A syntax error outside every element but the root.
      mErrorPosition = placeOf(nullptr);
      if (!mReader.getErrorPosition(mErrorPosition.line, mErrorPosition.column)) {
        mErrorPosition.line = 0;
        mErrorPosition.column = 0;
      }
    }
    errors.setPosition(0, mErrorPosition);
    errors.throwIfErrors();
  }
}

template <typename Read>
bool ConfigurationRegistryLoaderImpl::readElementAt(const char* element, std::size_t start,
                                                    Read&& read) {
  const char* outerElement = mElement;
  const std::size_t outerStart = mElementStart;
  mElement = element;
  mElementStart = start;
  bool done = false;
  try {
    done = read();
  } catch (ConfigurationException& e) {
    if (!e.getPosition().isKnown()) e.setPosition(placeOf(nullptr));
    mElement = outerElement;
    mElementStart = outerStart;
    throw;
  }
  // A syntax error the reader found inside this element (an unknown attribute, a stray token)
  // stands where the reader stopped, in this element.
  unsigned int line = 0;
  unsigned int column = 0;
  if (!done && !mErrorPosition.isKnown() && mReader.getErrorPosition(line, column)) {
    mErrorPosition = placeOf(nullptr);
    mErrorPosition.line = line;
    mErrorPosition.column = column;
  }
  mElement = outerElement;
  mElementStart = outerStart;
  return done;
}

SourcePosition ConfigurationRegistryLoaderImpl::placeOf(const char* attribute) const {
  SourcePosition position;
  position.file = mReader.getDocumentName();
  mReader.lineAndColumn(mElementStart, position.line, position.column);
  if (mElement != nullptr) position.element = mElement;
  if (attribute != nullptr) position.attribute = attribute;
  return position;
}

void ConfigurationRegistryLoaderImpl::keepDefaultPosition(const void* item,
                                                          std::size_t start) const {
  if (!mKeepPositions) return;
  SourcePosition position = placeOf("default");
  if (start != 0) mReader.lineAndColumn(start, position.line, position.column);
  mManager->getImpl()->keepDefaultPosition(item, position);
}

void ConfigurationRegistryLoaderImpl::throwAt(const char* attribute,
                                              ConfigurationException error) const {
  error.setPosition(placeOf(attribute));
  throw error;
}

void ConfigurationRegistryLoaderImpl::fail(const std::string& text) {
  std::string message = text + " at " + mReader.describePosition();
  if (*mReader.getDocumentName() != '\0') {
    message += " in \"" + std::string(mReader.getDocumentName()) + "\"";
  }
  mReader.setErrorText(message.c_str());
  mErrorPosition = placeOf(nullptr);
}

bool ConfigurationRegistryLoaderImpl::readRoot() {
  std::string prefix;
  std::string schemaVersion;
  if (!readRootStart(prefix, schemaVersion)) {
    return false;
  }
  bool empty = false;
  if (!closeStartTag(empty)) {
    return false;
  }
  if (!schemaVersion.empty()) {
    const Version version = Version::parse(schemaVersion.c_str());
    if (version.compareTo(CURRENT_SCHEMA_VERSION) > 0) {
      throwAt("crgSchemaVersion",
              ConfigurationException("Unsupported CRG schema version %s. Current version: %s.",
                                     version.asString().c_str(),
                                     CURRENT_SCHEMA_VERSION.asString().c_str()));
    }
  }
  if (!mReader.enterElement()) {
    return false;
  }
  if (empty) {
    return true;  // "<ConfigurationRegistry/>": a registry that declares nothing
  }
  // A section that fails ends the root: the later sections are not read.
  if (!readSection("<Enumerations>", "<Enumerations/>", "</Enumerations>", "<Enumeration",
                   &ConfigurationRegistryLoaderImpl::readEnumeration) ||
      !readSection("<Parameters>", "<Parameters/>", "</Parameters>", "<Parameter",
                   &ConfigurationRegistryLoaderImpl::readParameter) ||
      !readSection("<Groups>", "<Groups/>", "</Groups>", "<Group",
                   &ConfigurationRegistryLoaderImpl::readGroup) ||
      !readSection("<Specifications>", "<Specifications/>", "</Specifications>", "<Specification",
                   &ConfigurationRegistryLoaderImpl::readSpecification)) {
    return false;
  }
  const std::string endTag = "</" + prefix + ROOT_NAME + ">";
  if (!expectToken(endTag.c_str())) {
    return false;
  }
  mReader.leaveElement();
  return true;
}

bool ConfigurationRegistryLoaderImpl::readRootStart(std::string& prefix,
                                                    std::string& schemaVersion) {
  mReader.skipComments();
  mElement = ROOT_NAME;
  mElementStart = mReader.getOffset();
  if (!mReader.acceptToken("<ConfigurationRegistry")) {
    // A namespace prefix ("<crg:ConfigurationRegistry") is allowed; it is repeated in the end tag.
    if (!mReader.atToken("<")) {
      mReader.warnUnexpected("<ConfigurationRegistry");
      return false;
    }
    const std::string where = mReader.describePosition();
    mReader.acceptToken("<");
    mBuffer[0] = '\0';
    mReader.acceptValue(mBuffer, sizeof mBuffer);
    const std::string name(mBuffer);
    const std::string::size_type colon = name.rfind(':');
    if (colon == std::string::npos || name.compare(colon + 1, std::string::npos, ROOT_NAME) != 0) {
      std::string message = "Unexpected " + quoteToken("<" + name) + " at " + where;
      if (*mReader.getDocumentName() != '\0') {
        message += " in \"" + std::string(mReader.getDocumentName()) + "\"";
      }
      message += "; expected \"<ConfigurationRegistry\"";
      mReader.setErrorText(message.c_str());
      return false;
    }
    prefix = name.substr(0, colon + 1);
  }
  // crgSchemaVersion is kept; any other name="value" pair (xmlns and the like) is skipped.
  for (;;) {
    if (mReader.atToken(">") || mReader.atToken("/>")) {
      return true;
    }
    if (mReader.acceptNameAndValue("crgSchemaVersion", mBuffer, sizeof mBuffer)) {
      schemaVersion.assign(mBuffer);
      continue;
    }
    if (mReader.acceptValue(mBuffer, sizeof mBuffer) && mReader.acceptToken("=") &&
        mReader.acceptValue(mBuffer, sizeof mBuffer)) {
      continue;
    }
    mReader.warnUnexpected();
    return false;
  }
}

bool ConfigurationRegistryLoaderImpl::expectToken(const char* token) {
  mReader.skipComments();
  if (mReader.acceptToken(token)) {
    return true;
  }
  mReader.warnUnexpected(token);
  return false;
}

bool ConfigurationRegistryLoaderImpl::readAttributes(Attribute* attributes, std::size_t count) {
  if (mKeepPositions) std::fill(mAttributeStarts, mAttributeStarts + MAX_ATTRIBUTES, 0);
  for (;;) {
    if (mReader.atToken(">") || mReader.atToken("/>")) {
      return true;
    }
    bool matched = false;
    // The tests above skipped the white space before the name.
    const std::size_t start = mReader.getOffset();
    for (std::size_t i = 0; i < count && !matched; ++i) {
      if (mReader.acceptNameAndValue(attributes[i].name, mBuffer, sizeof mBuffer)) {
        attributes[i].value.assign(mBuffer);
        if (mKeepPositions && i < MAX_ATTRIBUTES) mAttributeStarts[i] = start;
        matched = true;
      }
    }
    if (!matched) {
      mReader.warnUnexpected();  // an unknown attribute, or no attribute at all
      return false;
    }
  }
}

bool ConfigurationRegistryLoaderImpl::checkRequired(const Attribute* attributes,
                                                    std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    if (attributes[i].required && attributes[i].value.empty()) {
      mReader.setErrorText((std::string("missing attribute: ") + attributes[i].name).c_str());
      mErrorPosition = placeOf(attributes[i].name);
      return false;
    }
  }
  return true;
}

bool ConfigurationRegistryLoaderImpl::closeStartTag(bool& empty) {
  if (mReader.acceptToken("/>")) {
    empty = true;
    return true;
  }
  if (mReader.acceptToken(">")) {
    empty = false;
    return true;
  }
  mReader.warnUnexpected(">");
  return false;
}

bool ConfigurationRegistryLoaderImpl::closeEmptyElement() {
  if (mReader.acceptToken("/>")) {
    return true;
  }
  mReader.warnUnexpected("/>");
  return false;
}

bool ConfigurationRegistryLoaderImpl::atEndTag(const char* endTag) {
  mReader.skipComments();
  if (mReader.acceptToken(endTag)) {
    return true;
  }
  if (mReader.atEnd()) {
    mReader.warnUnexpected(endTag);  // the end of the input counts as the end, with a warning
    return true;
  }
  return false;
}

bool ConfigurationRegistryLoaderImpl::readSection(const char* startTag, const char* emptyTag,
                                                  const char* endTag, const char* elementTag,
                                                  ElementReader readElement) {
  mReader.skipComments();
  if (mReader.acceptToken(emptyTag)) {
    return true;
  }
  if (!mReader.acceptToken(startTag)) {
    return !mReader.hasError();  // the section is optional
  }
  if (!mReader.enterElement()) {
    return false;
  }
  while (!atEndTag(endTag)) {
    const std::size_t start = mReader.getOffset();
    if (!mReader.acceptToken(elementTag)) {
      mReader.warnUnexpected();
      return false;
    }
    if (!readElementAt(elementTag + 1, start, [&] { return (this->*readElement)(); })) {
      return false;
    }
  }
  mReader.leaveElement();
  return !mReader.hasError();
}

bool ConfigurationRegistryLoaderImpl::readEnumeration() {
  if (!mReader.enterElement()) {
    return false;
  }
  Attribute attributes[] = {{"id", true, {}}};
  bool empty = false;
  if (!readAttributes(attributes, 1) || !checkRequired(attributes, 1) || !closeStartTag(empty)) {
    return false;
  }
  const char* id = attributes[0].value.c_str();
  if (mManager->getEnumDefinition(id) != nullptr) {
    throwAt("id", ConfigurationException("The \"%s\" enumeration has already been defined", id));
  }
  EnumDefinition* enumDefinition = Factory::createEnumDefinition(id, mManager);
  if (!empty) {
    while (!atEndTag("</Enumeration>")) {
      const std::size_t start = mReader.getOffset();
      if (!mReader.acceptToken("<Value")) {
        mReader.warnUnexpected();
        return false;
      }
      if (!readElementAt("Value", start, [&] { return readEnumValue(enumDefinition); })) {
        return false;
      }
    }
    if (mReader.hasError()) {
      return false;
    }
  }
  mReader.leaveElement();
  return true;
}

bool ConfigurationRegistryLoaderImpl::readEnumValue(EnumDefinition* enumDefinition) {
  if (!mReader.enterElement()) {
    return false;
  }
  Attribute attributes[] = {{"label", true, {}}, {"value", false, {}}};
  if (!readAttributes(attributes, 2) || !checkRequired(attributes, 2) || !closeEmptyElement()) {
    return false;
  }
  const std::string& label = attributes[0].value;
  const std::string& value = attributes[1].value;
  if (value.empty()) {
    // The automatic number after 2147483647 would wrap to -2147483648 and silently give the
    // symbol another symbol's meaning in a comparison; it is refused instead.
    if (enumDefinition->getNumberOfValues() > 0 &&
        enumDefinition->getImpl()->getNextValue() == INT32_MIN) {
      throwAt("label", ConfigurationException("The value of \"%s\" in the \"%s\" enumeration "
                                              "would be 2147483648, beyond the 32-bit range",
                                              label.c_str(), enumDefinition->getName()));
    }
    Factory::addEnumValue(enumDefinition, label.c_str());  // numbered automatically
  } else {
    ValidationErrors errors;
    const int32_t number = Convert::asInt32(value.c_str(), &errors);
    if (errors.getNumberOfErrors() > 0) {
      throwAt("value",
              ConfigurationException("\"%s\" is not a valid integer value", value.c_str()));
    }
    Factory::addEnumValue(enumDefinition, label.c_str(), number);
  }
  mReader.leaveElement();
  return true;
}

bool ConfigurationRegistryLoaderImpl::readParameter() {
  if (!mReader.enterElement()) {
    return false;
  }
  enum { ID, NAME, TYPE, ENUM_TYPE, VALUE_NAME, DESCRIPTION, VALIDATOR, DEFAULT, COUNT };
  Attribute attributes[COUNT] = {{"id", true, {}},         {"name", false, {}},
                                 {"type", true, {}},       {"enumType", false, {}},
                                 {"valueName", false, {}}, {"description", true, {}},
                                 {"validator", false, {}}, {"default", false, {}}};
  if (!readAttributes(attributes, COUNT)) {
    return false;
  }
  attributes[ENUM_TYPE].required = attributes[TYPE].value == "enum";
  if (!checkRequired(attributes, COUNT) || !closeEmptyElement()) {
    return false;
  }
  const Validator* validator = nullptr;
  if (!attributes[VALIDATOR].value.empty()) {
    validator = mManager->getValidator(attributes[VALIDATOR].value.c_str());
    if (validator == nullptr) {
      throwAt("validator", ConfigurationException("The \"%s\" validator was not found",
                                                  attributes[VALIDATOR].value.c_str()));
    }
  }
  const ValueTypeInfo* type = ValueTypeTable::findWord(attributes[TYPE].value);
  if (type == nullptr) {
    throwAt("type", ConfigurationException("\"%s\" is not a recognized type",
                                           attributes[TYPE].value.c_str()));
  }
  const EnumDefinition* enumDefinition = nullptr;
  if (type->type == Parameter::ENUM) {
    enumDefinition = mManager->getEnumDefinition(attributes[ENUM_TYPE].value.c_str());
    if (enumDefinition == nullptr) {
      throwAt("enumType", ConfigurationException("The \"%s\" enumeration was not found",
                                                 attributes[ENUM_TYPE].value.c_str()));
    }
  }
  Parameter* parameter = Factory::createParameter(
      attributes[ID].value.c_str(), attributes[NAME].value.c_str(),
      attributes[DESCRIPTION].value.c_str(), type->type, attributes[VALUE_NAME].value.c_str(),
      validator, enumDefinition, mManager);
  if (!attributes[DEFAULT].value.empty()) {
    try {
      Factory::setDefaultValueFor(parameter, attributes[DEFAULT].value.c_str());
    } catch (ConfigurationException& e) {
      e.setPosition(placeOf("default"));
      throw;
    }
    keepDefaultPosition(parameter, mAttributeStarts[DEFAULT]);
  }
  mReader.leaveElement();
  return true;
}

bool ConfigurationRegistryLoaderImpl::readGroup() {
  if (!mReader.enterElement()) {
    return false;
  }
  enum { ID, NAME, DESCRIPTION, COUNT };
  Attribute attributes[COUNT] = {{"id", true, {}}, {"name", false, {}}, {"description", false, {}}};
  bool empty = false;
  if (!readAttributes(attributes, COUNT) || !checkRequired(attributes, COUNT) ||
      !closeStartTag(empty)) {
    return false;
  }
  // The group's id is also its name; the name attribute is read and not used, on purpose.
  const std::string& description =
      attributes[DESCRIPTION].value.empty() ? attributes[ID].value : attributes[DESCRIPTION].value;
  Group* group = Factory::createGroup(attributes[ID].value.c_str(), description.c_str(), mManager);
  if (!empty) {
    mCurrentGroup = group;
    const bool read = readItems(group->getItemsContainer(), "</Group>");
    mCurrentGroup = nullptr;
    if (!read) {
      return false;
    }
  }
  mReader.leaveElement();
  return true;
}

bool ConfigurationRegistryLoaderImpl::readSpecification() {
  if (!mReader.enterElement()) {
    return false;
  }
  enum { ID, NAME, TITLE, DESCRIPTION, OPTIONAL, COUNT };
  Attribute attributes[COUNT] = {{"id", true, {}},
                                 {"name", false, {}},
                                 {"title", false, {}},
                                 {"description", true, {}},
                                 {"optional", false, {}}};
  bool empty = false;
  if (!readAttributes(attributes, COUNT) || !checkRequired(attributes, COUNT) ||
      !closeStartTag(empty)) {
    return false;
  }
  Specification* specification = Factory::createSpecification(
      attributes[ID].value.c_str(), attributes[NAME].value.c_str(), attributes[TITLE].value.c_str(),
      attributes[DESCRIPTION].value.c_str(), asBoolean(attributes[OPTIONAL].value), mManager);
  if (!empty && !readItems(specification->getItemsContainer(), "</Specification>")) {
    return false;
  }
  mReader.leaveElement();
  return true;
}

bool ConfigurationRegistryLoaderImpl::readItems(GroupItemCollection* collection,
                                                const char* endTag) {
  while (!atEndTag(endTag)) {
    const std::size_t start = mReader.getOffset();
    bool read;
    if (mReader.acceptToken("<ParameterRef")) {
      read = readElementAt("ParameterRef", start, [&] { return readParameterRef(collection); });
    } else if (mReader.acceptToken("<Container")) {
      read = readElementAt("Container", start, [&] { return readContainer(collection); });
    } else if (mReader.acceptToken("<LogicalGroup")) {
      read = readElementAt("LogicalGroup", start,
                           [&] { return readConstraint(collection, false); });
    } else if (mReader.acceptToken("<OneOf")) {
      read = readElementAt("OneOf", start, [&] { return readConstraint(collection, true); });
    } else if (mReader.acceptToken("<GroupRef")) {
      read = readElementAt("GroupRef", start, [&] { return readGroupRef(collection); });
    } else {
      mReader.warnUnexpected();
      return false;
    }
    if (!read) {
      return false;
    }
  }
  return !mReader.hasError();
}

bool ConfigurationRegistryLoaderImpl::readContainer(GroupItemCollection* collection) {
  if (!mReader.enterElement()) {
    return false;
  }
  enum { ID, NAME, DESCRIPTION, UNBOUNDED, OPTIONAL, COUNT };
  Attribute attributes[COUNT] = {{"id", true, {}},
                                 {"name", false, {}},
                                 {"description", true, {}},
                                 {"unbounded", false, {}},
                                 {"optional", false, {}}};
  bool empty = false;
  if (!readAttributes(attributes, COUNT) || !checkRequired(attributes, COUNT) ||
      !closeStartTag(empty)) {
    return false;
  }
  Container* container =
      Factory::createContainer(attributes[ID].value.c_str(), attributes[NAME].value.c_str(),
                               attributes[DESCRIPTION].value.c_str(),
                               characteristics(asBoolean(attributes[OPTIONAL].value),
                                               asBoolean(attributes[UNBOUNDED].value), false));
  // Attached before its children are read, so that constraints inside take their ids from it.
  Factory::addItemToGroupItem(collection, container);
  if (!empty && !readItems(container, "</Container>")) {
    return false;
  }
  mReader.leaveElement();
  return true;
}

bool ConfigurationRegistryLoaderImpl::readConstraint(GroupItemCollection* collection, bool oneOf) {
  if (!mReader.enterElement()) {
    return false;
  }
  enum { OPTIONAL, HIDDEN, COUNT };
  Attribute attributes[COUNT] = {{"optional", false, {}}, {"hidden", false, {}}};
  bool empty = false;
  if (!readAttributes(attributes, COUNT) || !closeStartTag(empty)) {
    return false;
  }
  const int32_t flags = characteristics(asBoolean(attributes[OPTIONAL].value), false,
                                        asBoolean(attributes[HIDDEN].value));
  GroupItemCollection* constraint;
  if (oneOf) {
    constraint = Factory::createOneOf(flags);
  } else {
    constraint = Factory::createLogicalGroup(flags);
  }
  // Attached first: the constraint's id is formed from its parent and its position there.
  Factory::addItemToGroupItem(collection, constraint);
  if (!empty && !readItems(constraint, oneOf ? "</OneOf>" : "</LogicalGroup>")) {
    return false;
  }
  mReader.leaveElement();
  return true;
}

bool ConfigurationRegistryLoaderImpl::readGroupRef(GroupItemCollection* collection) {
  if (!mReader.enterElement()) {
    return false;
  }
  Attribute attributes[] = {{"id", true, {}}};
  if (!readAttributes(attributes, 1) || !checkRequired(attributes, 1) || !closeEmptyElement()) {
    return false;
  }
  const char* id = attributes[0].value.c_str();
  // The group being defined is not visible to its own items: copying a container into itself
  // would never end.
  const Group* group = dynamic_cast<const Group*>(mManager->getGroup(id));
  if (group == nullptr || group == mCurrentGroup) {
    throwAt("id", ConfigurationException("Group \"%s\" was not found", id));
  }
  if (!checkCopyBounds(*group)) {
    return false;
  }
  Factory::copyItemToCollection(collection, group->getItemsContainer());
  mReader.leaveElement();
  return true;
}

bool ConfigurationRegistryLoaderImpl::checkCopyBounds(const Group& group) {
  // One walk over the group's tree, without recursion: how many items a copy makes and how deep
  // it reaches. The copied items container takes the GroupRef's place.
  struct Position {
    const GroupItemCollection* collection;
    std::size_t next;
  };
  std::vector<Position> stack;
  stack.push_back(Position{group.getItemsContainer(), 0});
  std::size_t items = 1;
  std::size_t height = 1;
  while (!stack.empty()) {
    Position& top = stack.back();
    if (top.next == top.collection->getNumberOfItems()) {
      stack.pop_back();
      continue;
    }
    const GroupItem* item = top.collection->getItem(top.next++);
    ++items;
    height = std::max(height, stack.size() + 1);
    if (item->getItemType() != GroupItem::PARAMETER_REF) {
      if (const GroupItemCollection* child = dynamic_cast<const GroupItemCollection*>(item)) {
        stack.push_back(Position{child, 0});
      }
    }
  }
  const std::size_t depth = mReader.getDepth() + height - 1;
  if (depth > zelk::host::XmlTokenReader::MAX_NESTING_DEPTH) {
    fail("Elements are nested deeper than " +
         std::to_string(zelk::host::XmlTokenReader::MAX_NESTING_DEPTH) +
         " levels with the items of group " + quoteToken(group.getId()));
    return false;
  }
  mCopiedItems += items;
  if (mCopiedItems > MAX_COPIED_ITEMS) {
    fail("GroupRef elements copy more than " + std::to_string(MAX_COPIED_ITEMS) + " items");
    return false;
  }
  return true;
}

bool ConfigurationRegistryLoaderImpl::readParameterRef(GroupItemCollection* collection) {
  if (!mReader.enterElement()) {
    return false;
  }
  enum { ID, DESCRIPTION, UNBOUNDED, OPTIONAL, HIDDEN, DEFAULT, COUNT };
  Attribute attributes[COUNT] = {{"id", true, {}},         {"description", false, {}},
                                 {"unbounded", false, {}}, {"optional", false, {}},
                                 {"hidden", false, {}},    {"default", false, {}}};
  if (!readAttributes(attributes, COUNT) || !checkRequired(attributes, COUNT) ||
      !closeEmptyElement()) {
    return false;
  }
  const char* id = attributes[ID].value.c_str();
  const Parameter* parameter = dynamic_cast<const Parameter*>(mManager->getParameter(id));
  if (parameter == nullptr) {
    throwAt("id", ConfigurationException("Parameter \"%s\" was not found", id));
  }
  ParameterRef* reference = Factory::createParameterRef(
      parameter,
      characteristics(asBoolean(attributes[OPTIONAL].value), asBoolean(attributes[UNBOUNDED].value),
                      asBoolean(attributes[HIDDEN].value)),
      attributes[DESCRIPTION].value.c_str());
  if (!attributes[DEFAULT].value.empty()) {
    try {
      Factory::setDefaultValueFor(reference, attributes[DEFAULT].value.c_str());
    } catch (ConfigurationException& e) {
      Factory::destroy(reference);  // not attached yet, so nothing else owns it
      e.setPosition(placeOf("default"));
      throw;
    } catch (...) {
      Factory::destroy(reference);
      throw;
    }
    keepDefaultPosition(reference, mAttributeStarts[DEFAULT]);
  }
  Factory::addItemToGroupItem(collection, reference);
  mReader.leaveElement();
  return true;
}

bool ConfigurationRegistryLoaderImpl::asBoolean(const std::string& text) {
  return strcasecmp(text.c_str(), "true") == 0 || text == "1";
}

}  // namespace zelk::configuration::impl
