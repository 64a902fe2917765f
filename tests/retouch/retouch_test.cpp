#include <gtest/gtest.h>
#include <qpx/qpx.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "retouch/scenes.h"
#include "support/failing_memory.h"

namespace qpx::testing {
namespace {

constexpr uint32_t kFormats[] = {QPX_FORMAT_BGR24, QPX_FORMAT_RGB24, QPX_FORMAT_BGRA32,
                                 QPX_FORMAT_RGBA32};

// One call with everything that it takes.
struct Call {
  Call(uint32_t format, int32_t width, int32_t height, int32_t guideWidth, int32_t guideHeight)
      : source(format, width, height, Placement::guarded),
        guide(format, guideWidth, guideHeight, Placement::guarded),
        mask(QPX_FORMAT_GREY8, guideWidth, guideHeight, Placement::guarded),
        out(format, width, height, Placement::guarded) {
    source.paint(1);
    guide.paint(1);
    mask.fill(0);
    out.paint(2);
  }

  int32_t run(float radius, float weight) {
    const float settings[] = {radius, weight};
    const MBitmap from = source.bitmap(), plan = guide.bitmap(), marks = mask.bitmap();
    MBitmap to = out.bitmap();
    return ReTouch(&from, &plan, &marks, settings, &to);
  }

  Picture source, guide, mask, out;
};

MRect all(const Picture& picture) { return {0, 0, picture.width(), picture.height()}; }

bool same(const Picture& a, const Picture& b) { return !a.firstDifference(b); }

int32_t changedPixels(const Picture& a, const Picture& b) {
  int32_t changed = 0;
  for (int32_t y = 0; y < a.height(); ++y) {
    for (int32_t x = 0; x < a.width(); ++x) changed += !(a.rgb(x, y) == b.rgb(x, y));
  }
  return changed;
}

TEST(ReTouch, WithoutAHoleTheDestinationIsTheSource) {
  for (const uint32_t format : kFormats) {
    Call call(format, 20, 14, 20, 14);
    EXPECT_EQ(0, call.run(3, 0.5f));
    EXPECT_TRUE(same(call.source, call.out));
    Call reduced(format, 20, 14, 10, 7);
    EXPECT_EQ(0, reduced.run(3, 0.5f));
    EXPECT_TRUE(same(reduced.source, reduced.out));
  }
}

TEST(ReTouch, WhereNothingIsKnownTheDestinationIsTheSource) {
  for (const int32_t guide : {24, 12}) {
    Call call(QPX_FORMAT_BGR24, 24, 24, guide, guide);
    call.mask.fill(255);
    EXPECT_EQ(0, call.run(2, 0.5f));
    EXPECT_TRUE(same(call.source, call.out));
  }
}

// Both sizes, all formats: fills all of the hole and nothing else, and writes no byte beside the
// picture.
TEST(ReTouch, FillsTheHoleAndNothingElse) {
  for (const uint32_t format : kFormats) {
    for (const bool reduced : {false, true}) {
      Call call(format, 41, 41, reduced ? 21 : 41, reduced ? 21 : 41);
      const auto tint = [&](const Picture& picture, int32_t scale) {
        return [scale, &picture](int32_t x, int32_t y) {
          static_cast<void>(picture);
          const int32_t i = x * scale, j = y * scale;
          const bool inside = i >= 14 && i <= 26 && j >= 14 && j <= 26;
          return inside ? Color{255, 0, 255}
                        : Color{static_cast<uint8_t>(i * 7 % 60 + 60),
                                static_cast<uint8_t>(j * 5 % 70 + 60), 90};
        };
      };
      paint(call.source, tint(call.source, 1));
      paint(call.guide, tint(call.guide, reduced ? 2 : 1));
      const MRect hole = reduced ? MRect{7, 7, 14, 14} : MRect{14, 14, 27, 27};
      markHole(call.mask, hole);
      const Picture before(call.out), source(call.source), guide(call.guide), mask(call.mask);
      ASSERT_EQ(0, call.run(2, 0.5f));
      EXPECT_TRUE(same(source, call.source) && same(guide, call.guide) && same(mask, call.mask));
      EXPECT_FALSE(call.out.firstWriteOutside(before, all(call.out)));
      for (int32_t y = 0; y < 41; ++y) {
        for (int32_t x = 0; x < 41; ++x) {
          // Guide pixel 7 stands for source pixels 13 and 14, in halves rounded up.
          const int32_t first = reduced ? 13 : 14, end = reduced ? 27 : 27;
          const bool inside = x >= first && x < end && y >= first && y < end;
          const Rgba now = call.out.rgb(x, y), was = call.source.rgb(x, y);
          EXPECT_EQ(was.a, now.a);
          if (!inside) {
            EXPECT_TRUE(now == was) << x << ", " << y;
          } else {
            EXPECT_LT(std::max(now.r, now.b), 180) << x << ", " << y;
          }
        }
      }
    }
  }
}

TEST(ReTouch, OrderAndAlphaDoNotMatter) {
  for (const bool reduced : {false, true}) {
    std::vector<Picture> results;
    for (const uint32_t format : kFormats) {
      const int32_t side = reduced ? 20 : 40;
      Call call(format, 40, 40, side, side);
      markHole(call.mask, {side / 3, side / 4, 2 * side / 3, 3 * side / 4});
      ASSERT_EQ(0, call.run(2, 0.7f));
      EXPECT_GT(changedPixels(call.source, call.out), 100);
      results.push_back(call.out);
    }
    for (const Picture& other : results) {
      for (int32_t y = 0; y < 40; ++y) {
        for (int32_t x = 0; x < 40; ++x) {
          const Rgba a = results[0].rgb(x, y), b = other.rgb(x, y);
          EXPECT_TRUE(a.r == b.r && a.g == b.g && a.b == b.b) << x << ", " << y;
        }
      }
    }
  }
}

TEST(ReTouch, PlainFormsAndASecondRunGiveTheSameBytes) {
  for (const int32_t side : {64, 22}) {
    Call call(QPX_FORMAT_BGR24, 64, 64, side, side);
    markHole(call.mask, {side / 4, side / 3, side / 2, side});
    ASSERT_EQ(0, call.run(3, 0.9f));
    const Picture first(call.out);
    ASSERT_EQ(0, call.run(3, 0.9f));
    EXPECT_TRUE(same(first, call.out));
    QPX_UsePlainForms(1);
    ASSERT_EQ(0, call.run(3, 0.9f));
    QPX_UsePlainForms(0);
    EXPECT_TRUE(same(first, call.out));
  }
}

TEST(ReTouch, SourceAndDestinationMayBeTheSame) {
  for (const int32_t side : {40, 20}) {
    Call call(QPX_FORMAT_RGBA32, 40, 40, side, side);
    markHole(call.mask, {5, 5, side / 2, side / 2});
    ASSERT_EQ(0, call.run(2, 0.5f));
    const Picture apart(call.out);
    const float settings[] = {2, 0.5f};
    MBitmap both = call.source.bitmap();
    const MBitmap plan = side == 40 ? both : call.guide.bitmap(), marks = call.mask.bitmap();
    ASSERT_EQ(0, ReTouch(&both, &plan, &marks, settings, &both));
    EXPECT_TRUE(same(apart, call.source));
  }
}

// Corners, sides, a frame, all but a square, single pixels: everything marked is gone.
TEST(ReTouch, HolesAtTheBorderAreFilled) {
  const MRect kHoles[] = {{0, 0, 9, 9},    {21, 0, 30, 8},  {0, 22, 7, 30}, {20, 20, 30, 30},
                          {0, 10, 30, 14}, {13, 0, 16, 30}, {0, 0, 1, 1},   {29, 29, 30, 30},
                          {0, 0, 30, 20},  {0, 0, 18, 30},  {8, 8, 9, 9}};
  const auto texture = [](int32_t x, int32_t y) {
    return Color{static_cast<uint8_t>(x * 37 % 50 + 20), static_cast<uint8_t>(y * 23 % 40 + 60),
                 static_cast<uint8_t>((x + y) % 5 * 10)};
  };
  for (const MRect& hole : kHoles) {
    for (const float radius : {1.0f, 2.0f, 4.0f}) {
      for (const int32_t scale : {1, 3}) {
        const int32_t side = 30 * scale;
        Call call(QPX_FORMAT_BGR24, side, side, 30, 30);
        const double step = (side - 1.0) / 29;
        const auto marked = [&](int32_t x, int32_t y) {
          const auto i = static_cast<int32_t>(x / step + 0.5);
          const auto j = static_cast<int32_t>(y / step + 0.5);
          return i >= hole.left && i < hole.right && j >= hole.top && j < hole.bottom;
        };
        paint(call.source, [&](int32_t x, int32_t y) {
          return marked(x, y) ? Color{255, 255, 255} : texture(x, y);
        });
        paint(call.guide, texture);
        markHole(call.mask, hole);
        ASSERT_EQ(0, call.run(radius, 0.6f));
        for (int32_t y = 0; y < side; ++y) {
          for (int32_t x = 0; x < side; ++x) {
            const Rgba now = call.out.rgb(x, y);
            if (marked(x, y)) {
              ASSERT_FALSE(now.r == 255 && now.g == 255 && now.b == 255) << x << ", " << y;
            } else {
              ASSERT_TRUE(now == call.source.rgb(x, y));
            }
          }
        }
      }
    }
  }
}

// No patch of 21 pixels lies in a picture of 12, nor is one whole where the mask leaves 3 columns.
TEST(ReTouch, WithoutPatchesTheHoleTakesTheColoursAround) {
  for (const int32_t scale : {1, 2}) {
    Call call(QPX_FORMAT_BGR24, 12 * scale, 12 * scale, 12, 12);
    paint(call.source, [&](int32_t x, int32_t) {
      return x < 3 * scale ? Color{50, 60, 70} : Color{255, 255, 255};
    });
    markHole(call.mask, {3, 0, 12, 12});
    paint(call.guide, [&](int32_t, int32_t) { return Color{50, 60, 70}; });
    for (const float radius : {10.0f, 2.0f}) {
      ASSERT_EQ(0, call.run(radius, 0.5f));
      const double error = meanError(call.out,
                                     [](int32_t, int32_t) {
                                       return Color{50, 60, 70};
                                     },
                                     {4 * scale, 0, 12 * scale, 12 * scale});
      EXPECT_EQ(0, error) << radius << ", " << scale;
    }
  }
}

// Nothing but one colour is known, and it fills the hole wherever it is known at all. Only a guide
// of 5 x 3 has a whole patch, and so colours of its own to give where the picture is all hole.
TEST(ReTouch, SmallestPictures) {
  constexpr Color kColor = {50, 60, 70}, kGone = {255, 255, 255};
  for (const int32_t width : {1, 2, 3}) {
    for (const int32_t height : {1, 2, 3}) {
      for (const int32_t guideWidth : {1, 2, 5}) {
        for (const int32_t guideHeight : {1, 3}) {
          Call call(QPX_FORMAT_BGRA32, width, height, guideWidth, guideHeight);
          markHole(call.mask, {0, 0, 1, 1});
          const auto inFirstCell = [](int32_t pixel, int32_t size, int32_t cells) {
            return cells == 1 || size == 1 || pixel * (cells - 1) * 2 < size - 1;
          };
          int32_t known = 0;
          paint(call.source, [&](int32_t x, int32_t y) {
            const bool hole =
                inFirstCell(x, width, guideWidth) && inFirstCell(y, height, guideHeight);
            known += !hole;
            return hole ? kGone : kColor;
          });
          paint(call.guide, [&](int32_t x, int32_t y) { return x + y == 0 ? kGone : kColor; });
          ASSERT_EQ(0, call.run(1, 0.5f));
          const bool filled = known > 0 || (guideWidth == 5 && guideHeight == 3);
          const Color expected = filled ? kColor : kGone;
          for (int32_t y = 0; y < height; ++y) {
            for (int32_t x = 0; x < width; ++x) {
              const Rgba now = call.out.rgb(x, y);
              EXPECT_TRUE(
                  now == (Rgba{expected[2], expected[1], expected[0], static_cast<uint8_t>(x + y)}))
                  << width << " x " << height << ", guide " << guideWidth << " x " << guideHeight
                  << ": " << x << ", " << y;
            }
          }
        }
      }
    }
  }
}

// Pairs of neighbours in a row of the area that are as far apart as stripes are.
int32_t stripesIn(const Picture& picture, const MRect& area) {
  int32_t stripes = 0;
  for (int32_t y = area.top; y < area.bottom; ++y) {
    for (int32_t x = area.left + 1; x < area.right; ++x) {
      stripes += std::abs(picture.rgb(x, y).g - picture.rgb(x - 1, y).g) > 60;
    }
  }
  return stripes;
}

Color stripe(int32_t x) { return x % 4 < 2 ? Color{60, 60, 60} : Color{180, 180, 180}; }

TEST(ReTouch, AGuideOfTheSameSizeDoesNotLendItsPixels) {
  for (const uint32_t format : kFormats) {
    Call call(format, 48, 40, 48, 40);
    constexpr MRect kHole = {18, 14, 32, 28};
    paint(call.source, [&](int32_t x, int32_t y) {
      const bool inside = x >= kHole.left && x < kHole.right && y >= kHole.top && y < kHole.bottom;
      return inside ? Color{255, 0, 255} : stripe(x);
    });
    paint(call.guide, [](int32_t, int32_t) { return Color{120, 120, 120}; });
    markHole(call.mask, kHole);
    ASSERT_EQ(0, call.run(2, 0.5f));
    // The stripes of 14 rows change 6 or 7 times each.
    EXPECT_GT(stripesIn(call.out, kHole), 14 * 4);
  }
}

// Tiles of one pattern in the guide, and of another in the picture. Whole tiles lie between a hole
// and what fits it, so that the picture's pattern goes on to the last bit.
TEST(ReTouch, TheGuideOnlyTellsWhatFits) {
  Random random(8);
  std::vector<Color> patterns(2 * 7 * 5);
  for (Color& color : patterns) color = {random.byte(), random.byte(), random.byte()};
  const auto tile = [&](int32_t x, int32_t y) {
    return patterns[static_cast<size_t>(y % 5 * 7 + x % 7)];
  };
  const auto otherTile = [&](int32_t x, int32_t y) {
    return patterns[static_cast<size_t>(35 + y % 5 * 7 + x % 7)];
  };
  constexpr MRect kHole = {20, 15, 35, 27};
  Call call(QPX_FORMAT_RGB24, 60, 44, 60, 44);
  paint(call.guide, tile);
  paint(call.source, [&](int32_t x, int32_t y) {
    const bool inside = x >= kHole.left && x < kHole.right && y >= kHole.top && y < kHole.bottom;
    return inside ? Color{255, 0, 255} : otherTile(x, y);
  });
  markHole(call.mask, kHole);
  ASSERT_EQ(0, call.run(3, 0.5f));
  EXPECT_EQ(0, meanError(call.out, otherTile, {0, 0, 60, 44}));
}

// In a flat guide all patches fit, and the first of the first window is taken: up and to the left
// of the last one, until the corner of the picture is reached. Only there the picture has stripes;
// they are out of reach from the hole itself.
TEST(ReTouch, TheSearchStartsAtTheLastMatch) {
  Call call(QPX_FORMAT_BGR24, 64, 64, 64, 64);
  constexpr MRect kHole = {32, 32, 56, 56};
  paint(call.source, [](int32_t x, int32_t y) {
    return x < 12 && y < 12 ? stripe(x) : Color{120, 120, 120};
  });
  paint(call.guide, [](int32_t, int32_t) { return Color{120, 120, 120}; });
  markHole(call.mask, kHole);
  ASSERT_EQ(0, call.run(2, 0.5f));
  EXPECT_GT(stripesIn(call.out, kHole), 50);
}

// Red is known and stays, but no patch of it comes into the hole.
TEST(ReTouch, OtherMaskValuesAreKeptAndNotCopied) {
  for (const uint8_t value :
       {uint8_t{1}, uint8_t{0x20}, uint8_t{0x40}, uint8_t{128}, uint8_t{254}}) {
    Call call(QPX_FORMAT_RGB24, 40, 40, 40, 40);
    paint(call.source, [](int32_t x, int32_t y) {
      return y >= 30 ? Color{250, 0, 0} : Color{static_cast<uint8_t>(x % 4), 100, 100};
    });
    call.guide.fill(0);
    paint(call.guide, [](int32_t x, int32_t y) {
      return y >= 30 ? Color{250, 0, 0} : Color{static_cast<uint8_t>(x % 4), 100, 100};
    });
    markHole(call.mask, {15, 12, 25, 22});
    const MBitmap marks = call.mask.bitmap();
    for (int32_t y = 30; y < 40; ++y) {
      std::memset(marks.plane[0] + ptrdiff_t{marks.pitch[0]} * y, value, 40);
    }
    ASSERT_EQ(0, call.run(3, 0.5f));
    for (int32_t x = 0; x < 40; ++x) EXPECT_EQ(250, call.out.rgb(x, 35).r);
    for (int32_t y = 12; y < 22; ++y) {
      for (int32_t x = 15; x < 25; ++x) EXPECT_LT(call.out.rgb(x, y).r, 10);
    }
  }
}

TEST(ReTouch, GuidesOfAnotherShapeOrLargerOnesFillTheHole) {
  for (const auto& [width, height] : {std::pair{15, 30}, {60, 50}, {30, 8}, {29, 31}}) {
    Call call(QPX_FORMAT_BGR24, 30, 30, width, height);
    paint(call.source, [](int32_t x, int32_t y) {
      return x >= 10 && x < 20 && y >= 10 && y < 20 ? Color{255, 255, 255} : Color{90, 80, 70};
    });
    paint(call.guide, [](int32_t, int32_t) { return Color{90, 80, 70}; });
    markHole(call.mask, {width / 4, height / 4, width * 3 / 4, height * 3 / 4 + 1});
    ASSERT_EQ(0, call.run(1, 0.5f));
    EXPECT_EQ(0, meanError(call.out,
                           [](int32_t, int32_t) {
                             return Color{90, 80, 70};
                           },
                           {0, 0, 30, 30}));
  }
}

TEST(ReTouch, SettingsOutOfRangeAreRefused) {
  Call call(QPX_FORMAT_BGR24, 16, 16, 16, 16);
  markHole(call.mask, {4, 4, 8, 8});
  const Picture before(call.out);
  constexpr float kNone = std::numeric_limits<float>::quiet_NaN();
  constexpr float kEndless = std::numeric_limits<float>::infinity();
  for (const float radius :
       {0.0f, 0.99f, -1.0f, 11.0f, 1e30f, -1e30f, kNone, kEndless, -kEndless}) {
    EXPECT_EQ(2, call.run(radius, 0.5f)) << radius;
  }
  for (const float weight : {-0.001f, 1.001f, kNone, kEndless, -kEndless}) {
    EXPECT_EQ(2, call.run(3, weight)) << weight;
  }
  EXPECT_TRUE(same(before, call.out));
  for (const float radius : {1.0f, 1.9f, 10.0f, 10.99f})
    EXPECT_EQ(0, call.run(radius, 0)) << radius;
  EXPECT_EQ(0, call.run(3, 1));
  // 3.9 counts as 3.
  ASSERT_EQ(0, call.run(3, 0.5f));
  const Picture three(call.out);
  ASSERT_EQ(0, call.run(3.9f, 0.5f));
  EXPECT_TRUE(same(three, call.out));
}

TEST(ReTouch, BadRecordsAreRefused) {
  Call call(QPX_FORMAT_BGR24, 16, 12, 8, 6);
  markHole(call.mask, {2, 2, 4, 4});
  const Picture before(call.out);
  const float settings[] = {1, 0.5f};
  enum { kSource, kGuide, kMask, kOut };
  const auto expectRefused = [&](int which, auto change) {
    MBitmap records[] = {call.source.bitmap(), call.guide.bitmap(), call.mask.bitmap(),
                         call.out.bitmap()};
    change(records[which]);
    EXPECT_EQ(2, ReTouch(&records[0], &records[1], &records[2], settings, &records[3])) << which;
  };
  for (const int which : {kSource, kGuide, kMask, kOut}) {
    expectRefused(which, [](MBitmap& record) { record.plane[0] = nullptr; });
    expectRefused(which, [](MBitmap& record) { --record.width; });
    expectRefused(which, [](MBitmap& record) { --record.height; });
    expectRefused(which, [](MBitmap& record) { record.width = 0; });
    expectRefused(which, [](MBitmap& record) { record.height = -1; });
    expectRefused(which, [](MBitmap& record) { record.pitch[0] = 7; });
    expectRefused(which, [](MBitmap& record) { record.pitch[0] = -record.pitch[0]; });
    expectRefused(which, [](MBitmap& record) { record.width = INT32_MAX; });
    for (const uint32_t format :
         {0u, uint32_t{QPX_FORMAT_RGB24}, uint32_t{QPX_FORMAT_BGRX32}, uint32_t{QPX_FORMAT_NV21}}) {
      expectRefused(which, [=](MBitmap& record) { record.format = format; });
    }
  }
  MBitmap records[] = {call.source.bitmap(), call.guide.bitmap(), call.mask.bitmap(),
                       call.out.bitmap()};
  EXPECT_EQ(2, ReTouch(nullptr, &records[1], &records[2], settings, &records[3]));
  EXPECT_EQ(2, ReTouch(&records[0], nullptr, &records[2], settings, &records[3]));
  EXPECT_EQ(2, ReTouch(&records[0], &records[1], nullptr, settings, &records[3]));
  EXPECT_EQ(2, ReTouch(&records[0], &records[1], &records[2], nullptr, &records[3]));
  EXPECT_EQ(2, ReTouch(&records[0], &records[1], &records[2], settings, nullptr));
  for (MBitmap& record : records) record.format = QPX_FORMAT_RGBX32;
  records[kMask].format = QPX_FORMAT_GREY8;
  EXPECT_EQ(2, ReTouch(&records[0], &records[1], &records[2], settings, &records[3]));
  EXPECT_TRUE(same(before, call.out));
}

// Whatever allocation fails: 4, nothing written, nothing kept.
TEST(ReTouch, SurvivesFailingAllocations) {
  for (const bool firstOnly : {false, true}) {
    for (const int32_t side : {24, 12}) {
      for (const bool patches : {false, true}) {
        FailingMemory::reset();
        Call call(QPX_FORMAT_BGRA32, 24, 24, side, side);
        markHole(call.mask, {2, 2, patches ? side / 2 : side, patches ? side / 2 : side});
        const Picture before(call.out);
        const int64_t runs = FailingMemory::forEachFailure(firstOnly, [&] {
          const int32_t code = call.run(1, 0.5f);
          EXPECT_EQ(FailingMemory::failures() > 0 ? QPX_NO_MEMORY : QPX_OK, code);
          EXPECT_EQ(code == QPX_NO_MEMORY, same(before, call.out));
          EXPECT_EQ(0, FailingMemory::liveBlocks());
        });
        EXPECT_GT(runs, 10);
      }
    }
  }
  FailingMemory::reset();
}

}  // namespace
}  // namespace qpx::testing
