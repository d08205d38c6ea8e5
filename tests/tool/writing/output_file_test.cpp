#include "tool/writing/output_file.hpp"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include "support/temp_folder.hpp"
#include "tool/writing/table_writer.hpp"

namespace textio::tool {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using testing_support::TempFolder;

std::string content_of(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> names_in(const TempFolder& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
    names.push_back(entry.path().filename());
  }
  return names;
}

void write_to(const OutputFile& file, std::string_view text) {
  ASSERT_EQ(write(file.fd(), text.data(), text.size()), static_cast<ssize_t>(text.size()));
}

TEST(OutputFile, ReplacesWhenItIsComplete) {
  const TempFolder folder;
  const std::string path = folder.file("out", "old");
  OutputFile file(path);
  write_to(file, "new");
  EXPECT_EQ(content_of(path), "old");
  file.commit();
  EXPECT_EQ(content_of(path), "new");
  EXPECT_THAT(names_in(folder), ElementsAre("out"));
}

TEST(OutputFile, LeavesNothingWithoutCommit) {
  const TempFolder folder;
  const std::string path = folder.path_of("out");
  {
    OutputFile file(path);
    write_to(file, "new");
    EXPECT_THAT(names_in(folder), testing::SizeIs(1));
  }
  EXPECT_THAT(names_in(folder), IsEmpty());
}

TEST(OutputFile, BeginsAnew) {
  const TempFolder folder;
  const std::string path = folder.path_of("out");
  OutputFile file(path);
  write_to(file, "a longer text");
  file.clear();
  write_to(file, "short");
  file.commit();
  EXPECT_EQ(content_of(path), "short");
}

TEST(OutputFile, MayBeWrittenByTwoAtOnce) {
  const TempFolder folder;
  const std::string path = folder.path_of("out");
  OutputFile first(path);
  OutputFile second(path);
  write_to(first, "first");
  write_to(second, "second");
  second.commit();
  EXPECT_EQ(content_of(path), "second");
  first.commit();
  EXPECT_EQ(content_of(path), "first");
  EXPECT_THAT(names_in(folder), ElementsAre("out"));
}

TEST(OutputFile, FollowsALinkAndKeepsPermissions) {
  const TempFolder folder;
  const std::string path = folder.file("real", "old");
  ASSERT_EQ(chmod(path.c_str(), 0640), 0);
  const std::string link = folder.path_of("link");
  ASSERT_EQ(symlink("real", link.c_str()), 0);
  OutputFile file(link);
  write_to(file, "new");
  file.commit();
  EXPECT_EQ(content_of(path), "new");
  EXPECT_TRUE(std::filesystem::is_symlink(link));
  struct stat about = {};
  ASSERT_EQ(stat(path.c_str(), &about), 0);
  EXPECT_EQ(about.st_mode & 07777U, 0640U);
  EXPECT_THAT(names_in(folder), UnorderedElementsAre("real", "link"));
}

TEST(OutputFile, WritesAtOnceToWhatIsNoRegularFile) {
  OutputFile file("/dev/null");
  EXPECT_FALSE(file.is_replacing());
  write_to(file, "x");
  file.commit();
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST(OutputFile, RefusesAFolderAndAFolderThatIsMissing) {
  const TempFolder folder;
  EXPECT_THROW(OutputFile(folder.path()), WriteError);
  EXPECT_THROW(OutputFile(folder.path_of("missing") + "/out"), WriteError);
}

TEST(OutputFile, ServesOnlySoManyAtOnce) {
  const TempFolder folder;
  std::vector<std::unique_ptr<OutputFile>> files;
  for (std::size_t i = 0; i < OutputFile::kMostAtOnce; ++i) {
    files.push_back(std::make_unique<OutputFile>(folder.path_of(std::to_string(i))));
  }
  EXPECT_THROW(OutputFile(folder.path_of("more")), WriteError);
  files.pop_back();
  EXPECT_NO_THROW(OutputFile(folder.path_of("more")));
}

}  // namespace
}  // namespace textio::tool
