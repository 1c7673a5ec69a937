// The text format: what a person reads on a terminal.

#include <ostream>

#include "Output.h"
#include "OutputFormat.h"
#include "SourceTracker.h"
#include "ValuesSink.h"
#include "zelk/configuration/Container.h"
#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Specification.h"

namespace zelk::configtool {

using namespace zelk::configuration;

namespace {

// The values: first the sources in order of precedence, then one line a value with its type and
// sources; container instances indented under their name.
class TextValuesSink : public ValuesSink {
public:
  TextValuesSink(std::ostream& out, const SourceTracker& sources)
      : mOut(out), mSources(sources) {}

  void begin(const Specification& specification) override {
    mOut << "Sources of \"" << specification.getId() << "\", in order of precedence:\n";
    for (const std::string& name : mSources.getNames()) mOut << "  " << name << '\n';
    mOut << "  the defaults of the specification\n\n" << specification.getId() << '\n';
  }

  void value(const ParameterRef& reference, const std::vector<std::string>& texts,
             const std::vector<std::size_t>& sources, const Container* strayFrom,
             const std::vector<Contribution>* story) override {
    const std::vector<std::string> labels =
        SourceTracker::namesOf(sources, mSources.getLabels(), "?");
    const Parameter* parameter = reference.getParameter();
    mOut << std::string(2 * mDepth, ' ') << reference.getId() << " ("
         << (parameter != nullptr ? parameter->getValueTypeName() : "unknown")
         << (reference.isUnbounded() ? ", unbounded" : "") << ") = ";
    bool oneSource = true;
    for (const std::string& label : labels) oneSource = oneSource && label == labels.front();
    for (std::size_t i = 0; i < texts.size(); ++i) {
      if (i > 0) mOut << ", ";
      mOut << texts[i];
      if (!oneSource) mOut << " [" << labels[i] << ']';
    }
    if (oneSource && !labels.empty()) mOut << "  [" << labels.front() << ']';
    if (strayFrom != nullptr) {
      mOut << "  (not read here: it belongs in \"" << strayFrom->getId() << "\")";
    }
    mOut << '\n';
    if (story != nullptr) explain(*story);
  }

  void beginContainer(const Container& container) override {
    mOut << std::string(2 * mDepth, ' ') << container.getId() << '\n';
    ++mDepth;
  }

  void endContainer() override { --mDepth; }

  void end() override {}

private:
  // One line for each entry of each source, under the value: whether it is in force, its text
  // and where it was written.
  void explain(const std::vector<Contribution>& story) {
    const std::string indent(2 * mDepth + 4, ' ');
    for (const Contribution& contribution : story) {
      for (std::size_t i = 0; i < contribution.texts.size(); ++i) {
        mOut << indent << (contribution.overridden ? "overridden" : "in force  ") << "  "
             << contribution.texts[i] << "  from " << whereFrom(contribution, i) << '\n';
      }
    }
  }

  // "/x/y.xml:3:7", "the command line, argument 4", "the default at /x/zelk.crg:40:7", or the
  // source's name where no place is known.
  std::string whereFrom(const Contribution& contribution, std::size_t entry) const {
    const EntryPlace place =
        entry < contribution.places.size() ? contribution.places[entry] : EntryPlace();
    const std::string at = place.line != 0 ? place.file + ':' + std::to_string(place.line) + ':' +
                                                 std::to_string(place.column)
                                           : std::string();
    if (contribution.source == FROM_DEFAULT) {
      return "the default" + (at.empty() ? std::string() : " at " + at);
    }
    if (!at.empty()) return at;
    if (place.argument > 0) return "the command line, argument " + std::to_string(place.argument);
    return contribution.source < mSources.getNames().size()
               ? mSources.getNames()[contribution.source]
               : std::string("?");
  }

  std::ostream& mOut;
  const SourceTracker& mSources;
  std::size_t mDepth = 1;
};

class TextFormat : public OutputFormat {
public:
  void writeList(std::ostream& out, const std::vector<const Specification*>& specifications,
                 std::size_t width) const override {
    for (const Specification* specification : specifications) {
      out << specification->getId() << ": " << specification->getTitle() << '\n';
      printWrapped(out, specification->getDescription(), 4, width);
    }
    if (specifications.empty()) out << "The installation declares no specifications.\n";
  }

  std::unique_ptr<ValuesSink> makeValuesSink(std::ostream& out,
                                             const SourceTracker& sources) const override {
    return std::make_unique<TextValuesSink>(out, sources);
  }

  void writeKey(std::ostream& out, const KeyContent& content) const override {
    out << "etcd key " << content.key << " at " << content.endpoint;
    if (!content.found) {
      out << ": no document\n";
      return;
    }
    out << ", revision " << content.revision << ":\n" << content.document;
    if (!content.document.empty() && content.document.back() != '\n') out << '\n';
  }
};

}  // namespace

const OutputFormat& textFormat() {
  static const TextFormat FORMAT;
  return FORMAT;
}

}  // namespace zelk::configtool
