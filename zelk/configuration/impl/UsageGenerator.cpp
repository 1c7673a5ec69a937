#include "zelk/configuration/impl/UsageGenerator.h"

#include "zelk/configuration/Container.h"
#include "zelk/configuration/OneOf.h"
#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/ParameterRef.h"

namespace zelk::configuration::impl {

namespace {

// The item's own optional mark. isOptional() is true for every alternative of a one-of, which the
// parentheses already say, so alternatives are not bracketed for that alone.
bool isMarkedOptional(const GroupItem& item) {
  return (item.getCharacteristics() & GroupItem::OPTIONAL) != 0;
}

}  // namespace

UsageGenerator::UsageGenerator() : mLastHidden(false) {}

UsageGenerator::~UsageGenerator() {}

bool UsageGenerator::visitSpecificationStart(const Specification&) {
  mOut << '\t';
  return true;
}

bool UsageGenerator::visitContainerStart(const Container& container) {
  if (isMarkedOptional(container)) {
    mOut << '[';
  }
  if (container.isUnbounded()) {
    mOut << '{';
  }
  return true;
}

bool UsageGenerator::visitContainerMiddle(const Container&) {
  // A hidden child gets no line of its own: the break that would follow it is dropped.
  if (!mLastHidden) {
    mOut << "\n\t";
  }
  return true;
}

bool UsageGenerator::visitContainerEnd(const Container& container) {
  if (container.isUnbounded()) {
    mOut << '}';
  }
  if (isMarkedOptional(container)) {
    mOut << ']';
  }
  return true;
}

bool UsageGenerator::visitOneOfStart(const OneOf& oneOf) {
  if (!oneOf.isHidden()) {
    mOut << '(';
  }
  return true;
}

bool UsageGenerator::visitOneOfMiddle(const OneOf& oneOf) {
  if (!oneOf.isHidden()) {
    mOut << " | ";
  }
  return true;
}

bool UsageGenerator::visitOneOfEnd(const OneOf& oneOf) {
  if (!oneOf.isHidden()) {
    mOut << ')';
  }
  return true;
}

bool UsageGenerator::visitLogicalGroupMiddle(const LogicalGroup&) {
  mOut << ' ';
  return true;
}

bool UsageGenerator::visitParameterRef(const ParameterRef& ref) {
  mLastHidden = ref.isHidden();
  if (mLastHidden) {
    return true;
  }
  const bool optional = isMarkedOptional(ref);
  if (optional) {
    mOut << '[';
  }
  if (ref.isUnbounded()) {
    mOut << '{';
  }
  mOut << getParameterName(ref);
  const Parameter* parameter = ref.getParameter();
  const char* valueName = parameter->getValueName();
  if (parameter->getValueType() != Parameter::BOOL && valueName != 0 && *valueName != '\0') {
    mOut << ' ' << valueName;
  }
  if (ref.isUnbounded()) {
    mOut << '}';
  }
  if (optional) {
    mOut << ']';
  }
  return true;
}

std::string UsageGenerator::getParameterName(const ParameterRef& ref) const {
  return std::string("-") + ref.getParameter()->getName();
}

std::string UsageGenerator::getUsage() const { return mOut.str(); }

}  // namespace zelk::configuration::impl
