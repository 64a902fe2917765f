// Second input and mask: where they are placed, and what of the band they leave.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <vector>

#include "engine/pipeline_support.h"
#include "engine/planar_support.h"
#include "engine/test_effects.h"

namespace qpx::testing {
namespace {

constexpr uint8_t kSentinel = 0xA7;

struct Placement {
  int32_t left;
  int32_t top;
};

struct MergeCase {
  Size image;
  Size second;
  Size mask;
  Placement secondAt;
  Placement maskAt;
  MRect band;
};

MRect cut(MRect rect, Placement at, Size size) {
  return {std::max(rect.left, at.left), std::max(rect.top, at.top),
          std::min(rect.right, at.left + size.width), std::min(rect.bottom, at.top + size.height)};
}

MRect expectedRect(const MergeCase& c) {
  return cut(cut(cut(c.band, {0, 0}, c.image), c.secondAt, c.second), c.maskAt, c.mask);
}

constexpr PlanarFormat kGreyMask = {"mask", 0x64000000, 0, 0, 0};

class Merge {
 public:
  Merge(const PlanarFormat& format, const MergeCase& c)
      : format_(format),
        case_(c),
        engine_(format.format, c.image, c.image, c.second, c.mask,
                {{kSecondThroughMask, nullptr, 0}}),
        source_(PlanarPicture::random(format, c.image.width, c.image.height, 1)),
        second_(PlanarPicture::random(format, c.second.width, c.second.height, 2)),
        mask_(PlanarPicture::random(kGreyMask, c.mask.width, c.mask.height, 3)),
        result_(format, c.image.width, c.image.height, kSentinel) {
    for (int32_t y = 0; y < c.mask.height; ++y) {
      for (int32_t x = 0; x < c.mask.width; ++x) mask_.sample(0, x, y) &= 1;
    }
  }

  void run() {
    ASSERT_EQ(engine_.result(), 0);
    const MRect& band = case_.band;
    const QPXPlaneSet in = source_.planes(band.left, band.top);
    const QPXPlaneSet out = result_.planes(band.left, band.top);
    const QPXPlaneSet second =
        second_.planes(band.left - case_.secondAt.left, band.top - case_.secondAt.top);
    const QPXPlaneSet mask =
        mask_.planes(band.left - case_.maskAt.left, band.top - case_.maskAt.top);
    QPXBandRect rect = {
        band.left,           band.top,           band.right,        band.bottom,
        case_.secondAt.left, case_.secondAt.top, case_.maskAt.left, case_.maskAt.top};
    ASSERT_EQ(QPXMerge(engine_.get(), &out, &in, &second, &mask, &rect), 0);
    const MRect expected = expectedRect(case_);
    if (expected.left >= expected.right || expected.top >= expected.bottom) {
      EXPECT_EQ(rect.left, band.left);
      EXPECT_EQ(rect.top, band.top);
      EXPECT_EQ(rect.right, band.right);
      EXPECT_EQ(rect.bottom, band.bottom);
    } else {
      EXPECT_EQ(rect.left, expected.left);
      EXPECT_EQ(rect.top, expected.top);
      EXPECT_EQ(rect.right, expected.right);
      EXPECT_EQ(rect.bottom, expected.bottom);
    }
    EXPECT_TRUE(model() == result_);
  }

 private:
  PlanarPicture model() {
    PlanarPicture picture(format_, case_.image.width, case_.image.height, kSentinel);
    const MRect rect = expectedRect(case_);
    for (int32_t y = rect.top; y < rect.bottom; ++y) {
      for (int32_t x = rect.left; x < rect.right; ++x) {
        const bool lit = mask_.sample(0, x - case_.maskAt.left, y - case_.maskAt.top) != 0;
        PlanarPicture& from = lit ? second_ : source_;
        const int32_t fromX = lit ? x - case_.secondAt.left : x;
        const int32_t fromY = lit ? y - case_.secondAt.top : y;
        picture.sample(0, x, y) = from.sample(0, fromX, fromY);
        if (format_.across == 0 || x % format_.across != 0 || y % format_.down != 0) continue;
        for (int p = 1; p < 3; ++p) picture.sample(p, x, y) = from.sample(p, fromX, fromY);
      }
    }
    return picture;
  }

  PlanarFormat format_;
  MergeCase case_;
  Engine engine_;
  PlanarPicture source_;
  PlanarPicture second_;
  PlanarPicture mask_;
  PlanarPicture result_;
};

void runAll(const MergeCase& c) {
  for (const PlanarFormat& format :
       {kPlanarFormats[0], kPlanarFormats[1], kPlanarFormats[2], kPlanarFormats[3],
        kPlanarFormats[4], kPlanarFormats[5], kGreyMask}) {
    SCOPED_TRACE(::testing::Message()
                 << format.name << ", second at " << c.secondAt.left << " " << c.secondAt.top
                 << " of " << c.second.width << "x" << c.second.height << ", mask at "
                 << c.maskAt.left << " " << c.maskAt.top);
    Merge(format, c).run();
  }
}

TEST(MergeCrop, EqualSizesCoverTheBand) {
  runAll({{10, 8}, {10, 8}, {10, 8}, {0, 0}, {0, 0}, {0, 0, 10, 8}});
  runAll({{11, 7}, {11, 7}, {11, 7}, {0, 0}, {0, 0}, {0, 0, 11, 7}});
  runAll({{11, 9}, {11, 9}, {11, 9}, {0, 0}, {0, 0}, {2, 4, 7, 9}});
}

TEST(MergeCrop, PlacedInsideThePicture) {
  runAll({{20, 16}, {8, 6}, {20, 16}, {4, 6}, {0, 0}, {0, 0, 20, 16}});
  runAll({{20, 16}, {20, 16}, {8, 6}, {0, 0}, {4, 6}, {0, 0, 20, 16}});
  runAll({{20, 16}, {9, 9}, {8, 6}, {2, 2}, {5, 3}, {0, 0, 20, 16}});
  runAll({{20, 16}, {9, 9}, {8, 6}, {2, 2}, {5, 3}, {4, 4, 10, 10}});
}

TEST(MergeCrop, PlacedPartlyOutsideThePicture) {
  runAll({{20, 16}, {8, 6}, {20, 16}, {-4, -2}, {0, 0}, {0, 0, 20, 16}});
  runAll({{20, 16}, {8, 6}, {9, 30}, {14, 12}, {15, -3}, {0, 0, 20, 16}});
  runAll({{20, 16}, {40, 40}, {40, 40}, {-10, -12}, {-7, -9}, {2, 2, 18, 13}});
}

TEST(MergeCrop, OddPlacementsStayInsideTheSecondInput) {
  for (int32_t left = -3; left < 6; ++left) {
    for (int32_t top = -3; top < 6; ++top) {
      runAll({{12, 10}, {6, 4}, {5, 7}, {left, top}, {1, 1}, {0, 0, 12, 10}});
      runAll({{12, 10}, {5, 3}, {12, 10}, {left, top}, {0, 0}, {0, 0, 12, 10}});
      runAll({{12, 10}, {6, 4}, {12, 10}, {left, top}, {0, 0}, {1, 1, 11, 9}});
    }
  }
}

TEST(MergeCrop, DisjointPlacementsEndTheCallWithZero) {
  runAll({{12, 10}, {4, 4}, {12, 10}, {12, 0}, {0, 0}, {0, 0, 12, 10}});
  runAll({{12, 10}, {4, 4}, {12, 10}, {-4, 0}, {0, 0}, {0, 0, 12, 10}});
  runAll({{12, 10}, {4, 4}, {4, 4}, {0, 0}, {4, 4}, {0, 0, 12, 10}});
  runAll({{12, 10}, {4, 4}, {12, 10}, {0, 0}, {0, 0}, {4, 4, 12, 10}});
}

TEST(MergeCrop, FarPlacementsAndSenselessSizesAreHarmless) {
  const PlanarFormat& i420 = kPlanarFormats[2];
  for (const Size second : {Size{4, 4}, {-5, -5}, {INT_MAX, INT_MAX}, {INT_MIN, INT_MIN}}) {
    Engine engine(i420.format, {8, 8}, {8, 8}, second, {8, 8}, {{kSecondThroughMask, nullptr, 0}});
    ASSERT_EQ(engine.result(), 0);
    PlanarPicture source = PlanarPicture::random(i420, 8, 8, 1);
    PlanarPicture result(i420, 8, 8, kSentinel);
    PlanarPicture mask(kGreyMask, 8, 8, 0);
    const QPXPlaneSet in = source.planes(0, 0);
    const QPXPlaneSet out = result.planes(0, 0);
    const QPXPlaneSet maskPlanes = mask.planes(0, 0);
    for (const int32_t place : {INT_MIN, INT_MIN + 1, -100, 100, INT_MAX - 1, INT_MAX}) {
      QPXBandRect rect = {0, 0, 8, 8, place, place, 0, 0};
      EXPECT_EQ(QPXMerge(engine.get(), &out, &in, &in, &maskPlanes, &rect), 0);
      rect = {0, 0, 8, 8, 0, 0, place, place};
      EXPECT_EQ(QPXMerge(engine.get(), &out, &in, &in, &maskPlanes, &rect), 0);
    }
  }
}

TEST(MergeArguments, WhatTheEngineWasMadeWithMustBeThere) {
  Engine both(0x64000000, {8, 8}, {8, 8}, {8, 8}, {8, 8}, {{kSecondThroughMask, nullptr, 0}});
  PlanarPicture picture = PlanarPicture::random(kGreyMask, 8, 8, 1);
  const QPXPlaneSet planes = picture.planes(0, 0);
  const QPXPlaneSet none = {};
  QPXBandRect rect = {0, 0, 8, 8, 0, 0, 0, 0};
  EXPECT_EQ(QPXMerge(both.get(), &planes, &planes, nullptr, &planes, &rect), 2);
  EXPECT_EQ(QPXMerge(both.get(), &planes, &planes, &planes, nullptr, &rect), 2);
  EXPECT_EQ(QPXMerge(both.get(), &planes, &planes, &none, &planes, &rect), 2);
  EXPECT_EQ(QPXMerge(both.get(), &planes, &planes, &planes, &none, &rect), 2);
  EXPECT_EQ(QPXMerge(nullptr, &planes, &planes, &planes, &planes, &rect), 2);
  EXPECT_EQ(QPXMerge(both.get(), nullptr, &planes, &planes, &planes, &rect), 2);
  EXPECT_EQ(QPXMerge(both.get(), &planes, nullptr, &planes, &planes, &rect), 2);
  EXPECT_EQ(QPXMerge(both.get(), &planes, &planes, &planes, &planes, nullptr), 2);
  EXPECT_EQ(QPXMerge(both.get(), &planes, &planes, &planes, &planes, &rect), 0);
  MRect band = {0, 0, 8, 8};
  EXPECT_EQ(QPXProcess(both.get(), &planes, &planes, &band), 2);
}

TEST(MergeArguments, SecondAndMaskAreOptional) {
  Engine plain(0x64000000, {8, 8}, {8, 8}, {{kSecondThroughMask, nullptr, 0}});
  PlanarPicture source = PlanarPicture::random(kGreyMask, 8, 8, 1);
  PlanarPicture result(kGreyMask, 8, 8, kSentinel);
  const QPXPlaneSet in = source.planes(0, 0);
  const QPXPlaneSet out = result.planes(0, 0);
  QPXBandRect rect = {0, 0, 8, 8, 3, 3, 3, 3};
  EXPECT_EQ(QPXMerge(plain.get(), &out, &in, nullptr, nullptr, &rect), 0);
  EXPECT_TRUE(source == result);
  EXPECT_EQ(rect.left, 0);
  EXPECT_EQ(rect.bottom, 8);
}

TEST(MergeCrop, NegativeSizesAtFarPlacesLeaveNoBand) {
  Engine engine(0x64000000, {8, 8}, {8, 8}, {-5, 8}, {0, 0}, {{kSecondThroughMask, nullptr, 0}});
  PlanarPicture source = PlanarPicture::random(kGreyMask, 8, 8, 1);
  PlanarPicture result(kGreyMask, 8, 8, kSentinel);
  PlanarPicture untouched = result;
  const QPXPlaneSet in = source.planes(0, 0);
  const QPXPlaneSet out = result.planes(0, 0);
  QPXBandRect rect = {0, 0, 8, 8, INT_MIN, 0, 0, 0};
  EXPECT_EQ(QPXMerge(engine.get(), &out, &in, &in, nullptr, &rect), 0);
  EXPECT_EQ(rect.right, 8);
  EXPECT_TRUE(untouched == result);
}

TEST(MergeCrop, BandsGiveTheBytesOfOneCall) {
  const MergeCase whole = {{9, 12}, {9, 12}, {9, 12}, {0, 0}, {0, 0}, {0, 0, 9, 12}};
  for (int32_t top = 0; top < 12; top += 4) {
    MergeCase c = whole;
    c.band = {0, top, 9, top + 4};
    runAll(c);
  }
}

}  // namespace
}  // namespace qpx::testing
