// Making and releasing engines: what is refused, how a list becomes stages, what stages hold.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <vector>

#include "engine/pipeline_support.h"
#include "engine/test_effects.h"

namespace qpx::testing {
namespace {

constexpr uint32_t kBgr24 = 0x16000777;

QPXStage** stagesOf(const Engine& engine) { return reinterpret_cast<QPXStage**>(engine.get()); }

std::vector<uint32_t> stageIds(const Engine& engine) {
  std::vector<uint32_t> ids;
  for (int32_t k = 0; k < engine.head().stageCount; ++k) {
    ids.push_back(stagesOf(engine)[k]->effectId);
  }
  return ids;
}

using Ids = std::vector<uint32_t>;

struct CreateCase {
  MBitmap out = {kBgr24, 8, 8, {}, {}};
  MBitmap in = {kBgr24, 8, 8, {}, {}};
  QPXEffectItem item = {kTone, nullptr, 0};
  QPXEffectList list = {&item, 1, 0};
  QPXEngine* handle = reinterpret_cast<QPXEngine*>(&item);

  int32_t run() { return QPXCreate(&out, &in, &list, &handle); }
};

TEST(Create, RefusesBadArgumentsAndClearsTheHandle) {
  const auto refused = [](CreateCase& c) {
    EXPECT_EQ(c.run(), 2);
    EXPECT_EQ(c.handle, nullptr);
  };
  CreateCase differ;
  differ.in.format = 0x16001777;
  refused(differ);
  CreateCase negativeHeight;
  negativeHeight.out.height = -1;
  refused(negativeHeight);
  CreateCase negativeWidth;
  negativeWidth.out.width = INT_MIN;
  refused(negativeWidth);
  CreateCase noItems;
  noItems.list.items = nullptr;
  refused(noItems);

  CreateCase c;
  EXPECT_EQ(QPXCreate(nullptr, &c.in, &c.list, &c.handle), 2);
  EXPECT_EQ(c.handle, nullptr);
  EXPECT_EQ(QPXCreate(&c.out, nullptr, &c.list, &c.handle), 2);
  EXPECT_EQ(QPXCreate(&c.out, &c.in, nullptr, &c.handle), 2);
  EXPECT_EQ(QPXCreate(&c.out, &c.in, &c.list, nullptr), 2);
}

TEST(Create, InputSizeIsNotTested) {
  CreateCase c;
  c.in.width = -3;
  c.in.height = -4;
  EXPECT_EQ(c.run(), 0);
  EXPECT_EQ((*reinterpret_cast<QPXStage**>(c.handle))->inHeight, -4);
  QPXDestroy(c.handle);
}

TEST(Create, UnknownFormatComesBeforeAnUnknownEffect) {
  for (const uint32_t format : {0x25000444u, 0x50000210u, 0x70001002u, 0x65000000u, 0u}) {
    CreateCase c;
    c.out.format = c.in.format = format;
    c.item.effectId = 0x123400;
    EXPECT_EQ(c.run(), 2) << std::hex << format;
    EXPECT_EQ(c.handle, nullptr);
  }
}

TEST(Create, UnknownAndUnbuiltEffectsAreUnsupported) {
  for (const uint32_t id : {0u, 0x123400u, uint32_t{kTone} + 1, 0xFFFFFFFFu, uint32_t{kUnbuilt}}) {
    CreateCase c;
    c.item.effectId = id;
    EXPECT_EQ(c.run(), 3) << std::hex << id;
    EXPECT_EQ(c.handle, nullptr);
  }
}

TEST(Create, ResultOfAFailedSetupIsReturned) {
  CreateCase c;
  c.item.effectId = kBadSetup;
  EXPECT_EQ(c.run(), 4);
  EXPECT_EQ(c.handle, nullptr);
}

TEST(Create, PackedYuvIsForTheEffectsThatKnowIt) {
  for (const uint32_t format : {0x50000010u, 0x50000410u}) {
    CreateCase c;
    c.out.format = c.in.format = format;
    EXPECT_EQ(c.run(), 3);
    c.item.effectId = kPlanes;
    EXPECT_EQ(c.run(), 0);
    QPXDestroy(c.handle);
  }
}

TEST(Create, SeveralStagesNeedPackedRgb) {
  for (const uint32_t format : {0x70000002u, 0x70000003u, 0x50000811u, 0x64000000u, 0x50000010u}) {
    const PlanesRecord record = {};
    const QPXEffectItem item = {kPlanes, &record, sizeof record};
    Engine one(format, {8, 8}, {8, 8}, {item});
    EXPECT_EQ(one.result(), 0) << std::hex << format;
    Engine two(format, {8, 8}, {8, 8}, {item, item});
    EXPECT_EQ(two.result(), 3) << std::hex << format;
    EXPECT_EQ(two.get(), nullptr);
  }
  Engine merged(0x70000002, {8, 8}, {kSharesTable, kSharesTable});
  EXPECT_EQ(merged.result(), 0);
}

TEST(Create, SemiPlanarCodesBecomeTheirStageForms) {
  const PlanesRecord record = {};
  const QPXEffectItem item = {kPlanes, &record, sizeof record};
  const Engine nv21(0x70000002, {8, 8}, {8, 8}, {item});
  EXPECT_EQ(nv21.head().pix.format, 0x70020011u);
  EXPECT_EQ(nv21.head().pix.family, 48u);
  const Engine nv12(0x70000003, {8, 8}, {8, 8}, {item});
  EXPECT_EQ(nv12.head().pix.format, 0x70030011u);
  EXPECT_EQ(nv12.head().pix.family, 49u);
  const Engine i420(0x50001811, {8, 8}, {8, 8}, {item});
  EXPECT_EQ(i420.head().pix.format, 0x50001811u);
}

TEST(Create, EveryStageHasTheFullRangeBt601Matrices) {
  const float firstRow[4] = {0.299f, 0.587f, 0.114f, 0.0f};
  const PlanesRecord record = {};
  for (const uint32_t format : {0x16000777u, 0x50000811u, 0x50002811u, 0x70000002u, 0x64003000u}) {
    const Engine engine(format, {8, 8}, {8, 8}, {{kPlanes, &record, sizeof record}});
    ASSERT_EQ(engine.result(), 0);
    EXPECT_EQ(std::memcmp(engine.head().forwardMatrix, firstRow, sizeof firstRow), 0);
    EXPECT_EQ(engine.head().inverseMatrix[2], 1.4025f);
  }
  const Engine chain(kBgr24, {8, 8}, {kBox1, kBox2});
  EXPECT_EQ(stagesOf(chain)[1]->forwardMatrix[0], 0.299f);
}

TEST(Create, StagesHoldSizesFlagsAndLevel) {
  const MBitmap out = {kBgr24, 8, 9, {}, {}};
  const MBitmap in = {kBgr24, 10, 11, {}, {}};
  const MBitmap second = {kBgr24, 12, 13, {}, {}};
  const MBitmap mask = {0x64000000, 14, 15, {}, {}};
  const QPXEffectItem items[] = {{kBox1, nullptr, 0}, {kBox2, nullptr, 0}};
  const int32_t levels[][2] = {{4, 5}, {3, 3}, {2, 1}, {1, 0}, {0, 0}, {5, 0}, {-4, 0}};
  for (const auto& [quality, level] : levels) {
    const QPXEffectList list = {items, 2, quality};
    QPXEngine* handle = nullptr;
    ASSERT_EQ(QPXCreateMerge(&out, &in, &second, &mask, &list, &handle), 0);
    for (int k = 0; k < 2; ++k) {
      const QPXStage& stage = *reinterpret_cast<QPXStage**>(handle)[k];
      EXPECT_EQ(stage.outWidth, 8);
      EXPECT_EQ(stage.outHeight, 9);
      EXPECT_EQ(stage.inWidth, 10);
      EXPECT_EQ(stage.inHeight, 11);
      EXPECT_NE(stage.hasSecond, 0);
      EXPECT_EQ(stage.secondWidth, 12);
      EXPECT_EQ(stage.secondHeight, 13);
      EXPECT_NE(stage.hasMask, 0);
      EXPECT_EQ(stage.maskWidth, 14);
      EXPECT_EQ(stage.maskHeight, 15);
      EXPECT_EQ(stage.level, level) << quality;
      EXPECT_EQ(stage.listIndex, k);
    }
    EXPECT_EQ(QPXDestroyMerge(handle), 0);
  }
}

TEST(Create, BandsDeclareTheirMarginsInTheHead) {
  const Engine engine(kBgr24, {8, 6}, {kBox1, kTone, kBox3, kUpsideDown});
  const int32_t down[] = {1, 0, 3, 6};
  const int32_t across[] = {1, 0, 3, 8};
  ASSERT_EQ(engine.head().stageCount, 4);
  int32_t sum = 0;
  for (int k = 0; k < 4; ++k) {
    const QPXBand& band = engine.head().bands[k];
    EXPECT_EQ(band.marginTop, down[k]);
    EXPECT_EQ(band.marginBottom, down[k]);
    EXPECT_EQ(band.marginLeft, across[k]);
    EXPECT_EQ(band.marginRight, across[k]);
    EXPECT_EQ(band.ringCapacity, 2 * down[k] + 1);
    sum += band.ringCapacity;
  }
  EXPECT_EQ(engine.head().ringRows, sum);
}

TEST(Create, WhateverTheMarginOfARecordNothingOverflows) {
  for (const int32_t margin : {INT_MAX, INT_MAX / 2 + 1, INT_MIN, -1, (1 << 28) + 1}) {
    const PlanesRecord record = {0, margin, {}};
    const QPXEffectItem item = {kPlanes, &record, sizeof record};
    const Engine engine(0x64000000, {8, 8}, {8, 8}, {item});
    EXPECT_EQ(engine.result(), margin < 0 ? 0 : 4);
  }
}

TEST(CreateMerging, ThreePointEffectsShareOneStage) {
  const Engine engine(kBgr24, {8, 8}, {kSharesTable, kSharesTable, kSharesTable});
  EXPECT_EQ(stageIds(engine), (Ids{kSharesTable}));
  EXPECT_EQ(engine.head().lut[0], 3) << "each setup meets the table of the one before";
  EXPECT_EQ(stagesOf(engine)[1], nullptr);
  EXPECT_EQ(stagesOf(engine)[2], nullptr);
}

TEST(CreateMerging, StageBearsTheIdOfTheLastEffect) {
  const Engine engine(kBgr24, {8, 8}, {kGivesTable, kSharesTable});
  EXPECT_EQ(stageIds(engine), (Ids{kSharesTable}));
  EXPECT_EQ(engine.head().lut[0], 2);
}

TEST(CreateMerging, AnEffectThatDoesNotTakeATableBeginsAStage) {
  const Engine engine(kBgr24, {8, 8}, {kSharesTable, kGivesTable, kSharesTable});
  EXPECT_EQ(stageIds(engine), (Ids{kSharesTable, kSharesTable}));
  EXPECT_EQ(stagesOf(engine)[0]->lut[0], 1);
  EXPECT_EQ(stagesOf(engine)[1]->lut[0], 2);
}

TEST(CreateMerging, MergedRunsMayLieAnywhereInTheList) {
  const Ids lists[] = {{kSharesTable, kSharesTable, kBox1},
                       {kBox1, kSharesTable, kSharesTable},
                       {kBox1, kSharesTable, kSharesTable, kSharesTable, kBox2, kSharesTable},
                       {kSharesTable, kSharesTable, kBox1, kGivesTable, kSharesTable, kBox3}};
  const Ids stages[] = {{kSharesTable, kBox1},
                        {kBox1, kSharesTable},
                        {kBox1, kSharesTable, kBox2, kSharesTable},
                        {kSharesTable, kBox1, kSharesTable, kBox3}};
  const Ids models[] = {{kBox1}, {kBox1}, {kBox1, kBox2}, {kBox1, kBox3}};
  for (size_t i = 0; i < 4; ++i) {
    Engine engine(kBgr24, {9, 14}, lists[i]);
    ASSERT_EQ(engine.result(), 0);
    EXPECT_EQ(stageIds(engine), stages[i]);
    for (int32_t k = 0; k < engine.head().stageCount; ++k) {
      EXPECT_EQ(stagesOf(engine)[k]->listIndex, k);
    }
    Picture source = Picture::random(9, 14, 3, 1);
    EXPECT_EQ(difference(applyModel(models[i], source), runBands(engine.get(), source, {4, 8, 14})),
              "equal");
  }
}

TEST(CreateMerging, QueriesAgree) {
  EXPECT_EQ(QPXIsSupEffMerge(kSharesTable, kSharesTable), 1);
  EXPECT_EQ(QPXIsSupEffMerge(kGivesTable, kSharesTable), 1);
  EXPECT_EQ(QPXIsSupEffMerge(kSharesTable, kGivesTable), 0);
  EXPECT_EQ(QPXIsSupEffMerge(kBox1, kSharesTable), 0);
  EXPECT_EQ(QPXIsSupEffMerge(0, 0), 0);
  const QPXEffectItem items[] = {
      {kSharesTable, nullptr, 0}, {kSharesTable, nullptr, 0}, {kBox1, nullptr, 0}};
  const QPXEffectList two = {items, 2, 0};
  const QPXEffectList three = {items, 3, 0};
  const QPXEffectList one = {items, 1, 0};
  EXPECT_EQ(QPXMergeable(kBgr24, &two), 1);
  EXPECT_EQ(QPXMergeable(0x40000000, &two), 1);
  EXPECT_EQ(QPXMergeable(0x20000000, &two), 1);
  EXPECT_EQ(QPXMergeable(0x80000777, &two), 0);
  EXPECT_EQ(QPXMergeable(0x06000777, &two), 0);
  EXPECT_EQ(QPXMergeable(kBgr24, &three), 0);
  EXPECT_EQ(QPXMergeable(kBgr24, &one), 0);
  EXPECT_EQ(QPXMergeable(kBgr24, nullptr), 0);
}

TEST(CreateRecords, OfAnotherSizeCountAsZero) {
  const PlanesRecord record = {12, 3, {9, 9, 9, 9}};
  for (const uint32_t size :
       {0u, uint32_t{sizeof record} - 1, uint32_t{sizeof record} + 1, UINT_MAX}) {
    const Engine engine(0x64000000, {8, 8}, {8, 8}, {{kPlanes, &record, size}});
    ASSERT_EQ(engine.result(), 0) << size;
    EXPECT_EQ(engine.head().bands[0].planeFlags, 0u);
    EXPECT_EQ(engine.head().bands[0].marginTop, 0);
  }
  const Engine absent(0x64000000, {8, 8}, {8, 8}, {{kPlanes, nullptr, sizeof record}});
  ASSERT_EQ(absent.result(), 0);
  EXPECT_EQ(absent.head().bands[0].planeFlags, 0u);
  const Engine right(0x64000000, {8, 8}, {8, 8}, {{kPlanes, &record, sizeof record}});
  EXPECT_EQ(right.head().bands[0].planeFlags, 12u);
  EXPECT_EQ(right.head().bands[0].marginTop, 3);
}

TEST(CreateRecords, LooksOfTheFilterRecordTake24And32BitRgbOnly) {
  for (const uint32_t format :
       {QPX_FORMAT_BGR24, QPX_FORMAT_RGB24, QPX_FORMAT_BGRA32, QPX_FORMAT_RGBA32}) {
    EXPECT_EQ(Engine(format, {8, 8}, {kFilter}).result(), 0) << std::hex << format;
  }
  for (const uint32_t format :
       {QPX_FORMAT_RGB565, QPX_FORMAT_BGRX32, QPX_FORMAT_BGR666, QPX_FORMAT_GREY8, QPX_FORMAT_NV21,
        QPX_FORMAT_NV12, QPX_FORMAT_I420, QPX_FORMAT_I444, QPX_FORMAT_YUYV}) {
    EXPECT_EQ(Engine(format, {8, 8}, {kFilter}).result(), 3) << std::hex << format;
  }
}

TEST(CreateRecords, AreCopied) {
  PlanesRecord record = {QPX_FILL_PLANE0, 2, {5, 0, 0, 0}};
  Engine engine(0x64000000, {8, 8}, {8, 8}, {{kPlanes, &record, sizeof record}});
  record = {};
  EXPECT_EQ(engine.head().bands[0].marginTop, 2);
  Picture source = Picture::random(8, 8, 1, 1);
  const Picture result = runBands(engine.get(), source, {8});
  EXPECT_EQ(result.bytes, std::vector<uint8_t>(64, 5));
}

TEST(Lifetime, EmptyListMakesAnEngineThatCanOnlyBeDestroyed) {
  for (const QPXEffectItem* items : {static_cast<const QPXEffectItem*>(nullptr), [] {
                                       static const QPXEffectItem item = {kTone, nullptr, 0};
                                       return &item;
                                     }()}) {
    const MBitmap image = {kBgr24, 8, 8, {}, {}};
    const QPXEffectList list = {items, 0, 0};
    QPXEngine* engine = nullptr;
    ASSERT_EQ(QPXCreate(&image, &image, &list, &engine), 0);
    ASSERT_NE(engine, nullptr);
    Picture picture(8, 8, 3);
    const QPXPlaneSet planes = picture.planes(0, 0);
    MRect rect = {0, 0, 8, 8};
    QPXBandRect band = {0, 0, 8, 8, 0, 0, 0, 0};
    int32_t value = 0;
    EXPECT_EQ(QPXProcess(engine, &planes, &planes, &rect), 2);
    EXPECT_EQ(QPXMerge(engine, &planes, &planes, nullptr, nullptr, &band), 2);
    EXPECT_EQ(QPXCalcRect(engine, &rect, &rect), 2);
    EXPECT_EQ(QPXCalcRectReset(engine), 2);
    EXPECT_EQ(QPXGetMaxOutLine(engine, 1, &value), 2);
    EXPECT_EQ(QPXGetProPerty(engine, 0x9200, 0, &value, 4), 2);
    EXPECT_EQ(QPXSetProPerty(engine, 0x9200, 1, &value), 2);
    EXPECT_EQ(QPXFreeMemory(engine), 0);
    EXPECT_EQ(QPXDestroy(engine), 0);
  }
}

TEST(Lifetime, NullHandlesAreAllowedWhereThereIsNothingToDo) {
  EXPECT_EQ(QPXDestroy(nullptr), 0);
  EXPECT_EQ(QPXDestroyIn(nullptr), 0);
  EXPECT_EQ(QPXDestroyMerge(nullptr), 0);
  EXPECT_EQ(QPXFreeMemory(nullptr), 0);
}

TEST(Properties, OnlyOneIsKnown) {
  const Engine engine(kBgr24, {8, 8}, {kTone});
  engine.head().propertyLimit = 50;
  int32_t value = -1;
  EXPECT_EQ(QPXGetProPerty(engine.get(), 0x9200, 0, &value, 4), 0);
  EXPECT_EQ(value, 50);
  value = -1;
  EXPECT_EQ(QPXGetProPerty(engine.get(), 0x9201, 0, &value, 4), 3);
  EXPECT_EQ(QPXGetProPerty(engine.get(), 0x9200, 1, &value, 4), 3);
  EXPECT_EQ(QPXGetProPerty(engine.get(), 0x9201, 0, &value, 5), 3);
  EXPECT_EQ(QPXGetProPerty(engine.get(), 0x9200, 0, &value, 3), 2);
  EXPECT_EQ(QPXGetProPerty(engine.get(), 0x9200, 0, &value, 8), 2);
  EXPECT_EQ(QPXGetProPerty(engine.get(), 0x9200, 0, nullptr, 4), 2);
  EXPECT_EQ(QPXGetProPerty(nullptr, 0x9200, 0, &value, 4), 2);
  EXPECT_EQ(QPXGetProPerty(nullptr, 0x9201, 0, &value, 4), 2);
  EXPECT_EQ(value, -1);
}

TEST(Properties, ValueIsClampedToTheLimit) {
  const Engine engine(kBgr24, {8, 8}, {kTone});
  engine.head().propertyLimit = 50;
  const auto set = [&](int32_t value) {
    EXPECT_EQ(QPXSetProPerty(engine.get(), 0x9200, 1, &value), 0);
    return engine.head().propertyValue;
  };
  EXPECT_EQ(set(20), 20);
  EXPECT_EQ(set(51), 50);
  EXPECT_EQ(set(INT_MAX), 50);
  EXPECT_EQ(set(-1), 0);
  EXPECT_EQ(set(INT_MIN), 0);
  const int32_t value = 7;
  EXPECT_EQ(QPXSetProPerty(engine.get(), 0x9200, 0, &value), 3);
  EXPECT_EQ(QPXSetProPerty(engine.get(), 0x9100, 1, &value), 3);
  EXPECT_EQ(QPXSetProPerty(engine.get(), 0x9200, 1, nullptr), 2);
  EXPECT_EQ(QPXSetProPerty(nullptr, 0x9200, 1, &value), 2);
  EXPECT_EQ(engine.head().propertyValue, 0);
}

TEST(Version, WritesSixteenBytesFromASizeOfNineOn) {
  int32_t major = 0, minor = -1, build = 0;
  EXPECT_EQ(PixmorphGetVersionInfo(&major, &minor, &build, nullptr, 0), 0);
  EXPECT_EQ(major, 1);
  EXPECT_EQ(minor, 0);
  EXPECT_EQ(build, 8);
  char text[20];
  for (const int32_t size : {INT_MIN, -1, 0, 8}) {
    std::memset(text, 'x', sizeof text);
    EXPECT_EQ(PixmorphGetVersionInfo(&major, &minor, &build, text, size), 0);
    EXPECT_EQ(std::string(text, sizeof text), std::string(20, 'x')) << size;
  }
  for (const int32_t size : {9, 16, 20, INT_MAX}) {
    std::memset(text, 'x', sizeof text);
    EXPECT_EQ(PixmorphGetVersionInfo(&major, &minor, &build, text, size), 0);
    EXPECT_EQ(std::string(text, sizeof text),
              "SVN:00000" + std::string(7, '\0') + std::string(4, 'x'));
  }
  EXPECT_EQ(PixmorphGetVersionInfo(nullptr, nullptr, nullptr, text, 16), 0);
}

}  // namespace
}  // namespace qpx::testing
