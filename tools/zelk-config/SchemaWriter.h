// SchemaWriter: XML Schemas (XSD 1.0) of the files an installation reads, so that editors and
// xmllint can check them before a tool does.
//
//   std::cout << registrySchema();                  // registry files (.crg)
//   writeValuesSchema(std::cout, *specification);   // the value files of one tool
//
// The registry schema is fixed (schema/registry.xsd, built into the tool and installed under
// share/zelk/schema/). A values schema is generated from a specification: the root element is
// the specification; each parameter is an attribute, and a parameter that takes several values
// may also be written as elements with a "value" attribute; each container is a child element;
// an enumeration lists its labels; booleans, numbers and object ids are patterns of the texts the
// library converts (their ranges are left to the library). Names are matched exactly,
// although the library also accepts them in another letter case. A file that holds the values
// of several tools (machine.config) validates when its root is named "machine": its children are
// checked when the schema declares them and skipped otherwise.
#pragma once

#include <iosfwd>

namespace zelk::configuration {
class Specification;
}

namespace zelk::configtool {

// The XML Schema of registry files.
const char* registrySchema();

// Writes the XML Schema of specification's value files to out. Throws ConfigurationException
// when an id or description cannot be written in XML.
void writeValuesSchema(std::ostream& out, const configuration::Specification& specification);

}  // namespace zelk::configtool
