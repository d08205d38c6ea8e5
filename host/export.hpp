// Visibility of what crosses the border of the library. Everything else is hidden.
#pragma once

// A class or function that the library offers.
#define VLTEXTSTREAM_EXPORT __attribute__((visibility("default")))

// A service that the library uses and the host defines. It needs default visibility too: a hidden
// declaration would not bind to a definition in another shared object.
#define VLTEXTSTREAM_IMPORT __attribute__((visibility("default")))

// A private part of an exported class, which would be exported with it otherwise.
#define VLTEXTSTREAM_LOCAL __attribute__((visibility("hidden")))
