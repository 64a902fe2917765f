#include <gtest/gtest.h>
#include <qpx/strings.h>

#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

using Units = std::vector<uint16_t>;

constexpr uint16_t kSentinel = 0xBEEF;

// UTF-8 by its table of ranges, written apart from the library's own.
std::string utf8(uint32_t unit) {
  std::string bytes;
  if (unit <= 0x7F) {
    bytes = {static_cast<char>(unit)};
  } else if (unit <= 0x7FF) {
    bytes = {static_cast<char>(192 + unit / 64), static_cast<char>(128 + unit % 64)};
  } else {
    bytes = {static_cast<char>(224 + unit / 4096), static_cast<char>(128 + unit / 64 % 64),
             static_cast<char>(128 + unit % 64)};
  }
  return bytes;
}

// A copy with nothing behind it, so that the address sanitizer sees every byte read too far.
template <typename T>
std::unique_ptr<T[]> exactly(const T* from, size_t count) {
  auto copy = std::make_unique<T[]>(count);
  std::copy(from, from + count, copy.get());
  return copy;
}

TEST(GetWideChar, DecodesHandWorkedSequences) {
  const struct {
    const char* bytes;
    uint16_t unit;
    int32_t consumed;
  } kCases[] = {
      {"A..", 0x41, 1},          {"\x7F..", 0x7F, 1},         {"\xC3\xA9.", 0xE9, 2},
      {"\xDF\xBF.", 0x7FF, 2},   {"\xE2\x82\xAC", 0x20AC, 3}, {"\xEF\xBF\xBF", 0xFFFF, 3},
      {"\x80\x41.", 0x01, 2},     // a stray continuation byte counts as the first of two
      {"\xA0\x41\x42", 0x42, 3},  // of 0xA0 four bits are left: 0 | 1 * 64 | 2
      {"\xF0\x9F\x98", 0x7D8, 3}  // the first three of four: 0 | 31 * 64 | 24
  };
  for (const auto& c : kCases) {
    const char* cursor = c.bytes;
    int32_t consumed = -1;
    EXPECT_EQ(getWideChar(&cursor, &consumed), c.unit);
    EXPECT_EQ(consumed, c.consumed);
    EXPECT_EQ(cursor, c.bytes + c.consumed);
  }
}

TEST(GetWideChar, InvertsEveryUnit) {
  for (uint32_t u = 0; u < 65536; ++u) {
    const std::string bytes = utf8(u);
    const char* cursor = bytes.data();
    int32_t consumed = 0;
    ASSERT_EQ(getWideChar(&cursor, &consumed), u);
    ASSERT_EQ(consumed, static_cast<int32_t>(bytes.size()));
  }
}

TEST(GetWideChar, RefusesNullCursorsAndGoesWithoutConsumed) {
  int32_t consumed = -1;
  EXPECT_EQ(getWideChar(nullptr, &consumed), 0);
  EXPECT_EQ(consumed, 0);
  const char* cursor = nullptr;
  EXPECT_EQ(getWideChar(&cursor, &consumed), 0);
  cursor = "z";
  EXPECT_EQ(getWideChar(&cursor, nullptr), 'z');
}

TEST(MultiByteToWideChar, StopsWhenEitherCountRunsOut) {
  const std::string text = "a\xC3\xA9\xE2\x82\xAC!";
  Units to(5, kSentinel);
  EXPECT_EQ(MMultiByteToWideChar(65001, text.data(), 7, to.data(), 5), 4);
  EXPECT_EQ(to, (Units{'a', 0xE9, 0x20AC, '!', kSentinel})) << "no terminator";
  to.assign(5, kSentinel);
  EXPECT_EQ(MMultiByteToWideChar(0, text.data(), 7, to.data(), 2), 2);
  EXPECT_EQ(to, (Units{'a', 0xE9, kSentinel, kSentinel, kSentinel}));
  to.assign(5, kSentinel);
  EXPECT_EQ(MMultiByteToWideChar(0, text.data(), 3, to.data(), 5), 2);
}

TEST(MultiByteToWideChar, ZerosInsideAreTextAndMissingBytesAreZeros) {
  Units to(4, kSentinel);
  EXPECT_EQ(MMultiByteToWideChar(0, "a\0b", 3, to.data(), 4), 3);
  EXPECT_EQ(to, (Units{'a', 0, 'b', kSentinel}));
  const auto cut = exactly("\xE4\xB8", 2);
  EXPECT_EQ(MMultiByteToWideChar(0, cut.get(), 2, to.data(), 4), 1);
  EXPECT_EQ(to[0], 0x4E00);
  EXPECT_EQ(MMultiByteToWideChar(0, cut.get(), 1, to.data(), 4), 1);
  EXPECT_EQ(to[0], 0x4000);
}

TEST(MultiByteToWideChar, RefusesNullsAndCountsBelowOne) {
  uint16_t to[] = {kSentinel};
  EXPECT_EQ(MMultiByteToWideChar(0, nullptr, 1, to, 1), 0);
  EXPECT_EQ(MMultiByteToWideChar(0, "a", 1, nullptr, 1), 0);
  EXPECT_EQ(MMultiByteToWideChar(0, "a", 0, to, 1), 0);
  EXPECT_EQ(MMultiByteToWideChar(0, "a", -1, to, 1), 0);
  EXPECT_EQ(MMultiByteToWideChar(0, "a", 1, to, 0), 0);
  EXPECT_EQ(MMultiByteToWideChar(0, "a", 1, to, -1), 0);
  EXPECT_EQ(to[0], kSentinel);
}

TEST(WideCharToMultiByte, EncodesEveryUnit) {
  for (uint32_t u = 0; u < 65536; ++u) {
    const uint16_t unit = static_cast<uint16_t>(u);
    char to[8] = "#######";
    const std::string expected = u == 0 ? "\xC0\x80" : utf8(u);
    ASSERT_EQ(MWideCharToMultiByte(0, &unit, 1, to, 8), static_cast<int32_t>(expected.size()));
    ASSERT_EQ(std::string(to), expected);
    ASSERT_EQ(to[expected.size() + 1], '#');
  }
}

TEST(WideCharToMultiByte, GoesOnBehindAUnitZero) {
  const uint16_t from[] = {'a', 0, 'b'};
  char to[8];
  EXPECT_EQ(MWideCharToMultiByte(0, from, 3, to, 8), 4);
  EXPECT_STREQ(to,
               "a\xC0\x80"
               "b");
}

TEST(WideCharToMultiByte, LeavesAByteForTheTerminatorWhateverTheRoom) {
  const uint16_t from[] = {'a', 0xE9, 0x20AC, 'b'};
  // Bytes at which each unit ends: 1, 3, 6, 7.
  const int32_t kWritten[] = {0, 0, 1, 1, 3, 3, 3, 6, 7, 7};
  for (int32_t room = 1; room < 10; ++room) {
    const auto to = std::make_unique<char[]>(static_cast<size_t>(room));
    ASSERT_EQ(MWideCharToMultiByte(0, from, 4, to.get(), room), kWritten[room]) << room;
    ASSERT_EQ(to[static_cast<size_t>(kWritten[room])], 0);
  }
}

TEST(WideCharToMultiByte, RefusesNullsAndCountsBelowOne) {
  const uint16_t from[] = {'a'};
  char to[2] = "#";
  EXPECT_EQ(MWideCharToMultiByte(0, nullptr, 1, to, 2), 0);
  EXPECT_EQ(MWideCharToMultiByte(0, from, 1, nullptr, 2), 0);
  EXPECT_EQ(MWideCharToMultiByte(0, from, 0, to, 2), 0);
  EXPECT_EQ(MWideCharToMultiByte(0, from, 1, to, 0), 0);
  EXPECT_EQ(MWideCharToMultiByte(0, from, -1, to, -1), 0);
  EXPECT_EQ(to[0], '#');
}

TEST(UnicodeToUtf8, RoomForTheTextButNotTheTerminatorIsRefused) {
  const uint16_t from[] = {'a', 0xE9, 0x20AC, 0};
  for (int32_t room = -1; room <= 6; ++room) {
    const auto to = std::make_unique<char[]>(6);
    EXPECT_EQ(MUnicodeToUTF8(from, to.get(), room), 0) << room;
  }
  char to[8] = "#######";
  EXPECT_EQ(MUnicodeToUTF8(from, to, 7), 6);
  EXPECT_STREQ(to, "a\xC3\xA9\xE2\x82\xAC");
  EXPECT_EQ(to[7], 0);
}

TEST(UnicodeToUtf8, RefusalLeavesThePartThatFitted) {
  const uint16_t from[] = {'a', 'b', 'c', 0};
  char to[4] = {'#', '#', '#', '#'};
  EXPECT_EQ(MUnicodeToUTF8(from, to, 3), 0);
  EXPECT_EQ(std::string(to, 4), "ab##");
}

TEST(UnicodeToUtf8, NullTargetCountsAndIgnoresTheLimit) {
  const uint16_t from[] = {'a', 0xE9, 0x20AC, 0};
  const uint16_t empty[] = {0};
  EXPECT_EQ(MUnicodeToUTF8(from, nullptr, 0), 6);
  EXPECT_EQ(MUnicodeToUTF8(from, nullptr, -3), 6);
  EXPECT_EQ(MUnicodeToUTF8(nullptr, nullptr, 9), 0);
  char to[1] = {'#'};
  EXPECT_EQ(MUnicodeToUTF8(empty, to, 1), 0);
  EXPECT_EQ(to[0], 0);
}

TEST(Utf8ToUnicode, StrayContinuationAndFourByteLeadsAreErrors) {
  Units to(8, kSentinel);
  for (int lead = 0x80; lead < 0x100; ++lead) {
    const std::string text = {static_cast<char>(lead), '\x81', '\x82', '\x83'};
    const bool leads = (lead >= 0xC0 && lead < 0xF0);
    const int32_t result = MUTF8ToUnicode(text.c_str(), to.data(), 8);
    EXPECT_EQ(result, -1) << "the bytes behind the sequence are strays";
    const std::string whole = text.substr(0, lead < 0xE0 ? 2 : 3);
    EXPECT_EQ(MUTF8ToUnicode(whole.c_str(), to.data(), 8), leads ? 1 : -1) << lead;
  }
}

TEST(Utf8ToUnicode, StrayContinuationByteGivesMinusOne) {
  uint16_t to[4];
  EXPECT_EQ(MUTF8ToUnicode("\x80", to, 4), -1);
  EXPECT_EQ(MUTF8ToUnicode("ab\xBF", to, 4), -1);
  EXPECT_EQ(MUTF8ToUnicode("\x80", nullptr, 0), -1);
  EXPECT_EQ(MUTF8ToUnicode("\x80", to, 1), -1) << "found before the lack of room";
}

TEST(Utf8ToUnicode, TextAndTerminatorMustFit) {
  Units to(4, kSentinel);
  for (int32_t room = -1; room <= 2; ++room) {
    EXPECT_EQ(MUTF8ToUnicode("\xC3\xA9x", to.data(), room), 0) << room;
  }
  EXPECT_EQ(MUTF8ToUnicode("\xC3\xA9x", to.data(), 3), 2);
  EXPECT_EQ(to, (Units{0xE9, 'x', 0, kSentinel}));
  EXPECT_EQ(MUTF8ToUnicode("\xC3\xA9x", nullptr, 0), 2);
  EXPECT_EQ(MUTF8ToUnicode(nullptr, to.data(), 4), 0);
  EXPECT_EQ(MUTF8ToUnicode("", to.data(), 1), 0);
  EXPECT_EQ(to[0], 0);
}

TEST(Utf8ToUnicode, EndInsideASequenceIsAnErrorAndNotReadBeyond) {
  for (const std::string text : {"\xC3", "\xE2", "\xE2\x82", "a\xE2\x82"}) {
    const auto exact = exactly(text.c_str(), text.size() + 1);
    EXPECT_EQ(MUTF8ToUnicode(exact.get(), nullptr, 0), -1);
  }
}

TEST(Utf8, EveryUnitComesBack) {
  for (uint32_t u = 1; u < 65536; ++u) {
    const uint16_t from[] = {static_cast<uint16_t>(u), 0};
    char bytes[4];
    uint16_t back[2];
    ASSERT_EQ(MUnicodeToUTF8(from, bytes, 4), static_cast<int32_t>(utf8(u).size()));
    ASSERT_EQ(bytes, utf8(u));
    ASSERT_EQ(MUTF8ToUnicode(bytes, back, 2), 1);
    ASSERT_EQ(back[0], u);
  }
}

// The lenient rule once more, over an index and with zeros behind the end.
Units lenientModel(const std::string& bytes, size_t limit) {
  Units units;
  const auto at = [&bytes](size_t i) -> uint32_t {
    return i < bytes.size() ? static_cast<uint8_t>(bytes[i]) : 0;
  };
  for (size_t i = 0; i < bytes.size() && units.size() < limit;) {
    if (at(i) < 128) {
      units.push_back(static_cast<uint16_t>(at(i)));
      i += 1;
    } else if (at(i) / 32 % 2 == 1) {
      units.push_back(
          static_cast<uint16_t>(at(i) % 16 * 4096 + at(i + 1) % 64 * 64 + at(i + 2) % 64));
      i += 3;
    } else {
      units.push_back(static_cast<uint16_t>(at(i) % 32 * 64 + at(i + 1) % 64));
      i += 2;
    }
  }
  return units;
}

TEST(Utf8, HostileBytesDecodeByTheRuleAndNeverLeaveTheirBuffers) {
  std::mt19937 random(20261121);
  for (int round = 0; round < 20000; ++round) {
    std::string bytes(1 + random() % 24, '\0');
    for (char& b : bytes) b = static_cast<char>(random() % 4 == 0 ? random() : random() | 0x80);
    const size_t room = 1 + random() % 24;
    const auto exact = exactly(bytes.data(), bytes.size());
    const auto to = std::make_unique<uint16_t[]>(room);
    const int32_t units = MMultiByteToWideChar(0, exact.get(), static_cast<int32_t>(bytes.size()),
                                               to.get(), static_cast<int32_t>(room));
    const Units expected = lenientModel(bytes, room);
    ASSERT_EQ(Units(to.get(), to.get() + units), expected);

    const auto terminated = exactly(bytes.c_str(), bytes.size() + 1);
    const int32_t strict = MUTF8ToUnicode(terminated.get(), to.get(), static_cast<int32_t>(room));
    ASSERT_GE(strict, -1);
    ASSERT_LT(strict, static_cast<int32_t>(room));
  }
}

TEST(Utf8, HostileUnitsNeverLeaveTheirBuffers) {
  std::mt19937 random(7);
  for (int round = 0; round < 20000; ++round) {
    Units text(1 + random() % 12);
    for (uint16_t& unit : text) unit = static_cast<uint16_t>(random() >> random() % 16);
    text.back() = 0;
    const int32_t room = static_cast<int32_t>(1 + random() % 40);
    const auto exact = exactly(text.data(), text.size());
    const auto to = std::make_unique<char[]>(static_cast<size_t>(room));
    const int32_t counted = MUnicodeToUTF8(exact.get(), nullptr, 0);
    const int32_t written = MUnicodeToUTF8(exact.get(), to.get(), room);
    ASSERT_EQ(written, counted < room ? counted : 0);
    const int32_t lenient =
        MWideCharToMultiByte(0, exact.get(), static_cast<int32_t>(text.size()), to.get(), room);
    ASSERT_LT(lenient, room);
    ASSERT_EQ(to[static_cast<size_t>(lenient)], 0);
  }
}

}  // namespace
