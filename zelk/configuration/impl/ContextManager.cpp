#include "zelk/configuration/impl/ContextManager.h"

#include "zelk/host/HostContext.h"
#include "zelk/host/HostErrorReporter.h"
#include "zelk/host/HostProcess.h"

namespace zelk::configuration::impl {

namespace {

const bool hostInitialised = zelk::host::hostProcessInit();

}  // namespace

ContextManager::ContextManager()
    : mPrevious(zelk::host::HostContext::current()), mContext(nullptr), mSession(nullptr) {
  zelk::host::HostContext::makeCurrent(nullptr);
  mContext = new zelk::host::HostContext(INITIAL_PAGES, MAXIMUM_PAGES);
  zelk::host::HostContext::makeCurrent(mContext, true);
  mSession = zelk::host::hostCurrentSession();
  zelk::host::HostErrorReporter::setEnabled(mSession, true);
}

ContextManager::~ContextManager() {
  if (mContext != nullptr) {
    zelk::host::HostContext::makeCurrent(nullptr);
    zelk::host::HostContext::makeCurrent(mPrevious, mPrevious != nullptr && mPrevious->isShared());
    delete mContext;
  }
}

}  // namespace zelk::configuration::impl
