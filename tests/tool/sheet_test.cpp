// What qpx sheet draws: tiles are what qpx apply makes, labels stay in their boxes, and calls that
// make no sense are refused.
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "image_files.h"
#include "run_tool.h"
#include "sheet_layout.h"
#include "sheet_plan.h"

namespace qpx::test {
namespace {

using tool::SheetLayout;

int lumaAt(const Image& image, int x, int y) { return tool::lumaOf(image.at(x, y)); }

bool isGround(const uint8_t* rgb) { return rgb[0] == 244 && rgb[1] == 244 && rgb[2] == 244; }

bool contains(const MRect& box, int x, int y) {
  return x >= box.left && x < box.right && y >= box.top && y < box.bottom;
}

MRect grown(const MRect& box) { return {box.left - 1, box.top - 1, box.right + 1, box.bottom + 1}; }

int darkest(const Image& image, const MRect& box) {
  int least = 255;
  for (int y = box.top; y < box.bottom; ++y) {
    for (int x = box.left; x < box.right; ++x) least = std::min(least, lumaAt(image, x, y));
  }
  return least;
}

Image cut(const Image& image, const MRect& box) {
  return makeImage(box.right - box.left, box.bottom - box.top, 3,
                   [&](int x, int y, int c) { return image.at(box.left + x, box.top + y)[c]; });
}

class SheetTest : public ToolTest {
 protected:
  SheetTest() { EXPECT_TRUE(succeeded(run({"sample", "in.png", "--size", "400x260"}))); }

  // The sheet as a picture; `options` go behind the files.
  Image sheet(std::vector<std::string> options) const {
    options.insert(options.begin(), {"sheet", "in.png", "sheet.png"});
    EXPECT_TRUE(succeeded(run(options)));
    return readImage(read("sheet.png"));
  }

  Image apply(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), "apply");
    EXPECT_TRUE(succeeded(run(arguments)));
    return readImage(read(arguments[3]));
  }

  // Tile `index` is what apply makes of the first tile.
  void expectApplied(const Image& sheet, const SheetLayout& layout, size_t index,
                     const std::string& effect, std::vector<std::string> options = {}) const {
    write("tile.png", pngFile(cut(sheet, layout.picture(0))));
    options.insert(options.begin(), {effect, "tile.png", "applied.png"});
    EXPECT_EQ(cut(sheet, layout.picture(index)).samples, apply(options).samples) << effect;
  }
};

TEST_F(SheetTest, TilesAreWhatApplyMakesOfThePictureAtTileSize) {
  const Image image = sheet({"--effects", "Fx1800,Fx1300:brightness=20,contrast=-40,sepia",
                             "--effects", "0x4800", "--size", "100", "--columns", "2"});
  const SheetLayout layout(100, 65, 5, 2);
  ASSERT_EQ(image.width, layout.width());
  ASSERT_EQ(image.height, layout.height());
  const std::vector<std::string> effects = {"Fx1800", "Fx1300:brightness=20,contrast=-40", "Sepia",
                                            "Fx4800"};
  for (size_t i = 0; i < effects.size(); ++i) expectApplied(image, layout, i + 1, effects[i]);
}

TEST_F(SheetTest, TilesGoThroughAPixelFormat) {
  const Image image =
      sheet({"--effects", "Fx4800,Sepia", "--size", "64", "--columns", "3", "--format", "NV21"});
  const SheetLayout layout(64, 42, 3, 3);
  expectApplied(image, layout, 1, "Fx4800", {"--format", "nv21"});
  expectApplied(image, layout, 2, "Sepia", {"--format", "nv21"});
  EXPECT_NE(
      cut(image, layout.picture(1)).samples,
      cut(sheet({"--effects", "Fx4800,Sepia", "--size", "64", "--columns", "3"}), layout.picture(1))
          .samples);
}

TEST_F(SheetTest, FirstTileIsThePictureReduced) {
  // Quarters of four colours stay so but for the seam.
  write("in.png", pngFile(makeImage(400, 200, 3, [](int x, int y, int c) {
          return (x < 200 ? 40 : 180) + (y < 100 ? 0 : 50) + c * 5;
        })));
  const Image tile =
      cut(sheet({"--effects", "Sepia", "--size", "80"}), SheetLayout(80, 40, 2, 0).picture(0));
  for (int y = 0; y < 40; ++y) {
    for (int x = 0; x < 80; ++x) {
      if (std::abs(2 * x - 79) < 4 || std::abs(2 * y - 39) < 4) continue;
      for (int c = 0; c < 3; ++c) {
        ASSERT_EQ(tile.at(x, y)[c], (x < 40 ? 40 : 180) + (y < 20 ? 0 : 50) + c * 5)
            << x << " " << y;
      }
    }
  }
}

TEST_F(SheetTest, SmallPicturesAreNotEnlarged) {
  const Image small = randomImage(31, 47, 3, 5);
  write("in.png", pngFile(small));
  const Image image = sheet({"--effects", "Fx1800"});
  EXPECT_EQ(cut(image, SheetLayout(31, 47, 2, 0).picture(0)).samples, small.samples);
}

TEST_F(SheetTest, TransparencyIsLaidOnWhite) {
  write("in.png", pngFile(makeImage(64, 64, 4, [](int, int y, int c) {
          return c < 3 ? 100 : (y < 32 ? 0 : 255);
        })));
  const Image image = sheet({"--effects", "Fx1800"});
  EXPECT_EQ(image.channels, 3);
  const Image tile = cut(image, SheetLayout(64, 64, 2, 0).picture(0));
  EXPECT_EQ(tile.at(10, 10)[1], 255);
  EXPECT_EQ(tile.at(10, 50)[1], 100);
}

TEST_F(SheetTest, ShowsEveryEffectThatIsBuiltAndRunsInTheFormat) {
  for (const std::string format : {"", "grey"}) {
    const tool::PixelFormat& pixels = tool::pixelFormatByName(format.empty() ? "bgr24" : format);
    const size_t count = tool::effectsWhere([&](const QPXEffectInfo& effect) {
                           return tool::isBuilt(effect) && tool::takes(effect, pixels);
                         }).size();
    ASSERT_GT(count, 10u);
    std::vector<std::string> options = {"sheet",     "in.png", "all.png",  "--size", "64",
                                        "--columns", "4",      "--second", "in.png"};
    if (!format.empty()) options.insert(options.end(), {"--format", format});
    ASSERT_EQ(run(options).status, 0);
    const Image image = readImage(read("all.png"));
    ASSERT_EQ(image.width, SheetLayout(64, 42, 4, 4).width());
    EXPECT_EQ(image.height, SheetLayout(64, 42, count + 1, 4).height());
  }
}

TEST_F(SheetTest, AFamilyIsShownByAscendingIds) {
  const Image image = sheet({"--family", "POINT", "--size", "64", "--columns", "3"});
  const auto effects = tool::effectsWhere([](const QPXEffectInfo& effect) {
    return tool::isBuilt(effect) && std::string(effect.family) == "point";
  });
  const SheetLayout layout(64, 42, effects.size() + 1, 3);
  ASSERT_EQ(image.height, layout.height());
  for (size_t i = 0; i < effects.size(); ++i) {
    expectApplied(image, layout, i + 1, effects[i]->name);
  }
}

TEST_F(SheetTest, InkIsInItsBoxesAndNowhereElse) {
  // Titles and parameters far too long for a tile.
  const std::string parameters = "Fx1300:brightness=100,contrast=-100";
  const Image image = sheet({"--effects", parameters + ",Levels, second step," + parameters,
                             "--size", "64", "--columns", "2"});
  const SheetLayout layout(64, 42, 4, 2);
  ASSERT_EQ(image.width, layout.width());
  std::vector<MRect> boxes = {layout.heading(), layout.subheading()};
  for (size_t i = 0; i < 4; ++i) {
    EXPECT_LT(darkest(image, layout.title(i)), 90) << i;
    EXPECT_LT(darkest(image, layout.note(i)), 150) << i;
    boxes.insert(boxes.end(), {grown(layout.picture(i)), layout.title(i), layout.note(i)});
  }
  EXPECT_LT(darkest(image, layout.heading()), 60);
  EXPECT_LT(darkest(image, layout.subheading()), 140);
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) {
      const bool inBox = std::any_of(boxes.begin(), boxes.end(),
                                     [&](const MRect& box) { return contains(box, x, y); });
      ASSERT_TRUE(inBox || isGround(image.at(x, y))) << x << " " << y;
    }
  }
}

TEST_F(SheetTest, LabelsDiffer) {
  const Image image = sheet({"--effects", "Sepia,Fx1700,Sepia", "--columns", "4"});
  const SheetLayout layout(320, 208, 4, 4);
  const auto label = [&](size_t tile) { return cut(image, layout.title(tile)).samples; };
  EXPECT_EQ(label(1), label(3));
  EXPECT_NE(label(1), label(2));
  EXPECT_NE(label(0), label(1));
}

TEST_F(SheetTest, ThreadsDoNotChangeTheSheet) {
  const std::vector<std::string> options = {"--family", "curves", "--size", "90", "--threads"};
  const auto bytes = [&](const std::string& threads) {
    std::vector<std::string> all = options;
    all.push_back(threads);
    sheet(all);
    return read("sheet.png");
  };
  const std::string one = bytes("1");
  ASSERT_GT(one.size(), 1000u);
  EXPECT_EQ(bytes("4"), one);
  EXPECT_EQ(bytes("64"), one);
}

TEST_F(SheetTest, SweepShowsOneParameterOverItsRange) {
  const Image image = sheet({"--sweep", "Fx1300:contrast,brightness=9", "--steps", "4", "--size",
                             "64", "--columns", "5"});
  const SheetLayout layout(64, 42, 5, 5);
  ASSERT_EQ(image.width, layout.width());
  size_t tile = 0;
  for (const char* contrast : {"-128", "-43", "42", "127"}) {
    expectApplied(image, layout, ++tile, std::string("Fx1300:brightness=9,contrast=") + contrast);
  }
}

TEST_F(SheetTest, SweepOfASwitchHasTwoTiles) {
  const Image image = sheet({"--sweep", "Fx1D00:twotone", "--size", "64", "--columns", "9"});
  const SheetLayout layout(64, 42, 3, 9);
  ASSERT_EQ(image.width, layout.width());
  expectApplied(image, layout, 1, "Fx1D00:twoTone=off");
  expectApplied(image, layout, 2, "Fx1D00:twoTone=on");
}

TEST_F(SheetTest, KeepsTheProfileAndPipes) {
  Image image = randomImage(40, 30, 3, 7);
  image.icc = rgbProfile(300);
  write("in.png", pngFile(image));
  sheet({"--effects", "Sepia"});
  EXPECT_NE(read("sheet.png").find("iCCP"), std::string::npos);
  const ToolRun piped = run({"sheet", "-", "-", "--effects", "Sepia"}, read("in.png"));
  EXPECT_TRUE(succeeded(piped));
  EXPECT_GT(readImage(piped.out).width, 80);
  EXPECT_TRUE(succeeded(run({"sheet", "in.png", "out.jpg", "--effects", "Sepia"})));
  EXPECT_TRUE(read("out.jpg").starts_with("\xFF\xD8"));
}

TEST_F(SheetTest, RefusesWhatMakesNoSense) {
  const auto refused = [&](std::vector<std::string> options, const std::string& text) {
    options.insert(options.begin(), {"sheet", "in.png", "out.png"});
    return failedWith(run(options), 2, text);
  };
  EXPECT_TRUE(refused({"--columns", "0"}, "--columns: "));
  EXPECT_TRUE(refused({"--columns", "many"}, "--columns: "));
  EXPECT_TRUE(refused({"--size", "63"}, "--size: "));
  EXPECT_TRUE(refused({"--size", "1025"}, "--size: "));
  EXPECT_TRUE(refused({"--threads", "0"}, "--threads: "));
  EXPECT_TRUE(refused({"--effects", "Fx1301"}, "did you mean Fx1300?"));
  EXPECT_TRUE(refused({"--effects", "Sepia,,Fx1300"}, "a name is missing at a comma"));
  EXPECT_TRUE(refused({"--effects", "Sepia,"}, "a name is missing at a comma"));
  EXPECT_TRUE(refused({"--effects", ""}, "--effects: is empty"));
  EXPECT_TRUE(refused({"--effects", "Fx1300:contrast=1,bright=2"}, "unknown parameter 'bright'"));
  EXPECT_TRUE(refused({"--effects", "Sepia", "--family", "point"}, "excludes"));
  EXPECT_TRUE(refused({"--sweep", "Fx2D00:percent", "--family", "point"}, "excludes"));
  EXPECT_TRUE(refused({"--family", "pont"}, "did you mean point?"));
  EXPECT_TRUE(refused({"--format", "nv22"}, "unknown pixel format"));
  EXPECT_TRUE(refused({"--effects", "Fx8400", "--format", "nv21"}, "does not run in nv21"));
  EXPECT_TRUE(refused({"--effects", "Sepia", "--second", "in.png"}, "leave --second out"));
  EXPECT_TRUE(refused({"--steps", "4"}, "--steps requires --sweep"));
  EXPECT_TRUE(refused({"--sweep", "Fx2D00"}, "write NAME:param"));
  EXPECT_TRUE(refused({"--sweep", "Fx2D00:percent=3"}, "write NAME:param"));
  EXPECT_TRUE(refused({"--sweep", "Fx2D00:precent"}, "did you mean percent?"));
  EXPECT_TRUE(refused({"--sweep", "Fx2D00:percent,percent=3"}, "percent is given twice"));
  EXPECT_TRUE(refused({"--sweep", "Fx1200:color"}, "is a colour"));
  EXPECT_TRUE(refused({"--sweep", "Fx2D00:percent", "--steps", "1"}, "--steps: "));
  EXPECT_EQ(files(), "in.png");
}

TEST_F(SheetTest, RefusesFilesThatMakeNoSense) {
  EXPECT_TRUE(failedWith(run({"sheet", "in.png", "out.gif"}), 2, "qpx writes JPEG and PNG"));
  EXPECT_TRUE(failedWith(run({"sheet", "in.png", "./in.png"}), 2, "would replace the input"));
  EXPECT_TRUE(failedWith(run({"sheet", "-", "out.png", "--second", "-"}), 2, "standard input"));
  EXPECT_TRUE(failedWith(run({"sheet", "in.png"}), 2, "OUT is required"));
  EXPECT_TRUE(failedWith(run({"sheet", "none.png", "out.png"}), 1, "none.png: cannot be read"));
  EXPECT_TRUE(failedWith(run({"sheet", "in.png", "no/out.png", "--effects", "Sepia"}), 1,
                         "no/out.png: cannot be written"));
  EXPECT_TRUE(failedWith(run({"sheet", "in.png", "out.jpg", "--size", "1024", "--columns", "1",
                              "--sweep", "Fx2D00:percent", "--steps", "256"}),
                         1, "out.jpg: "));
  EXPECT_EQ(files(), "in.png");
}

TEST_F(SheetTest, SaysThatThereIsNoFont) {
  write("fonts.conf", "<fontconfig/>");
  setenv("FONTCONFIG_FILE", path("fonts.conf").c_str(), 1);
  const ToolRun result = run({"sheet", "in.png", "out.png"});
  unsetenv("FONTCONFIG_FILE");
  EXPECT_TRUE(failedWith(result, 1, "there is no font to write labels with: install one"));
  EXPECT_FALSE(exists("out.png"));
}

}  // namespace
}  // namespace qpx::test
