// Fingerprints: two files with the same one are laid out alike, or have the same columns.
//
//   fingerprint_of("5:level,6:number,2:cm,")   // "...-....-5...-....-............"
//
// A fingerprint is the UUID of version 5 (RFC 4122, SHA-1) of a canonical text in the name space
// kFingerprintSpace. docs/catalog.md says how the text is made, so that any language can make it. It depends on
// no machine, no path and no time.
//
// Errors  std::bad_alloc.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace textio::tool {

struct CatalogRow;

inline constexpr std::string_view kFingerprintSpace = "30fc83c5-c553-57e4-aeb3-458617f1e741";

// What columns of a kind have in common however their cells happen to be: "number" of integers and decimals, "text" of
// categories and identifiers. Other kinds are their own family.
std::string_view family_of(std::string_view kind) noexcept;

// Appends a text so that no two lists of texts give the same: its length in bytes, ":", the text, ",".
void append_part(std::string& canonical, std::string_view text);

std::string canonical_layout(const CatalogRow& row);
std::string canonical_schema(const CatalogRow& row);
std::string fingerprint_of(std::string_view canonical);

}  // namespace textio::tool
