#include "zelk/configuration/ValueFileWriter.h"

#include <ostream>
#include <string>

#include "zelk/configuration/impl/FileOpener.h"
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
  impl::writeWholeFile(path, impl::ValueFileWriterImpl::compose(specification, values));
}

}  // namespace zelk::configuration
