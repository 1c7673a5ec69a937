#include "ValuesReport.h"

#include <cctype>
#include <cstdint>
#include <map>
#include <memory>
#include <ostream>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "CommandLine.h"
#include "JsonWriter.h"
#include "Output.h"
#include "PlacedItems.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/Container.h"
#include "zelk/configuration/EnumDefinition.h"
#include "zelk/configuration/GroupItemCollection.h"
#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/Validator.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/ValueBase.h"
#include "zelk/configuration/ValueFileWriter.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/ValueIterator.h"
#include "zelk/configuration/ValueProvider.h"
#include "zelk/configuration/XmlFileValueProvider.h"

namespace zelk::configtool {

using namespace zelk::configuration;

namespace {

const char* const LOAD_CONFIGURATION_SWITCH = "-loadConfiguration";
const char* const DEFAULT_SOURCE = "default";
// What the manager adds for every provider: skip the required and the one-of checks, which only
// the merged tree gets.
const int PROVIDER_OPTIONS = 0x14;

std::string baseName(const std::string& path) {
  const std::string::size_type slash = path.rfind('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

// Which source gave each entry of each value. The manager merges the providers' answers in its
// own order; the same merge is repeated here on copies of the answers, one provider at a time,
// and the entries that each step brings are put down to that provider.
class SourceTracker {
public:
  // The sources in the order the manager asks them: the long names and the short labels.
  std::vector<std::string> mNames;
  std::vector<std::string> mLabels;
  // For JSON: "command line", "application", a value file's path, or another provider's id.
  std::vector<std::string> mJsonNames;

  void replay(ConfigurationManager& manager, const Specification& specification) {
    mReplay = ValueGroup(&specification);
    std::unique_ptr<IEnumerator<ValueProvider*>> providers(manager.getValueProviderEnumerator());
    for (; providers->hasNext(); providers->moveNext()) {
      ValueProvider* provider = providers->getCurrent();
      if (!provider->getEnabled()) continue;
      addSource(*provider);
      try {
        const ValueGroup answer = provider->getValues(specification, PROVIDER_OPTIONS);
        if (answer.isNull()) continue;
        // A copy, because merging hands the answer's values over to the merged tree, and the
        // manager must still see its providers' values as they were.
        const ValueGroup copy(answer, 0);
        mReplay.merge(specification, copy);
        record(mReplay, mLabels.size() - 1);
      } catch (const std::exception&) {
        // The manager's own retrieval reports the same problem.
      }
    }
  }

  const ValueGroup& getReplay() const { return mReplay; }

  // The source (an index into the sources) of each entry of the replayed value, or nothing when
  // it is not known.
  std::vector<std::size_t> sourcesOf(const ValueBase& replayed) const {
    const auto found = mEntrySources.find(replayed.getInstanceId());
    return found != mEntrySources.end() ? found->second : std::vector<std::size_t>();
  }

private:
  void addSource(const ValueProvider& provider) {
    const std::string name = provider.getName();
    if (name == ConfigurationManager::COMMAND_LINE_PROVIDER_NAME) {
      mNames.push_back("command line");
      mLabels.push_back("command line");
      mJsonNames.push_back("command line");
    } else if (const auto* file = dynamic_cast<const XmlFileValueProvider*>(&provider)) {
      mNames.push_back(std::string("value file ") + file->getXmlFilePath());
      mLabels.push_back(baseName(file->getXmlFilePath()));
      mJsonNames.push_back(file->getXmlFilePath());
    } else if (name == ConfigurationManager::APPLICATION_PROVIDER_NAME) {
      mNames.push_back("application values");
      mLabels.push_back("application");
      mJsonNames.push_back("application");
    } else {
      mNames.push_back(std::string("provider ") + provider.getId());
      mLabels.push_back(provider.getId());
      mJsonNames.push_back(provider.getId());
    }
  }

  void record(const ValueGroup& group, std::size_t source) {
    for (std::size_t i = 0; i < group.getItemCount(); ++i) {
      const boost::shared_ptr<ValueGroupItem> item = group.getItem(i);
      if (item->isValueGroup()) {
        record(*boost::static_pointer_cast<ValueGroup>(item), source);
      } else if (const auto* value = dynamic_cast<const ValueBase*>(item.get())) {
        std::vector<std::size_t>& sources = mEntrySources[value->getInstanceId()];
        while (sources.size() < value->getValueCount()) sources.push_back(source);
      }
    }
  }

  ValueGroup mReplay;
  std::map<uint32_t, std::vector<std::size_t>> mEntrySources;
};

// The problems a tool would meet reading the values: texts that do not convert to the
// parameter's type, and texts that the parameter's validator rejects.
void checkEntries(const ValueGroup& group, std::vector<std::string>& problems) {
  for (std::size_t i = 0; i < group.getItemCount(); ++i) {
    const boost::shared_ptr<ValueGroupItem> item = group.getItem(i);
    if (item->isValueGroup()) {
      checkEntries(*boost::static_pointer_cast<ValueGroup>(item), problems);
      continue;
    }
    const auto* value = dynamic_cast<const ValueBase*>(item.get());
    if (value == nullptr || value->getParameter() == nullptr) continue;
    const Parameter& parameter = *value->getParameter();
    const std::string name = value->getName();
    for (ValueIterator entry = value->getIterator(); entry.next();) {
      try {
        switch (parameter.getValueType()) {
          case Parameter::BOOL: entry.asBool(); break;
          case Parameter::INT32: entry.asInt32(); break;
          case Parameter::UINT32: entry.asUInt32(); break;
          case Parameter::INT64: entry.asInt64(); break;
          case Parameter::UINT64: entry.asUInt64(); break;
          case Parameter::DOUBLE: entry.asDouble(); break;
          case Parameter::OID: entry.asOID(); break;
          case Parameter::ENUM: {
            ValidationErrors errors;
            const std::string text = entry.asString();
            if (parameter.getEnumDefinition() != nullptr) {
              parameter.getEnumDefinition()->getValue(text.c_str(), &errors);
            }
            errors.throwIfErrors();
            break;
          }
          default: break;
        }
      } catch (const std::exception& e) {
        problems.push_back(name + ": " + describeException(e));
        continue;
      }
      const Validator* validator = parameter.getValidator();
      if (validator != nullptr && parameter.getValueType() != Parameter::BOOL) {
        const std::string text = entry.asString();
        std::unique_ptr<char[]> error(validator->validate(text.c_str()));
        if (error) {
          std::string message = error.get();
          while (!message.empty() && message.back() == '\n') message.pop_back();
          problems.push_back(name + ": \"" + text + "\" is rejected by the \"" +
                             validator->getName() + "\" validator: " + message);
        }
      }
    }
  }
}

// The items of one group by name (ignoring case), read once, so that printing a group of many
// values takes one pass over it.
struct GroupIndex {
  std::unordered_map<std::string, boost::shared_ptr<ValueBase>> values;  // the first of a name
  std::unordered_map<std::string, std::vector<ValueGroup>> groups;       // in order

  static std::string key(const char* name) {
    std::string lower(name != nullptr ? name : "");
    for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return lower;
  }

  explicit GroupIndex(const ValueGroup& group) {
    if (group.isNull()) return;
    for (std::size_t i = 0; i < group.getItemCount(); ++i) {
      const boost::shared_ptr<ValueGroupItem> item = group.getItem(i);
      if (item->isValueGroup()) {
        groups[key(item->getName())].push_back(*boost::static_pointer_cast<ValueGroup>(item));
      } else if (auto value = boost::dynamic_pointer_cast<ValueBase>(item)) {
        values.emplace(key(item->getName()), value);
      }
    }
  }

  boost::shared_ptr<ValueBase> findValue(const char* name) const {
    const auto found = values.find(key(name));
    return found != values.end() ? found->second : boost::shared_ptr<ValueBase>();
  }
};

// Where an entry came from: an index into SourceTracker's sources, or one of these.
const std::size_t FROM_DEFAULT = static_cast<std::size_t>(-1);
const std::size_t FROM_UNKNOWN = static_cast<std::size_t>(-2);

// The name of each source in sources: from names (one of SourceTracker's lists), or the
// default's, or unknown.
std::vector<std::string> namesOf(const std::vector<std::size_t>& sources,
                                 const std::vector<std::string>& names, const char* unknown) {
  std::vector<std::string> result;
  for (std::size_t source : sources) {
    result.push_back(source == FROM_DEFAULT   ? DEFAULT_SOURCE
                     : source == FROM_UNKNOWN ? unknown
                                              : names[source]);
  }
  return result;
}

// What the walk over the values reports, in specification order.
class ValuesSink {
public:
  virtual ~ValuesSink() = default;
  // One value: its texts, the source of each, and for a value given where the tool does not
  // read it the container it belongs in (else null).
  virtual void value(const ParameterRef& reference, const std::vector<std::string>& texts,
                     const std::vector<std::size_t>& sources, const Container* strayFrom) = 0;
  // One instance of a container, whose items follow until endContainer.
  virtual void beginContainer(const Container& container) = 0;
  virtual void endContainer() = 0;
};

// Walks a group in the order of its container's items, values with their sources, defaults for
// what no source gave, nested groups in place.
class ValuesWalker {
public:
  ValuesWalker(ValuesSink& sink, const SourceTracker& sources) : mSink(sink), mSources(sources) {}

  // Walks the group's items in the order of the container, then what the group holds that the
  // container does not place there. replayed is the same group in the source tracker's tree.
  void walkGroup(const ValueGroup& group, const ValueGroup& replayed, const Container& container) {
    const GroupIndex items(group);
    const GroupIndex twins(replayed);
    forEachPlacedItem(
        container,
        [&](const ParameterRef& reference) { walkValue(items, twins, reference); },
        [&](const Container& nested) { walkContainer(items, twins, nested); });
    walkStrays(group, twins);
  }

private:
  // A value bound to a parameter of a nested container, given where that container's values do
  // not go (a flag on the command line, whose values all land at the top): the tool never
  // reads it there.
  void walkStrays(const ValueGroup& group, const GroupIndex& twins) {
    for (std::size_t i = 0; i < group.getItemCount(); ++i) {
      const boost::shared_ptr<ValueGroupItem> item = group.getItem(i);
      if (item->isValueGroup() || mWalked.count(item->getInstanceId()) != 0) continue;
      const auto* value = dynamic_cast<const ValueBase*>(item.get());
      const ParameterRef* reference = value != nullptr ? value->getParameterRef() : nullptr;
      if (reference == nullptr) continue;
      mSink.value(*reference, textsOf(*value),
                  sourcesOf(*value, twins.findValue(value->getName())), reference->getContainer());
    }
  }

  std::vector<std::size_t> sourcesOf(const ValueBase& value,
                                     const boost::shared_ptr<ValueBase>& twin) const {
    std::vector<std::size_t> sources;
    if (twin) sources = mSources.sourcesOf(*twin);
    if (sources.size() != value.getValueCount()) sources.assign(value.getValueCount(), FROM_UNKNOWN);
    return sources;
  }

  static std::vector<std::string> textsOf(const ValueBase& value) {
    std::vector<std::string> texts;
    for (ValueIterator entry = value.getIterator(); entry.next();) texts.push_back(entry.asString());
    return texts;
  }

  void walkValue(const GroupIndex& items, const GroupIndex& twins, const ParameterRef& reference) {
    const char* id = reference.getId();
    boost::shared_ptr<ValueBase> value = items.findValue(id);
    std::vector<std::size_t> sources;
    if (value && value->isMatched()) {
      sources = sourcesOf(*value, twins.findValue(id));
    } else {
      // The default a tool reads for an absent value (members of a one-of have none).
      if (reference.getOneOf() != nullptr) return;
      const Value fallback = reference.getDefaultValue();
      if (fallback.isNull() || !fallback.hasValues()) return;
      value = boost::shared_ptr<ValueBase>(new Value(fallback));
      sources.assign(value->getValueCount(), FROM_DEFAULT);
    }
    mWalked.insert(value->getInstanceId());
    mSink.value(reference, textsOf(*value), sources, nullptr);
  }

  void walkContainer(const GroupIndex& items, const GroupIndex& twins, const Container& container) {
    const auto instances = items.groups.find(GroupIndex::key(container.getId()));
    if (instances == items.groups.end()) return;
    const auto replayed = twins.groups.find(GroupIndex::key(container.getId()));
    for (std::size_t i = 0; i < instances->second.size(); ++i) {
      const ValueGroup twin = replayed != twins.groups.end() && i < replayed->second.size()
                                  ? replayed->second[i]
                                  : ValueGroup();
      mSink.beginContainer(container);
      walkGroup(instances->second[i], twin, container);
      mSink.endContainer();
    }
  }

  ValuesSink& mSink;
  const SourceTracker& mSources;
  std::set<uint32_t> mWalked;  // instance ids of the values reported in their place
};

// The values as text: one line a value, with its type and sources; containers indented.
class TextSink : public ValuesSink {
public:
  TextSink(std::ostream& out, const SourceTracker& sources) : mOut(out), mSources(sources) {}

  void value(const ParameterRef& reference, const std::vector<std::string>& texts,
             const std::vector<std::size_t>& sources, const Container* strayFrom) override {
    const std::vector<std::string> labels = namesOf(sources, mSources.mLabels, "?");
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
  }

  void beginContainer(const Container& container) override {
    mOut << std::string(2 * mDepth, ' ') << container.getId() << '\n';
    ++mDepth;
  }

  void endContainer() override { --mDepth; }

private:
  std::ostream& mOut;
  const SourceTracker& mSources;
  std::size_t mDepth = 1;
};

// The registry's word for a value type, which scripts compare against.
const char* typeWord(const Parameter* parameter) {
  if (parameter == nullptr) return "unknown";
  switch (parameter->getValueType()) {
    case Parameter::BOOL: return "bool";
    case Parameter::STRING: return "string";
    case Parameter::INT32: return "int32";
    case Parameter::UINT32: return "uint32";
    case Parameter::INT64: return "int64";
    case Parameter::UINT64: return "uint64";
    case Parameter::DOUBLE: return "double";
    case Parameter::OID: return "oid";
    case Parameter::ENUM: return "enum";
    default: return "unknown";
  }
}

// The values as JSON: an array of items in specification order, each a value or a container
// instance with its own array of items.
class JsonSink : public ValuesSink {
public:
  JsonSink(JsonWriter& json, const SourceTracker& sources) : mJson(json), mSources(sources) {}

  void value(const ParameterRef& reference, const std::vector<std::string>& texts,
             const std::vector<std::size_t>& sources, const Container* strayFrom) override {
    const std::vector<std::string> names = namesOf(sources, mSources.mJsonNames, "unknown");
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
    mJson.value(names);
    if (strayFrom != nullptr) {
      mJson.key("notReadHere");
      mJson.value(std::string("it belongs in \"") + strayFrom->getId() + "\"");
    }
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

private:
  JsonWriter& mJson;
  const SourceTracker& mSources;
};

// A copy of the top group without the values that the tool does not read there (a flag of a
// parameter inside a container), each reported: they cannot be written where they stand.
ValueGroup withoutStrays(const ValueGroup& values, const Specification& specification) {
  ValueGroup copy(values, 0);
  for (std::size_t i = copy.getItemCount(); i-- > 0;) {
    const boost::shared_ptr<ValueGroupItem> item = copy.getItem(i);
    const auto* value = dynamic_cast<const ValueBase*>(item.get());
    const ParameterRef* reference = value != nullptr ? value->getParameterRef() : nullptr;
    if (reference != nullptr && reference->getContainer() != specification.getItemsContainer()) {
      printError(std::string(reference->getId()) + ": not exported: it belongs in \"" +
                 (reference->getContainer() != nullptr ? reference->getContainer()->getId() : "?") +
                 "\"");
      copy.remove(i);
    }
  }
  return copy;
}

}  // namespace

int reportValues(const Options& options, std::ostream& out) {
  ConfigurationManager* manager = nullptr;
  try {
    manager = ConfigurationManager::getInstance();
  } catch (const std::exception& e) {
    printError("the installation's registry files do not load (run zelk-config -check):");
    printException(e);
    return EXIT_PROBLEMS;
  }

  std::vector<std::string> words{options.specification};
  for (const std::string& file : options.valueFiles) {
    words.push_back(LOAD_CONFIGURATION_SWITCH);
    words.push_back(file);
  }
  words.insert(words.end(), options.toolArguments.begin(), options.toolArguments.end());
  std::vector<const char*> argv;
  for (const std::string& word : words) argv.push_back(word.c_str());

  const Specification* specification = nullptr;
  try {
    // The specification is looked up after enabling: enabling reloads every registry.
    manager->enableConfiguration(!options.noMachineConfig,
                                 options.applicationFile ? options.applicationFile->c_str() : nullptr,
                                 static_cast<unsigned int>(argv.size()), argv.data(),
                                 options.specification.c_str());
    specification = manager->getSpecification(options.specification.c_str());
  } catch (const std::exception& e) {
    printException(e);
    return EXIT_PROBLEMS;
  }
  if (specification == nullptr) {
    printError("The \"" + options.specification + "\" specification was not found");
    return EXIT_PROBLEMS;
  }

  SourceTracker sources;
  sources.replay(*manager, *specification);
  ValueGroup values;
  try {
    values = manager->getValueGroup(options.specification.c_str(), false, 0);
  } catch (const std::exception& e) {
    printException(e);
    return EXIT_PROBLEMS;
  }
  std::vector<std::string> problems;
  checkEntries(values, problems);
  if (!problems.empty()) {
    for (const std::string& problem : problems) printError(problem);
    return EXIT_PROBLEMS;
  }

  if (options.exportFile) {
    try {
      ValueFileWriter::writeFile(options.exportFile->c_str(), *specification,
                                 withoutStrays(values, *specification));
    } catch (const std::exception& e) {
      printException(e);
      return EXIT_PROBLEMS;
    }
  }

  if (options.json) {
    JsonWriter json(out);
    json.beginObject();
    json.key("specification");
    json.value(specification->getId());
    json.key("sources");
    std::vector<std::string> names = sources.mJsonNames;
    names.push_back(DEFAULT_SOURCE);
    json.value(names);
    json.key("values");
    json.beginArray();
    JsonSink sink(json, sources);
    ValuesWalker(sink, sources).walkGroup(values, sources.getReplay(),
                                          *specification->getItemsContainer());
    json.endArray();
    json.endObject();
    return EXIT_CLEAN;
  }
  out << "Sources of \"" << specification->getId() << "\", in order of precedence:\n";
  for (const std::string& name : sources.mNames) out << "  " << name << '\n';
  out << "  the defaults of the specification\n\n" << specification->getId() << '\n';
  TextSink sink(out, sources);
  ValuesWalker(sink, sources).walkGroup(values, sources.getReplay(),
                                        *specification->getItemsContainer());
  return EXIT_CLEAN;
}

}  // namespace zelk::configtool
