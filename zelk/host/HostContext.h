// HostContext: the host's execution context. Each thread has at most one current context; its
// session (hostCurrentSession) carries per-context switches such as error reporting.
//
// Code that needs a context of its own for a while remembers the current one, installs its own,
// and restores the old one afterwards:
//
//   zelk::host::HostContext* previous = zelk::host::HostContext::current();
//   zelk::host::HostContext::makeCurrent(nullptr);
//   zelk::host::HostContext* mine = new zelk::host::HostContext(200, 500);
//   zelk::host::HostContext::makeCurrent(mine, true);
//   ...
//   zelk::host::HostContext::makeCurrent(nullptr);
//   zelk::host::HostContext::makeCurrent(previous);
//   delete mine;
#pragma once

#include "zelk/host/HostSession.h"

namespace zelk::host {

class HostContext {
public:
  // initialPages and maximumPages are the host's tuning values for the context's work space.
  HostContext(int initialPages, int maximumPages);
  HostContext(const HostContext&) = delete;
  HostContext& operator=(const HostContext&) = delete;
  // A context that is still current on the destroying thread is made non-current first.
  ~HostContext();

  int getInitialPages() const { return mInitialPages; }
  int getMaximumPages() const { return mMaximumPages; }
  // The context's own session.
  HostSession* getSession() { return &mSession; }
  // Whether the context was last made current as shared (usable by the host's helper threads).
  bool isShared() const { return mShared; }

  // The calling thread's current context, or null when none is current.
  static HostContext* current();
  // Makes context current on the calling thread (null: no context is current). The previous
  // context is not remembered; callers restore it themselves.
  static void makeCurrent(HostContext* context, bool shared = false);

private:
  int mInitialPages;
  int mMaximumPages;
  bool mShared = false;
  HostSession mSession;
};

// The session of the calling thread's current context, or the process's default session when no
// context is current. Never null.
HostSession* hostCurrentSession();

}  // namespace zelk::host
