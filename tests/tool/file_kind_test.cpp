#include "tool/file_kind.hpp"

#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace textio::tool {
namespace {

using testing::StartsWith;

// The starts of files, byte by byte; what comes after the first bytes is left out.
using std::string_view_literals::operator""sv;
constexpr std::string_view kPdf = "%PDF-1.4\n%\xE2\xE3\xCF\xD3\n1 0 obj\n"sv;
constexpr std::string_view kPng =
    "\x89PNG\r\n\x1A\n\0\0\0\x0DIHDR\0\0\0\x01\0\0\0\x01\x08\x02\0\0\0\x90wS\xDE"sv;
constexpr std::string_view kJpeg =
    "\xFF\xD8\xFF\xE0\0\x10JFIF\0\x01\x01\0\0\x01\0\x01\0\0\xFF\xDB"sv;
constexpr std::string_view kElf =
    "\x7F"
    "ELF\x02\x01\x01\0\0\0\0\0\0\0\0\0\x03\0\x3E\0\x01\0\0\0"sv;
constexpr std::string_view kSqlite = "SQLite format 3\0\x10\0\x01\x01\0\x40\x20\x20"sv;
constexpr std::string_view kParquet = "PAR1\x15\x04\x15\x10\x15\x14\x4C\x15\x02"sv;
constexpr std::string_view kZip =
    "PK\x03\x04\x14\0\0\0\x08\0\0\0\x21\x58\x01\x02\x03\x04\x05\0\0\0\x05\0\0\0\x05\0\0\0a.txthello"
    "PK\x01\x02\x14\x03\x14\0\0\0\x08\0\0\0\x21\x58\x01\x02\x03\x04\x05\0\0\0\x05\0\0\0\x05\0\0\0"
    "\0\0\0\0\0\0\0\0\0\0\0\0\0\0a.txt"sv;

struct KindCase {
  const char* name;
  std::string_view bytes;
  const char* starts_with;
};

class Kind : public testing::TestWithParam<KindCase> {};

TEST_P(Kind, IsNamed) {
  EXPECT_THAT(file_kind(GetParam().bytes), StartsWith(GetParam().starts_with));
}

INSTANTIATE_TEST_SUITE_P(FileKind, Kind,
                         testing::Values(KindCase{"Pdf", kPdf, "PDF document"},
                                         KindCase{"Png", kPng, "PNG image"},
                                         KindCase{"Jpeg", kJpeg, "JPEG image"},
                                         KindCase{"Elf", kElf, "ELF 64-bit LSB"},
                                         KindCase{"Sqlite", kSqlite, "SQLite 3"},
                                         KindCase{"Parquet", kParquet, "Apache Parquet"},
                                         KindCase{"Zip", kZip, "Zip archive"},
                                         KindCase{"Html", "<!DOCTYPE html>\n<html>\n", "HTML"},
                                         KindCase{"Json", "{\"a\": 1}\n{\"a\": 2}\n", "New Line"}),
                         [](const auto& each) { return each.param.name; });

TEST(FileKind, IsOnlyThePartBeforeTheFirstComma) {
  EXPECT_EQ(file_kind(kPdf), "PDF document");
  EXPECT_EQ(file_kind(kPng), "PNG image data");
}

TEST(FileKind, IsEmptyForWhatTellsNothing) {
  EXPECT_EQ(file_kind(""), "");
  EXPECT_EQ(file_kind("\x01"), "");
  EXPECT_EQ(file_kind("Once upon a time there was a miller.\n"), "");
  EXPECT_EQ(file_kind("Der M\xC3\xBCller schlief.\n"), "");
  EXPECT_EQ(file_kind("\x01\x02\x03\x04\x05\x06\x07\x13\x11"), "");
}

TEST(FileKind, IsTheSameInEveryThread) {
  std::vector<std::string> kinds(4);
  std::vector<std::thread> threads;
  for (std::string& kind : kinds) threads.emplace_back([&kind] { kind = file_kind(kPdf); });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(kinds, std::vector<std::string>(4, "PDF document"));
}

}  // namespace
}  // namespace textio::tool
