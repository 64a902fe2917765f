// Which stage each pixel of a split request goes through. Full-range NV21 to 32-bit BGR shows it:
// the widest kernels, which the third stage alone reaches, have an arithmetic of their own.
#include <algorithm>
#include <vector>

#include "postprocess/context.h"
#include "support/picture.h"

namespace qpx::testing {
namespace {

constexpr uint32_t kFrom = QPX_FORMAT_NV21 | 0x1000;
constexpr uint32_t kTo = QPX_FORMAT_BGRA32;
constexpr int32_t kWidth = 64, kHeight = 40;

// How planes and pitches of a call lie.
struct Places {
  int32_t srcOffset = 0, dstOffset = 0;
  int32_t srcPitch = 64, dstPitch = 256;
  int32_t chromaOffset = 0, chromaPitch = 64;
};

// The same noise wherever it lies.
class Request {
 public:
  explicit Request(const Places& places) : places_(places), src_(8192), chroma_(4096) {
    Random luma(5), chroma(6);
    for (int32_t y = 0; y < kHeight; ++y) {
      for (int32_t x = 0; x < kWidth; ++x) *at(&src_, places.srcOffset, lumaAt(x, y)) = luma.byte();
    }
    for (int32_t y = 0; y < kHeight / 2; ++y) {
      for (int32_t x = 0; x < kWidth; ++x) {
        *at(&chroma_, places.chromaOffset, places.chromaPitch * y + x) = chroma.byte();
      }
    }
  }

  // Rows of B, G, R, A without room between them; 9 where nothing was written.
  std::vector<uint8_t> run(const PostProcessOption& option, int32_t width, int32_t height,
                           const MRect& rect) {
    const Context context(imageOf(kFrom, kWidth, kHeight),
                          imageOf(kTo, static_cast<uint32_t>(width), static_cast<uint32_t>(height)),
                          option);
    std::vector<uint8_t> dst(
        static_cast<size_t>(places_.dstPitch) * static_cast<size_t>(height) + 8, 9);
    const uint8_t* const pairs = at(&chroma_, places_.chromaOffset, 0);
    const uint8_t* const from[3] = {at(&src_, places_.srcOffset, 0), pairs + 1, pairs};
    uint8_t* const to[3] = {at(&dst, places_.dstOffset, 0), nullptr, nullptr};
    const int32_t fromPitch[3] = {places_.srcPitch, places_.chromaPitch, places_.chromaPitch};
    const int32_t toPitch[3] = {places_.dstPitch, 0, 0};
    EXPECT_EQ(QPX_OK, MPProcess(context.handle, from, &rect, fromPitch, to, toPitch));
    std::vector<uint8_t> rows;
    for (int32_t y = 0; y < height; ++y) {
      const uint8_t* const row = to[0] + ptrdiff_t{places_.dstPitch} * y;
      rows.insert(rows.end(), row, row + ptrdiff_t{4} * width);
    }
    return rows;
  }

  // What the widest kernel makes of a pixel at full scale.
  std::vector<uint8_t> wide(int32_t x, int32_t y) {
    const int32_t luma = *at(&src_, places_.srcOffset, lumaAt(x, y));
    const uint8_t* const pair =
        at(&chroma_, places_.chromaOffset, places_.chromaPitch * (y / 2) + x / 2 * 2);
    const int32_t v = pair[0], u = pair[1];
    const auto byte = [](int32_t sum) {
      return static_cast<uint8_t>(std::clamp(sum, 0, 0x3FC0) >> 6);
    };
    return {byte(64 * luma + 113 * u - 14516), byte(64 * luma + 8669 - 46 * v - 22 * u),
            byte(64 * luma + 90 * v - 11485), 255};
  }

 private:
  int32_t lumaAt(int32_t x, int32_t y) const { return places_.srcPitch * y + x; }
  // Vectors of this size begin at multiples of 4 at least.
  static uint8_t* at(std::vector<uint8_t>* block, int32_t offset, int32_t index) {
    return block->data() + offset + index;
  }

  Places places_;
  std::vector<uint8_t> src_, chroma_;
};

PostProcessOption optionOf(uint32_t alignMode) {
  PostProcessOption option = {};
  option.alignMode = alignMode;
  option.alpha = 255;
  return option;
}

constexpr MRect kRequest = {3, 5, 61, 37};
constexpr MRect kInner = {16, 8, 48, 32};

bool contains(const MRect& rect, int32_t x, int32_t y) {
  return x >= rect.left && x < rect.right && y >= rect.top && y < rect.bottom;
}

// The third stage for `inner`, the tables of the others around it.
void expectSplit(const Places& places, const MRect& inner) {
  Request request(places);
  const auto tables = request.run(optionOf(1), kWidth, kHeight, kRequest);
  const auto split = request.run(optionOf(256), kWidth, kHeight, kRequest);
  int32_t apart = 0;
  for (int32_t y = 0; y < kHeight; ++y) {
    for (int32_t x = 0; x < kWidth; ++x) {
      const auto at = static_cast<ptrdiff_t>(4 * (kWidth * y + x));
      std::vector<uint8_t> expected(tables.begin() + at, tables.begin() + at + 4);
      if (contains(inner, x, y)) expected = request.wide(x, y);
      ASSERT_TRUE(std::equal(expected.begin(), expected.end(), split.begin() + at))
          << x << ", " << y;
      if (!std::equal(expected.begin(), expected.end(), tables.begin() + at)) ++apart;
    }
  }
  EXPECT_EQ(inner.left<inner.right, apart> 100);
}

TEST(SplitProcess, SendsTheAlignedMiddleThroughTheThirdStage) { expectSplit({}, kInner); }

TEST(SplitProcess, LooksAtTheFirstPlanesAlone) {
  expectSplit({.chromaOffset = 3, .chromaPitch = 67}, kInner);
}

TEST(SplitProcess, WantsAddressesAndPitchesThatAreMultiplesOf4) {
  for (const int32_t off : {1, 2, 3}) {
    expectSplit({.srcOffset = off}, {});
    expectSplit({.dstOffset = off}, {});
    expectSplit({.srcPitch = 64 + off}, {});
    expectSplit({.dstPitch = 256 + off}, {});
  }
  expectSplit({.srcOffset = 4, .dstOffset = 4, .srcPitch = 68, .dstPitch = 260}, kInner);
}

// Whether anything of a turned, resampled picture goes through the third stage.
bool usesWideBlocks(int32_t width, int32_t height, uint32_t orientation) {
  Request request({.dstPitch = 4 * 64});
  PostProcessOption single = optionOf(1), split = optionOf(256);
  single.resampleMode = split.resampleMode = 2;
  single.orientation = split.orientation = orientation;
  const MRect whole = {0, 0, width, height};
  return request.run(single, width, height, whole) != request.run(split, width, height, whole);
}

// Blocks of a mirrored picture begin at its far edges.
TEST(SplitProcess, WantsMirroredPicturesOfWholeBlocks) {
  EXPECT_TRUE(usesWideBlocks(48, 60, 3));
  EXPECT_TRUE(usesWideBlocks(44, 64, 3));
  EXPECT_FALSE(usesWideBlocks(46, 60, 3));
  EXPECT_FALSE(usesWideBlocks(48, 62, 3));
  EXPECT_FALSE(usesWideBlocks(45, 60, 3));
  EXPECT_FALSE(usesWideBlocks(48, 61, 3));
}

// Narrower than 16 columns or lower than 8 rows there is no middle.
TEST(SplitProcess, LeavesSmallRequestsToTheOthers) {
  Request request({});
  const auto differs = [&](const MRect& rect) {
    return request.run(optionOf(1), kWidth, kHeight, rect) !=
           request.run(optionOf(256), kWidth, kHeight, rect);
  };
  EXPECT_TRUE(differs({16, 8, 32, 16}));
  EXPECT_FALSE(differs({16, 8, 31, 40}));
  EXPECT_FALSE(differs({17, 8, 47, 40}));
  EXPECT_FALSE(differs({0, 8, 64, 15}));
  EXPECT_FALSE(differs({0, 9, 64, 23}));
}

// A request of which pieces differ from the whole. Without a wide middle there is one of blocks of
// 2x2.
void expectPieces(uint32_t format, uint32_t dither, uint32_t orientation, const MRect& request) {
  const ConversionPicture src(QPX_FORMAT_NV21, kWidth, kHeight, 1);
  const auto runAs = [&](uint32_t alignMode, const MRect& rect, ConversionPicture* dst) {
    PostProcessOption option = optionOf(alignMode);
    option.palette = dither;
    option.orientation = orientation;
    const Context context(imageOf(QPX_FORMAT_NV21, kWidth, kHeight),
                          imageOf(format, kWidth, kHeight), option);
    ASSERT_EQ(QPX_OK, context.result);
    ASSERT_EQ(dither, context.handle->stage[0]->record.dither);
    ASSERT_EQ(QPX_OK, context.run(src, &rect, dst));
  };
  ConversionPicture whole(format, kWidth, kHeight, 2);
  ConversionPicture pieces(whole), split(whole);
  runAs(1, request, &whole);
  runAs(256, request, &split);
  runAs(2, {4, 6, 16, 36}, &pieces);
  for (const MRect& margin : {MRect{request.left, request.top, request.right, 6},
                              MRect{request.left, 36, request.right, request.bottom},
                              MRect{request.left, 6, 4, 36}, MRect{16, 6, request.right, 36}}) {
    runAs(1, margin, &pieces);
  }
  EXPECT_TRUE(pieces.sameBytes(split));
  EXPECT_FALSE(whole.sameBytes(split));
}

// The rests of dithered pixels are handed on within a piece.
TEST(SplitProcess, DithersPieceByPiece) { expectPieces(QPX_FORMAT_RGB565, 1, 0, {3, 5, 17, 37}); }

// Its cells begin with each piece, at the column that comes first in the source.
TEST(SplitProcess, PacksYuyvPieceByPiece) {
  expectPieces(QPX_FORMAT_YUYV, 0, 0, {3, 5, 17, 37});
  expectPieces(QPX_FORMAT_YUYV, 0, 4, {3, 5, 16, 37});
  expectPieces(QPX_FORMAT_YUYV, 0, 2, {4, 5, 17, 37});
  expectPieces(QPX_FORMAT_YUYV, 0, 6, {4, 5, 17, 37});
}

}  // namespace
}  // namespace qpx::testing
