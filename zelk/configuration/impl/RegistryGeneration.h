// RegistryGeneration: the registry objects (specifications, global items, validators and
// enumeration definitions) of one manager between two clears, kept alive as long as anything
// still points into them.
//
// A manager holds its current generation and stamps it on the root container of every
// specification and on every global item it registers. A value state bound to one of their items
// holds the generation too, so clearing the manager retires its objects into the generation
// instead of destroying them: they die with the last holder, which is the manager itself when no
// value handed out is bound to them.
//
//   boost::intrusive_ptr<RegistryGeneration> generation(new RegistryGeneration);
//   RegistryGeneration::stamp(*specification, generation.get());
//   boost::intrusive_ptr<const RegistryGeneration> held = RegistryGeneration::of(groupItem);
#pragma once

#include <vector>

#include <boost/intrusive_ptr.hpp>

#include "zelk/configuration/ReferenceCounted.h"

namespace zelk::configuration {
class EnumDefinition;
class GlobalItem;
class GroupItem;
class Parameter;
class Specification;
class Validator;
}  // namespace zelk::configuration

namespace zelk::configuration::impl {

class RegistryGeneration : public ReferenceCounted {
public:
  RegistryGeneration();
  // Destroys the retired objects: specifications, then global items, validators and enumeration
  // definitions, each in the order they were retired.
  ~RegistryGeneration() override;

  // Takes ownership of the objects a manager let go of.
  void retire(const std::vector<Specification*>& specifications,
              const std::vector<GlobalItem*>& globalItems,
              const std::vector<Validator*>& validators,
              const std::vector<EnumDefinition*>& enumDefinitions);

  // Marks what belongs to generation (null: to none), so that values bound to it can hold it.
  static void stamp(const Specification& specification, RegistryGeneration* generation);
  static void stamp(const GlobalItem& item, RegistryGeneration* generation);
  // The generation an object belongs to, or null when it belongs to no manager. An item of a
  // specification belongs where the container at the top of its tree does.
  static RegistryGeneration* of(const Specification& specification);
  static RegistryGeneration* of(const GlobalItem& item);
  static RegistryGeneration* of(const GroupItem* item);
  static RegistryGeneration* of(const Parameter* parameter);

private:
  RegistryGeneration(const RegistryGeneration&) = delete;
  RegistryGeneration& operator=(const RegistryGeneration&) = delete;

  std::vector<Specification*> mSpecifications;
  std::vector<GlobalItem*> mGlobalItems;
  std::vector<Validator*> mValidators;
  std::vector<EnumDefinition*> mEnumDefinitions;
};

inline void intrusive_ptr_add_ref(const RegistryGeneration* generation) { generation->addRef(); }
inline void intrusive_ptr_release(const RegistryGeneration* generation) { generation->release(); }

}  // namespace zelk::configuration::impl
