// The version stamp of the library that is loaded.
#pragma once

#include <vltextstream/host/export.hpp>

extern "C" {

// Where the library lies below the installation's root, such as "lib/libvltextstream.so".
VLTEXTSTREAM_EXPORT extern const char* const libvltextstream_relative_path;

// Day on which the build was configured, UTC, "2026-11-20"; that of SOURCE_DATE_EPOCH if it is set.
VLTEXTSTREAM_EXPORT extern const char* const libvltextstream_build_date;

// Three numbers, "1.0.0".
VLTEXTSTREAM_EXPORT extern const char* const libvltextstream_version;
}
