// What streams do while a thread looks at the end of a file.
#include <vltextstream/standalone/files/end_look.hpp>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <memory>
#include <string>
#include <thread>

#include <vltextstream/host/file_layer.hpp>
#include <vltextstream/standalone/decoding/utf_text.hpp>
#include <vltextstream/standalone/files/read_limit.hpp>

#include "support/archives.hpp"
#include "support/temp_folder.hpp"

namespace textio::standalone {
namespace {

using testing_support::gzip_of;
using testing_support::TempFolder;
using testing_support::zstd_of;

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

File opened(const std::string& path) { return File(open_file(from_utf8(path), "rb")); }

TEST(EndLookScope, EndsWithWhatWasBefore) {
  EXPECT_FALSE(looks_at_end());
  {
    const EndLookScope outer;
    {
      const EndLookScope inner;
      EXPECT_TRUE(looks_at_end());
    }
    EXPECT_TRUE(looks_at_end());
  }
  EXPECT_FALSE(looks_at_end());
}

TEST(EndLookScope, CountsOnItsOwnThreadAlone) {
  const EndLookScope look;
  bool others = true;
  std::thread([&] { others = looks_at_end(); }).join();
  EXPECT_FALSE(others);
}

TEST(EndLookScope, LetsAFileGoToItsEnd) {
  const TempFolder folder;
  const File file = opened(folder.file("t", "abcdef"));
  const EndLookScope look;
  ASSERT_EQ(std::fseek(file.get(), 0, SEEK_END), 0);
  EXPECT_EQ(std::ftell(file.get()), 6);
}

TEST(EndLookScope, DoesNotUnpackToFindTheEnd) {
  const TempFolder folder;
  for (const std::string& bytes : {gzip_of("abcdef"), zstd_of("abcdef")}) {
    const File file = opened(folder.file("t", bytes));
    {
      const EndLookScope look;
      errno = 0;
      EXPECT_NE(std::fseek(file.get(), 0, SEEK_END), 0);
      EXPECT_EQ(errno, ESPIPE);
    }
    EXPECT_EQ(std::fseek(file.get(), 0, SEEK_END), 0);
    EXPECT_EQ(std::ftell(file.get()), 6);
  }
}

TEST(EndLookScope, LiftsTheReadLimit) {
  const TempFolder folder;
  const std::string path = folder.file("t", std::string(20'000, 'a') + "bc");
  File file;
  {
    const ReadLimitScope limit(10);
    file = opened(path);
  }
  char last[2] = {};
  ASSERT_EQ(std::fseek(file.get(), 20'000, SEEK_SET), 0);
  EXPECT_EQ(std::fread(last, 1, 2, file.get()), 0U);
  std::clearerr(file.get());
  const EndLookScope look;
  ASSERT_EQ(std::fseek(file.get(), 20'000, SEEK_SET), 0);
  EXPECT_EQ(std::fread(last, 1, 2, file.get()), 2U);
  EXPECT_EQ(std::string(last, 2), "bc");
}

}  // namespace
}  // namespace textio::standalone
