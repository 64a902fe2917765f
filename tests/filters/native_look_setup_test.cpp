// What the setups of the native looks make of their records: corners, gradients, tone tables.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "filters/look_rules.h"
#include "support/failing_memory.h"
#include "support/kernel_frame.h"

namespace qpx {
namespace {

using testing::columnTerm;
using testing::diagonalPlace;
using testing::FailingMemory;
using testing::KernelFrame;
using testing::Picture;
using testing::Placement;
using testing::Rgb;
using testing::rowTerm;
using testing::wholeOf;

constexpr uint32_t kCornerLooks[] = {0x5E00, 0x5F00, 0x6000, 0x6100, 0x6200, 0x6300, 0x6400};
constexpr uint32_t kLooks[] = {0x1900, 0x5800, 0x5B00, 0x5E00, 0x5F00, 0x6000, 0x6100, 0x6200,
                               0x6300, 0x6400, 0x6700, 0x6900, 0x6A00, 0x6E00, 0xBF00, 0xC000};

struct SizedFrame : KernelFrame {
  SizedFrame(uint32_t format, int32_t width, int32_t height) : KernelFrame(format) {
    stage().inWidth = stage().outWidth = width;
    stage().inHeight = stage().outHeight = height;
  }
};

int sumAt(const Stage& stage, int32_t x, int32_t y) {
  return rowTerm(stage, y) + columnTerm(stage, x);
}

class Corners : public ::testing::TestWithParam<uint32_t> {};

TEST_P(Corners, GrowFromAClearMiddleToAllFourCornersAlike) {
  for (const auto& [width, height] : {std::pair{640, 480}, {481, 641}, {33, 7}, {4000, 3000}}) {
    SizedFrame frame(QPX_FORMAT_BGR24, width, height);
    ASSERT_EQ(frame.setUp(GetParam(), QPXCornerLookParam{}), QPX_OK);
    const Stage& stage = frame.stage();
    EXPECT_LT(sumAt(stage, width / 2, height / 2), 129);
    EXPECT_LT(sumAt(stage, width / 3, height / 3), 129) << "a third of the way is still clear";
    for (int32_t x = 0; x < width / 2; ++x) {
      ASSERT_GE(columnTerm(stage, x), columnTerm(stage, x + 1));
      ASSERT_EQ(columnTerm(stage, x), columnTerm(stage, width - 1 - x));
    }
    for (int32_t y = 0; y < height / 2; ++y) {
      ASSERT_GE(rowTerm(stage, y), rowTerm(stage, y + 1));
      ASSERT_EQ(rowTerm(stage, y), rowTerm(stage, height - 1 - y));
    }
    // Between a third and four fifths of the light are left in the very corner.
    const int behind = sumAt(stage, 0, 0) - 128;
    EXPECT_GT(behind, 200);
    EXPECT_LT(behind, 600);
  }
}

TEST_P(Corners, ParametersMoveThem) {
  const auto sumOf = [](const QPXCornerLookParam& param, int32_t x, int32_t y) {
    SizedFrame frame(QPX_FORMAT_BGR24, 200, 100);
    EXPECT_EQ(frame.setUp(GetParam(), param), QPX_OK);
    return sumAt(frame.stage(), x, y);
  };
  EXPECT_EQ(sumOf({1, -100, 0, 0, 0}, 0, 0), 128) << "without any darkening";
  EXPECT_GT(sumOf({1, 100, 0, 0, 0}, 0, 0), sumOf({}, 0, 0) + 200);
  EXPECT_GT(sumOf({1, 0, 100, 0, 0}, 60, 50), sumOf({}, 60, 50));
  EXPECT_LT(sumOf({1, 0, -100, 0, 0}, 20, 50), sumOf({}, 20, 50));
  EXPECT_GT(sumOf({1, 0, 0, 50, 0}, 0, 50), sumOf({1, 0, 0, 50, 0}, 199, 50));
  EXPECT_GT(sumOf({1, 0, 0, 0, 50}, 100, 0), sumOf({1, 0, 0, 0, 50}, 100, 99));
  EXPECT_EQ(sumOf({1, 0, 0, 100, 0}, 199, 3), sumOf({1, 0, 0, 900, 0}, 199, 3));
}

// By hand: the clear share of half the squared distances is 0.25, and 0 or 0.5 at the ends of
// reach.
TEST_P(Corners, ReachAndShiftCountAsTheySay) {
  const auto frameFor = [](const QPXCornerLookParam& param, int32_t width, int32_t height) {
    auto frame = std::make_unique<SizedFrame>(QPX_FORMAT_BGR24, width, height);
    EXPECT_EQ(frame->setUp(GetParam(), param), QPX_OK);
    return frame;
  };
  // Half of both half sides, where half the squares add up to a quarter.
  EXPECT_EQ(sumAt(frameFor({1, 0, 0, 0, 0}, 402, 402)->stage(), 301, 301), 128);
  EXPECT_EQ(sumAt(frameFor({1, 0, 100, 0, 0}, 401, 301)->stage(), 200, 150), 128);
  EXPECT_NEAR(sumAt(frameFor({1, 0, -100, 0, 0}, 402, 301)->stage(), 401, 150), 128, 4);
  // A shift by 100 percent puts the clear middle on the edge.
  const auto shifted = frameFor({1, 0, 0, 100, -100}, 300, 200);
  for (int32_t x = 1; x < 300; ++x) {
    ASSERT_LE(columnTerm(shifted->stage(), x), columnTerm(shifted->stage(), x - 1));
  }
  for (int32_t y = 1; y < 200; ++y) {
    ASSERT_GE(rowTerm(shifted->stage(), y), rowTerm(shifted->stage(), y - 1));
  }
}

TEST_P(Corners, PicturesOfOnePixelAreClearAndEmptyOnesHaveNoTerms) {
  SizedFrame one(QPX_FORMAT_BGR24, 1, 1);
  ASSERT_EQ(one.setUp(GetParam(), QPXCornerLookParam{1, 100, -100, 0, 0}), QPX_OK);
  EXPECT_LT(sumAt(one.stage(), 0, 0), 129);
  SizedFrame none(QPX_FORMAT_BGR24, -4, 0);
  ASSERT_EQ(none.setUp(GetParam(), QPXCornerLookParam{}), QPX_OK);
  EXPECT_EQ(none.stage().lutSize, 4u + 3 * 256);
}

INSTANTIATE_TEST_SUITE_P(Looks, Corners, ::testing::ValuesIn(kCornerLooks));

TEST(NativeLookSetup, SizesThatNoBlockHoldsAnswerFour) {
  for (const uint32_t id : {0x5E00u, 0x6200u, 0x6700u}) {
    SizedFrame frame(QPX_FORMAT_BGR24, INT32_MAX, INT32_MAX);
    EXPECT_EQ(frame.setUp(id, QPXCornerLookParam{}), QPX_NO_MEMORY);
    EXPECT_EQ(frame.stage().lut, nullptr);
  }
}

// A mode keeps its meaning in every look but one.
TEST(NativeLookSetup, DeepQuietDoesNothingInModesItDoesNotKnow) {
  for (const int32_t mode : {-1, 2, 1000}) {
    for (const uint32_t format : {QPX_FORMAT_BGR24, QPX_FORMAT_NV21, QPX_FORMAT_I420}) {
      Picture in(format, 16, 16, Placement::exact);
      in.paint(1);
      Picture out(format, 16, 16, Placement::guarded);
      const Picture before(out);
      SizedFrame frame(format, 16, 16);
      ASSERT_EQ(frame.setUp(0x6000, QPXCornerLookParam{mode, 0, 0, 0, 0}), QPX_OK);
      EXPECT_EQ(frame.run(in, out, wholeOf(in)), QPX_OK);
      EXPECT_FALSE(before.firstDifference(out));
    }
  }
}

TEST(NativeLookSetup, ModeOneAloneDarkensCorners) {
  for (const uint32_t id : {0x5E00u, 0x5F00u, 0x6000u, 0x6400u}) {
    const auto cornerOf = [&](int32_t mode) {
      Picture in(QPX_FORMAT_BGR24, 40, 40, Placement::exact);
      in.fill(200);
      Picture out(in);
      SizedFrame frame(QPX_FORMAT_BGR24, 40, 40);
      EXPECT_EQ(frame.setUp(id, QPXCornerLookParam{mode, 0, 0, 0, 0}), QPX_OK);
      EXPECT_EQ(frame.run(in, out, wholeOf(in)), QPX_OK);
      EXPECT_EQ(out.rgb(20, 20), out.rgb(19, 19));
      return out.rgb(0, 0).g - out.rgb(20, 20).g;
    };
    EXPECT_EQ(cornerOf(0), 0) << id;
    EXPECT_LT(cornerOf(1), -40) << id;
  }
}

// The picture of a grey ramp that a look makes of it, without dark corners.
std::vector<Rgb> rampThrough(uint32_t id) {
  Picture in(QPX_FORMAT_RGB24, 256, 1, Placement::exact);
  const MBitmap bitmap = in.bitmap();
  for (int i = 0; i < 256; ++i) std::memset(bitmap.plane[0] + 3 * i, i, 3);
  Picture out(in);
  SizedFrame frame(QPX_FORMAT_RGB24, 256, 1);
  const bool corners = id >= 0x5E00 && id <= 0x6400;
  EXPECT_EQ(frame.setUp(id, QPXCornerLookParam{0, corners ? -100 : 0, 0, 0, 0}), QPX_OK);
  EXPECT_EQ(frame.run(in, out, wholeOf(in)), QPX_OK);
  std::vector<Rgb> ramp;
  for (int i = 0; i < 256; ++i) {
    const auto pixel = out.rgb(i, 0);
    ramp.push_back({pixel.r, pixel.g, pixel.b});
  }
  return ramp;
}

// Steps behind one another that all round down may take one back.
bool mayTakeOneBack(uint32_t id) {
  return id == 0x5B00 || id == 0x6200 || id == 0x6E00 || id == 0xC000;
}

TEST(NativeLookSetup, GreysKeepTheirOrderInSmallSteps) {
  for (const uint32_t id : kLooks) {
    if (id == 0x6700) continue;  // it changes along the ramp by itself
    const std::vector<Rgb> ramp = rampThrough(id);
    for (size_t i = 1; i < ramp.size(); ++i) {
      const int steps[3] = {ramp[i].r - ramp[i - 1].r, ramp[i].g - ramp[i - 1].g,
                            ramp[i].b - ramp[i - 1].b};
      for (const int step : steps) {
        ASSERT_GE(step, mayTakeOneBack(id) ? -1 : 0) << std::hex << id << std::dec << " at " << i;
        ASSERT_LE(step, 4) << std::hex << id << std::dec << " at " << i;
      }
    }
    EXPECT_GT(ramp[255].g - ramp[0].g, 150) << std::hex << id;
  }
}

TEST(NativeLookSetup, LooksAreDistinct) {
  std::vector<std::vector<Rgb>> ramps;
  for (const uint32_t id : kLooks) {
    if (id != 0x6700 && id != 0x1900) ramps.push_back(rampThrough(id));
  }
  for (size_t a = 0; a < ramps.size(); ++a) {
    for (size_t b = a + 1; b < ramps.size(); ++b) {
      int distance = 0;
      for (size_t i = 0; i < 256; ++i) {
        distance += std::abs(ramps[a][i].r - ramps[b][i].r) +
                    std::abs(ramps[a][i].g - ramps[b][i].g) +
                    std::abs(ramps[a][i].b - ramps[b][i].b);
      }
      EXPECT_GT(distance / 256, 10) << "looks " << a << " and " << b;
    }
  }
}

TEST(NativeLookSetup, BlackAndWhitePicturesAreGrey) {
  for (const uint32_t id : {0x6400u, 0x6A00u, 0xBF00u}) {
    for (const Rgb& c : rampThrough(id)) {
      ASSERT_EQ(c.r, c.g);
      ASSERT_EQ(c.g, c.b);
    }
  }
  for (const uint32_t format : {QPX_FORMAT_NV21, QPX_FORMAT_YUYV}) {
    Picture in(format, 31, 9, Placement::exact);
    in.paint(4);
    Picture out(in);
    SizedFrame frame(format, 31, 9);
    ASSERT_EQ(frame.setUp(0xBF00), QPX_OK);
    ASSERT_EQ(frame.run(in, out, wholeOf(in)), QPX_OK);
    for (int32_t x = 0; x < 31; ++x) {
      ASSERT_EQ(out.yuv(1, x, 3), 128);
      ASSERT_EQ(out.yuv(2, x, 3), 128);
    }
  }
}

TEST(NativeLookSetup, CurveBrightnessIsNeutralAtZeroAndKeepsBlackAndWhite) {
  const auto tableOf = [](int32_t brightness) {
    KernelFrame frame(QPX_FORMAT_BGR24);
    EXPECT_EQ(frame.setUp(0x6A00, QPXCurveBrightnessParam{brightness}), QPX_OK);
    return std::vector<int>(frame.stage().lut, frame.stage().lut + 256);
  };
  for (int i = 0; i < 256; ++i) ASSERT_EQ(tableOf(0)[static_cast<size_t>(i)], i);
  for (const int32_t brightness : {-100, -30, 30, 100}) {
    EXPECT_EQ(tableOf(brightness)[0], 0);
    EXPECT_EQ(tableOf(brightness)[255], 255);
  }
  EXPECT_EQ(tableOf(100)[128], 192);  // 255 * 300 * 128 / (300 * 128 + 100 * 127) = 191.62
  EXPECT_EQ(tableOf(-100)[128], 64);  // 255 * 128 / (128 + 300 * 127 / 100) = 64.13
  EXPECT_EQ(tableOf(5000), tableOf(100));
}

TEST(NativeLookSetup, SingleColorKeepsLumaAndTakesItsEndsAsAsked) {
  const auto toned = [](const QPXSingleColorParam& param, size_t grey) {
    KernelFrame frame(QPX_FORMAT_BGR24);
    EXPECT_EQ(frame.setUp(0x5800, param), QPX_OK);
    const uint8_t* lut = frame.stage().lut;
    return Rgb{lut[grey], lut[256 + grey], lut[512 + grey]};
  };
  const QPXSingleColorParam brown = {150, 110, 80, 0, 0, 0, 0};
  for (size_t grey = 0; grey < 256; ++grey) {
    const Rgb c = toned(brown, grey);
    const int luma = (77 * c.r + 150 * c.g + 29 * c.b + 128) >> 8;
    EXPECT_NEAR(luma, static_cast<int>(grey), 2);
  }
  const Rgb black = toned(brown, 0), white = toned(brown, 255);
  EXPECT_EQ(black.r + black.g + black.b, 0);
  EXPECT_EQ(white.r + white.g + white.b, 765);
  EXPECT_GT(toned({150, 110, 80, 0, 50, 0, 0}, 0).r, 8);
  EXPECT_LT(toned({150, 110, 80, 0, 0, 50, 0}, 255).b, 245);
  const Rgb faded = toned({150, 110, 80, 100, 0, 0, 0}, 99);
  EXPECT_TRUE(faded.r == 99 && faded.g == 99 && faded.b == 99);
  EXPECT_LT(toned({150, 110, 80, 100, 0, 0, 100}, 64).g, 60);
  const Rgb overFaded = toned({150, 110, 80, 255, 0, 0, 0}, 99);
  EXPECT_TRUE(overFaded.r == 99 && overFaded.g == 99 && overFaded.b == 99);
  const Rgb house = toned({}, 128);
  EXPECT_GT(house.b, house.r + 60);
}

TEST(NativeLookSetup, GradientRunsFromTheLastCornerToTheOrigin) {
  for (const auto& [width, height] : {std::pair{300, 200}, {7, 91}, {8000, 3}, {1, 9}, {2, 2}}) {
    SizedFrame frame(QPX_FORMAT_BGR24, width, height);
    ASSERT_EQ(frame.setUp(0x6700, QPXColorGradientParam{0}), QPX_OK);
    const Stage& stage = frame.stage();
    EXPECT_EQ(diagonalPlace(stage, 0, 0), 255);
    EXPECT_EQ(diagonalPlace(stage, width - 1, height - 1), 0);
    for (int32_t x = 1; x < width; ++x) {
      ASSERT_LE(diagonalPlace(stage, x, 0), diagonalPlace(stage, x - 1, 0));
    }
  }
  SizedFrame square(QPX_FORMAT_BGR24, 101, 101);
  ASSERT_EQ(square.setUp(0x6700, QPXColorGradientParam{0}), QPX_OK);
  for (int32_t i = 0; i <= 100; ++i) {
    EXPECT_EQ(diagonalPlace(square.stage(), i, 100 - i), 127) << "across the diagonal";
  }
  SizedFrame pixel(QPX_FORMAT_BGR24, 1, 1);
  ASSERT_EQ(pixel.setUp(0x6700, QPXColorGradientParam{0}), QPX_OK);
  EXPECT_EQ(diagonalPlace(pixel.stage(), 0, 0), 0);
}

TEST(NativeLookSetup, GradientColorsTurnRoundTheCircle) {
  const auto castAtOrigin = [](int32_t hue) {
    KernelFrame frame(QPX_FORMAT_BGR24);
    EXPECT_EQ(frame.setUp(0x6700, QPXColorGradientParam{hue}), QPX_OK);
    const uint8_t* lut = frame.stage().lut;
    return Rgb{lut[255], lut[511], lut[767]};
  };
  const Rgb warm = castAtOrigin(0), third = castAtOrigin(120);
  EXPECT_GT(warm.r, warm.b + 40);
  EXPECT_NEAR(third.g, warm.r, 1);
  EXPECT_NEAR(third.b, warm.g, 1);
  EXPECT_NEAR(third.r, warm.b, 1);
}

TEST(NativeLookSetup, FilmTakesItsUsualGainsForZero) {
  const auto gains = [](int32_t green, int32_t blue) {
    KernelFrame frame(QPX_FORMAT_BGR24);
    EXPECT_EQ(frame.setUp(0x6E00, QPXReversalFilmParam{green, blue, 0, 0, 0}), QPX_OK);
    const auto& made = record<QPXReversalFilmParam>(frame.stage());
    return std::pair{made.greenGain, made.blueGain};
  };
  EXPECT_EQ(gains(0, 0), (std::pair{234, 234}));
  EXPECT_EQ(gains(300, 150), (std::pair{300, 150}));
  EXPECT_EQ(gains(-9, 9999), (std::pair{128, 384}));
}

TEST(NativeLookSetup, FailingAllocationsAnswerFour) {
  for (const uint32_t id : kLooks) {
    if (findEffect(id)->setup == nullptr) continue;
    const int64_t failed = FailingMemory::forEachFailure(false, [&] {
      SizedFrame frame(QPX_FORMAT_BGR24, 20, 10);
      const int32_t result = frame.setUp(id, QPXCornerLookParam{});
      EXPECT_EQ(result, FailingMemory::failures() > 0 ? QPX_NO_MEMORY : QPX_OK) << std::hex << id;
    });
    EXPECT_GT(failed, 0) << std::hex << id;
  }
  FailingMemory::reset();
}

// By hand, from 50, 200, 100.
TEST(NativeLookSetup, SepiaSortsTheChannels) {
  Picture in(QPX_FORMAT_RGB24, 1, 1, Placement::exact);
  const uint8_t color[3] = {50, 200, 100};
  std::memcpy(in.bitmap().plane[0], color, 3);
  Picture out(in);
  SizedFrame frame(QPX_FORMAT_RGB24, 1, 1);
  ASSERT_EQ(frame.setUp(0x1900), QPX_OK);
  ASSERT_EQ(frame.run(in, out, wholeOf(in)), QPX_OK);
  EXPECT_EQ(out.rgb(0, 0).r, 200);
  EXPECT_EQ(out.rgb(0, 0).g, 84);  // (197 * 50 + 59 * 200) / 256 = 84.57
  EXPECT_EQ(out.rgb(0, 0).b, 50);
}

// What the film's record makes of its tables: the tone at 0, light of red at 256, of blue at 768.
TEST(ReversalFilm, ParametersMoveItsCurves) {
  const auto tableOf = [](const QPXReversalFilmParam& param, size_t at) {
    SizedFrame frame(QPX_FORMAT_BGR24, 8, 8);
    EXPECT_EQ(frame.setUp(0x6E00, param), QPX_OK);
    return std::vector<uint8_t>(frame.stage().lut + at, frame.stage().lut + at + 256);
  };
  const std::vector<uint8_t> straight = tableOf({0, 0, 0, -100, 0}, 0);
  for (size_t i = 0; i < 256; ++i) ASSERT_EQ(straight[i], i);
  const std::vector<uint8_t> film = tableOf({}, 0);
  EXPECT_EQ(film[64], 52);
  EXPECT_EQ(film[192], 208);
  EXPECT_EQ(tableOf({0, 0, 0, 100, 0}, 0)[64], 40) << "twice the film's lean";
  EXPECT_EQ(tableOf({0, 0, 100, -100, 0}, 0)[128],
            170);  // 255 * 200 * 128 / (200 * 128 + 100 * 127)
  EXPECT_EQ(tableOf({0, 0, -100, -100, 0}, 0)[127], 85);

  const std::vector<uint8_t> red = tableOf({}, 256), blue = tableOf({}, 768);
  const std::vector<uint8_t> warmRed = tableOf({0, 0, 0, 0, 100}, 256);
  const std::vector<uint8_t> warmBlue = tableOf({0, 0, 0, 0, 100}, 768);
  const std::vector<uint8_t> coolRed = tableOf({0, 0, 0, 0, -100}, 256);
  for (size_t i = 0; i < 256; ++i) {
    ASSERT_EQ(warmRed[i], std::min(red[i] + 24, 255));
    ASSERT_EQ(warmBlue[i], std::max(blue[i] - 40, 0));
    ASSERT_EQ(coolRed[i], std::max(red[i] - 24, 0));
  }
}

// By hand: at full contrast a quarter falls to three sixteenths. Three tables of 256.
TEST(SingleColor, ContrastIsAnS) {
  SizedFrame frame(QPX_FORMAT_BGR24, 8, 8);
  ASSERT_EQ(frame.setUp(0x5800, QPXSingleColorParam{0, 0, 0, 100, 0, 0, 100}), QPX_OK);
  for (size_t channel = 0; channel < 3; ++channel) {
    const uint8_t* table = frame.stage().lut + 256 * channel;
    EXPECT_EQ(table[64], 48);
    EXPECT_EQ(table[191], 207);
    EXPECT_EQ(table[0], 0);
    EXPECT_EQ(table[255], 255);
  }
}

}  // namespace
}  // namespace qpx
