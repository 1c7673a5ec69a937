// UsageGenerator: writes the usage text of a specification: each visible child of a container on
// its own tab-indented line, optional items in brackets, repeatable items in braces, the
// alternatives of a one-of in parentheses separated by " | ", the members of a logical group
// separated by blanks. Hidden items are left out.
//
// A value provider's composeUsageMessage runs it; a provider with its own flag syntax overrides
// getParameterName.
//
//   UsageGenerator usage;
//   spec->accept(usage);
//   usage.getUsage();   // "\t[{-host name}]\n\t-verbose"
#pragma once

#include <sstream>
#include <string>

#include "zelk/configuration/GroupItemVisitor.h"

namespace zelk::configuration::impl {

class UsageGenerator : public GroupItemVisitor {
public:
  UsageGenerator();
  ~UsageGenerator() override;

  bool visitSpecificationStart(const Specification& specification) override;
  bool visitContainerStart(const Container& container) override;
  bool visitContainerMiddle(const Container& container) override;
  bool visitContainerEnd(const Container& container) override;
  bool visitOneOfStart(const OneOf& oneOf) override;
  bool visitOneOfMiddle(const OneOf& oneOf) override;
  bool visitOneOfEnd(const OneOf& oneOf) override;
  bool visitLogicalGroupMiddle(const LogicalGroup& logicalGroup) override;
  bool visitParameterRef(const ParameterRef& ref) override;

  // How a parameter is written: "-" and the parameter's name.
  virtual std::string getParameterName(const ParameterRef& ref) const;

  // The text written so far.
  std::string getUsage() const;

private:
  std::stringstream mOut;
  // Whether the last parameter reference visited was hidden.
  bool mLastHidden;
};

}  // namespace zelk::configuration::impl
