#include "zelk/configuration/ValueFileWriter.h"

#include <cstdio>
#include <ostream>
#include <string>

#include "zelk/configuration/ConfigurationException.h"
#include "zelk/configuration/impl/ValueFileWriterImpl.h"
#include "zelk/host/HostProcess.h"
#include "zelk/util/Contracts.h"

namespace zelk::configuration {

namespace {

const bool hostInitialised = zelk::host::hostProcessInit();

}  // namespace

void ValueFileWriter::write(std::ostream& out, const Specification& specification,
                            const ValueGroup& values) {
  out << impl::ValueFileWriterImpl::compose(specification, values);
}

void ValueFileWriter::writeFile(const char* path, const Specification& specification,
                                const ValueGroup& values) {
  ZELK_CONTRACT(path != 0 && *path != '\0');
  const std::string text = impl::ValueFileWriterImpl::compose(specification, values);
  std::FILE* file = std::fopen(path, "wb");
  bool written = file != nullptr && std::fwrite(text.data(), 1, text.size(), file) == text.size();
  if (file != nullptr && std::fclose(file) != 0) written = false;
  if (!written) {
    throw ConfigurationException("File \"%s\" cannot be written", path);
  }
}

}  // namespace zelk::configuration
