// ContextManager: a scope guard that runs loading code in a host context of its own, with the
// host's error reporting enabled, and gives the calling thread its previous context back.
//
//   {
//     ContextManager scope;   // a fresh context (200, 500) is current and shared
//     ... load files ...
//   }                         // the previous context (or none) is current again
//
// Scopes nest: each restores what was current when it was entered.
#pragma once

namespace zelk::host {
class HostContext;
class HostSession;
}  // namespace zelk::host

namespace zelk::configuration::impl {

class ContextManager {
public:
  // The host's tuning values for the temporary context.
  static const int INITIAL_PAGES = 200;
  static const int MAXIMUM_PAGES = 500;

  ContextManager();
  ContextManager(const ContextManager&) = delete;
  ContextManager& operator=(const ContextManager&) = delete;
  ~ContextManager();

  // The context made current by this scope, and its session.
  zelk::host::HostContext* getContext() const { return mContext; }
  zelk::host::HostSession* getSession() const { return mSession; }

private:
  zelk::host::HostContext* mPrevious;
  zelk::host::HostContext* mContext;
  zelk::host::HostSession* mSession;
};

}  // namespace zelk::configuration::impl
