// The limit of a thread, and the files that are opened under it.
#include <vltextstream/standalone/files/read_limit.hpp>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <thread>

#include <vltextstream/host/file_layer.hpp>
#include <vltextstream/standalone/decoding/utf_text.hpp>
#include <vltextstream/standalone/files/read_problem.hpp>

#include "support/archives.hpp"
#include "support/temp_folder.hpp"

namespace textio::standalone {
namespace {

using testing_support::gzip_of;
using testing_support::TempFolder;

TEST(ReadLimitScope, EndsWithThePreviousLimit) {
  EXPECT_EQ(read_limit(), kNoReadLimit);
  {
    const ReadLimitScope outer(7);
    {
      const ReadLimitScope inner(3);
      EXPECT_EQ(read_limit(), 3);
    }
    EXPECT_EQ(read_limit(), 7);
  }
  EXPECT_EQ(read_limit(), kNoReadLimit);
}

TEST(ReadLimitScope, TakesWhatNoPositionCanBeForNoLimit) {
  for (const std::uint64_t most :
       {std::uint64_t{INT64_MAX}, std::uint64_t{INT64_MAX} + 1, UINT64_MAX}) {
    const ReadLimitScope scope(most);
    EXPECT_EQ(read_limit(), kNoReadLimit);
  }
}

TEST(ReadLimitScope, CountsOnItsOwnThreadAlone) {
  const ReadLimitScope scope(7);
  std::int64_t elsewhere = 0;
  std::thread([&] { elsewhere = read_limit(); }).join();
  EXPECT_EQ(elsewhere, kNoReadLimit);
}

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

// The bytes of the file that can be read, and the errno that ends them, 0 for none.
struct Content {
  std::string bytes;
  int error = 0;

  bool operator==(const Content&) const = default;
};

Content content_of(const File& file) {
  Content content;
  char bytes[100];
  errno = 0;
  content.bytes.assign(bytes, std::fread(bytes, 1, sizeof bytes, file.get()));
  content.error = std::ferror(file.get()) != 0 ? errno : 0;
  return content;
}

Content opened_under(std::uint64_t limit, const std::string& path) {
  const ReadLimitScope scope(limit);
  return content_of(File(open_file(from_utf8(path), "rb")));
}

TEST(FileUnderALimit, IsReadUpToThatManyBytes) {
  const TempFolder folder;
  const std::string path = folder.file("t", "abcdef");
  EXPECT_EQ(opened_under(6, path), (Content{"abcdef", 0}));
  EXPECT_EQ(opened_under(5, path), (Content{"abcde", kTooManyBytes}));
  EXPECT_EQ(opened_under(0, path), (Content{"", kTooManyBytes}));
  EXPECT_EQ(opened_under(0, folder.file("empty", "")), (Content{"", 0}));
}

// The first archive is larger than its text, the second one smaller.
TEST(FileUnderALimit, CountsAsItIsAndUnpacked) {
  const TempFolder folder;
  const std::string small = gzip_of("abcdef");
  const std::string path = folder.file("t.gz", small);
  EXPECT_EQ(opened_under(small.size(), path), (Content{"abcdef", 0}));
  EXPECT_EQ(opened_under(small.size() - 1, path).error, kTooManyBytes);
  const std::string letters(99, 'a');
  const std::string dense = folder.file("dense.gz", gzip_of(letters));
  EXPECT_EQ(opened_under(99, dense), (Content{letters, 0}));
  EXPECT_EQ(opened_under(98, dense), (Content{letters.substr(1), kTooManyBytes}));
}

TEST(FileUnderALimit, KeepsItAfterTheScope) {
  const TempFolder folder;
  const std::string path = folder.file("t", "abcdef");
  File file;
  {
    const ReadLimitScope scope(5);
    file.reset(open_file(from_utf8(path), "rb"));
  }
  EXPECT_EQ(content_of(file), (Content{"abcde", kTooManyBytes}));
  EXPECT_EQ(content_of(File(open_file(from_utf8(path), "rb"))), (Content{"abcdef", 0}));
}

}  // namespace
}  // namespace textio::standalone
