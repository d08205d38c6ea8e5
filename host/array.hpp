// The host's array values and what the option parser asks of them; services of the host.
//
// An array has a class (double, unsigned 64-bit integer, logical, char, cell, ...), at least two
// dimensions, and elements in column order. Nothing here changes an array.
//
// Ownership  the caller of the parser owns the arrays; pointers into one live as long as it does.
// Errors     what a service throws reaches the caller of set_parser_options.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <vltextstream/host/export.hpp>

// An array value of the host; the library only hands pointers to it around.
class hxArray;

// --- class ---------------------------------------------------------------------------------------
VLTEXTSTREAM_IMPORT bool hxIsDouble(const hxArray* array);
VLTEXTSTREAM_IMPORT bool hxIsChar(const hxArray* array);
VLTEXTSTREAM_IMPORT bool hxIsCell(const hxArray* array);

// --- shape ---------------------------------------------------------------------------------------
// Whether the array is 1-by-1.
VLTEXTSTREAM_IMPORT bool hxIsScalar(const hxArray* array);

VLTEXTSTREAM_IMPORT std::size_t hxGetNumberOfDimensions(const hxArray* array);

// Rows.
VLTEXTSTREAM_IMPORT std::size_t hxGetM(const hxArray* array);

// Columns: of an array with more than two dimensions, all but the rows taken together.
VLTEXTSTREAM_IMPORT std::size_t hxGetN(const hxArray* array);

// --- elements ------------------------------------------------------------------------------------
// The value of a numeric scalar.
VLTEXTSTREAM_IMPORT double hxGetScalar(const hxArray* array);

// Whether the array is a 1-by-1 logical array, and the bytes of a logical array.
VLTEXTSTREAM_IMPORT bool hxIsLogicalScalar(const hxArray* array);
VLTEXTSTREAM_IMPORT const unsigned char* hxGetLogicals(const hxArray* array);

// The UTF-16 units of a char array; as many as it has elements.
VLTEXTSTREAM_IMPORT const char16_t* hxGetChars(const hxArray* array);

// Element `index` of a cell array, counted from 0.
VLTEXTSTREAM_IMPORT const hxArray* hxGetCell(const hxArray* array, std::size_t index);

// The elements of a numeric array as they lie in memory, null for a class that has none, and the
// size of one of them in bytes.
VLTEXTSTREAM_IMPORT const void* hxGetData(const hxArray* array);
VLTEXTSTREAM_IMPORT std::size_t hxGetElementSize(const hxArray* array);

namespace textio {

VLTEXTSTREAM_IMPORT std::size_t get_number_of_elements(const hxArray* array);

// A char array as narrow text; a character that has none becomes something that no option name
// has.
VLTEXTSTREAM_IMPORT std::string get_string(const hxArray* array);

// A char array as UTF-16 text.
VLTEXTSTREAM_IMPORT std::u16string get_ustring(const hxArray* array);

// The texts of a cell array of char arrays, or the one text of a char array.
VLTEXTSTREAM_IMPORT std::vector<std::u16string> get_ustring_array(const hxArray* array);

// Whether a double is a whole number; infinities and NaN are none.
VLTEXTSTREAM_IMPORT bool is_integer(double value);

}  // namespace textio
