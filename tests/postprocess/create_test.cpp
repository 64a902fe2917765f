#include <kesbase.h>

#include <cstring>

#include "postprocess/context.h"
#include "support/failing_memory.h"

namespace qpx::testing {
namespace {

TEST(PostProcessCreate, RecordsHaveTheirSizes) {
  EXPECT_EQ(72u, sizeof(PostProcessOption));
  EXPECT_EQ(24u, offsetof(PostProcessImage, palette));
}

TEST(PostProcessCreate, HasNoVersion) { EXPECT_EQ(0, PostProcessGetVersionInfo()); }

TEST(PostProcessCreate, RefusesNullsAndClearsTheOutput) {
  const PostProcessImage image = imageOf(QPX_FORMAT_BGR24, 4, 4);
  const PostProcessOption option = {};
  PostProcessContext mark = {};
  PostProcessContext* context = &mark;
  EXPECT_EQ(QPX_BAD_PARAM, MPPCreate(nullptr, &image, &option, &context));
  EXPECT_EQ(nullptr, context);
  EXPECT_EQ(QPX_BAD_PARAM, MPPCreate(&image, nullptr, &option, &context));
  EXPECT_EQ(QPX_BAD_PARAM, MPPCreate(&image, &image, nullptr, &context));
  EXPECT_EQ(QPX_BAD_PARAM, MPPCreate(&image, &image, &option, nullptr));
  EXPECT_EQ(QPX_OK, MPPDestroy(nullptr));
}

int32_t createWith(const PostProcessImage& src, const PostProcessImage& dst,
                   const PostProcessOption& option = {}) {
  const Context context(src, dst, option);
  EXPECT_EQ(context.result == QPX_OK, context.handle != nullptr);
  return context.result;
}

TEST(PostProcessCreate, RefusesEmptySides) {
  const PostProcessImage good = imageOf(QPX_FORMAT_BGR24, 4, 4);
  EXPECT_EQ(QPX_OK, createWith(good, good));
  for (const auto& [width, height] : {std::pair{0u, 4u}, std::pair{4u, 0u}}) {
    EXPECT_EQ(QPX_BAD_PARAM, createWith(imageOf(QPX_FORMAT_BGR24, width, height), good));
    EXPECT_EQ(QPX_BAD_PARAM, createWith(good, imageOf(QPX_FORMAT_BGR24, width, height)));
  }
  EXPECT_EQ(QPX_BAD_PARAM, createWith(good, imageOf(QPX_FORMAT_BGR24, UINT32_MAX, 4)));
}

TEST(PostProcessCreate, AnswersThreeForUnknownFormats) {
  const PostProcessImage good = imageOf(QPX_FORMAT_BGR24, 4, 4);
  EXPECT_EQ(QPX_UNSUPPORTED, createWith(imageOf(0x12345678, 4, 4), good));
  EXPECT_EQ(QPX_UNSUPPORTED, createWith(good, imageOf(0x70020011, 4, 4)));
  EXPECT_EQ(QPX_UNSUPPORTED, createWith(good, imageOf(QPX_FORMAT_PALETTE8, 4, 4)));
  EXPECT_EQ(QPX_OK, createWith(imageOf(QPX_FORMAT_PALETTE8, 4, 4), good));
  PostProcessImage bare = imageOf(QPX_FORMAT_PALETTE8, 4, 4);
  bare.palette = nullptr;
  EXPECT_EQ(QPX_BAD_PARAM, createWith(bare, good));
}

TEST(PostProcessCreate, MakesThreeStagesOrOne) {
  PostProcessOption option = {};
  option.alignMode = 256;
  const PostProcessImage image = imageOf(QPX_FORMAT_I420, 64, 64);
  const Context split(image, image, option);
  ASSERT_EQ(QPX_OK, split.result);
  EXPECT_EQ(256u, split.handle->alignMode);
  for (uint32_t level = 1; level <= 3; ++level) {
    ASSERT_NE(nullptr, split.handle->stage[level - 1]);
    EXPECT_EQ(level, split.handle->stage[level - 1]->record.blockMode);
  }
  option.alignMode = 3;
  const Context single(image, image, option);
  ASSERT_EQ(QPX_OK, single.result);
  EXPECT_EQ(3u, single.handle->alignMode);
  EXPECT_EQ(3u, single.handle->stage[0]->record.blockMode);
  EXPECT_EQ(nullptr, single.handle->stage[1]);
  EXPECT_EQ(nullptr, single.handle->stage[2]);
}

// One geometry for all pieces, that of level 1.
TEST(PostProcessCreate, FitsAllStagesAlike) {
  PostProcessOption option = {};
  option.alignMode = 256;
  option.fitMode = 1;
  const Context context(imageOf(QPX_FORMAT_BGR24, 300, 102), imageOf(QPX_FORMAT_BGR24, 200, 200),
                        option);
  ASSERT_EQ(QPX_OK, context.result);
  for (const PostProcessStage* stage : context.handle->stage) {
    EXPECT_EQ(66, stage->record.dstOrgY);
    EXPECT_EQ(68u, stage->record.dst.height);
  }
}

TEST(PostProcessCreate, DropsTheBilinearFlagAtFullScale) {
  PostProcessOption option = {};
  option.resampleMode = 2;
  const PostProcessImage image = imageOf(QPX_FORMAT_BGR24, 9, 5);
  const Context equal(image, image, option), other(image, imageOf(QPX_FORMAT_BGR24, 9, 6), option);
  EXPECT_EQ(0u, equal.handle->stage[0]->record.bilinearY);
  EXPECT_EQ(1u, other.handle->stage[0]->record.bilinearY);
}

TEST(PostProcessCreate, DithersCodesOfSixteenBitsAlone) {
  PostProcessOption option = {};
  option.palette = 1;
  const PostProcessOption before = option;
  const auto dithers = [&option](uint32_t to) {
    const Context context(imageOf(QPX_FORMAT_I420, 4, 4), imageOf(to, 4, 4), option);
    return context.handle->stage[0]->record.dither;
  };
  EXPECT_EQ(1u, dithers(QPX_FORMAT_RGB565));
  EXPECT_EQ(1u, dithers(QPX_FORMAT_BGR444));
  EXPECT_EQ(0u, dithers(0x35000444));
  EXPECT_EQ(0u, dithers(QPX_FORMAT_BGR24));
  EXPECT_EQ(0, std::memcmp(&before, &option, sizeof option));
}

// Whatever is wrong with the arguments comes before memory.
TEST(PostProcessCreate, RefusesArgumentsBeforeItAsksForMemory) {
  FailingMemory::reset();
  FailingMemory::failFrom(1);
  PostProcessOption split = {}, below = {}, clip = {}, fit = {};
  split.alignMode = 256;
  below.srcLeft = -1;
  clip.clipRight = 4;
  fit.fitMode = 1;
  const PostProcessImage good = imageOf(QPX_FORMAT_I420, 64, 64);
  EXPECT_EQ(QPX_NO_MEMORY, createWith(good, good, split));
  EXPECT_EQ(2, FailingMemory::allocations() + FailingMemory::failures());
  FailingMemory::failFrom(1);
  EXPECT_EQ(QPX_BAD_PARAM, createWith(imageOf(QPX_FORMAT_I420, 0, 64), good, split));
  EXPECT_EQ(QPX_BAD_PARAM, createWith(good, imageOf(QPX_FORMAT_I420, 64, 0), split));
  EXPECT_EQ(QPX_BAD_PARAM, createWith(good, good, below));
  EXPECT_EQ(QPX_BAD_PARAM, createWith(good, good, clip));
  EXPECT_EQ(QPX_BAD_PARAM,
            createWith(imageOf(QPX_FORMAT_I420, 1000, 1), imageOf(QPX_FORMAT_BGR24, 10, 10), fit));
  EXPECT_EQ(QPX_BAD_PARAM,
            createWith(imageOf(QPX_FORMAT_I420, 70000, 64), imageOf(QPX_FORMAT_BGR24, 1, 64)));
  EXPECT_EQ(QPX_UNSUPPORTED, createWith(imageOf(0x12345678, 64, 64), good));
  EXPECT_EQ(QPX_UNSUPPORTED, createWith(good, imageOf(0x70010000, 64, 64)));
  EXPECT_EQ(QPX_UNSUPPORTED, createWith(good, imageOf(QPX_FORMAT_PALETTE8, 64, 64)));
  PostProcessImage bare = imageOf(QPX_FORMAT_PALETTE8, 64, 64);
  bare.palette = nullptr;
  EXPECT_EQ(QPX_BAD_PARAM, createWith(bare, good));
  EXPECT_EQ(0, FailingMemory::allocations());
  FailingMemory::reset();
}

TEST(PostProcessCreate, SurvivesFailingAllocations) {
  FailingMemory::reset();
  PostProcessOption option = {};
  option.alignMode = 256;
  for (const bool firstOnly : {true, false}) {
    const int64_t runs = FailingMemory::forEachFailure(firstOnly, [&] {
      {
        const Context context(imageOf(QPX_FORMAT_I420, 64, 64), imageOf(QPX_FORMAT_BGRA32, 32, 9),
                              option);
        EXPECT_EQ(FailingMemory::failures() > 0 ? QPX_NO_MEMORY : QPX_OK, context.result);
        EXPECT_EQ(context.result == QPX_OK, context.handle != nullptr);
      }
      EXPECT_EQ(0, FailingMemory::liveBlocks());
      EXPECT_EQ(0, FailingMemory::doubleFrees() + FailingMemory::foreignFrees());
    });
    EXPECT_EQ(5, runs);  // the context, three stages, the tables
  }
  FailingMemory::reset();
}

}  // namespace
}  // namespace qpx::testing
