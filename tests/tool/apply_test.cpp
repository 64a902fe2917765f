// What qpx apply does with effects: chains, formats, bands, threads, masks.
#include <qpx/effects.h>

#include <array>
#include <string>

#include "effect_argument.h"
#include "engine_pass.h"
#include "image_files.h"
#include "picture_frame.h"
#include "pixel_format.h"
#include "run_tool.h"

namespace qpx::test {
namespace {

class ApplyTest : public ToolTest {
 protected:
  ApplyTest() : image_(randomImage(40, 30, 3, 21)) { write("in.png", pngFile(image_)); }

  Image apply(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), "apply");
    EXPECT_TRUE(succeeded(run(arguments)));
    return readImage(read("out.png"));
  }

  std::vector<uint8_t> negative() const {
    return makeImage(40, 30, 3, [&](int x, int y, int c) { return 255 - image_.at(x, y)[c]; })
        .samples;
  }

  Image image_;
};

TEST_F(ApplyTest, NegativeTurnsEverySampleOver) {
  EXPECT_EQ(apply({"Fx1800", "in.png", "out.png"}).samples, negative());
}

TEST_F(ApplyTest, EffectsMakeAChain) {
  EXPECT_EQ(apply({"Fx1800", "Fx1800", "in.png", "out.png"}).samples, image_.samples);
  // Grey does not merge with a point effect: two stages in one engine.
  const Image together = apply({"Fx1700", "Fx1800", "in.png", "out.png"});
  apply({"Fx1700", "in.png", "out.png"});
  write("grey.png", read("out.png"));
  EXPECT_EQ(together.samples, apply({"Fx1800", "grey.png", "out.png"}).samples);
}

TEST_F(ApplyTest, AChainThatTheEngineRefusesRunsOneByOne) {
  const Image result = apply({"Fx1700", "Fx1800", "in.png", "out.png", "--format", "nv21"});
  ASSERT_EQ(result.width, 40);
  // Grey, then negative: the chroma stays without colour.
  for (int y = 0; y < 30; ++y) {
    for (int x = 0; x < 40; ++x) {
      const uint8_t* in = image_.at(x, y);
      const int luma = (299 * in[0] + 587 * in[1] + 114 * in[2] + 500) / 1000;
      ASSERT_NEAR(result.at(x, y)[0], 255 - luma, 1) << x << " " << y;
      ASSERT_EQ(result.at(x, y)[0], result.at(x, y)[2]);
    }
  }
}

TEST_F(ApplyTest, StrengthMixesWithTheSource) {
  const Image half = apply({"Fx1800", "in.png", "out.png", "--strength", "50"});
  for (size_t i = 0; i < half.samples.size(); ++i) {
    ASSERT_NEAR(half.samples[i], 127.5, 0.6);
  }
  EXPECT_EQ(apply({"Fx1800", "in.png", "out.png", "--strength", "0"}).samples, image_.samples);
}

TEST_F(ApplyTest, MaskLimitsTheEffect) {
  // Left half white, scaled up from 4x2 with a soft seam in the middle.
  write("mask.png", pngFile(makeImage(4, 2, 1, [](int x, int, int) { return x < 2 ? 255 : 0; })));
  const Image result = apply({"Fx1800", "in.png", "out.png", "--mask", "mask.png"});
  ASSERT_EQ(result.width, 40);
  for (int y = 0; y < 30; ++y) {
    for (int c = 0; c < 3; ++c) {
      ASSERT_EQ(result.at(3, y)[c], 255 - image_.at(3, y)[c]);
      ASSERT_EQ(result.at(36, y)[c], image_.at(36, y)[c]);
    }
  }
}

TEST_F(ApplyTest, SecondPictureIsFadedInThroughTheMask) {
  const auto lit = [](int x, int y) { return (x < 20) == (y < 15); };
  write("second.png", pngFile(makeImage(40, 30, 3, [](int, int, int c) { return 60 + c; })));
  write("mask.png",
        pngFile(makeImage(40, 30, 1, [&](int x, int y, int) { return lit(x, y) ? 255 : 0; })));
  const std::vector<std::string> call = {"Fx1100:opacity=100", "in.png", "out.png", "--second",
                                         "second.png",         "--mask", "mask.png"};
  const Image result = apply(call);
  ASSERT_EQ(result.width, 40);
  for (int y = 0; y < 30; ++y) {
    for (int x = 0; x < 40; ++x) {
      for (int c = 0; c < 3; ++c) {
        ASSERT_NEAR(result.at(x, y)[c], lit(x, y) ? 60 + c : image_.at(x, y)[c], 2)
            << x << " " << y;
      }
    }
  }
  std::vector<std::string> inBands = call;
  inBands.insert(inBands.end(), {"--band", "7"});
  EXPECT_EQ(apply(inBands).samples, result.samples);
}

TEST_F(ApplyTest, SecondPictureOfAnotherSizeIsScaled) {
  write("second.png", pngFile(makeImage(7, 5, 3, [](int, int, int) { return 90; })));
  const Image result = apply({"Fx1100:opacity=100", "in.png", "out.png", "--second", "second.png"});
  for (const uint8_t sample : result.samples) ASSERT_NEAR(sample, 90, 2);
}

TEST_F(ApplyTest, BandsAndPlainFormsChangeNothingForAnyEffect) {
  write("second.png", pngFile(randomImage(40, 30, 3, 22)));
  int checked = 0;
  for (const QPXEffectInfo& effect : tool::catalogue()) {
    if (!tool::isBuilt(effect)) continue;
    std::vector<std::string> call = {effect.name, "in.png", "out.png", "--threads", "1"};
    if ((effect.flags & QPX_EFFECT_SECOND_INPUT) != 0 ||
        effect.recordSize == static_cast<int32_t>(sizeof(QPXFilterRecord))) {
      call.insert(call.end(), {"--second", "second.png"});
    }
    const Image whole = apply(call);
    call.insert(call.end(), {"--band", "5", "--plain"});
    call[4] = "3";
    ASSERT_EQ(apply(call).samples, whole.samples) << effect.name;
    ++checked;
  }
  EXPECT_GT(checked, 10);
}

// The pass does not ask whether threads are allowed, so that any effect without neighbours will do.
TEST_F(ApplyTest, RowsSplitAmongThreadsGiveTheSamePicture) {
  for (const char* format : {"bgr24", "i420", "nv21"}) {
    const std::vector<tool::EffectCall> chain = {tool::parseEffect("Fx1800")};
    tool::Picture picture(17, 31, 3);
    const Image image = randomImage(17, 31, 3, 23);
    std::copy(image.samples.begin(), image.samples.end(), picture.row(0));
    const tool::PixelFormat& pixels = tool::pixelFormatByName(format);
    const tool::Frame in = tool::frameOf(picture, pixels, 1);
    tool::Frame one(pixels, 17, 31), many(pixels, 17, 31);
    one.copyFrom(in);
    many.copyFrom(in);
    tool::Progress progress("", 1);
    EXPECT_EQ(tool::EnginePass(chain, 0).run(in, one, 0, 1, 1, progress), QPX_OK);
    EXPECT_EQ(tool::EnginePass(chain, 0).run(in, many, 3, 4, 1, progress), QPX_OK);
    EXPECT_TRUE(std::equal(one.data(), one.data() + one.bytes(), many.data())) << format;
    EXPECT_FALSE(std::equal(one.data(), one.data() + one.bytes(), in.data())) << format;
  }
}

TEST_F(ApplyTest, EveryFormatIsTakenByTheCommandLine) {
  const QPXEffectInfo* negativeInfo = tool::findEffect("Fx1800");
  for (const tool::PixelFormat& format : tool::pixelFormats()) {
    const ToolRun result = run({"apply", "Fx1800", "in.png", "out.png", "--format", format.name});
    if (tool::takes(*negativeInfo, format)) {
      EXPECT_TRUE(succeeded(result)) << format.name;
      EXPECT_NE(readImage(read("out.png")).samples, image_.samples) << format.name;
    } else {
      EXPECT_TRUE(failedWith(result, 2, format.name)) << format.name;
    }
  }
}

TEST_F(ApplyTest, InputAndOutputMayBeOneFile) {
  EXPECT_TRUE(succeeded(run({"apply", "Fx1800", "in.png", "in.png"})));
  EXPECT_EQ(readImage(read("in.png")).samples, negative());
  EXPECT_EQ(files(), "in.png");
}

TEST_F(ApplyTest, PipesFromStandardInputToStandardOutput) {
  const ToolRun piped = run({"apply", "Fx1800", "-", "-"}, read("in.png"));
  EXPECT_EQ(piped.status, 0);
  EXPECT_EQ(readImage(piped.out).samples, negative());
  const ToolRun jpeg = run({"apply", "Fx1800", "-", "-", "--to", "jpeg"}, read("in.png"));
  EXPECT_TRUE(jpeg.out.starts_with("\xFF\xD8"));
  EXPECT_EQ(readImage(jpeg.out).width, 40);
}

TEST_F(ApplyTest, SeveralInputsGoToAFolder) {
  write("second.jpg", jpegFile(image_));
  EXPECT_TRUE(succeeded(
      run({"apply", "Fx1800", "Fx1700", "in.png", "second.jpg", "--out-dir", "new/dir"})));
  EXPECT_EQ(readImage(read("new/dir/in.png")).width, 40);
  EXPECT_TRUE(read("new/dir/second.jpg").starts_with("\xFF\xD8"));
  EXPECT_TRUE(succeeded(run({"apply", "Fx1800", "--out-dir", "png", "second.jpg", "--to", "png"})));
  EXPECT_EQ(readImage(read("png/second.png")).height, 30);
}

TEST_F(ApplyTest, OneBadInputDoesNotKeepTheOthersBack) {
  write("bad.png", "no picture");
  EXPECT_TRUE(failedWith(run({"apply", "Fx1800", "bad.png", "in.png", "--out-dir", "out"}), 1,
                         "bad.png: is neither JPEG nor PNG"));
  EXPECT_EQ(readImage(read("out/in.png")).samples, negative());
  EXPECT_FALSE(exists("out/bad.png"));
}

TEST_F(ApplyTest, VerboseLinesLookLikeLogcat) {
  const ToolRun result = run({"apply", "Fx1800", "in.png", "out.png", "--verbose"});
  EXPECT_EQ(result.status, 0);
  ASSERT_GT(result.err.size(), 40u);
  // 11-21 05:28:43.123  1234  1234 I qpx     : in.png: 40x30
  const std::string line = result.err.substr(0, result.err.find('\n'));
  EXPECT_EQ(line.substr(2, 1) + line[5] + line[8] + line[11] + line[14], "- ::.") << line;
  EXPECT_NE(line.find(" I qpx     : in.png: 40x30"), std::string::npos) << line;
  EXPECT_NE(result.err.find("out.png: written"), std::string::npos);
}

TEST_F(ApplyTest, VerboseSaysWhereThreadsAreOfNoUse) {
  std::string splits, doesNot;
  for (const QPXEffectInfo& effect : tool::catalogue()) {
    if (!tool::isBuilt(effect) || effect.recordSize > 64) continue;
    ((effect.flags & QPX_EFFECT_ROW_THREADS) != 0 ? splits : doesNot) = effect.name;
  }
  ASSERT_NE(doesNot, "");
  const auto said = [&](std::vector<std::string> call) {
    call.insert(call.begin(), "apply");
    call.insert(call.end(), {"in.png", "out.png", "--verbose"});
    const ToolRun result = run(call);
    EXPECT_EQ(result.status, 0);
    return result.err.find("cannot be split for " + doesNot) != std::string::npos;
  };
  EXPECT_TRUE(said({doesNot, "--threads", "3"}));
  EXPECT_FALSE(said({doesNot, "--threads", "1"}));
  EXPECT_FALSE(said({doesNot}));
  if (!splits.empty()) {
    EXPECT_FALSE(said({splits, "--threads", "3"}));
  }
}

}  // namespace
}  // namespace qpx::test
