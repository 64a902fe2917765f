// Saturation, colour ranges, changes by hue and vibrance as effects: the arithmetic of their
// records in every format, and what a photographer expects of the sliders.
#include <gtest/gtest.h>
#include <qpx/kernels_adjust.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <numbers>
#include <vector>

#include "adjust/hsb_adjust.h"
#include "adjust/hue_effects.h"
#include "adjust/lab_tables.h"
#include "adjust/packed_pictures.h"
#include "support/failing_memory.h"

namespace qpx::testing {
namespace {

using Rgb = Color;

int clamp255(int value) { return value < 0 ? 0 : value > 255 ? 255 : value; }

// Colours through an effect, in BGR24.
template <typename Record>
std::vector<Rgb> through(uint32_t id, const Record& record, const std::vector<Rgb>& colors) {
  const int32_t count = static_cast<int32_t>(colors.size());
  Picture source(QPX_FORMAT_BGR24, count, 1, Placement::exact);
  uint8_t* bytes = source.bitmap().plane[0];
  for (const Rgb& c : colors) {
    for (const int v : {c.b, c.g, c.r}) *bytes++ = static_cast<uint8_t>(v);
  }
  Picture result(QPX_FORMAT_BGR24, count, 1, Placement::exact);
  const auto frame = frameOf(source, id, record);
  EXPECT_EQ(frame->run(source, result, wholeOf(source)), QPX_OK);
  std::vector<Rgb> made;
  for (int32_t x = 0; x < count; ++x) {
    const Rgba pixel = result.rgb(x, 0);
    made.push_back({pixel.r, pixel.g, pixel.b});
  }
  return made;
}

template <typename Record>
Rgb through(uint32_t id, const Record& record, const Rgb& color) {
  return through(id, record, std::vector<Rgb>{color})[0];
}

// All greys first, then colours of a grid.
std::vector<Rgb> gridColors(int step) {
  std::vector<Rgb> colors;
  for (int v = 0; v < 256; ++v) colors.push_back({v, v, v});
  for (int r = 0; r < 256; r += step) {
    for (int g = 0; g < 256; g += step) {
      for (int b = 0; b < 256; b += step) colors.push_back({r, g, b});
    }
  }
  return colors;
}

int largest(const Rgb& c) { return std::max(c.r, std::max(c.g, c.b)); }
int least(const Rgb& c) { return std::min(c.r, std::min(c.g, c.b)); }
int chromaOf(const Rgb& c) { return largest(c) - least(c); }

int amountOf(int percent) {
  if (percent < -100) return -1024;
  if (percent > 100) return 512;
  return percent < 0 ? (percent * 1024) / 100 : (percent << 10) / 200;
}

Rgb literalSaturation(const Rgb& c, int percent) {
  const auto recip = [](int i) { return (1 << 20) / (i + 1); };
  const int a = amountOf(percent);
  const int mx = largest(c), mn = least(c), sum = mx + mn, l = sum >> 1;
  const int sl = (recip(sum < 256 ? sum : 512 - sum) * (mx - mn)) >> 10;
  const int alpha = a > 0 ? recip(a + sl < 1024 ? 1024 - a : sl) - 1024 : a;
  const auto channel = [&](int v) { return clamp255(v + ((alpha * (v - l)) >> 10)); };
  return {channel(c.r), channel(c.g), channel(c.b)};
}

// The whole of a packed picture against expected(colour); alpha is that of the source.
template <typename Record, typename Expected>
void expectPacked(uint32_t id, const Record& record, const Expected& expected) {
  for (const uint32_t format : kPackedFormats) {
    Picture source(format, 301, 9, Placement::exact);
    scramble(source, 5);
    Picture result(format, 301, 9, Placement::guarded);
    const auto frame = frameOf(source, id, record);
    ASSERT_EQ(frame->run(source, result, wholeOf(source)), QPX_OK);
    for (int32_t y = 0; y < 9; ++y) {
      for (int32_t x = 0; x < 301; ++x) {
        const Rgba was = source.rgb(x, y), is = result.rgb(x, y);
        ASSERT_EQ((Rgb{is.r, is.g, is.b}), expected(Rgb{was.r, was.g, was.b}))
            << "of " << Rgb{was.r, was.g, was.b} << ", format " << format;
        ASSERT_EQ(is.a, was.a);
      }
    }
  }
}

constexpr int kPercents[] = {-1000, -100, -37, -1, 0, 1, 2, 55, 100, 101, 5000};

TEST(Saturation, IsTheWrittenArithmeticInAllPackedFormats) {
  for (const int percent : kPercents) {
    expectPacked(kSaturation, QPXSaturationParam{percent},
                 [&](const Rgb& c) { return literalSaturation(c, percent); });
  }
}

TEST(Saturation, EndsAndNeutral) {
  const std::vector<Rgb> colors = gridColors(17);
  const auto grey = through(kSaturation, QPXSaturationParam{-100}, colors);
  const auto same = through(kSaturation, QPXSaturationParam{0}, colors);
  const auto full = through(kSaturation, QPXSaturationParam{100}, colors);
  for (size_t i = 0; i < colors.size(); ++i) {
    const int l = (largest(colors[i]) + least(colors[i])) >> 1;
    EXPECT_EQ(grey[i], (Rgb{l, l, l}));
    EXPECT_EQ(same[i], colors[i]);
    EXPECT_LE(chromaOf(full[i]), 2 * chromaOf(colors[i]) + 1) << colors[i];
    EXPECT_GE(chromaOf(full[i]), chromaOf(colors[i]) - 1) << colors[i];
  }
}

struct Yuv {
  int y, u, v;
};

Yuv literalNv21(int y, int u, int v, int percent) {
  const Rgb in = {clamp255((y * 1024 + 1436 * (v - 128) + 512) >> 10),
                  clamp255((y * 1024 - 352 * (u - 128) - 731 * (v - 128) + 512) >> 10),
                  clamp255((y * 1024 + 1815 * (u - 128) + 512) >> 10)};
  const Rgb c = literalSaturation(in, percent);
  return {clamp255((306 * c.r + 601 * c.g + 117 * c.b) >> 10),
          (((-173 * c.r - 339 * c.g + 512 * c.b) >> 10) + 128) & 255,
          (((512 * c.r - 428 * c.g - 83 * c.b) >> 10) + 128) & 255};
}

TEST(Saturation, Nv21ConvertsEveryPixelAndKeepsTheChromaOfTopLeftOnes) {
  for (const auto& [width, height] : {std::pair{64, 22}, {301, 8}, {300, 7}, {1, 1}}) {
    for (const int percent : {-100, -37, 0, 60, 100}) {
      Picture source(QPX_FORMAT_NV21, width, height, Placement::exact);
      scramble(source, 11);
      Picture result(QPX_FORMAT_NV21, width, height, Placement::guarded);
      const auto frame = frameOf(source, kSaturation, QPXSaturationParam{percent});
      ASSERT_EQ(frame->run(source, result, wholeOf(source)), QPX_OK);
      Picture inPlace(source);
      ASSERT_EQ(frame->run(inPlace, inPlace, wholeOf(source)), QPX_OK);
      EXPECT_FALSE(result.firstDifference(inPlace).has_value());
      for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x) {
          const Yuv made =
              literalNv21(source.yuv(0, x, y), source.yuv(1, x, y), source.yuv(2, x, y), percent);
          ASSERT_EQ(result.yuv(0, x, y), made.y) << x << ", " << y;
          if (x % 2 != 0 || y % 2 != 0) continue;
          ASSERT_EQ(result.yuv(1, x, y), made.u) << x << ", " << y;
          ASSERT_EQ(result.yuv(2, x, y), made.v) << x << ", " << y;
        }
      }
    }
  }
}

constexpr int kStarts[] = {315, 331, 25, 45, 120, 160, 200, 270};
constexpr int kCounts[] = {80, 108, 80, 120, 100, 140, 140, 90};

// A whole record, in the order of the steps: the hue moves in its range, then saturation by the
// weight of the new place, then value.
struct LiteralRange {
  QPXColorRangeParam param;

  Rgb operator()(const Rgb& c) const {
    const int start = kStarts[param.colorIndex], count = kCounts[param.colorIndex];
    const int mx = largest(c), d = chromaOf(c), last = count - 1;
    const int position = (hueOf(c) - start + 360) % 360;
    if (position >= count) return c;
    const double wave = std::sin(std::numbers::pi * position / last);
    const double way = 0.25 * last * std::clamp(param.hue, -100, 100) / 100.0 * wave * wave;
    const int turned = rounded(position + way);
    const double t = std::min(std::min(turned, last - turned) / (last / 3.0), 1.0);
    const int weight = rounded(1024 * t * t * (3 - 2 * t));
    const int s = mx == 0 ? 0 : std::min(((32768 / mx) * d) >> 7, 255);
    const double gain = std::clamp(param.saturation, -100, 100) / 100.0;
    const int aim = rounded(gain < 0 ? s + s * gain : s + s * (255.0 - s) / 255 * gain);
    const int made = clamp255(s + ((weight * (aim - s)) >> 10));
    const int share = (weight * std::min(4 * s, 256)) >> 8;
    const int value = clamp255(mx + ((light() * bump(mx) * share) >> 18));
    const int hue = start + turned;
    return fromHsv(hue > 360 ? hue - 360 : hue, made, value);
  }

  // In 1024ths of 400 percent; a turned hue holds up to a fifth of it back, and aqua, blue and
  // purple go the other way.
  int light() const {
    const int light = std::clamp(param.lightness, -100, 100) * 1024 / 400;
    const int held = std::abs(std::clamp(param.hue, -100, 100)) * 1024 / 500;
    const int rest = light * (1024 - held) / 1024;
    return param.colorIndex >= 4 && param.colorIndex <= 6 ? -rest : rest;
  }

  static int bump(int value) { return (16384 - (value - 128) * (value - 128)) >> 8; }
  static int rounded(double value) { return static_cast<int>(std::floor(value + 0.5)); }

  static int hueOf(const Rgb& c) {
    const int d = chromaOf(c);
    if (d == 0) return 0;
    const int reciprocal = 32768 / d;
    int h;
    if (largest(c) == c.r)
      h = (reciprocal * (c.g - c.b)) >> 5;
    else if (largest(c) == c.g)
      h = ((reciprocal * (c.b - c.r)) >> 5) + 2048;
    else
      h = ((reciprocal * (c.r - c.g)) >> 5) + 4096;
    h = (h * 60) >> 10;
    return h < 0 ? h + 360 : h;
  }

  static Rgb fromHsv(int h, int s, int v) {
    const int hold = ((255 - s) * v) >> 8;
    if (h == 360) return {v, hold, hold};
    const int sector = (h * 546) >> 15, f = h - 60 * sector;
    const int rising = ((255 - s + ((s * f * 546) >> 15)) * v) >> 8;
    const int falling = ((255 - ((s * f * 546) >> 15)) * v) >> 8;
    const Rgb sectors[] = {{v, rising, hold},  {falling, v, hold}, {hold, v, rising},
                           {hold, falling, v}, {rising, hold, v},  {v, hold, falling}};
    return sectors[sector];
  }
};

// With neutral amounts, colours of the range go to hue, saturation and value and back.
Rgb literalNeutralRange(const Rgb& c, int index) { return LiteralRange{{index, 0, 0, 0}}(c); }

TEST(ColorRange, IsItsRecordStepByStep) {
  constexpr int kAmounts[][3] = {{0, 70, 0},     {0, -100, 0},  {0, 0, -100},   {0, 0, 45},
                                 {-100, 0, 100}, {80, 0, -100}, {35, -40, 60},  {-60, 100, -20},
                                 {900, 0, 0},    {0, 0, 1000},  {0, -2000, 300}};
  for (int index = 0; index < 8; ++index) {
    for (const auto& [hue, saturation, lightness] : kAmounts) {
      const LiteralRange literal = {{index, hue, saturation, lightness}};
      const std::vector<Rgb> colors = gridColors(17);
      const auto made = through(kColorRange, literal.param, colors);
      for (size_t i = 0; i < colors.size(); ++i) {
        ASSERT_EQ(made[i], literal(colors[i]))
            << "of " << colors[i] << ", range " << index << ", amounts " << hue << ", "
            << saturation << ", " << lightness;
      }
    }
    const LiteralRange some = {{index, 40, -30, 50}};
    expectPacked(kColorRange, some.param, some);
    if (HasFatalFailure()) return;
  }
}

TEST(ColorRange, NeutralAmountsMakeTheRangeAgainAndCopyTheRest) {
  for (int index = 0; index < 8; ++index) {
    expectPacked(kColorRange, QPXColorRangeParam{index, 0, 0, 0},
                 [&](const Rgb& c) { return literalNeutralRange(c, index); });
    const std::vector<Rgb> colors = gridColors(15);
    const auto made = through(kColorRange, QPXColorRangeParam{index, 0, 0, 0}, colors);
    for (size_t i = 0; i < colors.size(); ++i) {
      ASSERT_EQ(made[i], literalNeutralRange(colors[i], index));
      ASSERT_LE(std::abs(made[i].r - colors[i].r), 8);
      ASSERT_LE(std::abs(made[i].g - colors[i].g), 8);
      ASSERT_LE(std::abs(made[i].b - colors[i].b), 8);
    }
  }
}

TEST(ColorRange, OtherIndicesCopy) {
  for (const int index : {8, 9, 1000000, -1, INT32_MIN}) {
    expectPacked(kColorRange, QPXColorRangeParam{index, 50, 50, 50},
                 [](const Rgb& c) { return c; });
  }
}

// Values of a pure tone of each range's middle hue.
Rgb middleOf(int index, int value) {
  constexpr Rgb kMiddles[] = {{255, 0, 10},  {255, 102, 0}, {238, 255, 0}, {64, 255, 0},
                              {0, 255, 212}, {0, 42, 255},  {128, 0, 255}, {255, 0, 191}};
  const Rgb& c = kMiddles[index];
  return {c.r * value / 255, c.g * value / 255, c.b * value / 255};
}

TEST(ColorRange, LightnessMovesMidValuesMostAndNeitherEnd) {
  for (int index = 0; index < 8; ++index) {
    const bool dark = index >= 4 && index <= 6;
    int most = 0;
    for (int value = 0; value < 256; ++value) {
      const Rgb color = middleOf(index, value);
      const int was = largest(color);
      const int lit = largest(through(kColorRange, QPXColorRangeParam{index, 0, 0, 100}, color));
      const int shift = dark ? was - lit : lit - was;
      EXPECT_GE(shift, 0) << "range " << index << ", value " << was;
      most = std::max(most, shift);
      if (was == 0 || was == 255) {
        EXPECT_EQ(shift, 0);
      }
    }
    const Rgb middle = middleOf(index, 128);
    const int lit = largest(through(kColorRange, QPXColorRangeParam{index, 0, 0, 100}, middle));
    EXPECT_EQ(std::abs(lit - largest(middle)), most);
    EXPECT_GE(most, 62);
    const int dimmed = largest(through(kColorRange, QPXColorRangeParam{index, 0, 0, -100}, middle));
    EXPECT_NEAR(dimmed - largest(middle), largest(middle) - lit, 1);
  }
}

TEST(ColorRange, GreysTakeNoPart) {
  const std::vector<Rgb> colors = gridColors(255);
  for (int index = 0; index < 8; ++index) {
    const auto made = through(kColorRange, QPXColorRangeParam{index, 100, 100, 100}, colors);
    for (size_t v = 0; v < 256; ++v) {
      EXPECT_EQ(made[v], literalNeutralRange(colors[v], index));
    }
  }
}

// Hues in order stay in order, so that no band turns back; the ends of the range stay in place.
TEST(ColorRange, TurnedHuesKeepTheirOrder) {
  const auto hueOf = [](const Rgb& c) {
    const double d = chromaOf(c);
    if (d == 0) return 0.0;
    if (largest(c) == c.r) return 60 * (c.g - c.b) / d;
    if (largest(c) == c.g) return 60 * (c.b - c.r) / d + 120;
    return 60 * (c.r - c.g) / d + 240;
  };
  std::vector<Rgb> wheel;  // green to blue
  for (int i = 0; i <= 255; ++i) wheel.push_back({0, 255, i});
  for (int i = 255; i >= 0; --i) wheel.push_back({0, i, 255});
  for (const int hue : {-100, -50, 50, 100}) {
    const auto made = through(kColorRange, QPXColorRangeParam{5, hue, 0, 0}, wheel);
    double before = 0;
    for (size_t i = 0; i < wheel.size(); ++i) {
      EXPECT_GE(hueOf(made[i]), before - 1.1) << wheel[i];
      before = hueOf(made[i]);
      EXPECT_NEAR(hueOf(made[i]), hueOf(wheel[i]), 36);
    }
  }
}

Rgb literalNeutralHsb(const Rgb& c) {
  const int mx = largest(c), mn = least(c), d = mx - mn;
  int h = 0;
  if (d != 0) {
    const int reciprocal = 61440 / d;
    if (mx == c.r)
      h = reciprocal * (c.g - c.b);
    else if (mx == c.g)
      h = reciprocal * (c.b - c.r) + (120 << 10);
    else
      h = reciprocal * (c.r - c.g) + (240 << 10);
    h >>= 10;
    if (h < 0) h += 360;
  }
  const int sector = (h * 273) >> 14;
  const int f = ((h * 273) & (1 << 14)) != 0 ? 60 - (h - 60 * sector) : h - 60 * sector;
  const int mid = (d * f * 273 + (mn << 14)) >> 14;
  const Rgb sectors[] = {{mx, mid, mn}, {mid, mx, mn}, {mn, mx, mid},
                         {mn, mid, mx}, {mid, mn, mx}, {mx, mn, mid}};
  return sectors[sector];
}

TEST(HsbAdjust, NeutralRecordMakesColorsAgainFromWholeDegrees) {
  expectPacked(kHsbAdjust, QPXHsbAdjustParam{}, literalNeutralHsb);
  const std::vector<Rgb> colors = gridColors(15);
  const auto made = through(kHsbAdjust, QPXHsbAdjustParam{}, colors);
  for (size_t i = 0; i < colors.size(); ++i) {
    if (i < 256) {
      ASSERT_EQ(made[i], colors[i]);
    }
    ASSERT_LE(std::abs(made[i].r - colors[i].r), 6) << colors[i];
    ASSERT_LE(std::abs(made[i].g - colors[i].g), 6) << colors[i];
    ASSERT_LE(std::abs(made[i].b - colors[i].b), 6) << colors[i];
  }
}

TEST(HsbAdjust, EqualAmountsOfAllRangesAreTheAmountOfAll) {
  QPXHsbAdjustParam all = {};
  all.hue = 17;
  all.saturation = -40;
  all.brightness = 25;
  QPXHsbAdjustParam ranges = {};
  for (QPXHueRange* range :
       {&ranges.red, &ranges.yellow, &ranges.green, &ranges.cyan, &ranges.blue, &ranges.magenta}) {
    *range = {17, -40, 25, 0, 0, 0, 0};
  }
  const HsbTables one = hsbTables(all), sum = hsbTables(ranges);
  for (int32_t h = 0; h < simd::kDegrees; ++h) {
    EXPECT_EQ(one.changes.at(h).light, sum.changes.at(h).light) << h;
    EXPECT_EQ(one.changes.at(h).spread, sum.changes.at(h).spread) << h;
    EXPECT_EQ(one.changes.at(h).turn, sum.changes.at(h).turn) << h;
  }
  EXPECT_EQ(one.changes.at(7).light, -256);
  EXPECT_EQ(one.changes.at(7).spread, (-410 * 255) >> 10);
  EXPECT_EQ(one.changes.at(7).turn, 17);
}

TEST(HsbAdjust, RangesFadeSmoothlyAndMeetAcrossRed) {
  QPXHsbAdjustParam param = {};
  param.red.saturation = 100;
  const HsbTables tables = hsbTables(param);
  const auto spread = [&](int32_t h) { return tables.changes.at(h).spread; };
  EXPECT_EQ(spread(0), 152);
  EXPECT_EQ(spread(360), 152);
  EXPECT_EQ(spread(345), 152);
  EXPECT_EQ(spread(15), 152);
  EXPECT_EQ(spread(30), 76);
  EXPECT_EQ(spread(330), 76);
  for (int32_t h = 45; h <= 315; ++h) EXPECT_EQ(spread(h), 0);
  for (int32_t h = 1; h < simd::kDegrees; ++h) {
    EXPECT_LE(std::abs(spread(h) - spread(h - 1)), 8) << h;
  }
}

TEST(HsbAdjust, PlacedRangesHoldWhereTheyArePut) {
  QPXHsbAdjustParam param = {};
  param.blue = {30, 0, 0, 200, 210, 230, 250};
  param.green = {-20, 0, 0, 350, 355, 365, 370};
  const HsbTables tables = hsbTables(param);
  EXPECT_EQ(tables.changes.at(199).turn, 0);
  EXPECT_EQ(tables.changes.at(205).turn, 15);
  EXPECT_EQ(tables.changes.at(220).turn, 30);
  EXPECT_EQ(tables.changes.at(240).turn, 15);
  EXPECT_EQ(tables.changes.at(250).turn, 0);
  EXPECT_EQ(tables.changes.at(0).turn, -20);
  EXPECT_EQ(tables.changes.at(10).turn, 0);
  EXPECT_EQ(tables.changes.at(120).turn, 0);
}

TEST(HsbAdjust, SlidersDoWhatTheySay) {
  const Rgb sky = {90, 140, 200};
  QPXHsbAdjustParam param = {};
  param.blue.saturation = 50;
  EXPECT_GT(chromaOf(through(kHsbAdjust, param, sky)), chromaOf(sky) + 20);
  param.blue.saturation = -100;
  EXPECT_LE(chromaOf(through(kHsbAdjust, param, sky)), 70);  // hue 212: of cyans too
  param = {};
  param.brightness = 50;
  const Rgb lit = through(kHsbAdjust, param, sky);
  EXPECT_EQ(lit.b, 200);
  EXPECT_NEAR(lit.r, 145, 2);
  param = {};
  param.brightness = -100;
  EXPECT_EQ(through(kHsbAdjust, param, sky), (Rgb{90, 90, 90}));
  param = {};
  param.hue = 120;
  EXPECT_EQ(through(kHsbAdjust, param, Rgb{200, 20, 20}), (Rgb{20, 200, 20}));
  param = {};
  param.inputBrightness = 40;
  EXPECT_GT(through(kHsbAdjust, param, Rgb{90, 90, 90}).g, 100);
}

// What a record may not ask for counts as the nearest that it may.
TEST(HsbAdjust, ClampsItsRecord) {
  const auto wild = [](int32_t hue, int32_t amount) {
    QPXHsbAdjustParam param = {};
    param.hue = hue;
    param.saturation = param.brightness = amount;
    param.green = {-hue, -amount, amount, 0, 0, 0, 0};
    param.inputBrightness = amount;
    param.inputContrast = -amount;
    return param;
  };
  const std::vector<Rgb> colors = gridColors(51);
  const auto expectSame = [&](const QPXHsbAdjustParam& a, const QPXHsbAdjustParam& b) {
    EXPECT_EQ(through(kHsbAdjust, a, colors), through(kHsbAdjust, b, colors));
  };
  expectSame(wild(181, 0), wild(180, 0));
  expectSame(wild(-181, 0), wild(-180, 0));
  expectSame(wild(INT32_MAX, INT32_MAX), wild(180, 100));
  expectSame(wild(-1000, -101), wild(-180, -100));
  EXPECT_NE(through(kHsbAdjust, wild(170, 0), colors), through(kHsbAdjust, wild(180, 0), colors));
}

template <typename Record>
void expectCopies(uint32_t id, const Record& record) {
  expectPacked(id, record, [](const Rgb& c) { return c; });
}

TEST(Vibrance, NeutralCopies) {
  expectCopies(kVibrance, QPXVibranceParam{0});
  expectCopies(kVibranceSaturation, QPXVibranceSaturationParam{0, 0});
}

TEST(Vibrance, ClampsItsRecord) {
  const std::vector<Rgb> colors = gridColors(51);
  const auto vibrant = [&](int32_t amount) {
    return through(kVibrance, QPXVibranceParam{amount}, colors);
  };
  EXPECT_EQ(vibrant(101), vibrant(100));
  EXPECT_EQ(vibrant(INT32_MIN), vibrant(-100));
  EXPECT_NE(vibrant(100), vibrant(90));
  const auto both = [&](int32_t vibrance, int32_t saturation) {
    return through(kVibranceSaturation, QPXVibranceSaturationParam{vibrance, saturation}, colors);
  };
  EXPECT_EQ(both(500, 0), both(100, 0));
  EXPECT_EQ(both(-101, 101), both(-100, 100));
  EXPECT_EQ(both(0, INT32_MIN), both(0, -100));
}

// By hand: the straight parts are cut, the curves rounded. Values that lie near a half are left
// out, since pow and cbrt may differ in their last bit.
TEST(LabTables, HoldTheCurvesOfTheirStandards) {
  simd::LabTables tables;
  fillLabTables(tables);
  constexpr int kCut[] = {0, 0, 0, 0, 1, 1, 1, 2, 2, 2, 3};  // (79 * (i << 10)) >> 18
  for (int i = 0; i <= 10; ++i) EXPECT_EQ(tables.linear[i], kCut[i]) << i;
  struct Entry {
    int at, is;
  };
  for (const Entry& e : {Entry{11, 3}, {12, 4}, {40, 22}, {128, 221}, {254, 1015}, {255, 1024}}) {
    EXPECT_EQ(tables.linear[e.at], e.is) << e.at;
  }
  // The cube root begins above 216/24389, which lies between 9 and 10.
  for (const Entry& e : {Entry{0, 141},
                         {1, 149},
                         {5, 180},
                         {9, 211},
                         {10, 219},
                         {20, 276},
                         {128, 512},
                         {500, 806},
                         {1024, 1024}}) {
    EXPECT_EQ(tables.root[e.at], e.is) << e.at;
  }
  // Of the root that is meant, 1024/116 (root / 9 + 1/2); nearer than that where greys are grey.
  for (const Entry& e : {Entry{-1024, -147},
                         {-500, -81},
                         {0, -18},
                         {142, 0},
                         {200, 7},
                         {212, 10},
                         {300, 25},
                         {400, 59},
                         {512, 124},
                         {700, 315},
                         {900, 679},
                         {1000, 949},
                         {1024, 1024}}) {
    EXPECT_EQ(tables.square[e.at + 1024], e.is) << e.at;
  }
  for (int i = 1; i < 2049; ++i) EXPECT_GE(tables.square[i], tables.square[i - 1]) << i - 1024;
  const ToneTable gamma = gammaTable();
  for (const Entry& e : {Entry{0, 0},
                         {1, 13},
                         {2, 22},
                         {3, 28},
                         {10, 56},
                         {64, 138},
                         {128, 188},
                         {200, 230},
                         {254, 255},
                         {255, 255}}) {
    EXPECT_EQ(gamma[static_cast<size_t>(e.at)], e.is) << e.at;
  }
}

// What CIELAB in these integers costs when no chroma changes.
TEST(Vibrance, WayThereAndBackCostsAFewLevels) {
  simd::LabTables tables;
  fillLabTables(tables);
  for (int32_t i = -200; i <= 200; ++i) tables.chroma[i + 200] = i;
  const ToneTable gamma = gammaTable();
  double sum = 0, bias = 0;
  int most = 0;
  const std::vector<Rgb> colors = gridColors(5);
  for (const Rgb& c : colors) {
    uint8_t made[3] = {static_cast<uint8_t>(c.r), static_cast<uint8_t>(c.g),
                       static_cast<uint8_t>(c.b)};
    simd::plainForm<simd::HueRows>().changeChroma(made, made + 1, made + 2, 1, tables);
    const int was[3] = {c.r, c.g, c.b};
    for (size_t k = 0; k < 3; ++k) {
      const int error = gamma[made[k]] - was[k];
      sum += std::abs(error);
      bias += error;
      most = std::max(most, std::abs(error));
    }
  }
  const double count = 3.0 * static_cast<double>(colors.size());
  RecordProperty("mean", std::to_string(sum / count));
  RecordProperty("bias", std::to_string(bias / count));
  RecordProperty("most", most);
  EXPECT_LT(sum / count, 4.0);
  EXPECT_LT(std::abs(bias / count), 1.5);
  EXPECT_LT(most, 64);
}

TEST(Vibrance, GreysStayNearGreyAndEndsStay) {
  std::vector<Rgb> greys;
  for (int v = 0; v < 256; ++v) greys.push_back({v, v, v});
  for (const int vibrance : {-100, -20, 1, 50, 100}) {
    const auto made = through(kVibrance, QPXVibranceParam{vibrance}, greys);
    EXPECT_EQ(made[0], greys[0]);
    EXPECT_EQ(made[255], greys[255]);
    for (size_t v = 0; v < 256; ++v) {
      EXPECT_LE(chromaOf(made[v]), v < 24 ? 13 : 5) << v;
      EXPECT_NEAR(made[v].g, greys[v].g, v < 24 ? 14 : 6) << v;
    }
  }
}

TEST(Vibrance, WeakColorsGainMoreThanStrongOnesAndSkinLessThanSkies) {
  const auto gain = [](const Rgb& c, int vibrance) {
    return static_cast<double>(chromaOf(through(kVibrance, QPXVibranceParam{vibrance}, c))) /
           chromaOf(through(kVibrance, QPXVibranceParam{1}, c));
  };
  const Rgb paleSky = {140, 160, 180}, strongSky = {20, 90, 210}, skin = {215, 170, 145};
  EXPECT_GT(gain(paleSky, 80), 1.3);
  EXPECT_LT(gain(strongSky, 80), gain(paleSky, 80) - 0.15);
  EXPECT_LT(gain(skin, 80), gain(paleSky, 80) - 0.1);
  EXPECT_GT(gain(skin, 80), 1.05);
  EXPECT_LT(gain(paleSky, -80), 0.5);
}

TEST(VibranceSaturation, BothSlidersCountAndNoSaturationIsGrey) {
  const Rgb leaf = {90, 140, 60};
  const int was = chromaOf(through(kVibranceSaturation, QPXVibranceSaturationParam{1, 0}, leaf));
  int before = 0;
  for (const int saturation : {-100, -60, -20, 20, 60, 100}) {
    const auto made = through(kVibranceSaturation, QPXVibranceSaturationParam{0, saturation}, leaf);
    EXPECT_GE(chromaOf(made), before);
    before = chromaOf(made);
    if (saturation == -100) {
      EXPECT_LE(before, 4);
    }
  }
  EXPECT_GT(before, was);
  EXPECT_EQ(through(kVibranceSaturation, QPXVibranceSaturationParam{70, 0}, leaf),
            through(kVibrance, QPXVibranceParam{70}, leaf));
}

TEST(HueEffects, SetupWithoutMemoryAnswersFourAndLeaksNothing) {
  const int64_t live = FailingMemory::liveBlocks();
  const auto setUp = [](uint32_t id, const auto& record) {
    KernelFrame frame(QPX_FORMAT_BGR24);
    FailingMemory::failOnly(1);
    const int32_t result = frame.setUp(id, record);
    FailingMemory::reset();
    return result;
  };
  EXPECT_EQ(setUp(kHsbAdjust, QPXHsbAdjustParam{}), QPX_NO_MEMORY);
  EXPECT_EQ(setUp(kColorRange, QPXColorRangeParam{}), QPX_NO_MEMORY);
  EXPECT_EQ(setUp(kVibrance, QPXVibranceParam{5}), QPX_NO_MEMORY);
  EXPECT_EQ(setUp(kVibranceSaturation, QPXVibranceSaturationParam{0, 5}), QPX_NO_MEMORY);
  EXPECT_EQ(setUp(kSaturation, QPXSaturationParam{5}), QPX_OK);
  EXPECT_EQ(FailingMemory::liveBlocks(), live);
}

struct Named {
  Kernel kernel;
  uint32_t id, format;
};
constexpr Named kNamed[] = {
    {byName<Saturation_RGB>, kSaturation, QPX_FORMAT_BGRA32},
    {byName<Saturation_NV21>, kSaturation, QPX_FORMAT_NV21},
    {byName<HSLColor_RGB>, kColorRange, QPX_FORMAT_RGB24},
    {byName<NaturalSaturation_RGB>, kVibrance, QPX_FORMAT_RGBA32},
    {byName<HSBAdjust_RGB>, kHsbAdjust, QPX_FORMAT_BGR24},
    {byName<NewNaturalSaturation_RGB>, kVibranceSaturation, QPX_FORMAT_BGR24}};

void expectNamed(const Named& named) {
  std::array<int32_t, 49> record = {40, 30, 20, 10};
  if (named.id == kColorRange) record[0] = 5;
  Picture source(named.format, 40, 6, Placement::exact);
  scramble(source, 3);
  Picture byEffect(source), called(source);
  const auto frame = frameOf(source, named.id, record);
  ASSERT_EQ(frame->run(source, byEffect, wholeOf(source)), QPX_OK);
  ASSERT_EQ(frame->run(named.kernel, source, called, MRect{-5, -5, 400, 60}), QPX_OK);
  EXPECT_FALSE(byEffect.firstDifference(called).has_value());
  EXPECT_TRUE(byEffect.firstDifference(source).has_value());

  frame->stage().effectId = kSaturation + 0x100;
  EXPECT_EQ(frame->run(named.kernel, source, called, wholeOf(source)), QPX_BAD_PARAM);

  const uint32_t other = named.format == QPX_FORMAT_NV21 ? QPX_FORMAT_BGR24 : QPX_FORMAT_NV21;
  Picture strange(other, 40, 6, Placement::exact);
  scramble(strange, 3);
  Picture left(strange);
  const auto strangeFrame = frameOf(strange, named.id, record);
  EXPECT_EQ(strangeFrame->run(named.kernel, strange, left, wholeOf(strange)), QPX_OK);
  EXPECT_FALSE(strange.firstDifference(left).has_value());
}

TEST(HueEffects, KernelsByNameAreTheEffectsAndRefuseOtherStagesAndFormats) {
  for (const Named& named : kNamed) expectNamed(named);
}

}  // namespace
}  // namespace qpx::testing
