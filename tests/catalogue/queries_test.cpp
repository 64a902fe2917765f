#include <gtest/gtest.h>
#include <qpx/engine.h>

#include <iterator>
#include <set>
#include <vector>

#include "catalogue/id_lists.h"

namespace qpx {
namespace {

using Ids = std::set<uint32_t>;

template <size_t N>
Ids idsOf(const uint32_t (&list)[N]) {
  return Ids(list, list + N);
}

// Every id that an effect may have, and ids that none has.
template <typename Query>
Ids yesOf(Query query) {
  Ids yes;
  const auto ask = [&](uint32_t id) {
    const int32_t answer = query(id);
    EXPECT_TRUE(answer == 0 || answer == 1) << id;
    if (answer != 0) yes.insert(id);
  };
  for (uint32_t id = 0; id <= 0x16000; id += 0x100) {
    for (const uint32_t between : {0u, 1u, 0x80u, 0xFFu}) ask(id + between);
  }
  ask(0x80001300);
  ask(0xFFFFFFFF);
  return yes;
}

Ids supported(uint32_t format) {
  return yesOf([format](uint32_t id) { return QPXIsSupport(format, id); });
}

TEST(QPXIsSupport, ListsOfTheThreeColourModels) {
  EXPECT_EQ(supported(QPX_FORMAT_BGR24), idsOf(kSupportedRgb));
  EXPECT_EQ(supported(QPX_FORMAT_RGB565), idsOf(kSupportedRgb));
  EXPECT_EQ(supported(QPX_FORMAT_I420), idsOf(kSupportedYuv));
  EXPECT_EQ(supported(QPX_FORMAT_GREY8), idsOf(kSupportedGrey));
}

TEST(QPXIsSupport, OtherModelsSupportNothing) {
  for (uint32_t model : {0u, 2u, 3u, 4u, 7u, 8u, 9u, 10u, 11u, 12u, 13u, 14u, 15u}) {
    EXPECT_EQ(supported(model << 28 | 0x07000777), Ids()) << "model " << model;
  }
}

TEST(QPXIfSupportMultiThread, WholeList) {
  EXPECT_EQ(yesOf(QPX_IfSupportMultiThread), idsOf(kRowThreaded));
}

TEST(QPXIsSameInOutArea, WholeList) { EXPECT_EQ(yesOf(QPXIsSameInOutArea), idsOf(kSameArea)); }

TEST(QPXIsSameInOutArea, AnswersForTheVacantIdAndNotForNewerOnes) {
  EXPECT_EQ(QPXIsSameInOutArea(0x1500), 1);
  EXPECT_EQ(QPXIsSameInOutArea(0x4E00), 0);
}

TEST(QPXIsSupEffMerge, PassesJustWhereBothTestsPass) {
  const Ids gives = idsOf(kGivesTable), takes = idsOf(kTakesTable);
  for (uint32_t first = 0; first <= 0x16000; first += 0x80) {
    const bool isGiver = gives.count(first) == 1;
    for (uint32_t second = 0; second <= 0x6000; second += 0x80) {
      ASSERT_EQ(QPXIsSupEffMerge(first, second), isGiver && takes.count(second) ? 1 : 0)
          << std::hex << first << ' ' << second;
    }
  }
}

int32_t mergeable(uint32_t format, const std::vector<uint32_t>& ids) {
  std::vector<QPXEffectItem> items;
  for (uint32_t id : ids) items.push_back({id, nullptr, 0});
  const QPXEffectList list = {items.data(), static_cast<uint32_t>(items.size()), 0};
  return QPXMergeable(format, &list);
}

TEST(QPXMergeable, EveryEffectOfTheListMustGiveItsTable) {
  EXPECT_EQ(mergeable(QPX_FORMAT_BGR24, {0x1300, 0x1800}), 1);
  EXPECT_EQ(mergeable(QPX_FORMAT_BGR24, {0x1300, 0x1800, 0x2100, 0x4900}), 1);
  EXPECT_EQ(mergeable(QPX_FORMAT_BGR24, {0x1700, 0x1800}), 0);
  EXPECT_EQ(mergeable(QPX_FORMAT_BGR24, {0x1300, 0x1700}), 0);
  EXPECT_EQ(mergeable(QPX_FORMAT_BGR24, {0x1300, 0x1700, 0x1800}), 0);
  EXPECT_EQ(mergeable(QPX_FORMAT_BGR24, {0x1300, 0x1500}), 0);
}

TEST(QPXMergeable, LevelsCountAlthoughTheyTakeNoTable) {
  EXPECT_EQ(mergeable(QPX_FORMAT_BGR24, {0x1300, 0x1600}), 1);
  EXPECT_EQ(QPXIsSupEffMerge(0x1300, 0x1600), 0);
}

TEST(QPXMergeable, AsksOnlyTheModelBitsOfTheFormat) {
  for (uint32_t bit : {28u, 29u, 30u}) {
    EXPECT_EQ(mergeable(1u << bit, {0x1300, 0x1800}), 1) << bit;
  }
  EXPECT_EQ(mergeable(0x8FFFFFFF, {0x1300, 0x1800}), 0);
  EXPECT_EQ(mergeable(0, {0x1300, 0x1800}), 0);
}

TEST(QPXMergeable, ShortAndMissingListsDoNotMerge) {
  EXPECT_EQ(mergeable(QPX_FORMAT_BGR24, {}), 0);
  EXPECT_EQ(mergeable(QPX_FORMAT_BGR24, {0x1300}), 0);
  EXPECT_EQ(QPXMergeable(QPX_FORMAT_BGR24, nullptr), 0);
  const QPXEffectList withoutItems = {nullptr, 2, 0};
  EXPECT_EQ(QPXMergeable(QPX_FORMAT_BGR24, &withoutItems), 0);
}

}  // namespace
}  // namespace qpx
