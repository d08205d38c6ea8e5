// The folders to look into wait on a stack, so that their depth takes no stack of the processor. Entries of a
// folder are pushed from the last to the first: the first is looked at next.
#include "tool/catalog/file_list.hpp"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <system_error>

#include <sys/stat.h>

namespace textio::tool {
namespace {

namespace fs = std::filesystem;

enum class EntryKind { file, folder, other };

struct Entry {
  std::string path;
  EntryKind kind = EntryKind::other;
};

// The system says the kind with the name, as a rule; only a link has to be looked up.
EntryKind kind_of(const fs::directory_entry& entry) {
  std::error_code error;
  const fs::file_status own = entry.symlink_status(error);
  if (fs::is_directory(own)) return EntryKind::folder;
  if (fs::is_symlink(own)) {
    return fs::is_regular_file(entry.status(error)) ? EntryKind::file : EntryKind::other;
  }
  return fs::is_regular_file(own) ? EntryKind::file : EntryKind::other;
}

// In the order of their names; whether the folder could be listed to its end.
bool list_folder(const std::string& folder, std::vector<Entry>& entries) {
  std::error_code error;
  fs::directory_iterator at(folder, error);
  for (const fs::directory_iterator end; !error && at != end; at.increment(error)) {
    const std::string& path = at->path().native();
    const std::size_t slash = path.rfind('/');
    const bool is_hidden = path[slash == std::string::npos ? 0 : slash + 1] == '.';
    if (!is_hidden) entries.push_back({path, kind_of(*at)});
  }
  std::sort(entries.begin(), entries.end(),
            [](const Entry& a, const Entry& b) { return a.path < b.path; });
  return !error;
}

void add_files_of(const std::string& root, bool is_recursive, std::vector<std::string>& files) {
  std::vector<Entry> waiting = {{root, EntryKind::folder}};
  while (!waiting.empty()) {  // each folder is pushed once: links to folders are not followed
    Entry entry = std::move(waiting.back());
    waiting.pop_back();
    if (entry.kind == EntryKind::file) {
      files.push_back(std::move(entry.path));
      continue;
    }
    std::vector<Entry> inner;
    if (!list_folder(entry.path, inner)) files.push_back(entry.path);
    for (auto it = inner.rbegin(); it != inner.rend(); ++it) {
      const bool is_wanted =
          it->kind == EntryKind::file || (it->kind == EntryKind::folder && is_recursive);
      if (is_wanted) waiting.push_back(std::move(*it));
    }
  }
}

}  // namespace

bool is_folder(const std::string& path) noexcept {
  struct stat about = {};
  return stat(path.c_str(), &about) == 0 && S_ISDIR(about.st_mode);
}

std::vector<std::string> files_below(const std::vector<std::string>& paths,
                                     const FileListing& listing) {
  std::vector<std::string> files;
  for (const std::string& path : paths) {
    if (path == "-" || !is_folder(path)) {
      files.push_back(path);
      continue;
    }
    const std::size_t num_before = files.size();
    add_files_of(path, listing.is_recursive, files);
    if (files.size() == num_before && listing.keeps_empty_folders) files.push_back(path);
  }
  return files;
}

}  // namespace textio::tool
