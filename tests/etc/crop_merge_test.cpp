// Crop and merge of compressed images, against a model that moves blocks one by one.
#include <qpx/etc.h>

#include <gtest/gtest.h>

#include <cmath>

#include "etc/scenes.h"
#include "support/picture.h"

namespace qpx::etc {
namespace {

using qpx::testing::Random;
using reference::Words;

struct Texture {
  int width, height;
  std::vector<uint8_t> blocks;

  Texture(int w, int h, uint64_t seed) : width(w), height(h), blocks(randomBlocks(w, h, seed)) {}
  MBitmap record() { return recordOf(blocks, width, height); }
  Words at(int x, int y) const { return wordsAt(blocks, width, x, y); }
};

// Calls place(from x, from y, to x, to y) for each block that lands inside.
template <typename Place>
void forEachPlaced(const MRect& rect, const MPoint& origin, const Texture& to, const Place& place) {
  for (int y = rect.top; y < rect.bottom; y += 4) {
    for (int x = rect.left; x < rect.right; x += 4) {
      const int64_t toX = int64_t{origin.x} + x - rect.left;
      const int64_t toY = int64_t{origin.y} + y - rect.top;
      if (toX < 0 || toY < 0 || toX >= to.width || toY >= to.height) continue;
      place(x, y, static_cast<int>(toX), static_cast<int>(toY));
    }
  }
}

void put(std::vector<uint8_t>& blocks, int width, int x, int y, const Words& words) {
  uint8_t* const to = blocks.data() + y / 4 * width * 2 + x / 4 * 8;
  for (int k = 0; k < 4; ++k) {
    to[k] = static_cast<uint8_t>(words.word0 >> (24 - 8 * k));
    to[4 + k] = static_cast<uint8_t>(words.word1 >> (24 - 8 * k));
  }
}

struct Placing {
  MRect rect;
  MPoint origin;
};

// Rectangles inside 24 x 16, at places in and around 16 x 20.
std::vector<Placing> placings() {
  std::vector<Placing> all;
  Random random(30);
  for (int i = 0; i < 600; ++i) {
    const int left = random.between(0, 6), top = random.between(0, 4);
    const int right = random.between(left, 6), bottom = random.between(top, 4);
    all.push_back({{left * 4, top * 4, right * 4, bottom * 4},
                   {random.between(-8, 8) * 4, random.between(-8, 8) * 4}});
  }
  for (const int far : {INT32_MIN, INT32_MAX - 3}) {
    all.push_back({{0, 0, 24, 16}, {far, 0}});
    all.push_back({{0, 0, 24, 16}, {0, far}});
    all.push_back({{0, 0, 24, 16}, {far, far}});
  }
  return all;
}

TEST(CropEtc, BlocksGoWhereTheyBelongAndNowhereElse) {
  Texture source(24, 16, 1);
  for (const Placing& p : placings()) {
    Texture target(16, 20, 2);
    std::vector<uint8_t> expected = target.blocks;
    forEachPlaced(p.rect, p.origin, target, [&](int x, int y, int toX, int toY) {
      put(expected, 16, toX, toY, source.at(x, y));
    });
    const MBitmap from = source.record();
    MBitmap to = target.record();
    ASSERT_EQ(QPX_OK, TEXPK_Crop_ETC(&from, &to, &p.rect, &p.origin));
    ASSERT_EQ(target.blocks, expected)
        << p.rect.left << ", " << p.rect.top << " ... " << p.rect.right << ", " << p.rect.bottom
        << " to " << p.origin.x << ", " << p.origin.y;
  }
}

// A crop, decompressed, is the rectangle of the decompressed image.
TEST(CropEtc, KeepsPixelsToTheByte) {
  const Image image = photograph(64, 48);
  std::vector<uint8_t> blocks = compressed(image, QPX_ETC_SLOW);
  const MBitmap from = recordOf(blocks, 64, 48);
  std::vector<uint8_t> part(24 * 20 / 2);
  MBitmap to = recordOf(part, 24, 20);
  const MRect rect = {12, 8, 36, 28};
  const MPoint origin = {0, 0};
  ASSERT_EQ(QPX_OK, TEXPK_Crop_ETC(&from, &to, &rect, &origin));
  const Image whole = decompressed(blocks, 64, 48), cropped = decompressed(part, 24, 20);
  for (int y = 0; y < 20; ++y) {
    EXPECT_TRUE(std::equal(cropped.at(0, y), cropped.at(0, y) + 72, whole.at(12, 8 + y))) << y;
  }
}

TEST(MergeEtc, BlocksAreBlendedOverTheBase) {
  Texture overlay(24, 16, 3), base(16, 20, 4);
  Random random(31);
  for (const Placing& p : placings()) {
    const float alpha = static_cast<float>(random.between(0, 1000)) / 1000;
    const int weight0 = static_cast<int>(0.5 + alpha * 1024);
    const int weight1 = static_cast<int>(0.5 + (1 - alpha) * 1024);
    Texture target(16, 20, 5);
    std::vector<uint8_t> expected = base.blocks;
    forEachPlaced(p.rect, p.origin, target, [&](int x, int y, int toX, int toY) {
      put(expected, 16, toX, toY,
          reference::blend(overlay.at(x, y), base.at(toX, toY), weight0, weight1));
    });
    const MBitmap over = overlay.record(), under = base.record();
    MBitmap to = target.record();
    ASSERT_EQ(QPX_OK, TEXPK_Merge_ETC(&to, &over, &under, &p.rect, &p.origin, alpha));
    ASSERT_EQ(target.blocks, expected) << alpha;
    // In place gives the same.
    Texture own = base;
    MBitmap both = own.record();
    ASSERT_EQ(QPX_OK, TEXPK_Merge_ETC(&both, &over, &both, &p.rect, &p.origin, alpha));
    ASSERT_EQ(own.blocks, expected);
  }
}

TEST(MergeEtc, OutsideLeavesACopyOfTheBase) {
  Texture overlay(24, 16, 3), base(16, 20, 4), target(16, 20, 5);
  const MBitmap over = overlay.record(), under = base.record();
  MBitmap to = target.record();
  const MRect rect = {0, 0, 24, 16};
  for (const MPoint& origin : {MPoint{16, 0}, {0, 20}, {-24, 0}, {0, -16}}) {
    target.blocks.assign(target.blocks.size(), 0);
    EXPECT_EQ(QPX_OK, TEXPK_Merge_ETC(&to, &over, &under, &rect, &origin, 1));
    EXPECT_EQ(target.blocks, base.blocks);
  }
}

// What a mix of the pixels themselves would be, as far as blocks can hold it.
TEST(MergeEtc, LooksLikeAMixOfThePictures) {
  const Image bottom = photograph(64, 64);
  Image top = scenes()[5].draw(64, 64);
  std::vector<uint8_t> over = compressed(top, QPX_ETC_FAST),
                       under = compressed(bottom, QPX_ETC_FAST);
  const MBitmap overlay = recordOf(over, 64, 64), base = recordOf(under, 64, 64);
  const MRect rect = {0, 0, 64, 64};
  const MPoint origin = {0, 0};
  const Image a = decompressed(over, 64, 64), b = decompressed(under, 64, 64);
  for (const float alpha : {0.0f, 0.25f, 0.5f, 0.75f, 1.0f}) {
    std::vector<uint8_t> out(over.size());
    MBitmap target = recordOf(out, 64, 64);
    ASSERT_EQ(QPX_OK, TEXPK_Merge_ETC(&target, &overlay, &base, &rect, &origin, alpha));
    Image mix(64, 64);
    for (size_t i = 0; i < mix.rgb.size(); ++i) {
      mix.rgb[i] = static_cast<uint8_t>(std::lround(alpha * static_cast<float>(a.rgb[i]) +
                                                    (1 - alpha) * static_cast<float>(b.rgb[i])));
    }
    EXPECT_GT(psnr(decompressed(out, 64, 64), mix), alpha == 0 || alpha == 1 ? 45 : 27) << alpha;
  }
}

class RefusedPlacing : public ::testing::Test {
 protected:
  // Both calls answer `code` and leave the target alone.
  void expect(int32_t code, const MBitmap& source, const MBitmap& target, const MRect& rect,
              const MPoint& origin) {
    MBitmap to = target;
    EXPECT_EQ(code, TEXPK_Crop_ETC(&source, &to, &rect, &origin));
    EXPECT_EQ(code, TEXPK_Merge_ETC(&to, &source, &base_, &rect, &origin, 0.5f));
    EXPECT_EQ(blocks_, target_.blocks);
  }

  Texture source_{24, 16, 6}, target_{16, 20, 7}, under_{16, 20, 8};
  std::vector<uint8_t> blocks_ = target_.blocks;
  MBitmap from_ = source_.record(), to_ = target_.record(), base_ = under_.record();
  MRect rect_ = {4, 4, 16, 12};
  MPoint origin_ = {4, 8};
};

TEST_F(RefusedPlacing, ForCoordinatesThatAreNoMultiplesOfABlock) {
  for (const int shift : {1, 2, 3, -1}) {
    for (int32_t MRect::*side : {&MRect::left, &MRect::top, &MRect::right, &MRect::bottom}) {
      MRect rect = rect_;
      rect.*side += shift;
      expect(2, from_, to_, rect, origin_);
    }
    expect(2, from_, to_, rect_, {4 + shift, 8});
    expect(2, from_, to_, rect_, {4, 8 + shift});
  }
}

TEST_F(RefusedPlacing, ForRectanglesThatAreNotInside) {
  for (const MRect& rect : {MRect{-4, 0, 8, 8},
                            {0, -4, 8, 8},
                            {0, 0, 28, 8},
                            {0, 0, 8, 20},
                            {12, 0, 8, 8},
                            {0, 12, 8, 8},
                            {INT32_MIN, 0, 8, 8},
                            {0, 0, INT32_MAX - 3, 8},
                            {INT32_MIN, INT32_MIN, INT32_MIN, INT32_MIN}}) {
    expect(2, from_, to_, rect, origin_);
  }
}

TEST_F(RefusedPlacing, ForRecordsThatAreNoCompressedImages) {
  const auto tryRecord = [&](auto change) {
    MBitmap bad = from_;
    change(bad);
    expect(2, bad, to_, rect_, origin_);
    bad = to_;
    change(bad);
    expect(2, from_, bad, rect_, origin_);
  };
  tryRecord([](MBitmap& b) { b.format = QPX_FORMAT_RGB24; });
  tryRecord([](MBitmap& b) { b.width = 15; });
  tryRecord([](MBitmap& b) { b.height = 0; });
  tryRecord([](MBitmap& b) { b.width = b.height = 1 << 30; });
  tryRecord([](MBitmap& b) { b.plane[0] = nullptr; });
}

TEST_F(RefusedPlacing, ForNullsOtherSizesAndAlphasThatAreNone) {
  EXPECT_EQ(2, TEXPK_Crop_ETC(nullptr, &to_, &rect_, &origin_));
  EXPECT_EQ(2, TEXPK_Crop_ETC(&from_, nullptr, &rect_, &origin_));
  EXPECT_EQ(2, TEXPK_Crop_ETC(&from_, &to_, nullptr, &origin_));
  EXPECT_EQ(2, TEXPK_Crop_ETC(&from_, &to_, &rect_, nullptr));
  EXPECT_EQ(2, TEXPK_Merge_ETC(nullptr, &from_, &base_, &rect_, &origin_, 0.5f));
  EXPECT_EQ(2, TEXPK_Merge_ETC(&to_, nullptr, &base_, &rect_, &origin_, 0.5f));
  EXPECT_EQ(2, TEXPK_Merge_ETC(&to_, &from_, nullptr, &rect_, &origin_, 0.5f));
  EXPECT_EQ(2, TEXPK_Merge_ETC(&to_, &from_, &base_, nullptr, &origin_, 0.5f));
  EXPECT_EQ(2, TEXPK_Merge_ETC(&to_, &from_, &base_, &rect_, nullptr, 0.5f));
  EXPECT_EQ(2, TEXPK_Merge_ETC(&to_, &from_, &from_, &rect_, &origin_, 0.5f));
  for (const float alpha : {-0.001f, 1.001f, std::nanf(""), INFINITY, -INFINITY}) {
    EXPECT_EQ(2, TEXPK_Merge_ETC(&to_, &from_, &base_, &rect_, &origin_, alpha));
  }
  EXPECT_EQ(blocks_, target_.blocks);
}

}  // namespace
}  // namespace qpx::etc
