// XmlValueDocument: the elements and attributes of an XML value file, kept flat and compact until
// a specification asks for them.
//
// A value file may hold millions of small elements; building a value group for each of them
// before knowing which ones are parameters would cost far more than the file itself. The
// document keeps each element as a few words, each name once, and the attribute texts in one
// buffer; XmlValueTreeBuilder turns it into value groups when a specification asks.
//
//   XmlValueDocument document;
//   document.startElement("zbackup");
//   document.addAttribute("database", "sales");
//   document.endElement();
//   document.getName(0);   // "zbackup"
#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace zelk::configuration::impl {

class XmlValueDocument {
public:
  XmlValueDocument();

  // Building, in document order: an element's attributes come before its children.
  // Opens an element inside the open one (or the root when none is open).
  void startElement(const char* name);
  // Adds an attribute to the open element.
  void addAttribute(const char* name, const char* text);
  // Record the 1-based line and column of the attribute added last, and of the element started
  // last (its "<"). Optional: a document places every attribute and element or none (see
  // hasPlaces).
  void placeAttribute(unsigned int line, unsigned int column);
  void placeElement(unsigned int line, unsigned int column);
  // Closes the open element.
  void endElement();
  // Drops every element.
  void clear();
  void swap(XmlValueDocument& other);

  // Reading. Elements are numbered in document order; the root is element 0.
  bool isEmpty() const { return mElements.empty(); }
  size_t getElementCount() const { return mElements.size(); }
  const char* getName(size_t element) const { return mNames[mElements[element].name].c_str(); }
  // The first child of element, or getEndOfChildren(element) when it has none.
  size_t getFirstChild(size_t element) const { return element + 1; }
  // The element after element and all its descendants: its next sibling, when it has one.
  size_t getNextSibling(size_t element) const { return mElements[element].end; }
  size_t getEndOfChildren(size_t element) const { return mElements[element].end; }
  size_t getAttributeCount(size_t element) const;
  const char* getAttributeName(size_t element, size_t attribute) const;
  const char* getAttributeText(size_t element, size_t attribute) const;
  // Whether the attributes were placed, and where one stands (line and column).
  bool hasPlaces() const { return !mElementPlaces.empty(); }
  std::pair<unsigned int, unsigned int> getAttributePlace(size_t element, size_t attribute) const {
    return mPlaces[mElements[element].firstAttribute + attribute];
  }
  std::pair<unsigned int, unsigned int> getElementPlace(size_t element) const {
    return mElementPlaces[element];
  }

private:
  struct Element {
    size_t name;
    size_t firstAttribute;
    size_t end;
  };
  struct Attribute {
    size_t name;
    size_t text;
  };

  size_t intern(const char* name);

  std::vector<Element> mElements;
  std::vector<Attribute> mAttributes;
  // The line and column of each attribute, when they were recorded.
  std::vector<std::pair<unsigned int, unsigned int>> mPlaces;
  std::vector<std::pair<unsigned int, unsigned int>> mElementPlaces;
  // Attribute texts, each ended by a NUL.
  std::string mTexts;
  // Element and attribute names, each kept once.
  std::vector<std::string> mNames;
  std::unordered_map<std::string, size_t> mNameIds;
  // Elements started and not yet ended.
  std::vector<size_t> mOpen;
};

}  // namespace zelk::configuration::impl
