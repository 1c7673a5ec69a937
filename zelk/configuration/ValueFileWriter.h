// ValueFileWriter: writes a tree of values of one specification as an XML value file, the form
// that "-loadConfiguration", the application's value file and machine.config are read in.
//
// An application that lets its users change settings at run time saves them with it, and reads
// them back at its next start as its own value file:
//
//   ValueGroup values = manager->getValueGroup("zbackup", true, 0);
//   ValueFileWriter::writeFile("/home/me/.zbackup.xml", *manager->getSpecification("zbackup"),
//                              values);
//   ...
//   manager->enableConfiguration(true, "/home/me/.zbackup.xml", argc, argv, "zbackup");
//
// The file, read alone with the same specification, gives the same values: the root element is
// named after the specification; a value of a parameter that takes one value is an attribute; a
// parameter that takes several values is one element per text, with a "value" attribute; a
// container is a child element named after it, once per instance. Items are written in the order
// of the specification. Texts are escaped (&, <, >, ", and tab and line ends as character
// references, so that they are not read back as spaces) and written as UTF-8. Defaults are not
// written: read back, the absent values fall back to the same defaults.
#pragma once

#include <iosfwd>

namespace zelk::configuration {

class Specification;
class ValueGroup;

class ValueFileWriter {
public:
  ValueFileWriter() = delete;

  // Writes values, which must be the values of specification (a group bound to its items
  // container, as getValueGroup returns it), to out as a value file. Nothing is written when
  // the tree cannot be. Throws ConfigurationException when the tree belongs to another
  // specification, holds an item that the specification does not place where it stands (an
  // unbound value, a parameter of a nested container given at the top), gives a parameter that
  // takes one value several texts, or holds a text that a value file cannot carry: text that is
  // not UTF-8, a character that XML 1.0 does not allow (control characters other than tab and
  // line ends), or more bytes than the value file reader accepts.
  static void write(std::ostream& out, const Specification& specification,
                    const ValueGroup& values);

  // As write, to the file at path (created or replaced). The file is replaced whole or not at
  // all: the text goes to a temporary file in the same directory, which is flushed to disk and
  // renamed over the target, so that a reader sees the old file or the new one, never part of
  // one; an existing file keeps its permissions; a symbolic link is followed. Throws
  // ConfigurationException "File "%s" cannot be written", with the system's reason
  // (getReason(), also in the host's main log), when it cannot be written (a full or read-only
  // disk, no permission, a target that is a directory, FIFO or device); the old file is then
  // untouched. Nothing is touched when the tree cannot be composed.
  static void writeFile(const char* path, const Specification& specification,
                        const ValueGroup& values);
};

}  // namespace zelk::configuration
