// Gaussian blur, unsharp mask, definition and box sums against literal forms of their arithmetic.
#include "adjust/sharpening.h"

#include <gtest/gtest.h>
#include <qpx/kernels_adjust.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "adjust/packed_pictures.h"
#include "support/failing_memory.h"

namespace qpx::testing {
namespace {

struct Shape {
  int32_t width, height;
};
constexpr Shape kShapes[] = {{1, 1}, {2, 5}, {7, 3}, {37, 29}, {70, 11}};

Picture sourceOf(uint32_t format, const Shape& shape) {
  Picture source(format, shape.width, shape.height, Placement::exact);
  scramble(source, 3);
  return source;
}

// expected(x, y, channel) for colours; alpha is that of the source.
template <typename Expected>
void expectSamples(const Picture& source, const Picture& result, const Expected& expected) {
  for (int32_t y = 0; y < source.height(); ++y) {
    for (int32_t x = 0; x < source.width(); ++x) {
      for (int32_t c = 0; c < 3; ++c) {
        ASSERT_EQ(*sampleAt(result, x, y, c), expected(x, y, c)) << x << ", " << y << ", " << c;
      }
      if (pixelBytes(source) == 4) {
        ASSERT_EQ(*sampleAt(result, x, y, 3), *sampleAt(source, x, y, 3));
      }
    }
  }
}

// Both passes as they are defined: sums in 64 bits, divided by the sum of the weights.
class LiteralBlur {
 public:
  LiteralBlur(const Picture& source, const Stage& stage, int32_t radius)
      : source_(source),
        weights_(reinterpret_cast<const int32_t*>(stage.lut) + 192),
        radius_(radius) {
    for (int32_t k = -radius; k <= radius; ++k) sum_ += static_cast<uint64_t>(weights_[k]);
    for (int32_t y = 0; y < source.height(); ++y) {
      for (int32_t x = 0; x < source.width(); ++x) {
        for (int32_t c = 0; c < 3; ++c) {
          along_.push_back(
              mean([&](int32_t k) -> uint64_t { return *sampleAt(source, x + k, y, c); }));
        }
      }
    }
  }

  uint8_t at(int32_t x, int32_t y, int32_t channel) const {
    return mean([&](int32_t k) -> uint64_t {
      const int32_t row = std::clamp(y + k, 0, source_.height() - 1);
      return along_[static_cast<size_t>((row * source_.width() + x) * 3 + channel)];
    });
  }

 private:
  template <typename Sample>
  uint8_t mean(const Sample& sample) const {
    uint64_t total = 0;
    for (int32_t k = -radius_; k <= radius_; ++k) {
      total += static_cast<uint64_t>(weights_[k]) * sample(k);
    }
    return static_cast<uint8_t>(total / sum_);
  }

  const Picture& source_;
  const int32_t* weights_;
  int32_t radius_;
  uint64_t sum_ = 0;
  std::vector<uint8_t> along_;
};

TEST(GaussBlur, IsTheWeightedMeanOfRowsThenColumns) {
  for (const uint32_t format : kPackedFormats) {
    for (const Shape& shape : kShapes) {
      for (const int32_t size : {2, 3, 4, 7, 20, 41}) {
        const Picture source = sourceOf(format, shape);
        const auto frame = frameOf(source, kGaussBlur, QPXGaussBlurParam{size});
        Picture result = source;
        ASSERT_EQ(frame->run(source, result, wholeOf(source)), QPX_OK);
        const LiteralBlur blur(source, frame->stage(), size / 2);
        SCOPED_TRACE("window of " + std::to_string(size) + ", width " +
                     std::to_string(shape.width));
        expectSamples(source, result,
                      [&](int32_t x, int32_t y, int32_t c) { return blur.at(x, y, c); });
      }
    }
  }
}

TEST(GaussBlur, WeightsAreABellThatAddsUp) {
  const Picture source = sourceOf(QPX_FORMAT_BGR24, {4, 4});
  for (int32_t radius = 0; radius <= 191; ++radius) {
    const auto frame = frameOf(source, kGaussBlur, QPXGaussBlurParam{2 * radius + 1});
    const int32_t* weights = reinterpret_cast<const int32_t*>(frame->stage().lut) + 192;
    int32_t sum = 0;
    for (int32_t k = -192; k <= 192; ++k) {
      sum += weights[k];
      EXPECT_EQ(weights[k], weights[-k]);
      EXPECT_GE(weights[k], 0);
      if (std::abs(k) > radius) {
        EXPECT_EQ(weights[k], 0);
      }
      if (k > 0) {
        EXPECT_LE(weights[k], weights[k - 1] + 1);
      }
    }
    EXPECT_EQ(sum, 32768) << "radius " << radius;
  }
}

TEST(GaussBlur, OfOnePixelAndOfAFlatPictureIsACopy) {
  Picture source = sourceOf(QPX_FORMAT_RGBA32, {19, 13});
  Picture result = source;
  result.fill(9);
  ASSERT_EQ(frameOf(source, kGaussBlur, QPXGaussBlurParam{1})->run(source, result, wholeOf(source)),
            QPX_OK);
  EXPECT_FALSE(source.firstDifference(result));

  for (const int32_t level : {0, 1, 128, 254, 255}) {
    source.fill(static_cast<uint8_t>(level));
    result.fill(9);
    ASSERT_EQ(
        frameOf(source, kGaussBlur, QPXGaussBlurParam{383})->run(source, result, wholeOf(source)),
        QPX_OK);
    EXPECT_FALSE(source.firstDifference(result)) << level;
  }
}

TEST(UnsharpMask, MovesWhatIsAboveTheThreshold) {
  const QPXUnsharpMaskParam params[] = {{120, 3, 3},  {500, 0, 1}, {37, 40, 6}, {100, 254, 2},
                                        {9000, 7, 2}, {80, -4, 2}, {60, 256, 1}};
  for (const uint32_t format : kPackedFormats) {
    for (const Shape& shape : kShapes) {
      for (const QPXUnsharpMaskParam& param : params) {
        const Picture source = sourceOf(format, shape);
        const auto frame = frameOf(source, kUnsharpMask, param);
        Picture result = source;
        ASSERT_EQ(frame->run(source, result, wholeOf(source)), QPX_OK);
        const LiteralBlur blur(source, frame->stage(), param.radius);
        expectSamples(source, result, [&](int32_t x, int32_t y, int32_t c) {
          const int32_t sample = *sampleAt(source, x, y, c);
          const int32_t difference = sample - blur.at(x, y, c);
          if (std::abs(difference) <= std::max(param.threshold, 0)) return sample;
          return std::clamp(sample + difference * std::min(param.amount, 500) / 100, 0, 255);
        });
      }
    }
  }
}

TEST(UnsharpMask, WithoutAmountOrAboveNoThresholdIsACopy) {
  const Picture source = sourceOf(QPX_FORMAT_BGR24, {40, 30});
  for (const QPXUnsharpMaskParam& param :
       {QPXUnsharpMaskParam{0, 0, 5}, QPXUnsharpMaskParam{500, 255, 5},
        QPXUnsharpMaskParam{500, 0, 0}, QPXUnsharpMaskParam{-7, 0, 5}}) {
    Picture result = source;
    result.fill(1);
    ASSERT_EQ(frameOf(source, kUnsharpMask, param)->run(source, result, wholeOf(source)), QPX_OK);
    EXPECT_FALSE(source.firstDifference(result));
  }
}

TEST(Definition, MovesSamplesByTheirDifferenceFromTheWindow) {
  const QPXDefinitionParam params[] = {{100, 3, 0}, {-100, 5, 0}, {50, 21, 0}, {-33, 8, 0},
                                       {300, 2, 0}, {-101, 4, 0}, {1, 32, 0},  {70, 1, 0}};
  for (const uint32_t format : kPackedFormats) {
    for (const Shape& shape : kShapes) {
      for (const QPXDefinitionParam& param : params) {
        const Picture source = sourceOf(format, shape);
        Picture result = source;
        ASSERT_EQ(frameOf(source, kDefinition, param)->run(source, result, wholeOf(source)),
                  QPX_OK);
        const int32_t window = param.windowSize, reach = window / 2;
        const int32_t q = static_cast<int32_t>(1024.0 / window + 0.5);
        const bool beyond = param.amount < -100 || param.amount > 100;
        const int32_t a = beyond ? 256 : std::abs(param.amount) * 256 / 100;
        expectSamples(source, result, [&](int32_t x, int32_t y, int32_t c) {
          int32_t sum = 0;
          for (int32_t v = y - reach; v < y - reach + window; ++v) {
            for (int32_t u = x - reach; u < x - reach + window; ++u) {
              sum += *sampleAt(source, u, v, c);
            }
          }
          const int32_t mean = (q * ((sum * q) >> 10)) >> 10;
          const int32_t sample = *sampleAt(source, x, y, c);
          const int32_t moved = param.amount > 0 ? sample + ((a * (sample - mean)) >> 8)
                                                 : sample + ((a * (mean - sample)) >> 8);
          return std::clamp(moved, 0, 255);
        });
      }
    }
  }
}

// What the reciprocal loses moves a flat picture by no more than its own error.
TEST(Definition, HardlyMovesAFlatPicture) {
  for (int32_t window = 1; window <= 511; window += window < 64 ? 1 : 7) {
    Picture source(QPX_FORMAT_BGR24, 5, 4, Placement::exact);
    source.fill(200);
    Picture result = source;
    const QPXDefinitionParam param = {100, window, 0};
    ASSERT_EQ(frameOf(source, kDefinition, param)->run(source, result, wholeOf(source)), QPX_OK);
    const double off = static_cast<int32_t>(1024.0 / window + 0.5) * window / 1024.0;
    EXPECT_NEAR(*sampleAt(result, 2, 2, 0), std::min(200 + 200 * (1 - off * off), 255.0), 2.5)
        << window;
  }
}

// Of windows whose side is a power of two the reciprocal loses nothing.
TEST(Neighbourhoods, OfAFlatPictureChangeNothing) {
  const auto check = [](uint32_t id, const auto& param, const char* what) {
    for (const int32_t level : {0, 1, 77, 128, 200, 255}) {
      Picture source(QPX_FORMAT_BGRA32, 41, 37, Placement::exact);
      source.fill(static_cast<uint8_t>(level));
      Picture result = source;
      result.fill(9);
      ASSERT_EQ(frameOf(source, id, param)->run(source, result, wholeOf(source)), QPX_OK);
      EXPECT_FALSE(source.firstDifference(result)) << what << " of " << level;
    }
  };
  for (const int32_t side : {2, 4, 8, 16, 32, 64, 128, 256}) {
    const std::string what = "definition, window of " + std::to_string(side);
    check(kDefinition, QPXDefinitionParam{100, side, 0}, what.c_str());
    check(kDefinition, QPXDefinitionParam{-100, side, 0}, what.c_str());
  }
  for (const int32_t radius : {1, 3, 20}) {
    check(kUnsharpMask, QPXUnsharpMaskParam{500, 0, radius}, "unsharp mask");
  }
}

// Sizes that no record may ask for are those of the nearest that it may.
TEST(Neighbourhoods, ClampTheirSizes) {
  const Picture source = sourceOf(QPX_FORMAT_BGR24, {40, 12});
  const auto made = [&](uint32_t id, const auto& param) {
    Picture result = source;
    EXPECT_EQ(frameOf(source, id, param)->run(source, result, wholeOf(source)), QPX_OK);
    return result;
  };
  const auto blurred = [&](int32_t size) { return made(kGaussBlur, QPXGaussBlurParam{size}); };
  EXPECT_FALSE(blurred(383).firstDifference(blurred(384)));
  EXPECT_FALSE(blurred(383).firstDifference(blurred(INT32_MAX)));
  EXPECT_TRUE(blurred(383).firstDifference(blurred(381)));
  EXPECT_FALSE(source.firstDifference(blurred(0)));
  EXPECT_FALSE(source.firstDifference(blurred(INT32_MIN)));

  const auto defined = [&](int32_t size) {
    return made(kDefinition, QPXDefinitionParam{70, size, 0});
  };
  EXPECT_FALSE(defined(511).firstDifference(defined(512)));
  EXPECT_FALSE(defined(511).firstDifference(defined(INT32_MAX)));
  EXPECT_FALSE(defined(1).firstDifference(defined(INT32_MIN)));

  const auto sharpened = [&](int32_t radius) {
    return made(kUnsharpMask, QPXUnsharpMaskParam{200, 0, radius});
  };
  EXPECT_FALSE(sharpened(191).firstDifference(sharpened(192)));
  EXPECT_FALSE(sharpened(191).firstDifference(sharpened(INT32_MAX)));
  EXPECT_FALSE(source.firstDifference(sharpened(-1)));
  for (const int32_t threshold : {-1, 0, 255, 256}) {
    const auto frame = frameOf(source, kUnsharpMask, QPXUnsharpMaskParam{200, threshold, 2});
    EXPECT_EQ(record<QPXUnsharpMaskParam>(frame->stage()).threshold, std::clamp(threshold, 0, 255));
  }
}

// Bands of a picture, by the rows that the stage keeps, give the bytes of one call.
TEST(Neighbourhoods, InBandsGiveTheSameBytes) {
  const Picture source = sourceOf(QPX_FORMAT_BGR24, {29, 61});
  const auto check = [&](uint32_t id, const auto& param) {
    Picture expected = source, banded = source;
    ASSERT_EQ(frameOf(source, id, param)->run(source, expected, wholeOf(source)), QPX_OK);
    const auto frame = frameOf(source, id, param);
    for (int32_t top = 0, rows = 1; top < 61; top += rows, rows = rows % 7 + 2) {
      const MRect band = {0, top, 29, std::min(top + rows, 61)};
      ASSERT_EQ(frame->run(source, banded, band), QPX_OK);
    }
    EXPECT_FALSE(expected.firstDifference(banded)) << id;
  };
  check(kGaussBlur, QPXGaussBlurParam{9});
  check(kUnsharpMask, QPXUnsharpMaskParam{200, 2, 5});
  for (const int32_t window : {2, 11, 12}) check(kDefinition, QPXDefinitionParam{80, window, 0});
}

// Whether the effect comes in bands or in one call, in place or not.
TEST(Neighbourhoods, InPlaceGiveTheSameBytes) {
  const Picture source = sourceOf(QPX_FORMAT_RGBA32, {33, 40});
  const auto check = [&](uint32_t id, const auto& param) {
    Picture expected = source;
    ASSERT_EQ(frameOf(source, id, param)->run(source, expected, wholeOf(source)), QPX_OK);
    Picture inPlace = source;
    ASSERT_EQ(frameOf(source, id, param)->run(inPlace, inPlace, wholeOf(source)), QPX_OK);
    EXPECT_FALSE(expected.firstDifference(inPlace)) << id;
  };
  check(kGaussBlur, QPXGaussBlurParam{9});
  check(kUnsharpMask, QPXUnsharpMaskParam{200, 2, 5});
  check(kDefinition, QPXDefinitionParam{80, 11, 0});
}

TEST(Neighbourhoods, KernelsByNameTakeStagesOfTheirEffectAlone) {
  const Picture source = sourceOf(QPX_FORMAT_BGR24, {20, 10});
  const auto blurred = frameOf(source, kGaussBlur, QPXGaussBlurParam{5});
  const auto sharpened = frameOf(source, kUnsharpMask, QPXUnsharpMaskParam{300, 0, 5});
  const auto defined = frameOf(source, kDefinition, QPXDefinitionParam{60, 9, 0});
  struct Named {
    Kernel kernel;
    KernelFrame& own;
    KernelFrame& other;
  };
  for (const Named& named : {Named{byName<GaussBlur_RGB>, *blurred, *sharpened},
                             Named{byName<SharpenUSM_RGB>, *sharpened, *defined},
                             Named{byName<Definition_RGB>, *defined, *blurred}}) {
    Picture expected = source, result = source;
    ASSERT_EQ(named.own.run(source, expected, wholeOf(source)), QPX_OK);
    EXPECT_EQ(named.own.run(named.kernel, source, result, wholeOf(source)), QPX_OK);
    EXPECT_FALSE(expected.firstDifference(result));
    EXPECT_EQ(named.other.run(named.kernel, source, result, wholeOf(source)), QPX_BAD_PARAM);

    FailingMemory::failFrom(1);
    EXPECT_EQ(named.own.run(named.kernel, source, result, wholeOf(source)), QPX_NO_MEMORY);
    FailingMemory::reset();
  }
}

TEST(Neighbourhoods, KernelsByNameLeaveOtherFormats) {
  expectOtherFormatsLeft(byName<GaussBlur_RGB>, kGaussBlur, QPXGaussBlurParam{5});
  expectOtherFormatsLeft(byName<SharpenUSM_RGB>, kUnsharpMask, QPXUnsharpMaskParam{300, 0, 5});
  expectOtherFormatsLeft(byName<Definition_RGB>, kDefinition, QPXDefinitionParam{60, 9, 0});
}

using UpdateBoxSums = int32_t (*)(int32_t, int32_t, int32_t, int32_t*, QPXRowTable, int32_t,
                                  int32_t);

// The window's columns as they slide: what comes in on the right is the column half a window on.
int32_t slidSum(const uint8_t* row, int32_t bytes, int32_t width, int32_t first, int32_t x,
                int32_t window) {
  const int32_t reach = window >> 1;
  const auto at = [&](int32_t column) { return row[std::clamp(column, 0, width - 1) * bytes]; };
  int32_t sum = 0;
  for (int32_t k = 0; k < window; ++k) sum += at(first - reach + k);
  for (int32_t u = first + 1; u <= x; ++u) {
    sum -= u > reach ? at(u - reach - 1) : at(first);
    sum += u + reach < width - 1 ? at(u + reach) : at(width - 1);
  }
  return sum;
}

TEST(BoxSums, MoveFromOneRowToTheNext) {
  constexpr int32_t kWidth = 23, kRows = 20, kLine = 9;
  Random random(1);
  for (const auto& [update, bytes] : {std::pair<UpdateBoxSums, int32_t>{UpdateBoxSums24, 3},
                                      std::pair<UpdateBoxSums, int32_t>{UpdateBoxSums32, 4}}) {
    std::vector<uint8_t> pixels(static_cast<size_t>(kWidth * kRows * bytes));
    for (uint8_t& byte : pixels) byte = random.byte();
    std::vector<uint8_t*> rows;
    for (int32_t y = 0; y < kRows; ++y) rows.push_back(pixels.data() + y * kWidth * bytes);
    for (const int32_t window : {1, 3, 4, 9, 17}) {
      for (const auto& [first, end] : {std::pair{0, kWidth}, std::pair{10, 14}, std::pair{9, 9}}) {
        std::vector<int32_t> sums(3 * kWidth, 1000);
        ASSERT_EQ(update(kWidth, first, end, sums.data(), rows.data(), kLine, window), QPX_OK);
        for (int32_t c = 0; c < 3; ++c) {
          for (int32_t x = 0; x < kWidth; ++x) {
            const bool moved = x >= first && x < end;
            const uint8_t* out = rows[static_cast<size_t>(kLine - window / 2)] + c;
            const uint8_t* in = rows[static_cast<size_t>(kLine + window / 2 + 1)] + c;
            const int32_t expected = moved ? slidSum(in, bytes, kWidth, first, x, window) -
                                                 slidSum(out, bytes, kWidth, first, x, window)
                                           : 0;
            ASSERT_EQ(sums[static_cast<size_t>(c * kWidth + x)], 1000 + expected)
                << "window " << window << ", column " << x;
          }
        }
      }
    }
  }
}

// A window far wider than the picture counts the edges as often as it reaches beyond them, and sums
// wrap around.
TEST(BoxSums, OfAHostileWindowWrapAround) {
  constexpr int32_t kWidth = 5, kWindow = 8421507, kReach = kWindow / 2;
  static_assert(int64_t{255} * kWindow > INT32_MAX);
  uint8_t leaving[3 * kWidth] = {10, 20, 30};  // black behind the first pixel
  std::vector<uint8_t> entering(3 * kWidth, 255);
  // Of this table two entries are looked at; the system gives no memory for the others.
  const std::unique_ptr<uint8_t*, decltype(&std::free)> table(
      static_cast<uint8_t**>(std::calloc(kWindow + 1, sizeof(uint8_t*))), &std::free);
  ASSERT_NE(table, nullptr);
  table.get()[0] = leaving;
  table.get()[kWindow] = entering.data();
  std::vector<int32_t> sums(3 * kWidth, INT32_MAX);
  ASSERT_EQ(UpdateBoxSums24(kWidth, 0, kWidth, sums.data(), table.get(), kReach, kWindow), QPX_OK);
  for (int32_t c = 0; c < 3; ++c) {
    for (int32_t x = 0; x < kWidth; ++x) {
      const int64_t change = int64_t{255} * kWindow - int64_t{leaving[c]} * (kReach + 1);
      const auto expected = static_cast<uint32_t>(INT32_MAX) + static_cast<uint32_t>(change);
      // As it slides, what leaves on the left is the first column and what comes is the last.
      const auto slid = static_cast<uint32_t>(x) * leaving[c];
      ASSERT_EQ(sums[static_cast<size_t>(c * kWidth + x)], static_cast<int32_t>(expected + slid));
    }
  }
}

TEST(BoxSums, RefuseColumnsOutsideThePicture) {
  uint8_t row[30] = {};
  uint8_t* rows[] = {row, row, row, row};
  int32_t sums[30] = {};
  EXPECT_EQ(UpdateBoxSums24(10, -1, 10, sums, rows, 1, 3), QPX_BAD_PARAM);
  EXPECT_EQ(UpdateBoxSums24(10, 0, 11, sums, rows, 1, 3), QPX_BAD_PARAM);
  EXPECT_EQ(UpdateBoxSums24(10, 7, 6, sums, rows, 1, 3), QPX_BAD_PARAM);
  EXPECT_EQ(UpdateBoxSums24(0, 0, 0, sums, rows, 1, 3), QPX_BAD_PARAM);
  EXPECT_EQ(UpdateBoxSums24(10, 0, 10, sums, rows, 1, 0), QPX_BAD_PARAM);
  EXPECT_EQ(UpdateBoxSums24(10, 0, 10, sums, rows, 1, 3), QPX_OK);
}

}  // namespace
}  // namespace qpx::testing
