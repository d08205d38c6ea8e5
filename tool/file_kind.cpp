// libmagic describes a file in parts with commas between, the most general first: "PNG image data,
// 1 x 1, 8-bit/color RGB". What its encoding tells ("ASCII text") is known better here.
#include "tool/file_kind.hpp"

#include <memory>
#include <type_traits>

#include <magic.h>

namespace textio::tool {
namespace {

// Named so that neither the environment nor a file in the home folder replaces it.
constexpr const char* kDatabase = "/usr/share/misc/magic";

// The file layer unpacks content, and what a table is has been decided.
constexpr int kFlags = MAGIC_NO_CHECK_COMPRESS | MAGIC_NO_CHECK_CSV;

struct CloseDatabase {
  void operator()(magic_t database) const { magic_close(database); }
};
using Database = std::unique_ptr<std::remove_pointer_t<magic_t>, CloseDatabase>;

Database open_database() {
  Database database(magic_open(kFlags));
  if (database && magic_load(database.get(), kDatabase) != 0) database.reset();
  return database;
}

bool is_plain(std::string_view kind) {
  constexpr std::string_view kText = " text";
  return kind == "data" || kind == "empty" || kind.starts_with("very short file") ||
         (kind.ends_with(kText) && kind.find("JSON") == kind.npos);
}

}  // namespace

std::string file_kind(std::string_view first_bytes) {
  thread_local const Database database = open_database();
  if (!database) return {};
  const char* const found = magic_buffer(database.get(), first_bytes.data(), first_bytes.size());
  if (!found) return {};
  const std::string_view whole = found;
  const std::string_view kind = whole.substr(0, whole.find(','));
  return is_plain(kind) ? std::string() : std::string(kind);
}

}  // namespace textio::tool
