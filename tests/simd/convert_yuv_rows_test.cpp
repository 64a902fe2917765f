// Pixels out of YUV by table lines: vector forms against plain ones, which look the tables up, over
// colour spaces, contrasts, lengths and all pairs of luma and chroma.
#include <random>
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

void expectSamePixels(const YuvRow& row, ptrdiff_t pixels, const YuvToRgb& tables) {
  for (const bool redFirst : {false, true}) {
    expectSameForms<ConvertRows>(3 * pixels, [&](const ConvertRows& rows, uint8_t* dst) {
      rows.yuvToRgb24(row, pixels, tables, redFirst, dst);
    });
    expectSameForms<ConvertRows>(4 * pixels, [&](const ConvertRows& rows, uint8_t* dst) {
      rows.yuvToRgb32(row, pixels, tables, redFirst, 99, dst);
    });
    expectSameForms<ConvertRows>(2 * pixels, [&](const ConvertRows& rows, uint8_t* dst) {
      rows.yuvToRgb16(row, pixels, tables, redFirst, dst);
    });
  }
}

TEST_P(ConvertYuvRowsTest, EveryLength) {
  const Bytes noise = randomBytes(4096, 1);
  const uint8_t* const at = noise.data() + 1;
  const std::vector<Tables> all = tablesOfAllKinds();
  const YuvToRgb& tables = all[1].tables;
  for (const bool halved : {false, true}) {
    for (const ptrdiff_t pixels : {0, 1, 2, 3, 15, 16, 17, 31, 32, 33, 63, 64, 65, 66, 129, 512}) {
      expectSamePixels({at, at + 600, at + 1201, halved}, pixels, tables);
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
  const YuvRow rows[] = {{low.data(), high.data(), noise.data(), false},
                         {low.data(), noise.data(), high.data(), false},
                         {noise.data(), low.data(), high.data(), false}};
  for (const Tables& tables : tablesOfAllKinds()) {
    for (const YuvRow& row : rows) {
      expectSameForms<ConvertRows>(4 * kCount, [&](const ConvertRows& forms, uint8_t* dst) {
        forms.yuvToRgb32(row, kCount, tables.tables, false, 255, dst);
      });
    }
  }
}

}  // namespace
}  // namespace qpx::simd
