// The life of an engine as a host sees it: the shared library, its own effects, the public headers.
#include <gtest/gtest.h>
#include <qpx/effects.h>
#include <qpx/engine.h>

#include <random>
#include <vector>

namespace {

constexpr int32_t kWidth = 23;
constexpr int32_t kHeight = 17;
constexpr QPXBrightnessContrastParam kBrighter = {30, 20};
constexpr QPXChannelOffsetsParam kOffsets = {10, -20, 30};
constexpr QPXGammaParam kGamma = {150};
constexpr QPXThresholdParam kThreshold = {100, 0};

template <typename Record>
QPXEffectItem item(uint32_t id, const Record& record) {
  return {id, &record, sizeof record};
}

const QPXEffectItem kBrightness = item(0x1300, kBrighter);
const QPXEffectItem kChannels = item(0x1F00, kOffsets);
const QPXEffectItem kMidtones = item(0x2D00, kGamma);
const QPXEffectItem kTwoTone = item(0x1D00, kThreshold);
const QPXEffectItem kGrey = {0x1700, nullptr, 0};
const QPXEffectItem kInvert = {0x1800, nullptr, 0};

struct Created {
  int32_t result;
  QPXEngine* engine;
};

Created create(uint32_t format, const std::vector<QPXEffectItem>& items) {
  const MBitmap image = {format, kWidth, kHeight, {}, {}};
  const QPXEffectList list = {items.data(), static_cast<uint32_t>(items.size()), 0};
  QPXEngine* engine = nullptr;
  const int32_t result = QPXCreate(&image, &image, &list, &engine);
  return {result, engine};
}

const QPXStage& headOf(QPXEngine* engine) { return **reinterpret_cast<QPXStage**>(engine); }

std::vector<uint8_t> noise() {
  std::mt19937 random(3);
  std::vector<uint8_t> bytes(kWidth * 3 * kHeight);
  for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random());
  return bytes;
}

// A BGR24 picture through a list, in bands of 5 rows.
std::vector<uint8_t> run(const std::vector<QPXEffectItem>& items, std::vector<uint8_t> source) {
  const Created made = create(QPX_FORMAT_BGR24, items);
  EXPECT_EQ(made.result, 0);
  std::vector<uint8_t> result(source.size());
  for (int32_t top = 0; top < kHeight; top += 5) {
    const ptrdiff_t offset = ptrdiff_t{top} * kWidth * 3;
    const QPXPlaneSet in = {{source.data() + offset, nullptr, nullptr}, {kWidth * 3, 0, 0}};
    const QPXPlaneSet out = {{result.data() + offset, nullptr, nullptr}, {kWidth * 3, 0, 0}};
    MRect rect = {0, top, kWidth, std::min(top + 5, kHeight)};
    EXPECT_EQ(QPXProcess(made.engine, &out, &in, &rect), 0);
    EXPECT_EQ(rect.top, top);
  }
  EXPECT_EQ(QPXDestroy(made.engine), 0);
  return result;
}

TEST(Lifecycle, OneEffectMakesOneStage) {
  const Created made = create(QPX_FORMAT_BGR24, {kGrey});
  ASSERT_EQ(made.result, 0);
  EXPECT_EQ(headOf(made.engine).stageCount, 1);
  EXPECT_EQ(headOf(made.engine).effectId, 0x1700u);
  EXPECT_EQ(QPXDestroy(made.engine), 0);
}

TEST(Lifecycle, ThreePointEffectsComposeTheirTablesInOneStage) {
  const std::vector<QPXEffectItem> list = {kBrightness, kChannels, kMidtones};
  const Created made = create(QPX_FORMAT_BGR24, list);
  ASSERT_EQ(made.result, 0);
  const QPXStage& head = headOf(made.engine);
  EXPECT_EQ(head.stageCount, 1);
  EXPECT_EQ(head.effectId, 0x2D00u);
  ASSERT_EQ(head.lutFlags, uint32_t{QPX_LUT_PRESENT | QPX_LUT_THREE_TABLES});
  ASSERT_EQ(head.lutSize, 768u);
  QPXDestroy(made.engine);

  std::vector<uint8_t> oneByOne = noise();
  for (const QPXEffectItem& effect : list) oneByOne = run({effect}, oneByOne);
  EXPECT_EQ(run(list, noise()), oneByOne);
  EXPECT_NE(oneByOne, noise());
}

TEST(Lifecycle, ComposedTableIsThatOfTheTablesOneAfterTheOther) {
  const auto tableOf = [](const std::vector<QPXEffectItem>& items) {
    const Created made = create(QPX_FORMAT_BGR24, items);
    const QPXStage& head = headOf(made.engine);
    const std::vector<uint8_t> lut(head.lut, head.lut + head.lutSize);
    QPXDestroy(made.engine);
    return lut;
  };
  const std::vector<uint8_t> first = tableOf({kBrightness});
  const std::vector<uint8_t> second = tableOf({kChannels});
  const std::vector<uint8_t> third = tableOf({kMidtones});
  const std::vector<uint8_t> all = tableOf({kBrightness, kChannels, kMidtones});
  ASSERT_EQ(all.size(), 768u);
  const auto look = [](const std::vector<uint8_t>& lut, size_t component, uint8_t value) {
    return lut[lut.size() == 768 ? component * 256 + value : value];
  };
  for (size_t component = 0; component < 3; ++component) {
    for (size_t value = 0; value < 256; ++value) {
      const uint8_t expected =
          look(third, component,
               look(second, component, look(first, component, static_cast<uint8_t>(value))));
      ASSERT_EQ(all[component * 256 + value], expected) << component << ", " << value;
    }
  }
}

TEST(Lifecycle, MergedEffectsAndAnotherMakeTwoStagesThatBothWork) {
  const std::vector<QPXEffectItem> list = {kBrightness, kInvert, kGrey};
  const Created made = create(QPX_FORMAT_BGR24, list);
  ASSERT_EQ(made.result, 0);
  EXPECT_EQ(headOf(made.engine).stageCount, 2);
  QPXDestroy(made.engine);
  std::vector<uint8_t> oneByOne = noise();
  for (const QPXEffectItem& effect : list) oneByOne = run({effect}, oneByOne);
  EXPECT_EQ(run(list, noise()), oneByOne);
}

TEST(Lifecycle, StagesThatDoNotMergeExistForPackedRgbOnly) {
  for (const uint32_t format : {0x70000002u, 0x70000003u, 0x50000811u, 0x64000000u}) {
    const Created two = create(format, {kGrey, kTwoTone});
    EXPECT_EQ(two.result, 3) << std::hex << format;
    EXPECT_EQ(two.engine, nullptr);
    const Created merged = create(format, {kBrightness, kInvert});
    EXPECT_EQ(merged.result, 0) << std::hex << format;
    QPXDestroy(merged.engine);
  }
  const Created rgb = create(QPX_FORMAT_RGB565, {kGrey, kTwoTone});
  EXPECT_EQ(rgb.result, 0);
  QPXDestroy(rgb.engine);
}

TEST(Lifecycle, GreyLeavesTheChromaOfYuvToThePipeline) {
  for (const uint32_t format : {0x70000002u, 0x70000003u, 0x50000811u, 0x50000810u, 0x50000800u}) {
    const Created made = create(format, {kGrey});
    ASSERT_EQ(made.result, 0);
    const QPXBand& band = headOf(made.engine).bands[0];
    EXPECT_EQ(band.planeFlags, format >> 28 == 7 ? 12u : 14u) << std::hex << format;
    EXPECT_EQ(band.fill[1], 128);
    EXPECT_EQ(band.fill[2], 128);
    QPXDestroy(made.engine);
  }
}

TEST(Lifecycle, RefusesWhatItDoesNotServe) {
  EXPECT_EQ(create(QPX_FORMAT_BGR24, {{0x1000, nullptr, 0}}).result, 3);
  EXPECT_EQ(create(QPX_FORMAT_BGR24, {{0x1301, nullptr, 0}}).result, 3);
  EXPECT_EQ(create(QPX_FORMAT_YUYV, {kBrightness}).result, 3);
  EXPECT_EQ(create(QPX_FORMAT_UYVY, {kGrey}).result, 3);
  EXPECT_EQ(create(QPX_FORMAT_YVYU, {kBrightness}).result, 2);
  EXPECT_EQ(create(QPX_FORMAT_PALETTE8, {kBrightness}).result, 2);
}

TEST(Lifecycle, RecordOfAnotherSizeActsAsZero) {
  constexpr QPXBrightnessContrastParam kNothing = {0, 0};
  const QPXEffectItem wrong = {0x1300, &kBrighter, sizeof kBrighter - 1};
  EXPECT_EQ(run({wrong}, noise()), run({item(0x1300, kNothing)}, noise()));
  EXPECT_NE(run({wrong}, noise()), run({kBrightness}, noise()));
}

TEST(Lifecycle, AfterFreeMemoryAnEngineCanOnlyBeDestroyed) {
  const Created made = create(QPX_FORMAT_BGR24, {kGrey, kTwoTone});
  ASSERT_EQ(made.result, 0);
  EXPECT_EQ(QPXFreeMemory(made.engine), 0);
  std::vector<uint8_t> bytes = noise();
  const QPXPlaneSet planes = {{bytes.data(), nullptr, nullptr}, {kWidth * 3, 0, 0}};
  MRect rect = {0, 0, kWidth, kHeight};
  EXPECT_EQ(QPXProcess(made.engine, &planes, &planes, &rect), 2);
  EXPECT_EQ(bytes, noise());
  EXPECT_EQ(QPXDestroy(made.engine), 0);
}

TEST(Lifecycle, EmptyListHasNoHead) {
  const Created made = create(QPX_FORMAT_BGR24, {});
  ASSERT_EQ(made.result, 0);
  ASSERT_NE(made.engine, nullptr);
  std::vector<uint8_t> bytes = noise();
  const QPXPlaneSet planes = {{bytes.data(), nullptr, nullptr}, {kWidth * 3, 0, 0}};
  MRect rect = {0, 0, kWidth, kHeight};
  EXPECT_EQ(QPXProcess(made.engine, &planes, &planes, &rect), 2);
  EXPECT_EQ(QPXDestroy(made.engine), 0);
}

}  // namespace
