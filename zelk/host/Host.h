// Every platform interface of the host runtime in one include.
//
//   #include "zelk/host/Host.h"
//   char etc[zelk::host::HOST_PATH_BUFFER_SIZE];
//   if (zelk::host::hostGetEtcDir(etc)) zelk::host::hostAddToMainLog("Configuration", etc);
#pragma once

#include "zelk/host/ExtensionPoint.h"
#include "zelk/host/FormattedHostException.h"
#include "zelk/host/HostContext.h"
#include "zelk/host/HostDirectories.h"
#include "zelk/host/HostErrorReporter.h"
#include "zelk/host/HostFileSystem.h"
#include "zelk/host/HostMainLog.h"
#include "zelk/host/HostProcess.h"
#include "zelk/host/HostSession.h"
#include "zelk/host/Plugin.h"
#include "zelk/host/PluginRegistry.h"
#include "zelk/host/XmlTokenReader.h"
