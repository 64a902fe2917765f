#include "simd/row_cases.h"

namespace qpx::simd {
namespace {

using In = const uint8_t* const*;
using Out = uint8_t* const*;

const uint8_t* table(size_t k) { return testTables()[k].data(); }

void lookup(const Rows& rows, In in, Out out, ptrdiff_t count) {
  rows.lookup(in[0], out[0], count, table(0));
}

void lookup3(const Rows& rows, In in, Out out, ptrdiff_t count) {
  rows.lookup3(in[0], out[0], count, table(0), table(1), table(2));
}

void lookup3OneTable(const Rows& rows, In in, Out out, ptrdiff_t count) {
  rows.lookup3(in[0], out[0], count, table(1), table(1), table(1));
}

void lookup3TwoTables(const Rows& rows, In in, Out out, ptrdiff_t count) {
  rows.lookup3(in[0], out[0], count, table(1), table(1), table(0));
}

void lookup4(const Rows& rows, In in, Out out, ptrdiff_t count) {
  rows.lookup4(in[0], out[0], count, table(0), table(1), table(2));
}

void lookup4OneTable(const Rows& rows, In in, Out out, ptrdiff_t count) {
  rows.lookup4(in[0], out[0], count, table(2), table(2), table(2));
}

void lookup4TwoTables(const Rows& rows, In in, Out out, ptrdiff_t count) {
  rows.lookup4(in[0], out[0], count, table(2), table(2), table(0));
}

void deinterleave2(const Rows& rows, In in, Out out, ptrdiff_t count) {
  rows.deinterleave2(in[0], count, out[0], out[1]);
}

void interleave2(const Rows& rows, In in, Out out, ptrdiff_t count) {
  rows.interleave2(in[0], in[1], count, out[0]);
}

void deinterleave3(const Rows& rows, In in, Out out, ptrdiff_t count) {
  rows.deinterleave3(in[0], count, out[0], out[1], out[2]);
}

void interleave3(const Rows& rows, In in, Out out, ptrdiff_t count) {
  rows.interleave3(in[0], in[1], in[2], count, out[0]);
}

void deinterleave4(const Rows& rows, In in, Out out, ptrdiff_t count) {
  rows.deinterleave4(in[0], count, out[0], out[1], out[2], out[3]);
}

void interleave4(const Rows& rows, In in, Out out, ptrdiff_t count) {
  rows.interleave4(in[0], in[1], in[2], in[3], count, out[0]);
}

// As many texels as there are pixels: each twice, each third one from the end, and in no order.
void gather4(const Rows& rows, In in, Out out, ptrdiff_t count,
             int32_t (*place)(int32_t, int32_t)) {
  std::vector<int32_t> places;
  const int32_t texels = static_cast<int32_t>(count);
  for (int32_t i = 0; i < texels; ++i) places.push_back(place(i, texels));
  rows.gather4(in[0], count, places.data(), count, out[0]);
}

void gather4Doubled(const Rows& rows, In in, Out out, ptrdiff_t count) {
  gather4(rows, in, out, count, [](int32_t i, int32_t texels) { return (texels - 1 + i) / 2; });
}

void gather4Backwards(const Rows& rows, In in, Out out, ptrdiff_t count) {
  gather4(rows, in, out, count, [](int32_t i, int32_t texels) { return texels - 1 - i / 3 * 3; });
}

void gather4Scattered(const Rows& rows, In in, Out out, ptrdiff_t count) {
  gather4(rows, in, out, count, [](int32_t i, int32_t texels) { return i * 37 % texels; });
}

void luma(const Rows& rows, In in, Out out, ptrdiff_t count) {
  rows.luma(in[0], in[1], in[2], out[0], count);
}

void weightedSum(const Rows& rows, In in, Out out, ptrdiff_t count) {
  constexpr int32_t kWeights[4] = {65536, -22567, -46819, 8914122};
  rows.weightedSum(in[0], in[1], in[2], out[0], count, kWeights);
}

void mixOpaque(const Rows& rows, In in, Out out, ptrdiff_t count) {
  rows.mixOpaque(in[0], in[1], out[0], count, 37);
}

void mixColor(const Rows& rows, In in, Out out, ptrdiff_t count) {
  rows.mixColor(in[0], 201, out[0], count, 63);
}

void mixMasked(const Rows& rows, In in, Out out, ptrdiff_t count) {
  rows.mixMasked(in[0], in[1], in[2], out[0], count, 81);
}

void complement256(const Rows& rows, In in, Out out, ptrdiff_t count) {
  rows.complement256(in[0], out[0], count);
}

}  // namespace

const std::vector<RowCase>& rowCases() {
  static const std::vector<RowCase> kCases = {
      {"lookup", 1, 1, 1, 1, true, lookup},
      {"lookup3", 1, 3, 1, 3, true, lookup3},
      {"lookup3 with one table", 1, 3, 1, 3, true, lookup3OneTable},
      {"lookup3 with two tables", 1, 3, 1, 3, true, lookup3TwoTables},
      {"lookup4", 1, 4, 1, 4, true, lookup4},
      {"lookup4 with one table", 1, 4, 1, 4, true, lookup4OneTable},
      {"lookup4 with two tables", 1, 4, 1, 4, true, lookup4TwoTables},
      {"deinterleave2", 1, 2, 2, 1, false, deinterleave2},
      {"interleave2", 2, 1, 1, 2, false, interleave2},
      {"deinterleave3", 1, 3, 3, 1, false, deinterleave3},
      {"interleave3", 3, 1, 1, 3, false, interleave3},
      {"deinterleave4", 1, 4, 4, 1, false, deinterleave4},
      {"interleave4", 4, 1, 1, 4, false, interleave4},
      {"gather4 of doubled pixels", 1, 4, 1, 4, false, gather4Doubled},
      {"gather4 backwards", 1, 4, 1, 4, false, gather4Backwards},
      {"gather4 of scattered pixels", 1, 4, 1, 4, false, gather4Scattered},
      {"luma", 3, 1, 1, 1, true, luma},
      {"weightedSum", 3, 1, 1, 1, true, weightedSum},
      {"mixOpaque", 2, 1, 1, 1, true, mixOpaque},
      {"mixColor", 1, 1, 1, 1, true, mixColor},
      {"mixMasked", 3, 1, 1, 1, true, mixMasked},
      {"complement256", 1, 1, 1, 1, true, complement256},
  };
  return kCases;
}

const std::array<std::array<uint8_t, 256>, 3>& testTables() {
  static const auto kTables = [] {
    std::array<std::array<uint8_t, 256>, 3> tables;
    for (uint32_t k = 0; k < 3; ++k) {
      for (uint32_t i = 0; i < 256; ++i) tables[k][i] = noise(i, 100 + k);
    }
    return tables;
  }();
  return kTables;
}

}  // namespace qpx::simd
