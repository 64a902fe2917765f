// What a run reads and writes, and that nothing but picture and parameters decides its bytes.
#include "properties/effect_run.h"
#include "support/sweep.h"

namespace qpx::testing {
namespace {

constexpr Size kSizes[] = {{1, 1}, {2, 1}, {1, 3}, {5, 4}, {31, 9}, {67, 18}, {130, 7}, {701, 3}};

// Each test walks the sizes itself.
class Bytes : public ::testing::TestWithParam<EffectCase> {
 protected:
  template <typename Body>
  void forEachSize(const Body& body, int32_t step = 1) {
    for (size_t i = 0; i < std::size(kSizes); i += static_cast<size_t>(step)) {
      EffectCase sized = GetParam();
      sized.width = kSizes[i].width;
      sized.height = kSizes[i].height;
      SCOPED_TRACE(::testing::PrintToString(sized));
      body(sized);
      if (HasFatalFailure()) return;
    }
  }
};

TEST_P(Bytes, SourceIsNeverWrittenNorPaddingNorGuards) {
  forEachSize([](const EffectCase& effectCase) {
    const Picture source = effectCase.picture(Placement::guarded);
    const Picture untouched = source;
    for (const char* kind : {"initial", "maximum"}) {
      const Engine engine(source, *effectCase.effect, makeRecord(*effectCase.effect, kind));
      const Picture before = blankLike(source);
      Picture after = before;
      ASSERT_TRUE(engine.run(source, after));
      ASSERT_TRUE(untouchedOutside(untouched, source, {}));
      ASSERT_TRUE(untouchedOutside(before, after, {0, 0, source.width(), source.height()}));
    }
  });
}

// A byte that is left out keeps what lay there before.
TEST_P(Bytes, EveryByteIsWritten) {
  forEachSize([](const EffectCase& effectCase) {
    const Picture source = effectCase.picture(Placement::exact);
    const Engine engine(source, *effectCase.effect, makeRecord(*effectCase.effect, "initial"));
    Picture overBright = blankLike(source);
    Picture overDark = blankLike(source);
    overDark.fill(0x12);
    ASSERT_TRUE(engine.run(source, overBright));
    ASSERT_TRUE(engine.run(source, overDark));
    ASSERT_TRUE(samePicture(overBright, overDark));
  });
}

TEST_P(Bytes, TwoEnginesGiveTheSame) {
  forEachSize(
      [](const EffectCase& effectCase) {
        const Picture source = effectCase.picture(Placement::exact);
        const Record record = makeRecord(*effectCase.effect, "random", 2);
        Picture first = blankLike(source);
        Picture second = blankLike(source);
        ASSERT_TRUE(Engine(source, *effectCase.effect, record).run(source, first));
        ASSERT_TRUE(Engine(source, *effectCase.effect, record).run(source, second));
        ASSERT_TRUE(samePicture(first, second)) << record.text();
      },
      sweepStep());
}

TEST_P(Bytes, PlainFormsGiveTheSameAsVectorForms) {
  forEachSize(
      [](const EffectCase& effectCase) {
        const Picture source = effectCase.picture(Placement::exact);
        for (const char* kind : {"initial", "random"}) {
          const Record record = makeRecord(*effectCase.effect, kind, 8);
          const Engine engine(source, *effectCase.effect, record);
          Picture plain = blankLike(source);
          Picture vector = blankLike(source);
          QPX_UsePlainForms(1);
          const auto plainRun = engine.run(source, plain);
          QPX_UsePlainForms(0);
          ASSERT_TRUE(plainRun);
          ASSERT_TRUE(engine.run(source, vector));
          ASSERT_TRUE(samePicture(plain, vector)) << record.text();
        }
      },
      sweepStep());
}

// Effects that know a pixel only by itself may work in the source's own planes.
TEST_P(Bytes, InPlaceGivesTheSameWithoutMargins) {
  if (hasMargin(*GetParam().effect)) return;
  forEachSize([](const EffectCase& effectCase) {
    const Picture source = effectCase.picture(Placement::guarded);
    const Engine engine(source, *effectCase.effect, makeRecord(*effectCase.effect, "initial"));
    Picture apart = blankLike(source);
    Picture inPlace = source;
    ASSERT_TRUE(engine.run(source, apart));
    ASSERT_TRUE(engine.run(inPlace, inPlace));
    ASSERT_TRUE(samePicture(apart, inPlace));
  });
}

INSTANTIATE_TEST_SUITE_P(Catalogue, Bytes, ::testing::ValuesIn(allCases()), caseName);

}  // namespace
}  // namespace qpx::testing
