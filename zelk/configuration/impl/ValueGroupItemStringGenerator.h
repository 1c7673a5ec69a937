// ValueGroupItemStringGenerator: renders a value tree (or one value) as indented debug text
// showing names, value types, entries and the identity of states and their bindings.
//
//   std::string text = impl::ValueGroupItemStringGenerator::getString(values);
#pragma once

#include <string>

#include "zelk/configuration/ValueGroupItemVisitor.h"
#include "zelk/configuration/impl/RepresentationPrinter.h"

namespace zelk::configuration {
class ValueGroupItem;
}

namespace zelk::configuration::impl {

class ValueGroupItemStringGenerator : public ValueGroupItemVisitor, public RepresentationPrinter {
public:
  // The text of item and everything below it.
  static std::string getString(const ValueGroupItem& item);

  ValueGroupItemStringGenerator();
  ~ValueGroupItemStringGenerator() override;

  bool visitValueBase(ValueBase& value) override;
  bool visitValueGroupStart(ValueGroup& group) override;
  bool visitValueGroupEnd(ValueGroup& group) override;

private:
  void printValue(const ValueBase& value);
  void printStartValueGroup(const ValueGroup& group);
  void printEndValueGroup(const ValueGroup& group);
};

}  // namespace zelk::configuration::impl
