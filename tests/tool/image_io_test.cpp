// What of a picture survives the way through the tool. With a strength of 0 an effect leaves the
// pixels as they were, so that input and output can be compared.
#include <array>
#include <cstdlib>
#include <string>

#include "image_file.h"
#include "image_files.h"
#include "run_tool.h"

namespace qpx::test {
namespace {

class ImageIoTest : public ToolTest {
 protected:
  // Through the tool without an effect; an empty image after a failure.
  Image through(const std::string& file, const std::string& out,
                std::vector<std::string> more = {}) const {
    write("in", file);
    std::vector<std::string> arguments = {"apply", "Fx1800", "in", out, "--strength", "0"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const ToolRun result = run(arguments);
    EXPECT_TRUE(succeeded(result));
    return readImage(read(out));
  }

  static int worstDifference(const Image& a, const Image& b) {
    if (a.samples.size() != b.samples.size()) return 1000;
    int worst = 0;
    for (size_t i = 0; i < a.samples.size(); ++i) {
      worst = std::max(worst, std::abs(a.samples[i] - b.samples[i]));
    }
    return worst;
  }
};

TEST_F(ImageIoTest, RgbPngComesThroughUnchanged) {
  const Image image = randomImage(37, 23, 3, 1);
  const Image result = through(pngFile(image), "out.png");
  EXPECT_EQ(result.width, 37);
  EXPECT_EQ(result.height, 23);
  EXPECT_EQ(result.samples, image.samples);
}

TEST_F(ImageIoTest, OneChannelIsWrittenAsGrey) {
  tool::Picture grey(5, 3, 1);
  for (int i = 0; i < 15; ++i) grey.row(0)[i] = static_cast<uint8_t>(i * 17);
  grey.icc = std::vector<uint8_t>(200, 1);
  for (const tool::FileKind kind : {tool::FileKind::png, tool::FileKind::jpeg}) {
    tool::writePicture(grey, path("grey"), kind, 100);
    const Image image = readImage(read("grey"));
    ASSERT_EQ(image.width, 5);
    EXPECT_EQ(image.icc, "");
    for (int i = 0; i < 15; ++i) {
      EXPECT_NEAR(image.at(i % 5, i / 5)[0], i * 17, 3) << i;
    }
  }
  tool::writePicture(grey, path("grey.png"), tool::FileKind::png, 100);
  EXPECT_EQ(read("grey.png")[25], 0) << "the colour type of grey";
}

TEST_F(ImageIoTest, AlphaIsKept) {
  const Image image = randomImage(19, 8, 4, 2);
  const Image result = through(pngFile(image), "out.png");
  EXPECT_EQ(result.channels, 4);
  EXPECT_EQ(result.samples, image.samples);
}

TEST_F(ImageIoTest, AlphaIsKeptThroughFormatsWithoutIt) {
  const Image image = randomImage(19, 8, 4, 3);
  write("in.png", pngFile(image));
  ASSERT_TRUE(succeeded(run({"apply", "Fx1800", "in.png", "out.png", "--format", "i420"})));
  const Image result = readImage(read("out.png"));
  ASSERT_EQ(result.channels, 4);
  for (size_t i = 3; i < image.samples.size(); i += 4) {
    ASSERT_EQ(result.samples[i], image.samples[i]) << i;
  }
}

TEST_F(ImageIoTest, InterlacedPngIsTheSamePicture) {
  const Image image = randomImage(13, 9, 3, 4);
  EXPECT_EQ(through(pngFile(image, {.interlaced = true}), "out.png").samples, image.samples);
}

TEST_F(ImageIoTest, SixteenBitsAreRoundedToEight) {
  // v * 256 + 255 of 65535: for a v below 128 that is nearer to v + 1 of 255 than to v.
  const Image image = randomImage(11, 7, 3, 5);
  const Image expected = makeImage(
      11, 7, 3, [&](int x, int y, int c) { return (image.at(x, y)[c] * 256 + 255 + 128) / 257; });
  EXPECT_EQ(through(pngFile(image, {.depth = 16}), "out.png").samples, expected.samples);
}

TEST_F(ImageIoTest, GreyBecomesRgb) {
  const Image image = randomImage(11, 7, 1, 6);
  const Image result = through(pngFile(image), "out.png");
  EXPECT_EQ(result.samples,
            makeImage(11, 7, 3, [&](int x, int y, int) { return *image.at(x, y); }).samples);
}

TEST_F(ImageIoTest, GreyWithAlphaBecomesRgba) {
  const Image image = randomImage(11, 7, 2, 7);
  const Image result = through(pngFile(image), "out.png");
  EXPECT_EQ(result.samples, makeImage(11, 7, 4, [&](int x, int y, int c) {
                              return image.at(x, y)[c / 3];
                            }).samples);
}

TEST_F(ImageIoTest, PaletteIsLookedUp) {
  const Image image = randomImage(11, 7, 1, 8);
  const auto expected = [&](int channels) {
    return makeImage(11, 7, channels,
                     [&](int x, int y, int c) {
                       const int i = *image.at(x, y);
                       return std::array{i, 255 - i, i / 2, i}[static_cast<size_t>(c)];
                     })
        .samples;
  };
  EXPECT_EQ(through(pngFile(image, {.palette = true}), "a.png").samples, expected(3));
  EXPECT_EQ(through(pngFile(image, {.palette = true, .keyed = true}), "b.png").samples,
            expected(4));
}

TEST_F(ImageIoTest, JpegIsDecodedAsByTheLibrary) {
  const Image image = randomImage(33, 17, 3, 9);
  for (const bool progressive : {false, true}) {
    const std::string file = jpegFile(image, {.quality = 90, .progressive = progressive});
    EXPECT_EQ(through(file, "out.png").samples, readImage(file).samples);
  }
}

TEST_F(ImageIoTest, GreyJpegBecomesRgb) {
  const Image image = makeImage(16, 16, 1, [](int x, int y, int) { return x * 8 + y * 4; });
  const Image result = through(jpegFile(image), "out.png");
  ASSERT_EQ(result.channels, 3);
  EXPECT_LE(worstDifference(result,
                            makeImage(16, 16, 3, [](int x, int y, int) { return x * 8 + y * 4; })),
            2);
}

// Plain CMYK stores ink; with an Adobe marker it is stored the other way round, as light.
TEST_F(ImageIoTest, InksBecomeRgb) {
  const Image inks = makeImage(16, 16, 4, [](int, int, int c) { return 40 * (c + 1); });
  for (const bool adobe : {false, true}) {
    const Image result = through(jpegFile(inks, {.adobe = adobe}), "out.png");
    const Image expected = makeImage(16, 16, 3, [&](int, int, int c) {
      const int ink = 40 * (c + 1), black = 160;
      return adobe ? ink * black / 255 : (255 - ink) * (255 - black) / 255;
    });
    EXPECT_LE(worstDifference(result, expected), 3) << adobe;
  }
}

TEST_F(ImageIoTest, JpegIsWrittenWithFullChromaAtHighQuality) {
  const Image image = makeImage(32, 32, 3, [](int x, int y, int c) { return x * (c + 1) + y * 4; });
  const Image result = through(pngFile(image), "out.jpg");
  EXPECT_EQ(lumaSampling(read("out.jpg")), (std::pair{1, 1}));
  EXPECT_LE(worstDifference(result, image), 12);
}

TEST_F(ImageIoTest, QualityMakesTheFileSmaller) {
  const std::string file = pngFile(randomImage(64, 64, 3, 10));
  through(file, "fine.jpg");
  through(file, "coarse.jpg", {"--quality", "30"});
  EXPECT_LT(read("coarse.jpg").size() * 2, read("fine.jpg").size());
}

TEST_F(ImageIoTest, TransparencyIsLaidOnWhiteInAJpeg) {
  const Image image = makeImage(16, 16, 4, [](int, int, int c) { return c == 3 ? 102 : 0; });
  const Image result = through(pngFile(image), "out.jpg");
  EXPECT_LE(worstDifference(result, makeImage(16, 16, 3, [](int, int, int) { return 153; })), 1);
}

TEST_F(ImageIoTest, ContentDecidesHowAFileIsRead) {
  const Image image = randomImage(8, 8, 3, 11);
  write("lies.jpg", pngFile(image));
  ASSERT_TRUE(succeeded(run({"apply", "Fx1800", "lies.jpg", "out.png", "--strength", "0"})));
  EXPECT_EQ(readImage(read("out.png")).samples, image.samples);
}

// The four corners tell which way a picture was turned: red, green, blue, white clockwise from the
// top left of the upright picture.
class OrientationTest : public ImageIoTest, public testing::WithParamInterface<int> {};

Image storedAs(int orientation, const Image& upright) {
  const bool side = orientation >= 5;
  const int width = side ? upright.height : upright.width;
  const int height = side ? upright.width : upright.height;
  return makeImage(width, height, 3, [&](int x, int y, int c) {
    const int w = upright.width - 1, h = upright.height - 1;
    const std::array<std::pair<int, int>, 8> places = {
        std::pair{x, y}, {w - x, y},          {w - x, h - y}, {x, h - y},
        {y, x},          std::pair{w - y, x}, {w - y, h - x}, {y, h - x}};
    const auto [px, py] = places[static_cast<size_t>(orientation - 1)];
    return upright.at(px, py)[c];
  });
}

Image corners() {
  return makeImage(48, 32, 3, [](int x, int y, int c) {
    constexpr std::array<std::array<int, 3>, 4> kColors = {
        {{240, 20, 20}, {20, 200, 20}, {250, 250, 250}, {20, 20, 230}}};
    const size_t corner = (x >= 24 ? 1 : 0) + (y >= 16 ? 2 : 0);
    return kColors[corner][static_cast<size_t>(c)];
  });
}

TEST_P(OrientationTest, TurnsAJpegUprightAndSaysSo) {
  Image stored = storedAs(GetParam(), corners());
  stored.exif = exifWithOrientation(GetParam());
  const Image result = through(jpegFile(stored), "out.jpg");
  EXPECT_EQ(result.width, 48);
  EXPECT_LE(worstDifference(result, corners()), 12);
  EXPECT_EQ(result.exif, exifWithOrientation(1));
}

TEST_P(OrientationTest, TurnsAPngUprightAndSaysSo) {
  Image stored = storedAs(GetParam(), corners());
  stored.exif = exifWithOrientation(GetParam());
  const Image result = through(pngFile(stored), "out.png");
  EXPECT_EQ(result.samples, corners().samples);
  EXPECT_EQ(result.exif, exifWithOrientation(1));
}

INSTANTIATE_TEST_SUITE_P(All, OrientationTest, testing::Range(1, 9));

TEST_F(ImageIoTest, ExifAndProfileAreCarriedInEveryDirection) {
  Image image = randomImage(16, 16, 3, 12);
  image.exif = exifWithOrientation(1) + "and more that nobody understands";
  image.icc = rgbProfile(400);
  for (const std::string& file : {pngFile(image), jpegFile(image)}) {
    for (const char* out : {"out.png", "out.jpg"}) {
      const Image result = through(file, out);
      EXPECT_EQ(result.exif, image.exif) << out;
      EXPECT_EQ(result.icc, image.icc) << out;
    }
  }
}

TEST_F(ImageIoTest, AProfileOfSeveralSegmentsIsPutTogetherAgain) {
  Image image = randomImage(16, 16, 3, 13);
  image.icc = rgbProfile(200000);
  EXPECT_EQ(through(jpegFile(image), "out.jpg").icc, image.icc);
}

TEST_F(ImageIoTest, AProfileOfAnotherColourSpaceIsDropped) {
  Image image = randomImage(16, 16, 1, 14);
  image.icc = rgbProfile(400);
  image.icc.replace(16, 4, "GRAY");
  EXPECT_EQ(through(jpegFile(image), "out.jpg").icc, "");
}

TEST_F(ImageIoTest, PicturesWithoutExifAndProfileStaySo) {
  const Image result = through(jpegFile(randomImage(16, 16, 3, 15)), "out.jpg");
  EXPECT_EQ(result.exif, "");
  EXPECT_EQ(result.icc, "");
}

}  // namespace
}  // namespace qpx::test
