#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "catalogue/catalogue_table.h"
#include "catalogue/id_lists.h"
#include "engine/stage.h"

namespace qpx {
namespace {

std::vector<const EffectRow*> allRows() {
  std::vector<const EffectRow*> rows;
  for (const EffectFamily* family : effectFamilies()) {
    for (const EffectRow& row : family->effects) rows.push_back(&row);
  }
  return rows;
}

bool hasWord(const std::string& words, const std::string& word) {
  std::istringstream stream(words);
  std::string next;
  while (stream >> next) {
    if (next == word) return true;
  }
  return false;
}

uint32_t groupsOf(const std::string& letters) {
  if (letters == "family 1") {
    return QPX_TAKES_RGB24 | QPX_TAKES_RGB32 | QPX_TAKES_RGB565 | QPX_TAKES_RGB_ANY;
  }
  const std::map<std::string, uint32_t> groups = {{"-", 0},
                                                  {"R", QPX_TAKES_RGB24 | QPX_TAKES_RGB32},
                                                  {"r", QPX_TAKES_RGB24},
                                                  {"24", QPX_TAKES_RGB24},
                                                  {"32", QPX_TAKES_RGB32},
                                                  {"5", QPX_TAKES_RGB565},
                                                  {"N", QPX_TAKES_NV21},
                                                  {"I", QPX_TAKES_I420},
                                                  {"Y", QPX_TAKES_YUYV},
                                                  {"G", QPX_TAKES_GREY}};
  std::istringstream stream(letters);
  std::string letter;
  uint32_t result = 0;
  while (stream >> letter) result |= groups.at(letter);
  return result;
}

std::string hex(uint32_t id) {
  std::ostringstream text;
  text << "0x" << std::hex << std::uppercase << id;
  return text.str();
}

TEST(Catalogue, HoldsEveryEffectOfTheList) {
  EXPECT_EQ(std::size(kTable), 303u);
  for (const TableRow& expected : kTable) {
    SCOPED_TRACE(hex(expected.id));
    const EffectRow* row = findEffect(expected.id);
    ASSERT_NE(row, nullptr);
    EXPECT_EQ(row->id, expected.id);
    EXPECT_STREQ(row->name, expected.name);
    EXPECT_EQ(row->record.size, expected.record);
    EXPECT_EQ(row->has(QPX_EFFECT_GIVES_TABLE), hasWord(expected.marks, "M1"));
    EXPECT_EQ(row->has(QPX_EFFECT_TAKES_TABLE), hasWord(expected.marks, "M2"));
    EXPECT_EQ(row->has(QPX_EFFECT_GENERIC), hasWord(expected.marks, "S"));
  }
}

TEST(Catalogue, HoldsNoEffectBesideTheList) {
  std::set<uint32_t> listed;
  for (const TableRow& expected : kTable) listed.insert(expected.id);
  std::set<uint32_t> seen;
  for (const EffectRow* row : allRows()) {
    EXPECT_TRUE(listed.count(row->id)) << hex(row->id);
    EXPECT_TRUE(seen.insert(row->id).second) << hex(row->id) << " stands in two families";
    EXPECT_EQ(row->id % 256, 0u);
  }
}

TEST(Catalogue, TakesTheFormatsOfTheList) {
  for (const TableRow& expected : kTable) {
    const EffectRow* row = findEffect(expected.id);
    ASSERT_NE(row, nullptr) << hex(expected.id);
    const uint32_t groups = groupsOf(expected.formats);
    if (!row->built()) {
      EXPECT_EQ(row->formats, groups) << hex(row->id);
      continue;
    }
    uint32_t taken = row->generic != nullptr ? ~0u : 0u;
    for (const LayoutKernel& kernel : row->kernels) taken |= kernel.formats;
    EXPECT_EQ(taken & groups, groups) << hex(row->id);
  }
}

TEST(Catalogue, FamiliesHaveNamesAndAscendingIds) {
  std::set<std::string> names;
  for (const EffectFamily* family : effectFamilies()) {
    EXPECT_TRUE(names.insert(family->name).second) << family->name;
    EXPECT_FALSE(family->effects.empty()) << family->name;
    EXPECT_TRUE(idsAscend(family->effects)) << family->name;
  }
}

TEST(Catalogue, FindsNothingUnderOtherIds) {
  std::set<uint32_t> listed;
  for (const TableRow& expected : kTable) listed.insert(expected.id);
  for (uint32_t id = 0; id <= 0x16000; ++id) {
    EXPECT_EQ(findEffect(id) != nullptr, listed.count(id) == 1) << hex(id);
  }
  EXPECT_EQ(findEffect(0xFFFFFFFF), nullptr);
}

TEST(Catalogue, EffectsSayHowMuchNeighbourhoodTheyRead) {
  const std::map<uint32_t, QPXMarginRule> rules = {
      {0x1B00, QPX_MARGIN_RECORD},  {0x4200, QPX_MARGIN_RECORD},      {0x5200, QPX_MARGIN_RECORD},
      {0x5400, QPX_MARGIN_RECORD},  {0x5C00, QPX_MARGIN_RECORD},      {0x6500, QPX_MARGIN_RECORD},
      {0x7400, QPX_MARGIN_RECORD},  {0x7B00, QPX_MARGIN_RECORD},      {0xAD00, QPX_MARGIN_RECORD},
      {0xAE00, QPX_MARGIN_RECORD},  {0x8000, QPX_MARGIN_RECORD},      {0x5700, QPX_MARGIN_FORMAT},
      {0x5A00, QPX_MARGIN_PICTURE}, {0x5900, QPX_MARGIN_WHOLE_IMAGE}, {0x4400, QPX_MARGIN_ROTATION},
      {0xA200, QPX_MARGIN_ROTATION}};
  const std::map<uint32_t, int32_t> fixed = {{0x1E00, 1}, {0x3F00, 1}, {0x5300, 1}, {0x9B00, 4}};
  for (const EffectRow* row : allRows()) {
    const auto rule = rules.find(row->id);
    EXPECT_EQ(row->margin.rule, rule == rules.end() ? QPX_MARGIN_FIXED : rule->second)
        << hex(row->id);
    const auto rows = fixed.find(row->id);
    EXPECT_EQ(row->margin.fixed, rows == fixed.end() ? 0 : rows->second) << hex(row->id);
  }
}

TEST(Catalogue, OnlyTwoEffectsWarpAndFewKnowPackedYuv) {
  for (const EffectRow* row : allRows()) {
    EXPECT_EQ(row->has(kWarps), row->id == 0x4400 || row->id == 0xA200) << hex(row->id);
    EXPECT_EQ(row->has(kSetsUpYuyv),
              std::ranges::find(kServedInYuyv, row->id) != std::end(kServedInYuyv))
        << hex(row->id);
  }
}

TEST(Catalogue, TextsArePresentAndTitlesUnique) {
  std::set<std::string> names, titles;
  for (const EffectRow* row : allRows()) {
    SCOPED_TRACE(hex(row->id));
    EXPECT_TRUE(names.insert(row->name).second) << row->name;
    std::string title = row->title;
    ASSERT_FALSE(title.empty());
    for (char& c : title) c = static_cast<char>(std::tolower(c));
    EXPECT_TRUE(titles.insert(title).second) << row->title;
    const std::string summary = row->summary;
    ASSERT_FALSE(summary.empty());
    EXPECT_TRUE(std::isupper(summary.front())) << summary;
    EXPECT_EQ(summary.back(), '.') << summary;
  }
}

size_t sizeOfType(int32_t type) {
  switch (type) {
    case QPX_PARAM_UINT8:
      return 1;
    case QPX_PARAM_DOUBLE:
      return 8;
    case QPX_PARAM_INT32:
    case QPX_PARAM_FLOAT:
    case QPX_PARAM_FLAG:
    case QPX_PARAM_COLOR:
      return 4;
    default:
      return 0;
  }
}

TEST(Catalogue, ParametersLieInsideTheirRecords) {
  size_t count = 0;
  for (const EffectRow* row : allRows()) {
    std::set<std::string> names;
    int64_t end = 0;
    for (const QPXParamInfo& param : row->record.params) {
      SCOPED_TRACE(hex(row->id) + " " + param.name);
      ++count;
      EXPECT_TRUE(names.insert(param.name).second);
      EXPECT_STRNE(param.summary, "");
      ASSERT_NE(param.unit, nullptr);
      const int64_t size = static_cast<int64_t>(sizeOfType(param.type));
      ASSERT_GT(size, 0);
      EXPECT_EQ(param.offset % std::min<int64_t>(size, 4), 0);
      EXPECT_GE(param.offset, end) << "overlaps the parameter before it, or stands out of order";
      end = param.offset + size;
      EXPECT_LE(end, row->record.size);
      EXPECT_LT(param.minimum, param.maximum);
      EXPECT_LE(param.minimum, param.initial);
      EXPECT_LE(param.initial, param.maximum);
    }
  }
  EXPECT_GT(count, 100u);
}

TEST(Catalogue, FilterRecordIsSharedByTheEffectsOfFiftySixBytes) {
  for (const EffectRow* row : allRows()) {
    EXPECT_EQ(row->record.sharedFilterRecord, row->record.size == 56) << hex(row->id);
    if (!row->record.sharedFilterRecord) continue;
    const auto& params = row->record.params;
    const auto intensity = std::ranges::find_if(
        params, [](const QPXParamInfo& param) { return std::string(param.name) == "intensity"; });
    ASSERT_NE(intensity, params.end()) << hex(row->id);
    EXPECT_EQ(intensity->offset, 12) << hex(row->id);
  }
}

TEST(Catalogue, RecordsHavePlacesOfTheirOwnInTheBlock) {
  constexpr size_t kNoPlace = SIZE_MAX;
  size_t shared = kNoPlace;
  std::vector<bool> taken(QPX_PARAM_BLOCK_SIZE);
  for (const EffectRow* row : allRows()) {
    if (row->record.size == 0) {
      EXPECT_EQ(recordPlace(*row), 0u) << hex(row->id);
      continue;
    }
    const size_t place = recordPlace(*row);
    EXPECT_EQ(place % 8, 0u) << hex(row->id);
    ASSERT_LE(place + row->record.size, taken.size()) << hex(row->id);
    if (row->record.sharedFilterRecord && shared != kNoPlace) {
      EXPECT_EQ(place, shared) << hex(row->id);
      continue;
    }
    if (row->record.sharedFilterRecord) shared = place;
    for (size_t i = place; i < place + row->record.size; ++i) {
      EXPECT_FALSE(taken[i]) << hex(row->id) << " byte " << i;
      taken[i] = true;
    }
  }
  EXPECT_NE(shared, kNoPlace);
}

// What a new stream does to the working block of the mosaic: `written` bytes set, the rest kept.
void expectMosaicReset(int32_t margin, int32_t width, uint32_t lutSize, size_t written) {
  Stage stage = {};
  QPXBand band = {};
  band.marginTop = margin;
  uint8_t block[64] = {};
  stage.outWidth = width;
  stage.lut = block;
  stage.lutSize = lutSize;
  findEffect(0x4200)->resetStream(stage, band);
  for (size_t i = 0; i < std::size(block); ++i) {
    EXPECT_EQ(block[i], i < written ? 255 : 0) << "byte " << i << ", margin " << margin;
  }
}

TEST(Catalogue, MosaicForgetsItsBlocksWhenAStreamBegins) {
  expectMosaicReset(8, 64, 64, 36);  // (8 + 64) / 8 = 9 words
  expectMosaicReset(8, 71, 64, 36);  // 79 / 8, truncated
  expectMosaicReset(8, 72, 64, 40);
}

TEST(Catalogue, MosaicStaysInsideItsBlock) {
  expectMosaicReset(0, 64, 64, 0);
  expectMosaicReset(1, 1000, 64, 64);
  expectMosaicReset(8, 64, 20, 20);
  expectMosaicReset(1, INT32_MAX, 64, 64);
}

TEST(Catalogue, MosaicWithoutABlockHasNothingToForget) {
  Stage stage = {};
  QPXBand band = {};
  band.marginTop = 8;
  stage.outWidth = 64;
  stage.lutSize = 64;
  findEffect(0x4200)->resetStream(stage, band);
  EXPECT_EQ(stage.lut, nullptr);
}

}  // namespace
}  // namespace qpx
