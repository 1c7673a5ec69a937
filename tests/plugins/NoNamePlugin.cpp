// A library with createPlugin() but no extensionPointName().
#include "TestPluginObject.h"

extern "C" void* createPlugin() { return new TestPluginObject{"nameless"}; }
