#include "RegistryChecker.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <strings.h>
#include <map>
#include <memory>
#include <ostream>
#include <unordered_set>

#include "Output.h"
#include "ShellText.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/ConfigurationRegistryLoader.h"
#include "zelk/configuration/Container.h"
#include "zelk/configuration/GlobalItem.h"
#include "zelk/configuration/Group.h"
#include "zelk/configuration/GroupItemVisitor.h"
#include "zelk/configuration/LogicalGroup.h"
#include "zelk/configuration/OneOf.h"
#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/SourcePosition.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/ValidationException.h"
#include "zelk/configuration/Validator.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/ValueIterator.h"
#include "zelk/configuration/impl/Factory.h"

namespace zelk::configtool {

using namespace zelk::configuration;

namespace {

std::string oneLine(std::string text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  return text;
}

// Why "-" + name cannot be typed as one plain word on a shell command line (empty when it can):
// a flag is matched against the words a tool is given, and a name with a blank, a shell
// character or a control character cannot arrive as one unquoted word, nor be offered by
// completion as the user would type it.
std::string untypable(const std::string& name) {
  if (name.empty()) return "it is empty";
  for (char c : name) {
    const unsigned char byte = static_cast<unsigned char>(c);
    // Letters, digits and a few punctuation characters that no shell treats specially; any
    // byte of a UTF-8 sequence is taken as part of a letter.
    if (std::isalnum(byte) || byte >= 0x80 || std::strchr("-_.,:+@%/=", c) != nullptr) continue;
    if (c == ' ') return "it holds a space";
    if (byte < 0x20 || byte == 0x7F) return "it holds a control character";
    return std::string("it holds \"") + c + "\"";
  }
  return std::string();
}

std::string childCount(std::size_t count) {
  return std::to_string(count) + (count == 1 ? " child" : " children");
}

template <typename T>
std::vector<T*> collect(IEnumerator<T*>* enumerator) {
  std::unique_ptr<IEnumerator<T*>> owned(enumerator);
  std::vector<T*> items;
  for (; owned->hasNext(); owned->moveNext()) items.push_back(owned->getCurrent());
  return items;
}

// Walks a specification or group and reports the constraints that values would trip over and
// the defaults that a validator rejects; records every parameter it meets.
class ModelWalker : public GroupItemVisitor {
public:
  struct Problem {
    const char* element;  // the element that declares the item
    std::string itemId;
    std::string defaultText;  // for a default: the text, to find the right reference
    std::string message;
  };

  bool visitOneOfStart(const OneOf& oneOf) override {
    if (oneOf.getNumberOfItems() < 2) {
      mProblems.push_back({"OneOf", oneOf.getId(), std::string(),
                           "one-of \"" + std::string(oneOf.getId()) + "\" has " +
                               childCount(oneOf.getNumberOfItems()) +
                               ": reading values will fail with \"A one of must contain at "
                               "least two children\""});
    }
    return true;
  }

  bool visitLogicalGroupStart(const LogicalGroup& group) override {
    const std::string prefix = "logical group \"" + std::string(group.getId()) + "\"";
    if (group.getNumberOfItems() < 2) {
      mProblems.push_back({"LogicalGroup", group.getId(), std::string(),
                           prefix + " has " + childCount(group.getNumberOfItems()) +
                               ": reading values will fail with \"A logical group must "
                               "contain at least two children\""});
    } else if (!group.isOptional()) {
      bool requiredMember = false;
      for (std::size_t i = 0; i < group.getNumberOfItems() && !requiredMember; ++i) {
        requiredMember = !group.getItem(i)->isOptional();
      }
      if (!requiredMember) {
        mProblems.push_back({"LogicalGroup", group.getId(), std::string(),
                             prefix + " is required but every member is optional: reading "
                                      "values will fail with \"A required logical group must "
                                      "contain at least one required item\""});
      }
    }
    return true;
  }

  bool visitParameterRef(const ParameterRef& reference) override {
    const Parameter* parameter = reference.getParameter();
    mUsed.insert(parameter);
    checkDefault(reference.getDefaultValue(), parameter, "ParameterRef", reference.getId());
    if (parameter != nullptr && !reference.isHidden()) mFlags.push_back(&reference);
    return true;
  }

  // The flags of the last walk that can never be given: the command line takes any prefix of a
  // visible flag and never prefers an exact name, so a flag that is a prefix of another visible
  // flag (-cache beside -cacheBytes) is ambiguous however it is typed. Sorted without regard to
  // case, a flag's longer namesakes follow it directly, so one pass finds them.
  void checkPrefixFlags() {
    const auto name = [](const ParameterRef* reference) {
      std::string lower = reference->getParameter()->getName();
      for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
      return lower;
    };
    std::vector<std::pair<std::string, const ParameterRef*>> flags;
    for (const ParameterRef* reference : mFlags) flags.emplace_back(name(reference), reference);
    std::sort(flags.begin(), flags.end(),
              [](const auto& a, const auto& b) { return a.first < b.first; });
    for (std::size_t i = 0; i + 1 < flags.size(); ++i) {
      const std::string& shorter = flags[i].first;
      std::size_t longer = i + 1;
      while (longer < flags.size() && flags[longer].first == shorter) ++longer;
      if (longer == flags.size() || flags[longer].first.compare(0, shorter.size(), shorter) != 0) {
        continue;
      }
      const std::string flag = std::string("-") + flags[i].second->getParameter()->getName();
      mProblems.push_back(
          {"ParameterRef", flags[i].second->getId(), std::string(),
           "the flag " + flag + " can never be given on the command line: it is a prefix of -" +
               flags[longer].second->getParameter()->getName() + ", so every " + flag +
               " is ambiguous"});
    }
    mFlags.clear();
  }

  void forgetFlags() { mFlags.clear(); }

  // What a parameter declares on its own: its default, and a flag name that can be typed.
  void checkParameter(const Parameter& parameter) {
    checkDefault(parameter.getDefaultValue(), &parameter, "Parameter", parameter.getId());
    const std::string name = parameter.getName();
    const std::string why = untypable(name);
    if (!why.empty()) {
      mProblems.push_back({"Parameter", parameter.getId(), std::string(),
                           "the flag name \"" + name + "\" of parameter \"" +
                               std::string(parameter.getId()) +
                               "\" cannot be typed on a command line: " + why});
    }
  }

  void checkDefault(const Value& value, const Parameter* parameter, const char* element,
                    const std::string& id) {
    const Validator* validator = parameter != nullptr ? parameter->getValidator() : nullptr;
    if (validator == nullptr || value.isNull()) return;
    for (ValueIterator entry = value.getIterator(); entry.next();) {
      const std::string text = entry.asString();
      std::unique_ptr<char[]> error(validator->validate(text.c_str()));
      if (error) {
        mProblems.push_back({element, id, text,
                             "default \"" + text + "\" of \"" + std::string(parameter->getId()) +
                                 "\" is rejected by the \"" + validator->getName() +
                                 "\" validator: " + oneLine(error.get())});
      }
    }
  }

  std::vector<Problem> mProblems;
  std::unordered_set<const Parameter*> mUsed;
  std::vector<const ParameterRef*> mFlags;  // the visible flags of the walk, in order
};

}  // namespace

void RegistryChecker::check(const std::vector<std::string>& files, std::size_t maxFileSize) {
  std::unique_ptr<ConfigurationManager> manager(impl::Factory::createManager());
  if (maxFileSize != 0) manager->setMaxFileSize(maxFileSize);
  for (const std::string& path : files) {
    loadFile(mIndex.addFile(path), *manager);
  }
  checkFiles();
  checkModel(*manager);
}

void RegistryChecker::addProblem(const std::string& message) {
  add(nullptr, Finding::NO_FILE, message);
}

void RegistryChecker::loadFile(std::size_t file, ConfigurationManager& manager) {
  try {
    ConfigurationRegistryLoader::loadFile(mIndex.getPath(file).c_str(), &manager, 0);
  } catch (const std::exception& e) {
    // The loader places its errors: each error of a ValidationException where it has a position
    // of its own, else where the exception stands.
    mLoadFailed = true;
    const auto* configuration = dynamic_cast<const ConfigurationException*>(&e);
    const SourcePosition position =
        configuration != nullptr ? configuration->getPosition() : SourcePosition();
    const auto* validation = dynamic_cast<const ValidationException*>(&e);
    if (validation != nullptr && validation->getErrors().getNumberOfErrors() > 0) {
      const ValidationErrors& errors = validation->getErrors();
      for (std::size_t i = 0; i < errors.getNumberOfErrors(); ++i) {
        const SourcePosition& own = errors.getPosition(i);
        add(file, own.isKnown() ? own : position, errors.getError(i));
      }
    } else {
      add(file, position, describeException(e));
    }
  }
}

void RegistryChecker::checkFiles() {
  // The loader accepts "hidden" on one-ofs and logical groups, but these items never keep it, so
  // their members stay in help and usage.
  for (const ElementRecord& record : mIndex.getRecords()) {
    if (record.element != "OneOf" && record.element != "LogicalGroup") continue;
    const std::string* hidden = record.attribute("hidden");
    if (hidden != nullptr && (strcasecmp(hidden->c_str(), "true") == 0 || *hidden == "1")) {
      add(&record, record.file,
          std::string("hidden has no effect on a ") +
              (record.element == "OneOf" ? "one-of" : "logical group") +
              ": mark its members hidden instead");
    }
  }
}

namespace {

// A problem of the model with the element it is reported at (null: not found in the files).
struct PlacedProblem {
  const ElementRecord* where;
  std::string message;
};

template <typename Item>
using ById = std::map<std::string, std::vector<Item*>>;

// Names declared twice: the registries accept them, but every look-up of them fails. Reported
// at the second declaration, naming the first.
std::vector<PlacedProblem> findDuplicates(const RegistryIndex& index,
                                          const ById<Specification>& specifications,
                                          const ById<GlobalItem>& globalItems) {
  std::vector<PlacedProblem> problems;
  const auto duplicate = [&](const char* element, const char* word, const std::string& id) {
    const std::vector<const ElementRecord*> records = index.findAll(element, id);
    std::string message = "Duplicate " + std::string(word) + " \"" + id + "\"";
    if (records.size() >= 2) {
      message += " (first declared at " + index.getPath(records[0]->file) + ':' +
                 std::to_string(records[0]->line) + ':' + std::to_string(records[0]->column) +
                 ")";
    }
    problems.push_back({records.size() >= 2 ? records[1] : nullptr,
                        message + ": looking it up fails"});
  };
  for (const auto& entry : specifications) {
    if (entry.second.size() > 1) duplicate("Specification", "specification", entry.first);
  }
  for (const auto& entry : globalItems) {
    if (entry.second.size() > 1) {
      const bool isGroup = entry.second.front()->getItemType() == GlobalItem::GROUP;
      duplicate(isGroup ? "Group" : "Parameter", "item", entry.first);
    }
  }
  return problems;
}

// The element each problem of the walk belongs to. owners lists each walked specification or
// group with the number of problems found before it; the first ownedProblems problems were found
// in those walks, the rest on parameters.
std::vector<PlacedProblem> placeProblems(
    const RegistryIndex& index, const std::vector<ModelWalker::Problem>& problems,
    const std::vector<std::pair<std::string, std::size_t>>& owners, std::size_t ownedProblems) {
  std::vector<PlacedProblem> placed;
  for (std::size_t i = 0, owner = 0; i < problems.size(); ++i) {
    while (owner + 1 < owners.size() && owners[owner + 1].second <= i) ++owner;
    const ModelWalker::Problem& problem = problems[i];
    const ElementRecord* where = nullptr;
    if (!problem.defaultText.empty()) {
      // The reference that carries this default; else the parameter that declares it.
      for (const ElementRecord* record : index.findAll(problem.element, problem.itemId)) {
        const std::string* text = record->attribute("default");
        if (text != nullptr && *text == problem.defaultText) {
          where = record;
          break;
        }
      }
      if (where == nullptr) where = index.findItem("Parameter", problem.itemId);
    } else if (i < ownedProblems && !owners.empty()) {
      where = index.findItem(problem.element, problem.itemId, std::nullopt, &owners[owner].first);
    }
    if (where == nullptr) where = index.findItem(problem.element, problem.itemId);
    placed.push_back({where, problem.message});
  }
  return placed;
}

}  // namespace

void RegistryChecker::checkModel(ConfigurationManager& manager) {
  ById<Specification> specifications;
  for (Specification* specification : collect(manager.getSpecificationEnumerator())) {
    specifications[specification->getId()].push_back(specification);
  }
  ById<GlobalItem> globalItems;
  for (GlobalItem* item : collect(manager.getGlobalItemEnumerator())) {
    globalItems[item->getId()].push_back(item);
  }
  for (const PlacedProblem& problem : findDuplicates(mIndex, specifications, globalItems)) {
    add(problem.where, problem.where != nullptr ? problem.where->file : Finding::NO_FILE,
        problem.message);
  }

  // The trees: every specification, then every group (a group nobody refers to is still
  // checked). Parameters count as used only through a specification.
  ModelWalker walker;
  std::vector<std::pair<std::string, std::size_t>> owners;  // owner id, problems before it
  for (const auto& entry : specifications) {
    for (const Specification* specification : entry.second) {
      owners.emplace_back(specification->getId(), walker.mProblems.size());
      specification->accept(walker);
      walker.checkPrefixFlags();
    }
  }
  const std::unordered_set<const Parameter*> used = walker.mUsed;
  std::vector<const Parameter*> parameters;
  for (const auto& entry : globalItems) {
    for (const GlobalItem* item : entry.second) {
      if (const auto* group = dynamic_cast<const Group*>(item)) {
        owners.emplace_back(group->getId(), walker.mProblems.size());
        group->accept(walker);
        walker.forgetFlags();  // only a tool has a command line
      } else if (const auto* parameter = dynamic_cast<const Parameter*>(item)) {
        parameters.push_back(parameter);
      }
    }
  }
  const std::size_t ownedProblems = walker.mProblems.size();
  for (const Parameter* parameter : parameters) {
    walker.checkParameter(*parameter);
  }
  for (const PlacedProblem& problem :
       placeProblems(mIndex, walker.mProblems, owners, ownedProblems)) {
    add(problem.where, problem.where != nullptr ? problem.where->file : Finding::NO_FILE,
        problem.message);
  }

  // A file that failed to load may hold the specification that uses a parameter: without every
  // file loaded, "unused" would be a guess.
  for (const Parameter* parameter : parameters) {
    if (!mLoadFailed && used.count(parameter) == 0) {
      const ElementRecord* where = mIndex.findItem("Parameter", parameter->getId());
      add(where, where != nullptr ? where->file : Finding::NO_FILE,
          "parameter \"" + std::string(parameter->getId()) + "\" is not used by any specification");
    }
  }
}

void RegistryChecker::add(const ElementRecord* where, std::size_t file,
                          const std::string& message) {
  if (where != nullptr) {
    add(where->file, where->line, where->column, message);
  } else {
    add(file, 0, 0, message);
  }
}

void RegistryChecker::add(std::size_t file, const SourcePosition& position,
                          const std::string& message) {
  add(file, position.line, position.column, message);
}

void RegistryChecker::add(std::size_t file, unsigned int line, unsigned int column,
                          const std::string& message) {
  Finding finding;
  finding.file = file;
  finding.line = line;
  finding.column = column;
  finding.message = printable(oneLine(message));
  const std::string key = std::to_string(finding.file) + ':' + std::to_string(finding.line) +
                          ':' + std::to_string(finding.column) + ": " + finding.message;
  if (mSeen.insert(key).second) mFindings.push_back(finding);
}

std::vector<Finding> RegistryChecker::getFindings() const {
  std::vector<Finding> findings = mFindings;
  std::stable_sort(findings.begin(), findings.end(), [](const Finding& a, const Finding& b) {
    // Problems without a file come first; then by file, line and column.
    const std::size_t fa = a.file == Finding::NO_FILE ? 0 : a.file + 1;
    const std::size_t fb = b.file == Finding::NO_FILE ? 0 : b.file + 1;
    if (fa != fb) return fa < fb;
    if (a.line != b.line) return a.line < b.line;
    return a.column < b.column;
  });
  return findings;
}

void RegistryChecker::print(std::ostream& out) const {
  const std::vector<Finding> findings = getFindings();
  for (const Finding& finding : findings) {
    if (finding.file != Finding::NO_FILE) {
      out << printable(mIndex.getPath(finding.file));
      if (finding.line != 0) out << ':' << finding.line << ':' << finding.column;
      out << ": ";
    }
    out << finding.message << '\n';
  }
  const std::size_t files = mIndex.getFileCount();
  const std::string fileWord = files == 1 ? " registry file" : " registry files";
  if (findings.empty()) {
    out << "No problems found in " << files << fileWord << ".\n";
  } else {
    out << findings.size() << (findings.size() == 1 ? " problem" : " problems") << " found in "
        << files << fileWord << ".\n";
  }
}

}  // namespace zelk::configtool
