#include "CompletionModel.h"

#include <cctype>
#include <set>

#include "PlacedItems.h"
#include "zelk/configuration/EnumDefinition.h"
#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/Specification.h"
#include "zelk/util/CaseInsensitiveLess.h"
#include "zelk/util/StringFunctions.h"

namespace zelk::configtool {

using namespace zelk::configuration;

namespace {

const char* const LOAD_CONFIGURATION_FLAG = "-loadConfiguration";

std::string lower(const std::string& text) {
  std::string result(text);
  for (char& c : result) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return result;
}

CompletionModel::ValueCompletion valueOf(const Parameter& parameter) {
  CompletionModel::ValueCompletion value;
  if (parameter.getValueType() == Parameter::ENUM && parameter.getEnumDefinition() != nullptr) {
    value.kind = CompletionModel::LABELS;
    const EnumDefinition& definition = *parameter.getEnumDefinition();
    for (std::size_t i = 0; i < definition.getNumberOfValues(); ++i) {
      value.labels.push_back(definition.getSymbolicNameInDefinitionOrder(i));
    }
  } else if (parameter.getValueType() == Parameter::STRING) {
    const std::string valueName = lower(parameter.getValueName());
    if (hasEnding(valueName, "file") || valueName == "path" || valueName == "filename") {
      value.kind = CompletionModel::FILES;
    } else if (hasEnding(valueName, "directory") || hasEnding(valueName, "dir")) {
      value.kind = CompletionModel::DIRECTORIES;
    }
  }
  return value;
}

}  // namespace

const CompletionModel::ValueCompletion* CompletionModel::valueAfter(
    const std::string& flag) const {
  const auto found = values.find(lower(flag));
  return found != values.end() ? &found->second : nullptr;
}

std::string CompletionModel::functionName() const {
  std::string name = "_zelk_complete_";
  for (char c : tool) {
    name += std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
  }
  return name;
}

CompletionModel CompletionModel::of(const Specification& specification) {
  CompletionModel model;
  model.tool = specification.getName();
  model.specification = specification.getId();
  std::set<std::string, CaseInsensitiveLess> offered;
  forEachPlacedItem(
      *specification.getItemsContainer(),
      [&](const ParameterRef& reference) {
        const Parameter* parameter = reference.getParameter();
        if (parameter == nullptr) return;
        const std::string flag = std::string("-") + parameter->getName();
        if (!reference.isHidden() && offered.insert(flag).second) model.flags.push_back(flag);
        // A boolean switch takes no value.
        if (parameter->getValueType() != Parameter::BOOL) {
          model.values.emplace(lower(flag), valueOf(*parameter));
        }
      },
      // The values of a container's parameters come from value files only.
      [](const Container&) {});
  model.flags.push_back(LOAD_CONFIGURATION_FLAG);
  ValueCompletion files;
  files.kind = FILES;
  model.values.emplace(lower(LOAD_CONFIGURATION_FLAG), files);
  return model;
}

}  // namespace zelk::configtool
