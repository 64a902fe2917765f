// How a rectangle is cut into strips, and what a frame is handed for each.
#include "convert/strip_walk.h"

#include <gtest/gtest.h>

#include <vector>

#include "convert/record.h"

namespace qpx::testing {
namespace {

struct Strip {
  MRect rect;
  uint8_t* plane[3];
  int32_t pitch[3];
};

std::vector<Strip> g_strips;

int32_t note(const MRect* rect, const int32_t* dstPitch, const int32_t*, uint8_t* const* dst,
             const uint8_t* const*, const ConvRecord*) {
  g_strips.push_back({*rect, {dst[0], dst[1], dst[2]}, {dstPitch[0], dstPitch[1], dstPitch[2]}});
  return QPX_OK;
}

constexpr uint32_t kWidth = 40, kHeight = 200;
uint8_t g_luma[kWidth * kHeight * 3], g_u[kWidth * kHeight / 4], g_v[kWidth * kHeight / 4];

class StripWalk : public ::testing::Test {
 protected:
  void walk(uint32_t format, uint32_t orient, const MRect& rect, uint32_t blockHint = 0) {
    ConvParams params = {};
    params.orient = orient;
    params.blockHint = blockHint;
    ConvRecord record = {};
    ASSERT_EQ(QPX_OK, convert::buildRecord({format, kWidth, kHeight}, {format, kHeight, kWidth},
                                           params, &record));
    const bool planar = format == QPX_FORMAT_I420;
    const int32_t pitch = planar ? 40 : 120;
    const convert::Planes planes = {{g_luma, g_u, g_v},
                                    {pitch, 20, 20},
                                    {g_luma, planar ? g_u : nullptr, planar ? g_v : nullptr},
                                    {pitch, 20, 20}};
    g_strips.clear();
    EXPECT_EQ(QPX_OK, convert::convertRect(record, planes, rect, note));
  }
  void expectStrip(size_t index, const MRect& rect, ptrdiff_t luma, ptrdiff_t chroma) const {
    ASSERT_LT(index, g_strips.size());
    const Strip& strip = g_strips[index];
    EXPECT_EQ(rect.left, strip.rect.left) << index;
    EXPECT_EQ(rect.top, strip.rect.top) << index;
    EXPECT_EQ(rect.right, strip.rect.right) << index;
    EXPECT_EQ(rect.bottom, strip.rect.bottom) << index;
    EXPECT_EQ(luma, strip.plane[0] - g_luma) << index;
    if (strip.plane[1] == strip.plane[0]) return;
    EXPECT_EQ(chroma, strip.plane[1] - g_u) << index;
    EXPECT_EQ(chroma, strip.plane[2] - g_v) << index;
  }
};

// Cells of two rows: the first strip ends with row 33.
TEST_F(StripWalk, FromAnOddRowEndsAtWholeCells) {
  walk(QPX_FORMAT_I420, 1, {5, 3, 30, 90});
  ASSERT_EQ(3u, g_strips.size());
  expectStrip(0, {3, 5, 34, 30}, 40 * 3 + 5, 20 * 1 + 2);
  expectStrip(1, {34, 5, 66, 30}, 40 * 34 + 5, 20 * 17 + 2);
  expectStrip(2, {66, 5, 90, 30}, 40 * 66 + 5, 20 * 33 + 2);
  walk(QPX_FORMAT_I420, 1, {5, 3, 30, 90}, 4);
  ASSERT_EQ(2u, g_strips.size());
  expectStrip(0, {3, 5, 66, 30}, 40 * 3 + 5, 20 * 1 + 2);
  expectStrip(1, {66, 5, 90, 30}, 40 * 66 + 5, 20 * 33 + 2);
}

TEST_F(StripWalk, WithoutCellsHasStripsOf32Rows) {
  walk(QPX_FORMAT_BGR24, 1, {5, 3, 30, 90});
  ASSERT_EQ(3u, g_strips.size());
  expectStrip(0, {3, 5, 35, 30}, 120 * 3 + 15, 0);
  expectStrip(1, {35, 5, 67, 30}, 120 * 35 + 15, 0);
  expectStrip(2, {67, 5, 90, 30}, 120 * 67 + 15, 0);
  walk(QPX_FORMAT_BGR24, 1, {0, 0, 40, 32});
  EXPECT_EQ(1u, g_strips.size());
}

// Clockwise: the strip's last column is its first, of frame rows; rows are frame columns.
TEST_F(StripWalk, BeginsAtTheFarEdgeOfAMirroredPicture) {
  walk(QPX_FORMAT_I420, 3, {5, 3, 30, 40});
  ASSERT_EQ(2u, g_strips.size());
  expectStrip(0, {3, 10, 34, 35}, 40 * 3 + 29, 20 * 1 + 14);
  expectStrip(1, {34, 10, 40, 35}, 40 * 34 + 29, 20 * 17 + 14);
  EXPECT_EQ(40, g_strips[0].pitch[0]);
  walk(QPX_FORMAT_I420, 5, {5, 3, 30, 40});
  ASSERT_EQ(2u, g_strips.size());
  expectStrip(0, {166, 5, 197, 30}, 40 * 33 + 5, 20 * 16 + 2);
  expectStrip(1, {160, 5, 166, 30}, 40 * 39 + 5, 20 * 19 + 2);
  EXPECT_EQ(-40, g_strips[0].pitch[0]);
  EXPECT_EQ(-20, g_strips[0].pitch[1]);
}

TEST_F(StripWalk, CutsToTheDestinationAndStopsAtARefusal) {
  walk(QPX_FORMAT_I420, 1, {-7, -9, 1000, 20});
  ASSERT_EQ(1u, g_strips.size());
  expectStrip(0, {0, 0, 20, 40}, 0, 0);
  walk(QPX_FORMAT_I420, 1, {40, 0, 80, 20});
  EXPECT_TRUE(g_strips.empty());
}

}  // namespace
}  // namespace qpx::testing
