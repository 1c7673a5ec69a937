// XmlValueTreeBuilder: turns an XML value file's document into a value tree: each element a group
// named as written, each attribute a value, in document order.
//
// Given a specification, it also rewrites the parameters written as elements (<paths value="/a"/>
// <paths value="/b"/>, the form for parameters given several times) into plain values of the
// enclosing group, walking the document in step with the specification. Elements are resolved as
// the matcher resolves groups: an element named after the container it sits in (the root element
// named after the specification) stays in that container, an element naming a nested container
// enters it, and an unknown element's children are resolved against the enclosing container.
// Parameter elements never become groups of their own, which keeps large files small in memory.
//
//   ValueGroup plain = XmlValueTreeBuilder::build(document, 0);
//   ValueGroup rewritten = XmlValueTreeBuilder::build(document, spec);
#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <utility>
#include <vector>

#include "zelk/configuration/ValueGroup.h"

namespace zelk::configuration {
class Container;
class GroupItem;
class Specification;
}  // namespace zelk::configuration

namespace zelk::configuration::impl {

class XmlValueDocument;

class XmlValueTreeBuilder {
public:
  // The tree of document, rewritten for spec when spec is not null; null when the document is
  // empty or its root element is itself a parameter. Throws ConfigurationException "\"%s\" is not
  // a valid parameter" for a parameter element without a "value" attribute.
  static ValueGroup build(const XmlValueDocument& document, const Specification* spec);

  // Where each value's entries came from: by the value's instance id, the element and attribute
  // index in the document of each entry, in entry order; for a group, its element and NO_ATTRIBUTE.
  static constexpr size_t NO_ATTRIBUTE = static_cast<size_t>(-1);
  typedef std::unordered_map<uint32_t, std::vector<std::pair<size_t, size_t>>> Sources;
  // The same, also telling in sources where each entry of the tree came from.
  static ValueGroup build(const XmlValueDocument& document, const Specification* spec,
                          Sources& sources);

private:
  XmlValueTreeBuilder(const XmlValueDocument& document, Sources* sources);

  // Adds element (resolved against container, null for none) below parent, or makes it the
  // result when parent is null. Recursion is bounded by the reader's element depth.
  void addElement(size_t element, const Container* container, ValueGroup* parent);
  // The specification item that an element named name stands for in container: the container
  // itself, a parameter reference (rewritten), a nested container, or null when unknown.
  static const GroupItem* resolve(const Container& container, const char* name);
  // Adds the parameter element as a value of parent.
  void rewrite(size_t element, ValueGroup* parent);
  // Notes in mSources that the text just added to the value named name of group came from
  // attribute of element.
  void noteSource(const ValueGroup& group, const char* name, size_t element, size_t attribute);

  const XmlValueDocument& mDocument;
  ValueGroup mResult;
  Sources* mSources;  // null when not asked for
};

}  // namespace zelk::configuration::impl
