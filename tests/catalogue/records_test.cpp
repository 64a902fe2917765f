// Parameter records: the layouts that hosts compile against, and their descriptions.
#include <gtest/gtest.h>

#include <cstddef>
#include <map>
#include <set>
#include <string>

#include "catalogue/catalogue_table.h"
#include "engine/stage.h"

namespace qpx {
namespace {

// Fields of a record of 32-bit words, in their order.
void expectWords(uint32_t id, std::initializer_list<const char*> names, int32_t from = 0) {
  const auto& params = findEffect(id)->record.params;
  ASSERT_EQ(params.size(), names.size()) << std::hex << id;
  int32_t offset = from;
  size_t i = 0;
  for (const char* name : names) {
    EXPECT_STREQ(params[i].name, name) << std::hex << id;
    EXPECT_EQ(params[i].offset, offset) << std::hex << id << " " << name;
    offset += 4;
    ++i;
  }
}

TEST(Records, HoldTheirFieldsInOrder) {
  expectWords(0x1400, {"hue", "strength"});
  expectWords(0x1B00, {"kernelSize"});
  expectWords(0x4B00, {"mode", "temperature", "tint"});
  expectWords(0x5700, {"exposureHint0", "exposureHint1", "exposureHint2", "strength0", "strength1",
                       "strength2", "level"});
  expectWords(0x5900, {"angle", "size", "mode", "centerX", "centerY"});
  expectWords(0x5A00, {"strength"});
  expectWords(0x5B00, {"frameMode", "vignetteMode", "corners", "reach", "centerX", "centerY"});
  expectWords(0x5C00, {"angle", "shape", "blurMode", "focusSize", "transition", "kernelSize",
                       "centerX", "centerY"});
  for (const uint32_t id : {0x5E00u, 0x5F00u, 0x6000u, 0x6400u}) {
    expectWords(id, {"mode", "corners", "reach", "centerX", "centerY"});
  }
  for (const uint32_t id : {0x6100u, 0x6200u, 0x6300u}) {
    expectWords(id, {"corners", "reach", "centerX", "centerY"}, 4);
  }
  expectWords(0x6700, {"hue"});
  expectWords(0x6A00, {"brightness"});
  expectWords(0x6E00, {"greenGain", "blueGain", "exposure", "contrast", "warmth"});
  for (const uint32_t id : {0xA800u, 0xAC00u}) expectWords(id, {"strength"});
  for (const uint32_t id : {0xA900u, 0xAA00u, 0xAB00u}) {
    expectWords(id, {"curveStrength", "maskStrength"});
  }
  expectWords(0x6500, {"centerX", "centerY", "radius"});
  expectWords(0x6D00, {"levels"});
  expectWords(0x7100, {"brightness", "contrast"});
  expectWords(0x7300, {"saturation"});
  expectWords(0x7400, {"amount", "windowSize"});
  expectWords(0x7700, {"colorIndex", "hue", "saturation", "lightness"});
  expectWords(0x7800,
              {"highlightHue", "highlightSaturation", "balance", "shadowHue", "shadowSaturation"});
  expectWords(0x7900, {"vibrance"});
  expectWords(0x7B00, {"kernelSize"});
  expectWords(0x7D00, {"strength"});
  expectWords(0x8000, {"radius", "strength"});
  expectWords(0x8500,
              {"mode", "redRed", "redGreen", "redBlue", "redConstant", "greenRed", "greenGreen",
               "greenBlue", "greenConstant", "blueRed", "blueGreen", "blueBlue", "blueConstant"});
  expectWords(0x8700,
              {"shadowsCyanRed", "shadowsMagentaGreen", "shadowsYellowBlue", "midtonesCyanRed",
               "midtonesMagentaGreen", "midtonesYellowBlue", "highlightsCyanRed",
               "highlightsMagentaGreen", "highlightsYellowBlue", "keepLuminosity"});
  for (const uint32_t id : {0x9D00u, 0x9E00u, 0x9F00u, 0xA000u, 0xA100u}) {
    expectWords(id, {"intensity"});
    EXPECT_EQ(findEffect(id)->record.params[0].maximum, 150);
  }
  expectWords(0xA600, {"strokeSize"});
  expectWords(0xAD00, {"radiusSize"});
  expectWords(0xAE00, {"amount", "threshold", "radius"});
  expectWords(0xAF00, {"style", "angle"});
  expectWords(0xB000, {"amount"});
  expectWords(0x11500, {"kelvin"});
}

TEST(Records, OfDoublesHaveEightBytesEach) {
  const auto& exposure = findEffect(0x7200)->record.params;
  ASSERT_EQ(exposure.size(), 1u);
  EXPECT_EQ(exposure[0].type, QPX_PARAM_DOUBLE);
  const auto& ranges = findEffect(0x7500)->record.params;
  ASSERT_EQ(ranges.size(), 4u);
  const char* names[] = {"highlights", "brights", "darks", "shadows"};
  for (size_t i = 0; i < 4; ++i) {
    EXPECT_STREQ(ranges[i].name, names[i]);
    EXPECT_EQ(ranges[i].type, QPX_PARAM_DOUBLE);
    EXPECT_EQ(ranges[i].offset, static_cast<int32_t>(8 * i));
  }
}

// Word 9 * ink + class.
TEST(Records, SelectiveColorHasNineClassesOfFourInks) {
  const char* inks[] = {"cyan", "magenta", "yellow", "black"};
  const char* classes[] = {"Reds",     "Yellows", "Greens",   "Cyans", "Blues",
                           "Magentas", "Whites",  "Neutrals", "Blacks"};
  const auto& params = findEffect(0x7C00)->record.params;
  ASSERT_EQ(params.size(), 36u);
  for (size_t ink = 0; ink < 4; ++ink) {
    for (size_t k = 0; k < 9; ++k) {
      const QPXParamInfo& param = params[9 * ink + k];
      EXPECT_EQ(std::string(inks[ink]) + classes[k], param.name);
      EXPECT_EQ(param.offset, static_cast<int32_t>(4 * (9 * ink + k)));
      EXPECT_EQ(param.minimum, -100);
      EXPECT_EQ(param.maximum, 100);
    }
  }
}

TEST(Records, FixHasItsWordsInPlace) {
  const std::map<std::string, int32_t> words = {
      {"balanceBlue", 0},     {"balanceGreen", 1},   {"balanceRed", 2},      {"saturation", 3},
      {"brightness", 4},      {"levelHigh", 5},      {"levelLow", 6},        {"sharpness", 8},
      {"redSlope", 9},        {"redStart", 10},      {"greenSlope", 11},     {"greenStart", 12},
      {"blueSlope", 13},      {"blueStart", 14},     {"clipHigh", 15},       {"shadowLimit", 16},
      {"highlightLimit", 17}, {"clipLow", 18},       {"shadow", 19},         {"highlight", 20},
      {"wideWindow", 21},     {"balanceAuto", 22},   {"saturationAuto", 23}, {"brightnessAuto", 24},
      {"contrastAuto", 25},   {"sharpnessAuto", 26}, {"autoLevel", 27}};
  const auto& params = findEffect(0x5400)->record.params;
  EXPECT_EQ(params.size(), words.size());
  for (const QPXParamInfo& param : params) {
    ASSERT_EQ(words.count(param.name), 1u) << param.name;
    EXPECT_EQ(param.offset, 4 * words.at(param.name)) << param.name;
  }
}

// Offsets in the record of 56 bytes, whose pointer takes what it needs of twelve.
TEST(Records, FilterRecordHasItsFieldsInPlaceOnEveryTarget) {
  static_assert(offsetof(QPXFilterRecord, pointX) == 0);
  static_assert(offsetof(QPXFilterRecord, pointY) == 4);
  static_assert(offsetof(QPXFilterRecord, amountA) == 8);
  static_assert(offsetof(QPXFilterRecord, intensity) == 12);
  static_assert(offsetof(QPXFilterRecord, amountB) == 16);
  static_assert(offsetof(QPXFilterRecord, flipX) == 20);
  static_assert(offsetof(QPXFilterRecord, flipY) == 21);
  static_assert(offsetof(QPXFilterRecord, style) == 22);
  static_assert(offsetof(QPXFilterRecord, overlayImage) == 24);
  static_assert(offsetof(QPXFilterRecord, reservedWords) == 24 + sizeof(void*));
  static_assert(offsetof(QPXFilterRecord, overlayRect) == 36);
  static_assert(offsetof(QPXFilterRecord, color) == 52);
  static_assert(offsetof(QPXFilterRecord, reservedLast) == 55);
  static_assert(sizeof(QPXFilterRecord) == 56);
  const std::map<std::string, int32_t> fields = {
      {"pointX", 0},       {"pointY", 4},      {"amountA", 8},       {"intensity", 12},
      {"amountB", 16},     {"flipX", 20},      {"flipY", 21},        {"style", 22},
      {"overlayLeft", 36}, {"overlayTop", 40}, {"overlayRight", 44}, {"overlayBottom", 48},
      {"red", 52},         {"green", 53},      {"blue", 54}};
  for (const TableRow& expected : kTable) {
    const EffectRow* row = findEffect(expected.id);
    if (row == nullptr || !row->record.sharedFilterRecord) continue;
    for (const QPXParamInfo& param : row->record.params) {
      ASSERT_EQ(fields.count(param.name), 1u) << param.name;
      EXPECT_EQ(param.offset, fields.at(param.name)) << param.name;
    }
  }
}

TEST(Records, FilterFieldsBelongToTheLooksThatReadThem) {
  const std::map<std::string, std::set<uint32_t>> readers = {
      {"pointX", {0xF000, 0xF100, 0x13D00}},
      {"pointY", {0xF000, 0xF100, 0x13D00}},
      {"amountA", {0x10400, 0x13D00}},
      {"amountB", {0x10400}},
      {"flipX", {0xD400, 0xD000, 0xD100, 0xF700, 0xF900, 0xE800, 0xE700, 0x13300, 0x12E00}},
      {"flipY", {0xD400, 0xD000, 0xD100, 0xF700, 0xF900, 0xE800, 0xE700, 0x13300, 0x12E00}},
      {"style", {0x11B00, 0x11900, 0x12200, 0x11C00}},
      {"overlayLeft", {0x12900, 0x12A00, 0x12B00, 0x15300, 0x15400, 0x15500}},
      {"overlayBottom", {0x12900, 0x12A00, 0x12B00, 0x15300, 0x15400, 0x15500}},
      {"red", {0x11C00, 0x12200}}};
  for (const auto& [name, expected] : readers) {
    std::set<uint32_t> actual;
    for (const TableRow& known : kTable) {
      const EffectRow* row = findEffect(known.id);
      if (!row->record.sharedFilterRecord) continue;
      for (const QPXParamInfo& param : row->record.params) {
        if (name == param.name) actual.insert(known.id);
      }
    }
    EXPECT_EQ(actual, expected) << name;
  }
}

}  // namespace
}  // namespace qpx
