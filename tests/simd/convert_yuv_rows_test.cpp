// Pixels out of YUV by table lines: vector forms against plain ones, which look the tables up, over
// colour spaces, contrasts, lengths and all pairs of luma and chroma.
#include <random>
#include <utility>
#include <vector>

#include "simd/convert_rows.h"
#include "simd/row_bytes.h"
#include "simd/target_test.h"

namespace qpx::simd {
namespace {

// Tables as YuvToRgb says that they are made.
class Tables {
 public:
  Tables(int32_t luma, YuvToRgb::Line blueU, int32_t greenU, YuvToRgb::Line redV,
         YuvToRgb::Line greenV, int32_t greenBias)
      : y_(256), u_(256), v_(256) {
    for (uint32_t i = 0; i < 256; ++i) {
      y_[i] = i * static_cast<uint32_t>(luma) * 16;
      u_[i] = word(blueU, i) << 16 | (word({0, greenU}, i) & 0xFFFF);
      v_[i] = word(redV, i) << 16 | (word(greenV, i) & 0xFFFF);
    }
    tables = {y_.data(), u_.data(), v_.data(), greenBias, blueU, greenU, redV, greenV};
  }

  Tables(Tables&&) = default;

  YuvToRgb tables;

 private:
  static uint32_t word(YuvToRgb::Line line, uint32_t i) {
    const uint32_t sum = static_cast<uint32_t>(line.base) + i * static_cast<uint32_t>(line.slope);
    return static_cast<uint32_t>(static_cast<int32_t>(sum) >> 12);
  }

  std::vector<uint32_t> y_, u_, v_;
};

constexpr int32_t kBias = 512 << 16;
constexpr int32_t kBias6 = 1152 << 16;

std::vector<Tables> tablesOfAllKinds() {
  std::vector<Tables> all;
  all.push_back(Tables(65536, {kBias - 14864613 + 32768, 116130}, -22554,
                       {kBias - 11760828 + 32768, 91881}, {kBias + 8877496 + 65536, -46802}, 512));
  all.push_back(Tables(76605, {kBias - 18223517 + 32768, 132796}, -25788,
                       {kBias - 14671780 + 32768, 105048}, {kBias + 8924535 + 65536, -53510}, 512));
  all.push_back(Tables(76605, {kBias - 18223517 + 32768, 132796}, -25788,
                       {kBias - 14671780 + 32768, 105048}, {kBias6 + 8924535 + 65536, -53510},
                       1152));
  // Strong contrast and saturation: sums run over their 12 bits.
  all.push_back(Tables(229815, {kBias - 190000000, 1195164}, -232092, {kBias - 140000000, 945432},
                       {kBias + 80000000, -481590}, 512));
  // Green alone runs over, beside sums that fit.
  for (const int32_t luma : {65536, 76605}) {
    all.push_back(Tables(luma, {kBias - 14864613, 116130}, 400000, {kBias - 11760828, 91881},
                         {kBias, 400000}, 512));
    all.push_back(Tables(luma, {kBias - 14864613, 116130}, -400000, {kBias - 11760828, 91881},
                         {kBias, -400000}, 512));
  }
  std::mt19937 random(3);
  for (int32_t k = 0; k < 6; ++k) {
    const auto any = [&] { return static_cast<int32_t>(random()); };
    all.push_back(Tables(any() & 0x3FFFF, {any(), any() >> 10}, any() >> 10, {any(), any() >> 10},
                         {any(), any() >> 10}, k % 2 == 0 ? 512 : 1152));
  }
  return all;
}

class ConvertYuvRowsTest : public TargetTest {};
QPX_FOR_EACH_TARGET(ConvertYuvRowsTest);

// Two rows, of as many lines as the first of them, each with a byte behind it that stays.
template <typename Convert>
void expectSameLines(ptrdiff_t bytes, const YuvRow& row, const Convert& convert) {
  const auto pitch = static_cast<size_t>(bytes) + 1;
  const Bytes noise(4 * pitch, 0xA5);
  const auto made = [&](const ConvertRows& forms) {
    Bytes pixels = noise;
    YuvRow rows[2] = {row, row};
    for (size_t line = 0; line < 4; ++line) rows[line / 2].dst[line % 2] = &pixels[line * pitch];
    if (row.lumaStep == 1) std::swap(rows[1].luma[0], rows[1].luma[row.lines() - 1]);
    convert(forms, rows);
    return pixels;
  };
  const Bytes plain = made(plainForm<ConvertRows>());
  ASSERT_EQ(plain, made(vectorForm<ConvertRows>()));
  for (size_t end = pitch - 1; end < noise.size(); end += pitch) ASSERT_EQ(noise[end], plain[end]);
}

void expectSamePixels(const YuvRow& row, ptrdiff_t pixels, const YuvToRgb& tables) {
  for (const bool redFirst : {false, true}) {
    expectSameLines(3 * pixels, row, [&](const ConvertRows& forms, const YuvRow* rows) {
      forms.yuvToRgb24(rows, 2, pixels, tables, redFirst);
    });
    expectSameLines(4 * pixels, row, [&](const ConvertRows& forms, const YuvRow* rows) {
      forms.yuvToRgb32(rows, 2, pixels, tables, redFirst, 99);
    });
    expectSameLines(2 * pixels, row, [&](const ConvertRows& forms, const YuvRow* rows) {
      forms.yuvToRgb16(rows, 2, pixels, tables, redFirst);
    });
  }
}

// The ways in which samples lie, in buffers that end with the last of them.
struct Samples {
  Samples(ptrdiff_t pixels, int32_t shape, int32_t lines)
      : luma{randomBytes(sizeOf(pixels, shape), 1), randomBytes(sizeOf(pixels, shape), 2)},
        chroma{randomBytes(chromaSizeOf(pixels, shape), 3),
               randomBytes(chromaSizeOf(pixels, shape), 4)} {
    const uint8_t *const a = luma[0].data(), *const b = lines == 2 ? luma[1].data() : nullptr;
    const uint8_t *const c = chroma[0].data(), *const d = chroma[1].data();
    const auto behind = [](const uint8_t* at, ptrdiff_t offset) {
      return at != nullptr ? at + offset : nullptr;
    };
    const YuvRow shapes[kShapes] = {
        {{a, b}, c, d, false},
        {{a, b}, c, d, true},
        {{a, b}, c, c + 1, true, 1, 2},
        {{a, b}, c + 1, c, true, 1, 2},
        {{a, b}, a + 1, a + 3, true, 2, 4},
        {{a, b}, a + 3, a + 1, true, 2, 4},
        {{a + 1, behind(b, 1)}, a, a + 2, true, 2, 4},
        {{a + 1, behind(b, 1)}, a + 2, a, true, 2, 4},
        {{a, b}, c, c + 1, false, 1, 2},
        {{a, b}, c + 1, c, false, 1, 2},
    };
    row = shapes[shape];
  }
  static constexpr int32_t kShapes = 10;

  Bytes luma[2], chroma[2];
  YuvRow row;

 private:
  static size_t sizeOf(ptrdiff_t pixels, int32_t shape) {
    const bool isGroups = shape >= 4 && shape < 8;
    return static_cast<size_t>(isGroups ? (pixels + 1) / 2 * 4 : pixels);
  }
  static size_t chromaSizeOf(ptrdiff_t pixels, int32_t shape) {
    const ptrdiff_t cells = (pixels + 1) / 2;
    if (shape >= 8) return static_cast<size_t>(2 * pixels);
    return static_cast<size_t>(shape == 0 ? pixels : shape == 1 ? cells : 2 * cells);
  }
};

TEST_P(ConvertYuvRowsTest, EveryLengthAndShape) {
  const std::vector<Tables> all = tablesOfAllKinds();
  for (int32_t shape = 0; shape < Samples::kShapes; ++shape) {
    for (const int32_t lines : {1, 2}) {
      for (const ptrdiff_t pixels :
           {0, 1, 2, 3, 15, 16, 17, 31, 32, 33, 63, 64, 65, 66, 129, 512}) {
        SCOPED_TRACE(testing::Message() << "shape " << shape << ", " << lines << " of " << pixels);
        const Samples samples(pixels, shape, lines);
        expectSamePixels(samples.row, pixels, all[static_cast<size_t>(pixels % 2)].tables);
      }
    }
  }
}

// All pairs of luma with U and with V, all pairs of U and V, and noise, in every table.
TEST_P(ConvertYuvRowsTest, AllPairs) {
  constexpr size_t kCount = 65536;
  Bytes high(kCount), low(kCount);
  for (size_t i = 0; i < kCount; ++i) {
    low[i] = static_cast<uint8_t>(i);
    high[i] = static_cast<uint8_t>(i >> 8);
  }
  const Bytes noise = randomBytes(kCount, 2);
  const YuvRow rows[] = {{{low.data(), nullptr}, high.data(), noise.data(), false},
                         {{low.data(), nullptr}, noise.data(), high.data(), false},
                         {{noise.data(), nullptr}, low.data(), high.data(), false}};
  for (const Tables& tables : tablesOfAllKinds()) {
    for (const YuvRow& row : rows) {
      expectSameLines(4 * kCount, row, [&](const ConvertRows& forms, const YuvRow* of) {
        forms.yuvToRgb32(of, 1, kCount, tables.tables, false, 255);
      });
    }
  }
}

}  // namespace
}  // namespace qpx::simd
