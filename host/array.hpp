// The host's array values and the queries of the option parser; services of the host.
//
// An array has a class (double, unsigned 64-bit integer, logical, char, cell, ...), at least two
// dimensions, and elements in column order. No function here changes an array.
//
// Ownership  the caller of the parser owns the arrays; a pointer into an array is valid as long as
//            the array.
// Errors     exceptions of a service reach the caller of set_parser_options.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <vltextstream/host/export.hpp>

// An array value of the host. The library only passes pointers to it on.
class hxArray;

// --- class ---------------------------------------------------------------------------------------
VLTEXTSTREAM_IMPORT bool hxIsDouble(const hxArray* array);
VLTEXTSTREAM_IMPORT bool hxIsChar(const hxArray* array);
VLTEXTSTREAM_IMPORT bool hxIsCell(const hxArray* array);

// --- shape ---------------------------------------------------------------------------------------
// Whether the array is 1-by-1.
VLTEXTSTREAM_IMPORT bool hxIsScalar(const hxArray* array);

VLTEXTSTREAM_IMPORT std::size_t hxGetNumberOfDimensions(const hxArray* array);

// The number of rows.
VLTEXTSTREAM_IMPORT std::size_t hxGetM(const hxArray* array);

// The number of columns: the product of all dimensions except the rows.
VLTEXTSTREAM_IMPORT std::size_t hxGetN(const hxArray* array);

// --- elements ------------------------------------------------------------------------------------
// The value of a numeric scalar.
VLTEXTSTREAM_IMPORT double hxGetScalar(const hxArray* array);

// Whether the array is a 1-by-1 logical array, and the bytes of a logical array.
VLTEXTSTREAM_IMPORT bool hxIsLogicalScalar(const hxArray* array);
VLTEXTSTREAM_IMPORT const unsigned char* hxGetLogicals(const hxArray* array);

// The UTF-16 code units of a char array, one per element.
VLTEXTSTREAM_IMPORT const char16_t* hxGetChars(const hxArray* array);

// Element `index` of a cell array, counted from 0.
VLTEXTSTREAM_IMPORT const hxArray* hxGetCell(const hxArray* array, std::size_t index);

// The elements of a numeric array in memory order, null for a class without such elements; the size
// of one element in bytes.
VLTEXTSTREAM_IMPORT const void* hxGetData(const hxArray* array);
VLTEXTSTREAM_IMPORT std::size_t hxGetElementSize(const hxArray* array);

namespace textio {

VLTEXTSTREAM_IMPORT std::size_t get_number_of_elements(const hxArray* array);

// A char array as narrow text. A character without a narrow form becomes one that occurs in no
// option name.
VLTEXTSTREAM_IMPORT std::string get_string(const hxArray* array);

// A char array as UTF-16 text.
VLTEXTSTREAM_IMPORT std::u16string get_ustring(const hxArray* array);

// The texts of a cell array of char arrays, or the one text of a char array.
VLTEXTSTREAM_IMPORT std::vector<std::u16string> get_ustring_array(const hxArray* array);

// Whether a double is a whole number; false for infinities and NaN.
VLTEXTSTREAM_IMPORT bool is_integer(double value);

}  // namespace textio
