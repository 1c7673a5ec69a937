// The object that the test plug-in libraries make: a plain struct, so that a test can read and
// delete it without sharing any code with the library.
#pragma once

struct TestPluginObject {
  char text[32];
};

// The extension point that the well-behaved test plug-ins name.
#define ZELK_TEST_EXTENSION_POINT "ZelkTestExtension"
