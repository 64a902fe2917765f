// Luma and chroma by weights: vector forms against the sums as written, over standards, lengths and
// the ends of all ranges.
#include <algorithm>
#include <random>
#include <vector>

#include "simd/convert_rows.h"
#include "simd/target_test.h"

namespace qpx::simd {
namespace {

using Bytes = std::vector<uint8_t>;

Bytes randomBytes(size_t size, uint32_t seed) {
  std::mt19937 random(seed);
  Bytes bytes(size);
  for (uint8_t& byte : bytes) {
    const uint32_t value = random();
    byte = (value >> 8 & 3) == 0 ? ((value & 1) != 0 ? 255 : 0) : static_cast<uint8_t>(value);
  }
  return bytes;
}

// Blue first.
struct Weights {
  int32_t y[4];
  RgbToChroma chroma;
};

constexpr Weights kWeights[] = {
    {{6391, 32910, 16763, 0x100000},
     {{28672, -18999, -9676, 0x800000}, {-4663, -24012, 28672, 0x800000}}},
    {{7471, 38470, 19595, 0},
     {{32768, -21710, -11058, 0x800000}, {-5329, -27439, 32768, 0x800000}}},
    {{4050, 40095, 11921, 0x100000},
     {{28672, -22099, -6573, 0x800000}, {-2629, -26044, 28672, 0x800000}}},
    {{4732, 46871, 13933, 0}, {{32768, -25258, -7510, 0x800000}, {-3005, -29766, 32768, 0x800000}}},
    // Low bytes that make up more than 16 bits.
    {{21743, 21630, 22015, 0}, {{127, 32639, 32639, 0}, {-21743, -21743, -21743, 0xFF0000}}},
    // The highest weights, and a sum that fills its byte.
    {{65151, 0, 0, 0x10000}, {{0, 65151, 0, 0xFF00}, {0, 0, -65151, 0xFF0000}}},
};

uint8_t sample(const uint8_t* pixel, const int32_t* w) {
  const int64_t sum = int64_t{w[0]} * pixel[0] + int64_t{w[1]} * pixel[1] +
                      int64_t{w[2]} * pixel[2] + int64_t{w[3]};
  return static_cast<uint8_t>(sum / 65536);
}

// Pixels of 3 or 4 bytes.
struct Form {
  ptrdiff_t bytes;
  decltype(ConvertRows::rgb24ToLuma) ConvertRows::*luma;
  decltype(ConvertRows::rgb24ToChroma) ConvertRows::*chroma;
};
constexpr Form kForms[] = {{3, &ConvertRows::rgb24ToLuma, &ConvertRows::rgb24ToChroma},
                           {4, &ConvertRows::rgb32ToLuma, &ConvertRows::rgb32ToChroma}};

class ConvertWeighRowsTest : public TargetTest {
 protected:
  void expectLuma(const Form& form, const Weights& weights, const Bytes& src, ptrdiff_t pixels) {
    const Bytes noise = randomBytes(static_cast<size_t>(pixels) + 1, 3);
    Bytes expected = noise;
    for (ptrdiff_t i = 0; i < pixels; ++i) {
      expected[static_cast<size_t>(i)] = sample(src.data() + i * form.bytes, weights.y);
    }
    for (const ConvertRows* rows : {&plainForm<ConvertRows>(), &vectorForm<ConvertRows>()}) {
      Bytes made = noise;
      (rows->*form.luma)(src.data(), pixels, weights.y, made.data());
      ASSERT_EQ(expected, made) << form.bytes << " bytes, " << pixels;
    }
  }

  // In planes, or in pairs of either order.
  enum class Layout { planes, uvPairs, vuPairs };

  void expectChroma(const Form& form, const Weights& weights, const Bytes& src, ptrdiff_t pixels,
                    bool halved, Layout layout) {
    const ptrdiff_t samples = halved ? (pixels + 1) / 2 : pixels;
    const Bytes noise = randomBytes(2 * static_cast<size_t>(samples) + 1, 3);
    const auto targetIn = [=](Bytes& bytes) -> ChromaTarget {
      uint8_t* const at = bytes.data();
      if (layout == Layout::planes) return {at, at + samples, 1};
      return layout == Layout::uvPairs ? ChromaTarget{at, at + 1, 2} : ChromaTarget{at + 1, at, 2};
    };
    Bytes expected = noise;
    const ChromaTarget to = targetIn(expected);
    for (ptrdiff_t i = 0; i < samples; ++i) {
      const ptrdiff_t pixel = halved ? std::min(2 * i + 1, pixels - 1) : i;
      to.u[i * to.step] = sample(src.data() + pixel * form.bytes, weights.chroma.u);
      to.v[i * to.step] = sample(src.data() + pixel * form.bytes, weights.chroma.v);
    }
    for (const ConvertRows* rows : {&plainForm<ConvertRows>(), &vectorForm<ConvertRows>()}) {
      Bytes made = noise;
      (rows->*form.chroma)(src.data(), pixels, halved, weights.chroma, targetIn(made));
      ASSERT_EQ(expected, made) << form.bytes << " bytes, " << pixels << ", halved " << halved;
    }
  }
};
QPX_FOR_EACH_TARGET(ConvertWeighRowsTest);

TEST_P(ConvertWeighRowsTest, EveryLengthAndLayout) {
  for (const Form& form : kForms) {
    for (ptrdiff_t pixels = 0; pixels <= 300; pixels += pixels < 140 ? 1 : 37) {
      const Bytes src = randomBytes(static_cast<size_t>(pixels * form.bytes), 1);
      const Weights& weights = kWeights[pixels % 4];
      expectLuma(form, weights, src, pixels);
      for (const Layout layout : {Layout::planes, Layout::uvPairs, Layout::vuPairs}) {
        for (const bool halved : {false, true}) {
          expectChroma(form, weights, src, pixels, halved, layout);
        }
      }
    }
  }
}

TEST_P(ConvertWeighRowsTest, EveryWeight) {
  constexpr ptrdiff_t kPixels = 40000;
  for (const Form& form : kForms) {
    const Bytes src = randomBytes(static_cast<size_t>(kPixels * form.bytes), 2);
    for (const Weights& weights : kWeights) {
      expectLuma(form, weights, src, kPixels);
      expectChroma(form, weights, src, kPixels, false, Layout::planes);
      expectChroma(form, weights, src, kPixels, true, Layout::uvPairs);
    }
  }
}

}  // namespace
}  // namespace qpx::simd
