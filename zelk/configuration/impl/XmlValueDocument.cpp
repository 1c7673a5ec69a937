#include "zelk/configuration/impl/XmlValueDocument.h"

#include "zelk/util/Contracts.h"

namespace zelk::configuration::impl {

XmlValueDocument::XmlValueDocument() {}

void XmlValueDocument::startElement(const char* name) {
  ZELK_CONTRACT(name != 0);
  // Attributes of the elements before this one are all known by now, so firstAttribute also
  // ends the previous element's attributes.
  Element element = {intern(name), mAttributes.size(), 0};
  mOpen.push_back(mElements.size());
  mElements.push_back(element);
}

void XmlValueDocument::addAttribute(const char* name, const char* text) {
  ZELK_CONTRACT(name != 0 && text != 0);
  ZELK_CONTRACT(!mOpen.empty() && mOpen.back() + 1 == mElements.size());
  Attribute attribute = {intern(name), mTexts.size()};
  mTexts += text;
  mTexts += '\0';
  mAttributes.push_back(attribute);
}

void XmlValueDocument::placeAttribute(unsigned int line, unsigned int column) {
  ZELK_CONTRACT(mPlaces.size() + 1 == mAttributes.size());
  mPlaces.emplace_back(line, column);
}

void XmlValueDocument::placeElement(unsigned int line, unsigned int column) {
  ZELK_CONTRACT(mElementPlaces.size() + 1 == mElements.size());
  mElementPlaces.emplace_back(line, column);
}

void XmlValueDocument::endElement() {
  ZELK_CONTRACT(!mOpen.empty());
  mElements[mOpen.back()].end = mElements.size();
  mOpen.pop_back();
}

void XmlValueDocument::clear() {
  XmlValueDocument empty;
  swap(empty);
}

void XmlValueDocument::swap(XmlValueDocument& other) {
  mElements.swap(other.mElements);
  mAttributes.swap(other.mAttributes);
  mPlaces.swap(other.mPlaces);
  mElementPlaces.swap(other.mElementPlaces);
  mTexts.swap(other.mTexts);
  mNames.swap(other.mNames);
  mNameIds.swap(other.mNameIds);
  mOpen.swap(other.mOpen);
}

size_t XmlValueDocument::getAttributeCount(size_t element) const {
  const size_t end =
      element + 1 < mElements.size() ? mElements[element + 1].firstAttribute : mAttributes.size();
  return end - mElements[element].firstAttribute;
}

const char* XmlValueDocument::getAttributeName(size_t element, size_t attribute) const {
  return mNames[mAttributes[mElements[element].firstAttribute + attribute].name].c_str();
}

const char* XmlValueDocument::getAttributeText(size_t element, size_t attribute) const {
  return mTexts.c_str() + mAttributes[mElements[element].firstAttribute + attribute].text;
}

size_t XmlValueDocument::intern(const char* name) {
  const std::unordered_map<std::string, size_t>::const_iterator found = mNameIds.find(name);
  if (found != mNameIds.end()) {
    return found->second;
  }
  const size_t id = mNames.size();
  mNames.push_back(name);
  mNameIds.emplace(name, id);
  return id;
}

}  // namespace zelk::configuration::impl
