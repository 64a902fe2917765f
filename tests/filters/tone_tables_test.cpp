// What is in the tables that the point effects set up.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "support/failing_memory.h"
#include "support/kernel_frame.h"
#include "toolkit/curve.h"

namespace qpx {
namespace {

using testing::FailingMemory;
using testing::KernelFrame;

using Table = std::vector<int>;

Table channelTable(const Stage& stage, int channel) {
  const StageTables tables = stageTables(stage);
  const uint8_t* from = channel == 0 ? tables.red : channel == 1 ? tables.green : tables.blue;
  return Table(from, from + 256);
}

template <typename Record>
Table tableOf(uint32_t id, const Record& record, int channel = 0) {
  KernelFrame frame(QPX_FORMAT_BGR24);
  EXPECT_EQ(frame.setUp(id, record), QPX_OK);
  return channelTable(frame.stage(), channel);
}

Table tableOf(uint32_t id, int channel = 0) {
  KernelFrame frame(QPX_FORMAT_BGR24);
  EXPECT_EQ(frame.setUp(id), QPX_OK);
  return channelTable(frame.stage(), channel);
}

template <typename Formula>
Table formula(const Formula& sample) {
  Table table;
  for (int i = 0; i < 256; ++i) table.push_back(std::clamp<int>(sample(i), 0, 255));
  return table;
}

Table identity() {
  return formula([](int i) { return i; });
}

bool rises(const Table& table) { return std::is_sorted(table.begin(), table.end()); }

TEST(BrightnessContrast, NeutralIsTheIdentity) {
  EXPECT_EQ(tableOf(0x1300, QPXBrightnessContrastParam{0, 0}), identity());
}

TEST(BrightnessContrast, BrightnessIsAdded) {
  EXPECT_EQ(tableOf(0x1300, QPXBrightnessContrastParam{37, 0}),
            formula([](int i) { return i + 37; }));
  EXPECT_EQ(tableOf(0x1300, QPXBrightnessContrastParam{-128, 0}),
            formula([](int i) { return i - 128; }));
}

TEST(BrightnessContrast, ContrastIsALineAboutMidGrey) {
  // 64 doubles distances from 127.5, -64 halves them; both round halves up.
  EXPECT_EQ(tableOf(0x1300, QPXBrightnessContrastParam{0, 64}), formula([](int i) {
              return static_cast<int>(std::floor(127.5 + (i - 127.5) * 2 + 0.5));
            }));
  EXPECT_EQ(tableOf(0x1300, QPXBrightnessContrastParam{5, -64}), formula([](int i) {
              return 5 + static_cast<int>(std::floor(127.5 + (i - 127.5) / 2 + 0.5));
            }));
}

TEST(BrightnessContrast, ExtremesAreFlatGreyAndTwoTones) {
  EXPECT_EQ(tableOf(0x1300, QPXBrightnessContrastParam{0, -128}), Table(256, 128));
  EXPECT_EQ(tableOf(0x1300, QPXBrightnessContrastParam{0, 127}), formula([](int i) {
              return static_cast<int>(std::floor(127.5 + (i - 127.5) * 128 + 0.5));
            }));
}

TEST(BrightnessContrast, EveryContrastRises) {
  for (int32_t contrast = -128; contrast <= 127; ++contrast) {
    EXPECT_TRUE(rises(tableOf(0x1300, QPXBrightnessContrastParam{0, contrast}))) << contrast;
  }
}

TEST(BrightnessContrast, ParametersAreClamped) {
  EXPECT_EQ(tableOf(0x1300, QPXBrightnessContrastParam{INT32_MAX, INT32_MIN}),
            tableOf(0x1300, QPXBrightnessContrastParam{127, -128}));
  EXPECT_EQ(tableOf(0x1300, QPXBrightnessContrastParam{INT32_MIN, INT32_MAX}),
            tableOf(0x1300, QPXBrightnessContrastParam{-128, 127}));
}

class Levels : public ::testing::TestWithParam<uint32_t> {};

TEST_P(Levels, GainsAndOffsetsInEightFractionalBits) {
  const QPXLevelsParam levels = {{300, 9, 9, -4000, 9, 128, 9, 128, 9, 9, -256, 65280}};
  EXPECT_EQ(tableOf(GetParam(), levels, 0),
            formula([](int i) { return (300 * i - 4000 + 128) >> 8; }));
  EXPECT_EQ(tableOf(GetParam(), levels, 1), formula([](int i) { return (128 * i + 256) >> 8; }));
  EXPECT_EQ(tableOf(GetParam(), levels, 2), formula([](int i) { return 255 - i; }));
}

TEST_P(Levels, UnitGainIsTheIdentity) {
  QPXLevelsParam levels = {};
  levels.formula[0] = levels.formula[5] = levels.formula[10] = 256;
  for (int c = 0; c < 3; ++c) EXPECT_EQ(tableOf(GetParam(), levels, c), identity());
}

TEST_P(Levels, HugeNumbersDoNotOverflow) {
  QPXLevelsParam levels = {};
  levels.formula[0] = INT32_MAX;
  levels.formula[3] = INT32_MAX;
  levels.formula[5] = INT32_MIN;
  levels.formula[7] = INT32_MAX;
  levels.formula[10] = INT32_MAX;
  levels.formula[11] = INT32_MIN;
  EXPECT_EQ(tableOf(GetParam(), levels, 0), Table(256, 255));
  const Table falling = tableOf(GetParam(), levels, 1);
  EXPECT_EQ(falling[0], 255);
  EXPECT_EQ(falling[1], 0);  // 2^31 - 1 - 2^31 is a hair below 0
  const Table rising = tableOf(GetParam(), levels, 2);
  EXPECT_EQ(rising[1], 0);
  EXPECT_EQ(rising[2], 255);
}

INSTANTIATE_TEST_SUITE_P(Ids, Levels, ::testing::Values(0x1600u, 0x4500u, 0x4600u));

TEST(Negative, IsTheDistanceFromWhite) {
  EXPECT_EQ(tableOf(0x1800), formula([](int i) { return 255 - i; }));
}

TEST(ChannelOffsets, AreAddedToTheirChannel) {
  const QPXChannelOffsetsParam param = {20, -40, 300};
  EXPECT_EQ(tableOf(0x1F00, param, 0), formula([](int i) { return i + 20; }));
  EXPECT_EQ(tableOf(0x1F00, param, 1), formula([](int i) { return i - 40; }));
  EXPECT_EQ(tableOf(0x1F00, param, 2), Table(256, 255));
  const QPXChannelOffsetsParam extreme = {INT32_MIN, INT32_MAX, 0};
  EXPECT_EQ(tableOf(0x1F00, extreme, 0), Table(256, 0));
  EXPECT_EQ(tableOf(0x1F00, extreme, 1), Table(256, 255));
  EXPECT_EQ(tableOf(0x1F00, extreme, 2), identity());
}

TEST(Solarise, IsAParabolaOverTheFullRange) {
  const Table table = tableOf(0x2100);
  EXPECT_EQ(table, formula([](int i) {
              const double x = i / 255.0;
              return static_cast<int>(std::floor(255 * 4 * x * (1 - x) + 0.5));
            }));
  EXPECT_EQ(table[0], 0);
  EXPECT_EQ(table[127], 255);
  EXPECT_EQ(table[255], 0);
}

TEST(Gamma, FollowsThePowerLaw) {
  // 200 percent is the square root, 50 the square; worked with integers.
  EXPECT_EQ(tableOf(0x2D00, QPXGammaParam{200}), formula([](int i) {
              int root = 0;
              while ((2 * root + 1) * (2 * root + 1) <= 4 * 255 * i) ++root;
              return root;
            }));
  EXPECT_EQ(tableOf(0x2D00, QPXGammaParam{50}),
            formula([](int i) { return (2 * i * i + 255) / 510; }));
}

TEST(Gamma, NeutralAtHundredAndForNoRecord) {
  EXPECT_EQ(tableOf(0x2D00, QPXGammaParam{100}), identity());
  EXPECT_EQ(tableOf(0x2D00, QPXGammaParam{0}), identity());
}

TEST(Gamma, LightensAboveHundredAndIsClamped) {
  EXPECT_GT(tableOf(0x2D00, QPXGammaParam{150})[128], 150);
  EXPECT_LT(tableOf(0x2D00, QPXGammaParam{60})[128], 100);
  EXPECT_EQ(tableOf(0x2D00, QPXGammaParam{INT32_MAX}), tableOf(0x2D00, QPXGammaParam{400}));
  EXPECT_EQ(tableOf(0x2D00, QPXGammaParam{-7}), tableOf(0x2D00, QPXGammaParam{10}));
}

TEST(ContrastCurve, DeepensShadowsAndLiftsHighlights) {
  const Table table = tableOf(0x3000);
  EXPECT_TRUE(rises(table));
  EXPECT_EQ(table[0], 0);
  EXPECT_EQ(table[128], 128);
  EXPECT_EQ(table[255], 255);
  for (int i = 20; i <= 110; ++i) EXPECT_LT(table[static_cast<size_t>(i)], i);
  for (int i = 146; i <= 236; ++i) EXPECT_GT(table[static_cast<size_t>(i)], i);
}

QPXLevelsParam exposure(int32_t gain) { return {{gain}}; }

TEST(Exposure, UnitGainIsTheIdentity) { EXPECT_EQ(tableOf(0x4700, exposure(256)), identity()); }

TEST(Exposure, DarkensInLinearLight) {
  const Table table = tableOf(0x4700, exposure(128));
  // sRGB 188 is light of 0.5029; half of it is 0.2514, sRGB 137.2.
  EXPECT_EQ(table[188], 137);
  EXPECT_EQ(table[10], 5);     // both on the straight part: half the sample
  EXPECT_EQ(table[255], 188);  // light of 0.5: 187.5
}

TEST(Exposure, DarkensHighlightsInTheSameProportion) {
  // sRGB 255, 230 and 200 are light of 1, 0.7913 and 0.5776; times 0.78125: 0.78125, 0.6182 and
  // 0.4512.
  const Table table = tableOf(0x4700, exposure(200));
  EXPECT_EQ(table[255], 229);  // 228.7
  EXPECT_EQ(table[230], 206);  // 206.1
  EXPECT_EQ(table[200], 179);  // 179.1
}

TEST(Exposure, BrightensStraightUpToTheKneeAndEndsAtWhite) {
  const Table table = tableOf(0x4700, exposure(512));
  EXPECT_EQ(table[137], 188);  // 0.2502 doubled: 187.6
  EXPECT_EQ(table[255], 255);
  EXPECT_LT(table[230], 255);  // highlights are eased, not cut
  EXPECT_TRUE(rises(table));
}

TEST(Exposure, EveryGainRisesAndMoreIsBrighter) {
  Table before = tableOf(0x4700, exposure(16));
  for (int32_t gain = 32; gain <= 4096; gain += 16) {
    const Table table = tableOf(0x4700, exposure(gain));
    ASSERT_TRUE(rises(table)) << gain;
    for (size_t i = 0; i < 256; ++i) ASSERT_GE(table[i], before[i]) << gain << ", " << i;
    before = table;
  }
}

TEST(Exposure, GainIsClamped) {
  EXPECT_EQ(tableOf(0x4700, exposure(INT32_MAX)), tableOf(0x4700, exposure(4096)));
  EXPECT_EQ(tableOf(0x4700, exposure(INT32_MIN)), tableOf(0x4700, exposure(16)));
}

class TonedCurves : public ::testing::TestWithParam<uint32_t> {};

TEST_P(TonedCurves, RiseAndEndNearlyNeutral) {
  int black[3], white[3];
  for (int c = 0; c < 3; ++c) {
    const Table table = tableOf(GetParam(), c);
    EXPECT_TRUE(rises(table)) << "channel " << c;
    black[c] = table[0];
    white[c] = table[255];
  }
  EXPECT_LE(*std::max_element(black, black + 3) - *std::min_element(black, black + 3), 6);
  EXPECT_LE(*std::max_element(white, white + 3) - *std::min_element(white, white + 3), 12);
}

INSTANTIATE_TEST_SUITE_P(Ids, TonedCurves, ::testing::Values(0x4800u, 0x4900u));

TEST(WarmCurve, TurnsMidtonesGolden) {
  EXPECT_GT(tableOf(0x4800, 0)[128], tableOf(0x4800, 1)[128] + 10);
  EXPECT_GT(tableOf(0x4800, 1)[128], tableOf(0x4800, 2)[128] + 10);
}

TEST(CoolCurve, TurnsMidtonesBlue) {
  EXPECT_LT(tableOf(0x4900, 0)[128], tableOf(0x4900, 1)[128] - 10);
  EXPECT_LT(tableOf(0x4900, 1)[128], tableOf(0x4900, 2)[128] - 10);
}

constexpr uint32_t kTableIds[] = {0x1300, 0x1600, 0x1800, 0x1F00, 0x2100, 0x2D00,
                                  0x3000, 0x4500, 0x4600, 0x4700, 0x4800, 0x4900};

TEST(ToneTableEffects, RecordOfZerosGivesATable) {
  for (const uint32_t id : kTableIds) {
    KernelFrame frame(QPX_FORMAT_BGR24);
    EXPECT_EQ(frame.setUp(id), QPX_OK) << std::hex << id;
    EXPECT_NE(frame.stage().lut, nullptr) << std::hex << id;
  }
}

TEST(ToneTableEffects, EveryFailedAllocationIsReportedAndNothingLeaks) {
  FailingMemory::reset();
  const int64_t before = FailingMemory::liveBlocks();
  for (const uint32_t id : kTableIds) {
    const int64_t failures = FailingMemory::forEachFailure(true, [&] {
      KernelFrame frame(QPX_FORMAT_BGR24);
      const int32_t result = frame.setUp(id);
      EXPECT_EQ(result, FailingMemory::failures() > 0 ? QPX_NO_MEMORY : QPX_OK);
    });
    EXPECT_GE(failures, 1) << std::hex << id;
  }
  EXPECT_EQ(FailingMemory::liveBlocks(), before);
}

TEST(ToneTableEffects, EffectsOnOneStageAreChainedInTheirOrder) {
  KernelFrame frame(QPX_FORMAT_BGR24);
  ASSERT_EQ(frame.setUp(0x1300, QPXBrightnessContrastParam{30, 64}), QPX_OK);
  ASSERT_EQ(frame.setUp(0x1800), QPX_OK);
  EXPECT_EQ(frame.stage().lutFlags, 5u);
  ASSERT_EQ(frame.setUp(0x1F00, QPXChannelOffsetsParam{9, 0, -9}), QPX_OK);
  EXPECT_EQ(frame.stage().lutFlags, 9u);
  ASSERT_EQ(frame.setUp(0x2D00, QPXGammaParam{50}), QPX_OK);
  EXPECT_EQ(frame.stage().lutFlags, 9u);

  const Table contrast = tableOf(0x1300, QPXBrightnessContrastParam{30, 64});
  const Table gamma = tableOf(0x2D00, QPXGammaParam{50});
  const int offsets[3] = {9, 0, -9};
  for (int c = 0; c < 3; ++c) {
    EXPECT_EQ(channelTable(frame.stage(), c), formula([&](int i) {
                const int negative = 255 - contrast[static_cast<size_t>(i)];
                return gamma[static_cast<size_t>(std::clamp(negative + offsets[c], 0, 255))];
              }));
  }
}

}  // namespace
}  // namespace qpx
