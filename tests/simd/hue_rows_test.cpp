// Rows of hue, saturation and lightness: plain forms against the arithmetic written out, vector
// forms against plain ones, and what rows leave alone.
#include "simd/hue_rows.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <vector>

#include "simd/row_cases.h"
#include "simd/target_test.h"
#include "simd/tint_math.h"
#include "support/sweep.h"

namespace qpx::simd {
namespace {

struct Rgb {
  int r, g, b;
  bool operator==(const Rgb&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Rgb& c) {
  return out << "(" << c.r << ", " << c.g << ", " << c.b << ")";
}

int clamp255(int value) { return value < 0 ? 0 : value > 255 ? 255 : value; }

class Noise {
 public:
  int next(int low, int high) {
    state_ = state_ * 6364136223846793005u + 1442695040888963407u;
    return low + static_cast<int>((state_ >> 33) % static_cast<uint64_t>(high - low + 1));
  }

 private:
  uint64_t state_ = 88172645463325252u;
};

// All greys, all colours of few levels, near greys, and a large random sample.
const std::vector<Rgb>& sampleColors() {
  static const std::vector<Rgb> colors = [] {
    std::vector<Rgb> all;
    for (int v = 0; v < 256; ++v) all.push_back({v, v, v});
    constexpr int kLevels[] = {0, 1, 2, 63, 127, 128, 129, 200, 253, 254, 255};
    for (int r : kLevels) {
      for (int g : kLevels) {
        for (int b : kLevels) all.push_back({r, g, b});
      }
    }
    Noise noise;
    for (int i = 0; i < sweepCount(40000); ++i) {
      const int v = noise.next(2, 253);
      all.push_back({v + noise.next(-2, 2), v + noise.next(-2, 2), v + noise.next(-2, 2)});
    }
    for (int i = 0; i < sweepCount(200000); ++i) {
      all.push_back({noise.next(0, 255), noise.next(0, 255), noise.next(0, 255)});
    }
    return all;
  }();
  return colors;
}

// Step(r, g, b, count) over all of the sample.
template <typename Step>
std::vector<Rgb> made(const Step& step) {
  const auto& colors = sampleColors();
  std::vector<uint8_t> r, g, b;
  for (const Rgb& c : colors) {
    r.push_back(static_cast<uint8_t>(c.r));
    g.push_back(static_cast<uint8_t>(c.g));
    b.push_back(static_cast<uint8_t>(c.b));
  }
  step(r.data(), g.data(), b.data(), static_cast<ptrdiff_t>(r.size()));
  std::vector<Rgb> result;
  for (size_t i = 0; i < r.size(); ++i) result.push_back({r[i], g[i], b[i]});
  return result;
}

template <typename Expected, typename Step>
void expectMade(const Expected& expected, const Step& step) {
  const auto& colors = sampleColors();
  const std::vector<Rgb> actual = made(step);
  for (size_t i = 0; i < colors.size(); ++i) {
    ASSERT_EQ(actual[i], expected(colors[i])) << "of " << colors[i];
  }
}

// Three tables over the hue circle, without pattern, past their limits in places.
struct HueCurves {
  std::array<int, 361> light, saturation, turn;

  explicit HueCurves(int reach) {
    Noise noise;
    for (size_t h = 0; h < 361; ++h) {
      light[h] = noise.next(-reach, reach);
      saturation[h] = noise.next(-reach, reach);
      turn[h] = noise.next(-360, 360);
    }
    light[0] = 300;  // of greys and reds
  }

  HueChanges changes() const {
    HueChanges result;
    for (int h = 0; h < 361; ++h) {
      const size_t i = static_cast<size_t>(h);
      result.set(h, light[i], saturation[i], turn[i]);
    }
    return result;
  }
};

int literalHue(int r, int g, int b) {
  const int mx = std::max(r, std::max(g, b)), mn = std::min(r, std::min(g, b)), d = mx - mn;
  if (d == 0) return 0;
  const int reciprocal = (60 << 10) / d;
  int h;
  if (mx == r)
    h = reciprocal * (g - b);
  else if (mx == g)
    h = reciprocal * (b - r) + (120 << 10);
  else
    h = reciprocal * (r - g) + (240 << 10);
  h >>= 10;
  if (h < 0) h += 360;
  if (h > 360) h -= 360;
  return h;
}

Rgb literalHueChange(Rgb color, const HueCurves& curves) {
  int c[3] = {color.r, color.g, color.b};
  const int h = literalHue(c[0], c[1], c[2]);
  const size_t at = static_cast<size_t>(h);
  int mx = *std::max_element(c, c + 3), mn = *std::min_element(c, c + 3);
  int k = curves.light[at];
  if (k > 1024) k = 1024;
  if (k < -1024) k = -1024;
  for (int& v : c) {
    v = k > 0 ? (k * (mn - v) + (v << 10) + 512) >> 10 : (k * (v - mx) + (v << 10) + 512) >> 10;
    v = clamp255(v);
  }
  mx = *std::max_element(c, c + 3);
  mn = *std::min_element(c, c + 3);
  const int sum = mx + mn, l = sum >> 1;
  int s = 0;
  if (mx != mn) {
    s = (l & 128) != 0 ? (((mx - mn) << 18) / (511 - sum)) >> 10 : (((mx - mn) << 18) / sum) >> 10;
  }
  s = clamp255(s);
  int q = curves.saturation[at], e;
  if (q < -1024) {
    e = -255;
  } else {
    int base = 0;
    if (q > 1024) {
      e = 255;
      base = s;
    } else {
      e = (q * 255) >> 10;
      base = s + e < 255 ? 255 - e : s;
    }
    if (e > 0) {
      const int quotient = 65025 / (base + 1);
      e = quotient == 254 ? 0 : quotient - 255;
    }
  }
  if (e != 0) {
    for (int& v : c) v = clamp255((e * (v - l) + v * 256 + 128) >> 8);
  }
  mx = *std::max_element(c, c + 3);
  mn = *std::min_element(c, c + 3);
  int h2 = literalHue(c[0], c[1], c[2]) + curves.turn[at];
  if (h2 < 0) h2 += 360;
  if (h2 > 360) h2 -= 360;
  const int scaled = h2 * 273, sector = scaled >> 14;
  int f = h2 - 60 * sector;
  if ((scaled & (1 << 14)) != 0) f = 60 - f;
  const int mid = ((mx - mn) * f * 273 + (mn << 14)) >> 14;
  switch (sector) {
    case 0:
      return {mx, mid, mn};
    case 1:
      return {mid, mx, mn};
    case 2:
      return {mn, mx, mid};
    case 3:
      return {mn, mid, mx};
    case 4:
      return {mid, mn, mx};
    default:
      return {mx, mn, mid};
  }
}

TEST(PlainHueRows, ChangesByHueAreTheWrittenSteps) {
  for (const int reach : {0, 1024, 1500}) {
    const HueCurves curves(reach);
    const HueChanges changes = curves.changes();
    SCOPED_TRACE(reach);
    expectMade([&](const Rgb& c) { return literalHueChange(c, curves); },
               [&](uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t n) {
                 plainForm<HueRows>().changeHues(r, g, b, n, changes);
               });
  }
}

// By hand: (200, 100, 50) has hue 20, mean 125, saturation 150 * 2^8 / 250 = 153. With 512/1024 of
// saturation e is 127 and 153 + 127 is not below 255: 65025 / 154 - 255 = 167. Red gets
// (167 * 75 + 200 * 256 + 128) >> 8 = 249, green (167 * -25 + ...) 84, blue 1. Their hue is
// (247 * 83 >> 10) = 20, turned by 40 it is 60: the middle is (248 * 60 * 273 + 2^14) >> 14 = 248.
TEST(PlainHueRows, OneColorByHand) {
  HueChanges changes;
  for (int h = 0; h < 361; ++h) changes.set(h, 0, 512, 40);
  uint8_t r = 200, g = 100, b = 50;
  plainForm<HueRows>().changeHues(&r, &g, &b, 1, changes);
  EXPECT_EQ((Rgb{r, g, b}), (Rgb{249, 248, 1}));
}

TEST(PlainHueRows, FullSaturationStays) {
  HueChanges changes;
  for (int h = 0; h < 361; ++h) changes.set(h, 0, 1024, 0);
  uint8_t r = 255, g = 0, b = 0;
  plainForm<HueRows>().changeHues(&r, &g, &b, 1, changes);
  EXPECT_EQ((Rgb{r, g, b}), (Rgb{255, 0, 0}));
}

struct HslRange {
  int start, count;
};
constexpr HslRange kRanges[] = {{315, 80},  {331, 108}, {25, 80},   {45, 120},
                                {120, 100}, {160, 140}, {200, 140}, {270, 90}};

int literalHsvHue(int r, int g, int b) {
  const int mx = std::max(r, std::max(g, b)), mn = std::min(r, std::min(g, b));
  if (mx == mn) return 0;
  const int reciprocal = 32768 / (mx - mn);
  int h;
  if (mx == r)
    h = (reciprocal * (g - b)) >> 5;
  else if (mx == g)
    h = ((reciprocal * (b - r)) >> 5) + 2048;
  else
    h = ((reciprocal * (r - g)) >> 5) + 4096;
  h = (h * 60) >> 10;
  return h < 0 ? h + 360 : h;
}

Rgb literalFromHsv(int h, int s, int v) {
  const auto table = [](int i) { return clamp255(i); };
  const int hold = table(((255 - s) * v) >> 8);
  if (h == 360) return {v, hold, hold};
  const int sector = (h * 546) >> 15, f = h - 60 * sector;
  const int rising = table(((255 - s + ((s * f * 546) >> 15)) * v) >> 8);
  const int falling = table(((255 - ((s * f * 546) >> 15)) * v) >> 8);
  switch (sector) {
    case 0:
      return {v, rising, hold};
    case 1:
      return {falling, v, hold};
    case 2:
      return {hold, v, rising};
    case 3:
      return {hold, falling, v};
    case 4:
      return {rising, hold, v};
    default:
      return {v, hold, falling};
  }
}

// A range with maps of no pattern.
struct RangeMaps {
  HslRange range;
  std::vector<int> hueMap, weight;
  std::array<uint8_t, 256> saturation;

  explicit RangeMaps(const HslRange& r) : range(r) {
    Noise noise;
    for (int p = 0; p < range.count; ++p) {
      hueMap.push_back(noise.next(0, range.count - 1));
      weight.push_back(noise.next(0, 1024));
    }
    for (uint8_t& s : saturation) s = static_cast<uint8_t>(noise.next(0, 255));
  }

  RangeChanges changes(int light) const {
    RangeChanges result;
    for (int h = 0; h < 361; ++h) result.leave(h);
    for (int p = 0; p < range.count; ++p) {
      const int turned = hueMap[static_cast<size_t>(p)], hue = range.start + turned;
      result.set((range.start + p) % 360, hue > 360 ? hue - 360 : hue,
                 weight[static_cast<size_t>(turned)]);
    }
    std::copy(saturation.begin(), saturation.end(), result.saturation);
    result.light = light;
    return result;
  }
};

Rgb literalRangeChange(const Rgb& c, const RangeMaps& maps, int light) {
  const int mx = std::max(c.r, std::max(c.g, c.b)), mn = std::min(c.r, std::min(c.g, c.b));
  const int h = literalHsvHue(c.r, c.g, c.b);
  int p = (h - maps.range.start + 360) % 360;
  if (p >= maps.range.count) return c;
  const int s0 = mx == 0 ? 0 : clamp255(((32768 / mx) * (mx - mn)) >> 7);
  p = maps.hueMap[static_cast<size_t>(p)];
  const int w = maps.weight[static_cast<size_t>(p)];
  const int s = clamp255(s0 + ((w * (maps.saturation[static_cast<size_t>(s0)] - s0)) >> 10));
  const int bump = (16384 + (mx - 128) * (128 - mx)) >> 8;
  const int share = (w * std::min(4 * s0, 256)) >> 8;
  const int v = clamp255(mx + ((light * bump * share) >> 18));
  const int hue = p + maps.range.start;
  return literalFromHsv(hue > 360 ? hue - 360 : hue, s, v);
}

TEST(PlainHueRows, ChangesOfARangeAreTheWrittenSteps) {
  for (const HslRange& range : kRanges) {
    const RangeMaps maps(range);
    for (const int light : {0, 256, -256, 77}) {
      const RangeChanges changes = maps.changes(light);
      SCOPED_TRACE(::testing::Message() << "from " << range.start << ", light " << light);
      expectMade([&](const Rgb& c) { return literalRangeChange(c, maps, light); },
                 [&](uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t n) {
                   plainForm<HueRows>().changeRange(r, g, b, n, changes);
                 });
    }
  }
}

Rgb literalSaturation(const Rgb& c, int a) {
  const auto recip = [](int i) { return (1 << 20) / (i + 1); };
  const int mx = std::max(c.r, std::max(c.g, c.b)), mn = std::min(c.r, std::min(c.g, c.b));
  const int sum = mx + mn, l = sum >> 1, d = mx - mn;
  const int sl = (recip(sum < 256 ? sum : 512 - sum) * d) >> 10;
  const int alpha = a > 0 ? recip(a + sl < 1024 ? 1024 - a : sl) - 1024 : a;
  const auto channel = [&](int v) { return clamp255(v + ((alpha * (v - l)) >> 10)); };
  return {channel(c.r), channel(c.g), channel(c.b)};
}

constexpr int kAmounts[] = {-1024, -513, -10, -1, 0, 1, 5, 100, 300, 512};

TEST(PlainHueRows, SaturationIsTheWrittenSteps) {
  for (const int amount : kAmounts) {
    SCOPED_TRACE(amount);
    expectMade([&](const Rgb& c) { return literalSaturation(c, amount); },
               [&](uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t n) {
                 plainForm<HueRows>().saturate(r, g, b, n, amount);
               });
  }
}

Rgb literalBrightness(const Rgb& c, const uint8_t* tones, int e) {
  const int mx = std::max(c.r, std::max(c.g, c.b)), mn = std::min(c.r, std::min(c.g, c.b));
  if (mx == 0) return c;
  const int s = clamp255(((32768 / mx) * (mx - mn)) >> 7);
  const int p = ((mx < 129 ? mx : 255 - mx) * e) >> 10;
  const int v = tones[mx], left = s - p;
  if (left < 0) return {v, v, v};
  return literalFromHsv(literalHsvHue(c.r, c.g, c.b), left, v);
}

constexpr int kUnits[] = {0, 1, 179, 700, 1280};

TEST(PlainHueRows, MoreLightIsTheWrittenSteps) {
  const auto& tones = testTables()[0];
  for (const int units : kUnits) {
    SCOPED_TRACE(units);
    expectMade([&](const Rgb& c) { return literalBrightness(c, tones.data(), units); },
               [&](uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t n) {
                 plainForm<HueRows>().brighten(r, g, b, n, tones.data(), units);
               });
  }
}

DegreeWords noisyShares() {
  DegreeWords shares;
  Noise noise;
  for (int h = 0; h < kDegrees; ++h)
    shares.set(h, noise.next(0, 3) == 0 ? 256 : noise.next(0, 256));
  return shares;
}

// Greys and mask of the sample by place.
struct FadeInputs {
  std::vector<uint8_t> grey, mask;

  FadeInputs() {
    Noise noise;
    for (size_t i = 0; i < sampleColors().size(); ++i) {
      grey.push_back(static_cast<uint8_t>(noise.next(0, 255)));
      mask.push_back(static_cast<uint8_t>(noise.next(0, 2) == 0 ? 255 : noise.next(0, 255)));
    }
  }
};

int literalWholeHue(const Rgb& c) {
  const int mx = std::max(c.r, std::max(c.g, c.b)), d = mx - std::min(c.r, std::min(c.g, c.b));
  if (d == 0) return 0;
  if (mx == c.r) {
    const int h = 60 * (c.g - c.b) / d;
    return h < 0 ? h + 360 : h;
  }
  return mx == c.g ? 120 + 60 * (c.b - c.r) / d : 240 + 60 * (c.r - c.g) / d;
}

TEST(PlainHueRows, FadesAreTheWrittenSteps) {
  const DegreeWords shares = noisyShares();
  const FadeInputs inputs;
  for (const bool masked : {false, true}) {
    size_t at = 0;
    const auto expected = [&](const Rgb& c) {
      int share = shares.at(literalWholeHue(c));
      if (masked) share = share * inputs.mask[at] / 255;
      const int grey = inputs.grey[at++];
      const auto faded = [&](int v) { return v + (((grey - v) * share + 128) >> 8); };
      return Rgb{faded(c.r), faded(c.g), faded(c.b)};
    };
    expectMade(expected, [&](uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t n) {
      plainForm<HueRows>().fadeHues(r, g, b, n, inputs.grey.data(),
                                    masked ? inputs.mask.data() : nullptr, shares);
    });
  }
}

// At their own luma light yellows and cyans leave a byte: 256 is 255, not 0.
TEST(PlainHueRows, TintsAreClamped) {
  int beyond = 0;
  for (int i = 0; i < 18 * 18 * 18; ++i) {
    uint8_t c[3] = {static_cast<uint8_t>(i % 18 * 15), static_cast<uint8_t>(i / 18 % 18 * 15),
                    static_cast<uint8_t>(i / 324 * 15)};
    const auto grey = static_cast<uint8_t>((77 * c[0] + 151 * c[1] + 28 * c[2] + 128) >> 8);
    const TintedColor color = tintedGrey(grey, {c[0], c[1], c[2]});
    const int32_t made[3] = {color.red, color.green, color.blue};
    plainForm<HueRows>().tintGreys(c, c + 1, c + 2, 1, &grey);
    for (size_t k = 0; k < 3; ++k) {
      ASSERT_EQ(c[k], std::clamp(made[k], 0, 255)) << i;
      if (made[k] != c[k]) ++beyond;
    }
  }
  EXPECT_GT(beyond, 0);
}

LabTables noisyLab() {
  LabTables tables;
  Noise noise;
  for (int i = 0; i < 256; ++i) tables.linear[i] = std::min(1024, 4 * i + noise.next(0, 4));
  for (int i = 0; i <= 1024; ++i) tables.root[i] = std::min(1024, 141 + i * 7 / 8);
  for (int i = -200; i <= 200; ++i) tables.chroma[i + 200] = noise.next(-200, 200);
  for (int i = -1024; i <= 1024; ++i) tables.square[i + 1024] = std::max(i, -150 + i / 20);
  return tables;
}

Rgb literalLab(const Rgb& c, const LabTables& t) {
  const int r = t.linear[c.r], g = t.linear[c.g], b = t.linear[c.b];
  const int X = (14289 * r + 12618 * g + 4689 * b) >> 15;
  const int Y = (7291 * r + 23491 * g + 1986 * b) >> 15;
  const int Z = (456 * r + 3182 * g + 23402 * b) >> 15;
  const int fx = t.root[(X * 1062) >> 10], fy = t.root[Y], fz = t.root[(Z * 1241) >> 10];
  const int L = (116 * fy) >> 10;
  const auto map = [&](int i) { return t.chroma[(i < -200 ? -200 : i > 200 ? 200 : i) + 200]; };
  const int a = map(((fx - fy) * 500) >> 10), bb = map(((fy - fz) * 200) >> 10);
  const int y2 = 9 * L, x2 = y2 + 2 * a, z2 = y2 - 5 * bb;
  const auto back = [&](int f) { return t.square[(f > 1024 ? 1024 : f) + 1024]; };
  const int X2 = (back(x2) * 987) >> 10, Y2 = back(y2), Z2 = (back(z2) * 845) >> 10;
  return {clamp255((102698 * X2 - 52986 * Y2 - 16079 * Z2) >> 17),
          clamp255((-32073 * X2 + 62787 * Y2 + 1094 * Z2) >> 17),
          clamp255((2356 * X2 - 7504 * Y2 + 46046 * Z2) >> 17)};
}

TEST(PlainHueRows, ChromaGoesTheWrittenWay) {
  const LabTables tables = noisyLab();
  expectMade([&](const Rgb& c) { return literalLab(c, tables); },
             [&](uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t n) {
               plainForm<HueRows>().changeChroma(r, g, b, n, tables);
             });
}

class HueRowsTest : public TargetTest {};
QPX_FOR_EACH_TARGET(HueRowsTest);

// Each row of the table with settings of its own.
template <typename Body>
void forEachRow(const Body& body) {
  for (const int reach : {0, 1024, 1500}) {
    const HueChanges changes = HueCurves(reach).changes();
    body("changeHues", [&](const HueRows& rows, uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t n) {
      rows.changeHues(r, g, b, n, changes);
    });
  }
  for (const HslRange& range : kRanges) {
    const RangeChanges changes = RangeMaps(range).changes(range.start % 2 == 0 ? 256 : -200);
    body("changeRange", [&](const HueRows& rows, uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t n) {
      rows.changeRange(r, g, b, n, changes);
    });
  }
  for (const int amount : kAmounts) {
    body("saturate", [&](const HueRows& rows, uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t n) {
      rows.saturate(r, g, b, n, amount);
    });
  }
  for (const int units : {179, 1280}) {
    body("brighten", [&](const HueRows& rows, uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t n) {
      rows.brighten(r, g, b, n, testTables()[1].data(), units);
    });
  }
  const DegreeWords shares = noisyShares();
  const FadeInputs inputs;
  for (const uint8_t* mask : {static_cast<const uint8_t*>(nullptr), inputs.mask.data()}) {
    body("fadeHues", [&](const HueRows& rows, uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t n) {
      rows.fadeHues(r, g, b, n, inputs.grey.data(), mask, shares);
    });
  }
  body("tintGreys", [&](const HueRows& rows, uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t n) {
    rows.tintGreys(r, g, b, n, inputs.grey.data());
  });
  const int32_t mixers[2][3][4] = {
      {{280, 25, -51, 0}, {0, 255, 0, 130050}, {-25, 51, 229, -65025}},
      {{8160, 8160, 8160, 8160 * 255}, {-8160, 1, -3, -8160 * 255}, {32767, -32768, 100, 127}}};
  for (const auto& mixer : mixers) {
    body("mixColors", [&](const HueRows& rows, uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t n) {
      rows.mixColors(r, g, b, n, mixer);
    });
  }
  body("mixWeighted", [&](const HueRows& rows, uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t n) {
    rows.mixWeighted(r, g, b, r, n);
  });
  const LabTables tables = noisyLab();
  body("changeChroma", [&](const HueRows& rows, uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t n) {
    rows.changeChroma(r, g, b, n, tables);
  });
}

TEST_P(HueRowsTest, VectorFormsGiveThePlainColors) {
  forEachRow([](const char* name, const auto& row) {
    const auto through = [&](const HueRows& rows) {
      return made([&](uint8_t* r, uint8_t* g, uint8_t* b, ptrdiff_t n) { row(rows, r, g, b, n); });
    };
    const std::vector<Rgb> plain = through(plainForm<HueRows>());
    const std::vector<Rgb> vector = through(vectorForm<HueRows>());
    for (size_t i = 0; i < plain.size(); ++i) {
      ASSERT_EQ(vector[i], plain[i]) << name << " of " << sampleColors()[i];
    }
  });
}

TEST_P(HueRowsTest, EveryCountAndAlignmentGivesThePlainBytesAndNoOthers) {
  constexpr size_t kGuard = 67;
  forEachRow([&](const char* name, const auto& row) {
    for (ptrdiff_t count = 0; count <= 140; count += count < 70 ? 1 : 29) {
      const size_t start = kGuard + static_cast<size_t>(count) % 5;
      std::array<std::vector<uint8_t>, 3> before;
      for (uint32_t c = 0; c < 3; ++c) {
        for (uint32_t i = 0; i < start + static_cast<size_t>(count) + kGuard; ++i) {
          before[c].push_back(noise(i, c + 3));
        }
      }
      auto plain = before, vector = before;
      row(plainForm<HueRows>(), &plain[0][start], &plain[1][start], &plain[2][start], count);
      row(vectorForm<HueRows>(), &vector[0][start], &vector[1][start], &vector[2][start], count);
      ASSERT_EQ(vector, plain) << name << ", count " << count;
      for (size_t c = 0; c < 3; ++c) {
        const auto end = static_cast<ptrdiff_t>(start) + count;
        ASSERT_TRUE(std::equal(before[c].begin(), before[c].begin() + static_cast<ptrdiff_t>(start),
                               vector[c].begin()));
        ASSERT_TRUE(std::equal(before[c].begin() + end, before[c].end(), vector[c].begin() + end));
      }
    }
  });
}

}  // namespace
}  // namespace qpx::simd
