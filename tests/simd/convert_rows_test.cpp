// Rows of format conversions: vector forms against plain ones at every length, plain forms against
// what they stand for, and what rows leave alone.
#include "simd/convert_rows.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <vector>

#include "simd/row_bytes.h"
#include "simd/target_test.h"

namespace qpx::simd {
namespace {

constexpr ptrdiff_t kMost = 150;

// Noise with full and empty bytes among it.
std::vector<uint8_t> noise(size_t size, uint64_t seed) {
  uint64_t state = seed;
  std::vector<uint8_t> bytes(size);
  for (uint8_t& byte : bytes) {
    const uint32_t random = next(state);
    byte = static_cast<uint8_t>(random);
    if ((random >> 8 & 7) == 0) byte = (random >> 11 & 1) != 0 ? 255 : 0;
  }
  return bytes;
}

class ConvertRowsTest : public TargetTest {
 protected:
  const ConvertRows& vector() const { return vectorForm<ConvertRows>(); }
  const ConvertRows& plain() const { return plainForm<ConvertRows>(); }
};
QPX_FOR_EACH_TARGET(ConvertRowsTest);

// A row from `in` bytes an element to `out`, on buffers that end with the last element.
struct Row {
  const char* name;
  int32_t in;
  int32_t out;
  std::function<void(const ConvertRows&, const uint8_t*, ptrdiff_t, uint8_t*)> run;
  bool inPlace = false;
};

const std::vector<Row>& shuffles() {
  const auto with = [](auto row, bool swap) {
    return [row, swap](const ConvertRows& rows, const uint8_t* src, ptrdiff_t count, uint8_t* dst) {
      (rows.*row)(src, count, swap, dst);
    };
  };
  const auto as = [](auto row) {
    return [row](const ConvertRows& rows, const uint8_t* src, ptrdiff_t count, uint8_t* dst) {
      (rows.*row)(src, count, dst);
    };
  };
  static const std::vector<Row> kRows = {
      {"swapEnds3", 3, 3, as(&ConvertRows::swapEnds3), true},
      {"swapEnds4", 4, 4, as(&ConvertRows::swapEnds4), true},
      {"rgb24To32", 3, 4, with(&ConvertRows::rgb24To32, false)},
      {"rgb24To32, swap", 3, 4, with(&ConvertRows::rgb24To32, true)},
      {"rgb32To24", 4, 3, with(&ConvertRows::rgb32To24, false)},
      {"rgb32To24, swap", 4, 3, with(&ConvertRows::rgb32To24, true)},
      {"rgb24To16", 3, 2, with(&ConvertRows::rgb24To16, false)},
      {"rgb24To16, swap", 3, 2, with(&ConvertRows::rgb24To16, true)},
      {"rgb32To16", 4, 2, with(&ConvertRows::rgb32To16, false)},
      {"rgb32To16, swap", 4, 2, with(&ConvertRows::rgb32To16, true)},
      {"rgb16To24", 2, 3, with(&ConvertRows::rgb16To24, false)},
      {"rgb16To24, swap", 2, 3, with(&ConvertRows::rgb16To24, true)},
      {"swapPairs", 2, 2, as(&ConvertRows::swapPairs), true},
      {"reverse1", 1, 1, as(&ConvertRows::reverse1)},
      {"reverse2", 2, 2, as(&ConvertRows::reverse2)},
      {"reverse3", 3, 3, as(&ConvertRows::reverse3)},
      {"reverse4", 4, 4, as(&ConvertRows::reverse4)},
  };
  return kRows;
}

TEST_P(ConvertRowsTest, ShufflesEqualThePlainFormsAtEveryLength) {
  for (const Row& row : shuffles()) {
    for (ptrdiff_t count = 0; count <= kMost; count += 1 + count / 70) {
      const std::vector<uint8_t> src = noise(static_cast<size_t>(count * row.in), 7);
      std::vector<uint8_t> expected = noise(static_cast<size_t>(count * row.out + 8), 8);
      std::vector<uint8_t> made = expected;
      row.run(plain(), src.data(), count, expected.data());
      row.run(vector(), src.data(), count, made.data());
      ASSERT_EQ(expected, made) << row.name << ", " << count;
      if (!row.inPlace) continue;
      std::vector<uint8_t> both = src;
      row.run(vector(), both.data(), count, both.data());
      ASSERT_TRUE(std::equal(both.begin(), both.end(), made.begin())) << row.name << ", " << count;
    }
  }
}

struct Turn {
  int32_t bytes;
  decltype(ConvertRows::transpose1) ConvertRows::*row;
};
constexpr Turn kTurns[] = {{1, &ConvertRows::transpose1},
                           {2, &ConvertRows::transpose2},
                           {3, &ConvertRows::transpose3},
                           {4, &ConvertRows::transpose4}};

TEST_P(ConvertRowsTest, TurnsExchangeRowsAndColumns) {
  uint64_t state = 5;
  for (const Turn& turn : kTurns) {
    for (int i = 0; i < 150; ++i) {
      const ptrdiff_t columns = next(state) % 70, rows = next(state) % 35;
      const ptrdiff_t srcPitch = columns * turn.bytes + next(state) % 3;
      const ptrdiff_t dstPitch = rows * turn.bytes + next(state) % 3;
      const std::vector<uint8_t> src = noise(static_cast<size_t>(srcPitch * rows), 9);
      std::vector<uint8_t> expected = noise(static_cast<size_t>(dstPitch * columns), 10);
      std::vector<uint8_t> made = expected;
      for (ptrdiff_t y = 0; y < rows; ++y) {
        for (ptrdiff_t x = 0; x < columns; ++x) {
          for (int32_t b = 0; b < turn.bytes; ++b) {
            expected[static_cast<size_t>(x * dstPitch + y * turn.bytes + b)] =
                src[static_cast<size_t>((rows - 1 - y) * srcPitch + x * turn.bytes + b)];
          }
        }
      }
      // From the last row up.
      if (rows > 0) {
        (vector().*turn.row)(src.data() + (rows - 1) * srcPitch, -srcPitch, columns, rows,
                             made.data(), dstPitch);
      }
      ASSERT_EQ(expected, made) << turn.bytes << " bytes, " << columns << "x" << rows;
    }
  }
}

// Tables from straight lines, as those of a conversion are, steep enough to leave 0..255.
struct Tables {
  Tables(int32_t luma, int32_t chroma, int32_t greenBias) {
    rgb.blueU = {(512 << 16) - 128 * chroma, chroma};
    rgb.redV = {(512 << 16) - 128 * chroma / 3 * 2, chroma / 3 * 2};
    rgb.greenU = -chroma / 4;
    rgb.greenV = {(greenBias << 16) + 128 * (chroma / 4 + chroma / 3), -chroma / 3};
    rgb.greenBias = greenBias;
    for (int32_t i = 0; i < 256; ++i) {
      y[i] = static_cast<uint32_t>(i * luma) << 4;
      u[i] = (static_cast<uint32_t>((i * rgb.greenU) >> 12) & 0xFFFF) |
             static_cast<uint32_t>((rgb.blueU.base + i * rgb.blueU.slope) >> 12) << 16;
      v[i] = static_cast<uint32_t>((rgb.redV.base + i * rgb.redV.slope) >> 12) << 16 |
             (static_cast<uint32_t>((rgb.greenV.base + i * rgb.greenV.slope) >> 12) & 0xFFFF);
    }
    rgb.luma = y;
    rgb.blue = u;
    rgb.red = v;
  }
  Tables(const Tables&) = delete;
  Tables& operator=(const Tables&) = delete;

  uint32_t y[256], u[256], v[256];
  YuvToRgb rgb = {};
};

TEST_P(ConvertRowsTest, ColoursEqualThePlainFormsAtEveryLength) {
  for (const int32_t steepness : {1, 3}) {
    const Tables wide(76605 * steepness, 132796 * steepness, 512);
    const Tables narrow(76605 * steepness, 132796 * steepness, 1152);
    for (ptrdiff_t count = 0; count <= kMost; count += 1 + count / 30) {
      for (const int how : {0, 1, 2, 3}) {
        const bool halved = (how & 1) != 0, redFirst = (how & 2) != 0;
        const auto size = static_cast<size_t>(count);
        const size_t cells = halved ? (size + 1) / 2 : size;
        const std::vector<uint8_t> y = noise(size, 1), u = noise(cells, 2), v = noise(cells, 3);
        YuvRow row = {{y.data(), nullptr}, u.data(), v.data(), halved};
        const auto expectSame = [&](size_t bytes, const auto& run) {
          std::vector<uint8_t> expected = noise(size * bytes + 8, 4), made = expected;
          row.dst[0] = expected.data();
          run(plain());
          row.dst[0] = made.data();
          run(vector());
          ASSERT_EQ(expected, made) << bytes << " bytes, " << count << ", how " << how;
        };
        expectSame(2, [&](const ConvertRows& rows) {
          rows.yuvToRgb16(&row, 1, count, narrow.rgb, redFirst);
        });
        expectSame(3, [&](const ConvertRows& rows) {
          rows.yuvToRgb24(&row, 1, count, wide.rgb, redFirst);
        });
        expectSame(4, [&](const ConvertRows& rows) {
          rows.yuvToRgb32(&row, 1, count, wide.rgb, redFirst, 77);
        });
      }
    }
  }
}

TEST(ConvertRows, PlainShufflesByHand) {
  const ConvertRows& rows = plainForm<ConvertRows>();
  const uint8_t bgr[3] = {0xFF, 0x24, 0x81};
  uint8_t word[2], back[3], wide[4] = {1, 2, 3, 4};
  rows.rgb24To16(bgr, 1, false, word);  // 10000 001001 11111
  EXPECT_EQ(0x3F, word[0]);
  EXPECT_EQ(0x81, word[1]);
  rows.rgb16To24(word, 1, false, back);
  EXPECT_EQ(0xF8, back[0]);
  EXPECT_EQ(0x24, back[1]);
  EXPECT_EQ(0x80, back[2]);
  rows.rgb24To32(bgr, 1, true, wide);
  EXPECT_EQ(0x81, wide[0]);
  EXPECT_EQ(0xFF, wide[2]);
  EXPECT_EQ(4, wide[3]);
}

}  // namespace
}  // namespace qpx::simd
