// How good compressed pictures are.
#include <gtest/gtest.h>

#include "etc/scenes.h"

namespace qpx::etc {
namespace {

double roundTrip(const Image& image, int quality) {
  return psnr(image, decompressed(compressed(image, quality), image.width, image.height));
}

int64_t perceptualError(const Image& image, int quality) {
  const Image decoded = decompressed(compressed(image, quality), image.width, image.height);
  int64_t sum = 0;
  for (int y = 0; y < image.height; y += 4) {
    for (int x = 0; x < image.width; x += 4) sum += reference::blockError(image, decoded, x, y);
  }
  return sum;
}

TEST(EtcQuality, OfAPhotograph) {
  const Image image = photograph(320, 240);
  EXPECT_GT(roundTrip(image, QPX_ETC_FAST), 31.0);
  EXPECT_GT(roundTrip(image, QPX_ETC_SLOW), 32.0);
}

TEST(EtcQuality, SlowIsAtLeastAsGoodAsFastInEveryScene) {
  for (const Scene& scene : scenes()) {
    const Image image = scene.draw(128, 96);
    EXPECT_LE(perceptualError(image, QPX_ETC_SLOW), perceptualError(image, QPX_ETC_FAST))
        << scene.name;
  }
}

// Each time a picture is compressed it loses a little more, but never much.
TEST(EtcQuality, GenerationsStayClose) {
  const Image image = photograph(160, 120);
  Image generation = image;
  for (int i = 0; i < 6; ++i) {
    generation = decompressed(compressed(generation, QPX_ETC_SLOW), 160, 120);
  }
  EXPECT_GT(psnr(image, generation), roundTrip(image, QPX_ETC_SLOW) - 0.7);
}

}  // namespace
}  // namespace qpx::etc
