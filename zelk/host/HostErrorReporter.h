// HostErrorReporter: the host runtime's exception base and its per-session error-reporting switch.
//
// Every exception that the host's own error handling catches and prints derives from this class;
// the configuration library's ConfigurationException is one of them. A session (see HostContext.h)
// carries an error-reporting flag that loading code turns on:
//
//   zelk::host::HostErrorReporter::setEnabled(zelk::host::hostCurrentSession(), true);
//   try { ... } catch (const zelk::host::HostErrorReporter& e) { e.reportErrors("loading"); }
#pragma once

#include <exception>

namespace zelk::host {

class HostSession;

class HostErrorReporter : public std::exception {
public:
  HostErrorReporter() = default;
  HostErrorReporter(const HostErrorReporter&) = default;
  HostErrorReporter& operator=(const HostErrorReporter&) = default;
  ~HostErrorReporter() override = default;

  // The message; null when the exception carries none.
  const char* what() const noexcept override;
  virtual operator const char*() const;
  // A negative number that classifies the error for the host (for example -700).
  virtual int get_kind() const;
  // Writes "<context>: <kind>: <message>" to standard error when reporting is enabled for the
  // current session.
  virtual void reportErrors(const char* context) const;
  // The host's kernel exception view of this error; none for plug-in exceptions.
  virtual const void* asKernelException() const;

  // The session's error-reporting switch.
  static void setEnabled(HostSession* session, bool enabled);
  static bool isEnabled(const HostSession* session);
};

}  // namespace zelk::host
