// ValueGroupItemVisitor: walks a value tree through ValueGroupItem::accept.
//
// Override what you need; every operation returns true to go on and false to stop the walk.
// Values reach visitValue or visitUnboundedValue, which both forward to visitValueBase by default.
//
//   class CountValues : public zelk::configuration::ValueGroupItemVisitor {
//   public:
//     bool visitValueBase(zelk::configuration::ValueBase&) override { ++count; return true; }
//     size_t count = 0;
//   };
//   CountValues counter;
//   group.accept(counter);
#pragma once

namespace zelk::configuration {

class UnboundedValue;
class Value;
class ValueBase;
class ValueGroup;

class ValueGroupItemVisitor {
public:
  virtual ~ValueGroupItemVisitor();

  virtual bool visitValueBase(ValueBase& value);
  virtual bool visitValue(Value& value);
  virtual bool visitUnboundedValue(UnboundedValue& value);
  virtual bool visitValueGroupStart(ValueGroup& group);
  virtual bool visitValueGroupEnd(ValueGroup& group);
};

}  // namespace zelk::configuration
