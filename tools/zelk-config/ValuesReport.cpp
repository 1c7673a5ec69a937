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
#include "Output.h"
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

  // The source label of each entry of the replayed value, or nothing when it is not known.
  std::vector<std::string> labelsOf(const ValueBase& replayed) const {
    std::vector<std::string> labels;
    const auto found = mEntrySources.find(replayed.getInstanceId());
    if (found != mEntrySources.end()) {
      for (std::size_t source : found->second) labels.push_back(mLabels[source]);
    }
    return labels;
  }

private:
  void addSource(const ValueProvider& provider) {
    const std::string name = provider.getName();
    if (name == ConfigurationManager::COMMAND_LINE_PROVIDER_NAME) {
      mNames.push_back("command line");
      mLabels.push_back("command line");
    } else if (const auto* file = dynamic_cast<const XmlFileValueProvider*>(&provider)) {
      mNames.push_back(std::string("value file ") + file->getXmlFilePath());
      mLabels.push_back(baseName(file->getXmlFilePath()));
    } else if (name == ConfigurationManager::APPLICATION_PROVIDER_NAME) {
      mNames.push_back("application values");
      mLabels.push_back("application");
    } else {
      mNames.push_back(std::string("provider ") + provider.getId());
      mLabels.push_back(provider.getId());
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

// Prints a group in the order of its container's items, values with their sources, defaults for
// what no source gave, nested groups indented.
class TreePrinter {
public:
  TreePrinter(std::ostream& out, const SourceTracker& sources) : mOut(out), mSources(sources) {}

  // Prints the group's items in the order of the container, then what the group holds that the
  // container does not place there. replayed is the same group in the source tracker's tree.
  void printGroup(const ValueGroup& group, const ValueGroup& replayed, const Container& container,
                  std::size_t depth) {
    const GroupIndex items(group);
    const GroupIndex twins(replayed);
    printItems(items, twins, container, depth);
    printStrays(group, twins, depth);
  }

private:
  void printItems(const GroupIndex& items, const GroupIndex& twins,
                  const GroupItemCollection& collection, std::size_t depth) {
    for (std::size_t i = 0; i < collection.getNumberOfItems(); ++i) {
      const GroupItem* item = collection.getItem(i);
      switch (item->getItemType()) {
        case GroupItem::PARAMETER_REF:
          printValue(items, twins, *static_cast<const ParameterRef*>(item), depth);
          break;
        case GroupItem::CONTAINER:
          printContainer(items, twins, *static_cast<const Container*>(item), depth);
          break;
        default:  // logical groups and one-ofs only arrange their members
          printItems(items, twins, *static_cast<const GroupItemCollection*>(item), depth);
          break;
      }
    }
  }

  // A value bound to a parameter of a nested container, given where that container's values do
  // not go (a flag on the command line, whose values all land at the top): the tool never
  // reads it there.
  void printStrays(const ValueGroup& group, const GroupIndex& twins, std::size_t depth) {
    for (std::size_t i = 0; i < group.getItemCount(); ++i) {
      const boost::shared_ptr<ValueGroupItem> item = group.getItem(i);
      if (item->isValueGroup() || mPrinted.count(item->getInstanceId()) != 0) continue;
      const auto* value = dynamic_cast<const ValueBase*>(item.get());
      const ParameterRef* reference = value != nullptr ? value->getParameterRef() : nullptr;
      if (reference == nullptr) continue;
      const Container* home = reference->getContainer();
      printLine(*value, *reference, labelsOf(*value, twins.findValue(value->getName())), depth,
                home != nullptr ? std::string("  (not read here: it belongs in \"") + home->getId() +
                                      "\")"
                                : std::string());
    }
  }

  std::vector<std::string> labelsOf(const ValueBase& value,
                                    const boost::shared_ptr<ValueBase>& twin) const {
    std::vector<std::string> labels;
    if (twin) labels = mSources.labelsOf(*twin);
    if (labels.size() != value.getValueCount()) labels.assign(value.getValueCount(), "?");
    return labels;
  }

  void printValue(const GroupIndex& items, const GroupIndex& twins, const ParameterRef& reference,
                  std::size_t depth) {
    const char* id = reference.getId();
    boost::shared_ptr<ValueBase> value = items.findValue(id);
    std::vector<std::string> labels;
    if (value && value->isMatched()) {
      labels = labelsOf(*value, twins.findValue(id));
    } else {
      // The default a tool reads for an absent value (members of a one-of have none).
      if (reference.getOneOf() != nullptr) return;
      const Value fallback = reference.getDefaultValue();
      if (fallback.isNull() || !fallback.hasValues()) return;
      value = boost::shared_ptr<ValueBase>(new Value(fallback));
      labels.assign(value->getValueCount(), DEFAULT_SOURCE);
    }
    mPrinted.insert(value->getInstanceId());
    printLine(*value, reference, labels, depth, std::string());
  }

  void printLine(const ValueBase& value, const ParameterRef& reference,
                 const std::vector<std::string>& labels, std::size_t depth,
                 const std::string& note) {
    const Parameter* parameter = reference.getParameter();
    mOut << std::string(2 * depth, ' ') << reference.getId() << " ("
         << (parameter != nullptr ? parameter->getValueTypeName() : "unknown")
         << (reference.isUnbounded() ? ", unbounded" : "") << ") = ";
    std::vector<std::string> texts;
    for (ValueIterator entry = value.getIterator(); entry.next();) texts.push_back(entry.asString());
    bool oneSource = true;
    for (const std::string& label : labels) oneSource = oneSource && label == labels.front();
    for (std::size_t i = 0; i < texts.size(); ++i) {
      if (i > 0) mOut << ", ";
      mOut << texts[i];
      if (!oneSource) mOut << " [" << labels[i] << ']';
    }
    if (oneSource && !labels.empty()) mOut << "  [" << labels.front() << ']';
    mOut << note << '\n';
  }

  void printContainer(const GroupIndex& items, const GroupIndex& twins,
                      const Container& container, std::size_t depth) {
    const auto instances = items.groups.find(GroupIndex::key(container.getId()));
    if (instances == items.groups.end()) return;
    const auto replayed = twins.groups.find(GroupIndex::key(container.getId()));
    for (std::size_t i = 0; i < instances->second.size(); ++i) {
      const ValueGroup twin = replayed != twins.groups.end() && i < replayed->second.size()
                                  ? replayed->second[i]
                                  : ValueGroup();
      mOut << std::string(2 * depth, ' ') << container.getId() << '\n';
      printGroup(instances->second[i], twin, container, depth + 1);
    }
  }

  std::ostream& mOut;
  const SourceTracker& mSources;
  std::set<uint32_t> mPrinted;  // instance ids of the values printed in their place
};

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

  out << "Sources of \"" << specification->getId() << "\", in order of precedence:\n";
  for (const std::string& name : sources.mNames) out << "  " << name << '\n';
  out << "  the defaults of the specification\n\n" << specification->getId() << '\n';
  TreePrinter printer(out, sources);
  printer.printGroup(values, sources.getReplay(), *specification->getItemsContainer(), 1);
  return EXIT_CLEAN;
}

}  // namespace zelk::configtool
