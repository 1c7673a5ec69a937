// The value file writer: a value file for the rich specification is read, written back, and the
// written text read again must give the same values. The text is then written over a file with a
// disk that fills up after a number of bytes the input chooses: the file then holds either its old
// text or the new one, whole, and no temporary file is left.
#include <dirent.h>
#include <errno.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

#include "FuzzSupport.h"
#include "zelk/configuration/ValueBase.h"
#include "zelk/configuration/ValueFileWriter.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/ValueIterator.h"
#include "zelk/configuration/XmlFileValueProvider.h"
#include "zelk/util/AtomicFile.h"

using namespace zelk::configuration;

namespace {

// The files of this process: the input, the file written over, in a directory of their own.
struct Files {
  Files() : directory(std::string(P_tmpdir) + "/zelk-writer-fuzz-" + std::to_string(getpid())) {
    mkdir(directory.c_str(), 0700);
  }
  ~Files() {
    std::remove(input().c_str());
    std::remove(target().c_str());
    rmdir(directory.c_str());
  }
  std::string input() const { return directory + "/input.xml"; }
  std::string target() const { return directory + "/target.xml"; }
  std::string directory;
};

const Files& files() {
  static const Files instance;
  return instance;
}

void writePlain(const std::string& path, const std::string& text) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(text.data(), static_cast<std::streamsize>(text.size()));
}

std::string readPlain(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

std::size_t entriesIn(const std::string& directory) {
  std::size_t count = 0;
  if (DIR* dir = opendir(directory.c_str())) {
    while (const dirent* entry = readdir(dir)) {
      if (entry->d_name[0] != '.') ++count;
    }
    closedir(dir);
  }
  return count;
}

std::string dump(const ValueGroup& group) {
  std::string text = std::string(group.getName()) + "{";
  for (std::size_t i = 0; i < group.getItemCount(); ++i) {
    const auto item = group.getItem(i);
    if (item->isValueGroup()) {
      text += dump(*boost::static_pointer_cast<ValueGroup>(item));
      continue;
    }
    text += std::string(item->getName()) + "=";
    for (ValueIterator entry = static_cast<const ValueBase&>(*item).getIterator(); entry.next();) {
      text += "[" + entry.asString() + "]";
    }
  }
  return text + "}";
}

// The values of the file at path for the specification, or null when it does not load or match.
ValueGroup read(const std::string& path, const Specification& specification) {
  XmlFileValueProvider provider(1, "fuzz");
  try {
    provider.enableProvider(path.c_str(), 0);
    return provider.getValues(specification, 0x1c);
  } catch (const ConfigurationException&) {
    return ValueGroup::Null;
  }
}

// A disk with room for a number of bytes; every write past them fails as a full disk does.
std::size_t roomLeft = 0;
ssize_t writeToSmallDisk(int fd, const void* data, std::size_t size) {
  if (roomLeft == 0) {
    errno = ENOSPC;
    return -1;
  }
  const std::size_t now = size < roomLeft ? size : roomLeft;
  roomLeft -= now;
  return ::write(fd, data, now);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  zelk::fuzz::InputReader input(data, size);
  const std::size_t room = input.word();
  writePlain(files().input(), input.rest());
  ConfigurationManager* manager = zelk::fuzz::richManager();
  const Specification& rich = *manager->getSpecification("rich");

  const ValueGroup values = read(files().input(), rich);
  if (values.isNull()) return 0;
  std::ostringstream composed;
  try {
    ValueFileWriter::write(composed, rich, values);
  } catch (const ConfigurationException& e) {
    ZELK_FUZZ_CHECK(*e.what() != '\0');
    return 0;
  }
  const std::string text = composed.str();

  // Written to a file and read back: the same values.
  const std::string old = "<old/>";
  writePlain(files().target(), old);
  ValueFileWriter::writeFile(files().target().c_str(), rich, values);
  ZELK_FUZZ_CHECK(readPlain(files().target()) == text);
  const ValueGroup again = read(files().target(), rich);
  ZELK_FUZZ_CHECK(!again.isNull());
  ZELK_FUZZ_CHECK(dump(again) == dump(values));

  // On a disk that fills up: the old text or the new one, whole; nothing left behind.
  writePlain(files().target(), old);
  roomLeft = room;
  zelk::setWriteFunctionForTesting(writeToSmallDisk);
  bool written = true;
  try {
    ValueFileWriter::writeFile(files().target().c_str(), rich, values);
  } catch (const ConfigurationException& e) {
    written = false;
    ZELK_FUZZ_CHECK(e.getReason() == "No space left on device");
  }
  zelk::setWriteFunctionForTesting(nullptr);
  ZELK_FUZZ_CHECK(written == (text.size() <= room));
  ZELK_FUZZ_CHECK(readPlain(files().target()) == (written ? text : old));
  ZELK_FUZZ_CHECK(entriesIn(files().directory) == 2);
  return 0;
}
