// The subcommand that takes something out of a picture.
#include <cstdlib>
#include <string>

#include "image_files.h"
#include "run_tool.h"

namespace qpx::test {
namespace {

class RetouchTest : public ToolTest {
 protected:
  RetouchTest() { write("in.png", pngFile(picture(3))); }

  static bool inside(int x, int y) { return x >= 30 && x < 44 && y >= 24 && y < 40; }

  // Soft stripes with a magenta object on them; alpha falls from left to right.
  static Image picture(int channels) {
    return makeImage(80, 64, channels, [](int x, int y, int channel) {
      if (channel == 3) return 255 - x;
      if (inside(x, y)) return channel == 1 ? 0 : 255;
      return 100 + 4 * (x % 8) + 10 * channel;
    });
  }

  // White where the object is, one pixel more on each side.
  static Image mask(int width, int height, int light = 255, int dark = 0) {
    return makeImage(width, height, 1, [=](int x, int y, int) {
      return x >= 29 && x < 45 && y >= 23 && y < 41 ? light : dark;
    });
  }

  static double errorInside(const Image& out) {
    double sum = 0;
    for (int y = 24; y < 40; ++y) {
      for (int x = 30; x < 44; ++x) {
        for (int c = 0; c < 3; ++c) sum += std::abs(out.at(x, y)[c] - (100 + 4 * (x % 8) + 10 * c));
      }
    }
    return sum / (14 * 16 * 3);
  }
};

TEST_F(RetouchTest, TakesOutWhatIsUnderTheMask) {
  // Not quite white and black, as in a JPEG.
  write("mask.png", pngFile(mask(80, 64, 240, 12)));
  EXPECT_TRUE(succeeded(run({"retouch", "in.png", "out.png", "--mask", "mask.png"})));
  const Image out = readImage(read("out.png")), in = picture(3);
  ASSERT_EQ(80, out.width);
  EXPECT_LT(errorInside(out), 1);
  for (int y = 0; y < 64; ++y) {
    for (int x = 0; x < 80; ++x) {
      const bool near = x >= 29 && x < 45 && y >= 23 && y < 41;
      EXPECT_TRUE(near || std::equal(in.at(x, y), in.at(x, y) + 3, out.at(x, y))) << x << ", " << y;
    }
  }
}

TEST_F(RetouchTest, AReducedGuideTakesItAllOutToo) {
  write("mask.png", pngFile(mask(80, 64)));
  for (const char* scale : {"1.5", "2", "3.7"}) {
    EXPECT_TRUE(succeeded(run({"retouch", "in.png", "out.png", "--mask", "mask.png", "--scale",
                               scale, "--radius", "3", "--weight", "0.5"})));
    EXPECT_LT(errorInside(readImage(read("out.png"))), 12) << scale;
  }
}

TEST_F(RetouchTest, AlphaIsKept) {
  const Image in = picture(4);
  write("rgba.png", pngFile(in));
  write("mask.png", pngFile(mask(80, 64)));
  EXPECT_TRUE(succeeded(run({"retouch", "rgba.png", "out.png", "--mask", "mask.png"})));
  const Image out = readImage(read("out.png"));
  ASSERT_EQ(4, out.channels);
  for (size_t i = 3; i < out.samples.size(); i += 4) ASSERT_EQ(in.samples[i], out.samples[i]);
  EXPECT_LT(errorInside(out), 1);
}

TEST_F(RetouchTest, AnEmptyMaskCopies) {
  write("mask.png", pngFile(mask(80, 64, 0, 0)));
  EXPECT_TRUE(succeeded(run({"retouch", "in.png", "out.png", "--mask", "mask.png"})));
  EXPECT_EQ(picture(3).samples, readImage(read("out.png")).samples);
}

TEST_F(RetouchTest, PipesAndWritesJpeg) {
  write("mask.png", pngFile(mask(80, 64)));
  const ToolRun piped =
      run({"retouch", "-", "-", "--mask", "mask.png", "--to", "jpeg"}, read("in.png"));
  EXPECT_EQ(0, piped.status);
  EXPECT_TRUE(piped.out.starts_with("\xFF\xD8"));
}

TEST_F(RetouchTest, RefusesBadCalls) {
  write("small.png", pngFile(mask(70, 64)));
  write("all.png", pngFile(mask(80, 64, 255, 255)));
  write("mask.png", pngFile(mask(80, 64)));
  const auto call = [&](std::vector<std::string> more) {
    more.insert(more.begin(), {"retouch", "in.png", "out.png"});
    return run(more);
  };
  EXPECT_TRUE(failedWith(call({}), 2, "--mask"));
  EXPECT_TRUE(failedWith(call({"--mask", "small.png"}), 1,
                         "in.png: is 80x64, but its mask small.png is 70x64"));
  EXPECT_TRUE(failedWith(call({"--mask", "all.png"}), 1, "in.png: is covered by its mask all.png"));
  EXPECT_TRUE(failedWith(call({"--mask", "none.png"}), 1, "none.png: cannot be read"));
  for (const char* radius : {"0", "11", "2.5", "x"}) {
    EXPECT_TRUE(failedWith(call({"--mask", "mask.png", "--radius", radius}), 2, "--radius"));
  }
  for (const char* weight : {"-0.1", "1.1", "nan", "x"}) {
    EXPECT_TRUE(failedWith(call({"--mask", "mask.png", "--weight", weight}), 2, "--weight"));
  }
  for (const char* scale : {"0", "0.9", "65", "nan", "x"}) {
    EXPECT_TRUE(failedWith(call({"--mask", "mask.png", "--scale", scale}), 2, "--scale"));
  }
  EXPECT_TRUE(failedWith(run({"retouch", "-", "out.png", "--mask", "-"}), 2, "standard input"));
  EXPECT_EQ(files(), "all.png in.png mask.png small.png");
}

}  // namespace
}  // namespace qpx::test
