#include "zelk/configuration/impl/CommandLineValueProviderImpl.h"

#include <sstream>
#include <stdexcept>

#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/Container.h"
#include "zelk/configuration/Parameter.h"
#include "zelk/configuration/ParameterRef.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/impl/CommandLineValueProvider.h"
#include "zelk/configuration/impl/ParameterPrefixIndex.h"
#include "zelk/configuration/impl/ParameterSearchVisitor.h"
#include "zelk/configuration/impl/SpecificationMatcher.h"
#include "zelk/configuration/impl/ValueAccess.h"
#include "zelk/configuration/impl/ValueItemState.h"
#include "zelk/configuration/impl/ValueState.h"
#include "zelk/util/SafeFormat.h"
#include "zelk/util/StringFunctions.h"

namespace zelk::configuration::impl {

namespace {

// Option bits of setArguments.
const int EXACT_FLAG_NAMES = 0x1;
const int ACCEPT_BARE_WORDS = 0x2;

// A word of the argument vector, trimmed; a null entry reads as an empty word.
std::string wordAt(const char* const* argv, int index) {
  const char* word = argv[index];
  return word != 0 ? zelk::trim(word) : std::string();
}

// The number of word index in the command line it came from, when that is known.
int numberOf(const std::vector<int>& numbers, int index) {
  return static_cast<size_t>(index) < numbers.size() ? numbers[index] : index;
}

}  // namespace

CommandLineValueProviderImpl::CommandLineValueProviderImpl(int priority, const std::string& id)
    : ValueProviderImpl(ConfigurationManager::COMMAND_LINE_PROVIDER_NAME, priority, id),
      mValues(ConfigurationManager::COMMAND_LINE_PROVIDER_NAME),
      mNeedsMatching(false),
      mParsedSpecification(0) {}

CommandLineValueProviderImpl::~CommandLineValueProviderImpl() {}

void CommandLineValueProviderImpl::setArguments(int argc, const char* const* argv,
                                                const char* specificationId, int options) {
  mNeedsMatching = false;
  // The previous tree is dropped, not emptied: trees handed out earlier share it.
  mValues = ValueGroup(ConfigurationManager::COMMAND_LINE_PROVIDER_NAME);
  mFlagWords.clear();
  std::vector<int> wordNumbers;
  wordNumbers.swap(mWordNumbers);
  if (argc == 0) {
    return;
  }
  if (argv == 0) {
    throw std::invalid_argument("Must provide an argument array");
  }
  if (specificationId == 0 || *specificationId == '\0') {
    throw std::invalid_argument("Must provide a Specification id");
  }
  ConfigurationManager* manager =
      getManager() != 0 ? getManager() : ConfigurationManager::getInstance();
  const Specification* spec = manager->getSpecification(specificationId);
  if (spec == 0) {
    std::ostringstream text;
    text << "The \"" << specificationId << "\" specification was not found";
    throw std::invalid_argument(text.str());
  }

  // The prefix index lives only while this specification is parsed for.
  struct ParseScope {
    CommandLineValueProviderImpl& self;
    ParseScope(CommandLineValueProviderImpl& provider, const Specification* spec) : self(provider) {
      self.mParsedSpecification = spec;
    }
    ~ParseScope() {
      self.mParsedSpecification = 0;
      self.mPrefixIndex.reset();
    }
  } scope(*this, spec);

  ValueGroup parsed(spec);
  std::vector<std::pair<std::string, int>> flagWords;
  const bool keepWords = manager->getKeepPositions();
  const bool allowAbbreviation = (options & EXACT_FLAG_NAMES) == 0;
  const bool acceptBareWords = (options & ACCEPT_BARE_WORDS) != 0;
  for (int i = 1; i < argc; ++i) {
    const std::string word = wordAt(argv, i);
    if (word.empty() || word[0] != '-') {
      if (!acceptBareWords) {
        throw ConfigurationException("The \"%s\" command line argument is not recognized",
                                     word.c_str());
      }
      // A bare word is a flag without a value; an empty one names nothing.
      if (word.empty()) {
        throw ConfigurationException("%s", "A command line parameter cannot be empty");
      }
      Value value = createValue(*spec, word.c_str(), 0, allowAbbreviation);
      parsed.add(value);
      if (keepWords) flagWords.emplace_back(value.getName(), numberOf(wordNumbers, i));
      continue;
    }
    // Only one dash is removed: "--name" is the flag "-name".
    const std::string flag = word.substr(1);
    if (flag.empty()) {
      throw ConfigurationException("%s", "A command line parameter cannot be empty");
    }
    const int flagWord = i;
    std::string text;
    if (i + 1 < argc) {
      std::string next = wordAt(argv, i + 1);
      if (CommandLineValueProvider::isFlagValue(next.c_str())) {
        text.swap(next);
        ++i;
      }
    }
    Value value =
        createValue(*spec, flag.c_str(), text.empty() ? 0 : text.c_str(), allowAbbreviation);
    parsed.add(value);
    if (keepWords) flagWords.emplace_back(value.getName(), numberOf(wordNumbers, flagWord));
  }
  mValues = parsed;
  mFlagWords.swap(flagWords);
}

std::map<uint32_t, std::vector<int>> CommandLineValueProviderImpl::placeEntries(
    const ValueGroup& answer) const {
  std::map<uint32_t, std::vector<int>> placed;
  if (mFlagWords.empty() || answer.isNull()) {
    return placed;
  }
  // Flags of one name joined one value, in the order given; every value is at the top.
  for (size_t i = 0; i < answer.getItemCount(); ++i) {
    const boost::shared_ptr<ValueGroupItem> item = answer.getItem(i);
    if (item->isValueGroup()) {
      continue;
    }
    std::vector<int>& words = placed[item->getInstanceId()];
    for (const std::pair<std::string, int>& flag : mFlagWords) {
      if (ValueItemState::namesEqual(flag.first.c_str(), item->getName())) {
        words.push_back(flag.second);
      }
    }
  }
  return placed;
}

ValueGroup CommandLineValueProviderImpl::getSpecificationValues(const Specification& spec,
                                                                int) const {
  // Values parsed for another tool's specification never leak into this one's.
  if (mValues.isNull() || mValues.getGroupItem() != spec.getItemsContainer()) {
    return ValueGroup(&spec);
  }
  if (mNeedsMatching) {
    // Matching problems are not reported here: the provider pipeline matches again and reports.
    ValidationErrors localErrors;
    SpecificationMatcher::match(mValues, spec, localErrors);
    const size_t count = mValues.getItemCount();
    for (size_t i = 0; i < count; ++i) {
      boost::shared_ptr<ValueGroupItem> item = mValues.getItem(i);
      if (!item->isMatched() || !item->isValue()) {
        continue;
      }
      boost::shared_ptr<ValueState> state = ValueAccess::getState(static_cast<ValueBase&>(*item));
      if (state->hasValues()) {
        continue;
      }
      const ParameterRef* ref = state->getParameterRef();
      if (ref->getParameter()->getValueType() == Parameter::BOOL) {
        state->add(true);
      } else {
        Value defaultValue = ref->getDefaultValue();
        if (!defaultValue.isNull()) {
          state->add(defaultValue.asString().c_str());
        }
      }
    }
  }
  return mValues;
}

void CommandLineValueProviderImpl::reset() {
  // Dropped, not reset: the values live on in the trees that share them.
  mValues = ValueGroup(ConfigurationManager::COMMAND_LINE_PROVIDER_NAME);
  mNeedsMatching = false;
  mFlagWords.clear();
  ValueProviderImpl::reset();
}

Value CommandLineValueProviderImpl::createValue(const Specification& spec, const char* flag,
                                                const char* value, bool allowAbbreviation) {
  if (!allowAbbreviation) {
    const ParameterRef* ref = spec.findParameterRef(flag);
    return ref != 0 ? Value::create(ref, value) : Value::create(flag, value);
  }
  const std::vector<const ParameterRef*> found = findCandidates(spec, flag);
  if (found.empty()) {
    // Bound later by the matcher when the flag is a full name (hidden parameters, for example).
    mNeedsMatching = true;
    return Value::create(flag, value);
  }
  if (found.size() == 1) {
    return Value::create(found[0], value);
  }
  // No preference for an exact match: "port" is ambiguous beside "portRange"; kept so.
  std::string text = "The flag \"";
  text += flag;
  text += "\" is ambiguous, matching the following allowed flags: ";
  for (size_t i = 0; i < found.size(); ++i) {
    if (i > 0) {
      text += ", ";
    }
    text += found[i]->getParameter()->getName();
  }
  text += ". Please be more specific.";
  // The message is read as a format without arguments, so a "%" in a flag reads nothing.
  throw ConfigurationException("%s", zelk::formatWithoutArguments(text.c_str()).c_str());
}

std::vector<const ParameterRef*> CommandLineValueProviderImpl::findCandidates(
    const Specification& spec, const char* flag) {
  if (mParsedSpecification != &spec) {
    return findByPrefix(spec, flag);
  }
  if (!mPrefixIndex) {
    mPrefixIndex.reset(new ParameterPrefixIndex(spec));
  }
  return mPrefixIndex->find(flag);
}

std::vector<const ParameterRef*> CommandLineValueProviderImpl::findByPrefix(
    const Specification& spec, const char* prefix) {
  ParameterSearchVisitor search(prefix);
  spec.accept(search);
  std::vector<const ParameterRef*> found;
  found.reserve(search.getNumberOfFoundItems());
  for (size_t i = 0; i < search.getNumberOfFoundItems(); ++i) {
    found.push_back(search.getFoundItem(i));
  }
  return found;
}

}  // namespace zelk::configuration::impl
