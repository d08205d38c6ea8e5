#include "tool/catalog/file_list.hpp"

#include <ostream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "support/rule_name.hpp"
#include "support/temp_folder.hpp"

namespace textio::tool {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing_support::ByRule;
using testing_support::TempFolder;

using Paths = std::vector<std::string>;

// A name that ends with "/" is a folder, one with "->" a link: "a->b" leads from a to b.
class Tree {
 public:
  explicit Tree(const Paths& names) {
    for (const std::string& name : names) add(name);
  }

  Paths files(bool is_recursive, bool keeps_empty_folders = false) const {
    Paths found = files_below({folder_.path()}, {is_recursive, keeps_empty_folders});
    for (std::string& path : found) {
      path = path == folder_.path() ? "" : path.substr(folder_.path().size() + 1);
    }
    return found;
  }

  const TempFolder& folder() const { return folder_; }

 private:
  void add(const std::string& name) {
    const std::size_t arrow = name.find("->");
    if (arrow != std::string::npos) {
      const std::string link = folder_.path_of(name.substr(0, arrow));
      ASSERT_EQ(symlink(name.substr(arrow + 2).c_str(), link.c_str()), 0);
    } else if (name.back() == '/') {
      folder_.folder(name.substr(0, name.size() - 1));
    } else {
      folder_.file(name, "x");
    }
  }

  TempFolder folder_;
};

struct TreeCase {
  const char* rule;
  Paths names;
  Paths alone;
  Paths recursive;
};
std::ostream& operator<<(std::ostream& out, const TreeCase& row) { return out << row.rule; }

const TreeCase kTrees[] = {
    {"NothingInAnEmptyFolder", {}, {}, {}},
    {"NamesAreOrderedByTheirBytes",
     {"b", "a", "C", "10", "9", "a-b", "a b"},
     {"10", "9", "C", "a", "a b", "a-b", "b"},
     {"10", "9", "C", "a", "a b", "a-b", "b"}},
    {"FoldersBelowComeWhereTheirNamesCome",
     {"b", "a/", "a/z", "c/", "c/y", "c/d/", "c/d/x"},
     {"b"},
     {"a/z", "b", "c/d/x", "c/y"}},
    {"HiddenNamesAreLeftOut", {".a", "b", ".c/", ".c/d", "e.f"}, {"b", "e.f"}, {"b", "e.f"}},
    {"LinksToFilesCount", {"a", "b->a", "c->nowhere"}, {"a", "b"}, {"a", "b"}},
    {"LinksToFoldersAreNotFollowed", {"a/", "a/x", "b->a", "a/up->..", "self->."}, {}, {"a/x"}},
    {"LinksInACircleAreNoFiles", {"a->b", "b->a", "c"}, {"c"}, {"c"}},
    {"HostileNamesAreKept",
     {"-n", "--json", "a\nb", "\"", "\xFF\xFE", "a\x1B[2J", "$(x)"},
     {"\"", "$(x)", "--json", "-n", "a\nb", "a\x1B[2J", "\xFF\xFE"},
     {"\"", "$(x)", "--json", "-n", "a\nb", "a\x1B[2J", "\xFF\xFE"}},
    {"EmptyFoldersBelowHaveNoFiles", {"a/", "a/b/", "c/", "c/d"}, {}, {"c/d"}},
};

class FilesBelow : public testing::TestWithParam<TreeCase> {};
TEST_P(FilesBelow, AFolderAlone) {
  EXPECT_THAT(Tree(GetParam().names).files(false), ElementsAreArray(GetParam().alone));
}
TEST_P(FilesBelow, AFolderAndThoseBelow) {
  EXPECT_THAT(Tree(GetParam().names).files(true), ElementsAreArray(GetParam().recursive));
}
INSTANTIATE_TEST_SUITE_P(Table, FilesBelow, testing::ValuesIn(kTrees), ByRule());

TEST(FilesBelowAFolder, LeavesOutPipesSocketsAndDevices) {
  const Tree tree({"a", "z"});
  ASSERT_EQ(mkfifo(tree.folder().path_of("pipe").c_str(), 0600), 0);
  ASSERT_EQ(symlink("/dev/zero", tree.folder().path_of("zero").c_str()), 0);
  const int socket_of_its_own = socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  const std::string path = tree.folder().path_of("socket");
  ASSERT_LT(path.size(), sizeof address.sun_path);
  path.copy(address.sun_path, path.size());
  ASSERT_EQ(bind(socket_of_its_own, reinterpret_cast<const sockaddr*>(&address), sizeof address),
            0);
  EXPECT_THAT(tree.files(true), ElementsAre("a", "z"));
  close(socket_of_its_own);
}

TEST(FilesBelowAFolder, KeepsAnEmptyOneOnRequest) {
  EXPECT_THAT(Tree({}).files(true, true), ElementsAre(""));
  EXPECT_THAT(Tree({"a/"}).files(true, true), ElementsAre(""));
  EXPECT_THAT(Tree({"a"}).files(true, true), ElementsAre("a"));
}

TEST(FilesBelowAFolder, HasThemAfterWhateverItIsGivenAs) {
  const Tree tree({"a"});
  const std::string path = tree.folder().path();
  EXPECT_THAT(files_below({path + "/"}, {}), ElementsAre(path + "/a"));
  ASSERT_EQ(symlink(path.c_str(), (path + "-link").c_str()), 0);
  EXPECT_THAT(files_below({path + "-link"}, {}), ElementsAre(path + "-link/a"));
  unlink((path + "-link").c_str());
}

TEST(FilesBelow, PassesOnWhatIsNoFolder) {
  const Paths paths = {"-", "no such file", ".hidden", "/dev/null"};
  EXPECT_THAT(files_below(paths, {true, false}), ElementsAreArray(paths));
  EXPECT_THAT(files_below({}, {}), IsEmpty());
}

// The superuser lists every folder, so the test is another user while this lives.
class OrdinaryUser {
 public:
  OrdinaryUser() : before_(geteuid()) { EXPECT_EQ(seteuid(before_ == 0 ? kNobody : before_), 0); }
  OrdinaryUser(const OrdinaryUser&) = delete;
  OrdinaryUser& operator=(const OrdinaryUser&) = delete;
  ~OrdinaryUser() { EXPECT_EQ(seteuid(before_), 0); }

 private:
  static constexpr uid_t kNobody = 65534;
  uid_t before_;
};

TEST(FilesBelow, HasAFolderThatCannotBeListed) {
  const Tree tree({"a/", "a/x", "b"});
  const std::string closed = tree.folder().path_of("a");
  ASSERT_EQ(chmod(tree.folder().path().c_str(), 0755), 0);
  ASSERT_EQ(chmod(closed.c_str(), 0), 0);
  {
    const OrdinaryUser user;
    EXPECT_THAT(tree.files(true), ElementsAre("a", "b"));
  }
  ASSERT_EQ(chmod(closed.c_str(), 0700), 0);
}

TEST(IsFolder, OfEachKindOfPath) {
  const TempFolder folder;
  EXPECT_TRUE(is_folder(folder.path()));
  EXPECT_FALSE(is_folder(folder.file("f", "")));
  EXPECT_FALSE(is_folder(folder.path_of("missing")));
}

}  // namespace
}  // namespace textio::tool
