#include "convert/record.h"

#include <gtest/gtest.h>
#include <kesbase.h>

#include <initializer_list>

#include "convert/conversion_picture.h"
#include "convert/format_decoder.h"
#include "convert/tables.h"
#include "support/failing_memory.h"

namespace qpx::testing {
namespace {

using convert::Side;

class Record : public ::testing::Test {
 protected:
  void TearDown() override { convert::freeTables(&record_); }

  int32_t build(const Side& src, const Side& dst) {
    convert::freeTables(&record_);
    return convert::buildRecord(dst, src, params_, &record_);
  }
  void mustBuild(const Side& src, const Side& dst) { ASSERT_EQ(QPX_OK, build(src, dst)); }

  void expectDst(int32_t x, int32_t y, uint32_t width, uint32_t height) const {
    EXPECT_EQ(x, record_.dstOrgX);
    EXPECT_EQ(y, record_.dstOrgY);
    EXPECT_EQ(width, record_.dst.width);
    EXPECT_EQ(height, record_.dst.height);
  }
  void expectSrc(int32_t x, int32_t y, uint32_t width, uint32_t height) const {
    EXPECT_EQ(x, record_.srcOrgX);
    EXPECT_EQ(y, record_.srcOrgY);
    EXPECT_EQ(width, record_.src.width);
    EXPECT_EQ(height, record_.src.height);
  }
  void expectSteps(uint32_t x, uint32_t y) const {
    EXPECT_EQ(x, record_.stepX);
    EXPECT_EQ(y, record_.stepY);
  }

  ConvParams params_ = {};
  ConvRecord record_ = {};
};

constexpr uint32_t kI420 = QPX_FORMAT_I420;
constexpr uint32_t kBgr = QPX_FORMAT_BGR24;

TEST_F(Record, HasStepsTruncated) {
  mustBuild({kBgr, 100, 50}, {kBgr, 300, 150});
  expectSteps(21845, 21845);
  EXPECT_EQ(196608u, record_.invStepX);
  EXPECT_EQ(0u, record_.isUnit);
  mustBuild({kBgr, 7, 5}, {kBgr, 3, 4});
  expectSteps(152917, 81920);
}

TEST_F(Record, KnowsHalfAndUnit) {
  mustBuild({kBgr, 4, 6}, {kBgr, 8, 12});
  EXPECT_EQ(1u, record_.isHalf);
  EXPECT_EQ(0u, record_.isUnit);
  mustBuild({kBgr, 4, 6}, {kBgr, 4, 6});
  EXPECT_EQ(0u, record_.isHalf);
  EXPECT_EQ(1u, record_.isUnit);
  mustBuild({kBgr, 4, 6}, {kBgr, 4, 12});
  EXPECT_EQ(0u, record_.isHalf + record_.isUnit);
}

TEST_F(Record, InterpolatesChromaOfRgbSourcesAlone) {
  params_.interp = 2;
  mustBuild({kBgr, 4, 6}, {kI420, 5, 6});
  EXPECT_EQ(1u, record_.bilinearY);
  EXPECT_EQ(1u, record_.bilinearU);
  mustBuild({kI420, 4, 6}, {kBgr, 5, 6});
  EXPECT_EQ(1u, record_.bilinearY);
  EXPECT_EQ(0u, record_.bilinearU + record_.bilinearV);
  mustBuild({kI420, 4, 6}, {kBgr, 4, 6});
  EXPECT_EQ(0u, record_.bilinearY);
  params_.interp = 3;
  mustBuild({kBgr, 4, 6}, {kI420, 5, 6});
  EXPECT_EQ(0u, record_.bilinearY);
}

TEST_F(Record, ExchangesTheDestinationSidesForSteps) {
  params_.orient = 1;
  params_.dstX = 3;
  params_.dstY = 8;
  mustBuild({QPX_FORMAT_YUYV, 40, 20}, {QPX_FORMAT_YUYV, 20, 80});
  expectSteps(32768, 65536);
  expectDst(8, 3, 20, 80);
  EXPECT_EQ(1, record_.dstSubX[1]);
  EXPECT_EQ(2, record_.dstSubY[1]);
  EXPECT_EQ(2, record_.srcSubX[1]);
  EXPECT_EQ(4, record_.dstStep[1]);
}

TEST_F(Record, NegatesStepsOfAMirroredPicture) {
  params_.orient = 2;
  mustBuild({kBgr, 4, 6}, {QPX_FORMAT_NV21, 4, 6});
  EXPECT_EQ(-1, record_.dstStep[0]);
  EXPECT_EQ(-2, record_.dstStep[1]);
  EXPECT_EQ(1u, record_.mirrorX);
  EXPECT_EQ(0u, record_.swapXY + record_.mirrorY);
}

TEST_F(Record, ClampsAdjustmentsAndAlpha) {
  params_.brightness = 1000;
  params_.contrast = -1000;
  params_.saturation = 129;
  params_.alpha = 300;
  mustBuild({kI420, 4, 6}, {kBgr, 4, 6});
  EXPECT_EQ(128, record_.params.brightness);
  EXPECT_EQ(-128, record_.params.contrast);
  EXPECT_EQ(128, record_.params.saturation);
  EXPECT_EQ(255u, record_.alpha);
}

TEST_F(Record, DithersSixteenBitsAlone) {
  params_.dither = 9;
  mustBuild({kI420, 4, 6}, {QPX_FORMAT_RGB565, 4, 6});
  EXPECT_EQ(1u, record_.dither);
  mustBuild({kI420, 4, 6}, {QPX_FORMAT_BGR666, 4, 6});
  EXPECT_EQ(0u, record_.dither);
}

TEST_F(Record, ChoosesBlockModes) {
  const auto mode = [this](uint32_t asked, uint32_t src, uint32_t dst, uint32_t dstWidth) {
    params_.blockMode = asked;
    EXPECT_EQ(QPX_OK, build({src, 8, 8, noisePalette()}, {dst, dstWidth, 8}));
    return record_.blockMode;
  };
  EXPECT_EQ(1u, mode(0, kI420, kBgr, 8));
  EXPECT_EQ(1u, mode(5, kI420, kBgr, 8));
  EXPECT_EQ(2u, mode(2, kI420, kBgr, 8));
  EXPECT_EQ(3u, mode(3, kI420, kBgr, 8));
  EXPECT_EQ(3u, mode(4, kI420, kBgr, 8));
  EXPECT_EQ(1u, mode(3, 0x50000820, kBgr, 8));
  EXPECT_EQ(1u, mode(3, kBgr, 0x50000A13, 8));
  EXPECT_EQ(1u, mode(3, QPX_FORMAT_PALETTE8, kBgr, 8));
  params_.interp = 2;
  EXPECT_EQ(4u, mode(4, kI420, kI420, 16));
  EXPECT_EQ(3u, mode(4, kI420, kI420, 8));
  EXPECT_EQ(3u, mode(4, kI420, QPX_FORMAT_NV21, 16));
  for (uint32_t orient = 0; orient < 8; ++orient) {
    params_.orient = orient;
    EXPECT_EQ(orient == 0 || orient == 3 || orient == 5 ? 4u : 3u, mode(4, kI420, kI420, 16));
  }
}

TEST_F(Record, LowersBlocksWithAUnitLut) {
  params_.blockMode = 3;
  params_.brightness = 4;
  mustBuild({kI420, 8, 8}, {kI420, 8, 8});
  EXPECT_EQ(2u, record_.blockMode);
  mustBuild({kI420, 8, 8}, {kI420, 16, 8});
  EXPECT_EQ(3u, record_.blockMode);
}

// 300 x 100 into 200 x 200: 200 x 66.7 fits, in the middle.
TEST_F(Record, ShrinksTheDestinationToFit) {
  params_.fit = 1;
  params_.dstX = 10;
  params_.dstY = 20;
  mustBuild({kBgr, 300, 100}, {kBgr, 200, 200});
  expectDst(10, 20 + 67, 200, 66);
  expectSteps(98304, 98304);
  mustBuild({kBgr, 100, 300}, {kBgr, 200, 200});
  expectDst(10 + 67, 20, 66, 200);
  expectSteps(98304, 98304);
}

// Blocks of four: 66 becomes 64, the margin of 68 is a multiple already.
TEST_F(Record, ShrinksToWholeBlocks) {
  params_.fit = 1;
  params_.blockMode = 3;
  mustBuild({kBgr, 300, 100}, {kBgr, 200, 200});
  expectDst(0, 68, 200, 64);
  params_.blockMode = 2;
  mustBuild({kBgr, 300, 102}, {kBgr, 200, 200});
  expectDst(0, 66, 200, 68);
}

// Turned, the picture is 100 wide and 300 high: the destination loses columns.
TEST_F(Record, ShrinksATurnedDestination) {
  params_.fit = 1;
  params_.orient = 3;
  params_.dstX = 10;
  params_.dstY = 20;
  mustBuild({kBgr, 300, 100}, {kBgr, 200, 200});
  expectDst(20, 10 + 67, 66, 200);
  expectSteps(98304, 98304);
}

// 300 x 100 into 100 x 100: the middle 100 columns. Blocks of four round margins down.
TEST_F(Record, CropsTheSourceToFit) {
  params_.fit = 2;
  params_.srcX = 5;
  params_.srcY = 6;
  mustBuild({kBgr, 300, 100}, {kBgr, 100, 100});
  expectSrc(105, 6, 100, 100);
  expectSteps(65536, 65536);
  EXPECT_EQ(1u, record_.isUnit);
  EXPECT_EQ(105, record_.clipL);
  EXPECT_EQ(205, record_.clipR);
  mustBuild({kBgr, 100, 301}, {kBgr, 100, 100});
  expectSrc(5, 6 + 101, 100, 99);
  params_.blockMode = 3;
  mustBuild({kBgr, 302, 100}, {kBgr, 100, 100});
  expectSrc(5 + 100, 6, 102, 100);
}

// Turned, 60 x 40 is 40 wide and 60 high: of 300 x 100 the middle 66 columns, at 100 / 60.
TEST_F(Record, CropsATurnedSource) {
  params_.fit = 2;
  for (const uint32_t orient : {1u, 3u, 5u, 7u}) {
    params_.orient = orient;
    mustBuild({kBgr, 300, 100}, {kBgr, 60, 40});
    expectSrc(117, 0, 66, 100);
    expectDst(0, 0, 60, 40);
    expectSteps(109226, 109226);
  }
  // Of 100 x 300 the middle 150 rows, at 100 / 40.
  mustBuild({kBgr, 100, 300}, {kBgr, 60, 40});
  expectSrc(0, 75, 100, 150);
  expectSteps(163840, 163840);
}

// As blocks of four; the mode stays, for it still resamples.
TEST_F(Record, FitsBilinearBlocksOfFour) {
  params_.interp = 2;
  params_.blockMode = 4;
  params_.fit = 1;
  mustBuild({kI420, 300, 100}, {kI420, 200, 200});
  expectDst(0, 68, 200, 64);
  EXPECT_EQ(4u, record_.blockMode);
  params_.fit = 2;
  mustBuild({kI420, 302, 100}, {kI420, 200, 200});
  expectSrc(100, 0, 102, 100);
  expectSteps(32768, 32768);
  EXPECT_EQ(4u, record_.blockMode);
  mustBuild({kI420, 302, 100}, {kI420, 100, 100});
  EXPECT_EQ(1u, record_.isUnit);
  EXPECT_EQ(3u, record_.blockMode);
}

TEST_F(Record, FitsNothingWhereStepsAgree) {
  params_.fit = 3;
  params_.blockMode = 3;
  mustBuild({kBgr, 30, 10}, {kBgr, 90, 30});
  expectDst(0, 0, 90, 30);
  expectSrc(0, 0, 30, 10);
}

TEST_F(Record, ShrunkDestinationLeavesNothingToCrop) {
  params_.fit = 3;
  mustBuild({kBgr, 300, 100}, {kBgr, 200, 200});
  expectDst(0, 67, 200, 66);
  expectSrc(0, 0, 300, 100);
}

TEST_F(Record, RefusesAFitThatLeavesNothing) {
  params_.fit = 1;
  EXPECT_EQ(QPX_BAD_PARAM, build({kBgr, 1000, 1}, {kBgr, 10, 10}));
}

// Twice as large: pixel 0 lies at -0.25, pixel 7 at 3.25.
TEST_F(Record, HasItsValidWindow) {
  mustBuild({kBgr, 4, 4}, {kBgr, 8, 4});
  EXPECT_EQ(1, record_.validX0);
  EXPECT_EQ(8, record_.validX1);
  EXPECT_EQ(1, record_.validY0);
  EXPECT_EQ(5, record_.validY1);
  params_.clipLeft = 1;
  params_.clipRight = 3;
  params_.clipBottom = 4;
  params_.dstX = 10;
  mustBuild({kBgr, 4, 4}, {kBgr, 8, 4});
  EXPECT_EQ(13, record_.validX0);
  EXPECT_EQ(16, record_.validX1);
  EXPECT_EQ(1, record_.clipL);
  EXPECT_EQ(4, record_.clipB);
}

TEST_F(Record, TakesAClipAroundTheSource) {
  params_.srcX = 8;
  params_.clipRight = 20;
  params_.clipBottom = 4;
  mustBuild({kBgr, 4, 4}, {kBgr, 8, 4});
  EXPECT_EQ(-15, record_.validX0);  // (16384 + 32768 - 8 * 65536) / 32768 = -14.5
}

TEST_F(Record, RefusesBadSides) {
  EXPECT_EQ(QPX_BAD_PARAM, build({kBgr, 0, 4}, {kBgr, 4, 4}));
  EXPECT_EQ(QPX_BAD_PARAM, build({kBgr, 4, 4}, {kBgr, 4, 0}));
  EXPECT_EQ(QPX_BAD_PARAM, build({kBgr, 0x80000000, 4}, {kBgr, 4, 4}));
  EXPECT_EQ(QPX_BAD_PARAM, build({kBgr, 4, 4}, {kBgr, 4, 0xFFFFFFFF}));
  EXPECT_EQ(QPX_BAD_PARAM, build({kBgr, 1, 4}, {kBgr, 65537, 4}));
  EXPECT_EQ(QPX_BAD_PARAM, build({kBgr, 65536, 4}, {kBgr, 1, 4}));
  EXPECT_EQ(QPX_OK, build({kBgr, 65535, 4}, {kBgr, 1, 4}));
  EXPECT_EQ(QPX_OK, build({kBgr, 0x7FFFFFFF, 4}, {kBgr, 0x7FFFFFFF, 4}));
  for (int32_t ConvParams::*origin :
       {&ConvParams::srcX, &ConvParams::srcY, &ConvParams::dstX, &ConvParams::dstY}) {
    params_ = {};
    params_.*origin = -1;
    EXPECT_EQ(QPX_BAD_PARAM, build({kBgr, 4, 4}, {kBgr, 4, 4}));
    params_.*origin = 0x7FFFFFFF - 3;
    EXPECT_EQ(QPX_BAD_PARAM, build({kBgr, 4, 4}, {kBgr, 4, 4}));
    params_.*origin = 0x7FFFFFFF - 4;
    EXPECT_EQ(QPX_OK, build({kBgr, 4, 4}, {kBgr, 4, 4}));
  }
}

TEST_F(Record, RefusesBadClips) {
  const auto clipped = [this](int32_t left, int32_t top, int32_t right, int32_t bottom) {
    params_.clipLeft = left;
    params_.clipTop = top;
    params_.clipRight = right;
    params_.clipBottom = bottom;
    return build({kBgr, 4, 4}, {kBgr, 4, 4});
  };
  EXPECT_EQ(QPX_OK, clipped(0, 0, 4, 4));
  EXPECT_EQ(QPX_BAD_PARAM, clipped(0, 0, 0, 4));
  EXPECT_EQ(QPX_BAD_PARAM, clipped(0, 4, 4, 4));
  EXPECT_EQ(QPX_BAD_PARAM, clipped(-1, 0, 4, 4));
  EXPECT_EQ(QPX_BAD_PARAM, clipped(0, -1, 4, 4));
  EXPECT_EQ(QPX_BAD_PARAM, clipped(3, 0, 2, 4));
}

TEST_F(Record, RefusesFormats) {
  EXPECT_EQ(QPX_UNSUPPORTED, build({0x12345678, 4, 4}, {kBgr, 4, 4}));
  EXPECT_EQ(QPX_UNSUPPORTED, build({kBgr, 4, 4}, {0x70010000, 4, 4}));
  EXPECT_EQ(QPX_UNSUPPORTED, build({kBgr, 4, 4}, {QPX_FORMAT_PALETTE8, 4, 4, noisePalette()}));
  EXPECT_EQ(QPX_BAD_PARAM, build({QPX_FORMAT_PALETTE8, 4, 4, nullptr}, {kBgr, 4, 4}));
  EXPECT_EQ(nullptr, record_.tables);
}

TEST_F(Record, AnswersFourWithoutMemory) {
  FailingMemory::reset();
  FailingMemory::failFrom(1);
  EXPECT_EQ(QPX_NO_MEMORY, build({kI420, 4, 4}, {kBgr, 4, 4}));
  EXPECT_EQ(QPX_OK, build({kBgr, 4, 4}, {kBgr, 4, 4}));
  FailingMemory::reset();
  EXPECT_EQ(nullptr, record_.tables);
}

}  // namespace
}  // namespace qpx::testing
