// XmlFileLoader: reads the root element of an XML value file, with its attributes and children,
// into a document (XmlValueDocument) or a value group: the element's name (prefix included) names
// the group, each attribute becomes a value, each child element a child group, in document order.
// Comments are skipped.
//
//   zelk::host::XmlTokenReader reader;
//   if (reader.openFile(path)) {
//     XmlFileLoader loader(reader);
//     ValueGroup root = loader.loadDocument();
//     if (root.isNull()) report(loader.getMessage());
//   }
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "zelk/configuration/SourcePosition.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/impl/XmlValueDocument.h"

namespace zelk::host {
class XmlTokenReader;
}

namespace zelk::configuration::impl {

class XmlFileLoader {
public:
  // Names and attribute values are read into buffers of this many bytes: at most 1024 bytes of
  // text. Longer ones are refused rather than silently cut.
  static const size_t BUFFER_SIZE = 1025;

  // With placeAttributes, the document records the line and column of each attribute
  // (XmlValueDocument::placeAttribute), which costs a pass over the text.
  explicit XmlFileLoader(zelk::host::XmlTokenReader& reader, bool placeAttributes = false);

  // The whole document as a group: its one root element with nothing but comments after it, or
  // ValueGroup::Null after an error (see getMessage()).
  ValueGroup loadDocument();
  // The whole document into out, which is left as it was after an error (false).
  bool loadDocument(XmlValueDocument& out);
  // The error met, naming its line and column; empty when there was none.
  const std::string& getMessage() const { return mMessage; }
  // Where that error stands: the document's name, line and column (line 0 when there was none).
  const SourcePosition& getPosition() const { return mPosition; }

private:
  XmlFileLoader(const XmlFileLoader&) = delete;
  XmlFileLoader& operator=(const XmlFileLoader&) = delete;

  // Loads one element into out; false after an error. Nesting is bounded by the reader's element
  // depth, so no file can exhaust the stack.
  bool loadElement(XmlValueDocument& out);
  // Reads a name (not a quoted text) into buffer; false after an error.
  bool readName(char* buffer, const char* expected);
  // Reads an attribute's value into buffer; false after an error.
  bool readValue(char* buffer, const char* attribute);
  // Reports the token at the current position as unexpected (keeping an error the reader met
  // first); returns false.
  bool fail(const char* expected);
  // Reports text of our own at the current position; returns false.
  bool failWith(const std::string& text);
  // Keeps the position of the error just recorded: the reader's own, else the current one.
  void placeError();

  zelk::host::XmlTokenReader& mReader;
  bool mPlaceAttributes;
  std::string mMessage;
  SourcePosition mPosition;
  // Reading buffers, a little larger than BUFFER_SIZE so that an overlong text is noticed.
  std::vector<char> mName;
  std::vector<char> mText;
};

}  // namespace zelk::configuration::impl
