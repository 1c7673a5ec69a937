#include "zelk/configuration/impl/XmlValueTreeBuilder.h"

#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/Container.h"
#include "zelk/configuration/GroupItem.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/ValueBase.h"
#include "zelk/configuration/impl/ValueItemState.h"
#include "zelk/configuration/impl/XmlValueDocument.h"

namespace zelk::configuration::impl {

ValueGroup XmlValueTreeBuilder::build(const XmlValueDocument& document,
                                      const Specification* spec) {
  if (document.isEmpty()) {
    return ValueGroup::Null;
  }
  XmlValueTreeBuilder builder(document, 0);
  builder.addElement(0, spec != 0 ? spec->getItemsContainer() : 0, 0);
  return builder.mResult;
}

ValueGroup XmlValueTreeBuilder::build(const XmlValueDocument& document, const Specification* spec,
                                      Sources& sources) {
  if (document.isEmpty()) {
    return ValueGroup::Null;
  }
  XmlValueTreeBuilder builder(document, &sources);
  builder.addElement(0, spec != 0 ? spec->getItemsContainer() : 0, 0);
  return builder.mResult;
}

XmlValueTreeBuilder::XmlValueTreeBuilder(const XmlValueDocument& document, Sources* sources)
    : mDocument(document), mResult(ValueGroup::Null), mSources(sources) {}

void XmlValueTreeBuilder::noteSource(const ValueGroup& group, const char* name, size_t element,
                                     size_t attribute) {
  // The text joined the group's value of that name, new or not.
  const boost::shared_ptr<ValueBase> value = group.findValueBase(name, 0);
  if (value) {
    (*mSources)[value->getInstanceId()].emplace_back(element, attribute);
  }
}

const GroupItem* XmlValueTreeBuilder::resolve(const Container& container, const char* name) {
  if (ValueItemState::namesEqual(name, container.getId())) {
    return &container;
  }
  const GroupItem* item = container.findItem(name);
  if (item != 0 && item->getItemType() == GroupItem::PARAMETER_REF) {
    return item;
  }
  return container.findContainer(name);
}

void XmlValueTreeBuilder::addElement(size_t element, const Container* container,
                                     ValueGroup* parent) {
  const char* name = mDocument.getName(element);
  if (container != 0) {
    const GroupItem* item = resolve(*container, name);
    if (item != 0 && item->getItemType() == GroupItem::PARAMETER_REF) {
      // The element's own children are dropped with it.
      rewrite(element, parent);
      return;
    }
    if (item != 0) {
      container = static_cast<const Container*>(item);
    }
  }
  ValueGroup group(name);
  if (mSources != 0) {
    (*mSources)[group.getInstanceId()].emplace_back(element, NO_ATTRIBUTE);
  }
  if (parent != 0) {
    parent->add(group);
  } else {
    mResult = group;
  }
  // Values of one name are one value: a repeated attribute (in any letter case) adds a text.
  const size_t attributes = mDocument.getAttributeCount(element);
  for (size_t i = 0; i < attributes; ++i) {
    const char* attribute = mDocument.getAttributeName(element, i);
    group.addValue(attribute, mDocument.getAttributeText(element, i));
    if (mSources != 0) {
      noteSource(group, attribute, element, i);
    }
  }
  const size_t end = mDocument.getEndOfChildren(element);
  for (size_t child = mDocument.getFirstChild(element); child < end;
       child = mDocument.getNextSibling(child)) {
    addElement(child, container, &group);
  }
}

void XmlValueTreeBuilder::rewrite(size_t element, ValueGroup* parent) {
  const char* name = mDocument.getName(element);
  // The first attribute called "value" in any letter case gives the text; child elements of that
  // name do not count.
  const size_t attributes = mDocument.getAttributeCount(element);
  size_t found = 0;
  while (found < attributes &&
         !ValueItemState::namesEqual(mDocument.getAttributeName(element, found), "value")) {
    ++found;
  }
  if (found == attributes) {
    throw ConfigurationException("\"%s\" is not a valid parameter", name);
  }
  if (parent != 0) {
    parent->addValue(name, mDocument.getAttributeText(element, found));
    if (mSources != 0) {
      noteSource(*parent, name, element, found);
    }
  }
}

}  // namespace zelk::configuration::impl
