// The files that paths mean: a folder means the regular files in it.
//
//   files_below({"gauges", "-"}, {});                       // {"gauges/01.csv", "gauges/02.csv", "-"}
//   files_below({"gauges"}, {.is_recursive = true});        // also those in the folders below
//
// The order is that of the paths, and within a folder that of the names, compared byte by byte; the files of
// a folder below come where its name comes. Left out of a folder: names that begin with a dot, pipes, devices
// and sockets, and links to folders, so that no loop is followed. A link to a regular file counts as one. A
// path that is given is never left out, whatever its name; what is no folder is passed on as it is.
//
// A folder below that cannot be listed is in the list itself: to read it fails, and says why.
//
// Errors  std::bad_alloc. No file is opened.
// Memory  the paths.
#pragma once

#include <string>
#include <vector>

namespace textio::tool {

struct FileListing {
  // Also the files of the folders below, at any depth.
  bool is_recursive = false;

  // A given folder in which no file is found is in the list itself, for someone to complain of it.
  bool keeps_empty_folders = false;
};

std::vector<std::string> files_below(const std::vector<std::string>& paths,
                                     const FileListing& listing);

bool is_folder(const std::string& path) noexcept;

}  // namespace textio::tool
