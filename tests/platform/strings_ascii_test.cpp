#include <gtest/gtest.h>
#include <qpx/strings.h>

#include <cstring>
#include <string>

namespace {

TEST(AsciiNumbers, ReadSignsSpacesAndStopAtOtherCharacters) {
  EXPECT_EQ(MStoi(" \t-42abc"), -42);
  EXPECT_EQ(MStoi("+7"), 7);
  EXPECT_EQ(MStoi("x7"), 0);
  EXPECT_EQ(MStoi(""), 0);
  EXPECT_EQ(MStol("123456"), 123456);
  EXPECT_EQ(MStoi64("-9000000000"), -9000000000LL);
}

TEST(AsciiNumbers, OutOfRangeIsTheNearestEndOnEveryTarget) {
  EXPECT_EQ(MStoi("2147483647"), 2147483647);
  EXPECT_EQ(MStoi("2147483648"), 2147483647);
  EXPECT_EQ(MStol("99999999999999999999"), 2147483647);
  EXPECT_EQ(MStol("-2147483649"), -2147483647 - 1);
  EXPECT_EQ(MStoi64("99999999999999999999"), 9223372036854775807LL);
}

TEST(AsciiNumbers, UnsignedReportsWhereItStopped) {
  char text[] = "  ff zz";
  char* end = nullptr;
  EXPECT_EQ(MSCsToUL(text, &end, 16), 255u);
  EXPECT_EQ(end, text + 4);
  EXPECT_EQ(MSCsToUL("0x10", nullptr, 0), 16u);
  EXPECT_EQ(MSCsToUL("010", nullptr, 0), 8u);
  EXPECT_EQ(MSCsToUL("zz", nullptr, 36), 35u * 36 + 35);
}

TEST(AsciiNumbers, UnsignedHas32BitsOnEveryTarget) {
  EXPECT_EQ(MSCsToUL("4294967295", nullptr, 10), 4294967295u);
  EXPECT_EQ(MSCsToUL("4294967296", nullptr, 10), 4294967295u);
  EXPECT_EQ(MSCsToUL("99999999999999999999999", nullptr, 10), 4294967295u);
  EXPECT_EQ(MSCsToUL("-99999999999999999999999", nullptr, 10), 4294967295u);
  EXPECT_EQ(MSCsToUL(" -1", nullptr, 10), 4294967295u);
  EXPECT_EQ(MSCsToUL("-2", nullptr, 10), 4294967294u);
  EXPECT_EQ(MSCsToUL("-4294967295", nullptr, 10), 1u);
  EXPECT_EQ(MSCsToUL("-4294967296", nullptr, 10), 4294967295u);
}

TEST(AsciiNumbers, UnsignedRefusesNullAndOddBases) {
  char text[] = "12";
  for (const int32_t base : {-1, 1, 37}) {
    char* end = nullptr;
    EXPECT_EQ(MSCsToUL(text, &end, base), 0u);
    EXPECT_EQ(end, text);
  }
  char* end = text;
  EXPECT_EQ(MSCsToUL(nullptr, &end, 10), 0u);
  EXPECT_EQ(end, nullptr);
}

TEST(AsciiStrings, FindCharactersAndParts) {
  const char text[] = "banana";
  EXPECT_EQ(MSCsLen(text), 6);
  EXPECT_EQ(MSCsStr(text, "an"), text + 1);
  EXPECT_EQ(MSCsStr(text, ""), text);
  EXPECT_EQ(MSCsStr(text, "nab"), nullptr);
  EXPECT_EQ(MSCsChr(text, 'a'), text + 1);
  EXPECT_EQ(MSCsRChr(text, 'a'), text + 5);
  EXPECT_EQ(MSCsChr(text, 0), text + 6);
  EXPECT_EQ(MSCsRChr(text, 'x'), nullptr);
}

TEST(AsciiStrings, CopyAndAppend) {
  char to[12] = "";
  EXPECT_EQ(MSCsCpy(to, "ab"), to);
  EXPECT_EQ(MSCsCat(to, "cd"), to);
  EXPECT_STREQ(to, "abcd");
  std::memset(to, '.', sizeof(to));
  EXPECT_EQ(MSCsNCpy(to, "xy", 4), to);
  EXPECT_EQ(std::string(to, 5), std::string("xy\0\0.", 5));
  MSCsNCpy(to, "pqr", 2);
  EXPECT_EQ(std::string(to, 3), std::string("pq\0", 3)) << "no terminator of its own";
}

TEST(AsciiStrings, CompareAsUnsignedBytesWithPlainSigns) {
  EXPECT_EQ(MSCsCmp("a", "b"), -1);
  EXPECT_EQ(MSCsCmp("b", "a"), 1);
  EXPECT_EQ(MSCsCmp("a", "a"), 0);
  EXPECT_EQ(MSCsCmp("a", "\xE9"), -1);
  EXPECT_EQ(MSCsCmp("a", "A"), 1);
  EXPECT_EQ(MSCsNCmp("abc", "abd", 2), 0);
  EXPECT_EQ(MSCsNCmp("abc", "abd", 3), -1);
  EXPECT_EQ(MSCsICmp("HeLLo", "hEllO"), 0);
  EXPECT_EQ(MSCsICmp("a", "B"), -1);
  EXPECT_EQ(MSCsNICmp("ABx", "aby", 2), 0);
  EXPECT_EQ(MSCsNICmp("ABx", "aby", 3), -1);
}

TEST(AsciiStrings, RefuseNullsAndNegativeCounts) {
  char to[4] = "abc";
  EXPECT_EQ(MStoi(nullptr), 0);
  EXPECT_EQ(MStol(nullptr), 0);
  EXPECT_EQ(MStoi64(nullptr), 0);
  EXPECT_EQ(MSCsLen(nullptr), 0);
  EXPECT_EQ(MSCsStr(nullptr, "a"), nullptr);
  EXPECT_EQ(MSCsStr("a", nullptr), nullptr);
  EXPECT_EQ(MSCsChr(nullptr, 'a'), nullptr);
  EXPECT_EQ(MSCsRChr(nullptr, 'a'), nullptr);
  EXPECT_EQ(MSCsCat(to, nullptr), nullptr);
  EXPECT_EQ(MSCsCat(nullptr, "a"), nullptr);
  EXPECT_EQ(MSCsCpy(to, nullptr), nullptr);
  EXPECT_EQ(MSCsCpy(nullptr, "a"), nullptr);
  EXPECT_EQ(MSCsNCpy(to, nullptr, 1), nullptr);
  EXPECT_EQ(MSCsNCpy(nullptr, "a", 1), nullptr);
  EXPECT_EQ(MSCsNCpy(to, "x", -1), nullptr);
  EXPECT_STREQ(to, "abc");
  EXPECT_EQ(MSCsCmp(nullptr, nullptr), 0);
  EXPECT_EQ(MSCsCmp(nullptr, ""), -1);
  EXPECT_EQ(MSCsICmp("", nullptr), 1);
  EXPECT_EQ(MSCsNCmp(nullptr, "a", 1), -1);
  EXPECT_EQ(MSCsNCmp("a", "b", 0), 0);
  EXPECT_EQ(MSCsNCmp("a", "b", -1), 0);
  EXPECT_EQ(MSCsNICmp("a", nullptr, 1), 1);
  EXPECT_EQ(MSCsNICmp("a", "b", -5), 0);
}

TEST(AsciiStrings, SprintfFormatsAndCounts) {
  char to[32];
  EXPECT_EQ(MSSprintf(to, "%03d|%s|%c", 7, "ab", 'z'), 8);
  EXPECT_STREQ(to, "007|ab|z");
  const char* volatile none = nullptr;
  EXPECT_EQ(MSSprintf(nullptr, "a"), -1);
  EXPECT_EQ(MSSprintf(to, none, 1), -1);
}

TEST(AsciiStrings, CaseChangesAsciiLettersOnly) {
  for (int c = 1; c < 256; ++c) {
    char lower[2] = {static_cast<char>(c), 0};
    char upper[2] = {static_cast<char>(c), 0};
    EXPECT_EQ(MSCsMakeLower(lower), 0);
    EXPECT_EQ(MSCsMakeUpper(upper), 0);
    EXPECT_EQ(static_cast<uint8_t>(lower[0]), c >= 'A' && c <= 'Z' ? c + 32 : c);
    EXPECT_EQ(static_cast<uint8_t>(upper[0]), c >= 'a' && c <= 'z' ? c - 32 : c);
  }
  EXPECT_EQ(MSCsMakeLower(nullptr), 2);
  EXPECT_EQ(MSCsMakeUpper(nullptr), 2);
  char text[] = "aZ@[`{09";
  MSCsMakeUpper(text);
  EXPECT_STREQ(text, "AZ@[`{09");
}

}  // namespace
