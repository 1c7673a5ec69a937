// HostSession: the host's per-context session, which carries the error-reporting switch.
//
// Get the current one with hostCurrentSession() (see HostContext.h):
//
//   zelk::host::HostErrorReporter::setEnabled(zelk::host::hostCurrentSession(), true);
#pragma once

#include <atomic>

namespace zelk::host {

class HostSession {
public:
  HostSession() = default;
  HostSession(const HostSession&) = delete;
  HostSession& operator=(const HostSession&) = delete;

  // Whether host exceptions raised in this session print their errors (HostErrorReporter).
  bool isErrorReportingEnabled() const { return mErrorReporting.load(); }
  void setErrorReportingEnabled(bool enabled) { mErrorReporting.store(enabled); }

private:
  std::atomic<bool> mErrorReporting{false};
};

}  // namespace zelk::host
