// ValueFileWriterImpl: composes the text of a value file from a specification's value tree (see
// ValueFileWriter for the format). The tree is checked against the specification while it is
// written, so that a file is either complete and readable or not produced at all.
#pragma once

#include <string>

namespace zelk::configuration {
class Specification;
class ValueGroup;
}  // namespace zelk::configuration

namespace zelk::configuration::impl {

class ValueFileWriterImpl {
public:
  // The whole file as text; throws ConfigurationException as ValueFileWriter::write does.
  static std::string compose(const Specification& specification, const ValueGroup& values);

  // text as the content of a double-quoted XML attribute. what names the value in error
  // messages. Throws ConfigurationException for text that is not UTF-8, holds a character that
  // XML 1.0 cannot carry, or is longer than the value file reader accepts.
  static std::string escapeAttribute(const std::string& text, const char* what);
};

}  // namespace zelk::configuration::impl
