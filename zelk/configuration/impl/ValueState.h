// ValueState: the shared state behind Value and UnboundedValue handles: the texts of one value.
//
// Values are stored as texts and converted by Convert on typed reads; typed writes are converted to
// text first. Readers take the state's mutex shared; writers take it upgradable for their checks
// (so validation does not block readers) and exclusive only for the store. A failed write leaves
// the texts unchanged. The last typed read of the first text is kept converted (see mCacheTag), so
// that reading an unchanged value again neither converts nor locks.
//
//   boost::shared_ptr<impl::ValueState> state = impl::ValueState::create(ref, "42");
//   state->asInt32(0);   // 42
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

#include <boost/shared_ptr.hpp>

#include "zelk/configuration/ObjectId.h"
#include "zelk/configuration/impl/ValueItemState.h"
#include "zelk/configuration/impl/ValueLocks.h"

namespace zelk::configuration {
class GroupItem;
class Parameter;
class ParameterRef;
class ValidationErrors;
}  // namespace zelk::configuration

namespace zelk::configuration::impl {

class ValueState : public ValueItemState {
public:
  // The value type of a value without parameter: it accepts every typed access.
  static const int UNTYPED = -1;

  // An empty, unbound value; "Must provide a name" for a null or empty name.
  explicit ValueState(const char* name);
  // An empty value bound to groupItem.
  explicit ValueState(const GroupItem* groupItem);
  // An empty default value of parameter, named by the parameter's id; it holds the parameter's
  // registry generation.
  explicit ValueState(const Parameter* parameter);
  // A copy (new instance id) with the texts, or without them when shallow is non-zero.
  ValueState(const ValueState& other, int shallow);
  ~ValueState() override;

  // A value named name holding text, or "1" for a null or empty text; contract "Must provide a
  // value name".
  static boost::shared_ptr<ValueState> create(const char* name, const char* text);
  // A value bound to ref holding text; contract "Must provide a ParameterRef". Booleans take no
  // text (null means true); other types need a non-empty one.
  static boost::shared_ptr<ValueState> create(const ParameterRef* ref, const char* text);
  // The default value of parameter holding text, validated by the parameter's type. Made for the
  // registry to keep, it holds no registry generation (see getDefaultValueFor in ValueGroupState).
  static boost::shared_ptr<ValueState> createDefault(const Parameter* parameter, const char* text);
  // state itself when it holds no registry generation, else a copy that holds none: what a
  // registry object keeps must not keep its own registry alive.
  static boost::shared_ptr<ValueState> keptByRegistry(const boost::shared_ptr<ValueState>& state);

  bool isValue() const override { return true; }
  bool isValueGroup() const override { return false; }
  // False for a default value; true while unbound; else the bound item's.
  bool isUnbounded() const override;
  boost::shared_ptr<ValueItemState> clone(int shallow) const override;

  // The default parameter, else the bound reference's parameter, else null.
  const Parameter* getParameter() const;
  // The bound parameter reference, or null.
  const ParameterRef* getParameterRef() const;
  // The parameter's value type, or UNTYPED.
  int getValueType() const { return mValueType; }
  const char* getValueTypeName() const;
  bool isDefaultValue() const { return mDefaultParameter != 0; }
  size_t getValueCount() const;
  bool hasValues() const;

  // Typed reads of text index, after the type check ("This value is not %s %s"); contract "index
  // out of range".
  bool asBool(size_t index) const;
  int32_t asInt32(size_t index) const;
  uint32_t asUInt32(size_t index) const;
  int64_t asInt64(size_t index) const;
  uint64_t asUInt64(size_t index) const;
  double asDouble(size_t index) const;
  ObjectId asOID(size_t index) const;
  // "true"/"false" for a boolean value, else the stored text.
  std::string asString(size_t index) const;
  // The stored text at index, unconverted.
  std::string getText(size_t index) const;
  // A pointer to the stored text at index, valid until the value is next changed.
  const char* getTextPointer(size_t index) const;
  // A copy of every text.
  std::vector<std::string> getTexts() const;
  // The typed read of the first text when the converted-value cache holds it for type and the
  // value is of that type (or untyped): out is set without a lock or a call. Otherwise false, and
  // the caller makes the full read (asInt32(0) and the like), which converts, checks and throws.
  template <typename T>
  bool readCached(int type, T& out) const {
    static_assert(sizeof(T) <= sizeof(uint64_t) && std::is_trivially_copyable<T>::value,
                  "a cached value fits one word");
    if (mValueType != type && mValueType != UNTYPED) {
      return false;
    }
    const uint64_t tag = mCacheTag.load();
    if ((tag & CACHE_KEY_MASK) != cacheKey(type)) {
      return false;
    }
    const uint64_t bits = mCacheBits.load();
    if (mCacheTag.load() != tag) {
      return false;  // published or dropped meanwhile
    }
    std::memcpy(static_cast<void*>(&out), &bits, sizeof(T));
    return true;
  }
  // The number of an enumeration symbol; ConfigurationException "Unknown enumeration type for
  // value '%s'" without an enumeration.
  int32_t getEnumValue(const char* text) const;

  // Validates text by the value type and appends it.
  void add(const char* text);
  void add(bool value);
  void add(int32_t value);
  void add(uint32_t value);
  void add(int64_t value);
  void add(uint64_t value);
  void add(double value);
  void add(const ObjectId& value);
  // Replaces text index after the same checks.
  void set(size_t index, const char* text);
  void set(size_t index, bool value);
  void set(size_t index, int32_t value);
  void set(size_t index, uint32_t value);
  void set(size_t index, int64_t value);
  void set(size_t index, uint64_t value);
  void set(size_t index, double value);
  void set(size_t index, const ObjectId& value);
  // Appends text without any check (for providers that validated it already).
  void addNoTypeCheck(const char* text);
  // Appends all of other's texts, unvalidated; ConfigurationException "Values of %s type cannot
  // be appended to this %s type unbounded value" when both are typed and differ.
  void append(const ValueState& other);

  // A new state of the same name and binding holding text index (when there is one), or empty
  // for an unmatched value.
  boost::shared_ptr<ValueState> saveOldValue(size_t index) const;

  // Appends to errors what reading this value would meet: each text that does not convert to the
  // value's type, and each text its parameter's validator rejects ("The value "<text>" of
  // "<name>" is rejected by the "<validator>" validator: <its message>").
  void checkTexts(ValidationErrors& errors) const;
  // Passes when the value is untyped or of type requested; else throws "This value is not %s %s".
  void validateValueType(int requested) const;
  // Throws "'%s' is a default value, it cannot be modified" for a default value holding texts.
  void checkWritable() const;

protected:
  void bindingChanged() override;

private:
  // The value type derived from the default parameter or the binding.
  int findValueType() const;
  // Type check, writability check and the store of a converted typed value.
  void addTyped(int type, const std::string& text);
  void setTyped(size_t index, int type, const std::string& text);
  // Appends the validation error of text for this value's type to errors.
  void validateText(const char* text, ValidationErrors& errors) const;
  void checkWritableLocked() const;
  [[noreturn]] void throwInvalidType(int requested) const;
  const std::string& textAt(size_t index) const;
  // The typed read of text index by conversion, through the cache for index 0.
  template <typename T>
  T readTyped(int type, T (*conversion)(const char*, ValidationErrors*), size_t index) const;
  // The same read when the cache does not answer: the conversion under the shared lock.
  template <typename T>
  T readConverted(int type, T (*conversion)(const char*, ValidationErrors*), size_t index) const;
  // Publishes bits as the first text converted for type; the caller holds mMutex shared (so no
  // writer runs). Does nothing while another reader publishes.
  void fillCache(int type, uint64_t bits) const;
  // Drops the cached conversion; the caller holds mMutex exclusively, after changing the texts.
  void invalidateCache();

  // The parts of mCacheTag (see there).
  static constexpr uint64_t CACHE_VALID = 1;
  static constexpr uint64_t CACHE_BUSY = 2;
  static constexpr uint64_t CACHE_KEY_MASK = 0xFF;
  static constexpr uint64_t CACHE_GENERATION = 0x100;
  // The low byte of a valid tag for a conversion to type.
  static constexpr uint64_t cacheKey(int type) {
    return (static_cast<uint64_t>(type + 1) << 2) | CACHE_VALID;
  }
  // The next generation after tag, with nothing else set.
  static uint64_t nextGeneration(uint64_t tag);

  mutable StateMutex mMutex;
  const Parameter* mDefaultParameter;
  // getValueType(), kept so that a typed read does not walk to the parameter; set with the
  // binding, which is set while a tree is built and read afterwards.
  int mValueType;
  std::vector<std::string> mTexts;
  // The converted first text, published without a lock, seqlock-style: bit 0 of mCacheTag says
  // it is valid, bit 1 that a reader is publishing, bits 2-7 hold the type code plus one, and the
  // bits above a generation that grows with every publication and invalidation. A lock-free
  // reader takes mCacheBits only when the tag reads the same before and after it, so it never
  // mixes the bits of one publication with the tag of another. Publishing happens under the
  // shared lock and invalidation under the exclusive lock, so a writer never races a publisher.
  mutable std::atomic<uint64_t> mCacheTag;
  mutable std::atomic<uint64_t> mCacheBits;
};

}  // namespace zelk::configuration::impl
