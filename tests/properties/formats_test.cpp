// One picture in several formats, and what the parameters of an effect do to it.
#include <cstdio>
#include <cstring>

#include "properties/effect_run.h"

namespace qpx::testing {
namespace {

constexpr Size kSizes[] = {{1, 1}, {2, 2}, {19, 15}, {66, 8}};

EffectCase at(const QPXEffectInfo& effect, uint32_t format, const Size& size) {
  return {&effect, &formatCase(format), size.width, size.height};
}

Picture resultOf(const EffectCase& effectCase, const Record& record) {
  const Picture source = effectCase.picture(Placement::exact);
  Picture out = blankLike(source);
  EXPECT_TRUE(Engine(source, *effectCase.effect, record).run(source, out))
      << ::testing::PrintToString(effectCase) << record.text();
  return out;
}

// Two formats that hold the same colours at the same depth.
struct FormatPair {
  uint32_t first;
  uint32_t second;
};

constexpr FormatPair kOrders[] = {
    {QPX_FORMAT_BGR24, QPX_FORMAT_RGB24},   {QPX_FORMAT_BGRA32, QPX_FORMAT_RGBA32},
    {QPX_FORMAT_BGRX32, QPX_FORMAT_RGBX32}, {QPX_FORMAT_BGR666, QPX_FORMAT_RGB666},
    {QPX_FORMAT_RGB565, QPX_FORMAT_BGR565}, {QPX_FORMAT_RGB444, QPX_FORMAT_BGR444},
    {QPX_FORMAT_RGB555, QPX_FORMAT_BGR555},
};
constexpr FormatPair kDepths[] = {{QPX_FORMAT_BGR24, QPX_FORMAT_BGRA32},
                                  {QPX_FORMAT_BGR24, QPX_FORMAT_BGRX32}};
constexpr FormatPair kHalvedChroma[] = {{QPX_FORMAT_NV21, QPX_FORMAT_NV12},
                                        {QPX_FORMAT_NV21, QPX_FORMAT_I420},
                                        {QPX_FORMAT_NV12, QPX_FORMAT_I420}};

bool takesBoth(const QPXEffectInfo& effect, const FormatPair& pair) {
  return takes(effect, formatCase(pair.first)) && takes(effect, formatCase(pair.second));
}

std::string text(const Rgba& pixel) {
  return std::to_string(pixel.r) + " " + std::to_string(pixel.g) + " " + std::to_string(pixel.b);
}

void expectSameColors(const Picture& a, const Picture& b) {
  for (int32_t y = 0; y < a.height(); ++y) {
    for (int32_t x = 0; x < a.width(); ++x) {
      Rgba first = a.rgb(x, y);
      Rgba second = b.rgb(x, y);
      first.a = second.a = 0;
      ASSERT_EQ(first, second) << "at " << x << ", " << y << ": " << text(first) << " and "
                               << text(second);
    }
  }
}

void expectSameSamples(const Picture& a, const Picture& b) {
  for (int component = 0; component < 3; ++component) {
    for (int32_t y = 0; y < a.height(); ++y) {
      for (int32_t x = 0; x < a.width(); ++x) {
        ASSERT_EQ(a.yuv(component, x, y), b.yuv(component, x, y))
            << "component " << component << " at " << x << ", " << y;
      }
    }
  }
}

// Cases are effects; formats and sizes are walked inside.
class Formats : public ::testing::TestWithParam<EffectCase> {
 protected:
  template <size_t kCount, typename Compare>
  void comparePairs(const FormatPair (&pairs)[kCount], const Compare& compare) {
    const QPXEffectInfo& effect = *GetParam().effect;
    for (const FormatPair& pair : pairs) {
      if (!takesBoth(effect, pair)) continue;
      for (const Size& size : kSizes) {
        for (const char* kind : {"initial", "maximum", "random"}) {
          const Record record = makeRecord(effect, kind, 12);
          const EffectCase first = at(effect, pair.first, size);
          const EffectCase second = at(effect, pair.second, size);
          SCOPED_TRACE(::testing::PrintToString(first) + " beside " +
                       ::testing::PrintToString(second) + record.text());
          compare(resultOf(first, record), resultOf(second, record));
          if (HasFatalFailure()) return;
        }
      }
    }
  }
};

TEST_P(Formats, OrderOfColorsDoesNotShow) { comparePairs(kOrders, expectSameColors); }

TEST_P(Formats, TwentyFourAndThirtyTwoBitsGiveTheSameColors) {
  comparePairs(kDepths, expectSameColors);
}

TEST_P(Formats, SemiPlanarAndPlanarAgree) { comparePairs(kHalvedChroma, expectSameSamples); }

TEST_P(Formats, AlphaIsKept) {
  const QPXEffectInfo& effect = *GetParam().effect;
  if (effect.marginRule == QPX_MARGIN_ROTATION) return;  // it turns with the picture
  for (const uint32_t format : {QPX_FORMAT_BGRA32, QPX_FORMAT_RGBA32}) {
    if (!takes(effect, formatCase(format))) continue;
    for (const Size& size : kSizes) {
      const EffectCase effectCase = at(effect, format, size);
      const Picture source = effectCase.picture(Placement::exact);
      const Picture made = resultOf(effectCase, makeRecord(effect, "initial"));
      for (int32_t y = 0; y < size.height; ++y) {
        for (int32_t x = 0; x < size.width; ++x) {
          ASSERT_EQ(source.rgb(x, y).a, made.rgb(x, y).a)
              << ::testing::PrintToString(effectCase) << " at " << x << ", " << y;
        }
      }
    }
  }
}

std::vector<EffectCase> oneCaseForEachEffect() {
  std::vector<EffectCase> cases;
  for (const QPXEffectInfo& effect : builtEffects()) cases.push_back({&effect, nullptr, 0, 0});
  return cases;
}

INSTANTIATE_TEST_SUITE_P(Catalogue, Formats, ::testing::ValuesIn(oneCaseForEachEffect()), caseName);

// Effects that leave a varied picture as it is in some of their formats, and why.
struct Unchanging {
  uint32_t id;
  uint32_t formats;
  const char* reason;
};

constexpr Unchanging kUnchanging[] = {
    {0x1700, QPX_TAKES_GREY, "it makes pictures grey, and these are"},
    {0x1900, QPX_TAKES_GREY, "it sorts the channels of a pixel, which are all alike here"},
};

const Unchanging* unchanging(const EffectCase& effectCase) {
  for (const Unchanging& row : kUnchanging) {
    const bool format = (row.formats & effectCase.format->group) != 0;
    if (format && row.id == effectCase.effect->id) return &row;
  }
  return nullptr;
}

class Look : public ::testing::TestWithParam<EffectCase> {
 protected:
  static EffectCase sized() {
    EffectCase effectCase = GetParam();
    effectCase.width = 61;
    effectCase.height = 40;
    return effectCase;
  }

  static void SetUpTestSuite() { excepted_ = 0; }
  static void TearDownTestSuite() {
    std::printf("%d cases may leave the picture as it is\n", excepted_);
  }

  static inline int excepted_ = 0;
};

// A row of the table that no longer holds must go.
TEST_P(Look, ChangesThePicture) {
  const EffectCase effectCase = sized();
  const Picture source = effectCase.picture(Placement::exact);
  const Picture made = resultOf(effectCase, makeRecord(*effectCase.effect, "initial"));
  const Unchanging* exception = unchanging(effectCase);
  excepted_ += exception != nullptr;
  EXPECT_EQ(source.firstDifference(made).has_value(), exception == nullptr)
      << (exception != nullptr ? exception->reason : "");
}

TEST_P(Look, AtIntensityZeroIsTheSource) {
  const EffectCase effectCase = sized();
  const QPXEffectInfo& effect = *effectCase.effect;
  const Picture source = effectCase.picture(Placement::exact);
  for (int32_t i = 0; i < effect.paramCount; ++i) {
    if (std::strcmp(effect.params[i].name, "intensity") != 0) continue;
    for (const char* kind : {"initial", "maximum", "random"}) {
      Record record = makeRecord(effect, kind, 6);
      record.set(effect.params[i], 0);
      EXPECT_TRUE(samePicture(source, resultOf(effectCase, record))) << record.text();
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Catalogue, Look, ::testing::ValuesIn(allCases()), caseName);

}  // namespace
}  // namespace qpx::testing
