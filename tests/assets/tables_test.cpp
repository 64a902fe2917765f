#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "files.h"

namespace qpx {
namespace {

struct TableRow {
  const char* name;
  size_t bytes;
};

TEST(Tables, PicturesAndCurveImagesHaveTheListedLengths) {
  constexpr TableRow kRows[] = {{"LightLeakTexture", 786432}, {"textureData2", 32784},
                                {"textureData3", 3072},       {"textureData4", 3840},
                                {"textureData8", 1024},       {"textureData9", 1024},
                                {"textureData10", 3072},      {"textureData12", 3072}};
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

}  // namespace
}  // namespace qpx
