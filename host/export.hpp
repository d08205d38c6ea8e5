// Visibility of the symbols that the library exports and imports. Everything else is hidden.
#pragma once

// A class or function that the library exports.
#define VLTEXTSTREAM_EXPORT __attribute__((visibility("default")))

// A service that the library calls and the host defines. It needs default visibility, too: a hidden
// declaration would not bind to a definition in another shared object.
#define VLTEXTSTREAM_IMPORT __attribute__((visibility("default")))

// A private part of an exported class, which would otherwise be exported with the class.
#define VLTEXTSTREAM_LOCAL __attribute__((visibility("hidden")))
