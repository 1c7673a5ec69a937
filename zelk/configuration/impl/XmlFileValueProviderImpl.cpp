#include "zelk/configuration/impl/XmlFileValueProviderImpl.h"

#include <cstring>
#include <memory>

#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/Container.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/impl/FileOpener.h"
#include "zelk/configuration/impl/SpecificationMatcher.h"
#include "zelk/configuration/impl/SpecificationValuesFinder.h"
#include "zelk/configuration/impl/ValueItemState.h"
#include "zelk/configuration/impl/XmlFileLoader.h"
#include "zelk/configuration/impl/XmlValueTreeBuilder.h"
#include "zelk/host/XmlTokenReader.h"

namespace zelk::configuration::impl {

namespace {

// The group that SpecificationMatcher would bind first, in visiting order, to the specification's
// items container, found by the same walk without copying or binding anything: the container a
// group's name leads to, else (on purpose) the enclosing one. Null when there is none.
ValueGroup findSpecificationGroup(const ValueGroup& group, const Container* top,
                                  const Container& items) {
  if (top == 0) {
    return ValueGroup::Null;
  }
  const char* name = group.getName();
  if (name != 0 && *name != '\0') {
    if (group.matches(*top)) {
      if (top == &items) {
        return group;
      }
    } else if (const Container* found = top->findContainer(name)) {
      top = found;
    }
  }
  for (size_t i = 0; i < group.getItemCount(); ++i) {
    const boost::shared_ptr<ValueGroupItem> item = group.getItem(i);
    if (item->isValueGroup()) {
      ValueGroup found =
          findSpecificationGroup(*boost::static_pointer_cast<ValueGroup>(item), top, items);
      if (!found.isNull()) {
        return found;
      }
    }
  }
  return ValueGroup::Null;
}

}  // namespace

// The description is accepted for symmetry with the other providers; nothing reads it.
XmlFileValueProviderImpl::XmlFileValueProviderImpl(int priority, const std::string&)
    : ValueProviderImpl(ConfigurationManager::XML_FILE_PROVIDER_NAME, priority,
                        ConfigurationManager::XML_FILE_PROVIDER_NAME),
      mFixed(false),
      mBuiltFor(0) {
  mDocument.startElement(ConfigurationManager::XML_FILE_PROVIDER_NAME);
  mDocument.endElement();
}

XmlFileValueProviderImpl::XmlFileValueProviderImpl(const char* kind, int priority)
    : ValueProviderImpl(kind, priority, kind), mFixed(false), mBuiltFor(0) {
  mDocument.startElement(kind);
  mDocument.endElement();
}

XmlFileValueProviderImpl::~XmlFileValueProviderImpl() {}

std::size_t XmlFileValueProviderImpl::getMaxFileSize() const {
  const ConfigurationManager* manager = getManager();
  return manager != 0 ? manager->getMaxFileSize()
                      : zelk::host::XmlTokenReader::DEFAULT_MAX_FILE_SIZE;
}

void XmlFileValueProviderImpl::setArguments(const char* path, int) {
  mXmlFilePath = path != 0 ? path : "";
  zelk::host::XmlTokenReader reader;
  openXmlFile(reader, mXmlFilePath.c_str(), getMaxFileSize());
  load(reader);
}

void XmlFileValueProviderImpl::loadText(const std::string& text, const std::string& documentName) {
  const std::size_t limit = getMaxFileSize();
  if (text.size() > limit) {
    throw ConfigurationException("The document %s is %zu bytes long, more than the limit of %zu "
                                 "bytes",
                                 documentName.c_str(), text.size(), limit);
  }
  zelk::host::XmlTokenReader reader;
  reader.openBuffer(text.data(), text.size(), documentName.c_str());
  load(reader);
}

std::vector<std::vector<std::pair<std::string, std::string>>>
XmlFileValueProviderImpl::findTopElements(const char* name) const {
  std::vector<std::vector<std::pair<std::string, std::string>>> found;
  if (mFixed || mDocument.isEmpty()) {
    return found;
  }
  for (size_t element = mDocument.getFirstChild(0); element < mDocument.getEndOfChildren(0);
       element = mDocument.getNextSibling(element)) {
    if (std::strcmp(mDocument.getName(element), name) == 0) {
      found.emplace_back();
      for (size_t i = 0; i < mDocument.getAttributeCount(element); ++i) {
        found.back().emplace_back(mDocument.getAttributeName(element, i),
                                  mDocument.getAttributeText(element, i));
      }
    }
  }
  return found;
}

void XmlFileValueProviderImpl::load(zelk::host::XmlTokenReader& reader) {
  const ConfigurationManager* manager = getManager();
  XmlFileLoader loader(reader, manager != 0 && manager->getKeepPositions());
  XmlValueDocument loaded;
  if (!loader.loadDocument(loaded)) {
    // The message quotes the file's content, so it is added as a text without arguments.
    ValidationErrors errors;
    errors.addErrorAsFormat(loader.getMessage().c_str());
    errors.setPosition(0, loader.getPosition());
    errors.throwIfErrors();
  }
  mDocument.swap(loaded);
  mValues = ValueGroup::Null;
  mFixed = false;
  mBuiltFor = 0;
  mDocumentName = reader.getDocumentName();
}

void XmlFileValueProviderImpl::setArguments(int argc, const char* const* argv, const char*,
                                            int options) {
  if (argc <= 0) {
    throw ConfigurationException("%s", "Must provide at least one argument");
  }
  setArguments(argv != 0 ? argv[0] : 0, options);
}

ValueGroup XmlFileValueProviderImpl::getSpecificationValues(const Specification& spec, int) const {
  if (!mFixed) {
    // Rewritten once, for the first specification asked; later ones see this tree (on purpose).
    mValues = XmlValueTreeBuilder::build(mDocument, &spec);
    mFixed = true;
    mBuiltFor = &spec;
    if (!mDocument.hasPlaces()) {
      mDocument.clear();
    }
  }
  if (mValues.isNull()) {
    return ValueGroup(&spec);
  }
  // Only the part of the tree that belongs to the specification is copied and matched: a file
  // that holds the sections of many tools (machine.config) is not copied whole for each of them.
  // Matched alone, the part binds as it would inside the whole tree, since matching it starts at
  // the items container either way.
  const Container& items = *spec.getItemsContainer();
  const ValueGroup part = findSpecificationGroup(mValues, &items, items);
  if (part.isNull()) {
    return ValueGroup(&spec);
  }
  ValueGroup copy(part, 0);
  ValidationErrors errors;
  SpecificationMatcher::match(copy, spec, errors);
  errors.throwIfErrors();
  ValueGroup found = SpecificationValuesFinder::find(copy, &items);
  return found.isNull() ? ValueGroup(&spec) : found;
}

namespace {

// Pairs the values of answer with those of part, of which answer is a matched copy (same items in
// the same order), putting the positions of part's entries on answer's values.
void placeCopies(const ValueGroup& part, const ValueGroup& answer,
                 const std::map<uint32_t, std::vector<SourcePosition>>& built,
                 std::map<uint32_t, std::vector<SourcePosition>>& placed) {
  const size_t count = part.getItemCount();
  if (answer.getItemCount() != count) {
    return;
  }
  for (size_t i = 0; i < count; ++i) {
    const boost::shared_ptr<ValueGroupItem> from = part.getItem(i);
    const boost::shared_ptr<ValueGroupItem> to = answer.getItem(i);
    if (from->isValueGroup() != to->isValueGroup() ||
        !ValueItemState::namesEqual(from->getName(), to->getName())) {
      continue;
    }
    const auto found = built.find(from->getInstanceId());
    if (found != built.end()) {
      placed[to->getInstanceId()] = found->second;
    }
    if (from->isValueGroup()) {
      placeCopies(*boost::static_pointer_cast<ValueGroup>(from),
                  *boost::static_pointer_cast<ValueGroup>(to), built, placed);
    }
  }
}

}  // namespace

std::map<uint32_t, std::vector<SourcePosition>> XmlFileValueProviderImpl::placeEntries(
    const Specification& spec, const ValueGroup& answer) const {
  std::map<uint32_t, std::vector<SourcePosition>> placed;
  if (!mDocument.hasPlaces() || mBuiltFor == 0 || answer.isNull()) {
    return placed;
  }
  // The tree is built again from the document, the same way, noting where each entry came from;
  // answer was copied from the same part of the first build.
  XmlValueTreeBuilder::Sources sources;
  const ValueGroup tree = XmlValueTreeBuilder::build(mDocument, mBuiltFor, sources);
  std::map<uint32_t, std::vector<SourcePosition>> built;
  for (const auto& value : sources) {
    std::vector<SourcePosition>& positions = built[value.first];
    for (const std::pair<size_t, size_t>& entry : value.second) {
      SourcePosition position;
      position.file = mDocumentName;
      const bool isElement = entry.second == XmlValueTreeBuilder::NO_ATTRIBUTE;
      const std::pair<unsigned int, unsigned int> place =
          isElement ? mDocument.getElementPlace(entry.first)
                    : mDocument.getAttributePlace(entry.first, entry.second);
      position.line = place.first;
      position.column = place.second;
      position.element = mDocument.getName(entry.first);
      if (!isElement) {
        position.attribute = mDocument.getAttributeName(entry.first, entry.second);
      }
      positions.push_back(position);
    }
  }
  if (tree.isNull()) {
    return placed;
  }
  const Container& items = *spec.getItemsContainer();
  const ValueGroup part = findSpecificationGroup(tree, &items, items);
  if (!part.isNull()) {
    const auto found = built.find(part.getInstanceId());
    if (found != built.end()) {
      placed[answer.getInstanceId()] = found->second;
    }
    placeCopies(part, answer, built, placed);
  }
  return placed;
}

ItemPlacer XmlFileValueProviderImpl::makePlacer(const Specification& spec,
                                                const ValueGroup& values) const {
  if (!mDocument.hasPlaces()) {
    return ItemPlacer();
  }
  auto placed = std::make_shared<const std::map<uint32_t, std::vector<SourcePosition>>>(
      placeEntries(spec, values));
  return [placed](const ValueGroupItem& item, size_t entry) {
    const auto found = placed->find(item.getInstanceId());
    return found != placed->end() && entry < found->second.size() ? found->second[entry]
                                                                  : SourcePosition();
  };
}

}  // namespace zelk::configuration::impl
