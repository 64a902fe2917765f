// Vector rows of the blends against plain ones: whole domains, then every length and misalignment.
#include "simd/blend_rows.h"

#include <qpx/engine.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <vector>

#include "simd/row_cases.h"
#include "simd/target_test.h"
#include "support/sweep.h"

namespace qpx::simd {
namespace {

constexpr size_t kAll = 65536;
using Lay = BlendRows::Lay BlendRows::*;

struct NamedLay {
  const char* name;
  Lay row;
};

constexpr NamedLay kLays[] = {{"normal", &BlendRows::layNormal},
                              {"screen", &BlendRows::layScreen},
                              {"overlay", &BlendRows::layOverlay},
                              {"soft", &BlendRows::laySoft},
                              {"multiply", &BlendRows::layMultiply}};

constexpr float kOddOpacities[] = {-0.5f,
                                   1.5f,
                                   300.0f,
                                   1e-40f,
                                   std::numeric_limits<float>::quiet_NaN(),
                                   std::numeric_limits<float>::infinity()};

std::vector<float> opacities() {
  std::vector<float> list;
  for (int i = 0; i <= 20; ++i) list.push_back(static_cast<float>(i) * 0.05f);
  for (int i = 0; i <= 100; i += 7) list.push_back(static_cast<float>(i) / 100.0f);
  list.insert(list.end(), std::begin(kOddOpacities), std::end(kOddOpacities));
  return list;
}

// Every pair of bytes: base in the low half of the index, top in the high one.
struct AllPairs {
  std::vector<uint8_t> base, top;

  AllPairs() : base(kAll), top(kAll) {
    for (size_t i = 0; i < kAll; ++i) {
      base[i] = static_cast<uint8_t>(i);
      top[i] = static_cast<uint8_t>(i >> 8);
    }
  }
};

testing::AssertionResult sameRows(const std::vector<uint8_t>& expected,
                                  const std::vector<uint8_t>& actual) {
  const auto [e, a] = std::mismatch(expected.begin(), expected.end(), actual.begin());
  if (e == expected.end()) return testing::AssertionSuccess();
  const auto at = e - expected.begin();
  return testing::AssertionFailure()
         << "sample " << at << " (base " << (at & 255) << ", top " << (at >> 8) << "): expected "
         << int{*e} << ", actual " << int{*a};
}

class BlendRowTest : public TargetTest {
 protected:
  static const BlendRows& vectorForm() { return simd::vectorForm<BlendRows>(); }
  static const BlendRows& plainForm() { return simd::plainForm<BlendRows>(); }
};
QPX_FOR_EACH_TARGET(BlendRowTest);

TEST_P(BlendRowTest, LayersOfAllPairsAtEveryOpacity) {
  const AllPairs pairs;
  std::vector<uint8_t> expected(kAll), actual(kAll);
  for (const NamedLay& lay : kLays) {
    for (const float opacity : opacities()) {
      (plainForm().*lay.row)(pairs.base.data(), pairs.top.data(), nullptr, expected.data(), kAll,
                             opacity);
      (vectorForm().*lay.row)(pairs.base.data(), pairs.top.data(), nullptr, actual.data(), kAll,
                              opacity);
      ASSERT_TRUE(sameRows(expected, actual)) << lay.name << " at " << opacity;
    }
  }
}

TEST_P(BlendRowTest, MaskedLayersOfAllPairs) {
  const AllPairs pairs;
  std::vector<uint8_t> expected(kAll), actual(kAll), mask(kAll);
  for (const NamedLay& lay : kLays) {
    for (const float opacity : {0.0f, 0.05f, 0.3f, 0.55f, 0.8f, 1.0f, 2.0f}) {
      for (const int m : {0, 1, 3, 64, 85, 127, 128, 191, 254, 255}) {
        std::fill(mask.begin(), mask.end(), static_cast<uint8_t>(m));
        (plainForm().*lay.row)(pairs.base.data(), pairs.top.data(), mask.data(), expected.data(),
                               kAll, opacity);
        (vectorForm().*lay.row)(pairs.base.data(), pairs.top.data(), mask.data(), actual.data(),
                                kAll, opacity);
        ASSERT_TRUE(sameRows(expected, actual)) << lay.name << " at " << opacity << ", mask " << m;
      }
    }
  }
}

// Masks that change from sample to sample, all of them.
TEST_P(BlendRowTest, LayersThroughVariedMasks) {
  const AllPairs pairs;
  std::vector<uint8_t> expected(kAll), actual(kAll), mask(kAll);
  for (uint32_t seed = 0; seed < 8; ++seed) {
    for (uint32_t i = 0; i < kAll; ++i) mask[i] = noise(i, seed);
    for (const NamedLay& lay : kLays) {
      const float opacity = static_cast<float>(seed + 1) / 8.0f;
      (plainForm().*lay.row)(pairs.base.data(), pairs.top.data(), mask.data(), expected.data(),
                             kAll, opacity);
      (vectorForm().*lay.row)(pairs.base.data(), pairs.top.data(), mask.data(), actual.data(), kAll,
                              opacity);
      ASSERT_TRUE(sameRows(expected, actual)) << lay.name << " at " << opacity;
    }
  }
}

TEST_P(BlendRowTest, PairsOfAllSamples) {
  const AllPairs pairs;
  std::vector<uint8_t> expected(kAll), actual(kAll);
  for (const auto row : {&BlendRows::multiplyShift, &BlendRows::lighten, &BlendRows::darken}) {
    (plainForm().*row)(pairs.base.data(), pairs.top.data(), expected.data(), kAll);
    (vectorForm().*row)(pairs.base.data(), pairs.top.data(), actual.data(), kAll);
    ASSERT_TRUE(sameRows(expected, actual));
  }
}

TEST_P(BlendRowTest, MovesOfAllPairsByEveryAmount) {
  const AllPairs pairs;
  std::vector<uint8_t> expected(kAll), actual(kAll);
  for (const auto row : {&BlendRows::moveApart, &BlendRows::drawTogether}) {
    for (int32_t amount = -8191; amount<8192; amount += amount> - 600 && amount < 600 ? 9 : 331) {
      (plainForm().*row)(pairs.base.data(), pairs.top.data(), expected.data(), kAll, amount);
      (vectorForm().*row)(pairs.base.data(), pairs.top.data(), actual.data(), kAll, amount);
      ASSERT_TRUE(sameRows(expected, actual)) << "amount " << amount;
    }
    for (const int32_t amount : {-512, -511, 0, 307, 440, 511, 512}) {
      (plainForm().*row)(pairs.base.data(), pairs.top.data(), expected.data(), kAll, amount);
      (vectorForm().*row)(pairs.base.data(), pairs.top.data(), actual.data(), kAll, amount);
      ASSERT_TRUE(sameRows(expected, actual)) << "amount " << amount;
    }
  }
}

constexpr HueWeights<double> kHueWeights[] = {{0.4, 0.6, 0.4, 0.6, 0.2, 0.8},
                                              {0.5, 0.5, 0.5, 0.5, 0.5, 0.5},
                                              {-1.3, 2.7, 0.1, -0.9, 3.3, 0.7},
                                              {1e8, -1e8, 1e8, 1e8, -1e8, 1e8},
                                              {1e300, -1e300, INFINITY, 0, NAN, 1}};

TEST_P(BlendRowTest, GreysOfAllColors) {
  const AllPairs pairs;  // green and red
  std::vector<uint8_t> blue(kAll), expected(kAll), actual(kAll);
  for (int b = 0; b < 256; b += sweepStep(3)) {
    std::fill(blue.begin(), blue.end(), static_cast<uint8_t>(b));
    const uint8_t *r = pairs.top.data(), *g = pairs.base.data();
    for (const auto row : {&BlendRows::lightness, &BlendRows::chalkBoardGrey}) {
      (plainForm().*row)(r, g, blue.data(), expected.data(), kAll);
      (vectorForm().*row)(r, g, blue.data(), actual.data(), kAll);
      ASSERT_TRUE(sameRows(expected, actual)) << "blue " << b;
    }
    for (const LumaWeights& weights : {kTintLuma, kLooksLuma, LumaWeights{256, 0, 0},
                                       LumaWeights{64, 160, 32}, LumaWeights{0, 255, 1}}) {
      plainForm().weighedLuma(r, g, blue.data(), expected.data(), kAll, weights);
      vectorForm().weighedLuma(r, g, blue.data(), actual.data(), kAll, weights);
      ASSERT_TRUE(sameRows(expected, actual)) << "blue " << b << ", weight " << weights.red;
    }
    for (const HueWeights<double>& weights : kHueWeights) {
      plainForm().hueGrey(r, g, blue.data(), expected.data(), kAll, weights);
      vectorForm().hueGrey(r, g, blue.data(), actual.data(), kAll, weights);
      ASSERT_TRUE(sameRows(expected, actual)) << "blue " << b << ", reds " << weights.reds;
    }
  }
}

TEST_P(BlendRowTest, FalloffOfEveryTerm) {
  std::vector<int32_t> terms;
  for (int32_t t = -600; t < 2600; ++t) terms.push_back(t);
  for (const int32_t t : {INT32_MIN, INT32_MIN + 1, -(1 << 30), 1 << 29, (1 << 29) + 1, 1 << 30,
                          INT32_MAX - 1, INT32_MAX}) {
    terms.push_back(t);
  }
  const ptrdiff_t count = static_cast<ptrdiff_t>(terms.size());
  std::vector<uint16_t> expected(terms.size()), actual(terms.size());
  for (const int32_t row : {0, 1, -200, 300, 1 << 28, -(1 << 28), (1 << 28) + 1, -(1 << 28) - 1,
                            1 << 29, INT32_MIN, INT32_MAX}) {
    plainForm().falloffWeights(row, terms.data(), expected.data(), count);
    vectorForm().falloffWeights(row, terms.data(), actual.data(), count);
    ASSERT_EQ(expected, actual) << "row " << row;
  }
}

TEST_P(BlendRowTest, ScaledSamplesOfEveryWeight) {
  std::vector<uint8_t> src(513), expected(513), actual(513);
  std::vector<uint16_t> weights(513);
  for (size_t w = 0; w <= 512; ++w) weights[w] = static_cast<uint16_t>(w);
  for (int c = 0; c < 256; ++c) {
    std::fill(src.begin(), src.end(), static_cast<uint8_t>(c));
    plainForm().scaleByFalloff(src.data(), weights.data(), expected.data(), 513);
    vectorForm().scaleByFalloff(src.data(), weights.data(), actual.data(), 513);
    ASSERT_EQ(expected, actual) << "sample " << c;
  }
}

// Distances around every square and over the whole range, where the root is 1 off most easily.
TEST_P(BlendRowTest, CornerWeightsOfEveryDistance) {
  constexpr ptrdiff_t kLength = 3001;
  std::vector<int32_t> expected(kLength), actual(kLength);
  for (const int64_t dx : {-1500, 0, 40000, -45900}) {
    for (const int64_t dy : {0, 1, 7, 1999, -20000, 32000}) {
      for (const int32_t farthest : {46000, 46001, 70000}) {
        const CornerRow row = {dx, dy, 1200, 0x100000 / (farthest - 1200), 300, farthest};
        const int64_t reach = std::max(std::abs(dx), std::abs(dx + kLength));
        if (reach * reach + dy * dy > int64_t{farthest} * farthest) continue;
        plainForm().cornerWeights(row, expected.data(), kLength);
        vectorForm().cornerWeights(row, actual.data(), kLength);
        ASSERT_EQ(expected, actual) << dx << ", " << dy << ", " << farthest;
      }
    }
  }
}

// With a scale of 1024 and no start the weight is the square of the distance itself. Far away,
// where floats are coarse, squares one below or at a whole distance's are told apart.
TEST_P(BlendRowTest, CornerWeightsTellDistancesApart) {
  constexpr int32_t kFirst = 43900, kCount = 2000;
  std::vector<int32_t> actual(kCount);
  for (int64_t dy = 0; dy < 620; ++dy) {
    const CornerRow row = {kFirst, dy, -1, 1024, 0, 46000};
    vectorForm().cornerWeights(row, actual.data(), kCount);
    for (int32_t i = 0; i < kCount; ++i) {
      const int64_t square = int64_t{kFirst + i} * (kFirst + i) + dy * dy;
      int64_t distance = kFirst + i;
      while ((distance + 1) * (distance + 1) <= square) ++distance;
      ASSERT_EQ(actual[static_cast<size_t>(i)], distance * distance) << kFirst + i << ", " << dy;
    }
  }
}

TEST_P(BlendRowTest, CornerMixOfAllPairs) {
  const AllPairs pairs;
  std::vector<uint8_t> expected(kAll), actual(kAll);
  std::vector<int32_t> weights(kAll);
  for (const int32_t amount : {0, 1, 512, 819, 1023, 1024}) {
    for (const int32_t weight : {0, 1, 1000, 0x80000, 0xFFFFF, 0x100000, 1025 * 1025}) {
      std::fill(weights.begin(), weights.end(), weight);
      plainForm().mixCorner(pairs.base.data(), pairs.top.data(), weights.data(), expected.data(),
                            kAll, amount);
      vectorForm().mixCorner(pairs.base.data(), pairs.top.data(), weights.data(), actual.data(),
                             kAll, amount);
      ASSERT_TRUE(sameRows(expected, actual)) << "amount " << amount << ", weight " << weight;
    }
  }
}

// One call of every row over four planes of bytes; wide inputs are made of the third.
using Call = std::function<void(const BlendRows&, const uint8_t* const*, uint8_t*, ptrdiff_t)>;

struct NamedCall {
  std::string name;
  int32_t inputs;  // byte rows that it reads
  Call call;
};

std::vector<NamedCall> allCalls() {
  std::vector<NamedCall> calls;
  for (const NamedLay& lay : kLays) {
    for (const float opacity : {1.0f, 0.3f}) {
      calls.push_back(
          {lay.name, 2,
           [=](const BlendRows& rows, const uint8_t* const* in, uint8_t* out, ptrdiff_t n) {
             (rows.*lay.row)(in[0], in[1], nullptr, out, n, opacity);
           }});
      calls.push_back(
          {std::string("masked ") + lay.name, 3,
           [=](const BlendRows& rows, const uint8_t* const* in, uint8_t* out, ptrdiff_t n) {
             (rows.*lay.row)(in[0], in[1], in[2], out, n, opacity);
           }});
    }
  }
  for (const auto row : {&BlendRows::multiplyShift, &BlendRows::lighten, &BlendRows::darken}) {
    calls.push_back({"pair", 2,
                     [=](const BlendRows& rows, const uint8_t* const* in, uint8_t* out,
                         ptrdiff_t n) { (rows.*row)(in[0], in[1], out, n); }});
  }
  for (const auto row : {&BlendRows::moveApart, &BlendRows::drawTogether}) {
    calls.push_back({"move", 2,
                     [=](const BlendRows& rows, const uint8_t* const* in, uint8_t* out,
                         ptrdiff_t n) { (rows.*row)(in[0], in[1], out, n, -307); }});
  }
  for (const auto row : {&BlendRows::lightness, &BlendRows::chalkBoardGrey}) {
    calls.push_back({"grey", 3,
                     [=](const BlendRows& rows, const uint8_t* const* in, uint8_t* out,
                         ptrdiff_t n) { (rows.*row)(in[0], in[1], in[2], out, n); }});
  }
  calls.push_back(
      {"luma", 3, [](const BlendRows& rows, const uint8_t* const* in, uint8_t* out, ptrdiff_t n) {
         rows.weighedLuma(in[0], in[1], in[2], out, n, kTintLuma);
       }});
  calls.push_back({"hue grey", 3,
                   [](const BlendRows& rows, const uint8_t* const* in, uint8_t* out, ptrdiff_t n) {
                     rows.hueGrey(in[0], in[1], in[2], out, n, kHueWeights[0]);
                   }});
  calls.push_back({"falloff", 1,
                   [](const BlendRows& rows, const uint8_t* const* in, uint8_t* out, ptrdiff_t n) {
                     std::vector<uint16_t> weights(static_cast<size_t>(std::max<ptrdiff_t>(n, 0)));
                     for (size_t i = 0; i < weights.size(); ++i) {
                       weights[i] = static_cast<uint16_t>(2 * noise(static_cast<uint32_t>(i), 5));
                     }
                     rows.scaleByFalloff(in[0], weights.data(), out, n);
                   }});
  calls.push_back(
      {"corner", 2, [](const BlendRows& rows, const uint8_t* const* in, uint8_t* out, ptrdiff_t n) {
         std::vector<int32_t> weights(static_cast<size_t>(std::max<ptrdiff_t>(n, 0)));
         rows.cornerWeights({-3, 60, 20, 9000, 100, 150}, weights.data(), n);
         rows.mixCorner(in[0], in[1], weights.data(), out, n, 800);
       }});
  return calls;
}

constexpr ptrdiff_t kLongest = 150;
constexpr size_t kGuard = 64;

// Rows are blocks of just their length, so that an address sanitizer sees reads outside, and the
// output has sentinels around it.
TEST_P(BlendRowTest, EveryLengthAndMisalignmentGivesThePlainBytes) {
  for (const NamedCall& one : allCalls()) {
    for (ptrdiff_t count = -1; count <= kLongest; ++count) {
      const size_t length = static_cast<size_t>(std::max<ptrdiff_t>(count, 0));
      for (size_t offset = 0; offset < 67; offset += 13) {
        std::vector<std::vector<uint8_t>> inputs;
        const uint8_t* in[3];
        for (uint32_t k = 0; k < 3; ++k) {
          std::vector<uint8_t>& row = inputs.emplace_back(offset + k + length);
          for (uint32_t i = 0; i < row.size(); ++i) row[i] = noise(i, 31 * k + 1);
        }
        for (size_t k = 0; k < 3; ++k) in[k] = inputs[k].data() + offset + k;
        std::vector<uint8_t> expected(length), out(length + offset + 2 * kGuard, 0xA5);
        one.call(plainForm(), in, expected.data(), count);
        uint8_t* row = out.data() + kGuard + offset;
        for (size_t i = 0; i < length; ++i) row[i] = static_cast<uint8_t>(~expected[i]);
        one.call(vectorForm(), in, row, count);
        ASSERT_TRUE(std::equal(expected.begin(), expected.end(), row))
            << one.name << ", count " << count << ", offset " << offset;
        std::fill_n(row, length, uint8_t{0xA5});
        ASSERT_EQ(static_cast<size_t>(std::count(out.begin(), out.end(), 0xA5)), out.size())
            << one.name << ", count " << count << ", offset " << offset;
      }
    }
  }
}

TEST_P(BlendRowTest, RowThatIsItsOwnOutputGivesThePlainBytes) {
  for (const NamedCall& one : allCalls()) {
    for (int32_t reused = 0; reused < one.inputs; ++reused) {
      for (ptrdiff_t count = 0; count <= kLongest; ++count) {
        const size_t length = static_cast<size_t>(count);
        std::vector<std::vector<uint8_t>> inputs(3, std::vector<uint8_t>(length));
        const uint8_t* in[3];
        for (uint32_t k = 0; k < 3; ++k) {
          for (uint32_t i = 0; i < length; ++i) inputs[k][i] = noise(i, 17 * k + 3);
          in[k] = inputs[k].data();
        }
        std::vector<uint8_t> expected(length);
        one.call(plainForm(), in, expected.data(), count);
        uint8_t* out = inputs[static_cast<size_t>(reused)].data();
        one.call(vectorForm(), in, out, count);
        ASSERT_TRUE(std::equal(expected.begin(), expected.end(), out))
            << one.name << " into input " << reused << ", count " << count;
      }
    }
  }
}

TEST(BlendRows, PlainFormsAreChosenOnDemand) {
  EXPECT_EQ(&blendRows(), &vectorForm<BlendRows>());
  EXPECT_NE(vectorForm<BlendRows>().layScreen, plainForm<BlendRows>().layScreen);
  QPX_UsePlainForms(1);
  EXPECT_EQ(&blendRows(), &plainForm<BlendRows>());
  QPX_UsePlainForms(0);
  EXPECT_EQ(&blendRows(), &vectorForm<BlendRows>());
}

}  // namespace
}  // namespace qpx::simd
