// qpx etc: textures in and out of PKM files, and files that lie.
#include <algorithm>
#include <cmath>
#include <string>

#include "image_files.h"
#include "run_tool.h"

namespace qpx::test {
namespace {

std::string number16(int value) {
  return {static_cast<char>(value >> 8), static_cast<char>(value & 255)};
}

// A PKM file of a header and blocks of zeros, or `bytes` zeros.
std::string pkmFile(int paddedWidth, int paddedHeight, int width, int height, int bytes = -1) {
  return "PKM 10" + number16(0) + number16(paddedWidth) + number16(paddedHeight) + number16(width) +
         number16(height) +
         std::string(static_cast<size_t>(bytes < 0 ? paddedWidth * paddedHeight / 2 : bytes), '\0');
}

class EtcTest : public ToolTest {
 protected:
  ToolRun etc(std::vector<std::string> arguments, const std::string& input = {}) const {
    arguments.insert(arguments.begin(), "etc");
    return run(arguments, input);
  }

  // A smooth picture of any size, and its texture.
  Image encode(int width, int height, const std::string& name) const {
    const Image image = makeImage(width, height, 3, [](int x, int y, int c) {
      return std::clamp(128 + static_cast<int>(90 * std::sin(x * 0.07 + c) * std::cos(y * 0.05)), 0,
                        255);
    });
    write(name + ".png", pngFile(image));
    EXPECT_TRUE(succeeded(etc({"encode", name + ".png", name + ".pkm"})));
    return image;
  }

  Image decode(const std::string& name) const {
    EXPECT_TRUE(succeeded(etc({"decode", name, "decoded.png"})));
    return readImage(read("decoded.png"));
  }
};

int farthest(const Image& a, const Image& b) {
  int most = 0;
  for (size_t i = 0; i < a.samples.size(); ++i) {
    most = std::max(most, std::abs(a.samples[i] - b.samples[i]));
  }
  return most;
}

TEST_F(EtcTest, PicturesOfAnySizeComeBack) {
  for (const auto& [width, height] : {std::pair{1, 1}, {4, 4}, {7, 5}, {130, 67}, {3, 200}}) {
    const Image image = encode(width, height, "a");
    const int paddedWidth = (width + 3) / 4 * 4, paddedHeight = (height + 3) / 4 * 4;
    const std::string file = read("a.pkm");
    EXPECT_EQ(file.substr(0, 16), pkmFile(paddedWidth, paddedHeight, width, height, 0));
    EXPECT_EQ(file.size(), 16u + static_cast<size_t>(paddedWidth * paddedHeight / 2));
    const Image decoded = decode("a.pkm");
    ASSERT_EQ(decoded.width, width);
    ASSERT_EQ(decoded.height, height);
    ASSERT_EQ(decoded.channels, 3);
    EXPECT_LE(farthest(image, decoded), 24) << width << "x" << height;
  }
}

TEST_F(EtcTest, QualitiesDifferAndHighIsTheDefault) {
  encode(64, 64, "a");
  ASSERT_TRUE(succeeded(etc({"encode", "a.png", "high.pkm", "--quality", "high"})));
  ASSERT_TRUE(succeeded(etc({"encode", "a.png", "fast.pkm", "--quality", "fast"})));
  EXPECT_EQ(read("a.pkm"), read("high.pkm"));
  EXPECT_NE(read("fast.pkm"), read("high.pkm"));
  EXPECT_TRUE(failedWith(etc({"encode", "a.png", "b.pkm", "--quality", "low"}), 2, "low"));
}

// A block of red is (248, 4, 4) and the like: white shows through half of it.
TEST_F(EtcTest, TransparencyIsLaidOnWhite) {
  const Image image = makeImage(8, 8, 4, [](int x, int, int c) {
    return c == 0 ? 255 : c < 3 ? 0 : x < 4 ? 255 : 0;
  });
  write("a.png", pngFile(image));
  ASSERT_TRUE(succeeded(etc({"encode", "a.png", "a.pkm"})));
  const Image decoded = decode("a.pkm");
  EXPECT_LE(decoded.at(0, 0)[1], 8);
  EXPECT_GE(decoded.at(7, 7)[1], 250);
}

TEST_F(EtcTest, CropIsTheRectangleOfThePicture) {
  encode(61, 50, "a");
  const Image whole = decode("a.pkm");
  for (const auto& [x, y, width, height] :
       {std::array{0, 0, 61, 50}, {8, 4, 12, 16}, {40, 0, 21, 8}, {0, 48, 4, 2}, {60, 48, 1, 2}}) {
    const std::string rect = std::to_string(x) + "," + std::to_string(y) + "," +
                             std::to_string(width) + "," + std::to_string(height);
    ASSERT_TRUE(succeeded(etc({"crop", "a.pkm", "part.pkm", "--rect", rect})));
    const Image part = decode("part.pkm");
    ASSERT_EQ(part.width, width);
    ASSERT_EQ(part.height, height);
    for (int row = 0; row < height; ++row) {
      ASSERT_TRUE(std::equal(part.at(0, row), part.at(0, row) + width * 3, whole.at(x, y + row)));
    }
  }
}

TEST_F(EtcTest, CropRefusesRectanglesThatAreNone) {
  encode(61, 50, "a");
  for (const char* rect : {"1,0,4,4", "0,2,4,4", "0,0,0,4", "-4,0,8,8", "0,0,4", "0,0,4,4,4",
                           "a,0,4,4", "0,0,4,", "0;0;4;4", "0,0,4,9999999999"}) {
    EXPECT_TRUE(failedWith(etc({"crop", "a.pkm", "b.pkm", std::string("--rect=") + rect}), 2, ""))
        << rect;
  }
  EXPECT_TRUE(failedWith(etc({"crop", "a.pkm", "b.pkm"}), 2, "--rect"));
  EXPECT_TRUE(failedWith(etc({"crop", "a.pkm", "b.pkm", "--rect", "0,0,64,48"}), 1,
                         "a.pkm: --rect leaves the picture of 61x50"));
  EXPECT_TRUE(
      failedWith(etc({"crop", "a.pkm", "b.pkm", "--rect", "0,0,10,8"}), 1, "ends within a block"));
  EXPECT_FALSE(exists("b.pkm"));
}

TEST_F(EtcTest, MergeLaysOneOverTheOther) {
  encode(64, 48, "base");
  const Image white = makeImage(16, 16, 3, [](int, int, int) { return 255; });
  write("white.png", pngFile(white));
  ASSERT_TRUE(succeeded(etc({"encode", "white.png", "white.pkm"})));
  const Image base = decode("base.pkm");
  ASSERT_TRUE(succeeded(etc({"merge", "base.pkm", "white.pkm", "out.pkm", "--at", "8,12"})));
  const Image out = decode("out.pkm");
  ASSERT_TRUE(succeeded(etc({"merge", "base.pkm", "white.pkm", "half.pkm", "--at=-8,36", "--alpha",
                             "0.5", "--rect", "4,0,12,16"})));
  const Image half = decode("half.pkm");
  for (int y = 0; y < 48; ++y) {
    for (int x = 0; x < 64; ++x) {
      const bool covered = x >= 8 && x < 24 && y >= 12 && y < 28;
      const bool blended = x < 4 && y >= 36;
      ASSERT_NEAR(out.at(x, y)[1], covered ? 255 : base.at(x, y)[1], covered ? 3 : 0);
      ASSERT_NEAR(half.at(x, y)[1], blended ? (255 + base.at(x, y)[1]) / 2 : base.at(x, y)[1],
                  blended ? 12 : 0);
    }
  }
}

TEST_F(EtcTest, MergeRefusesWrongPlaces) {
  encode(64, 48, "a");
  const auto merge = [&](std::vector<std::string> more) {
    std::vector<std::string> arguments = {"merge", "a.pkm", "a.pkm", "b.pkm"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return etc(arguments);
  };
  EXPECT_TRUE(failedWith(merge({"--at", "2,0"}), 2, "multiple of 4"));
  EXPECT_TRUE(failedWith(merge({"--at", "0"}), 2, "x,y"));
  for (const char* alpha : {"1.5", "-0.01", "nan", "inf", "half"}) {
    EXPECT_TRUE(failedWith(merge({std::string("--alpha=") + alpha}), 2,
                           "--alpha: give a number from 0 to 1"))
        << alpha;
  }
  EXPECT_TRUE(failedWith(merge({"--rect", "0,0,68,4"}), 1, "leaves the picture"));
  EXPECT_TRUE(failedWith(etc({"merge", "-", "-", "b.pkm"}), 2, "standard input"));
  EXPECT_TRUE(succeeded(merge({"--at", "400,400"})));
  EXPECT_EQ(read("b.pkm"), read("a.pkm"));
}

TEST_F(EtcTest, PipesCarryTextures) {
  encode(32, 32, "a");
  const ToolRun encoded = etc({"encode", "-", "-"}, read("a.png"));
  EXPECT_EQ(encoded.out, read("a.pkm"));
  const ToolRun decoded = etc({"decode", "-", "-"}, encoded.out);
  EXPECT_EQ(readImage(decoded.out).samples, decode("a.pkm").samples);
  const ToolRun jpeg = etc({"decode", "-", "-", "--to", "jpeg"}, encoded.out);
  EXPECT_TRUE(jpeg.out.starts_with("\xFF\xD8"));
}

TEST_F(EtcTest, FilesThatAreNoTexturesAreNamed) {
  struct Lie {
    const char* message;
    std::string file;
  };
  const std::string good = pkmFile(8, 8, 8, 8);
  std::string version = good, type = good, magic = good;
  version[4] = '2';
  type[7] = 1;
  magic[0] = 'p';
  for (const Lie& lie : {Lie{"is empty", ""},
                         {"is not a PKM file", magic},
                         {"is not a PKM file", "Dear all,\n"},
                         {"ends within its header", good.substr(0, 15)},
                         {"ends within its header", "PKM"},
                         {"of another kind", version},
                         {"of another kind", type},
                         {"its header says 9x8", pkmFile(8, 8, 9, 8)},
                         {"its header says 4x8", pkmFile(8, 8, 4, 8)},
                         {"its header says 0x8", pkmFile(8, 8, 0, 8)},
                         {"its header says 8x0", pkmFile(8, 0, 8, 0)},
                         {"its header says 7x7", pkmFile(7, 7, 7, 7, 32)},
                         {"its header says 65535x65535", pkmFile(65535, 65535, 65535, 65535, 0)},
                         {"take 2147221512 bytes", pkmFile(65532, 65532, 65532, 65532, 64)},
                         {"and 31 are there", good.substr(0, good.size() - 1)},
                         {"and 33 are there", good + "x"},
                         {"and 0 are there", good.substr(0, 16)}}) {
    write("bad.pkm", lie.file);
    EXPECT_TRUE(failedWith(etc({"decode", "bad.pkm", "o.png"}), 1, lie.message)) << lie.message;
    EXPECT_TRUE(failedWith(etc({"crop", "bad.pkm", "o.pkm", "--rect", "0,0,4,4"}), 1, "bad.pkm: "));
    EXPECT_TRUE(failedWith(etc({"merge", "bad.pkm", "bad.pkm", "o.pkm"}), 1, "bad.pkm: "));
  }
  EXPECT_EQ(files(), "bad.pkm");
}

TEST_F(EtcTest, WrongCallsAreExplained) {
  EXPECT_TRUE(failedWith(etc({}), 2, "qpx etc --help"));
  EXPECT_TRUE(failedWith(etc({"encod"}), 2, "did you mean encode?"));
  EXPECT_TRUE(failedWith(etc({"encode", "a.png"}), 2, "qpx etc encode --help"));
  EXPECT_TRUE(
      failedWith(etc({"encode", "missing.png", "o.pkm"}), 1, "missing.png: cannot be read"));
  EXPECT_TRUE(
      failedWith(etc({"decode", "missing.pkm", "o.png"}), 1, "missing.pkm: cannot be read"));
  EXPECT_TRUE(failedWith(etc({"decode", "a.pkm", "o.gif"}), 2, "name it .jpg or .png"));
  for (const char* job : {"encode", "decode", "crop", "merge"}) {
    const ToolRun help = etc({job, "--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.out.find("Example:"), std::string::npos) << job;
  }
}

}  // namespace
}  // namespace qpx::test
