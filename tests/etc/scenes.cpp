#include "etc/scenes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "support/picture.h"

namespace qpx::etc {
namespace {

using qpx::testing::Random;

template <typename Sample>
Image drawn(int width, int height, const Sample& sample) {
  Image image(width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      for (int c = 0; c < 3; ++c) {
        image.at(x, y)[c] = static_cast<uint8_t>(std::clamp<int>(sample(x, y, c), 0, 255));
      }
    }
  }
  return image;
}

Image noise(int width, int height) {
  Random random(7);
  return drawn(width, height, [&](int, int, int) { return random.byte(); });
}

Image flat(int width, int height) {
  return drawn(width, height, [](int, int, int c) { return 40 + 70 * c; });
}

// Every block has a brightness of its own, from black to white and beyond what noise leaves.
Image nearlyFlat(int width, int height) {
  Random random(8);
  return drawn(width, height, [&](int x, int y, int c) {
    return (x / 4 * 5 + y / 4 * 37 + c * 9) % 270 - 8 + random.between(-3, 3);
  });
}

Image extremes(int width, int height) {
  Random random(9);
  return drawn(width, height, [&](int x, int y, int) {
    const bool calm = (x / 8 + y / 8) % 2 == 0;
    return random.between(0, calm ? 15 : 1) == 0 ? 0 : 255;
  });
}

Image ramps(int width, int height) {
  return drawn(width, height, [&](int x, int y, int c) {
    const int across = x * 511 / std::max(width - 1, 1) - 128;
    const int down = y * 511 / std::max(height - 1, 1) - 128;
    return c == 0 ? across : c == 1 ? down : 255 - (across + down) / 2;
  });
}

}  // namespace

Image photograph(int width, int height) {
  Random random(10);
  return drawn(width, height, [&](int x, int y, int c) {
    const double u = x / 64.0, v = y / 48.0;
    const double light = 120 + 60 * std::sin(u * 1.3 + 0.4 * c) + 45 * std::cos(v * 1.1 - u * 0.6);
    const double leaves = 18 * std::sin(u * 21 + std::sin(v * 17)) * std::sin(v * 23 + c);
    const double edge = std::hypot(x % 160 - 80, y % 120 - 60) < 34 ? 60 - 25 * c : 0;
    return static_cast<int>(light + leaves + edge + random.between(-4, 4));
  });
}

const std::vector<Scene>& scenes() {
  static const std::vector<Scene> all = {
      {"photograph", photograph},    {"noise", noise}, {"flat", flat}, {"nearly flat", nearlyFlat},
      {"extreme colours", extremes}, {"ramps", ramps}};
  return all;
}

MBitmap recordOf(Image& image, uint32_t format) {
  MBitmap record = {format, image.width, image.height, {image.width * 3, 0, 0}, {}};
  record.plane[0] = image.rgb.data();
  return record;
}

std::vector<uint8_t> randomBlocks(int width, int height, uint64_t seed) {
  Random random(seed);
  std::vector<uint8_t> blocks(static_cast<size_t>(width) * static_cast<size_t>(height) / 2);
  for (uint8_t& byte : blocks) byte = random.byte();
  return blocks;
}

MBitmap recordOf(std::vector<uint8_t>& blocks, int width, int height) {
  MBitmap record = {QPX_FORMAT_ETC1, width, height, {width * height / 2, 0, 0}, {}};
  record.plane[0] = blocks.data();
  return record;
}

std::vector<uint8_t> compressed(Image image, int quality) {
  std::vector<uint8_t> blocks(image.rgb.size() / 6);
  const MBitmap source = recordOf(image);
  MBitmap target = {};
  target.plane[0] = blocks.data();
  EXPECT_EQ(QPX_OK, TEXPK_Compress_ETC(&source, &target, quality));
  return blocks;
}

Image decompressed(std::vector<uint8_t> blocks, int width, int height) {
  Image image(width, height);
  const MBitmap source = recordOf(blocks, width, height);
  MBitmap target = recordOf(image);
  EXPECT_EQ(QPX_OK, TEXPK_Uncompress_ETC(&source, &target));
  return image;
}

reference::Words wordsAt(const std::vector<uint8_t>& blocks, int width, int x, int y) {
  const uint8_t* const block = blocks.data() + y / 4 * width * 2 + x / 4 * 8;
  return {read_big_endian_4byte_word(block), read_big_endian_4byte_word(block + 4)};
}

double psnr(const Image& a, const Image& b) {
  double sum = 0;
  for (size_t i = 0; i < a.rgb.size(); ++i) {
    const double d = a.rgb[i] - b.rgb[i];
    sum += d * d;
  }
  return 10 * std::log10(255.0 * 255.0 * static_cast<double>(a.rgb.size()) / sum);
}

}  // namespace qpx::etc
