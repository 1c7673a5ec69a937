// A plug-in whose createPlugin() throws.
#include <stdexcept>

#include "TestPluginObject.h"

extern "C" const char* extensionPointName() { return ZELK_TEST_EXTENSION_POINT; }

extern "C" void* createPlugin() { throw std::runtime_error("the plug-in refuses to start"); }
