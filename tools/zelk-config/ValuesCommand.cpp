// -values: the values a tool would get for its specification, with the source of each.
//
// It enables the configuration exactly as the tool would (value files through
// "-loadConfiguration", the application's file, the machine file, the tool's command line) and
// reads the specification's merged values. It then writes them in specification order, each with
// its type and where it came from (the command line, a value file, or the default), in the
// format chosen, or prints every problem, one per line: what the library's validation finds, and
// what the tool would meet when reading the values (texts that do not convert to their type,
// texts that a parameter's validator rejects). With -export they are also written as a value
// file (ValueFileWriter).

#include <cctype>
#include <cstdint>
#include <memory>
#include <ostream>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "Command.h"
#include "CommandLine.h"
#include "Commands.h"
#include "Installation.h"
#include "Output.h"
#include "OutputFormat.h"
#include "PlacedItems.h"
#include "Publisher.h"
#include "SourceTracker.h"
#include "ValuesSink.h"
#include "ValuesWatch.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/Container.h"
#include "zelk/configuration/EnumDefinition.h"
#include "zelk/configuration/GroupItemCollection.h"
#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/ValidationException.h"
#include "zelk/configuration/Validator.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/ValueBase.h"
#include "zelk/configuration/ValueFileWriter.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/ValueIterator.h"
#include "zelk/configuration/XmlFileValueProvider.h"
#include "zelk/configuration/impl/ValueTypeTable.h"
#include "zelk/host/HostMainLog.h"
#include "zelk/host/XmlTokenReader.h"
#include "zelk/util/StringFunctions.h"

namespace zelk::configtool {

using namespace zelk::configuration;

namespace {

const char* const LOAD_CONFIGURATION_SWITCH = "-loadConfiguration";

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

// "file:line:column: " where a value file holds the text, else nothing.
std::string placePrefix(const EntryPlace& place) {
  if (place.line == 0) return std::string();
  return place.file + ':' + std::to_string(place.line) + ':' + std::to_string(place.column) + ": ";
}

// The problems a tool would meet reading the values: texts that do not convert to the
// parameter's type, and texts that the parameter's validator rejects. replayed is the same group
// in the source tracker's tree, which places a text read from a value file.
void checkEntries(const ValueGroup& group, const ValueGroup& replayed, const SourceTracker& sources,
                  std::vector<std::string>& problems) {
  const GroupIndex twins(replayed);
  std::unordered_map<std::string, std::size_t> instances;  // groups of each name seen so far
  for (std::size_t i = 0; i < group.getItemCount(); ++i) {
    const boost::shared_ptr<ValueGroupItem> item = group.getItem(i);
    if (item->isValueGroup()) {
      const auto twin = twins.groups.find(GroupIndex::key(item->getName()));
      const std::size_t instance = instances[GroupIndex::key(item->getName())]++;
      checkEntries(*boost::static_pointer_cast<ValueGroup>(item),
                   twin != twins.groups.end() && instance < twin->second.size()
                       ? twin->second[instance]
                       : ValueGroup(),
                   sources, problems);
      continue;
    }
    const auto* value = dynamic_cast<const ValueBase*>(item.get());
    if (value == nullptr || value->getParameter() == nullptr) continue;
    const Parameter& parameter = *value->getParameter();
    const boost::shared_ptr<ValueBase> twin = twins.findValue(value->getName());
    std::size_t index = 0;
    for (ValueIterator entry = value->getIterator(); entry.next(); ++index) {
      const std::string name =
          (twin ? placePrefix(sources.placeOf(*twin, index)) : std::string()) + value->getName();
      try {
        // A bool's text is converted by asString itself; the others are checked as their type.
        const std::string text = entry.asString();
        ValidationErrors errors;
        const impl::ValueTypeInfo* type = impl::ValueTypeTable::find(parameter.getValueType());
        if (parameter.getValueType() == Parameter::ENUM) {
          if (parameter.getEnumDefinition() != nullptr) {
            parameter.getEnumDefinition()->getValue(text.c_str(), &errors);
          }
        } else if (type != nullptr && type->check != nullptr) {
          type->check(text.c_str(), &errors);
        }
        errors.throwIfErrors();
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

// Walks a group in the order of its container's items, values with their sources, defaults for
// what no source gave, nested groups in place.
class ValuesWalker {
public:
  // With explain, each value goes with every source's part in it.
  ValuesWalker(ValuesSink& sink, const SourceTracker& sources, bool explain)
      : mSink(sink), mSources(sources), mExplain(explain) {}

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
      const boost::shared_ptr<ValueBase> twin = twins.findValue(value->getName());
      const std::vector<Contribution> story =
          twin ? mSources.contributionsOf(*twin) : std::vector<Contribution>();
      mSink.value(*reference, textsOf(*value), sourcesOf(*value, twin), reference->getContainer(),
                  mExplain ? &story : nullptr);
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
    std::vector<Contribution> story;
    if (value && value->isMatched()) {
      const boost::shared_ptr<ValueBase> twin = twins.findValue(id);
      sources = sourcesOf(*value, twin);
      if (mExplain && twin) story = mSources.contributionsOf(*twin);
    } else {
      // The default a tool reads for an absent value (members of a one-of have none).
      if (reference.getOneOf() != nullptr) return;
      const Value fallback = reference.getDefaultValue();
      if (fallback.isNull() || !fallback.hasValues()) return;
      value = boost::shared_ptr<ValueBase>(new Value(fallback));
      sources.assign(value->getValueCount(), FROM_DEFAULT);
      if (mExplain) story = mSources.defaultOf(reference);
    }
    mWalked.insert(value->getInstanceId());
    mSink.value(reference, textsOf(*value), sources, nullptr, mExplain ? &story : nullptr);
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
  const bool mExplain;
  std::set<uint32_t> mWalked;  // instance ids of the values reported in their place
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

// The name of the root element of the XML file at path, or empty when it has none that can be
// read.
std::string rootElementOf(const std::string& path) {
  host::XmlTokenReader reader;
  char name[1025];
  if (!reader.openFile(path.c_str()) || !reader.skipComments() || !reader.acceptToken("<") ||
      !reader.acceptValue(name, sizeof name)) {
    return std::string();
  }
  return name;
}

// Whether path is one of the files named by the user, as given or as the library found it in the
// configuration directory (the machine file, read for every tool, is not).
bool namedByUser(const Options& options, const std::string& path) {
  std::vector<std::string> named = options.valueFiles;
  if (options.applicationFile) named.push_back(*options.applicationFile);
  for (const std::string& file : named) {
    if (path == file || (path.size() > file.size() && hasEnding(path, "/" + file))) return true;
  }
  return false;
}

// The manager enabled as the tool would enable it, with the specification; null, with the
// problem reported, when that fails.
// Where the tool's own arguments begin in the words that enableAsTheTool gives the manager.
int firstToolWord(const Options& options) {
  return 1 + 2 * static_cast<int>(options.valueFiles.size());
}

const Specification* enableAsTheTool(ConfigurationManager& manager, const Options& options) {
  // The words as firstToolWord counts them.
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
    // Where values and defaults were written is kept from the reload that enabling makes: the
    // problems of value files are placed, and -explain shows every place.
    manager.setKeepPositions(true);
    // The specification is looked up after enabling: enabling reloads every registry.
    manager.enableConfiguration(!options.noMachineConfig,
                                options.applicationFile ? options.applicationFile->c_str() : nullptr,
                                static_cast<unsigned int>(argv.size()), argv.data(),
                                options.specification.c_str());
    specification = manager.getSpecification(options.specification.c_str());
  } catch (const std::exception& e) {
    printException(e);
    return nullptr;
  }
  if (specification == nullptr) {
    printError("The \"" + options.specification + "\" specification was not found");
  }
  return specification;
}

// Prints the problems of e, each error that a value file placed (an unknown parameter or
// container, one given twice) with its file, line and column first.
void printPlacedException(const std::exception& e) {
  const auto* validation = dynamic_cast<const ValidationException*>(&e);
  if (validation == nullptr || validation->getErrors().getNumberOfErrors() == 0) {
    printException(e);
    return;
  }
  const ValidationErrors& errors = validation->getErrors();
  for (std::size_t i = 0; i < errors.getNumberOfErrors(); ++i) {
    const SourcePosition& where = errors.getPosition(i);
    EntryPlace place;
    place.file = where.file;
    place.line = where.line;
    place.column = where.column;
    printError(placePrefix(place) + errors.getError(i));
  }
}

// The merged values, or a null group with every problem reported.
ValueGroup readValues(ConfigurationManager& manager, const Options& options,
                      const SourceTracker& sources) {
  ValueGroup values;
  try {
    values = manager.getValueGroup(options.specification.c_str(), false, 0);
    // With no value from any source the library hands out an empty tree unchecked; a tool that
    // asks for its values would still miss the required ones, so they are checked here.
    if (values.getItemCount() == 0) {
      ValueGroup copy(values, 0);
      manager.validateValues(*manager.getSpecification(options.specification.c_str()), copy,
                             nullptr);
    }
  } catch (const std::exception& e) {
    printPlacedException(e);
    return ValueGroup();
  }
  std::vector<std::string> problems;
  checkEntries(values, sources.getReplay(), sources, problems);
  for (const std::string& problem : problems) printError(problem);
  return problems.empty() ? values : ValueGroup();
}

// Writes the values in the chosen format, in the order of the specification.
void writeValues(std::ostream& out, const Options& options, const SourceTracker& sources,
                 const ValueGroup& values, const Specification& specification) {
  const std::unique_ptr<ValuesSink> sink = chosenFormat(options).makeValuesSink(out, sources);
  sink->begin(specification);
  ValuesWalker(*sink, sources, options.explain)
      .walkGroup(values, sources.getReplay(), *specification.getItemsContainer());
  sink->end();
}

}  // namespace

int runValues(const CommandContext& context) {
  // A file to publish is checked on its own, without the machine file, the application's file or
  // a tool's arguments, which the fleet does not share.
  Options publishing = context.options;
  if (publishing.publish) {
    publishing.noMachineConfig = true;
    publishing.applicationFile.reset();
    publishing.toolArguments.clear();
  }
  const Options& options = publishing;
  // What the main log says from here on is about this installation only.
  host::hostClearMainLog();
  if (loadInstallation(context.directories, options.maxFileSize) == nullptr) return EXIT_PROBLEMS;
  ConfigurationManager* manager = nullptr;
  try {
    manager = ConfigurationManager::getInstance();
  } catch (const std::exception& e) {
    printError("the installation's registry files do not load (run zelk-config -check):");
    printException(e);
    return EXIT_PROBLEMS;
  }
  const Specification* specification = enableAsTheTool(*manager, options);
  if (specification == nullptr) return EXIT_PROBLEMS;

  // Plug-ins skipped while enabling (validators a registry may name) are said once, with why.
  for (const std::string& note : pluginSkipNotes()) printError("note: " + note);

  SourceTracker sources;
  sources.replay(*manager, *specification, firstToolWord(options));
  for (const std::string& file : sources.getSilentFiles()) {
    if (!namedByUser(options, file)) continue;
    const std::string root = rootElementOf(file);
    printError("warning: value file \"" + file + "\" gives no values for \"" +
               options.specification + "\"" +
               (root.empty() ? std::string() : ": its root element is <" + root + ">"));
  }
  const ValueGroup values = readValues(*manager, options, sources);
  if (values.isNull()) return EXIT_PROBLEMS;

  if (options.exportFile) {
    try {
      ValueFileWriter::writeFile(options.exportFile->c_str(), *specification,
                                 withoutStrays(values, *specification));
    } catch (const std::exception& e) {
      printException(e);
      return EXIT_PROBLEMS;
    }
  }

  if (options.publish) {
    const auto* file = dynamic_cast<const XmlFileValueProvider*>(
        manager->getValueProvider(ConfigurationManager::XML_FILE_PROVIDER_NAME));
    return file != nullptr ? publishValueFile(options, file->getXmlFilePath(), context.out)
                           : EXIT_PROBLEMS;
  }

  writeValues(context.out, options, sources, values, *specification);
  if (options.watch) {
    context.out.flush();
    return watchValues(*manager, options.specification.c_str(), context.out);
  }
  return EXIT_CLEAN;
}

}  // namespace zelk::configtool
