// The encodings that the decoding target picks from.
#pragma once

namespace textio::fuzz {

// If an encoding has no state between characters, reading can continue at any of them.
struct Encoding {
  const char* name;
  bool is_stateless = true;
};

inline constexpr Encoding kEncodings[] = {
    {"UTF-8"},        {"UTF-16"},       {"UTF-16LE"},
    {"UTF-16BE"},     {"UTF-32"},       {"UTF-32LE"},
    {"UTF-32BE"},     {"windows-1252"}, {"ISO-8859-1"},
    {"ISO-8859-15"},  {"windows-1251"}, {"Shift_JIS"},
    {"EUC-JP"},       {"GB18030"},      {"GBK"},
    {"Big5"},         {"EUC-KR"},       {"ISO-2022-JP", false},
    {"UTF-7", false}, {"KOI8-R"},       {"US-ASCII"}};

}  // namespace textio::fuzz
