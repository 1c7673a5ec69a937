// The JSON format: for scripts and CI, written with JsonWriter.

#include <ostream>

#include "JsonWriter.h"
#include "OutputFormat.h"
#include "SourceTracker.h"
#include "ValuesSink.h"
#include "zelk/configuration/Container.h"
#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/impl/ValueTypeTable.h"

namespace zelk::configtool {

using namespace zelk::configuration;

namespace {

// The registry's word for a value type, which scripts compare against.
const char* typeWord(const Parameter* parameter) {
  return parameter != nullptr ? impl::ValueTypeTable::word(parameter->getValueType()) : "unknown";
}

// The values: one object with the specification, its sources and an array of items in
// specification order, each a value or a container instance with its own array of items.
class JsonValuesSink : public ValuesSink {
public:
  JsonValuesSink(std::ostream& out, const SourceTracker& sources)
      : mJson(out), mSources(sources) {}

  void begin(const Specification& specification) override {
    mJson.beginObject();
    mJson.key("specification");
    mJson.value(specification.getId());
    mJson.key("sources");
    std::vector<std::string> names = mSources.getMachineNames();
    names.push_back(DEFAULT_SOURCE);
    mJson.value(names);
    mJson.key("values");
    mJson.beginArray();
  }

  void value(const ParameterRef& reference, const std::vector<std::string>& texts,
             const std::vector<std::size_t>& sources, const Container* strayFrom,
             const std::vector<Contribution>* story) override {
    mJson.beginObject();
    mJson.key("name");
    mJson.value(reference.getId());
    mJson.key("type");
    mJson.value(typeWord(reference.getParameter()));
    mJson.key("unbounded");
    mJson.value(reference.isUnbounded());
    mJson.key("texts");
    mJson.value(texts);
    mJson.key("sources");
    mJson.value(SourceTracker::namesOf(sources, mSources.getMachineNames(), "unknown"));
    if (strayFrom != nullptr) {
      mJson.key("notReadHere");
      mJson.value(std::string("it belongs in \"") + strayFrom->getId() + "\"");
    }
    if (story != nullptr) explain(*story);
    mJson.endObject();
  }

  void beginContainer(const Container& container) override {
    mJson.beginObject();
    mJson.key("container");
    mJson.value(container.getId());
    mJson.key("values");
    mJson.beginArray();
  }

  void endContainer() override {
    mJson.endArray();
    mJson.endObject();
  }

  void end() override {
    mJson.endArray();
    mJson.endObject();
  }

private:
  // "explain": every source's part, in order of precedence: the source as "sources" names it,
  // whether it is in force, and each entry's text and place (file, line and column, or the word
  // of the tool's command line); a place not known is left out.
  void explain(const std::vector<Contribution>& story) {
    mJson.key("explain");
    mJson.beginArray();
    for (const Contribution& contribution : story) {
      mJson.beginObject();
      mJson.key("source");
      mJson.value(
          SourceTracker::namesOf({contribution.source}, mSources.getMachineNames(), "unknown")
              .front());
      mJson.key("inForce");
      mJson.value(!contribution.overridden);
      mJson.key("entries");
      mJson.beginArray();
      for (std::size_t i = 0; i < contribution.texts.size(); ++i) {
        mJson.beginObject();
        mJson.key("text");
        mJson.value(contribution.texts[i]);
        const EntryPlace place =
            i < contribution.places.size() ? contribution.places[i] : EntryPlace();
        if (place.line != 0) {
          mJson.key("file");
          mJson.value(place.file);
          mJson.key("line");
          mJson.number(place.line);
          mJson.key("column");
          mJson.number(place.column);
        } else if (place.argument > 0) {
          mJson.key("argument");
          mJson.number(place.argument);
        }
        mJson.endObject();
      }
      mJson.endArray();
      mJson.endObject();
    }
    mJson.endArray();
  }

  JsonWriter mJson;
  const SourceTracker& mSources;
};

class JsonFormat : public OutputFormat {
public:
  // An array of objects, one for each specification.
  void writeList(std::ostream& out, const std::vector<const Specification*>& specifications,
                 std::size_t) const override {
    JsonWriter json(out);
    json.beginArray();
    for (const Specification* specification : specifications) {
      json.beginObject();
      json.key("id");
      json.value(specification->getId());
      json.key("name");
      json.value(specification->getName());
      json.key("title");
      json.value(specification->getTitle());
      json.key("description");
      json.value(specification->getDescription());
      json.endObject();
    }
    json.endArray();
  }

  std::unique_ptr<ValuesSink> makeValuesSink(std::ostream& out,
                                             const SourceTracker& sources) const override {
    return std::make_unique<JsonValuesSink>(out, sources);
  }

  void writeKey(std::ostream& out, const KeyContent& content) const override {
    JsonWriter json(out);
    json.beginObject();
    json.key("endpoint");
    json.value(content.endpoint);
    json.key("key");
    json.value(content.key);
    json.key("found");
    json.value(content.found);
    json.key("revision");
    json.value(std::to_string(content.revision));
    json.key("document");
    json.value(content.document);
    json.endObject();
  }
};

}  // namespace

const OutputFormat& jsonFormat() {
  static const JsonFormat FORMAT;
  return FORMAT;
}

}  // namespace zelk::configtool
