// A library that names the extension point but has no createPlugin().
#include "TestPluginObject.h"

extern "C" const char* extensionPointName() { return ZELK_TEST_EXTENSION_POINT; }
