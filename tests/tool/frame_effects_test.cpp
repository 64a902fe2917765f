// Effects over several frames: engines that are kept give what new ones give.
#include "frame_effects.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "catalogue.h"
#include "image_files.h"
#include "picture_frame.h"

namespace qpx::tool {
namespace {

using Bytes = std::vector<uint8_t>;

Bytes bytesOf(const Frame& frame) { return {frame.data(), frame.data() + frame.bytes()}; }

Frame randomFrame(const PixelFormat& format, uint32_t seed) {
  Frame frame(format, 34, 26);
  const test::Image noise = test::randomImage(static_cast<int>(frame.bytes()), 1, 1, seed);
  std::copy(noise.samples.begin(), noise.samples.end(), frame.data());
  return frame;
}

class FrameEffectsTest : public testing::Test {
 protected:
  static FrameShape shapeIn(const PixelFormat& format) { return {&format, 34, 26, Range::bt601}; }

  Bytes run(FrameEffects& effects, const Frame& frame) {
    return bytesOf(effects.run(frame, progress_));
  }

  Bytes fresh(const Frame& frame, const std::vector<EffectCall>& chain, const RunOptions& options) {
    FrameEffects effects(shapeIn(frame.format()), chain, options);
    return run(effects, frame);
  }

  Progress progress_;
};

TEST_F(FrameEffectsTest, EveryEffectMakesOfAFrameWhatItMakesOfItAlone) {
  const Picture second(34, 26, 3);
  std::fill_n(const_cast<uint8_t*>(second.row(0)), 34 * 26 * 3, uint8_t{90});
  int checked = 0;
  for (const QPXEffectInfo& effect : catalogue()) {
    if (!isBuilt(effect)) continue;
    const std::vector<EffectCall> chain = {parseEffect(effect.name)};
    RunOptions options;
    if (mayTakeSecond(chain.front())) options.second = &second;
    for (const char* name : {"nv21", "bgr24"}) {
      const PixelFormat& format = pixelFormatByName(name);
      FrameEffects kept(shapeIn(format), chain, options);
      for (uint32_t i = 0; i < 3; ++i) {
        const Frame frame = randomFrame(format, 70 + i);
        ASSERT_EQ(run(kept, frame), fresh(frame, chain, options)) << effect.name << " in " << name;
      }
      ++checked;
    }
  }
  EXPECT_GT(checked, 100);
}

TEST_F(FrameEffectsTest, BandsOfTheNextFrameDoNotSeeTheOneBefore) {
  const std::vector<EffectCall> chain = {parseEffect("GaussBlur"), parseEffect("Fx1700")};
  RunOptions inBands;
  inBands.band = 7;
  const PixelFormat& format = pixelFormatByName("bgr24");
  FrameEffects kept(shapeIn(format), chain, inBands);
  for (uint32_t i = 0; i < 3; ++i) {
    const Frame frame = randomFrame(format, 80 + i);
    EXPECT_EQ(run(kept, frame), fresh(frame, chain, RunOptions()));
  }
}

TEST_F(FrameEffectsTest, StrengthMixesTheSamplesOfTheFormat) {
  const std::vector<EffectCall> chain = {parseEffect("Fx1800")};
  RunOptions options;
  const PixelFormat& format = pixelFormatByName("nv21");
  const Frame frame = randomFrame(format, 90);
  const Bytes whole = fresh(frame, chain, options);
  options.strength = 25;
  const Bytes quarter = fresh(frame, chain, options);
  for (size_t i = 0; i < quarter.size(); ++i) {
    ASSERT_EQ(quarter[i], (frame.data()[i] * 75 + whole[i] * 25 + 50) / 100);
  }
}

TEST_F(FrameEffectsTest, MasksMixByWayOfRgbInEveryFrame) {
  Picture mask(34, 26, 3);
  for (int32_t y = 0; y < 26; ++y) {
    for (int32_t x = 0; x < 34 * 3; ++x) mask.row(y)[x] = x < 17 * 3 ? 255 : 0;
  }
  const std::vector<EffectCall> chain = {parseEffect("Fx1800")};
  RunOptions options;
  options.mask = &mask;
  for (const char* name : {"i444", "rgb565", "bgra32"}) {
    const PixelFormat& format = pixelFormatByName(name);
    FrameEffects effects(shapeIn(format), chain, options);
    for (uint32_t i = 0; i < 2; ++i) {
      Frame frame(format, 34, 26);
      std::fill_n(frame.data(), frame.bytes(), static_cast<uint8_t>(96 + 8 * i));
      const Bytes result = run(effects, frame);
      const size_t pixel = format.layout == Layout::packedRgb ? result.size() / (34 * 26) : 1;
      EXPECT_NEAR(result[33 * pixel], frame.data()[0], 2) << name;
      EXPECT_NE(result[0], frame.data()[0]) << name;
    }
  }
}

// YUYV to YUYV by way of NV21 and not of RGB: neutral chroma and any luma stay as they are.
TEST_F(FrameEffectsTest, EffectsOfAnotherFormatAreReachedWithoutRgb) {
  const std::vector<EffectCall> chain = {parseEffect("Fx1800"), parseEffect("Fx1800")};
  RunOptions options;
  options.format = &pixelFormatByName("nv21");
  Frame frame(pixelFormatByName("uyvy"), 34, 26);
  for (size_t i = 0; i < frame.bytes(); ++i) {
    frame.data()[i] = static_cast<uint8_t>(i % 2 == 0 ? 128 : i * 7);
  }
  const Bytes result = fresh(frame, chain, options);
  for (size_t i = 0; i < result.size(); ++i) {
    ASSERT_NEAR(result[i], frame.data()[i], i % 2 == 0 ? 1 : 0) << i;
  }
}

TEST_F(FrameEffectsTest, TurnedFramesKeepTheirNewSize) {
  const std::vector<EffectCall> chain = {parseEffect("Fx4400:degrees=90")};
  const PixelFormat& format = pixelFormatByName("bgr24");
  const RunOptions options;
  FrameEffects kept(shapeIn(format), chain, options);
  for (uint32_t i = 0; i < 2; ++i) {
    const Frame frame = randomFrame(format, 95 + i);
    Progress unseen;
    const Frame& turned = kept.run(frame, unseen);
    EXPECT_EQ(turned.width(), 26);
    EXPECT_EQ(turned.height(), 34);
  }
}

}  // namespace
}  // namespace qpx::tool
