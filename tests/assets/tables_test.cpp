#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "files.h"

namespace qpx {
namespace {

struct TableRow {
  const char* name;
  size_t bytes;
};

TEST(Tables, AreTheListedOnesWithTheListedLengths) {
  constexpr TableRow kRows[] = {{"LightLeakTexture", 786432},
                                {"textureData2", 32784},
                                {"textureData3", 3072},
                                {"textureData4", 3840},
                                {"textureData8", 1024},
                                {"textureData9", 1024},
                                {"textureData10", 3072},
                                {"textureData12", 3072},
                                {"rixi_b", 256},
                                {"rixi_g", 256},
                                {"rixi_r", 256},
                                {"fleet_b", 65536},
                                {"fleet_g", 65536},
                                {"fleet_r", 65536},
                                {"softpink_b", 65536},
                                {"softpink_g", 65536},
                                {"softpink_r", 65536},
                                {"rixi_data", 768},
                                {"pink_mask3", 1024},
                                {"pink_mask2", 65536},
                                {"softlight_data", 768},
                                {"village_data", 768},
                                {"lomo_mask2", 1024},
                                {"reversal_data", 768},
                                {"fleet_data3", 65536},
                                {"fleet_data2", 2304}};
  EXPECT_EQ(assetNames("tables").size(), std::size(kRows));
  for (const TableRow& row : kRows) {
    EXPECT_EQ(assetBytes(std::string("tables/") + row.name + ".bin").size(), row.bytes) << row.name;
  }
}

TEST(Tables, CompressedTextureHasAPkmHeader) {
  const std::vector<uint8_t> bytes = assetBytes("tables/textureData2.bin");
  ASSERT_EQ(bytes.size(), 32784u);
  EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + 6), "PKM 10");
  EXPECT_EQ(bigEndian(bytes, 6, 2), 0u) << "ETC1 without mipmaps";
  for (size_t at = 8; at < 16; at += 2) {
    EXPECT_EQ(bigEndian(bytes, at, 2), 256u);
  }
}

// A sample of an ETC1 picture 256 wide, straight from the published layout.
int etc1Sample(const std::vector<uint8_t>& bytes, int x, int y, int channel) {
  constexpr int kOffsets[8][2] = {{2, 8},   {5, 17},  {9, 29},   {13, 42},
                                  {18, 60}, {24, 80}, {33, 106}, {47, 183}};
  const size_t block = 16 + 8 * static_cast<size_t>(y / 4 * 64 + x / 4);
  const int base = bytes[block + static_cast<size_t>(channel)];
  const int modes = bytes[block + 3];
  const bool flipped = (modes & 1) != 0;
  const bool second = flipped ? y % 4 >= 2 : x % 4 >= 2;
  int level = second ? (base & 15) * 17 : (base >> 4) * 17;
  if ((modes & 2) != 0) {
    const int step = (base & 7) >= 4 ? (base & 7) - 8 : base & 7;
    const int five = (base >> 3) + (second ? step : 0);
    level = five << 3 | five >> 2;
  }
  const int table = second ? modes >> 2 & 7 : modes >> 5;
  const uint32_t low = bigEndian(bytes, block + 4, 4);
  const int pixel = x % 4 * 4 + y % 4;
  const int offset = kOffsets[table][low >> pixel & 1];
  return std::clamp(level + ((low >> (16 + pixel) & 1) != 0 ? -offset : offset), 0, 255);
}

TEST(Tables, CompressedTextureIsASoftLightTable) {
  const std::vector<uint8_t> bytes = assetBytes("tables/textureData2.bin");
  ASSERT_EQ(bytes.size(), 32784u);
  int farthest = 0;
  for (int base = 0; base < 256; ++base) {
    for (int top = 0; top < 256; ++top) {
      const double b = base / 255.0;
      const double d = 2 * (top / 255.0) - 1;
      const double soft = d < 0 ? b + d * (b - b * b) : b + d * (std::sqrt(b) - b);
      farthest = std::max(
          farthest, std::abs(etc1Sample(bytes, top, base, 1) - static_cast<int>(soft * 255 + 0.5)));
    }
  }
  // Eight pixels of a slope share four offsets, and so do the three channels.
  EXPECT_LE(farthest, 5);
}

TEST(Tables, CurvesOfTheLooksNeverFall) {
  for (const char* name : {"textureData3", "textureData8", "textureData10", "textureData12"}) {
    const std::vector<uint8_t> bytes = assetBytes(std::string("tables/") + name + ".bin");
    ASSERT_FALSE(bytes.empty()) << name;
    for (size_t i = 4; i < bytes.size(); ++i) {
      if (i % 1024 >= 4) {
        EXPECT_GE(bytes[i], bytes[i - 4]) << name << " at " << i;
      }
    }
  }
}

std::vector<uint8_t> table(const std::string& name) {
  return assetBytes("tables/" + name + ".bin");
}

// Places of the colours in an entry of a curve.
enum Lane { kBlue, kGreen, kRed };
constexpr Lane kLanes[] = {kBlue, kGreen, kRed};
constexpr char kLetters[] = {'b', 'g', 'r'};

// 256 samples of a table, the first at `from` and each `stride` bytes behind the one before.
std::vector<int> samples(const std::vector<uint8_t>& bytes, size_t from, size_t stride) {
  std::vector<int> picked;
  for (size_t i = 0; i < 256; ++i) picked.push_back(bytes.at(from + i * stride));
  return picked;
}

void expectTone(const std::vector<int>& tone, int largestStep, const std::string& name) {
  for (size_t i = 1; i < 256; ++i) {
    EXPECT_GE(tone[i], tone[i - 1]) << name << " at " << i;
    EXPECT_LE(tone[i], tone[i - 1] + largestStep) << name << " at " << i;
  }
  EXPECT_GT(tone[255] - tone[0], 150) << name;
}

TEST(Tables, ToneCurvesRiseInSmallSteps) {
  for (const char* name : {"village_data", "rixi_data", "softlight_data"}) {
    for (const Lane lane : kLanes) expectTone(samples(table(name), lane, 3), 2, name);
  }
  for (const Lane lane : kLanes) expectTone(samples(table("reversal_data"), lane, 3), 4, "slide");
  for (size_t byte = 0; byte < 3; ++byte) {
    expectTone(samples(table("lomo_mask2"), byte, 4), 2, "lomo_mask2");
    expectTone(samples(table("pink_mask3"), byte, 4), 2, "pink_mask3");
    expectTone(samples(table("fleet_data2"), 768 * byte + 2 - byte, 3), 2, "fleet_data2");
  }
}

TEST(Tables, EntriesOfFourBytesEndWith255) {
  const std::vector<uint8_t> grey = table("lomo_mask2"), pink = table("pink_mask3");
  for (size_t i = 0; i < 1024; i += 4) {
    EXPECT_EQ(grey.at(i), grey.at(i + 1));
    EXPECT_EQ(grey.at(i), grey.at(i + 2));
    EXPECT_EQ(grey.at(i + 3), 255);
    EXPECT_EQ(pink.at(i + 3), 255);
  }
  EXPECT_GT(pink.at(4 * 128), pink.at(4 * 128 + 2)) << "red comes first";
  EXPECT_GT(pink.at(4 * 128 + 2), pink.at(4 * 128 + 1)) << "green second";
}

// Where the film does not clip, its curves are those that the closed forms of its reverse turn
// round: to the half level that they round, and up to 4 levels where toe and shoulder begin.
TEST(Tables, SlideFilmIsTheInverseOfItsClosedForms) {
  const std::vector<uint8_t> film = table("reversal_data");
  const auto blue = [](int v) { return v <= 53 ? 0 : (144 * v * v + 13235 * v - 1127059) >> 15; };
  const auto green = [](int v) { return (102 * v * v + 6947 * v + 814583) >> 15; };
  const auto red = [](int v) { return (59 * v * v + 5266 * v + 1974940) >> 15; };
  const std::function<int(int)> before[] = {blue, green, red};
  constexpr int kDarkest[] = {0, 24, 60}, kLightest[] = {255, 255, 218}, kFarthest[] = {1, 3, 4};
  for (const Lane lane : kLanes) {
    double sum = 0;
    for (int v = kDarkest[lane]; v <= kLightest[lane]; ++v) {
      const int error = std::abs(before[lane](film.at(3 * static_cast<size_t>(v) + lane)) - v);
      EXPECT_LE(error, kFarthest[lane]) << kLetters[lane] << " at " << v;
      sum += error;
    }
    EXPECT_LT(sum / (kLightest[lane] - kDarkest[lane] + 1), 0.5) << kLetters[lane];
  }
}

TEST(Tables, BlendsRiseWithSampleAndTexel) {
  for (const char* name : {"fleet_data3", "pink_mask2"}) {
    const std::vector<uint8_t> blend = table(name);
    for (size_t i = 0; i < 65536; ++i) {
      ASSERT_GE(blend.at(i), blend[i < 256 ? i : i - 256]) << name << " at " << i;
      ASSERT_GE(blend[i], blend[i % 256 == 0 ? i : i - 1]) << name << " at " << i;
    }
  }
}

TEST(Tables, FleetBlendIsSoftLight) {
  const std::vector<uint8_t> blend = table("fleet_data3");
  for (size_t i = 0; i < 65536; ++i) {
    const double base = static_cast<double>(i / 256) / 255, d = 2.0 * (i % 256) / 255 - 1;
    const double soft = base + d * (d < 0 ? base - base * base : std::sqrt(base) - base);
    ASSERT_NEAR(blend.at(i), 255 * soft, 0.75) << i;
  }
}

using Forward = std::function<int(int)>;

// `before` undoes `forward` both ways: it gives back samples, exactly those that `forward` takes to
// the value asked for. Returns the mean error of the samples.
double expectInverse(const Forward& forward, const Forward& before, int farthest) {
  double sum = 0;
  for (int v = 0; v < 256; ++v) {
    const int error = std::abs(before(forward(v)) - v);
    EXPECT_LE(error, farthest) << "of " << v;
    EXPECT_EQ(forward(before(forward(v))), forward(v)) << "of " << v;
    sum += error;
  }
  for (int after = 1; after < 256; ++after) EXPECT_GE(before(after), before(after - 1));
  return sum / 256;
}

TEST(Tables, RixiCurvesAndTheirInversesUndoOneAnother) {
  const std::vector<uint8_t> curves = table("rixi_data");
  for (const Lane lane : kLanes) {
    const std::vector<uint8_t> inverse = table(std::string("rixi_") + kLetters[lane]);
    const double mean =
        expectInverse([&](int v) { return curves.at(3 * static_cast<size_t>(v) + lane); },
                      [&](int v) { return inverse.at(static_cast<size_t>(v)); }, 1);
    EXPECT_LT(mean, 0.5) << kLetters[lane];
  }
}

size_t cell(int row, int column) { return static_cast<size_t>(row << 8 | column); }

TEST(Tables, FleetTablesUndoTheLook) {
  const std::vector<uint8_t> blend = table("fleet_data3"), tone = table("fleet_data2");
  for (const Lane lane : kLanes) {
    const std::vector<uint8_t> inverse = table(std::string("fleet_") + kLetters[lane]);
    const size_t block = 768 * (2 - static_cast<size_t>(lane));
    for (int texel = 0; texel < 256; texel += 5) {
      SCOPED_TRACE(texel);
      const double mean = expectInverse(
          [&](int v) { return tone.at(block + 3 * size_t{blend.at(cell(v, texel))} + lane); },
          [&](int v) { return inverse.at(cell(v, texel)); }, 8);
      EXPECT_LT(mean, 1) << kLetters[lane];
    }
  }
}

// At full strengths, with what their mixes cut.
TEST(Tables, SoftPinkTablesUndoTheLook) {
  const std::vector<uint8_t> curves = table("softlight_data"), blend = table("pink_mask2"),
                             tone = table("pink_mask3");
  const auto full = [](int v) { return (100 * v * 327) >> 15; };
  for (const Lane lane : kLanes) {
    const std::vector<uint8_t> inverse = table(std::string("softpink_") + kLetters[lane]);
    for (int texel = 0; texel < 256; texel += 5) {
      SCOPED_TRACE(texel);
      const auto look = [&](int v) {
        const int toned = full(curves.at(3 * static_cast<size_t>(v) + lane));
        return full(tone.at(4 * size_t{blend.at(cell(toned, texel))} + 2 - lane));
      };
      const double mean = expectInverse(
          look, [&](int v) { return inverse.at(cell(v, texel)); }, 4);
      EXPECT_LT(mean, 1) << kLetters[lane];
    }
  }
}

}  // namespace
}  // namespace qpx
