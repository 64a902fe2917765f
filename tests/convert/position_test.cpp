#include "convert/position.h"

#include <gtest/gtest.h>

#include "convert/record.h"
#include "convert/strip_walk.h"

namespace qpx::testing {
namespace {

using convert::SourcePair;

// Without tables: formats are the same on both sides.
ConvRecord recordOf(const ConvParams& params, uint32_t srcWidth, uint32_t srcHeight,
                    uint32_t dstWidth, uint32_t dstHeight) {
  ConvRecord record;
  EXPECT_EQ(QPX_OK, convert::buildRecord({QPX_FORMAT_BGR24, dstWidth, dstHeight},
                                         {QPX_FORMAT_BGR24, srcWidth, srcHeight}, params, &record));
  return record;
}

void expectPair(int32_t first, int32_t second, int32_t fraction, const SourcePair& actual) {
  EXPECT_EQ(first, actual.first);
  EXPECT_EQ(second, actual.second);
  EXPECT_EQ(fraction, actual.fraction);
}

void expectRect(const MRect& expected, const MRect& actual) {
  EXPECT_EQ(expected.left, actual.left);
  EXPECT_EQ(expected.top, actual.top);
  EXPECT_EQ(expected.right, actual.right);
  EXPECT_EQ(expected.bottom, actual.bottom);
}

TEST(Position, NearestTakesTheLeftEdge) {
  const ConvRecord record = recordOf({}, 4, 6, 8, 2);
  for (int32_t x = 0; x < 8; ++x) {
    expectPair(x / 2, x / 2, 0, convert::sourceColumn(record, x));
  }
  expectPair(0, 0, 0, convert::sourceRow(record, 0));
  expectPair(3, 3, 0, convert::sourceRow(record, 1));
}

TEST(Position, BilinearMapsCentres) {
  ConvParams params = {};
  params.interp = 2;
  params.dstX = 100;
  const ConvRecord record = recordOf(params, 4, 4, 8, 4);
  expectPair(0, 0, 0, convert::sourceColumn(record, 100));
  expectPair(0, 1, 0x4000, convert::sourceColumn(record, 101));
  expectPair(0, 1, 0xC000, convert::sourceColumn(record, 102));
  expectPair(2, 3, 0xC000, convert::sourceColumn(record, 106));
  expectPair(3, 3, 0, convert::sourceColumn(record, 107));
}

// One axis at scale 1: the last column has no neighbour, and none is named.
TEST(Position, StaysLeftOfTheClip) {
  ConvParams params = {};
  params.interp = 2;
  const ConvRecord record = recordOf(params, 4, 4, 4, 8);
  expectPair(3, 3, 0, convert::sourceColumn(record, 3));
}

TEST(Position, LastRowIsItsOwnNeighbour) {
  ConvParams params = {};
  params.interp = 2;
  const ConvRecord record = recordOf(params, 4, 4, 4, 8);
  expectPair(0, 0, 0, convert::sourceRow(record, 0));
  expectPair(0, 1, 0x4000, convert::sourceRow(record, 1));
  expectPair(2, 3, 0xC000, convert::sourceRow(record, 6));
  expectPair(3, 3, 0, convert::sourceRow(record, 7));
}

// The 16.16 position of the first row, 9.75, is more than the row number 10.
TEST(Position, ComparesPositionsWithWholeRowNumbers) {
  ConvParams params = {};
  params.interp = 2;
  params.srcX = params.srcY = 10;
  const ConvRecord record = recordOf(params, 4, 4, 8, 8);
  expectPair(9, 10, 0xC000, convert::sourceRow(record, 0));
  expectPair(10, 10, 0, convert::sourceColumn(record, 0));
}

TEST(Position, RepeatsClippedEdges) {
  ConvParams params = {};
  params.clipLeft = 2;
  params.clipTop = 1;
  params.clipRight = 6;
  params.clipBottom = 5;
  const ConvRecord record = recordOf(params, 8, 8, 8, 8);
  const int32_t columns[8] = {2, 2, 2, 3, 4, 5, 5, 5};
  for (int32_t x = 0; x < 8; ++x) {
    expectPair(columns[x], columns[x], 0, convert::sourceColumn(record, x));
  }
  const int32_t rows[8] = {1, 1, 2, 3, 4, 4, 4, 4};
  for (int32_t y = 0; y < 8; ++y) {
    expectPair(rows[y], rows[y], 0, convert::sourceRow(record, y));
  }
}

TEST(Position, OfVeryWidePictures) {
  ConvParams params = {};
  params.interp = 2;
  const ConvRecord record = recordOf(params, 1000000, 1, 500000, 1);
  expectPair(999998, 999999, 0x8000, convert::sourceColumn(record, 499999));
}

TEST(Position, InterpolatesTruncating) {
  EXPECT_EQ(10, convert::between(10, 20, 0));
  EXPECT_EQ(15, convert::between(10, 20, 0x8000));
  EXPECT_EQ(19, convert::between(10, 20, 0xFFFF));
  EXPECT_EQ(10, convert::between(20, 10, 0xFFFF));
  EXPECT_EQ(10, convert::between(11, 10, 1));  // 10.99998
}

// A clockwise quarter turn of 3 x 2 into 2 x 3 at (10, 20): the frame is the source.
TEST(Frame, TurnsARectangle) {
  ConvParams params = {};
  params.orient = 3;
  params.dstX = 10;
  params.dstY = 20;
  const ConvRecord record = recordOf(params, 3, 2, 2, 3);
  expectRect({10, 20, 12, 23}, convert::destinationRect(record));
  expectRect({20, 10, 23, 12}, convert::toFrame(record, {10, 20, 12, 23}));
  // The right-hand column is the source's first row.
  expectRect({20, 10, 23, 11}, convert::toFrame(record, {11, 20, 12, 23}));
  expectRect({21, 11, 23, 12}, convert::toFrame(record, {10, 21, 11, 23}));
}

TEST(Frame, AndBack) {
  for (uint32_t orient = 0; orient < 8; ++orient) {
    ConvParams params = {};
    params.orient = orient;
    params.dstX = 5;
    params.dstY = 9;
    const ConvRecord record = recordOf(params, 30, 20, 13, 17);
    const MRect rect = {7, 10, 12, 25};
    expectRect(rect, convert::fromFrame(record, convert::toFrame(record, rect)));
  }
}

TEST(Frame, MirrorsFarOutWithoutOverflow) {
  ConvParams params = {};
  params.orient = 6;
  params.dstX = params.dstY = INT32_MAX - 8;
  const ConvRecord record = recordOf(params, 8, 8, 8, 8);
  expectRect({INT32_MAX - 8, INT32_MAX - 8, INT32_MAX - 7, INT32_MAX - 6},
             convert::toFrame(record, {INT32_MAX - 1, INT32_MAX - 2, INT32_MAX, INT32_MAX}));
}

// Columns 0, 1 | 2, 3 | 4 of a mirrored picture of five.
TEST(Frame, CellsAreThoseOfTheDestination) {
  const convert::FrameAxis axis = {0, 5, true};
  const int32_t cells[5] = {0, 1, 1, 2, 2};
  for (int32_t x = 0; x < 5; ++x) EXPECT_EQ(cells[x], convert::cellIndex(axis, 2, 0, x));
  const convert::FrameAxis plain = {1, 5, false};
  EXPECT_EQ(1, convert::cellIndex(plain, 2, 1, 2));
}

}  // namespace
}  // namespace qpx::testing
