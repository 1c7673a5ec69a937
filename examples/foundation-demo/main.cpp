// A small tour of the foundation: word-wraps a description the way help text is laid out, and
// parses object identifiers with the same kind of pattern the library uses for "oid" values.
//
//   zfoundation-demo [width]
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string>

#include "zelk/host/FormattedHostException.h"
#include "zelk/util/RegEx.h"
#include "zelk/util/StringUtil.h"

namespace {

const char* const DESCRIPTION =
    "Copies the containers of a database to a storage location. Object identifiers such as "
    "12-0-345-6 name single objects; paths like /var/backups/zelk/nightly may be broken after "
    "each slash.";

void parseObjectId(const zelk::RegEx& pattern, const char* text) {
  zelk::RegExMatch m[5];
  if (!pattern.matches(text, m, 5)) {
    std::cout << "  \"" << text << "\" is not an object identifier\n";
    return;
  }
  std::cout << "  \"" << text << "\": database " << zelk::RegEx::extractMatch(text, m[1])
            << ", container " << zelk::RegEx::extractMatch(text, m[2]) << ", page "
            << zelk::RegEx::extractMatch(text, m[3]) << ", slot "
            << zelk::RegEx::extractMatch(text, m[4]) << "\n";
}

}  // namespace

int main(int argc, char** argv) {
  const long width = argc > 1 ? std::strtol(argv[1], nullptr, 10) : 40;
  if (width < 10 || width > 1000) {
    std::cerr << "zfoundation-demo: the width must be between 10 and 1000\n";
    return 2;
  }
  std::cout << "Description wrapped at " << width << " columns:\n";
  std::ostringstream wrapped;
  zelk::StringUtil::wordWrap(wrapped, DESCRIPTION, 2, static_cast<size_t>(width), 2, "/");
  std::cout << wrapped.str() << "\n\nObject identifiers:\n";

  const zelk::RegEx oid("^\\s*(\\d+)-(\\d+)-(\\d+)-(\\d+)\\s*$", true, false);
  for (const char* text : {"12-0-345-6", " 1-2-3-4 ", "12-0-345", "a-b-c-d"}) {
    parseObjectId(oid, text);
  }
  try {
    zelk::RegEx broken("(\\d+", true, false);
  } catch (const zelk::host::FormattedHostException& e) {
    std::cout << "\nA bad pattern is refused: " << e.what() << "\n";
  }
  return 0;
}
