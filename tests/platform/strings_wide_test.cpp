#include <gtest/gtest.h>
#include <qpx/strings.h>

#include <string>
#include <vector>

namespace {

using Units = std::vector<uint16_t>;

constexpr uint16_t kSentinel = 0xBEEF;

TEST(WideStrings, LengthOfNullAndOfUnitsWithoutALowByte) {
  EXPECT_EQ(MWCsLen(nullptr), 0);
  const uint16_t text[] = {'a', 0x4100, 0xFFFF, 0, 'z', 0};
  EXPECT_EQ(MWCsLen(text), 3);
}

TEST(WideStrings, FindTheFirstPart) {
  const uint16_t text[] = {'a', 'a', 'b', 0x100, 'b', 0};
  const uint16_t part[] = {'a', 'b', 0};
  const uint16_t longer[] = {'b', 'b', 0};
  const uint16_t last[] = {0x100, 'b', 0};
  const uint16_t beyond[] = {'b', 0x101, 0};
  const uint16_t empty[] = {0};
  const uint16_t az[] = {'a', 'z', 0};
  const uint16_t z[] = {'z', 0};
  EXPECT_EQ(MWCsStr(az, z), az + 1);
  EXPECT_EQ(MWCsStr(text, part), text + 1);
  EXPECT_EQ(MWCsStr(text, longer), nullptr);
  EXPECT_EQ(MWCsStr(text, last), text + 3);
  EXPECT_EQ(MWCsStr(text, beyond), nullptr);
  EXPECT_EQ(MWCsStr(text, empty), text);
  EXPECT_EQ(MWCsStr(empty, empty), empty);
  EXPECT_EQ(MWCsStr(empty, part), nullptr);
  EXPECT_EQ(MWCsStr(nullptr, part), nullptr);
  EXPECT_EQ(MWCsStr(text, nullptr), nullptr);
}

TEST(WideStrings, CopyAndAppendWithTheTerminatorAndNoMore) {
  const uint16_t ab[] = {'a', 0x200, 0};
  const uint16_t empty[] = {0};
  Units to(6, kSentinel);
  EXPECT_EQ(MWCsCpy(to.data(), ab), to.data());
  EXPECT_EQ(to, (Units{'a', 0x200, 0, kSentinel, kSentinel, kSentinel}));
  EXPECT_EQ(MWCsCat(to.data(), ab), to.data());
  EXPECT_EQ(to, (Units{'a', 0x200, 'a', 0x200, 0, kSentinel}));
  MWCsCat(to.data(), empty);
  EXPECT_EQ(to[4], 0);
  EXPECT_EQ(MWCsCpy(nullptr, ab), nullptr);
  EXPECT_EQ(MWCsCpy(to.data(), nullptr), nullptr);
  EXPECT_EQ(MWCsCat(nullptr, ab), nullptr);
  EXPECT_EQ(MWCsCat(to.data(), nullptr), nullptr);
  EXPECT_EQ(to, (Units{'a', 0x200, 'a', 0x200, 0, kSentinel}));
}

TEST(WideStrings, CaseChangesAsciiLettersOnlyForEveryUnit) {
  for (int32_t u = 1; u < 65536; ++u) {
    uint16_t lower[2] = {static_cast<uint16_t>(u), 0};
    uint16_t upper[2] = {static_cast<uint16_t>(u), 0};
    EXPECT_EQ(MWCsMakeLower(lower), 0);
    EXPECT_EQ(MWCsMakeUpper(upper), 0);
    ASSERT_EQ(lower[0], u >= 65 && u <= 90 ? u + 32 : u);
    ASSERT_EQ(upper[0], u >= 97 && u <= 122 ? u - 32 : u);
  }
  EXPECT_EQ(MWCsMakeLower(nullptr), 2);
  EXPECT_EQ(MWCsMakeUpper(nullptr), 2);
}

TEST(Widening, StopsBehindTheZeroAndForcesTheLastUnit) {
  Units to(7, kSentinel);
  EXPECT_EQ(MCharToWChar("a\xE9", to.data(), 6), 3);
  EXPECT_EQ(to, (Units{'a', 0xE9, 0, kSentinel, kSentinel, 0, kSentinel}));
}

TEST(Widening, CutsALongTextAndTerminatesIt) {
  Units to(4, kSentinel);
  EXPECT_EQ(MCharToWChar("abcdef", to.data(), 3), 3);
  EXPECT_EQ(to, (Units{'a', 'b', 0, kSentinel}));
  EXPECT_EQ(MCharToWChar("abcdef", to.data(), 1), 1);
  EXPECT_EQ(to[0], 0);
  EXPECT_EQ(to[1], 'b');
}

TEST(Widening, RefusesNullsAndCountsBelowOne) {
  uint16_t to[] = {kSentinel};
  EXPECT_EQ(MCharToWChar(nullptr, to, 1), 0);
  EXPECT_EQ(MCharToWChar("a", nullptr, 1), 0);
  EXPECT_EQ(MCharToWChar("a", to, 0), 0);
  EXPECT_EQ(MCharToWChar("a", to, -1), 0);
  EXPECT_EQ(to[0], kSentinel);
}

TEST(Narrowing, KeepsTheLowByte) {
  const uint16_t from[] = {0x1261, 0x00E9, 0};
  std::string to(7, '.');
  EXPECT_EQ(MWCharToChar(from, to.data(), 6), 3);
  EXPECT_EQ(to, std::string("a\xE9\0..\0.", 7));
}

TEST(Narrowing, StopsBehindAUnitWhoseLowByteIsZero) {
  const uint16_t from[] = {'a', 0x0100, 'b', 0};
  char to[5] = "....";
  EXPECT_EQ(MWCharToChar(from, to, 4), 2);
  EXPECT_STREQ(to, "a");
}

TEST(Narrowing, CutsALongTextAndRefusesNulls) {
  const uint16_t from[] = {'a', 'b', 'c', 0};
  char to[] = "....";
  EXPECT_EQ(MWCharToChar(from, to, 3), 3);
  EXPECT_EQ(std::string(to, 4), std::string("ab\0.", 4));
  EXPECT_EQ(MWCharToChar(nullptr, to, 3), 0);
  EXPECT_EQ(MWCharToChar(from, nullptr, 3), 0);
  EXPECT_EQ(MWCharToChar(from, to, 0), 0);
  EXPECT_EQ(to[0], 'a');
}

}  // namespace
