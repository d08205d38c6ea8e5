// The facts of a file, from which --emit makes its programs, for Python.
#pragma once

#include <string>

#include <nanobind/nanobind.h>

#include <vltextstream/layout/detect_layout.hpp>

namespace textio::python {

// Reads the file to its end, without the lock of the interpreter, which the caller has. "obstacles" says why a reader
// cannot read the file by itself, with an empty text for one that can; "encoding" is the name in Python, or empty.
nanobind::dict facts_dict(const std::string& path, const standalone::DetectSettings& settings);

}  // namespace textio::python
