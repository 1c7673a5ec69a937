// ValuesSink: what the walk over a specification's merged values (ValuesCommand.cpp) reports, in
// specification order; each output format writes it its own way (OutputFormat).
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace zelk::configuration {
class Container;
class ParameterRef;
class Specification;
}  // namespace zelk::configuration

namespace zelk::configtool {

struct Contribution;

class ValuesSink {
public:
  virtual ~ValuesSink() = default;
  // Before the first value: the specification whose values follow.
  virtual void begin(const configuration::Specification& specification) = 0;
  // One value: its texts, the source of each (an index into the SourceTracker's sources, or
  // FROM_DEFAULT, FROM_UNKNOWN), for a value given where the tool does not read it the container
  // it belongs in (else null), and with -explain every source's part in it, in order of
  // precedence (else null).
  virtual void value(const configuration::ParameterRef& reference,
                     const std::vector<std::string>& texts, const std::vector<std::size_t>& sources,
                     const configuration::Container* strayFrom,
                     const std::vector<Contribution>* story) = 0;
  // One instance of a container, whose items follow until endContainer.
  virtual void beginContainer(const configuration::Container& container) = 0;
  virtual void endContainer() = 0;
  // After the last value.
  virtual void end() = 0;
};

}  // namespace zelk::configtool
