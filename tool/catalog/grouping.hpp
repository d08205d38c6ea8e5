// Grouping: which files of a catalogue are laid out alike and have the same columns, and which differ from most.
//
//   Grouper grouper;
//   for (...) grouper.add(row);
//   const Grouping found = grouper.finish();
//   found.groups[0].files;               // {"01.csv", "02.csv"}
//   found.groups[0].odd[0].path;         // "03.csv"
//   found.groups[0].odd[0].differences;  // {"windows-1252"}
//
// Files with the same two fingerprints are a class. The largest classes are groups. A class is odd in a larger one
// if it has at most a tenth of its files, or a single one, and shares at least half of the columns: by their names,
// or, where one of them has no names, by the kinds at the same places. Of several groups, it is odd in the one
// that it has the fewest differences from, and of these in the largest. docs/catalog.md describes all of it.
//
// Errors  std::bad_alloc.
// Memory  the paths, and a row for each class.
// Cost    adding: a lookup. finish: the number of classes times kMostCompared.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tool/catalog/catalog_row.hpp"

namespace textio::tool {

struct OddFile {
  std::string path;
  std::vector<std::string> differences;  // at least one
};

struct FileGroup {
  CatalogRow example;              // the first of its files
  std::vector<std::string> files;  // in the order of the catalogue
  std::vector<OddFile> odd;
};

// A file and what is said of it.
struct Remark {
  std::string path;
  std::string text;
};

struct DoubtfulFile {
  std::string path;
  double confidence = 0.0;
};

struct Grouping {
  std::size_t num_files = 0;
  std::vector<FileGroup> groups;       // the largest first, then in the order of their first files
  std::vector<Remark> no_tables;       // what they are
  std::vector<Remark> failures;        // why
  std::vector<DoubtfulFile> doubtful;  // they are in a group as well
};

// A class is compared with at most as many groups, the largest.
inline constexpr std::size_t kMostCompared = 200;

class Grouper {
 public:
  // A table that is less sure than this is doubtful.
  explicit Grouper(double least_confidence = 0.5) : least_confidence_(least_confidence) {}

  void add(CatalogRow row);

  // Leaves nothing in it.
  Grouping finish();

 private:
  struct FileClass {
    CatalogRow example;
    std::vector<std::size_t> places;  // of its files
  };

  double least_confidence_;
  Grouping found_;
  std::vector<std::string> paths_;  // of the tables
  std::map<std::pair<std::string, std::string>, std::size_t> index_;
  std::vector<FileClass> classes_;
};

// How `odd` differs from `usual`, for people: "semicolon", "a column less (level)". Both are tables.
std::vector<std::string> differences_between(const CatalogRow& odd, const CatalogRow& usual);

// How the fields are separated: "comma", "fixed width".
std::string separator_words(const CatalogRow& row);

// "LF", "CRLF", "CR", "no" or "other", for "... line endings".
std::string line_ending_word(const CatalogRow& row);

// "decimal comma", "decimal point" or the mark.
std::string decimal_words(const CatalogRow& row);

}  // namespace textio::tool
