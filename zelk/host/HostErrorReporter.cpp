#include "zelk/host/HostErrorReporter.h"

#include <cstdio>

#include "zelk/host/HostContext.h"
#include "zelk/host/HostSession.h"

namespace zelk::host {

const char* HostErrorReporter::what() const noexcept { return nullptr; }

HostErrorReporter::operator const char*() const { return what(); }

int HostErrorReporter::get_kind() const { return -1; }

void HostErrorReporter::reportErrors(const char* context) const {
  if (!isEnabled(hostCurrentSession())) {
    return;
  }
  const char* message = what();
  std::fprintf(stderr, "%s: %d: %s\n", context != nullptr ? context : "", get_kind(),
               message != nullptr ? message : "");
  std::fflush(stderr);
}

const void* HostErrorReporter::asKernelException() const { return nullptr; }

void HostErrorReporter::setEnabled(HostSession* session, bool enabled) {
  if (session != nullptr) {
    session->setErrorReportingEnabled(enabled);
  }
}

bool HostErrorReporter::isEnabled(const HostSession* session) {
  return session != nullptr && session->isErrorReportingEnabled();
}

}  // namespace zelk::host
