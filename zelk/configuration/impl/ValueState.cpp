#include "zelk/configuration/impl/ValueState.h"

#include <cstring>
#include <memory>
#include <string>
#include <type_traits>

#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/EnumDefinition.h"
#include "zelk/configuration/GroupItem.h"
#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/Validator.h"
#include "zelk/configuration/impl/Convert.h"
#include "zelk/configuration/impl/ValueTypeTable.h"
#include "zelk/util/Contracts.h"

namespace zelk::configuration::impl {

namespace {

const char* parameterId(const Parameter* parameter) {
  ZELK_CONTRACT(parameter != 0);
  return parameter->getId();
}

// "red, green and blue": ", " before every name but the first, " and " before the last one
// (so a single name reads " and red", kept as it is).
std::string allowedSymbols(const EnumDefinition& enumDef) {
  std::string list;
  const size_t count = enumDef.getNumberOfValues();
  for (size_t i = 0; i < count; ++i) {
    if (i + 1 == count) {
      list += " and ";
    } else if (i > 0) {
      list += ", ";
    }
    const char* symbol = enumDef.getSymbolicNameInDefinitionOrder(i);
    list += symbol != 0 ? symbol : "";
  }
  return list;
}


template <typename T>
uint64_t toBits(const T& value) {
  static_assert(sizeof(T) <= sizeof(uint64_t) && std::is_trivially_copyable<T>::value,
                "a cached value fits one word");
  uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof(T));
  return bits;
}


}  // namespace

ValueState::ValueState(const char* name)
    : ValueItemState(name),
      mDefaultParameter(0),
      mValueType(UNTYPED),
      mCacheTag(0),
      mCacheBits(0) {}

ValueState::ValueState(const GroupItem* groupItem)
    : ValueItemState(groupItem),
      mDefaultParameter(0),
      mValueType(findValueType()),
      mCacheTag(0),
      mCacheBits(0) {}

ValueState::ValueState(const Parameter* parameter)
    : ValueItemState(parameterId(parameter)),
      mDefaultParameter(parameter),
      mValueType(findValueType()),
      mCacheTag(0),
      mCacheBits(0) {
  holdGeneration(RegistryGeneration::of(parameter));
}

ValueState::ValueState(const ValueState& other, int shallow)
    : ValueItemState(other),
      mDefaultParameter(other.mDefaultParameter),
      mValueType(other.mValueType),
      mCacheTag(0),
      mCacheBits(0) {
  // A copy of a registry's own default is the caller's, and keeps what it points into alive.
  if (!mGeneration) {
    holdGeneration(mGroupItem != 0 ? RegistryGeneration::of(mGroupItem)
                                   : RegistryGeneration::of(mDefaultParameter));
  }
  if (shallow == 0) {
    ReadGuard lock(other.mMutex);
    mTexts = other.mTexts;
  }
}

ValueState::~ValueState() {}

boost::shared_ptr<ValueState> ValueState::create(const char* name, const char* text) {
  ZELK_CONTRACT_MESSAGE(name != 0 && *name != '\0', "Must provide a value name");
  boost::shared_ptr<ValueState> state(new ValueState(name));
  // A bare name is a flag that is on.
  state->add(text != 0 && *text != '\0' ? text : "1");
  return state;
}

boost::shared_ptr<ValueState> ValueState::create(const ParameterRef* ref, const char* text) {
  ZELK_CONTRACT_MESSAGE(ref != 0, "Must provide a ParameterRef");
  boost::shared_ptr<ValueState> state(new ValueState(static_cast<const GroupItem*>(ref)));
  const Parameter* parameter = ref->getParameter();
  if (parameter->getValueType() == Parameter::BOOL) {
    if (text != 0) {
      throw ConfigurationException("\"%s\" is a boolean parameter and cannot accept a value",
                                   parameter->getName());
    }
    state->add(true);
  } else {
    if (text == 0 || *text == '\0') {
      throw ConfigurationException("Must provide a value for the \"%s\" parameter.",
                                   parameter->getName());
    }
    state->add(text);
  }
  return state;
}

boost::shared_ptr<ValueState> ValueState::createDefault(const Parameter* parameter,
                                                        const char* text) {
  boost::shared_ptr<ValueState> state(new ValueState(parameter));
  // Kept by the registry itself: a hold would keep the registry alive forever.
  state->holdGeneration(0);
  if (text != 0) {
    state->add(text);
  }
  return state;
}

boost::shared_ptr<ValueState> ValueState::keptByRegistry(
    const boost::shared_ptr<ValueState>& state) {
  if (!state || !state->mGeneration) {
    return state;
  }
  boost::shared_ptr<ValueState> copy(new ValueState(*state, 0));
  copy->holdGeneration(0);
  return copy;
}

bool ValueState::isUnbounded() const {
  if (mDefaultParameter != 0) {
    return false;
  }
  return mGroupItem == 0 || mGroupItem->isUnbounded();
}

boost::shared_ptr<ValueItemState> ValueState::clone(int shallow) const {
  return boost::shared_ptr<ValueItemState>(new ValueState(*this, shallow));
}

const ParameterRef* ValueState::getParameterRef() const {
  if (mGroupItem == 0 || mGroupItem->getItemType() != GroupItem::PARAMETER_REF) {
    return 0;
  }
  return static_cast<const ParameterRef*>(mGroupItem);
}

const Parameter* ValueState::getParameter() const {
  if (mDefaultParameter != 0) {
    return mDefaultParameter;
  }
  const ParameterRef* ref = getParameterRef();
  return ref != 0 ? ref->getParameter() : 0;
}

int ValueState::findValueType() const {
  const Parameter* parameter = getParameter();
  return parameter != 0 ? static_cast<int>(parameter->getValueType()) : UNTYPED;
}

void ValueState::bindingChanged() { mValueType = findValueType(); }

const char* ValueState::getValueTypeName() const {
  return ValueTypeTable::displayName(getValueType());
}

size_t ValueState::getValueCount() const {
  ReadGuard lock(mMutex);
  return mTexts.size();
}

bool ValueState::hasValues() const { return getValueCount() != 0; }

void ValueState::validateValueType(int requested) const {
  const int type = getValueType();
  if (type != UNTYPED && type != requested) {
    throwInvalidType(requested);
  }
}

void ValueState::throwInvalidType(int requested) const {
  throw ConfigurationException("This value is not %s %s", ValueTypeTable::article(requested),
                               ValueTypeTable::displayName(requested));
}

const std::string& ValueState::textAt(size_t index) const {
  ZELK_CONTRACT_MESSAGE(index < mTexts.size(), "index out of range");
  return mTexts[index];
}

// The next generation after tag, with nothing else set.
uint64_t ValueState::nextGeneration(uint64_t tag) {
  return (tag & ~CACHE_KEY_MASK) + CACHE_GENERATION;
}

void ValueState::fillCache(int type, uint64_t bits) const {
  uint64_t tag = mCacheTag.load();
  if ((tag & CACHE_BUSY) != 0) {
    return;
  }
  const uint64_t generation = nextGeneration(tag);
  if (!mCacheTag.compare_exchange_strong(tag, generation | CACHE_BUSY)) {
    return;
  }
  mCacheBits.store(bits);
  mCacheTag.store(generation | cacheKey(type));
}

void ValueState::invalidateCache() { mCacheTag.store(nextGeneration(mCacheTag.load())); }

// Every typed read: the type check, then the cached conversion when the cache holds the first
// text converted for this type and the tag reads the same before and after the bits (a
// publication or invalidation in between changes the generation). Otherwise the text is converted
// under a shared lock. A text that does not convert (possible only for untyped values or texts
// stored unchecked) is thrown by the conversion as a ValidationException, since no error list is
// given, on every read: only successful conversions are cached.
template <typename T>
T ValueState::readTyped(int type, T (*conversion)(const char*, ValidationErrors*),
                        size_t index) const {
  T value;
  if (index == 0 && readCached(type, value)) {
    return value;
  }
  if (mValueType != type && mValueType != UNTYPED) {
    throwInvalidType(type);
  }
  return readConverted(type, conversion, index);
}

template <typename T>
__attribute__((noinline)) T ValueState::readConverted(
    int type, T (*conversion)(const char*, ValidationErrors*), size_t index) const {
  ReadGuard lock(mMutex);
  const T value = conversion(textAt(index).c_str(), 0);
  if (index == 0) {
    fillCache(type, toBits(value));
  }
  return value;
}

#define ZELK_VALUE_READ(TYPE, CONVERSION) return readTyped(TYPE, &Convert::CONVERSION, index)

bool ValueState::asBool(size_t index) const { ZELK_VALUE_READ(Parameter::BOOL, asBool); }

int32_t ValueState::asInt32(size_t index) const { ZELK_VALUE_READ(Parameter::INT32, asInt32); }

uint32_t ValueState::asUInt32(size_t index) const {
  ZELK_VALUE_READ(Parameter::UINT32, asUInt32);
}

int64_t ValueState::asInt64(size_t index) const { ZELK_VALUE_READ(Parameter::INT64, asInt64); }

uint64_t ValueState::asUInt64(size_t index) const {
  ZELK_VALUE_READ(Parameter::UINT64, asUInt64);
}

double ValueState::asDouble(size_t index) const { ZELK_VALUE_READ(Parameter::DOUBLE, asDouble); }

ObjectId ValueState::asOID(size_t index) const { ZELK_VALUE_READ(Parameter::OID, asOID); }

#undef ZELK_VALUE_READ

std::string ValueState::asString(size_t index) const {
  if (getValueType() == Parameter::BOOL) {
    return asBool(index) ? "true" : "false";
  }
  return getText(index);
}

std::string ValueState::getText(size_t index) const {
  ReadGuard lock(mMutex);
  return textAt(index);
}

const char* ValueState::getTextPointer(size_t index) const {
  ReadGuard lock(mMutex);
  return textAt(index).c_str();
}

std::vector<std::string> ValueState::getTexts() const {
  ReadGuard lock(mMutex);
  return mTexts;
}

int32_t ValueState::getEnumValue(const char* text) const {
  const Parameter* parameter = getParameter();
  const EnumDefinition* enumDef = parameter != 0 ? parameter->getEnumDefinition() : 0;
  if (enumDef == 0) {
    throw ConfigurationException("Unknown enumeration type for value '%s'",
                                 text != 0 ? text : "");
  }
  ValidationErrors errors;
  const int32_t value = enumDef->getValue(text != 0 ? text : "", &errors);
  errors.throwIfErrors();
  return value;
}

void ValueState::checkWritable() const {
  ReadGuard lock(mMutex);
  checkWritableLocked();
}

void ValueState::checkWritableLocked() const {
  if (mDefaultParameter != 0 && !mTexts.empty()) {
    throw ConfigurationException("'%s' is a default value, it cannot be modified", getName());
  }
}

void ValueState::validateText(const char* text, ValidationErrors& errors) const {
  const int type = getValueType();
  if (type == Parameter::ENUM) {
    const Parameter* parameter = getParameter();
    const EnumDefinition* enumDef = parameter->getEnumDefinition();
    ValidationErrors symbolErrors;
    Convert::asEnum(enumDef, text, &symbolErrors);
    if (symbolErrors.getNumberOfErrors() != 0) {
      const std::string message = std::string("The value \"") + (text != 0 ? text : "") +
                                  "\" is not valid for the \"" + parameter->getName() +
                                  "\" parameter. Allowed values for this parameter are: " +
                                  allowedSymbols(*enumDef) + ".";
      errors.addError("%s", message.c_str());
    }
    return;
  }
  // Strings and untyped values take any text.
  const ValueTypeInfo* info = ValueTypeTable::find(type);
  if (info != 0 && info->check != 0) {
    info->check(text, &errors);
  }
}

void ValueState::checkTexts(ValidationErrors& errors) const {
  const std::vector<std::string> texts = getTexts();
  const Parameter* parameter = getParameter();
  const Validator* validator = parameter != 0 ? parameter->getValidator() : 0;
  for (const std::string& text : texts) {
    const size_t before = errors.getNumberOfErrors();
    validateText(text.c_str(), errors);
    if (validator == 0 || errors.getNumberOfErrors() != before) {
      continue;
    }
    std::unique_ptr<char[]> rejection(validator->validate(text.c_str()));
    if (rejection) {
      errors.addError("The value \"%s\" of \"%s\" is rejected by the \"%s\" validator: %s",
                      text.c_str(), getName(), validator->getName(), rejection.get());
    }
  }
}

void ValueState::add(const char* text) {
  UpgradeGuard lock(mMutex);
  checkWritableLocked();
  ValidationErrors errors;
  validateText(text, errors);
  errors.throwIfErrors();
  UpgradeGuard::Exclusive exclusive(lock);
  mTexts.push_back(text != 0 ? text : "");
  invalidateCache();
}

void ValueState::addTyped(int type, const std::string& text) {
  UpgradeGuard lock(mMutex);
  checkWritableLocked();
  validateValueType(type);
  UpgradeGuard::Exclusive exclusive(lock);
  mTexts.push_back(text);
  invalidateCache();
}

void ValueState::add(bool value) { addTyped(Parameter::BOOL, Convert::asString(value)); }
void ValueState::add(int32_t value) { addTyped(Parameter::INT32, Convert::asString(value)); }
void ValueState::add(uint32_t value) { addTyped(Parameter::UINT32, Convert::asString(value)); }
void ValueState::add(int64_t value) { addTyped(Parameter::INT64, Convert::asString(value)); }
void ValueState::add(uint64_t value) { addTyped(Parameter::UINT64, Convert::asString(value)); }
void ValueState::add(double value) { addTyped(Parameter::DOUBLE, Convert::asString(value)); }
void ValueState::add(const ObjectId& value) { addTyped(Parameter::OID, Convert::asString(value)); }

void ValueState::set(size_t index, const char* text) {
  UpgradeGuard lock(mMutex);
  checkWritableLocked();
  ZELK_CONTRACT_MESSAGE(index < mTexts.size(), "index out of range");
  ValidationErrors errors;
  validateText(text, errors);
  errors.throwIfErrors();
  UpgradeGuard::Exclusive exclusive(lock);
  mTexts[index] = text != 0 ? text : "";
  invalidateCache();
}

void ValueState::setTyped(size_t index, int type, const std::string& text) {
  UpgradeGuard lock(mMutex);
  checkWritableLocked();
  validateValueType(type);
  ZELK_CONTRACT_MESSAGE(index < mTexts.size(), "index out of range");
  UpgradeGuard::Exclusive exclusive(lock);
  mTexts[index] = text;
  invalidateCache();
}

void ValueState::set(size_t index, bool value) {
  setTyped(index, Parameter::BOOL, Convert::asString(value));
}
void ValueState::set(size_t index, int32_t value) {
  setTyped(index, Parameter::INT32, Convert::asString(value));
}
void ValueState::set(size_t index, uint32_t value) {
  setTyped(index, Parameter::UINT32, Convert::asString(value));
}
void ValueState::set(size_t index, int64_t value) {
  setTyped(index, Parameter::INT64, Convert::asString(value));
}
void ValueState::set(size_t index, uint64_t value) {
  setTyped(index, Parameter::UINT64, Convert::asString(value));
}
void ValueState::set(size_t index, double value) {
  setTyped(index, Parameter::DOUBLE, Convert::asString(value));
}
void ValueState::set(size_t index, const ObjectId& value) {
  setTyped(index, Parameter::OID, Convert::asString(value));
}

void ValueState::addNoTypeCheck(const char* text) {
  WriteGuard lock(mMutex);
  mTexts.push_back(text != 0 ? text : "");
  invalidateCache();
}

void ValueState::append(const ValueState& other) {
  const int type = getValueType();
  const int otherType = other.getValueType();
  if (type != UNTYPED && type != otherType) {
    throw ConfigurationException(
        "Values of %s type cannot be appended to this %s type unbounded value",
        ValueTypeTable::displayName(otherType), ValueTypeTable::displayName(type));
  }
  // The source's texts are taken first, so that the two locks are never held together (and a
  // value can be appended to itself).
  const std::vector<std::string> texts = other.getTexts();
  WriteGuard lock(mMutex);
  mTexts.insert(mTexts.end(), texts.begin(), texts.end());
  invalidateCache();
}

boost::shared_ptr<ValueState> ValueState::saveOldValue(size_t index) const {
  if (mGroupItem == 0) {
    return boost::shared_ptr<ValueState>();
  }
  boost::shared_ptr<ValueState> old(new ValueState(getName()));
  old->setGroupItem(mGroupItem);
  if (index < getValueCount()) {
    old->addNoTypeCheck(asString(index).c_str());
  }
  return old;
}

}  // namespace zelk::configuration::impl
