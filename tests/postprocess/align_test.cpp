#include "postprocess/context.h"
#include "support/picture.h"

namespace qpx::testing {
namespace {

constexpr MRect kZero = {};

MRect toSource(const Context& context, MRect dst) {
  MRect src = kZero;
  EXPECT_EQ(QPX_OK, MPPAlign(context.handle, &src, &dst));
  return src;
}

MRect toDestination(const Context& context, MRect src) {
  MRect dst = kZero;
  EXPECT_EQ(QPX_OK, MPPAlign(context.handle, &src, &dst));
  return dst;
}

PostProcessImage bgr(uint32_t width, uint32_t height) {
  return imageOf(QPX_FORMAT_BGR24, width, height);
}

TEST(PostProcessAlign, RefusesBothAndNone) {
  const Context context(bgr(8, 8), bgr(8, 8), {});
  MRect one = {1, 1, 2, 2}, other = {3, 3, 4, 4}, none = kZero, empty = kZero;
  EXPECT_EQ(QPX_BAD_PARAM, MPPAlign(context.handle, &one, &other));
  EXPECT_EQ(QPX_BAD_PARAM, MPPAlign(context.handle, &none, &empty));
  EXPECT_EQ(QPX_BAD_PARAM, MPPAlign(nullptr, &one, &none));
  EXPECT_EQ(QPX_BAD_PARAM, MPPAlign(context.handle, nullptr, &one));
  EXPECT_EQ(QPX_BAD_PARAM, MPPAlign(context.handle, &one, nullptr));
  expectRect({1, 1, 2, 2}, one);
  expectRect({3, 3, 4, 4}, other);
}

TEST(PostProcessAlign, MovesByTheOriginsAtFullScale) {
  PostProcessOption option = {};
  option.srcLeft = 10;
  option.dstTop = 5;
  const Context context(bgr(20, 20), bgr(20, 20), option);
  expectRect({12, 3, 17, 8}, toSource(context, {2, 8, 7, 13}));
  expectRect({2, 8, 7, 13}, toDestination(context, {12, 3, 17, 8}));
}

TEST(PostProcessAlign, Scales) {
  const Context half(bgr(40, 40), bgr(20, 20), {}), twice(bgr(20, 20), bgr(40, 40), {});
  expectRect({6, 8, 10, 20}, toSource(half, {3, 4, 5, 10}));
  expectRect({3, 4, 5, 10}, toDestination(half, {6, 8, 10, 20}));
  expectRect({3, 4, 5, 10}, toSource(twice, {6, 8, 10, 20}));
  expectRect({6, 8, 10, 20}, toDestination(twice, {3, 4, 5, 10}));
}

// Twice as large: pixel 6 lies at 2.75, pixel 9 at 4.25; three more columns than the floor.
TEST(PostProcessAlign, HasMarginsWithBilinear) {
  PostProcessOption option = {};
  option.resampleMode = 2;
  const Context context(bgr(20, 20), bgr(40, 40), option);
  expectRect({2, 2, 7, 7}, toSource(context, {6, 6, 10, 10}));
  expectRect({0, 0, 20, 20}, toSource(context, {0, 0, 40, 40}));
  expectRect({16, 16, 20, 20}, toSource(context, {34, 34, 40, 40}));
  // (16384 + 32768 + 3 * 65536) / 32768 = 7.5; up to 5 it is 11.49.
  expectRect({7, 7, 14, 14}, toDestination(context, {3, 3, 5, 5}));
  expectRect({0, 0, 40, 40}, toDestination(context, {0, 0, 20, 20}));
}

TEST(PostProcessAlign, TurnsAndMirrors) {
  PostProcessOption option = {};
  option.orientation = 3;
  const Context context(bgr(30, 20), bgr(20, 30), option);
  // The top right corner of the destination is the top left one of the source.
  expectRect({0, 0, 4, 6}, toSource(context, {14, 0, 20, 4}));
  expectRect({14, 0, 20, 4}, toDestination(context, {0, 0, 4, 6}));
  option.orientation = 6;
  const Context half(bgr(30, 20), bgr(30, 20), option);
  expectRect({0, 0, 4, 6}, toSource(half, {26, 14, 30, 20}));
  expectRect({26, 14, 30, 20}, toDestination(half, {0, 0, 4, 6}));
}

TEST(PostProcessAlign, CutsToTheImages) {
  const Context context(bgr(20, 20), bgr(40, 40), {});
  expectRect({0, 0, 20, 20}, toSource(context, {-5, INT32_MIN, INT32_MAX, 99}));
  expectRect({0, 0, 40, 40}, toDestination(context, {-5, INT32_MIN, INT32_MAX, 99}));
  expectRect(kZero, toSource(context, {40, 0, 50, 10}));
  expectRect(kZero, toDestination(context, {7, 7, 7, 9}));
  expectRect(kZero, toSource(context, {9, 9, 3, 12}));
}

// Edges repeat columns of the clip, wherever that lies.
TEST(PostProcessAlign, NamesTheClippedEdges) {
  PostProcessOption option = {};
  option.clipLeft = 6;
  option.clipTop = 1;
  option.clipRight = 12;
  option.clipBottom = 20;
  const Context context(bgr(20, 20), bgr(20, 20), option);
  expectRect({0, 0, 7, 2}, toSource(context, {0, 0, 1, 1}));
}

TEST(PostProcessAlign, RoundTripsCover) {
  Random random(4);
  for (int32_t i = 0; i < 2000; ++i) {
    PostProcessOption option = {};
    option.resampleMode = static_cast<uint32_t>(random.between(1, 2));
    option.orientation = static_cast<uint32_t>(random.between(0, 7));
    option.dstLeft = random.between(0, 9);
    option.srcTop = random.between(0, 9);
    const int32_t width = random.between(1, 50), height = random.between(1, 50);
    const Context context(bgr(static_cast<uint32_t>(random.between(1, 50)),
                              static_cast<uint32_t>(random.between(1, 50))),
                          bgr(static_cast<uint32_t>(width), static_cast<uint32_t>(height)), option);
    ASSERT_EQ(QPX_OK, context.result);
    const int32_t x = random.between(0, width - 1), y = random.between(0, height - 1);
    const MRect dst = {option.dstLeft + x, y, option.dstLeft + random.between(x + 1, width),
                       random.between(y + 1, height)};
    const MRect back = toDestination(context, toSource(context, dst));
    ASSERT_LE(back.left, dst.left) << i;
    ASSERT_LE(back.top, dst.top) << i;
    ASSERT_GE(back.right, dst.right) << i;
    ASSERT_GE(back.bottom, dst.bottom) << i;
  }
}

}  // namespace
}  // namespace qpx::testing
