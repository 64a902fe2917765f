// qpx cutout, and its parts that need no picture.
#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "errors.h"
#include "image_files.h"
#include "json_reader.h"
#include "outline_svg.h"
#include "run_tool.h"
#include "soft_edge.h"
#include "strokes.h"

namespace qpx::test {
namespace {

using tool::JsonValue;

std::string problemOf(const std::string& json) {
  try {
    tool::parseJson(json);
  } catch (const tool::RunError& error) {
    return error.what();
  }
  return {};
}

TEST(JsonReader, ReadsEveryKindOfValue) {
  const JsonValue root = tool::parseJson(
      "\xEF\xBB\xBF {\"a\": [1, -2.5e1, 0, true, false, null],\n"
      " \"b\\u00e9\\ud83d\\ude00\\n\": {}, \"\": \"\xC3\xA9\\/\\ud800\"}\n");
  ASSERT_EQ(JsonValue::Kind::object, root.kind);
  ASSERT_EQ(3u, root.names.size());
  const JsonValue& list = root.items[0];
  ASSERT_EQ(6u, list.items.size());
  EXPECT_EQ(1, list.items[0].number);
  EXPECT_EQ(-25, list.items[1].number);
  EXPECT_TRUE(list.items[3].flag);
  EXPECT_EQ(JsonValue::Kind::boolean, list.items[4].kind);
  EXPECT_EQ(JsonValue::Kind::null, list.items[5].kind);
  EXPECT_EQ("b\xC3\xA9\xF0\x9F\x98\x80\n", root.names[1]);
  EXPECT_EQ(2, root.items[1].line);
  EXPECT_EQ("\xC3\xA9/\xEF\xBF\xBD", root.items[2].text);
}

TEST(JsonReader, RefusesEverythingElse) {
  for (const char* const bad :
       {"",   " ",      "{",       "[1,]",        "[1 2]",    "{\"a\" 1}", "{a: 1}", "{\"a\": 1,}",
        "01", "-",      "1.",      "1e",          ".5",       "+1",        "NaN",    "tru",
        "\"", "\"\n\"", "\"\\x\"", "\"\\u12g4\"", "\"\xFF\"", "1 2",       "1e999"}) {
    EXPECT_TRUE(problemOf(bad).starts_with("line ")) << bad;
  }
  EXPECT_EQ("", problemOf(std::string(63, '[') + "1" + std::string(63, ']')));
  EXPECT_EQ("line 1: values are nested too deep", problemOf(std::string(100000, '[')));
  EXPECT_EQ("line 3: no value begins like this", problemOf("[1,\n2,\n?]"));
}

TEST(Strokes, LinesJoinTheirPoints) {
  const std::vector<MPoint> pixels = tool::pixelsOf({{{2, 3}, {7, 5}, {7, 5}, {7, 1}, {4, 4}}, ""});
  EXPECT_EQ(1u + 5 + 0 + 4 + 3, pixels.size());
  for (size_t i = 1; i < pixels.size(); ++i) {
    EXPECT_LE(std::abs(pixels[i].x - pixels[i - 1].x), 1);
    EXPECT_LE(std::abs(pixels[i].y - pixels[i - 1].y), 1);
  }
  EXPECT_EQ(4, pixels.back().x);
  EXPECT_EQ(4, pixels.back().y);
  EXPECT_EQ(1u, tool::pixelsOf({{{2, 3}}, ""}).size());
}

TEST(OutlineSvg, ChainsAreApart) {
  const MPoint points[] = {{1, 1}, {2, 1}, {3, 1},  {3, 2},  {2, 2},
                           {8, 1}, {9, 2}, {10, 3}, {11, 3}, {12, 3}};
  const std::string svg = tool::outlineSvg(20, 10, points);
  EXPECT_NE(std::string::npos, svg.find("viewBox=\"0 0 20 10\""));
  EXPECT_NE(std::string::npos, svg.find("<path d=\"M1.5 1.5l2 0l0 1l-1 0z\"/>"));
  EXPECT_NE(std::string::npos, svg.find("<path d=\"M8.5 1.5l2 2l2 0\"/>"));
  EXPECT_EQ(std::string::npos, tool::outlineSvg(5, 5, {}).find("<path"));
}

// A vertical edge half way through a column: the object's share of the mixed pixels comes out, and
// their colour is that of the object.
TEST(SoftEdge, TakesMixedPixelsApart) {
  tool::Picture picture(40, 10, 3), mask(40, 10, 1);
  for (int y = 0; y < 10; ++y) {
    for (int x = 0; x < 40; ++x) {
      for (int c = 0; c < 3; ++c) {
        const int object = c == 0 ? 220 : 40, ground = c == 2 ? 200 : 90;
        picture.row(y)[3 * x + c] =
            static_cast<uint8_t>(x < 20 ? object : (x == 20 ? (object + 3 * ground) / 4 : ground));
      }
      mask.row(y)[x] = x < 21 ? 255 : 0;
    }
  }
  const tool::Picture out = tool::cutOut(picture, mask, 1);
  ASSERT_EQ(4, out.channels());
  const uint8_t* const row = out.row(5);
  EXPECT_EQ(255, row[4 * 10 + 3]);
  EXPECT_EQ(0, row[4 * 30 + 3]);
  EXPECT_EQ(0, row[4 * 30]);
  EXPECT_NEAR(85, row[4 * 20 + 3], 35);
  EXPECT_GT(row[4 * 19 + 3], 225);
  EXPECT_LT(row[4 * 21 + 3], 40);
  for (int x = 17; x < 23; ++x) {
    if (row[4 * x + 3] == 0) continue;
    EXPECT_NEAR(220, row[4 * x], 15) << x;
    EXPECT_NEAR(40, row[4 * x + 2], 15) << x;
  }
  const tool::Picture hard = tool::cutOut(picture, mask, 0);
  for (int x = 0; x < 40; ++x) EXPECT_EQ(x < 21 ? 255 : 0, hard.row(5)[4 * x + 3]) << x;
}

// Red in a disc, blue around it.
Image discImage(int channels = 3) {
  return makeImage(90, 70, channels, [](int x, int y, int c) {
    const bool in = (x - 45) * (x - 45) + (y - 35) * (y - 35) < 400;
    const int noise = (x * 31 + y * 17 + c * 7) % 13;
    if (c == 3) return x < 45 ? 255 : 100;
    return (in ? (c == 0 ? 200 : 50) : (c == 2 ? 180 : 70)) + noise;
  });
}

class CutoutTest : public ToolTest {
 protected:
  CutoutTest() { write("in.png", pngFile(discImage())); }

  ToolRun cut(std::vector<std::string> more) const {
    more.insert(more.begin(), {"cutout", "in.png", "out.png"});
    return run(more);
  }
};

const std::vector<std::string> kBothSides = {"--foreground", "35,35 55,35",  "--background",
                                             "5,5 80,5",     "--background", "5,65"};

void expectDisc(const Image& out) {
  ASSERT_EQ(4, out.channels);
  int wrong = 0;
  for (int y = 0; y < out.height; ++y) {
    for (int x = 0; x < out.width; ++x) {
      const int d = (x - 45) * (x - 45) + (y - 35) * (y - 35);
      wrong += d < 300 ? out.at(x, y)[3] < 250 : d > 560 && out.at(x, y)[3] > 5;
    }
  }
  EXPECT_EQ(0, wrong);
}

TEST_F(CutoutTest, CutsAndWritesMaskAndOutline) {
  std::vector<std::string> arguments = kBothSides;
  arguments.insert(arguments.end(), {"--mask", "mask.png", "--outline", "outline.svg"});
  EXPECT_TRUE(succeeded(cut(arguments)));
  expectDisc(readImage(read("out.png")));
  const Image mask = readImage(read("mask.png"));
  ASSERT_EQ(90, mask.width);
  int wrong = 0;
  for (int y = 0; y < mask.height; ++y) {
    for (int x = 0; x < mask.width; ++x) {
      const int d = (x - 45) * (x - 45) + (y - 35) * (y - 35);
      wrong += d < 340 ? *mask.at(x, y) != 255 : d > 480 && *mask.at(x, y) != 0;
    }
  }
  EXPECT_EQ(0, wrong);
  EXPECT_NE(std::string::npos, read("outline.svg").find("z\"/>"));
  EXPECT_EQ("in.png mask.png out.png outline.svg", files());
}

TEST_F(CutoutTest, TakesStrokesFromAFile) {
  write("strokes.json",
        "{\"foreground\": [[[35.7, 35], [55, 35]]],\n \"background\": [[[5, 5], [80, 5]], [[5, "
        "65]]]}");
  EXPECT_TRUE(succeeded(cut({"--strokes", "strokes.json"})));
  expectDisc(readImage(read("out.png")));
  write("one.json", "{\"foreground\": [[[35, 35], [55, 35]]]}");
  EXPECT_TRUE(succeeded(cut({"--strokes", "one.json", "-b", "5,5 80,5", "--feather", "0"})));
  const Image hard = readImage(read("out.png"));
  for (size_t i = 3; i < hard.samples.size(); i += 4) EXPECT_EQ(0, (hard.samples[i] + 1) & 0xFE);
}

TEST_F(CutoutTest, KeepsTransparency) {
  write("in.png", pngFile(discImage(4)));
  EXPECT_TRUE(succeeded(cut(kBothSides)));
  const Image out = readImage(read("out.png"));
  EXPECT_EQ(255, out.at(40, 35)[3]);
  EXPECT_EQ(100, out.at(50, 35)[3]);
  EXPECT_EQ(0, out.at(3, 3)[3]);
}

TEST_F(CutoutTest, Pipes) {
  std::vector<std::string> arguments = kBothSides;
  arguments.insert(arguments.begin(), {"cutout", "-", "-"});
  const ToolRun piped = run(arguments, read("in.png"));
  EXPECT_EQ(0, piped.status);
  expectDisc(readImage(piped.out));
}

TEST_F(CutoutTest, RefusesBadStrokes) {
  EXPECT_TRUE(failedWith(cut({}), 2, "give --foreground"));
  EXPECT_TRUE(failedWith(cut({"-f", "5,5"}), 2, "give --background"));
  EXPECT_TRUE(failedWith(cut({"-b", "5,5"}), 2, "give --foreground"));
  EXPECT_TRUE(failedWith(cut({"-f", "5,a", "-b", "1,1"}), 2, "--foreground: '5,a' is no point"));
  EXPECT_TRUE(failedWith(cut({"-f", " ", "-b", "1,1"}), 2, "needs a point"));
  EXPECT_TRUE(failedWith(cut({"-f", "5,5 90,5", "-b", "1,1"}), 1,
                         "in.png: is 90x70, and the stroke '5,5 90,5' leaves it at 90,5"));
  EXPECT_TRUE(failedWith(cut({"-f", "5,5", "-b", "1,-1"}), 1, "leaves it at 1,-1"));
  EXPECT_TRUE(failedWith(cut({"-f", "5,5", "-b", "1,2147483647"}), 1, "leaves it at"));
  EXPECT_EQ("in.png", files());
}

TEST_F(CutoutTest, RefusesBadStrokeFiles) {
  const auto with = [&](const std::string& json) {
    write("s.json", json);
    return cut({"--strokes", "s.json"});
  };
  EXPECT_TRUE(failedWith(cut({"--strokes", "none.json"}), 1, "none.json: cannot be read"));
  EXPECT_TRUE(failedWith(with("{"), 1, "s.json: line 1: a name in quotes is missing"));
  EXPECT_TRUE(failedWith(with("[]"), 1, "s.json: line 1: strokes are an object"));
  EXPECT_TRUE(failedWith(with("{\"foregrund\": []}"), 1, "did you mean foreground?"));
  EXPECT_TRUE(failedWith(with("{\"foreground\": 1}"), 1, "is an array of strokes"));
  EXPECT_TRUE(failedWith(with("{\"foreground\":\n [[]]}"), 1, "line 2: a stroke is an array"));
  EXPECT_TRUE(failedWith(with("{\"foreground\": [[[1, 2, 3]]]}"), 1, "a point is two numbers"));
  EXPECT_TRUE(failedWith(with("{\"foreground\": [[[1, \"2\"]]]}"), 1, "a point is two numbers"));
  EXPECT_TRUE(failedWith(with("{\"foreground\": [[[1, 1e300]]]}"), 1, "off any picture"));
  EXPECT_TRUE(failedWith(with("{\"foreground\": [[[1, 2]]]}"), 2, "give --background"));
  EXPECT_TRUE(failedWith(with("{\"foreground\": [[[1, 2]]],\n\"background\":\n[[[900, 2]]]}"), 1,
                         "the background stroke in line 3 leaves it at 900,2"));
  EXPECT_EQ("in.png s.json", files());
}

TEST_F(CutoutTest, RefusesOutputsThatCannotBe) {
  const auto to = [&](const std::string& out, std::vector<std::string> more) {
    more.insert(more.begin(), kBothSides.begin(), kBothSides.end());
    more.insert(more.begin(), {"cutout", "in.png", out});
    return run(more);
  };
  EXPECT_TRUE(failedWith(to("out.jpg", {}), 2, "out.jpg: is written as a PNG"));
  EXPECT_TRUE(failedWith(to("out.png", {"--mask", "m.jpeg"}), 2, "m.jpeg: is written as a PNG"));
  EXPECT_TRUE(
      failedWith(to("out.png", {"--mask", "out.png"}), 2, "two outputs are to go to out.png"));
  EXPECT_TRUE(
      failedWith(to("-", {"--outline", "-"}), 2, "two outputs are to go to standard output"));
  EXPECT_TRUE(failedWith(run({"cutout", "-", "o.png", "--strokes", "-"}), 2, "standard input"));
  EXPECT_TRUE(failedWith(to("out.png", {"--feather", "-1"}), 2, "--feather"));
  EXPECT_EQ("in.png", files());
}

}  // namespace
}  // namespace qpx::test
