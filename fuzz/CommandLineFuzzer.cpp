// A command line: the input split into words at NUL and line-feed bytes, parsed for the rich
// specification with the option bits the first byte chooses, then validated and read.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "FuzzSupport.h"
#include "ValueReads.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/impl/CommandLineValueProvider.h"

using namespace zelk::configuration;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  ConfigurationManager* manager = zelk::fuzz::richManager();
  zelk::fuzz::InputReader input(data, size);
  const int options = input.byte();
  const bool small = (options & 0x80) != 0;
  const std::string text = input.rest();
  std::vector<std::string> words;
  std::string word;
  for (char c : text) {
    if (c == '\0' || c == '\n') {
      words.push_back(word);
      word.clear();
    } else {
      word += c;
    }
  }
  if (!word.empty()) words.push_back(word);
  std::vector<const char*> argv(1, "tool");
  for (const std::string& w : words) argv.push_back(w.c_str());

  const char* const id = small ? "small" : "rich";
  const Specification* spec = manager->getSpecification(id);
  impl::CommandLineValueProvider provider(1, "");
  try {
    provider.enableProvider(static_cast<int>(argv.size()), argv.data(), id, options & 0x7f);
    ValueGroup values = provider.getValues(*spec, options & 0x7f);
    zelk::fuzz::readAll(manager, values);
    ValidationErrors errors;
    manager->validateValues(*spec, values, &errors);
    for (size_t i = 0; i < errors.getNumberOfErrors(); ++i) ZELK_FUZZ_CHECK(errors.getError(i));
    zelk::fuzz::readAll(manager, values);
  } catch (const ConfigurationException& e) {
    ZELK_FUZZ_CHECK(*e.what() != '\0');
  }
  return 0;
}
