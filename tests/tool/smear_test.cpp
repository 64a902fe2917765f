// The subcommands that smear a picture.
#include <string>

#include "image_files.h"
#include "run_tool.h"

namespace qpx::test {
namespace {

class SmearTest : public ToolTest {
 protected:
  SmearTest() : image_(randomImage(60, 40, 3, 5)) { write("in.png", pngFile(image_)); }

  // White in columns 20 to 39.
  static Image stripe(int width, int height) {
    return makeImage(width, height, 1,
                     [](int x, int, int) { return x >= 20 && x < 40 ? 255 : 10; });
  }

  static bool same(const Image& a, const Image& b, int x, int y) {
    return std::equal(a.at(x, y), a.at(x, y) + 3, b.at(x, y));
  }

  const Image image_;
};

TEST_F(SmearTest, MotionBlurMovesWhatIsUnderTheMask) {
  write("mask.png", pngFile(stripe(60, 40)));
  EXPECT_TRUE(succeeded(run({"motion-blur", "in.png", "out.png", "--mask", "mask.png", "--angle",
                             "0", "--length", "10"})));
  const Image out = readImage(read("out.png"));
  ASSERT_EQ(60, out.width);
  int changed = 0;
  for (int y = 0; y < 40; ++y) {
    for (int x = 0; x < 60; ++x) {
      const bool near = x >= 19 && x < 41;
      EXPECT_TRUE(near || same(image_, out, x, y)) << x << ", " << y;
      changed += !same(image_, out, x, y);
    }
  }
  EXPECT_GT(changed, 700);
}

// By hand: the mean of a picture as wide as the line, in its middle.
TEST_F(SmearTest, MotionBlurWithoutAMaskTakesAll) {
  write("row.png",
        pngFile(makeImage(3, 1, 3, [](int x, int, int channel) { return x * 60 + channel; })));
  EXPECT_TRUE(succeeded(run({"motion-blur", "row.png", "out.png", "--length", "3"})));
  const Image out = readImage(read("out.png"));
  EXPECT_EQ((std::vector<uint8_t>{30, 31, 32, 60, 61, 62, 90, 91, 92}), out.samples);
}

TEST_F(SmearTest, AlphaIsKept) {
  const Image image = randomImage(60, 40, 4, 6);
  write("rgba.png", pngFile(image));
  EXPECT_TRUE(succeeded(run({"motion-blur", "rgba.png", "m.png", "--angle", "45"})));
  EXPECT_TRUE(succeeded(run({"waterfall", "rgba.png", "w.png", "--stroke", "5,5 50,30"})));
  for (const char* name : {"m.png", "w.png"}) {
    const Image out = readImage(read(name));
    ASSERT_EQ(4, out.channels);
    int changed = 0;
    for (size_t i = 0; i < out.samples.size(); i += 4) {
      EXPECT_EQ(image.samples[i + 3], out.samples[i + 3]);
      changed += image.samples[i] != out.samples[i];
    }
    EXPECT_GT(changed, 500) << name;
  }
}

TEST_F(SmearTest, MotionBlurRefusesBadCalls) {
  write("small.png", pngFile(stripe(50, 40)));
  const auto call = [&](std::vector<std::string> more) {
    more.insert(more.begin(), {"motion-blur", "in.png", "out.png"});
    return run(more);
  };
  EXPECT_TRUE(failedWith(call({"--mask", "small.png"}), 1,
                         "in.png: is 60x40, but its mask small.png is 50x40"));
  EXPECT_TRUE(failedWith(call({"--mask", "none.png"}), 1, "none.png: cannot be read"));
  EXPECT_TRUE(failedWith(call({"--length", "-1"}), 2, "--length"));
  EXPECT_TRUE(failedWith(call({"--angle", "north"}), 2, "--angle"));
  EXPECT_TRUE(failedWith(run({"motion-blur", "in.png"}), 2, "OUT"));
  EXPECT_TRUE(failedWith(run({"motion-blur", "in.png", "out.gif"}), 2, "name it .jpg or .png"));
  EXPECT_TRUE(failedWith(run({"motion-blur", "-", "out.png", "--mask", "-"}), 2, "standard input"));
  EXPECT_EQ(files(), "in.png small.png");
}

TEST_F(SmearTest, WaterfallRunsAlongItsStrokes) {
  EXPECT_TRUE(succeeded(run({"waterfall", "in.png", "one.png", "--stroke", "10,20 50,20",
                             "--radius", "5", "--length", "20"})));
  EXPECT_TRUE(succeeded(run({"waterfall", "in.png", "two.jpg", "--stroke", "10,8 50,8", "--stroke",
                             "-5,30 30,30 60,90", "--radius", "5"})));
  const Image one = readImage(read("one.png"));
  int changed = 0;
  for (int y = 0; y < 40; ++y) {
    for (int x = 0; x < 60; ++x) {
      EXPECT_TRUE((y > 13 && y < 27) || same(image_, one, x, y)) << x << ", " << y;
      changed += !same(image_, one, x, y);
    }
  }
  EXPECT_GT(changed, 300);
  EXPECT_TRUE(read("two.jpg").starts_with("\xFF\xD8"));
}

TEST_F(SmearTest, WaterfallPipes) {
  const ToolRun piped = run({"waterfall", "-", "-", "--stroke", "3,3 40,30"}, read("in.png"));
  EXPECT_EQ(0, piped.status);
  EXPECT_EQ(60, readImage(piped.out).width);
}

TEST_F(SmearTest, WaterfallRefusesBadStrokes) {
  const auto call = [&](const std::string& stroke) {
    return run({"waterfall", "in.png", "out.png", "--stroke", stroke});
  };
  EXPECT_TRUE(failedWith(run({"waterfall", "in.png", "out.png"}), 2, "--stroke"));
  EXPECT_TRUE(failedWith(call("10,10"), 2, "two points or more"));
  EXPECT_TRUE(failedWith(call(" "), 2, "two points or more"));
  EXPECT_TRUE(failedWith(call("10,10 a,b"), 2, "'a,b' is no point"));
  EXPECT_TRUE(failedWith(call("10,10 20"), 2, "'20' is no point"));
  EXPECT_TRUE(failedWith(call("10,10 1,2,3"), 2, "'1,2,3' is no point"));
  EXPECT_TRUE(failedWith(call("10,10 4000000000,1"), 2, "is no point"));
  EXPECT_TRUE(failedWith(call("10,10 11,11"), 1, "within a third of the radius"));
  EXPECT_TRUE(failedWith(call("500,500 600,600"), 1,
                         "in.png: the stroke '500,500 600,600' does not touch the picture, which "
                         "is 60x40"));
  EXPECT_EQ(files(), "in.png");
}

}  // namespace
}  // namespace qpx::test
