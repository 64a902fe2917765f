// Every allocation can fail: the entry answers 4 or null, keeps nothing, and what it left can be
// destroyed.
#include <gtest/gtest.h>
#include <kesbase.h>
#include <qpx/qpx.h>

#include <cstring>
#include <functional>
#include <string>

#include "properties/effect_run.h"
#include "support/failing_memory.h"

namespace qpx::testing {
namespace {

constexpr Size kSize = {18, 10};

class FailingAllocation : public ::testing::TestWithParam<bool> {
 protected:
  void SetUp() override {
    FailingMemory::reset();
    ASSERT_EQ(0, FailingMemory::liveBlocks());
  }
  void TearDown() override { FailingMemory::reset(); }

  // `entry` uses and releases what it gets and returns the code of the call that failed, if any
  // did. Returns how many of its allocations were made to fail. Where `kernelAllocates`, a failure
  // may end in the kernel: its rows stay as they are, and the generic road answers 0 for it.
  static int64_t expectSurvival(const std::string& what, const std::function<int32_t()>& entry,
                                bool kernelAllocates = false) {
    const int64_t runs = FailingMemory::forEachFailure(GetParam(), [&] {
      const int32_t result = entry();
      const int64_t failures = FailingMemory::failures();
      const bool lostInKernel = kernelAllocates && failures > 0 && result == QPX_OK;
      EXPECT_TRUE(lostInKernel || result == (failures > 0 ? QPX_NO_MEMORY : QPX_OK))
          << what << ", allocation " << FailingMemory::allocations() << ": " << result;
      EXPECT_EQ(0, FailingMemory::liveBlocks()) << what;
      EXPECT_EQ(0, FailingMemory::doubleFrees()) << what;
      EXPECT_EQ(0, FailingMemory::foreignFrees()) << what;
    });
    return runs;
  }
};

// Creates, runs in two bands of different widths, and destroys.
int32_t runEngine(const MBitmap& image, const Picture& source, Picture& out,
                  const QPXEffectList& list, const Picture* second, const Picture* mask) {
  const MBitmap secondImage = second != nullptr ? second->bitmap() : MBitmap{};
  const MBitmap maskImage = mask != nullptr ? mask->bitmap() : MBitmap{};
  QPXEngine* engine = nullptr;
  int32_t result = QPXCreateIn(&image, &image, second != nullptr ? &secondImage : nullptr,
                               mask != nullptr ? &maskImage : nullptr, &list, &engine);
  if (result != QPX_OK) {
    EXPECT_EQ(nullptr, engine);
    return result;
  }
  const QPXPlaneSet in = source.planesAt(0, 0);
  const QPXPlaneSet to = out.planesAt(0, 0);
  const QPXPlaneSet secondPlanes = second != nullptr ? second->planesAt(0, 0) : QPXPlaneSet{};
  const QPXPlaneSet maskPlanes = mask != nullptr ? mask->planesAt(0, 0) : QPXPlaneSet{};
  for (const int32_t width : {kSize.width / 2, kSize.width}) {
    MRect rect = {0, 0, width, kSize.height};
    QPXBandRect band = {0, 0, width, kSize.height, 0, 0, 0, 0};
    const bool merges = second != nullptr || mask != nullptr;
    const int32_t ran =
        merges ? QPXMerge(engine, &to, &in, second != nullptr ? &secondPlanes : nullptr,
                          mask != nullptr ? &maskPlanes : nullptr, &band)
               : QPXProcess(engine, &to, &in, &rect);
    if (result == QPX_OK) result = ran;
  }
  EXPECT_EQ(QPX_OK, QPXDestroy(engine));
  return result;
}

int32_t runList(uint32_t format, std::span<const QPXEffectItem> items, bool withSecond = false,
                bool withMask = false) {
  Picture source(format, kSize.width, kSize.height, Placement::exact);
  source.paint(1);
  Picture out = blankLike(source);
  Picture mask(QPX_FORMAT_GREY8, kSize.width, kSize.height, Placement::exact);
  mask.paint(2);
  const QPXEffectList list = {items.data(), static_cast<uint32_t>(items.size()), 4};
  return runEngine(source.bitmap(), source, out, list, withSecond ? &source : nullptr,
                   withMask ? &mask : nullptr);
}

TEST_P(FailingAllocation, OfEveryEffect) {
  for (const QPXEffectInfo& effect : builtEffects()) {
    const Record record = makeRecord(effect, "initial");
    const QPXEffectItem item = {effect.id, record.data(), static_cast<uint32_t>(record.size())};
    for (const uint32_t format : {QPX_FORMAT_BGR24, QPX_FORMAT_RGBA32, QPX_FORMAT_RGB565,
                                  QPX_FORMAT_NV21, QPX_FORMAT_I420, QPX_FORMAT_GREY8}) {
      if (!takes(effect, formatCase(format))) continue;
      const std::string what = std::string(effect.name) + " in " + formatCase(format).name;
      const bool kernelAllocates = (effect.flags & QPX_EFFECT_ONE_CALL) != 0;
      const auto run = [&] { return runList(format, {&item, 1}); };
      EXPECT_GE(expectSurvival(what, run, kernelAllocates), 3) << what;
    }
  }
}

TEST_P(FailingAllocation, OfSecondInputAndMask) {
  const QPXSecondPictureParam param = {50, 0xFF8000};
  const QPXEffectItem item = {0x1100, &param, sizeof param};
  for (const uint32_t format : {QPX_FORMAT_BGR24, QPX_FORMAT_NV12}) {
    EXPECT_GE(expectSurvival("second and mask",
                             [&] {
                               return runList(format, {&item, 1}, true, true);
                             }),
              3);
    EXPECT_GE(expectSurvival("mask", [&] { return runList(format, {&item, 1}, false, true); }), 3);
  }
}

TEST_P(FailingAllocation, OfAMergedList) {
  const QPXBrightnessContrastParam param = {20, 10};
  const QPXEffectItem items[] = {
      {0x1300, &param, sizeof param}, {0x1800, nullptr, 0}, {0x3000, nullptr, 0}};
  EXPECT_GE(expectSurvival("merged list", [&] { return runList(QPX_FORMAT_BGR24, items); }), 5);
}

TEST_P(FailingAllocation, OfAChain) {
  const QPXThresholdParam param = {100, 0};
  const QPXEffectItem items[] = {
      {0x1700, nullptr, 0}, {0x1D00, &param, sizeof param}, {0x1800, nullptr, 0}};
  EXPECT_GE(expectSurvival("chain", [&] { return runList(QPX_FORMAT_RGBA32, items); }), 6);
}

TEST_P(FailingAllocation, OfABitmap) {
  using Allocate = int32_t (*)(MBitmap*);
  const Allocate allocators[] = {MBitmapAlloc,
                                 [](MBitmap* bitmap) { return MBitmapAllocEx(bitmap, nullptr); },
                                 MBitmapAlloc2, UTILS_MdBitmapAlloc};
  for (const Allocate allocate : allocators) {
    for (const uint32_t format : {QPX_FORMAT_BGR24, QPX_FORMAT_NV21, QPX_FORMAT_I420}) {
      EXPECT_EQ(2, expectSurvival("bitmap", [&] {
                  MBitmap bitmap = {format, 20, 10, {}, {}};
                  int32_t result = allocate(&bitmap);
                  // The second call replaces the block of the first, unless it fails.
                  uint8_t* const first = bitmap.plane[0];
                  const int32_t again = allocate(&bitmap);
                  if (again != QPX_OK) {
                    EXPECT_EQ(first, bitmap.plane[0]);
                  }
                  if (result == QPX_OK) result = again;
                  EXPECT_EQ(QPX_OK, MBitmapFree(&bitmap));
                  return result;
                }));
    }
  }
}

TEST_P(FailingAllocation, OfABitmapRecord) {
  EXPECT_EQ(2, expectSurvival("record", [] {
              MBitmap* const bitmap = UTIL_MBitmapCreate(7, 5, QPX_FORMAT_RGB24);
              UTIL_MBitmapFree(bitmap);
              return bitmap != nullptr ? QPX_OK : QPX_NO_MEMORY;
            }));
}

// A curve that fits the stack need not allocate; one that can not leaves the table alone.
TEST_P(FailingAllocation, OfACurve) {
  std::vector<uint8_t> xs, ys;
  for (int i = 0; i < 4096; ++i) {
    xs.push_back(static_cast<uint8_t>(i / 16));
    ys.push_back(static_cast<uint8_t>(i));
  }
  for (const int32_t count : {2, 5, 256, 4096}) {
    expectSurvival("curve", [&] {
      uint8_t table[256];
      std::memset(table, 0x3C, sizeof table);
      const int32_t result = BuildSplineCurve(xs.data(), ys.data(), count, table);
      if (result != QPX_OK) {
        for (const uint8_t value : table) EXPECT_EQ(0x3C, value);
      }
      return result;
    });
  }
}

// Composing takes the table over, also when memory is short.
TEST_P(FailingAllocation, OfAComposedTable) {
  expectSurvival("compose", [] {
    auto stage = std::make_unique<QPXStage>();
    std::memset(static_cast<void*>(stage.get()), 0, sizeof *stage);
    int32_t result = QPX_OK;
    for (const uint32_t flags : {5u, 9u, 5u}) {
      auto* const table = static_cast<uint8_t*>(MMemAlloc(nullptr, 768));
      if (table == nullptr) {
        result = QPX_NO_MEMORY;
        continue;
      }
      std::memset(table, 9, 768);
      const int32_t composed = ComposeStageLut(stage.get(), table, flags, flags == 5 ? 256 : 768);
      if (composed != QPX_OK) {
        EXPECT_EQ(QPX_NO_MEMORY, composed);
        result = composed;
      }
    }
    MMemFree(nullptr, stage->lut);
    return result;
  });
}

TEST_P(FailingAllocation, OfAMemoryStream) {
  EXPECT_GE(expectSurvival("memory stream",
                           [] {
                             MStreamHandle* const stream = MStreamOpenFromMemoryBlock(nullptr, 0);
                             if (stream == nullptr) return int32_t{QPX_NO_MEMORY};
                             int32_t written = 0;
                             char block[5000] = {};
                             for (int i = 0; i < 20; ++i)
                               written += MStreamWrite(stream, block, sizeof block);
                             EXPECT_EQ(1, MStreamClose(stream));
                             return int32_t{written == 20 * 5000 ? QPX_OK : QPX_NO_MEMORY};
                           }),
            2);
}

TEST_P(FailingAllocation, OfAFileStream) {
  EXPECT_GE(expectSurvival("file stream",
                           [] {
                             MStreamHandle* const stream =
                                 MStreamOpenFromFileS("/proc/self/exe", 1);
                             MStream64Handle* const stream64 =
                                 MStreamOpenFromFile64S("/proc/self/exe", 1);
                             const bool opened = stream != nullptr && stream64 != nullptr;
                             MStreamClose(stream);
                             MStreamClose64(stream64);
                             return int32_t{opened ? QPX_OK : QPX_NO_MEMORY};
                           }),
            2);
}

INSTANTIATE_TEST_SUITE_P(Memory, FailingAllocation, ::testing::Bool(),
                         [](const ::testing::TestParamInfo<bool>& manner) {
                           return manner.param ? "OneFails" : "AllFailFromOneOn";
                         });

// Memory that comes back is used: the same handle goes on as if nothing had been.
TEST(MemoryThatReturns, LetsAChainGoOn) {
  const QPXEffectItem items[] = {{0x1700, nullptr, 0}, {0x1800, nullptr, 0}};
  Picture source(QPX_FORMAT_BGR24, kSize.width, kSize.height, Placement::exact);
  source.paint(1);
  Picture expected = blankLike(source);
  Picture actual = blankLike(source);
  ASSERT_TRUE(Engine(source, items).run(source, expected));
  {
    const Engine engine(source, items);
    ASSERT_EQ(QPX_OK, engine.result());
    const QPXPlaneSet in = source.planesAt(0, 0);
    const QPXPlaneSet out = actual.planesAt(0, 0);
    const Picture before = actual;
    MRect rect = {0, 0, kSize.width, kSize.height};
    FailingMemory::failFrom(1);
    EXPECT_EQ(QPX_NO_MEMORY, QPXProcess(engine.handle(), &out, &in, &rect));
    FailingMemory::reset();
    EXPECT_FALSE(actual.firstWriteOutside(before, {}));
    ASSERT_TRUE(engine.run(source, actual));
    EXPECT_TRUE(samePicture(expected, actual));
  }
  EXPECT_EQ(0, FailingMemory::liveBlocks());
}

}  // namespace
}  // namespace qpx::testing
