#include "zelk/configuration/impl/XmlFileLoader.h"

#include <cstring>

#include "zelk/configuration/impl/XmlValueTreeBuilder.h"
#include "zelk/host/XmlTokenReader.h"

namespace zelk::configuration::impl {

namespace {

// Texts are read into a slightly larger buffer than kept, so that a text longer than the limit is
// seen as such: the reader cuts at a character boundary, at most 3 bytes short of the buffer.
const size_t PROBE_SIZE = XmlFileLoader::BUFFER_SIZE + 4;
const size_t MAX_TEXT_LENGTH = XmlFileLoader::BUFFER_SIZE - 1;

}  // namespace

XmlFileLoader::XmlFileLoader(zelk::host::XmlTokenReader& reader, bool placeAttributes)
    : mReader(reader), mPlaceAttributes(placeAttributes), mName(PROBE_SIZE), mText(PROBE_SIZE) {}

ValueGroup XmlFileLoader::loadDocument() {
  XmlValueDocument document;
  if (!loadDocument(document)) {
    return ValueGroup::Null;
  }
  return XmlValueTreeBuilder::build(document, 0);
}

bool XmlFileLoader::loadDocument(XmlValueDocument& out) {
  XmlValueDocument document;
  if (!loadElement(document)) {
    return false;
  }
  // A second root element or stray text after the first would otherwise be dropped unseen.
  if (!mReader.skipComments() || !mReader.atEnd()) {
    return fail("end of document");
  }
  out.swap(document);
  return true;
}

bool XmlFileLoader::loadElement(XmlValueDocument& out) {
  if (!mReader.skipComments() || !mReader.acceptToken("<")) {
    return fail("<");
  }
  // The buffers are shared by every level: the element's name is kept in the document before
  // any attribute or child is read.
  if (!readName(mName.data(), "an element name")) {
    return false;
  }
  if (!mReader.enterElement()) {
    return fail(0);
  }
  const size_t element = out.getElementCount();
  out.startElement(mName.data());
  if (mPlaceAttributes) {
    // The "<" stands just before the name, which was just read and holds no line end.
    unsigned int line = 0;
    unsigned int column = 0;
    mReader.lineAndColumn(mReader.getOffset() - std::strlen(mName.data()) - 1, line, column);
    out.placeElement(line, column);
  }
  while (!mReader.atToken("/>") && !mReader.atToken(">")) {
    if (!readName(mName.data(), "an attribute name, \">\" or \"/>\"")) {
      return false;
    }
    // Where the name starts: it was just read, and a name holds no line end.
    const std::size_t nameStart =
        mPlaceAttributes ? mReader.getOffset() - std::strlen(mName.data()) : 0;
    if (!mReader.acceptToken("=")) {
      return fail("=");
    }
    if (!readValue(mText.data(), mName.data())) {
      return false;
    }
    out.addAttribute(mName.data(), mText.data());
    if (mPlaceAttributes) {
      unsigned int line = 0;
      unsigned int column = 0;
      mReader.lineAndColumn(nameStart, line, column);
      out.placeAttribute(line, column);
    }
  }
  if (!mReader.acceptToken("/>")) {
    mReader.acceptToken(">");
    // Only an element with content has a closing tag to look for.
    const std::string closingTag = std::string("</") + out.getName(element) + ">";
    for (;;) {
      if (!mReader.skipComments()) {
        return fail(0);
      }
      if (mReader.acceptToken(closingTag.c_str())) {
        break;
      }
      if (!loadElement(out)) {
        return false;
      }
    }
  }
  mReader.leaveElement();
  out.endElement();
  return true;
}

bool XmlFileLoader::readName(char* buffer, const char* expected) {
  // A quoted text is not a name, although the reader would read it as one.
  if (mReader.atToken("\"") || mReader.atToken("'") || !mReader.acceptValue(buffer, PROBE_SIZE)) {
    return fail(expected);
  }
  if (std::strlen(buffer) > MAX_TEXT_LENGTH) {
    return failWith("A name longer than 1024 bytes ends");
  }
  return true;
}

bool XmlFileLoader::readValue(char* buffer, const char* attribute) {
  if (!mReader.acceptValue(buffer, PROBE_SIZE)) {
    return fail("a quoted value");
  }
  if (std::strlen(buffer) > MAX_TEXT_LENGTH) {
    return failWith(std::string("The value of the attribute \"") + attribute +
                    "\" is longer than 1024 bytes; it ends");
  }
  return true;
}

bool XmlFileLoader::fail(const char* expected) {
  mReader.warnUnexpected(expected);
  mMessage = mReader.getErrorText();
  placeError();
  return false;
}

void XmlFileLoader::placeError() {
  mPosition.file = mReader.getDocumentName();
  if (!mReader.getErrorPosition(mPosition.line, mPosition.column)) {
    mReader.lineAndColumn(mReader.getOffset(), mPosition.line, mPosition.column);
  }
}

bool XmlFileLoader::failWith(const std::string& text) {
  std::string message = text + " at " + mReader.describePosition();
  if (*mReader.getDocumentName() != '\0') {
    message += std::string(" in \"") + mReader.getDocumentName() + "\"";
  }
  mReader.setErrorText(message.c_str());
  mMessage = message;
  placeError();
  return false;
}

}  // namespace zelk::configuration::impl
