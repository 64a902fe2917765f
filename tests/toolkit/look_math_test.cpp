// Forms that recipes share, against their formulas written down a second time.
#include "toolkit/look_math.h"

#include <gtest/gtest.h>

namespace qpx {
namespace {

template <typename Body>
void forAllPairs(const Body& body) {
  for (int top = 0; top < 256; ++top) {
    for (int base = 0; base < 256; ++base) {
      body(static_cast<uint8_t>(top), static_cast<uint8_t>(base));
      if (testing::Test::HasFatalFailure()) return;
    }
  }
}

int floorShift(int64_t v, int64_t divisor) {
  return static_cast<int>(v >= 0 ? v / divisor : -((-v + divisor - 1) / divisor));
}

TEST(LookMath, PercentMixLosesALittle) {
  EXPECT_EQ(percentMix(100, 255, 0), 254);
  EXPECT_EQ(percentMix(0, 7, 255), 254);
  EXPECT_EQ(percentMix(100, 100, 0), 99);
  EXPECT_EQ(percentMix(150, 255, 0), 255);
  EXPECT_EQ(percentMix(150, 0, 255), 0);
  for (int percent = 0; percent <= 150; percent += 3) {
    forAllPairs([percent](int a, int b) {
      const int v = floorShift(int64_t{percent * a + (100 - percent) * b} * 327, 32768);
      ASSERT_EQ(percentMix(percent, a, b), std::clamp(v, 0, 255));
    });
  }
}

TEST(LookMath, FixedMixesAndAlpha) {
  forAllPairs([](uint8_t top, uint8_t base) {
    ASSERT_EQ(mixThirty(top, base), (717 * base + 307 * top) / 1024);
    ASSERT_EQ(mixForty(top, base), (614 * base + 410 * top) / 1024);
    for (const int alpha : {0, 1, 100, 128, 254, 255}) {
      const int sum = base * (255 - alpha) + top * alpha;
      ASSERT_EQ(mixByAlpha(top, base, static_cast<uint8_t>(alpha)), sum >= 65280 ? 255 : sum / 255);
    }
  });
  EXPECT_EQ(mixThirty(255, 255), 255);
}

TEST(LookMath, SoftLightByLumaOfAllPairs) {
  forAllPairs([](uint8_t top, uint8_t base) {
    const int x = base, t = top;
    double v = 0;
    if (t < 129) {
      const int inner = (x - (x * x) / 255) * (2 * t - 255);
      v = x + (inner < 0 ? -(-inner / 255) : inner / 255);
    } else {
      v = x + (2 * t - 255) * (16 * std::sqrt(static_cast<double>(base)) - x) / 255.0;
    }
    ASSERT_EQ(softByLuma(top, base), static_cast<int>(std::clamp(v, 0.0, 255.0)))
        << t << " on " << x;
  });
}

TEST(LookMath, OverlayOfSevenBitsOfAllPairs) {
  forAllPairs([](uint8_t top, uint8_t base) {
    const int v = base > 128 ? 255 - (255 - base) * (255 - top) / 128 : base * top / 128;
    ASSERT_EQ(overlaySevenBits(top, base), v & 255);
  });
}

}  // namespace
}  // namespace qpx
