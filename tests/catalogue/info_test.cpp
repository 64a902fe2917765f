#include <gtest/gtest.h>
#include <qpx/effects.h>

#include <cstring>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include "engine/effect_row.h"

namespace qpx {
namespace {

std::vector<QPXEffectInfo> allInfo() {
  std::vector<QPXEffectInfo> all(static_cast<size_t>(QPX_GetEffectCount()));
  for (size_t i = 0; i < all.size(); ++i) {
    EXPECT_EQ(QPX_GetEffectInfo(static_cast<int32_t>(i), &all[i]), QPX_OK);
  }
  return all;
}

QPXEffectInfo infoOf(uint32_t id) {
  for (const QPXEffectInfo& info : allInfo()) {
    if (info.id == id) return info;
  }
  ADD_FAILURE() << "no effect " << id;
  return {};
}

TEST(QPXGetEffectInfo, DescribesEveryEffectFamilyByFamily) {
  EXPECT_EQ(QPX_GetEffectCount(), 303);
  std::map<std::string, uint32_t> lastOfFamily;
  std::string family;
  for (const QPXEffectInfo& info : allInfo()) {
    if (info.family != family) {
      family = info.family;
      EXPECT_EQ(lastOfFamily.count(family), 0u) << family << " stands in two places";
      lastOfFamily[family] = 0;
    }
    EXPECT_GT(info.id, lastOfFamily[family]);
    lastOfFamily[family] = info.id;
  }
  EXPECT_EQ(lastOfFamily.size(), 16u);
}

TEST(QPXGetEffectInfo, RefusesIndicesOutOfRangeAndANullRecord) {
  QPXEffectInfo info, before;
  std::memset(&info, 0x5A, sizeof info);
  std::memset(&before, 0x5A, sizeof before);
  for (int32_t index :
       {-1, 303, 304, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()}) {
    EXPECT_EQ(QPX_GetEffectInfo(index, &info), QPX_BAD_PARAM) << index;
    EXPECT_EQ(std::memcmp(&info, &before, sizeof info), 0) << index;
  }
  EXPECT_EQ(QPX_GetEffectInfo(0, nullptr), QPX_BAD_PARAM);
}

TEST(QPXGetEffectInfo, GivesWhatTheRowSays) {
  for (const QPXEffectInfo& info : allInfo()) {
    const EffectRow* row = findEffect(info.id);
    ASSERT_NE(row, nullptr);
    EXPECT_STREQ(info.name, row->name);
    EXPECT_STREQ(info.title, row->title);
    EXPECT_STREQ(info.summary, row->summary);
    EXPECT_EQ(info.recordSize, static_cast<int32_t>(row->record.size));
    EXPECT_EQ(info.marginRule, row->margin.rule);
    EXPECT_EQ(info.margin, row->margin.fixed);
    EXPECT_EQ(info.paramCount, static_cast<int32_t>(row->record.params.size()));
    EXPECT_EQ(info.params, row->record.params.data());
    EXPECT_EQ((info.flags & QPX_EFFECT_BUILT) != 0, row->built());
    EXPECT_EQ(info.flags & ~0xFFu, 0u) << "a flag that is not public";
  }
}

TEST(QPXGetEffectInfo, TellsFamilyFlagsAndParametersOfAFlare) {
  const QPXEffectInfo info = infoOf(0xD000);
  EXPECT_STREQ(info.name, "Flare07");
  EXPECT_STREQ(info.family, "light");
  EXPECT_EQ(info.formats, 0x003u);
  EXPECT_EQ(info.recordSize, 56);
  EXPECT_EQ(info.flags & ~uint32_t{QPX_EFFECT_BUILT}, 0x08u);
  ASSERT_EQ(info.paramCount, 3);
  EXPECT_STREQ(info.params[0].name, "intensity");
  EXPECT_EQ(info.params[1].offset, 20);
  EXPECT_EQ(info.params[2].offset, 21);
}

TEST(QPXGetEffectInfo, GenericFormsTakeAllButPackedYuv) {
  EXPECT_EQ(infoOf(0x2000).formats, 0x1FFu);
  EXPECT_EQ(infoOf(0x2000).flags & QPX_EFFECT_GENERIC, uint32_t{QPX_EFFECT_GENERIC});
  EXPECT_EQ(infoOf(0x3500).formats, 0x7FFu) << "duotone is set up for packed YUV as well";
}

TEST(QPXGetEffectInfo, NewerEffectsTakeJustTheirOwnFormats) {
  EXPECT_EQ(infoOf(0x5800).formats, 0x0A5u);
  EXPECT_EQ(infoOf(0xA900).formats, 0x223u);
  EXPECT_EQ(infoOf(0x8600).formats, 0x010u);
}

}  // namespace
}  // namespace qpx
