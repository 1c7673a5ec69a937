#include "zelk/configuration/impl/ChangeSource.h"

#include <algorithm>

#include "zelk/configuration/ValueProvider.h"
#include "zelk/configuration/impl/Factory.h"

namespace zelk::configuration::impl {

ChangeSink::~ChangeSink() {}

ChangeSource::~ChangeSource() {}

void ChangeSource::applied(const ProviderChanges&) {}

ProviderChanges::ProviderChanges() : mReleased(false) {}

ProviderChanges::~ProviderChanges() {
  if (mReleased) {
    return;
  }
  for (const Change& change : mChanges) {
    if (change.replacement != 0) {
      Factory::destroy(change.replacement, false, 0);
    }
  }
}

void ProviderChanges::replace(ValueProvider* current, ValueProvider* replacement,
                              const std::string& source) {
  mChanges.push_back(Change{current, replacement, source});
}

void ProviderChanges::add(ValueProvider* replacement, const std::string& source) {
  mChanges.push_back(Change{0, replacement, source});
}

void ProviderChanges::remove(ValueProvider* current, const std::string& source) {
  mChanges.push_back(Change{current, 0, source});
}

std::vector<std::string> ProviderChanges::getSources() const {
  std::vector<std::string> sources;
  for (const Change& change : mChanges) {
    if (std::find(sources.begin(), sources.end(), change.source) == sources.end()) {
      sources.push_back(change.source);
    }
  }
  return sources;
}

}  // namespace zelk::configuration::impl
