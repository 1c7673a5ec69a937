// SourcePosition: where in a file a problem stands, as data: the file, the 1-based line and
// column, and the element and attribute there. The registry loader and the value-file reader put
// one on the exceptions they throw (ConfigurationException::getPosition) and on each error of a
// ValidationException (ValidationErrors::getPosition), so that a caller reports the place of a
// problem by reading fields, never by parsing the message (whose text stays as it was).
//
//   } catch (const zelk::configuration::ConfigurationException& e) {
//     const SourcePosition& where = e.getPosition();
//     if (where.isKnown()) std::cerr << where.file << ':' << where.line << ':' << where.column;
//   }
//
// An error of a ValidationException that has no position of its own stands where the exception
// stands (a default value refused by its conversion is placed on the exception, at the element
// and its "default" attribute). Each field may be unknown on its own: line 0 when the place in the file is not known (a file
// that cannot be opened), an empty element or attribute when the problem is not in one (a syntax
// error between elements, an element that lacks a required attribute names that attribute).
#pragma once

#include <string>

namespace zelk::configuration {

struct SourcePosition {
  std::string file;       // the path as given to the loader; empty when not known
  unsigned int line = 0;  // 1-based; 0 when not known
  unsigned int column = 0;  // 1-based, in characters
  std::string element;    // the element's name as written (a namespace prefix kept)
  std::string attribute;  // the attribute's name, when the problem is in one

  bool isKnown() const { return line != 0; }
};

}  // namespace zelk::configuration
