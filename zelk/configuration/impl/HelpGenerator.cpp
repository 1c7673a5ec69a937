#include "zelk/configuration/impl/HelpGenerator.h"

#include <cstring>
#include <istream>

#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Specification.h"
#include "zelk/util/StringUtil.h"

namespace zelk::configuration::impl {

namespace {

// Blank columns between the widest flag and the descriptions.
const size_t NAME_COLUMN_GAP = 3;
// Continuation lines of a long flag are indented by this much.
const size_t NAME_HANGING_INDENT = 3;
// Besides white space, lines may break after these (paths in descriptions).
const char* const BREAK_CHARACTERS = "/\\";

// Finds the width of the widest visible flag: the parameter's name, plus a blank and the value
// name when there is one (whatever the value type, so a boolean's value name widens the column
// although it is never shown).
class LongestParamNameFinder : public GroupItemVisitor {
public:
  bool visitParameterRef(const ParameterRef& ref) override {
    if (ref.isHidden()) {
      return true;
    }
    const Parameter* parameter = ref.getParameter();
    size_t width = std::strlen(parameter->getName());
    const char* valueName = parameter->getValueName();
    if (valueName != 0 && *valueName != '\0') {
      width += std::strlen(valueName) + 1;
    }
    if (width > mLongest) {
      mLongest = width;
    }
    return true;
  }

  size_t getLongest() const { return mLongest; }

private:
  size_t mLongest = 0;
};

// Reads the next line of in, or the empty string once in has run out.
std::string nextLine(std::istream& in) {
  std::string line;
  if (!std::getline(in, line)) {
    line.clear();
  }
  return line;
}

void writePadded(std::ostream& out, const std::string& text, size_t width) {
  out << text;
  if (text.size() < width) {
    out << std::string(width - text.size(), ' ');
  }
}

}  // namespace

HelpGenerator::HelpGenerator(size_t screenWidth, size_t maxParameterNameWidth)
    : mScreenWidth(screenWidth),
      mMaxParameterNameWidth(maxParameterNameWidth),
      mNameColumnWidth(0),
      mDescriptionWidth(0) {}

HelpGenerator::~HelpGenerator() {}

bool HelpGenerator::visitSpecificationStart(const Specification& specification) {
  LongestParamNameFinder finder;
  specification.accept(finder);
  mNameColumnWidth = finder.getLongest() + NAME_COLUMN_GAP;
  // Unsigned on purpose: a screen narrower than the name column wraps around to a huge width,
  // which leaves descriptions unwrapped.
  mDescriptionWidth = mScreenWidth - mNameColumnWidth - 1;
  return true;
}

bool HelpGenerator::visitParameterRef(const ParameterRef& ref) {
  if (ref.isHidden()) {
    return true;
  }
  const Parameter* parameter = ref.getParameter();
  std::string name = std::string("-") + parameter->getName();
  const char* valueName = parameter->getValueName();
  if (parameter->getValueType() != Parameter::BOOL && valueName != 0 && *valueName != '\0') {
    name += ' ';
    name += valueName;
  }
  std::stringstream names;
  StringUtil::wordWrap(names, name, 0, mNameColumnWidth, NAME_HANGING_INDENT, BREAK_CHARACTERS);
  std::stringstream descriptions;
  const char* description = ref.getDescription();
  StringUtil::wordWrap(descriptions, description != 0 ? description : "", 0, mDescriptionWidth, 0,
                       BREAK_CHARACTERS);
  // A wrapped-around description width is not a width to pad to.
  const size_t descriptionPadding = mScreenWidth > mNameColumnWidth ? mDescriptionWidth : 0;
  while (!(names.eof() && descriptions.eof())) {
    const std::string nameLine = nextLine(names);
    const std::string descriptionLine = nextLine(descriptions);
    if (nameLine.empty() && descriptionLine.empty()) {
      break;
    }
    writePadded(mOut, nameLine, mNameColumnWidth);
    writePadded(mOut, descriptionLine, descriptionPadding);
    mOut << '\n';
  }
  return true;
}

std::string HelpGenerator::getHelp() const { return mOut.str(); }

}  // namespace zelk::configuration::impl
