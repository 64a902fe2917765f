// qpx rotate and qpx straighten, and rotated effects in qpx apply.
#include <string>

#include "image_files.h"
#include "run_tool.h"

namespace qpx::test {
namespace {

class TurnTest : public ToolTest {
 protected:
  TurnTest() : image_(randomImage(40, 30, 3, 21)) { write("in.png", pngFile(image_)); }

  Image turn(std::vector<std::string> arguments) const {
    EXPECT_TRUE(succeeded(run(arguments)));
    return readImage(read("out.png"));
  }

  Image image_;
};

TEST_F(TurnTest, QuarterTurnsMovePixelsAndLoseNone) {
  const auto at = [&](int x, int y, int c) { return image_.at(x, y)[c]; };
  const Image right = turn({"rotate", "in.png", "out.png", "--degrees", "90"});
  EXPECT_EQ(right.samples,
            makeImage(30, 40, 3, [&](int x, int y, int c) { return at(y, 29 - x, c); }).samples);
  const Image left = turn({"rotate", "in.png", "out.png", "--degrees", "-90"});
  EXPECT_EQ(left.samples,
            makeImage(30, 40, 3, [&](int x, int y, int c) { return at(39 - y, x, c); }).samples);
  const Image half = turn({"rotate", "in.png", "out.png", "--degrees", "540", "--crop"});
  EXPECT_EQ(half.samples, makeImage(40, 30, 3, [&](int x, int y, int c) {
                            return at(39 - x, 29 - y, c);
                          }).samples);
  EXPECT_EQ(turn({"rotate", "in.png", "out.png", "--degrees", "-720"}).samples, image_.samples);
}

TEST_F(TurnTest, OtherAnglesKeepTheWholePictureAndFillTheCorners) {
  const Image made = turn({"rotate", "in.png", "out.png", "--degrees", "30", "--fill", "#102030"});
  // 40 cos 30 + 30 sin 30 by 40 sin 30 + 30 cos 30.
  EXPECT_EQ(made.width, 49);
  EXPECT_EQ(made.height, 45);
  for (const auto& [x, y] : {std::pair{0, 0}, {48, 0}, {0, 44}, {48, 44}}) {
    EXPECT_EQ(made.at(x, y)[0], 0x10);
    EXPECT_EQ(made.at(x, y)[1], 0x20);
    EXPECT_EQ(made.at(x, y)[2], 0x30);
  }
  EXPECT_EQ(turn({"rotate", "in.png", "out.png", "--degrees", "-330", "--fill", "#102030"}).samples,
            made.samples);
}

TEST_F(TurnTest, CornersOfAPictureWithAlphaAreTransparentUnlessFilled) {
  write("rgba.png", pngFile(makeImage(40, 30, 4, [](int, int, int) { return 255; })));
  EXPECT_EQ(turn({"rotate", "rgba.png", "out.png", "--degrees", "30"}).at(0, 0)[3], 0);
  const Image filled =
      turn({"rotate", "rgba.png", "out.png", "--degrees", "30", "--fill", "black"});
  EXPECT_EQ(filled.at(0, 0)[3], 255);
  EXPECT_EQ(filled.at(24, 22)[3], 255);
}

// A white picture on black shows every trace of a corner.
TEST_F(TurnTest, CropLeavesNoCorner) {
  for (const auto& [width, height] : {std::pair{80, 60}, {60, 80}, {61, 61}, {97, 31}}) {
    write("white.png", pngFile(makeImage(width, height, 3, [](int, int, int) { return 255; })));
    for (const int degrees : {1, 13, 45, 89, 91, 135, 179, 181, 300, -7}) {
      const Image made = turn({"rotate", "white.png", "out.png", "--crop", "--fill", "black",
                               "--degrees", std::to_string(degrees)});
      ASSERT_GT(made.width, 4) << degrees;
      int darkest = 255;
      for (const uint8_t sample : made.samples) darkest = std::min<int>(darkest, sample);
      EXPECT_GE(darkest, 250) << width << "x" << height << " by " << degrees;
    }
  }
}

TEST_F(TurnTest, RotateRefuses) {
  for (const char* degrees : {"1.5", "-0.25", "1e-3"}) {
    EXPECT_TRUE(failedWith(run({"rotate", "in.png", "o.png", "--degrees", degrees}), 2,
                           "takes whole degrees"));
  }
  for (const char* degrees : {"99999999999999999999", "-1e3", "13.0"}) {
    EXPECT_TRUE(failedWith(run({"rotate", "in.png", "o.png", "--degrees", degrees}), 2,
                           "give a whole number of up to 18 digits"));
  }
  for (const char* degrees : {"left", "13deg", "1,5", "nan"}) {
    EXPECT_TRUE(failedWith(run({"rotate", "in.png", "o.png", "--degrees", degrees}), 2,
                           "is no whole number"));
  }
  EXPECT_TRUE(failedWith(run({"rotate", "in.png", "o.png"}), 2, "--degrees"));
  EXPECT_TRUE(failedWith(run({"rotate", "in.png", "o.gif", "--degrees", "3"}), 2, ".jpg or .png"));
  EXPECT_TRUE(failedWith(run({"rotate", "no.png", "o.png", "--degrees", "3"}), 1, "no.png"));
  EXPECT_TRUE(failedWith(run({"rotate", "in.png", "o.png", "--degrees", "3", "--fill", "mauvish"}),
                         2, "mauvish"));
  write("line.png", pngFile(makeImage(40, 1, 3, [](int, int, int) { return 9; })));
  EXPECT_TRUE(failedWith(run({"rotate", "line.png", "o.png", "--degrees", "40", "--crop"}), 1,
                         "leave --crop out"));
  EXPECT_EQ(files(), "in.png line.png");
}

TEST_F(TurnTest, TheLongestRowsTurnByQuartersOnly) {
  write("wide.png", pngFile(makeImage(32768, 2, 3, [](int, int, int) { return 9; })));
  EXPECT_TRUE(failedWith(run({"rotate", "wide.png", "out.png", "--degrees", "1"}), 1,
                         "wider than the 32767"));
  EXPECT_EQ(turn({"rotate", "wide.png", "out.png", "--degrees", "90"}).height, 32768);
}

TEST_F(TurnTest, StraightenKeepsTheSizeAndCoversIt) {
  EXPECT_EQ(turn({"straighten", "in.png", "out.png", "--degrees", "0"}).samples, image_.samples);
  write("white.png", pngFile(makeImage(50, 30, 3, [](int, int, int) { return 255; })));
  for (const char* degrees : {"1.5", "-12.25", "45", "-45"}) {
    for (const bool nearest : {false, true}) {
      std::vector<std::string> call = {"straighten", "white.png", "out.png", "--degrees", degrees};
      if (nearest) call.emplace_back("--nearest");
      const Image made = turn(call);
      EXPECT_EQ(made.width, 50);
      EXPECT_EQ(made.height, 30);
      EXPECT_EQ(made.samples, std::vector<uint8_t>(50 * 30 * 3, 255));
    }
  }
}

TEST_F(TurnTest, StraightenKnowsBlendingFromNearest) {
  const Image smooth = turn({"straighten", "in.png", "out.png", "--degrees", "5"});
  const Image rough = turn({"straighten", "in.png", "out.png", "--degrees", "5", "--nearest"});
  EXPECT_NE(smooth.samples, rough.samples);
}

TEST_F(TurnTest, StraightenRefuses) {
  for (const char* degrees : {"46", "-45.001", "nan", "inf", "level"}) {
    EXPECT_TRUE(failedWith(run({"straighten", "in.png", "o.png", "--degrees", degrees}), 2,
                           "from -45 to 45"));
  }
  EXPECT_TRUE(failedWith(run({"straighten", "in.png", "o.png"}), 2, "--degrees"));
  EXPECT_EQ(files(), "in.png");
}

TEST_F(TurnTest, MetadataComesAlong) {
  Image jpeg = randomImage(40, 30, 3, 5);
  jpeg.exif = exifWithOrientation(6);
  jpeg.icc = rgbProfile(400);
  write("in.jpg", jpegFile(jpeg));
  const Image made = turn({"rotate", "in.jpg", "out.png", "--degrees", "13"});
  EXPECT_EQ(made.icc, jpeg.icc);
  EXPECT_EQ(made.exif.size(), jpeg.exif.size());
  EXPECT_GT(made.height, made.width);  // it was turned upright first
}

TEST_F(TurnTest, AppliedRotationsGrowTheirFrame) {
  const Image quarter = turn({"apply", "Fx4400:degrees=90", "in.png", "out.png"});
  EXPECT_EQ(quarter.samples, turn({"rotate", "in.png", "out.png", "--degrees", "90"}).samples);
  const Image eighth = turn({"apply", "Fx4400:degrees=30,color=#102030", "in.png", "out.png"});
  EXPECT_EQ(eighth.width, 50);
  EXPECT_EQ(eighth.height, 46);
  EXPECT_EQ(eighth.at(0, 0)[2], 0x30);
  const Image halved = turn({"apply", "FxA200:degrees=0,scale=50", "in.png", "out.png"});
  EXPECT_EQ(halved.width, 20);
  EXPECT_EQ(halved.height, 15);
}

TEST_F(TurnTest, AppliedRotationsJoinChainsFormatsAndBands) {
  const Image there = turn({"apply", "Fx1800", "Fx4400:degrees=90", "Fx1800", "Fx4400:degrees=-90",
                            "in.png", "out.png", "--band", "7"});
  EXPECT_EQ(there.samples, image_.samples);
  for (const char* format : {"nv21", "i420", "grey", "rgb565", "bgra32"}) {
    const Image made =
        turn({"apply", "Fx4400:degrees=30", "in.png", "out.png", "--format", format});
    EXPECT_EQ(made.width, 50) << format;
  }
}

TEST_F(TurnTest, AppliedRotationsCannotBeMixedWithTheirSource) {
  EXPECT_TRUE(failedWith(run({"apply", "Fx4400", "in.png", "out.png", "--strength", "50"}), 2,
                         "leave --strength and --mask out"));
  EXPECT_TRUE(failedWith(run({"apply", "Fx4400", "in.png", "out.png", "--mask", "in.png"}), 2,
                         "leave --strength and --mask out"));
}

}  // namespace
}  // namespace qpx::test
