#include <set>
#include <string>

#include "image_files.h"
#include "run_tool.h"

namespace qpx::test {
namespace {

class SampleTest : public ToolTest {
 protected:
  Image sample(const std::string& size, const std::string& seed = "1") const {
    EXPECT_TRUE(succeeded(run({"sample", "s.png", "--size", size, "--seed", seed})));
    return readImage(read("s.png"));
  }
};

TEST_F(SampleTest, ComesInAnySizeAndTheSameEveryTime) {
  for (const auto& [width, height] : {std::pair{1, 1}, {2, 3}, {1, 50}, {300, 2}, {640, 480}}) {
    const std::string size = std::to_string(width) + "x" + std::to_string(height);
    const Image first = sample(size);
    EXPECT_EQ(first.width, width);
    EXPECT_EQ(first.height, height);
    EXPECT_EQ(sample(size).samples, first.samples) << size;
  }
}

TEST_F(SampleTest, SeedsMakeDifferentPictures) {
  EXPECT_NE(sample("64x48", "1").samples, sample("64x48", "2").samples);
}

TEST_F(SampleTest, HoldsManyColorsAndTheWholeGreyRamp) {
  const Image image = sample("640x480");
  std::set<int> colors, greys;
  for (size_t i = 0; i < image.samples.size(); i += 3) {
    const int r = image.samples[i], g = image.samples[i + 1], b = image.samples[i + 2];
    colors.insert(r << 16 | g << 8 | b);
    if (r == g && g == b) greys.insert(r);
  }
  EXPECT_GT(colors.size(), 20000u);
  EXPECT_GT(greys.size(), 150u);
}

TEST_F(SampleTest, WritesJpegAndToStandardOutput) {
  EXPECT_TRUE(succeeded(run({"sample", "s.jpg", "--size", "32x16"})));
  EXPECT_TRUE(read("s.jpg").starts_with("\xFF\xD8"));
  const ToolRun piped = run({"sample", "-", "--size", "32x16"});
  EXPECT_EQ(readImage(piped.out).width, 32);
}

TEST_F(SampleTest, RefusesSizesThatAreNone) {
  for (const char* size : {"0x5", "5x0", "-1x5", "640", "640x", "x480", "640x480x3",
                           "1000000x1000000", "99999999999x1", "6.5x4"}) {
    EXPECT_TRUE(failedWith(run({"sample", "s.png", "--size", size}), 2, "is no size")) << size;
  }
  EXPECT_TRUE(failedWith(run({"sample", "s.gif"}), 2, "name it .jpg or .png"));
  EXPECT_EQ(files(), "");
}

TEST_F(SampleTest, RefusesSizesThatTheFileCannotHold) {
  EXPECT_TRUE(failedWith(run({"sample", "s.jpg", "--size", "70000x10"}), 2, "65500 pixels"));
  EXPECT_TRUE(failedWith(run({"sample", "s.jpg", "--size", "1x65501"}), 2, "65500 pixels"));
  EXPECT_TRUE(failedWith(run({"sample", "s.png", "--size", "1000001x1"}), 2, "is no size"));
  EXPECT_EQ(files(), "");
  EXPECT_TRUE(succeeded(run({"sample", "s.jpg", "--size", "65500x1"})));
  EXPECT_TRUE(succeeded(run({"sample", "s.png", "--size", "70000x1"})));
  EXPECT_TRUE(failedWith(run({"apply", "Fx1800", "s.png", "t.jpg"}), 1, "65500 pixels"));
}

}  // namespace
}  // namespace qpx::test
