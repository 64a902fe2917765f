// Rows of the widest conversions: vector forms against plain ones over all pairs of luma and
// chroma, lengths, shapes of rows and orders of pixels.
#include "simd/wide_rows.h"

#include "simd/row_bytes.h"
#include "simd/target_test.h"

namespace qpx::simd {
namespace {

constexpr FoldedWeights kSix = {90, 11485, 46, 22, 8669, 113, 14516, 6};
constexpr FoldedWeights kSeven = {179, 22906, 91, 44, 17403, 227, 28968, 7};
constexpr ptrdiff_t kPairs[] = {0, 1, 2, 3, 7, 8, 9, 15, 16, 17, 31, 32, 33, 34, 63, 64, 65, 130};

class WideRowsTest : public TargetTest {};
QPX_FOR_EACH_TARGET(WideRowsTest);

TEST_P(WideRowsTest, ShapesAndOrdersOfEveryLength) {
  const Bytes noise = randomBytes(4096, 1);
  const uint8_t* const at = noise.data() + 1;
  for (const ptrdiff_t pairs : kPairs) {
    const YuvSource shapes[] = {{at, at + 300, at + 600, 1, 1},
                                {at, at + 301, at + 300, 1, 2},
                                {at, at + 300, at + 301, 1, 2},
                                {at, at + 1, at + 3, 2, 4},
                                {at + 1, at, at + 2, 2, 4}};
    for (const YuvSource& src : shapes) {
      for (const PixelOrder order :
           {PixelOrder::rgb24, PixelOrder::bgr24, PixelOrder::rgba32, PixelOrder::bgra32}) {
        expectSameForms<WideRows>(2 * pairs * bytesOf(order),
                                  [&](const WideRows& rows, uint8_t* dst) {
                                    rows.toPixelsFolded(src, kSix, order, 99, dst, pairs);
                                  });
      }
      expectSameForms<WideRows>(8 * pairs, [&](const WideRows& rows, uint8_t* dst) {
        rows.toPixelsFine(src, 99, dst, pairs);
      });
    }
    expectSameForms<WideRows>(8 * pairs, [&](const WideRows& rows, uint8_t* dst) {
      rows.toPixelsFullChroma(shapes[0], kSeven, 99, dst, 2 * pairs);
    });
    expectSameForms<WideRows>(8 * pairs, [&](const WideRows& rows, uint8_t* dst) {
      rows.toPixelsFullChroma(shapes[0], kSix, 99, dst, 2 * pairs);
    });
  }
}

// Every U beside every V, at luma of all kinds.
TEST_P(WideRowsTest, AllChroma) {
  Bytes y = randomBytes(131072, 2), u(65536), v(65536);
  for (size_t i = 0; i < 65536; ++i) {
    u[i] = static_cast<uint8_t>(i);
    v[i] = static_cast<uint8_t>(i >> 8);
  }
  const YuvSource src = {y.data(), u.data(), v.data(), 1, 1};
  for (const FoldedWeights& weights : {kSix, kSeven}) {
    expectSameForms<WideRows>(4 * 131072, [&](const WideRows& rows, uint8_t* dst) {
      rows.toPixelsFolded(src, weights, PixelOrder::bgra32, 255, dst, 65536);
    });
    expectSameForms<WideRows>(4 * 65536, [&](const WideRows& rows, uint8_t* dst) {
      rows.toPixelsFullChroma(src, weights, 255, dst, 65536);
    });
  }
  expectSameForms<WideRows>(4 * 131072, [&](const WideRows& rows, uint8_t* dst) {
    rows.toPixelsFine(src, 255, dst, 65536);
  });
}

}  // namespace
}  // namespace qpx::simd
