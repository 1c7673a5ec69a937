#include "zelk/host/HostContext.h"

namespace zelk::host {

namespace {

thread_local HostContext* tCurrent = nullptr;

}  // namespace

HostContext::HostContext(int initialPages, int maximumPages)
    : mInitialPages(initialPages), mMaximumPages(maximumPages) {}

HostContext::~HostContext() {
  if (tCurrent == this) {
    tCurrent = nullptr;
  }
}

HostContext* HostContext::current() { return tCurrent; }

void HostContext::makeCurrent(HostContext* context, bool shared) {
  if (context != nullptr) {
    context->mShared = shared;
  }
  tCurrent = context;
}

HostSession* hostCurrentSession() {
  if (tCurrent != nullptr) {
    return tCurrent->getSession();
  }
  // Never destroyed, so that it stays usable from static destructors.
  static HostSession* defaultSession = new HostSession;
  return defaultSession;
}

}  // namespace zelk::host
