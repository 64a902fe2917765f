// Parameter records: any bytes are survived, values are clamped, foreign sizes are not read.
#include <cstdio>
#include <cstring>
#include <memory>

#include "properties/effect_run.h"

namespace qpx::testing {
namespace {

constexpr Size kSmall = {23, 11};
constexpr Size kTiny = {1, 2};

// Words that arithmetic goes wrong with, among them an infinity and a number that is none.
constexpr uint32_t kHostileWords[] = {1,          0xFFFFFFFF, 0x80000000, 0x7FFFFFFF,
                                      0x7F800000, 0x7FC00000, 0xFF800000};

// Parameters whose values outside the range are not those at its ends, and why.
struct Unclamped {
  uint32_t id;
  const char* param;
  const char* reason;
};

constexpr const char* kMixesBeyond = "previews mix beyond the ends of the range";

constexpr Unclamped kUnclamped[] = {
    {0x5B00, "frameMode", "hosts switch the effect off by a mode that it does not know"},
    {0x6000, "mode", "hosts switch the effect off by a mode that it does not know"},
    {0x7700, "colorIndex", "an index of no range leaves the picture as it is"},
    {0x8500, "mode", "the kernel refuses a mode that it does not know"},
    {0xA800, "strength", kMixesBeyond},
    {0xA900, "curveStrength", kMixesBeyond},
    {0xA900, "maskStrength", kMixesBeyond},
    {0xAA00, "curveStrength", kMixesBeyond},
    {0xAA00, "maskStrength", kMixesBeyond},
    {0xAB00, "curveStrength", kMixesBeyond},
    {0xAB00, "maskStrength", kMixesBeyond},
    {0xAC00, "strength", kMixesBeyond},
    {0xE900, "intensity", "below 0 colours move away from the look"},
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

bool documented(int32_t code) {
  return code == QPX_OK || code == QPX_BAD_PARAM || code == QPX_UNSUPPORTED ||
         code == QPX_NO_MEMORY;
}

// One call over the whole picture.
int32_t processWhole(const EffectCase& effectCase, const Engine& engine, const Picture& in,
                     Picture& out) {
  const MRect whole = {0, 0, in.width(), in.height()};
  MRect source = whole;
  MRect made = effectCase.effect->marginRule == QPX_MARGIN_ROTATION ? whole : MRect{};
  const int32_t result = QPXCalcRect(engine.handle(), &made, &source);
  if (result != QPX_OK) return result;
  const QPXPlaneSet to = out.planesAt(made.left, made.top);
  const QPXPlaneSet from = in.planesAt(source.left, source.top);
  return QPXProcess(engine.handle(), &to, &from, &source);
}

// Neither creating nor running the effect does more than answer a code and write its picture.
// Parameters may ask for more memory than there is.
void expectSurvived(const EffectCase& effectCase, const Record& record) {
  SCOPED_TRACE(record.text());
  const Picture source = effectCase.picture(Placement::exact);
  const Engine engine(source, *effectCase.effect, record);
  ASSERT_TRUE(documented(engine.result())) << engine.result();
  if (engine.result() != QPX_OK) return;
  const Picture before = blankLike(source);
  Picture after = before;
  const int32_t result = processWhole(effectCase, engine, source, after);
  ASSERT_TRUE(documented(result)) << result;
  ASSERT_TRUE(untouchedOutside(before, after, {0, 0, source.width(), source.height()}));
  const int32_t heights[] = {2};
  const bool wholeOnly = effectCase.effect->marginRule == QPX_MARGIN_WHOLE_IMAGE;
  if (result != QPX_OK || wholeOnly) return;
  ASSERT_TRUE(engine.run(source, after, heights));
}

TEST_P(Records, OfAnyBytesAreSurvived) {
  for (const Size& size : {kSmall, kTiny}) {
    const EffectCase effectCase = sized(size);
    for (uint64_t seed = 1; seed <= 4; ++seed) {
      expectSurvived(effectCase, makeRecord(*effectCase.effect, "noise", seed));
      if (HasFatalFailure() || effectCase.effect->recordSize == 0) return;
    }
  }
}

TEST_P(Records, OfOneHostileWordOverAndOverAreSurvived) {
  if (GetParam().effect->recordSize == 0) return;
  for (const uint32_t word : kHostileWords) {
    Record record(GetParam().effect->recordSize);
    record.setWords(word);
    expectSurvived(sized(kSmall), record);
    if (HasFatalFailure()) return;
  }
}

// One parameter at a time, so that the others let it have its effect. Once for each effect: what
// setups make of parameters hardly depends on the format.
TEST_P(Records, WithOneHostileParameterAreSurvived) {
  const QPXEffectInfo& effect = *GetParam().effect;
  if (!isFirstFormat(GetParam())) return;
  for (int32_t i = 0; i < effect.paramCount; ++i) {
    for (const uint32_t word : kHostileWords) {
      Record record = makeRecord(effect, "initial");
      record.setRaw(effect.params[i], word);
      expectSurvived(sized(kSmall), record);
      if (HasFatalFailure()) return;
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
  const auto loneByte = std::make_unique<uint8_t>(uint8_t{0xFF});
  for (const uint32_t stated : {UINT32_MAX, uint32_t{INT32_MAX}, uint32_t{1} << 20}) {
    const QPXEffectItem item = {effect.id, loneByte.get(), stated};
    Picture actual = blankLike(source);
    ASSERT_TRUE(Engine(source, {&item, 1}).run(source, actual)) << "stated " << stated;
    ASSERT_TRUE(samePicture(expected, actual)) << "stated " << stated;
  }
  const QPXEffectItem absent = {effect.id, nullptr, static_cast<uint32_t>(effect.recordSize)};
  Picture actual = blankLike(source);
  ASSERT_TRUE(Engine(source, {&absent, 1}).run(source, actual)) << "null record";
  ASSERT_TRUE(samePicture(expected, actual)) << "null record";
}

INSTANTIATE_TEST_SUITE_P(Catalogue, Records, ::testing::ValuesIn(allCases()), caseName);

}  // namespace
}  // namespace qpx::testing
