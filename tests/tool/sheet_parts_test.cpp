// The parts of qpx sheet one by one: layout, labels, lists, sweeps, tiles that fail.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "canvas.h"
#include "effect_run.h"
#include "label_font.h"
#include "pixel_format.h"
#include "progress.h"
#include "sheet_drawing.h"
#include "sheet_layout.h"
#include "sheet_plan.h"

namespace qpx::tool {
namespace {

using Texts = std::vector<std::string>;

Picture plain(int32_t width, int32_t height, Ink ink) {
  Picture picture(width, height, 3);
  fill(picture, {0, 0, width, height}, ink);
  return picture;
}

Ink inkAt(const Picture& picture, int32_t x, int32_t y) {
  const uint8_t* rgb = picture.row(y) + ptrdiff_t{x} * 3;
  return {rgb[0], rgb[1], rgb[2]};
}

bool apart(const MRect& a, const MRect& b) {
  return a.right <= b.left || b.right <= a.left || a.bottom <= b.top || b.bottom <= a.top;
}

TEST(Canvas, FillsAndPastesExactlyTheArea) {
  Picture picture = plain(7, 5, {1, 2, 3});
  fill(picture, {-2, 3, 2, 9}, {200, 100, 50});
  paste(picture, plain(2, 1, {9, 8, 7}), 5, 0);
  for (int32_t y = 0; y < 5; ++y) {
    for (int32_t x = 0; x < 7; ++x) {
      const Ink expected = x < 2 && y >= 3   ? Ink{200, 100, 50}
                           : x >= 5 && y < 1 ? Ink{9, 8, 7}
                                             : Ink{1, 2, 3};
      ASSERT_TRUE(inkAt(picture, x, y) == expected) << x << " " << y;
    }
  }
}

TEST(Canvas, BlendsByCoverage) {
  for (int coverage = 0; coverage < 256; ++coverage) {
    uint8_t rgb[3] = {240, 0, 100};
    blend(rgb, {20, 255, 100}, coverage);
    EXPECT_EQ(rgb[0], std::lround(240 - 220 * coverage / 255.0));
    EXPECT_EQ(rgb[1], coverage);
    EXPECT_EQ(rgb[2], 100);
  }
}

TEST(SheetLayout, BoxesLieInsideAndApart) {
  for (const int columns : {0, 1, 3, 50}) {
    for (const int32_t width : {1, 20, 64, 320, 1024}) {
      const SheetLayout layout(width, 240, 8, columns);
      const MRect sheet = {0, 0, static_cast<int32_t>(layout.width()),
                           static_cast<int32_t>(layout.height())};
      std::vector<MRect> boxes = {layout.heading(), layout.subheading()};
      for (size_t i = 0; i < 8; ++i) {
        boxes.insert(boxes.end(), {layout.picture(i), layout.title(i), layout.note(i)});
        EXPECT_EQ(layout.picture(i).right - layout.picture(i).left, width);
        EXPECT_EQ(layout.picture(i).bottom - layout.picture(i).top, 240);
        EXPECT_EQ(layout.title(i).left, layout.picture(i).left);
        EXPECT_GT(layout.title(i).top, layout.picture(i).bottom);
        EXPECT_GE(layout.title(i).right, layout.picture(i).right);
      }
      for (size_t i = 0; i < boxes.size(); ++i) {
        EXPECT_GT(boxes[i].left, sheet.left);
        EXPECT_GT(boxes[i].top, sheet.top);
        EXPECT_LT(boxes[i].right, sheet.right);
        EXPECT_LT(boxes[i].bottom, sheet.bottom);
        for (size_t j = 0; j < i; ++j) EXPECT_TRUE(apart(boxes[i], boxes[j])) << i << " " << j;
      }
    }
  }
}

TEST(SheetLayout, ColumnsFollowTheShape) {
  EXPECT_EQ(SheetLayout(320, 213, 3, 0).columns(), 3);
  EXPECT_EQ(SheetLayout(320, 213, 12, 0).columns(), 4);
  EXPECT_GT(SheetLayout(180, 320, 12, 0).columns(), 4);
  EXPECT_EQ(SheetLayout(320, 213, 12, 5).columns(), 5);
  EXPECT_EQ(SheetLayout(320, 213, 12, 500).columns(), 12);
  for (size_t tiles = 1; tiles < 400; tiles += 7) {
    const SheetLayout layout(320, 240, tiles, 0);
    const double shape = static_cast<double>(layout.width()) / static_cast<double>(layout.height());
    if (tiles > 8) {
      EXPECT_TRUE(shape > 0.9 && shape < 2.3) << tiles << " " << shape;
    }
  }
}

TEST(LabelFont, WidthsAddUpAndScale) {
  LabelFont font;
  EXPECT_EQ(font.widthOf("", 16), 0);
  EXPECT_GT(font.widthOf("W", 16), font.widthOf("i", 16));
  EXPECT_NEAR(font.widthOf("Brightness", 32), 2 * font.widthOf("Brightness", 16), 3);
  EXPECT_NEAR(font.widthOf("HHHHHHHHHH", 16), 10 * font.widthOf("HHHHH", 16) / 5.0, 3);
}

TEST(LabelFont, CutsWhatDoesNotFit) {
  LabelFont font;
  const std::string text = "Gr\u00FCn, \xFF brightness by hue";
  const int32_t whole = font.widthOf(text, 14);
  EXPECT_EQ(font.fitted(text, 14, whole), text);
  size_t last = 0;
  for (int32_t width = 0; width < whole; ++width) {
    const std::string cut = font.fitted(text, 14, width);
    ASSERT_LE(font.widthOf(cut, 14), width) << cut;
    ASSERT_GE(cut.size(), last);
    if (!cut.empty()) {
      EXPECT_TRUE(cut.ends_with("\u2026") || cut.ends_with("...")) << cut;
    }
    last = cut.size();
  }
  EXPECT_GT(last, text.size() / 2);
}

TEST(LabelFont, DrawsInsideItsBoxOnly) {
  LabelFont font;
  const Ink ground = {244, 244, 244};
  const MRect box = {30, 20, 110, 40};
  for (const std::string text :
       {"jgjg WWW", "a title that is far too long for it", "\xF0\x9F\x98\x80"}) {
    for (const int32_t pixels : {9, 16, 40}) {
      Picture picture = plain(150, 60, ground);
      font.draw(picture, box, text, pixels, {20, 20, 20});
      int inked = 0;
      for (int32_t y = 0; y < 60; ++y) {
        for (int32_t x = 0; x < 150; ++x) {
          const bool inside = x >= 30 && x < 110 && y >= 20 && y < 40;
          if (inkAt(picture, x, y) == ground) continue;
          ASSERT_TRUE(inside) << x << " " << y << " " << text;
          ++inked;
        }
      }
      EXPECT_GT(inked, 20) << text << " " << pixels;
    }
  }
  // Boxes that reach beyond the picture.
  Picture picture = plain(20, 10, ground);
  font.draw(picture, {5, 4, 300, 90}, "WWWWWWWW", 30, {0, 0, 0});
}

TEST(LabelFont, EdgesAreSoft) {
  LabelFont font;
  Picture picture = plain(100, 30, {255, 255, 255});
  font.draw(picture, {2, 2, 98, 28}, "Sepia", 18, {0, 0, 0});
  int between = 0, dark = 0;
  for (int32_t y = 0; y < 30; ++y) {
    for (int32_t x = 0; x < 100; ++x) {
      const uint8_t value = inkAt(picture, x, y).r;
      between += value > 20 && value < 235;
      dark += value < 60;
    }
  }
  EXPECT_GT(between, 30);
  EXPECT_GT(dark, 20);
}

TEST(SplitEffects, CommasGoBetweenEffectsAndParameters) {
  EXPECT_EQ(splitEffects("Sepia"), Texts{"Sepia"});
  EXPECT_EQ(splitEffects("Fx1300:brightness=1,contrast=2,Sepia,0x1800"),
            (Texts{"Fx1300:brightness=1,contrast=2", "Sepia", "0x1800"}));
  EXPECT_EQ(splitEffects("Fx1300:contrast=2,Fx1300:contrast=3"),
            (Texts{"Fx1300:contrast=2", "Fx1300:contrast=3"}));
  EXPECT_EQ(splitEffects("Grey,Levels, second step,Sepia"),
            (Texts{"Grey", "Levels, second step", "Sepia"}));
  EXPECT_EQ(splitEffects("Sepia,"), (Texts{"Sepia", ""}));
  EXPECT_EQ(splitEffects("Curve:master=0:0,9:9,255:255,red=0:1,255:4,Sepia,Fx1300:contrast=2"),
            (Texts{"Curve:master=0:0,9:9,255:255,red=0:1,255:4", "Sepia", "Fx1300:contrast=2"}));
}

TEST(SweepValues, AreEvenAndReadable) {
  using Values = std::vector<double>;
  QPXParamInfo param{};
  param.type = QPX_PARAM_INT32;
  param.minimum = -100;
  param.maximum = 100;
  EXPECT_EQ(sweepValues(param, 5), (Values{-100, -50, 0, 50, 100}));
  EXPECT_EQ(sweepValues(param, 4), (Values{-100, -33, 33, 100}));
  param.minimum = 0;
  param.maximum = 3;
  EXPECT_EQ(sweepValues(param, 11), (Values{0, 1, 2, 3}));
  param.type = QPX_PARAM_FLAG;
  param.maximum = 1;
  EXPECT_EQ(sweepValues(param, 11), (Values{0, 1}));
  param.type = QPX_PARAM_FLOAT;
  EXPECT_EQ(sweepValues(param, 4), (Values{0, 0.333, 0.667, 1}));
  param.maximum = 0;
  EXPECT_EQ(sweepValues(param, 4), Values{0});
}

TEST(SweepValues, StayInTheRangeOfEveryParameter) {
  for (const QPXEffectInfo& effect : catalogue()) {
    for (const QPXParamInfo& param : paramsOf(effect)) {
      const std::vector<double> values = sweepValues(param, 11);
      ASSERT_FALSE(values.empty());
      EXPECT_EQ(values.front(), param.minimum) << effect.name << " " << param.name;
      EXPECT_EQ(values.back(), param.maximum) << effect.name << " " << param.name;
      for (const double value : values) {
        EXPECT_TRUE(value >= param.minimum && value <= param.maximum) << param.name;
      }
    }
  }
}

// An id that no engine knows stands in for an effect that a picture makes fail.
TEST(DrawSheet, MarksATileThatFailsAndDrawsTheOthers) {
  QPXEffectInfo unknown = *findEffect("Fx1800");
  unknown.id = 0x7FFF00;
  SheetPlan plan{};
  plan.heading = "in.png";
  plan.tiles = {{parseEffect("Fx1800"), "Negative", "Fx1800"},
                {{&unknown, {}}, "Unknown", "Fx7FFF00"},
                {parseEffect("Fx1800"), "Negative", "Fx1800"}};
  const Picture source = plain(150, 100, {10, 20, 30});
  const SheetLayout layout(150, 100, 4, 4);
  LabelFont font;
  Progress progress("", 1);
  const Sheet sheet = drawSheet(plan, source, "3 effects", layout, font, {.threads = 2}, progress);
  ASSERT_EQ(sheet.problems, (Texts{"", "code 3", ""}));
  EXPECT_EQ(failureText(plan, sheet.problems),
            "1 of 3 tiles failed and is marked: Fx1800 (code 3)");
  EXPECT_EQ(failureText(plan, {"", "", ""}), "");

  const auto middleOf = [&](size_t tile) {
    const MRect place = layout.picture(tile);
    return inkAt(sheet.picture, place.left + 3, (place.top + place.bottom) / 2);
  };
  EXPECT_TRUE((middleOf(0) == Ink{10, 20, 30}));
  EXPECT_TRUE((middleOf(1) == Ink{245, 235, 225}));
  EXPECT_TRUE((middleOf(3) == Ink{245, 235, 225}));
  EXPECT_TRUE((middleOf(2) == Ink{232, 232, 232}));
  const MRect failed = layout.picture(2);
  int red = 0;
  for (int32_t y = failed.top; y < failed.bottom; ++y) {
    for (int32_t x = failed.left; x < failed.right; ++x) {
      const Ink ink = inkAt(sheet.picture, x, y);
      red += ink.r > ink.g + 80;
    }
  }
  EXPECT_GT(red, 40);
}

}  // namespace
}  // namespace qpx::tool
