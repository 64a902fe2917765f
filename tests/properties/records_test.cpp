// Parameter records: any bytes are survived, values are clamped, foreign sizes are not read.
#include <cstdio>
#include <cstring>

#include "properties/effect_run.h"

namespace qpx::testing {
namespace {

constexpr Size kSmall = {23, 11};
constexpr Size kTiny = {1, 2};

// Parameters whose values outside the range are not those at its ends, and why.
struct Unclamped {
  uint32_t id;
  const char* param;
  const char* reason;
};

constexpr const char* kMixesBeyond = "previews mix beyond the ends of the range";

constexpr Unclamped kUnclamped[] = {
    {0x6000, "mode", "hosts switch the effect off by a mode that it does not know"},
    {0xA800, "strength", kMixesBeyond},
    {0xA900, "curveStrength", kMixesBeyond},
    {0xA900, "maskStrength", kMixesBeyond},
    {0xAA00, "curveStrength", kMixesBeyond},
    {0xAA00, "maskStrength", kMixesBeyond},
    {0xAB00, "curveStrength", kMixesBeyond},
    {0xAB00, "maskStrength", kMixesBeyond},
    {0xAC00, "strength", kMixesBeyond},
};

// Puts what is excepted back inside the range.
void keepInRange(const QPXEffectInfo& effect, bool above, Record& record) {
  for (const Unclamped& row : kUnclamped) {
    for (int32_t i = 0; row.id == effect.id && i < effect.paramCount; ++i) {
      const QPXParamInfo& param = effect.params[i];
      if (std::strcmp(param.name, row.param) != 0) continue;
      record.set(param, above ? param.maximum : param.minimum);
      std::printf("%s of 0x%X is not clamped: %s\n", row.param, effect.id, row.reason);
    }
  }
}

class Records : public ::testing::TestWithParam<EffectCase> {
 protected:
  static EffectCase sized(const Size& size) {
    EffectCase effectCase = GetParam();
    effectCase.width = size.width;
    effectCase.height = size.height;
    return effectCase;
  }
};

TEST_P(Records, OfAnyBytesAreSurvived) {
  for (const Size& size : {kSmall, kTiny}) {
    const EffectCase effectCase = sized(size);
    const Picture source = effectCase.picture(Placement::exact);
    for (uint64_t seed = 1; seed <= 6; ++seed) {
      const Record record = makeRecord(*effectCase.effect, "noise", seed);
      SCOPED_TRACE(record.text());
      const Engine engine(source, *effectCase.effect, record);
      // Parameters may ask for more memory than there is, or for a margin beyond the picture.
      if (engine.result() == QPX_NO_MEMORY) continue;
      const Picture before = blankLike(source);
      Picture after = before;
      const int32_t heights[] = {2};
      ASSERT_TRUE(engine.run(source, after, heights));
      ASSERT_TRUE(untouchedOutside(before, after, {0, 0, source.width(), source.height()}));
      if (effectCase.effect->recordSize == 0) break;
    }
  }
}

TEST_P(Records, ValuesOutsideTheRangeAreClamped) {
  if (GetParam().effect->paramCount == 0) return;
  const EffectCase effectCase = sized(kSmall);
  const Picture source = effectCase.picture(Placement::exact);
  const char* pairs[][2] = {{"minimum", "below"}, {"maximum", "above"}};
  for (const auto& [bound, beyond] : pairs) {
    const Record inRange = makeRecord(*effectCase.effect, bound);
    Record outOfRange = makeRecord(*effectCase.effect, beyond);
    keepInRange(*effectCase.effect, std::strcmp(beyond, "above") == 0, outOfRange);
    Picture expected = blankLike(source);
    Picture actual = blankLike(source);
    ASSERT_TRUE(Engine(source, *effectCase.effect, inRange).run(source, expected));
    ASSERT_TRUE(Engine(source, *effectCase.effect, outOfRange).run(source, actual));
    ASSERT_TRUE(samePicture(expected, actual)) << outOfRange.text();
  }
}

TEST_P(Records, OfAForeignSizeCountAsZero) {
  const EffectCase effectCase = sized(kSmall);
  const QPXEffectInfo& effect = *effectCase.effect;
  const Picture source = effectCase.picture(Placement::exact);
  const Record zero = makeRecord(effect, "zero");
  const QPXEffectItem zeroItem = {effect.id, zero.data(), static_cast<uint32_t>(zero.size())};
  Picture expected = blankLike(source);
  ASSERT_TRUE(Engine(source, {&zeroItem, 1}).run(source, expected));
  for (const int32_t size : {0, 1, effect.recordSize - 1, effect.recordSize + 1, 4096}) {
    if (size < 0 || size == effect.recordSize) continue;
    Random random(static_cast<uint64_t>(size));
    Record foreign(size);
    foreign.setBytes(random);
    const QPXEffectItem item = {effect.id, foreign.data(), static_cast<uint32_t>(size)};
    Picture actual = blankLike(source);
    ASSERT_TRUE(Engine(source, {&item, 1}).run(source, actual)) << size << " bytes";
    ASSERT_TRUE(samePicture(expected, actual)) << size << " bytes";
  }
  const QPXEffectItem absent = {effect.id, nullptr, static_cast<uint32_t>(effect.recordSize)};
  Picture actual = blankLike(source);
  ASSERT_TRUE(Engine(source, {&absent, 1}).run(source, actual)) << "null record";
  ASSERT_TRUE(samePicture(expected, actual)) << "null record";
}

INSTANTIATE_TEST_SUITE_P(Catalogue, Records, ::testing::ValuesIn(allCases()), caseName);

}  // namespace
}  // namespace qpx::testing
