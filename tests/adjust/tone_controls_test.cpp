// The tone controls: what a photographer expects of their curves, and the described arithmetic of
// those that are more than curves.
#include <gtest/gtest.h>
#include <qpx/kernels_adjust.h>

#include <cmath>
#include <limits>
#include <vector>

#include "adjust/packed_pictures.h"
#include "adjust/tone_effects.h"
#include "adjust/tone_tables.h"
#include "support/failing_memory.h"

namespace qpx::testing {
namespace {

// Runs an effect on the colours of every format and compares with expected(color).
template <typename Record, typename Expected>
void expectColors(uint32_t id, const Record& record, const Expected& expected) {
  for (const uint32_t format : kPackedFormats) {
    const Picture source = packedColors(format);
    Picture result = source;
    result.fill(3);
    ASSERT_EQ(frameOf(source, id, record)->run(source, result, wholeOf(source)), QPX_OK);
    for (int32_t y = 0; y < source.height(); ++y) {
      for (int32_t x = 0; x < source.width(); ++x) {
        const Color from = colorAt(source, x, y);
        ASSERT_EQ(colorAt(result, x, y), expected(from))
            << "of " << from.r << ", " << from.g << ", " << from.b;
        if (pixelBytes(source) == 4) {
          ASSERT_EQ(*sampleAt(result, x, y, 3), *sampleAt(source, x, y, 3));
        }
      }
    }
  }
}

template <typename Record>
void expectCopy(uint32_t id, const Record& record) {
  expectColors(id, record, [](const Color& c) { return c; });
}

void expectMonotone(const ToneTable& table, const char* what) {
  for (size_t i = 1; i < 256; ++i) ASSERT_GE(table[i], table[i - 1]) << what << " at " << i;
}

TEST(ToneTables, KeepBlackAndWhiteAndRise) {
  for (int32_t a = -100; a <= 100; a += 25) {
    for (int32_t b = -100; b <= 100; b += 25) {
      const ToneTable contrast = contrastTable(a, b);
      expectMonotone(contrast, "contrast");
      EXPECT_EQ(contrast[0], 0);
      EXPECT_EQ(contrast[255], 255);
      for (const QPXTonalRangesParam& param :
           {QPXTonalRangesParam{1.0 * a, 1.0 * b, 0, 0},
            QPXTonalRangesParam{0, 1.0 * a, 1.0 * b, 0},
            QPXTonalRangesParam{1.0 * a, -1.0 * a, 1.0 * b, -1.0 * b}}) {
        const ToneTable ranges = tonalRangesTable(param);
        expectMonotone(ranges, "ranges");
        EXPECT_EQ(ranges[0], 0);
        EXPECT_EQ(ranges[255], 255);
      }
    }
  }
  for (double stops = 0.0; stops <= 5.0; stops += 0.25) {
    const ToneTable lighter = exposureTable(stops), darker = exposureTable(-stops);
    expectMonotone(lighter, "more light");
    expectMonotone(darker, "less light");
    EXPECT_EQ(lighter[0], 0);
    EXPECT_EQ(lighter[255], 255);
    EXPECT_EQ(darker[0], 0);
  }
}

TEST(ToneTables, MoveTheRangeThatIsAskedFor) {
  const auto rise = [](const QPXTonalRangesParam& param, size_t at) {
    return tonalRangesTable(param)[at] - static_cast<int32_t>(at);
  };
  const QPXTonalRangesParam highlights = {100, 0, 0, 0}, shadows = {0, 0, 0, 100};
  EXPECT_GT(rise(highlights, 200), 20);
  EXPECT_LT(rise(highlights, 50), 3);
  EXPECT_GT(rise(shadows, 50), 20);
  EXPECT_LT(rise(shadows, 210), 5);
  EXPECT_GT(contrastTable(0, 100)[192], 210);
  EXPECT_LT(contrastTable(0, 100)[64], 45);
  EXPECT_LT(contrastTable(0, -100)[192], 180);
  EXPECT_GT(contrastTable(40, 0)[128], 145);
}

// Each of the four ranges moves its own tones, by the summit of its curve, and those beside it
// less.
TEST(TonalRanges, EachAmountMovesItsOwnTones) {
  constexpr size_t kSummits[] = {204, 153, 102, 51};  // highlights, brights, darks, shadows
  for (size_t range = 0; range < 4; ++range) {
    for (const double amount : {-50.0, 50.0}) {
      double amounts[4] = {};
      amounts[range] = amount;
      const QPXTonalRangesParam param = {amounts[0], amounts[1], amounts[2], amounts[3]};
      const Picture source = packedColors(QPX_FORMAT_RGB24);
      Picture result = source;
      ASSERT_EQ(frameOf(source, kTonalRanges, param)->run(source, result, wholeOf(source)), QPX_OK);
      int32_t most = 0;
      size_t first = 0, last = 0;
      for (size_t x = 0; x < 256; ++x) {
        const int32_t tone = static_cast<int32_t>(x);
        const int32_t by = colorAt(result, tone, 0).g - tone;
        EXPECT_GE(amount > 0 ? by : -by, 0) << x;
        if (std::abs(by) > most) first = x;
        if (std::abs(by) >= most) last = x;
        most = std::max(most, std::abs(by));
      }
      EXPECT_NEAR(static_cast<double>(first + last) / 2, static_cast<double>(kSummits[range]), 6)
          << "range " << range;
      EXPECT_GE(most, 12);
    }
  }
}

// One stop doubles light: a sample of 118 is 0.181 of white, 161 is 0.356.
TEST(ToneTables, ExposureCountsInLight) {
  EXPECT_NEAR(exposureTable(-1.0)[161], 117, 1);
  EXPECT_NEAR(exposureTable(1.0)[30], 43, 1);  // 0.0130 and 0.0253
  EXPECT_GT(exposureTable(1.0)[118], 140);
}

TEST(ToneControls, NeutralValuesCopy) {
  expectCopy(kLevels, QPXToneLevelsParam{});
  expectCopy(kCurve, QPXCurveParam{});
  expectCopy(kSmoothContrast, QPXSmoothContrastParam{0, 0});
  expectCopy(kTonalRanges, QPXTonalRangesParam{0, 0, 0, 0});
  expectCopy(kColorBalance, QPXColorBalanceParam{});
  expectCopy(kColorTemperature, QPXColorTemperatureParam{5000, {}});
  constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
  expectCopy(kTonalRanges, QPXTonalRangesParam{kNone, kNone, kNone, kNone});
}

TEST(Levels, RunTheChannelsOwnThenTheCommon) {
  QPXToneLevelsParam param = {};
  param.master = {20, 230, 1.2};
  param.red = {10, 200, 0.8};
  param.outputBlack = 5;
  param.outputWhite = 240;
  const auto level = [](const QPXLevelRange& range, int32_t c) {
    const double share = std::clamp((c - range.black) / double(range.white - range.black), 0., 1.);
    return static_cast<int32_t>(255.0 * std::pow(share, 1.0 / range.gamma) + 0.5);
  };
  const auto last = [&](int32_t c) { return 5 + (level(param.master, c) * 235 + 127) / 255; };
  expectColors(kLevels, param, [&](const Color& c) {
    return Color{last(level(param.red, c.r)), last(c.g), last(c.b)};
  });
  param.mode = 1;
  expectColors(kLevels, param, [&](const Color& c) {
    return Color{last(c.r), last(c.g), last(c.b)};
  });
}

// A white drawn past its black ends beside it, and no step of a slider is undone by the next.
TEST(Levels, WhiteStaysAboveBlack) {
  const auto expectSame = [](const QPXLevelRange& a, const QPXLevelRange& b) {
    EXPECT_EQ(levelsTable(a), levelsTable(b)) << a.black << ", " << a.white;
  };
  expectSame({100, 100, 1.0}, {100, 101, 1.0});
  expectSame({100, 3, 1.0}, {100, 101, 1.0});
  expectSame({254, 1, 1.0}, {254, 255, 1.0});
  expectSame({100, 0, 1.0}, {100, 255, 1.0});
  for (int32_t white = 1; white < 255; ++white) {
    const ToneTable harder = levelsTable({60, white, 1.0}),
                    softer = levelsTable({60, white + 1, 1.0});
    for (size_t i = 0; i < 256; ++i) ASSERT_GE(harder[i], softer[i]) << white << " at " << i;
    const ToneTable dim = outputTable(60, white), bright = outputTable(60, white + 1);
    for (size_t i = 0; i < 256; ++i) ASSERT_LE(dim[i], bright[i]) << white << " at " << i;
  }
  EXPECT_EQ(outputTable(80, 0)[255], 255);
  EXPECT_EQ(outputTable(80, 20)[255], 80);
}

// Mode 2 leaves the common levels out; a gamma that is no number, or 0, is 1.
TEST(Levels, OfTheChannelsAloneAndOfNoGamma) {
  constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
  QPXToneLevelsParam param = {};
  param.master = {20, 230, 3.0};
  param.red = {50, 150, kNone};
  param.green = {0, 100, 0.0};
  param.blue = {0, 255, 1.0};
  param.outputBlack = 10;
  param.outputWhite = 200;
  param.mode = 2;
  const auto level = [](int32_t black, int32_t white, int32_t c) {
    const double share = std::clamp((c - black) / double(white - black), 0.0, 1.0);
    return 10 + (static_cast<int32_t>(255.0 * share + 0.5) * 190 + 127) / 255;
  };
  expectColors(kLevels, param, [&](const Color& c) {
    return Color{level(50, 150, c.r), level(0, 100, c.g), level(0, 255, c.b)};
  });
}

TEST(Curve, RunsThroughItsPoints) {
  QPXCurveParam param = {};
  param.green = {3, 0, {{0, 0}, {128, 180}, {255, 255}}};
  param.master = {2, 0, {{0, 20}, {255, 220}}};
  const Picture source = packedColors(QPX_FORMAT_RGB24);
  Picture result = source;
  ASSERT_EQ(frameOf(source, kCurve, param)->run(source, result, wholeOf(source)), QPX_OK);
  EXPECT_EQ(colorAt(result, 0, 0), (Color{20, 20, 20}));
  EXPECT_EQ(colorAt(result, 255, 0), (Color{220, 220, 220}));
  const Color middle = colorAt(result, 128, 0);
  EXPECT_EQ(middle.r, 20 + 128 * 200 / 255);
  EXPECT_EQ(middle.g, 20 + 180 * 200 / 255);

  // Points that go back, and one point alone, are no curve.
  param = {};
  param.red = {3, 0, {{0, 0}, {200, 10}, {100, 255}}};
  param.blue = {1, 0, {{50, 200}}};
  expectCopy(kCurve, param);
}

TEST(ColorTemperature, MixesFourTenthsOfALight) {
  const auto side = [](double gamma, int32_t t, int32_t c) {
    const int32_t light = static_cast<int32_t>(255.0 * std::pow(c / 255.0, gamma) + 0.5);
    const int32_t v = (light * 4 + c * 6) / 10;
    const int32_t sum = (100 - t) * c + t * v;
    return sum >= 25600 ? 255 : sum / 100;
  };
  for (const int32_t kelvin : {3000, 4000, 4730, 4995, 5009, 5010, 5600, 6000, 9000}) {
    const int32_t t = (std::clamp(kelvin, 4000, 6000) - 5000) / 10;
    const double warm = t > 0 ? 0.6 : 1.6, cool = t > 0 ? 1.6 : 0.6;
    expectColors(kColorTemperature, QPXColorTemperatureParam{kelvin, {}}, [&](const Color& c) {
      if (t == 0) return c;
      return Color{side(warm, std::abs(t), c.r), side(0.95, std::abs(t), c.g),
                   side(cool, std::abs(t), c.b)};
    });
  }
}

// The tables of a balance, by its words: three shifts in shadows, midtones and highlights.
struct LiteralBalance {
  uint8_t table[3][256];

  explicit LiteralBalance(const QPXColorBalanceParam& param) {
    double shift[3][3];  // by channel and range
    const QPXColorShift* const ranges[] = {&param.shadows, &param.midtones, &param.highlights};
    for (int range = 0; range < 3; ++range) {
      const double own[] = {std::clamp(ranges[range]->cyanRed, -100, 100) / 100.0,
                            std::clamp(ranges[range]->magentaGreen, -100, 100) / 100.0,
                            std::clamp(ranges[range]->yellowBlue, -100, 100) / 100.0};
      const double luma = 0.299 * own[0] + 0.587 * own[1] + 0.114 * own[2];
      for (int c = 0; c < 3; ++c) shift[c][range] = own[c] - (param.keepLuminosity ? luma : 0);
    }
    // The whole is lessened until the steepest fall leaves a slope of 0.15.
    double fall = 0;
    for (const auto& [dark, middle, light] : shift) {
      fall = std::min({fall, 0.4 * (middle - dark), 0.4 * (light - middle)});
    }
    const double share = fall < -0.85 ? 0.85 / -fall : 1.0;
    for (int c = 0; c < 3; ++c) {
      for (int i = 0; i < 256; ++i) {
        const double x = i / 255.0, y = 1 - x;
        const double moved =
            x + 0.2 * share * (shift[c][0] * y * y + 2 * shift[c][1] * x * y + shift[c][2] * x * x);
        table[c][i] = static_cast<uint8_t>(std::clamp(std::floor(255 * moved + 0.5), 0.0, 255.0));
      }
    }
  }
};

constexpr QPXColorBalanceParam kBalances[] = {
    {{-100, -100, 100}, {100, 100, -100}, {100, 100, -100}, 1},
    {{-100, -100, 100}, {100, 100, -100}, {-100, -100, 100}, 1},
    {{100, -100, 100}, {-100, 100, -100}, {100, -100, 100}, 1},
    {{100, 100, -100}, {-100, -100, 100}, {-100, -100, 100}, 1},
    {{100, 100, 100}, {-100, -100, -100}, {-100, -100, -100}, 0},
    {{300, -300, 20}, {7, 30, -64}, {-20, 90, -1000}, 1},
    {{17, -40, 20}, {50, 3, -12}, {-20, 9, 44}, 0}};

TEST(ColorBalance, IsAQuadraticCurveOfEachChannel) {
  for (const QPXColorBalanceParam& param : kBalances) {
    const LiteralBalance literal(param);
    const Picture source = packedColors(QPX_FORMAT_BGRA32);
    Picture result = source;
    ASSERT_EQ(frameOf(source, kColorBalance, param)->run(source, result, wholeOf(source)), QPX_OK);
    for (int32_t y = 0; y < source.height(); ++y) {
      for (int32_t x = 0; x < source.width(); ++x) {
        const Color c = colorAt(source, x, y), made = colorAt(result, x, y);
        // A value that lies half-way may be rounded either way.
        ASSERT_NEAR(made.r, literal.table[0][c.r], 1);
        ASSERT_NEAR(made.g, literal.table[1][c.g], 1);
        ASSERT_NEAR(made.b, literal.table[2][c.b], 1);
      }
    }
  }
}

// No setting turns tones round.
TEST(ColorBalance, KeepsTonesInOrder) {
  const Picture source = packedColors(QPX_FORMAT_RGB24);
  Picture result = source;
  const MRect greys = {0, 0, 256, 1};
  for (int32_t corner = 0; corner < 1024; ++corner) {
    const auto at = [corner](int bit) { return (corner >> bit & 1) != 0 ? 100 : -100; };
    const QPXColorBalanceParam param = {{at(0), at(1), at(2)},
                                        {at(3), at(4), at(5)},
                                        {at(6), at(7), at(8)},
                                        static_cast<uint8_t>(corner >> 9)};
    ASSERT_EQ(frameOf(source, kColorBalance, param)->run(source, result, greys), QPX_OK);
    for (int32_t x = 1; x < 256; ++x) {
      const Color before = colorAt(result, x - 1, 0), c = colorAt(result, x, 0);
      ASSERT_TRUE(c.r >= before.r && c.g >= before.g && c.b >= before.b) << corner << " at " << x;
    }
  }
}

// Each pair moves its own channel, most in its own range, and without luminosity no other.
TEST(ColorBalance, EachPairMovesItsChannelInItsRange) {
  constexpr int32_t kTone[] = {20, 128, 235};
  for (int range = 0; range < 3; ++range) {
    for (int channel = 0; channel < 3; ++channel) {
      for (const int32_t amount : {-60, 60}) {
        QPXColorBalanceParam param = {};
        QPXColorShift* const ranges[] = {&param.shadows, &param.midtones, &param.highlights};
        QPXColorShift& shift = *ranges[range];
        (channel == 0   ? shift.cyanRed
         : channel == 1 ? shift.magentaGreen
                        : shift.yellowBlue) = amount;
        Picture source(QPX_FORMAT_RGB24, 3, 1, Placement::exact);
        for (int32_t x = 0; x < 3; ++x) setColor(source, x, 0, {kTone[x], kTone[x], kTone[x]});
        Picture free = source, kept = source;
        ASSERT_EQ(frameOf(source, kColorBalance, param)->run(source, free, wholeOf(source)),
                  QPX_OK);
        param.keepLuminosity = 1;
        ASSERT_EQ(frameOf(source, kColorBalance, param)->run(source, kept, wholeOf(source)),
                  QPX_OK);
        int32_t moved[3];
        for (int32_t x = 0; x < 3; ++x) {
          for (int c = 0; c < 3; ++c) {
            const int32_t by = *sampleAt(free, x, 0, c) - kTone[x];
            if (c == channel) moved[x] = amount > 0 ? by : -by;
            if (c != channel) {
              EXPECT_EQ(by, 0);
            }
          }
        }
        for (int32_t x = 0; x < 3; ++x) {
          EXPECT_GE(moved[range], moved[x]) << "range " << range;
          EXPECT_GE(moved[x], 0);
        }
        EXPECT_GE(moved[range], 12);
        const int other = (channel + 1) % 3;
        const int32_t against = *sampleAt(kept, range, 0, other) - kTone[range];
        EXPECT_GT(amount > 0 ? -against : against, 0);
      }
    }
  }
}

TEST(ColorBalance, KeepsTheLumaOfGreys) {
  QPXColorBalanceParam param = {};
  param.midtones = {60, -30, 10};
  param.shadows = {0, 40, 0};
  param.keepLuminosity = 1;
  const Picture source = packedColors(QPX_FORMAT_RGB24);
  Picture result = source;
  ASSERT_EQ(frameOf(source, kColorBalance, param)->run(source, result, wholeOf(source)), QPX_OK);
  for (int32_t x = 60; x < 200; ++x) {
    const Color c = colorAt(result, x, 0);
    EXPECT_NEAR(0.299 * c.r + 0.587 * c.g + 0.114 * c.b, x, 1.0) << x;
    EXPECT_GT(c.r, c.g);
  }
}

TEST(ChannelMixer, SumsWithEightFractionalBits) {
  QPXChannelMixerParam param = {0, {110, 10, -20, 5}, {0, 100, 0, 0}, {-10, 20, 90, -7}};
  const auto sum = [](const QPXMixerRow& row, const Color& c) {
    const auto part = [](int32_t percent) { return percent * 255 / 100; };
    return std::clamp((part(row.red) * c.r + part(row.green) * c.g + part(row.blue) * c.b +
                       255 * part(row.constant)) >>
                          8,
                      0, 255);
  };
  expectColors(kChannelMixer, param, [&](const Color& c) {
    return Color{sum(param.red, c), sum(param.green, c), sum(param.blue, c)};
  });
  param.mode = 1;
  expectColors(kChannelMixer, param, [&](const Color& c) {
    const int32_t grey = sum(param.red, c);
    return Color{grey, grey, grey};
  });
}

// Gains far beyond a picture's needs are summed as they are; beyond 3200 percent 32 bits would not
// hold the sums.
TEST(ChannelMixer, SumsGreatGains) {
  for (const int32_t gain : {300, -3200, 3200, 3201, INT32_MAX, INT32_MIN}) {
    const QPXChannelMixerParam param = {
        0, {gain, 0, 0, 0}, {gain, gain, gain, gain}, {gain, -100, 300, -250}};
    const auto limited = [](int32_t percent) { return std::clamp(percent, -3200, 3200); };
    const auto sum = [&](const QPXMixerRow& row, const Color& c) {
      const auto part = [&](int32_t percent) { return int64_t{limited(percent)} * 255 / 100; };
      return static_cast<int32_t>(
          std::clamp<int64_t>((part(row.red) * c.r + part(row.green) * c.g + part(row.blue) * c.b +
                               255 * part(row.constant)) >>
                                  8,
                              0, 255));
    };
    expectColors(kChannelMixer, param, [&](const Color& c) {
      return Color{sum(param.red, c), sum(param.green, c), sum(param.blue, c)};
    });
  }
}

TEST(ChannelMixer, RefusesOtherModes) {
  const Picture source = packedColors(QPX_FORMAT_BGR24);
  for (const int32_t mode : {-1, 2, 100}) {
    QPXChannelMixerParam param = {};
    param.mode = mode;
    Picture result = source;
    EXPECT_EQ(frameOf(source, kChannelMixer, param)->run(source, result, wholeOf(source)),
              QPX_BAD_PARAM);
    EXPECT_FALSE(source.firstDifference(result));
  }
}

// Hue, saturation and value there and back, as exposure defines them.
Color brightened(const Color& c, const uint8_t* tones, int32_t e) {
  const int32_t most = std::max({c.r, c.g, c.b}), least = std::min({c.r, c.g, c.b});
  if (most == 0) return c;
  const auto reciprocal = [](int32_t i) { return i == 0 ? 0 : 32768 / i; };
  const int32_t d = most - least;
  const int32_t s = std::min((reciprocal(most) * d) >> 7, 255);
  int32_t h = 0;
  if (d > 0) {
    if (most == c.r) {
      h = (reciprocal(d) * (c.g - c.b)) >> 5;
    } else if (most == c.g) {
      h = ((reciprocal(d) * (c.b - c.r)) >> 5) + 2048;
    } else {
      h = ((reciprocal(d) * (c.r - c.g)) >> 5) + 4096;
    }
    h = (h * 60) >> 10;
    if (h < 0) h += 360;
  }
  const int32_t v = tones[most];
  const int32_t faded = s - (((most < 129 ? most : 255 - most) * e) >> 10);
  if (faded < 0) return {v, v, v};
  const int32_t sat = std::min(faded, 255);
  const int32_t sector = (h * 546) >> 15, f = h - 60 * sector;
  const int32_t part = (sat * f * 546) >> 15;
  const auto clip = [](int32_t value) { return std::clamp(value, 0, 255); };
  const int32_t hold = clip(((255 - sat) * v) >> 8);
  const int32_t rising = clip(((255 - sat + part) * v) >> 8);
  const int32_t falling = clip(((255 - part) * v) >> 8);
  const Color sectors[] = {{v, rising, hold},  {falling, v, hold}, {hold, v, rising},
                           {hold, falling, v}, {rising, hold, v},  {v, hold, falling}};
  return sectors[sector];
}

TEST(Exposure, KeepsHueWhereItBrightens) {
  for (const double stops : {0.0, 0.001, 0.7, 2.5, 5.0, 6.0}) {
    const int32_t e = static_cast<int32_t>(std::min(stops, 5.0) * 256.0);
    const ToneTable tones = exposureTable(e / 256.0);
    expectColors(kExposure, QPXExposureStopsParam{stops},
                 [&](const Color& c) { return brightened(c, tones.data(), e); });
  }
}

TEST(Exposure, OfNoNumberIsNone) {
  const ToneTable tones = exposureTable(0.0);
  expectColors(kExposure, QPXExposureStopsParam{std::numeric_limits<double>::quiet_NaN()},
               [&](const Color& c) { return brightened(c, tones.data(), 0); });
}

TEST(Exposure, DarkensByATable) {
  for (const double stops : {-0.5, -2.0, -5.0, -9.0}) {
    const ToneTable tones = exposureTable(std::max(stops, -5.0));
    expectColors(kExposure, QPXExposureStopsParam{stops}, [&](const Color& c) {
      const auto at = [&](int32_t i) { return int32_t{tones[static_cast<size_t>(i)]}; };
      return Color{at(c.r), at(c.g), at(c.b)};
    });
  }
}

// The six orders of a tint's channels, written out.
Color atLuma(int32_t luma, const Color& tint) {
  const int32_t value[3] = {tint.r, tint.g, tint.b};
  constexpr int32_t kWeight[3] = {77, 151, 28};
  constexpr int kOrders[6][3] = {{0, 1, 2}, {0, 2, 1}, {2, 0, 1}, {2, 1, 0}, {1, 0, 2}, {1, 2, 0}};
  for (int o = 0; o < 6; ++o) {
    const auto [p, q, s] = kOrders[o];
    if (value[p] < value[q] || value[q] < value[s]) continue;
    const int32_t range = value[p] - value[s], above = value[q] - value[s];
    const int32_t k = ((above + 1) << 10) / (range + 1);
    const int32_t t = (luma << 8) - kWeight[p] * range + (256 - kWeight[q]) * above + 128;
    int32_t middle = t >> 8, low = middle - above, high = low + range;
    if (t < 256 || low < 0) {
      low = 0;
      high = ((luma << 20) / (kWeight[p] + ((kWeight[q] * k) >> 10))) >> 12;
      middle = (k * high) >> 10;
    } else if (high > 255) {
      high = 255;
      const int32_t d = kWeight[s] + 1 - ((kWeight[q] * (k - 1024)) >> 10);
      const int32_t wq = o == 0 ? 150 : kWeight[q];
      const int32_t n = (luma - kWeight[p] - ((wq * k) >> 10)) * (1 << 20);
      low = (n / d) >> 12;
      middle = (low * (1024 - k) + (k << 8)) >> 10;
    }
    int32_t out[3];
    out[p] = std::clamp(high, 0, 255);
    out[q] = std::clamp(middle, 0, 255);
    out[s] = std::clamp(low, 0, 255);
    return {out[0], out[1], out[2]};
  }
  return {};
}

Color toned(const Color& c, const QPXSplitToningParam& param) {
  const auto pure = [](int32_t hue) {
    const int32_t sector = hue / 60, rise = ((hue - 60 * sector) * 139230) >> 15;
    const Color colors[] = {{255, rise, 0},       {255 - rise, 255, 0}, {0, 255, rise},
                            {0, 255 - rise, 255}, {rise, 0, 255},       {255, 0, 255 - rise},
                            {255, 0, 0}};
    return colors[sector];
  };
  const auto tone = [](int32_t sample, int32_t color, int32_t s) {
    const int32_t sum = s * color + (100 - s) * sample;
    return sum >= 25600 ? 255 : sum / 100;
  };
  const int32_t luma = (77 * c.r + 151 * c.g + 28 * c.b + 128) >> 8;
  const int32_t pivot = (100 - (param.balance / 2 + 50)) * 255 / 100;
  const double weight = luma <= pivot ? (pivot == 0 ? 0 : 128.0 / pivot * luma)
                                      : 128.0 + 127.0 / (255 - pivot) * (luma - pivot);
  const Color shadow = pure(param.shadowHue), light = pure(param.highlightHue);
  const auto mixed = [&](int32_t sample, int32_t dark, int32_t bright) {
    const int32_t a = tone(sample, dark, param.shadowSaturation);
    const int32_t b = tone(sample, bright, param.highlightSaturation);
    return a + ((static_cast<int32_t>(weight) * (b - a)) >> 8);
  };
  return atLuma(luma, {mixed(c.r, shadow.r, light.r), mixed(c.g, shadow.g, light.g),
                       mixed(c.b, shadow.b, light.b)});
}

TEST(SplitToning, TonesAtTheLumaOfTheSource) {
  for (const QPXSplitToningParam& param :
       {QPXSplitToningParam{45, 30, 0, 215, 30}, QPXSplitToningParam{360, 100, -100, 60, 100},
        QPXSplitToningParam{120, 80, 100, 300, 50}, QPXSplitToningParam{0, 0, 33, 0, 0}}) {
    expectColors(kSplitToning, param, [&](const Color& c) { return toned(c, param); });
  }
}

TEST(SplitToning, ClampsItsRecord) {
  struct Pair {
    QPXSplitToningParam wild, tame;
  };
  constexpr Pair kPairs[] = {
      {{400, 70, 150, -20, 40}, {360, 70, 100, 0, 40}},
      {{-1, 70, -101, 361, 40}, {0, 70, -100, 360, 40}},
      {{120, 170, 20, 240, -5}, {120, 100, 20, 240, 0}},
      {{INT32_MAX, INT32_MIN, INT32_MAX, INT32_MIN, INT32_MAX}, {360, 0, 100, 0, 100}}};
  for (const Pair& pair : kPairs) {
    expectColors(kSplitToning, pair.wild, [&](const Color& c) { return toned(c, pair.tame); });
  }
}

TEST(SplitToning, KeepsTheLumaOfGreys) {
  const Picture source = packedColors(QPX_FORMAT_RGB24);
  Picture result = source;
  const QPXSplitToningParam param = {45, 40, 0, 215, 40};
  ASSERT_EQ(frameOf(source, kSplitToning, param)->run(source, result, wholeOf(source)), QPX_OK);
  for (int32_t x = 0; x < 256; ++x) {
    const Color c = colorAt(result, x, 0);
    EXPECT_NEAR((77 * c.r + 151 * c.g + 28 * c.b) / 256.0, x, 2.5) << x;
  }
}

// Of every colour, not of greys alone.
TEST(SplitToning, KeepsTheLumaOfColors) {
  std::vector<Color> colors;
  for (int32_t i = 0; i < 17 * 17 * 17; ++i) {
    const auto level = [](int32_t step) { return std::min(step * 16, 255); };
    colors.push_back({level(i % 17), level(i / 17 % 17), level(i / 289)});
  }
  for (const Color& c : {Color{255, 255, 95}, {255, 0, 97}, {0, 0, 255}, {1, 0, 254}}) {
    colors.push_back(c);
  }
  Picture source(QPX_FORMAT_RGB24, static_cast<int32_t>(colors.size()), 1, Placement::exact);
  for (size_t i = 0; i < colors.size(); ++i) {
    setColor(source, static_cast<int32_t>(i), 0, colors[i]);
  }
  const auto lumaOf = [](const Color& c) { return (77 * c.r + 151 * c.g + 28 * c.b) / 256.0; };
  for (const QPXSplitToningParam& param :
       {QPXSplitToningParam{0, 0, 0, 0, 0}, QPXSplitToningParam{45, 30, 0, 215, 30},
        QPXSplitToningParam{60, 60, 0, 0, 0}, QPXSplitToningParam{180, 60, 100, 300, 0},
        QPXSplitToningParam{300, 100, -60, 240, 100}, QPXSplitToningParam{0, 80, 40, 240, 80}}) {
    Picture result = source;
    ASSERT_EQ(frameOf(source, kSplitToning, param)->run(source, result, wholeOf(source)), QPX_OK);
    for (size_t i = 0; i < colors.size(); ++i) {
      const Color made = colorAt(result, static_cast<int32_t>(i), 0);
      ASSERT_NEAR(lumaOf(made), lumaOf(colors[i]), 3.0)
          << colors[i] << " as " << made << " in hues " << param.highlightHue << ", "
          << param.shadowHue;
    }
  }
}

TEST(ToneControls, KernelsByNameLeaveOtherFormats) {
  QPXToneLevelsParam levels = {};
  levels.outputBlack = 90;
  expectOtherFormatsLeft(byName<Levels_RGB>, kLevels, levels);
  QPXCurveParam curve = {};
  curve.master = {2, 0, {{0, 90}, {255, 255}}};
  expectOtherFormatsLeft(byName<Curve_RGB>, kCurve, curve);
  expectOtherFormatsLeft(byName<newBrightnessContrast_RGB>, kSmoothContrast,
                         QPXSmoothContrastParam{50, 50});
  expectOtherFormatsLeft(byName<HighlightBrightDarkShadow_RGB>, kTonalRanges,
                         QPXTonalRangesParam{90, 90, 90, 90});
  expectOtherFormatsLeft(byName<ColorBalance_RGB>, kColorBalance, kBalances[6]);
  expectOtherFormatsLeft(byName<ColorTemperature_RGB>, kColorTemperature,
                         QPXColorTemperatureParam{6000, {}});
  for (const double stops : {-2.0, 2.0}) {
    expectOtherFormatsLeft(byName<exposure_RGB>, kExposure, QPXExposureStopsParam{stops});
  }
  for (const int32_t mode : {0, 1}) {
    expectOtherFormatsLeft(byName<ChannelMixer_RGB>, kChannelMixer,
                           QPXChannelMixerParam{mode, {10, 90, 0, 20}, {}, {}});
  }
  expectOtherFormatsLeft(byName<SeparateTone_RGB>, kSplitToning,
                         QPXSplitToningParam{45, 90, 0, 215, 90});
}

TEST(ToneControls, KernelsByNameTakeStagesOfTheirEffectAlone) {
  struct Named {
    Kernel kernel;
    uint32_t id;
  };
  constexpr Named kNamed[] = {{byName<Levels_RGB>, kLevels},
                              {byName<Curve_RGB>, kCurve},
                              {byName<newBrightnessContrast_RGB>, kSmoothContrast},
                              {byName<exposure_RGB>, kExposure},
                              {byName<HighlightBrightDarkShadow_RGB>, kTonalRanges},
                              {byName<SeparateTone_RGB>, kSplitToning},
                              {byName<ChannelMixer_RGB>, kChannelMixer},
                              {byName<ColorBalance_RGB>, kColorBalance},
                              {byName<ColorTemperature_RGB>, kColorTemperature}};
  const Picture source = packedColors(QPX_FORMAT_BGRA32);
  constexpr QPXToneLevelsParam kZero = {};  // the longest of their records
  for (size_t i = 0; i < std::size(kNamed); ++i) {
    const auto own = frameOf(source, kNamed[i].id, kZero);
    const auto other = frameOf(source, kNamed[(i + 1) % std::size(kNamed)].id, kZero);
    Picture expected = source, result = source;
    ASSERT_EQ(own->run(source, expected, wholeOf(source)), QPX_OK);
    EXPECT_EQ(own->run(kNamed[i].kernel, source, result, wholeOf(source)), QPX_OK);
    EXPECT_FALSE(expected.firstDifference(result)) << i;
    EXPECT_EQ(other->run(kNamed[i].kernel, source, result, wholeOf(source)), QPX_BAD_PARAM) << i;
  }
}

}  // namespace
}  // namespace qpx::testing
