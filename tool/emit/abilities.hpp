// Abilities: what a reader can be told, and the first fact of a file that is beyond it.
//
//   find_obstacle(facts, {.codecs = Codecs::python, .skips_blank_lines = true});
//   // "some records have fewer cells than columns", or "" if the reader can read the file by itself
//
// Every ability that is claimed here was tried: scripts/check-emit executes what is printed.
#pragma once

#include <optional>
#include <string>

#include "tool/emit/emit_facts.hpp"
#include "tool/emit/emit_words.hpp"

namespace textio::tool {

struct Abilities {
  Codecs codecs = Codecs::python;
  bool skips_lines = true;  // any number; otherwise, one line of names at most
  bool skips_blank_lines = false;
  bool skips_comments = false;  // whole lines that begin with a text
  bool takes_footer = false;
  bool takes_other_quotes = false;  // than the double quote
  bool takes_backslash = false;
  bool takes_breaks_in_cells = true;
  bool takes_other_delimiters = true;  // than the comma
  bool takes_lone_cr = false;          // as line ending
  bool takes_decimal_comma = false;
  bool takes_own_marks = false;  // each column has its own
  bool takes_grouping = false;
  bool takes_words = false;          // for missing values, each column its own
  bool takes_boolean_words = false;  // besides true and false
  bool takes_formats = false;        // of dates, besides ISO 8601
  bool expands_paths = false;        // takes *, ? and [ in a path for a pattern
};

// The end of the sentence "READER cannot read this file by itself: ...".
std::string find_obstacle(const Facts& facts, const Abilities& abilities);

// The encoding as the reader calls it. Only of files without an obstacle.
std::string encoding_for(const Facts& facts, Codecs codecs);

}  // namespace textio::tool
