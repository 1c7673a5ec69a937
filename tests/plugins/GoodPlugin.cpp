// A well-behaved plug-in: names the test extension point and makes a new object per call.
#include "TestPluginObject.h"

extern "C" const char* extensionPointName() { return ZELK_TEST_EXTENSION_POINT; }

extern "C" void* createPlugin() { return new TestPluginObject{"made by the good plug-in"}; }
