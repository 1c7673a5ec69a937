#include "support/InstallationFixture.h"

#include <sys/stat.h>

#include <filesystem>

#include "support/TextFiles.h"
#include "zelk/host/HostDirectories.h"

namespace zelk::test {

namespace {

std::string currentDirectory(bool (*lookUp)(char*)) {
  char buffer[zelk::host::HOST_PATH_BUFFER_SIZE];
  return lookUp(buffer) ? std::string(buffer) : std::string();
}

}  // namespace

InstallationFixture::InstallationFixture(int announced)
    : mEtc(mRoot.makeDirectory("etc")),
      mPlugins(mRoot.makeDirectory("plugins")),
      mConfig(mRoot.makeDirectory("config")),
      mPreviousEtc(currentDirectory(&zelk::host::hostGetEtcDir)),
      mPreviousPlugins(currentDirectory(&zelk::host::hostGetPluginsDir)),
      mPreviousConfig(currentDirectory(&zelk::host::hostGetConfigDir)) {
  zelk::host::hostSetDirectories((announced & ETC) != 0 ? mEtc.c_str() : nullptr,
                                 (announced & PLUGINS) != 0 ? mPlugins.c_str() : nullptr,
                                 (announced & CONFIG) != 0 ? mConfig.c_str() : nullptr);
}

InstallationFixture::~InstallationFixture() {
  zelk::host::hostSetDirectories(mPreviousEtc.c_str(), mPreviousPlugins.c_str(),
                                 mPreviousConfig.c_str());
}

std::string InstallationFixture::writeEtcFile(const std::string& name,
                                              const std::string& content) const {
  const std::string path = mEtc + "/" + name;
  writeTextFile(path, content);
  return path;
}

std::string InstallationFixture::writePluginsFile(const std::string& name,
                                                  const std::string& content) const {
  const std::string path = mPlugins + "/" + name;
  writeTextFile(path, content);
  return path;
}

std::string InstallationFixture::writeConfigFile(const std::string& name,
                                                 const std::string& content) const {
  const std::string path = mConfig + "/" + name;
  writeTextFile(path, content);
  return path;
}

std::string InstallationFixture::copyIntoPlugins(const std::string& source,
                                                 const std::string& name) const {
  const std::filesystem::path target = std::filesystem::path(mPlugins) / name;
  std::filesystem::create_directories(target.parent_path());
  // Explicit modes, so that the umask never makes a directory on the way group-writable.
  for (std::filesystem::path p = target.parent_path(); p.string().size() > mPlugins.size();
       p = p.parent_path()) {
    chmod(p.c_str(), 0755);
  }
  std::filesystem::copy_file(source, target, std::filesystem::copy_options::overwrite_existing);
  chmod(target.c_str(), 0755);
  return target.string();
}

}  // namespace zelk::test
