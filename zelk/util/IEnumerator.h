// IEnumerator: a forward cursor over a live collection, such as a configuration manager registry.
//
// An enumerator starts at the first element. hasNext() is true while there is a current element
// (not "one after the current one"), so the usual loop reads:
//
//   std::unique_ptr<zelk::IEnumerator<Specification*>> e(manager->getSpecificationEnumerator());
//   for (; e->hasNext(); e->moveNext()) {
//     Specification* spec = e->getCurrent();
//   }
//
// Enumerators handed out by the library are heap objects that the caller deletes.
#pragma once

namespace zelk {

template <typename T>
class IEnumerator {
public:
  virtual ~IEnumerator() {}
  // Returns to the position the enumerator started at.
  virtual void reset() = 0;
  // True while there is a current element.
  virtual bool hasNext() const = 0;
  // Steps to the next element.
  virtual void moveNext() = 0;
  // The current element; only meaningful while hasNext() is true.
  virtual T getCurrent() const = 0;
};

}  // namespace zelk
