#include "ManPageWriter.h"

#include <cctype>
#include <ctime>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include "PlacedItems.h"
#include "zelk/configuration/Container.h"
#include "zelk/configuration/EnumDefinition.h"
#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/ValueIterator.h"

namespace zelk::configtool {

using namespace zelk::configuration;

namespace {

const char* const LOAD_CONFIGURATION_FLAG = "-loadConfiguration";

// text for the inside of a roff line: backslashes escaped, hyphens as minus signs (option names
// are typed with them), line ends as blanks. Control characters other than tab are dropped:
// they have no meaning in a page.
std::string roff(const std::string& text) {
  std::string out;
  for (char c : text) {
    if (c == '\\') {
      out += "\\e";
    } else if (c == '-') {
      out += "\\-";
    } else if (c == '\n' || c == '\r' || c == '\t') {
      out += ' ';
    } else if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) {
      continue;
    } else {
      out += c;
    }
  }
  return out;
}

// text as a line of running text: a line that would start with a control character (".", "'")
// gets the zero-width "\&" in front, so that it is never read as a request.
std::string textLine(const std::string& text) {
  const std::string escaped = roff(text);
  if (!escaped.empty() && (escaped[0] == '.' || escaped[0] == '\'')) return "\\&" + escaped;
  return escaped;
}

// One argument of a request, in double quotes (a quote inside written as "\(dq").
std::string argument(const std::string& text) {
  std::string out = "\"";
  for (char c : roff(text)) {
    out += c == '"' ? std::string("\\(dq") : std::string(1, c);
  }
  return out + "\"";
}

// The date of the page, as help2man dates its pages: the day it was generated (UTC).
std::string today() {
  const std::time_t now = std::time(nullptr);
  std::tm utc{};
  char text[16] = "";
  if (gmtime_r(&now, &utc) != nullptr) std::strftime(text, sizeof text, "%Y-%m-%d", &utc);
  return text;
}

std::string upper(const std::string& text) {
  std::string result(text);
  for (char& c : result) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return result;
}

std::string joined(const std::vector<std::string>& texts, const char* separator) {
  std::string result;
  for (const std::string& text : texts) result += (result.empty() ? "" : separator) + text;
  return result;
}

// The labels of an enumeration, in the order declared.
std::vector<std::string> labelsOf(const Parameter& parameter) {
  std::vector<std::string> labels;
  const EnumDefinition* definition = parameter.getEnumDefinition();
  for (std::size_t i = 0; definition != nullptr && i < definition->getNumberOfValues(); ++i) {
    labels.push_back(definition->getSymbolicNameInDefinitionOrder(i));
  }
  return labels;
}

std::vector<std::string> defaultsOf(const ParameterRef& reference) {
  std::vector<std::string> texts;
  const Value fallback = reference.getDefaultValue();
  if (fallback.isNull()) return texts;
  for (ValueIterator entry = fallback.getIterator(); entry.next();) texts.push_back(entry.asString());
  return texts;
}

// One option: the flag in bold, its value name in italics, then the description and what the
// registry says of its values. container is the container it is read in, or null at the top.
void writeOption(std::ostream& out, const ParameterRef& reference, const Container* container) {
  const Parameter* parameter = reference.getParameter();
  if (parameter == nullptr || reference.isHidden()) return;
  const bool isSwitch = parameter->getValueType() == Parameter::BOOL;
  const std::string valueName = parameter->getValueName() != nullptr ? parameter->getValueName() : "";
  out << ".TP\n";
  if (isSwitch || valueName.empty()) {
    out << ".B " << argument(std::string("-") + parameter->getName()) << '\n';
  } else {
    out << ".BI " << argument(std::string("-") + parameter->getName()) << ' '
        << argument(" " + valueName) << '\n';
  }
  const char* description = reference.getDescription();
  if (description != nullptr && *description != '\0') out << textLine(description) << '\n';
  std::vector<std::string> facts;
  facts.push_back(std::string("Type: ") + parameter->getValueTypeName() +
                  (reference.isUnbounded() ? ", may be given more than once" : "") + ".");
  if (parameter->getValueType() == Parameter::ENUM) {
    facts.push_back("Values: " + joined(labelsOf(*parameter), ", ") + ".");
  }
  const std::vector<std::string> defaults = defaultsOf(reference);
  if (!defaults.empty()) facts.push_back("Default: " + joined(defaults, ", ") + ".");
  if (!reference.isOptional() && reference.getOneOf() == nullptr && container == nullptr) {
    facts.push_back("Required.");
  }
  if (container != nullptr) {
    facts.push_back(std::string("Read only from value files, inside the ") + container->getId() +
                    " element.");
  }
  out << textLine(joined(facts, " ")) << '\n';
}

// The options of a container, then those of the containers it places, depth first.
void writeOptions(std::ostream& out, const Container& container, const Container* inside) {
  std::vector<const Container*> nested;
  forEachPlacedItem(
      container, [&](const ParameterRef& reference) { writeOption(out, reference, inside); },
      [&](const Container& child) { nested.push_back(&child); });
  for (const Container* child : nested) writeOptions(out, *child, child);
}

}  // namespace

void writeManPage(std::ostream& out, const Specification& specification,
                  const std::string& usage) {
  const std::string tool = specification.getName();
  const std::string title = specification.getTitle() != nullptr ? specification.getTitle() : "";
  // NAME is "tool \- what it does": the title after its " - ", or the whole title.
  std::string summary = title;
  const std::string::size_type dash = title.find(" - ");
  if (dash != std::string::npos) summary = title.substr(dash + 3);
  if (summary.empty()) summary = specification.getDescription();

  out << ".\\\" Generated by zelk-config from the specification " << roff(specification.getId())
      << ".\n"
      << ".TH " << argument(upper(tool)) << " 1 \"" << today() << "\" \"zelk\" \"User Commands\"\n"
      << ".SH NAME\n"
      << roff(tool) << " \\- " << roff(summary) << '\n'
      << ".SH SYNOPSIS\n"
      << ".nf\n"
      << ".B " << argument(tool) << '\n';
  std::istringstream lines(usage);
  std::string line;
  while (std::getline(lines, line)) {
    const std::string::size_type start = line.find_first_not_of('\t');
    if (start == std::string::npos) continue;
    out << "\\&    " << roff(line.substr(start)) << '\n';
  }
  out << ".fi\n";
  const char* description = specification.getDescription();
  if (description != nullptr && *description != '\0') {
    out << ".SH DESCRIPTION\n" << textLine(description) << '\n';
  }
  out << ".SH OPTIONS\n"
      << "Flags may be abbreviated to any prefix that no other flag shares, in any letter case; a "
         "flag's value is the word after it.\n";
  writeOptions(out, *specification.getItemsContainer(), nullptr);
  out << ".TP\n"
      << ".BI " << argument(LOAD_CONFIGURATION_FLAG) << ' ' << argument(" file") << '\n'
      << "Reads values from the value file\n.IR file ;\n"
      << "values given on the command line take precedence.\n"
      << ".SH FILES\n"
      << ".TP\n"
      << ".I machine.config\n"
      << "In the configuration directory of the installation: values for every tool of the "
         "machine, in an element named after the tool; the command line and value files take "
         "precedence.\n"
      << ".TP\n"
      << ".I file\n"
      << "A value file named with\n.BR " << roff(LOAD_CONFIGURATION_FLAG) << ":\n"
      << "the root element " << roff(specification.getId())
      << " holds one attribute for each parameter and one element for each container.\n"
      << ".SH SEE ALSO\n"
      << ".BR zelk\\-config (1)\n";
}

}  // namespace zelk::configtool
