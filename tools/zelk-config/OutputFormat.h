// OutputFormat: how zelk-config writes what a command found, chosen with -format (-json is
// -format json). Each format is one file (TextFormat.cpp, JsonFormat.cpp) that writes every kind
// of output a command gives in that format; the commands say which formats they take in their
// rows of the command table (Command.h).
//
//   const OutputFormat* format = findFormat("json");
//   format->writeList(std::cout, specifications, 80);
//
// Adding a format: a file that implements this interface, its line in the list of formats
// (OutputFormat.cpp), its label in the "format" enumeration of zelk-config.crg, and its name in
// the rows of the commands that write it.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

namespace zelk::configuration {
class Specification;
}

namespace zelk::configtool {

class SourceTracker;
class ValuesSink;

// What an etcd key holds, as -readKey found it.
struct KeyContent {
  std::string endpoint;
  std::string key;
  bool found = false;
  // The revision of the key's last change (0 when it does not exist).
  long long revision = 0;
  std::string document;
};

class OutputFormat {
public:
  virtual ~OutputFormat() = default;

  // -list: the specifications with their titles and descriptions; text is laid out for width.
  virtual void writeList(std::ostream& out,
                         const std::vector<const configuration::Specification*>& specifications,
                         std::size_t width) const = 0;

  // -values: a sink for the walk over a specification's values, whose sources sources names.
  virtual std::unique_ptr<ValuesSink> makeValuesSink(std::ostream& out,
                                                     const SourceTracker& sources) const = 0;

  // -readKey: the document an etcd key holds and its revision.
  virtual void writeKey(std::ostream& out, const KeyContent& content) const = 0;
};

// The formats, one function each, defined in the format's own file.
const OutputFormat& textFormat();
const OutputFormat& jsonFormat();

// The format of that name ("text", "json"), or null.
const OutputFormat* findFormat(const std::string& name);

}  // namespace zelk::configtool
