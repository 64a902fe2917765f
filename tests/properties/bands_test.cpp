// How a picture is cut into calls does not show in it.
#include "properties/effect_run.h"
#include "support/sweep.h"

namespace qpx::testing {
namespace {

constexpr Size kSizes[] = {{1, 1}, {2, 2}, {3, 5}, {17, 13}, {64, 33}, {129, 70}, {701, 4}};
constexpr const char* kKinds[] = {"random", "initial", "minimum", "maximum"};

std::vector<int32_t> randomHeights(int32_t height, uint64_t seed) {
  Random random(seed);
  std::vector<int32_t> heights;
  for (int32_t rows = 0; rows < height; rows += heights.back()) {
    heights.push_back(random.between(1, 1 + height / 3));
  }
  return heights;
}

class BandSplit : public ::testing::TestWithParam<EffectCase> {};

TEST_P(BandSplit, GivesTheBytesOfOneCall) {
  const EffectCase& effectCase = GetParam();
  if (wantsOneCall(effectCase)) return;
  const Picture source = effectCase.picture(Placement::exact);
  for (size_t kind = 0; kind < std::size(kKinds); kind += static_cast<size_t>(sweepStep())) {
    const Record record = makeRecord(*effectCase.effect, kKinds[kind], 5);
    SCOPED_TRACE(record.text());
    const Engine engine(source, *effectCase.effect, record);
    Picture whole = blankLike(source);
    ASSERT_TRUE(engine.run(source, whole));
    for (const int32_t rows : {1, 2, 3, 7, 0}) {
      const std::vector<int32_t> heights =
          rows > 0 ? std::vector<int32_t>{rows} : randomHeights(source.height(), 3);
      SCOPED_TRACE(rows > 0 ? "bands of " + std::to_string(rows) : "bands at random");
      Picture banded = blankLike(source);
      ASSERT_TRUE(engine.run(source, banded, heights));
      ASSERT_TRUE(samePicture(whole, banded));
    }
    if (effectCase.effect->recordSize == 0) break;
  }
}

INSTANTIATE_TEST_SUITE_P(Catalogue, BandSplit, ::testing::ValuesIn(allCases(kSizes)), caseName);

class Merge : public ::testing::TestWithParam<EffectCase> {};

// Second inputs and masks ride along with the bands.
TEST_P(Merge, BandsGiveTheBytesOfOneCall) {
  const EffectCase& effectCase = GetParam();
  const Picture source = effectCase.picture(Placement::exact);
  const Picture second = effectCase.picture(Placement::exact, 9);
  Picture mask(QPX_FORMAT_GREY8, source.width(), source.height(), Placement::exact);
  mask.paint(4);
  const Record record = makeRecord(*effectCase.effect, "initial");
  for (const Picture* usedMask : {static_cast<const Picture*>(nullptr), &std::as_const(mask)}) {
    SCOPED_TRACE(usedMask != nullptr ? "with a mask" : "without a mask");
    const Engine engine(source, *effectCase.effect, record, &second, usedMask);
    Picture whole = blankLike(source);
    ASSERT_TRUE(engine.run(source, whole));
    for (const int32_t rows : {1, 2, 5}) {
      const int32_t heights[] = {rows};
      Picture banded = blankLike(source);
      ASSERT_TRUE(engine.run(source, banded, heights));
      ASSERT_TRUE(samePicture(whole, banded)) << "bands of " << rows;
    }
  }
}

std::vector<EffectCase> secondInputCases() {
  constexpr Size kMergeSizes[] = {{1, 1}, {17, 13}, {64, 33}};
  std::vector<EffectCase> cases = allCases(kMergeSizes);
  std::erase_if(cases, [](const EffectCase& one) {
    return (one.effect->flags & QPX_EFFECT_SECOND_INPUT) == 0;
  });
  return cases;
}

INSTANTIATE_TEST_SUITE_P(Catalogue, Merge, ::testing::ValuesIn(secondInputCases()), caseName);

constexpr Size kCutoutSizes[] = {{3, 5}, {37, 29}};

class Cutout : public ::testing::TestWithParam<EffectCase> {};

// Divisors of chroma go up to 4, and a block is made from its own top left pixel: parts that start
// inside a block are another matter.
TEST_P(Cutout, OnBlockEdgesIsThatPartOfTheWhole) {
  const EffectCase& effectCase = GetParam();
  if (wantsOneCall(effectCase)) return;
  const Picture source = effectCase.picture(Placement::exact);
  const Engine engine(source, *effectCase.effect, makeRecord(*effectCase.effect, "initial"));
  Picture whole = blankLike(source);
  ASSERT_TRUE(engine.run(source, whole));
  for (const MRect& part : {MRect{12, 12, 24, 24}, MRect{0, 12, 36, 29}, MRect{12, 0, 37, 24}}) {
    if (part.right > source.width() || part.bottom > source.height()) continue;
    Picture made = whole;
    MRect rect;
    ASSERT_TRUE(engine.runPart(source, made, part, &rect));
    ASSERT_TRUE(samePicture(whole, made)) << "part " << part.left << ", " << part.top;
  }
}

TEST_P(Cutout, WritesNothingOutsideItself) {
  const EffectCase& effectCase = GetParam();
  const Picture source = effectCase.picture(Placement::exact);
  const Record record = makeRecord(*effectCase.effect, "initial");
  const Engine engine(source, *effectCase.effect, record);
  Random random(effectCase.effect->id);
  for (int i = 0; i < 12; ++i) {
    const int32_t left = random.between(0, source.width() - 1);
    const int32_t top = random.between(0, source.height() - 1);
    const MRect part = {left, top, random.between(left + 1, source.width()),
                        random.between(top + 1, source.height())};
    SCOPED_TRACE("part " + std::to_string(left) + ", " + std::to_string(top) + " to " +
                 std::to_string(part.right) + ", " + std::to_string(part.bottom));
    const Picture before = blankLike(source);
    Picture after = before;
    MRect made;
    ASSERT_TRUE(engine.runPart(source, after, part, &made));
    ASSERT_TRUE(untouchedOutside(before, after, made));
  }
}

INSTANTIATE_TEST_SUITE_P(Catalogue, Cutout, ::testing::ValuesIn(allCases(kCutoutSizes)), caseName);

}  // namespace
}  // namespace qpx::testing
