// A plug-in of another extension point.
#include "TestPluginObject.h"

extern "C" const char* extensionPointName() { return "SomeOtherExtension"; }

extern "C" void* createPlugin() { return new TestPluginObject{"made for another point"}; }
