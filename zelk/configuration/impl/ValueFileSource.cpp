#include "zelk/configuration/impl/ValueFileSource.h"

#include <cstdio>
#include <exception>

#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/ValidationErrors.h"
#include "zelk/configuration/ValidationException.h"
#include "zelk/configuration/XmlFileValueProvider.h"
#include "zelk/configuration/impl/ConfigurationManagerImpl.h"
#include "zelk/configuration/impl/FileWatcher.h"
#include "zelk/configuration/impl/ValueProviderImpl.h"

namespace zelk::configuration::impl {

ValueFileSource::ValueFileSource(ConfigurationManagerImpl& manager, const std::vector<File>& files,
                                 bool forcePolling, std::chrono::milliseconds pollInterval)
    : mManager(manager), mForcePolling(forcePolling), mPollInterval(pollInterval) {
  for (const File& file : files) {
    mEntries.push_back(Entry{file, Fingerprint{false, 0, 0}});
  }
}

ValueFileSource::~ValueFileSource() { stop(); }

ValueFileSource::Fingerprint ValueFileSource::fingerprint(const std::string& path,
                                                         uint64_t maxBytes) {
  FILE* file = std::fopen(path.c_str(), "rb");
  if (file == 0) {
    return Fingerprint{false, 0, 0};
  }
  // FNV-1a: enough to tell a save from an unchanged file; the content itself is not kept.
  uint64_t hash = 14695981039346656037ULL;
  uint64_t size = 0;
  unsigned char buffer[64 * 1024];
  size_t count;
  while ((count = std::fread(buffer, 1, sizeof buffer, file)) > 0) {
    size += count;
    if (size > maxBytes) {
      hash = 0;
      break;
    }
    for (size_t i = 0; i < count; ++i) {
      hash = (hash ^ buffer[i]) * 1099511628211ULL;
    }
  }
  std::fclose(file);
  return Fingerprint{true, size, hash};
}

void ValueFileSource::start(ChangeSink& sink) {
  std::vector<std::string> paths;
  for (Entry& entry : mEntries) {
    entry.proposed = fingerprint(entry.file.path, mManager.getMaxFileSize());
    paths.push_back(entry.file.path);
  }
  ChangeSink* target = &sink;
  mWatcher.reset(new FileWatcher(
      paths, [target]() { target->changed("value files"); },
      [target](const std::string& why) { target->note(why); }, mForcePolling, mPollInterval));
  mWatcher->start();
  // A save made while the watches were being set up is followed all the same.
  for (const Entry& entry : mEntries) {
    if (!(fingerprint(entry.file.path, mManager.getMaxFileSize()) == entry.proposed)) {
      sink.changed("value files");
      break;
    }
  }
}

void ValueFileSource::stop() {
  if (mWatcher) {
    mWatcher->stop();
  }
}

bool ValueFileSource::isPolling() const { return mWatcher && mWatcher->isPolling(); }

void ValueFileSource::reread(ProviderChanges& changes, ValidationErrors& errors) {
  for (Entry& entry : mEntries) {
    const Fingerprint now = fingerprint(entry.file.path, mManager.getMaxFileSize());
    if (now == entry.proposed) {
      continue;
    }
    entry.proposed = now;
    const std::string& path = entry.file.path;
    if (!now.exists) {
      if (!entry.file.optional) {
        errors.addError("File \"%s\" was not found", path.c_str());
      } else if (entry.file.provider != 0) {
        changes.remove(entry.file.provider, path);
      }
      continue;
    }
    std::unique_ptr<XmlFileValueProvider> provider(
        new XmlFileValueProvider(entry.file.priority, ""));
    provider->getImpl()->setManager(mManager.getSelf());
    try {
      provider->enableProvider(path.c_str(), 0);
    } catch (const ValidationException& e) {
      for (size_t i = 0; i < e.getErrors().getNumberOfErrors(); ++i) {
        errors.addError("%s", e.getErrors().getError(i));
      }
      continue;
    } catch (const std::exception& e) {
      errors.addError("%s", e.what());
      continue;
    }
    if (entry.file.provider != 0) {
      changes.replace(entry.file.provider, provider.release(), path);
    } else {
      changes.add(provider.release(), path);
    }
  }
}

void ValueFileSource::applied(const ProviderChanges& changes) {
  for (const ProviderChanges::Change& change : changes.get()) {
    for (Entry& entry : mEntries) {
      if (entry.file.path == change.source) {
        entry.file.provider = change.replacement;
      }
    }
  }
}

}  // namespace zelk::configuration::impl
