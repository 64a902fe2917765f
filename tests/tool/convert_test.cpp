// qpx convert: pictures, raw frames and streams.
#include <algorithm>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "image_files.h"
#include "run_tool.h"

namespace qpx::test {
namespace {

class ConvertTest : public ToolTest {
 protected:
  ToolRun convert(std::vector<std::string> arguments, const std::string& input = {}) const {
    arguments.insert(arguments.begin(), "convert");
    return run(arguments, input);
  }

  Image picture(const std::string& name) const { return readImage(read(name)); }
};

std::string bytes(std::initializer_list<int> values) {
  std::string text;
  for (const int value : values) text += static_cast<char>(value);
  return text;
}

// An I420 frame of one colour.
std::string flatFrame(int width, int height, int y, int u, int v) {
  const auto cells = static_cast<size_t>((width + 1) / 2 * ((height + 1) / 2));
  return std::string(static_cast<size_t>(width * height), static_cast<char>(y)) +
         std::string(cells, static_cast<char>(u)) + std::string(cells, static_cast<char>(v));
}

std::string stream(const std::string& parameters, const std::vector<std::string>& frames) {
  std::string text = "YUV4MPEG2 " + parameters + "\n";
  for (const std::string& frame : frames) text += "FRAME\n" + frame;
  return text;
}

int farthest(const Image& a, const Image& b) {
  int most = a.width == b.width && a.height == b.height && a.channels == b.channels ? 0 : 999;
  for (size_t i = 0; i < a.samples.size() && most < 999; ++i) {
    most = std::max(most, std::abs(a.samples[i] - b.samples[i]));
  }
  return most;
}

// Every pixel has a colour of its own: whatever is moved can be told.
Image markedImage(int width, int height) {
  return makeImage(width, height, 3, [](int x, int y, int c) {
    return c == 0 ? x * 9 : c == 1 ? y * 13 : 77;
  });
}

TEST_F(ConvertTest, PicturesBecomeRawFramesByteForByte) {
  write("a.png", pngFile(makeImage(2, 1, 3, [](int x, int, int c) { return x * 100 + c; })));
  ASSERT_TRUE(succeeded(convert({"a.png", "a.rgb", "--to", "rgb24"})));
  EXPECT_EQ(read("a.rgb"), bytes({0, 1, 2, 100, 101, 102}));
  ASSERT_TRUE(succeeded(convert({"a.png", "a.bgr", "--to", "bgr24"})));
  EXPECT_EQ(read("a.bgr"), bytes({2, 1, 0, 102, 101, 100}));
  ASSERT_TRUE(succeeded(convert({"a.png", "a.bgra", "--to", "bgra32"})));
  EXPECT_EQ(read("a.bgra"), bytes({2, 1, 0, 255, 102, 101, 100, 255}));
}

TEST_F(ConvertTest, RangesAreThoseOfTheirStandards) {
  write("red.png", pngFile(makeImage(2, 2, 3, [](int, int, int c) { return c == 0 ? 255 : 0; })));
  const auto red = [&](const std::string& range) {
    EXPECT_TRUE(succeeded(convert({"red.png", "a.yuv", "--to", "i444", "--range", range})));
    return read("a.yuv");
  };
  const std::vector<std::pair<std::string, std::vector<int>>> expected = {
      {"bt601", {81, 90, 240}},
      {"bt601-full", {76, 85, 255}},
      {"bt709", {63, 102, 240}},
      {"bt709-full", {54, 99, 255}}};
  for (const auto& [range, samples] : expected) {
    const std::string frame = red(range);
    ASSERT_EQ(frame.size(), 12u);
    for (size_t p = 0; p < 3; ++p) {
      EXPECT_NEAR(static_cast<uint8_t>(frame[p * 4]), samples[p], 1) << range << " " << p;
    }
  }
  ASSERT_TRUE(succeeded(convert({"red.png", "default.yuv", "--to", "i444"})));
  EXPECT_EQ(read("default.yuv"), red("bt601"));
}

TEST_F(ConvertTest, FramesComeBackAsPictures) {
  const Image image = markedImage(21, 15);
  write("a.png", pngFile(image));
  for (const std::string format : {"rgb24", "bgr24", "i444"}) {
    ASSERT_TRUE(succeeded(convert({"a.png", "a.raw", "--to", format})));
    ASSERT_TRUE(succeeded(convert({"a.raw", "b.png", "--from", format, "--in-size", "21x15"})));
    EXPECT_LE(farthest(picture("b.png"), image), format == "i444" ? 4 : 0) << format;
  }
}

// Directions in words of the source place that each output pixel shows.
TEST_F(ConvertTest, TurnsAndMirrorsAreComposed) {
  const Image image = markedImage(7, 5);
  write("a.png", pngFile(image));
  for (const int degrees : {0, 90, 180, 270}) {
    for (const std::string mirror : {"", "h", "v"}) {
      std::vector<std::string> call = {"a.png", "b.png", "--rotate", std::to_string(degrees)};
      if (!mirror.empty()) call.insert(call.end(), {"--mirror", mirror});
      ASSERT_TRUE(succeeded(convert(call)));
      const Image result = picture("b.png");
      const bool side = degrees % 180 != 0;
      ASSERT_EQ(result.width, side ? 5 : 7);
      ASSERT_EQ(result.height, side ? 7 : 5);
      for (int y = 0; y < result.height; ++y) {
        for (int x = 0; x < result.width; ++x) {
          const int turnedX = mirror == "h" ? result.width - 1 - x : x;
          const int turnedY = mirror == "v" ? result.height - 1 - y : y;
          int fromX = turnedX, fromY = turnedY;
          if (degrees == 90) fromX = turnedY, fromY = image.height - 1 - turnedX;
          if (degrees == 180) fromX = image.width - 1 - turnedX, fromY = image.height - 1 - turnedY;
          if (degrees == 270) fromX = image.width - 1 - turnedY, fromY = turnedX;
          ASSERT_TRUE(std::equal(result.at(x, y), result.at(x, y) + 3, image.at(fromX, fromY)))
              << degrees << mirror << " " << x << "," << y;
        }
      }
    }
  }
}

TEST_F(ConvertTest, PaddingIsBlackAndTheRestIsThePicture) {
  write("a.png", pngFile(makeImage(40, 40, 3, [](int, int, int) { return 200; })));
  for (const std::string format : {"rgb24", "i420", "nv21", "yuyv", "grey", "rgb565"}) {
    ASSERT_TRUE(
        succeeded(convert({"a.png", "b.png", "--to", format, "--size", "80x40", "--fit", "pad"})));
    const Image result = picture("b.png");
    ASSERT_EQ(result.width, 80);
    for (int x = 0; x < 80; ++x) {
      ASSERT_NEAR(result.at(x, 17)[1], x >= 20 && x < 60 ? 200 : 0, 4) << format << " " << x;
    }
  }
  ASSERT_TRUE(succeeded(convert({"a.png", "b.png", "--size", "20x80", "--fit", "pad"})));
  EXPECT_EQ(picture("b.png").at(10, 29)[0], 0);
  EXPECT_EQ(picture("b.png").at(10, 30)[0], 200);
}

TEST_F(ConvertTest, PaddingHasTheBlackOfItsRange) {
  const std::string flat = flatFrame(4, 4, 99, 10, 20);
  for (const auto& [range, black] : {std::pair{"bt601", 16}, {"bt709-full", 0}}) {
    const ToolRun result = convert({"-", "-", "--from", "i420", "--in-size", "4x4", "--size", "8x4",
                                    "--fit", "pad", "--range", range, "--to", "i420"},
                                   flat);
    ASSERT_TRUE(succeeded(result));
    std::string luma, u, v;
    for (int y = 0; y < 4; ++y) luma += bytes({black, black, 99, 99, 99, 99, black, black});
    for (int y = 0; y < 2; ++y) u += bytes({128, 10, 10, 128}), v += bytes({128, 20, 20, 128});
    EXPECT_EQ(result.out, luma + u + v) << range;
  }
}

TEST_F(ConvertTest, CroppingKeepsTheMiddle) {
  write("a.png", pngFile(markedImage(24, 12)));
  ASSERT_TRUE(succeeded(convert({"a.png", "b.png", "--size", "12x12", "--fit", "crop"})));
  const Image result = picture("b.png");
  EXPECT_EQ(result.at(0, 0)[0], 6 * 9);
  EXPECT_EQ(result.at(11, 11)[0], 17 * 9);
  EXPECT_EQ(result.at(11, 11)[1], 11 * 13);
}

TEST_F(ConvertTest, AdjustsColoursOfRgbToo) {
  write("a.png", pngFile(makeImage(8, 8, 3, [](int, int, int c) { return 90 + 20 * c; })));
  ASSERT_TRUE(succeeded(convert({"a.png", "b.png", "--brightness", "60"})));
  EXPECT_GT(picture("b.png").at(4, 4)[0], 120);
  ASSERT_TRUE(succeeded(convert({"a.png", "c.png", "--saturation", "-128"})));
  EXPECT_NEAR(picture("c.png").at(4, 4)[0], picture("c.png").at(4, 4)[2], 2);
}

TEST_F(ConvertTest, DitheringKeepsTheMeanOfASmoothColour) {
  const std::string frame = flatFrame(64, 16, 131, 128, 128);
  write("a.i420", frame);
  const auto mean = [&](bool dither) {
    std::vector<std::string> call = {"a.i420", "a.565", "--from", "i420",    "--in-size",
                                     "64x16",  "--to",  "rgb565", "--range", "bt601-full"};
    if (dither) call.emplace_back("--dither");
    EXPECT_TRUE(succeeded(convert(call)));
    const std::string out = read("a.565");
    double sum = 0;
    for (size_t i = 0; i + 1 < out.size(); i += 2) sum += (out[i] & 31) * 8;
    return sum / 1024;
  };
  EXPECT_NEAR(mean(false), 128, 0.01);
  EXPECT_NEAR(mean(true), 131, 1);
}

TEST_F(ConvertTest, TransparencyIsKeptOrLaidOnWhite) {
  write("a.png", pngFile(makeImage(4, 4, 4, [](int, int, int c) { return c == 3 ? 0 : 50; })));
  ASSERT_TRUE(succeeded(convert({"a.png", "b.png"})));
  EXPECT_EQ(picture("b.png").channels, 4);
  EXPECT_EQ(picture("b.png").at(1, 1)[3], 0);
  ASSERT_TRUE(succeeded(convert({"a.png", "a.rgb", "--to", "rgb24"})));
  EXPECT_EQ(read("a.rgb"), std::string(48, '\xFF'));
}

TEST_F(ConvertTest, FilesOfManyFramesAreConvertedFrameByFrame) {
  const std::string first = flatFrame(6, 4, 10, 20, 30), second = flatFrame(6, 4, 40, 50, 60);
  write("a.i420", first + second);
  ASSERT_TRUE(succeeded(
      convert({"a.i420", "a.nv12", "--from", "i420", "--in-size", "6x4", "--to", "nv12"})));
  std::string chroma, chroma2;
  for (int i = 0; i < 6; ++i) chroma += bytes({20, 30}), chroma2 += bytes({50, 60});
  EXPECT_EQ(read("a.nv12"), std::string(24, 10) + chroma + std::string(24, 40) + chroma2);
}

TEST_F(ConvertTest, AFrameCutOffIsAnErrorAndThoseBeforeItStay) {
  const std::string frame = flatFrame(6, 4, 10, 20, 30);
  const std::vector<std::string> call = {"-",    "out.nv21", "--from",    "i420",
                                         "--to", "nv21",     "--in-size", "6x4"};
  EXPECT_TRUE(failedWith(convert(call, frame + frame + "abc"), 1,
                         "standard input: ends within frame 3, which has 3 of 36 bytes"));
  EXPECT_EQ(read("out.nv21").size(), 72u);
  write("out.nv21", "old");
  EXPECT_TRUE(failedWith(convert(call, "abc"), 1, "ends within frame 1"));
  EXPECT_TRUE(failedWith(convert(call), 1, "holds no frame"));
  EXPECT_EQ(files(), "out.nv21");
  EXPECT_EQ(read("out.nv21"), "old");
}

TEST_F(ConvertTest, AnyNumberOfThreadsMakesTheSameBytes) {
  write("a.png", pngFile(randomImage(67, 131, 3, 8)));
  // Neighbouring rows differ in chroma: a cell that two strips write would show it.
  ASSERT_TRUE(succeeded(convert({"a.png", "b.nv21", "--to", "nv21", "--threads", "1"})));
  ASSERT_TRUE(succeeded(convert({"a.png", "a.nv21", "--to", "nv21", "--threads", "3"})));
  ASSERT_EQ(read("a.nv21"), read("b.nv21"));
  for (const std::string format : {"i420", "yuyv", "rgba32", "rgb565"}) {
    const auto with = [&](const std::string& threads) {
      EXPECT_TRUE(succeeded(convert({"a.nv21", "a.raw", "--from", "nv21", "--in-size", "67x131",
                                     "--to", format, "--range", "bt601-full", "--size", "130x71",
                                     "--rotate", "90", "--bilinear", "--threads", threads})));
      return read("a.raw");
    };
    EXPECT_EQ(with("1"), with("3")) << format;
  }
}

TEST_F(ConvertTest, StreamsGoThroughPipes) {
  const std::vector<std::string> frames = {flatFrame(5, 3, 10, 20, 30),
                                           flatFrame(5, 3, 40, 50, 60)};
  const std::string in = stream("W5 H3 F30000:1001 Ip A1:1 C420mpeg2", frames);
  const ToolRun same = convert({"-", "-"}, in);
  ASSERT_TRUE(succeeded(same));
  EXPECT_EQ(same.out, in);
  const ToolRun raw = convert({"-", "-", "--raw"}, in);
  ASSERT_TRUE(succeeded(raw));
  EXPECT_EQ(raw.out, frames[0] + frames[1]);
  const ToolRun grey = convert({"-", "-", "--to", "grey", "--size", "10x3"}, in);
  ASSERT_TRUE(succeeded(grey));
  EXPECT_EQ(grey.out,
            stream("W10 H3 F30000:1001 Ip A1:2 Cmono", {std::string(30, 10), std::string(30, 40)}));
  ASSERT_TRUE(succeeded(convert({"-", "a.y4m", "--to", "i444", "--rotate", "90"}, in)));
  const std::string turned = read("a.y4m");
  EXPECT_TRUE(turned.starts_with("YUV4MPEG2 W3 H5 F30000:1001 Ip A1:1 C444\nFRAME\n"));
  EXPECT_EQ(turned.size(), 41u + 2 * (6 + 45));
}

TEST_F(ConvertTest, StreamsSayTheirRange) {
  const std::string in = stream("W2 H2 C444 XCOLORRANGE=FULL", {std::string(12, '\x80')});
  const ToolRun limited = convert({"-", "-", "--range", "bt601"}, in);
  ASSERT_TRUE(succeeded(limited));
  EXPECT_NE(limited.out.find("XCOLORRANGE=LIMITED"), std::string::npos);
  EXPECT_NEAR(static_cast<uint8_t>(limited.out[limited.out.find("FRAME\n") + 6]), 126, 1);
  const ToolRun kept = convert({"-", "-"}, in);
  EXPECT_EQ(kept.out.substr(kept.out.find("FRAME")), in.substr(in.find("FRAME")));
  EXPECT_TRUE(failedWith(convert({"-", "-", "--in-range", "bt601", "--range", "bt709"}, in), 2,
                         "another matrix"));
  // What the call says of the input holds whatever its header says.
  const ToolRun said = convert({"-", "-", "--in-range", "bt601", "--range", "bt601"}, in);
  EXPECT_EQ(said.out.substr(said.out.find("FRAME")), in.substr(in.find("FRAME")));
}

TEST_F(ConvertTest, FieldsStayWhereNothingMoves) {
  const std::string in = "YUV4MPEG2 W2 H2 F25:1 Im A0:0 C444\nFRAME Itpp\n" + std::string(12, 'a');
  EXPECT_EQ(convert({"-", "-"}, in).out, in);
  const ToolRun turned = convert({"-", "-", "--rotate", "180"}, in);
  EXPECT_EQ(turned.out.substr(0, turned.out.size() - 12),
            "YUV4MPEG2 W2 H2 F25:1 Ip A0:0 C444\nFRAME\n");
}

TEST_F(ConvertTest, BrokenStreamsAreRefused) {
  const std::string frame(12, 'a');
  const std::vector<std::pair<std::string, std::string>> broken = {
      {"YUV4MPEG2 W2 H2", "ends within a header line"},
      {"YUV4MPEG2 W2\nFRAME\n" + frame, "without width or height"},
      {"YUV4MPEG2 W0 H2\n", "'W0'"},
      {"YUV4MPEG2 W2147483648 H2\n", "'W2147483648'"},
      {"YUV4MPEG2 W99999999999999999999 H2\n", "damaged"},
      {"YUV4MPEG2 W-2 H2\n", "'W-2'"},
      {"YUV4MPEG2 W2147483647 H2147483647\n", "512 megapixels"},
      {"YUV4MPEG2 W65536 H65536\n", "512 megapixels"},
      {"YUV4MPEG2 W2 H2 C420p10\n", "'C420p10'"},
      {"YUV4MPEG2 W2 H2 C420p10\n", "8-bit"},
      {"YUV4MPEG2 W2 H2 C420 C410\n", "8-bit"},
      {"YUV4MPEG2 W2 H2 F25\n", "'F25'"},
      {"YUV4MPEG2 W2 H2 Ix\n", "'Ix'"},
      {"YUV4MPEG2 W2 H2 A1\n", "'A1'"},
      {"YUV4MPEG2 W2 H2 Q1\n", "'Q1'"},
      {"YUV4MPEG2X W2 H2\n", "no YUV4MPEG2"},
      {"YUV4MPEG2 W2 H2 X" + std::string(5000, 'x') + "\n", "more than 4096"},
      {"YUV4MPEG2 W2 H2 C444\n", "holds no frame"},
      {"YUV4MPEG2 W2 H2 C444\nFRAMES\n" + frame, "where a frame should begin"},
      {"YUV4MPEG2 W2 H2 C444\nFRAME\n", "ends within frame 1, which has 0 of 12"},
  };
  for (const auto& [in, text] : broken) {
    EXPECT_TRUE(failedWith(convert({"-", "out.y4m"}, in), 1, text)) << in.substr(0, 60);
    EXPECT_EQ(files(), "");
  }
  const std::string cut = stream("W2 H2 C444", {frame, "ab"});
  EXPECT_TRUE(failedWith(convert({"-", "out.y4m"}, cut), 1, "ends within frame 2"));
  EXPECT_EQ(read("out.y4m"), "YUV4MPEG2 W2 H2 F25:1 Ip A0:0 C444\nFRAME\n" + frame);
}

TEST_F(ConvertTest, PicturesTakeOneFrame) {
  const std::string frame = flatFrame(4, 4, 128, 128, 128);
  ASSERT_TRUE(succeeded(convert({"-", "a.png"}, stream("W4 H4", {frame}))));
  EXPECT_EQ(picture("a.png").width, 4);
  EXPECT_TRUE(
      failedWith(convert({"-", "b.png"}, stream("W4 H4", {frame, frame})), 1, "more frames"));
  EXPECT_FALSE(exists("b.png"));
}

TEST_F(ConvertTest, WrongCallsAreRefused) {
  write("a.png", pngFile(markedImage(4, 4)));
  const auto refused = [&](std::vector<std::string> call, const std::string& text) {
    EXPECT_TRUE(failedWith(convert(call), 2, text)) << call.back();
  };
  refused({"a.png", "a.raw"}, "--to must say");
  refused({"a.png", "a.raw", "--to", "nv22"}, "nv22");
  refused({"a.png", "b.png", "--size", "0x4"}, "'0x4'");
  refused({"a.png", "b.png", "--size", "99999999999x4"}, "is no size");
  refused({"a.raw", "b.png", "--from", "nv21"}, "--in-size");
  refused({"a.png", "b.png", "--rotate", "45"}, "--rotate");
  refused({"a.png", "b.png", "--brightness", "200"}, "--brightness");
  refused({"a.png", "b.png", "--dither"}, "16 bits");
  refused({"a.png", "b.y4m", "--to", "nv21"}, ".y4m stream");
  EXPECT_TRUE(failedWith(convert({"none.png", "b.png"}), 1, "none.png: cannot be read"));
  write("text", "Dear all,\n");
  EXPECT_TRUE(
      failedWith(convert({"text", "b.png"}), 1, "text: is no picture (JPEG, PNG) and no YUV"));
  EXPECT_EQ(files(), "a.png text");
}

}  // namespace
}  // namespace qpx::test
