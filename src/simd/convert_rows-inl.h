// Shuffles between pixel formats, and turns. Included once per target.
#if defined(QPX_SIMD_CONVERT_ROWS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_CONVERT_ROWS_INL_H_
#undef QPX_SIMD_CONVERT_ROWS_INL_H_
#else
#define QPX_SIMD_CONVERT_ROWS_INL_H_
#endif

#include <hwy/highway.h>

#include "simd/byte_vectors-inl.h"
#include "simd/convert_rows.h"

// A target without vectors runs the plain forms.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Sixteen bytes: blocks in which every target shuffles bytes.
using Block = hn::FixedTag<uint8_t, 16>;
using BlockVector = hn::Vec<Block>;

// Calls step(first element) for whole vectors of `length` elements. Returns where the rest begins:
// rows that are worked on in place must not be stored to twice.
template <class Step>
HWY_INLINE ptrdiff_t wholeVectors(ptrdiff_t count, ptrdiff_t length, const Step& step) {
  ptrdiff_t i = 0;
  for (; i <= count - length; i += length) step(i);
  return i;
}

void swapEnds3(const uint8_t* src, ptrdiff_t pixels, uint8_t* dst) {
  const hn::ScalableTag<uint8_t> d;
  const ptrdiff_t done = wholeVectors(pixels, byteLanes(), [&](ptrdiff_t i) HWY_ATTR {
    auto v0 = hn::Undefined(d), v1 = v0, v2 = v0;
    hn::LoadInterleaved3(d, src + 3 * i, v0, v1, v2);
    hn::StoreInterleaved3(v2, v1, v0, d, dst + 3 * i);
  });
  plain::swapEnds3(src + 3 * done, pixels - done, dst + 3 * done);
}

void swapEnds4(const uint8_t* src, ptrdiff_t pixels, uint8_t* dst) {
  const hn::ScalableTag<uint32_t> d;
  const hn::Repartition<uint8_t, decltype(d)> bytes;
  const auto middle = hn::Set(d, 0xFF00FF00u), low = hn::Set(d, 0xFFu);
  const auto length = static_cast<ptrdiff_t>(hn::Lanes(d));
  const ptrdiff_t done = wholeVectors(pixels, length, [&](ptrdiff_t i) HWY_ATTR {
    const auto v = hn::BitCast(d, hn::LoadU(bytes, src + 4 * i));
    const auto first = hn::And(hn::ShiftRight<16>(v), low);
    const auto third = hn::ShiftLeft<16>(hn::And(v, low));
    const auto swapped = hn::Or(hn::And(v, middle), hn::Or(first, third));
    hn::StoreU(hn::BitCast(bytes, swapped), bytes, dst + 4 * i);
  });
  plain::swapEnds4(src + 4 * done, pixels - done, dst + 4 * done);
}

void rgb24To32(const uint8_t* src, ptrdiff_t pixels, bool swap, uint8_t* dst) {
  const hn::ScalableTag<uint8_t> d;
  const ptrdiff_t done = wholeVectors(pixels, byteLanes(), [&](ptrdiff_t i) HWY_ATTR {
    auto v0 = hn::Undefined(d), v1 = v0, v2 = v0, old0 = v0, old1 = v0, old2 = v0, kept = v0;
    hn::LoadInterleaved3(d, src + 3 * i, v0, v1, v2);
    hn::LoadInterleaved4(d, dst + 4 * i, old0, old1, old2, kept);
    hn::StoreInterleaved4(swap ? v2 : v0, v1, swap ? v0 : v2, kept, d, dst + 4 * i);
  });
  plain::rgb24To32(src + 3 * done, pixels - done, swap, dst + 4 * done);
}

void rgb32To24(const uint8_t* src, ptrdiff_t pixels, bool swap, uint8_t* dst) {
  const hn::ScalableTag<uint8_t> d;
  const ptrdiff_t done = wholeVectors(pixels, byteLanes(), [&](ptrdiff_t i) HWY_ATTR {
    auto v0 = hn::Undefined(d), v1 = v0, v2 = v0, v3 = v0;
    hn::LoadInterleaved4(d, src + 4 * i, v0, v1, v2, v3);
    hn::StoreInterleaved3(swap ? v2 : v0, v1, swap ? v0 : v2, d, dst + 3 * i);
  });
  plain::rgb32To24(src + 4 * done, pixels - done, swap, dst + 3 * done);
}

// Both bytes of the words of pixels whose lowest field is cut from `low`.
template <class D, class V>
HWY_INLINE void store565(D d, V low, V middle, V high, uint8_t* dst) {
  const auto first =
      hn::Or(hn::ShiftRight<3>(low), hn::ShiftLeft<3>(hn::And(middle, hn::Set(d, uint8_t{0x1C}))));
  const auto second = hn::Or(hn::And(high, hn::Set(d, uint8_t{0xF8})), hn::ShiftRight<5>(middle));
  hn::StoreInterleaved2(first, second, d, dst);
}

void rgb24To16(const uint8_t* src, ptrdiff_t pixels, bool swap, uint8_t* dst) {
  const hn::ScalableTag<uint8_t> d;
  const ptrdiff_t done = wholeVectors(pixels, byteLanes(), [&](ptrdiff_t i) HWY_ATTR {
    auto v0 = hn::Undefined(d), v1 = v0, v2 = v0;
    hn::LoadInterleaved3(d, src + 3 * i, v0, v1, v2);
    store565(d, swap ? v2 : v0, v1, swap ? v0 : v2, dst + 2 * i);
  });
  plain::rgb24To16(src + 3 * done, pixels - done, swap, dst + 2 * done);
}

// Pixels as numbers, first byte lowest, whose first or third byte becomes the lowest field.
template <bool kSwap, class D, class V>
HWY_INLINE V fieldsOf(D d, V pixels) {
  const auto low = hn::And(hn::ShiftRight < kSwap ? 19 : 3 > (pixels), hn::Set(d, 0x1Fu));
  const auto middle = hn::And(hn::ShiftRight<5>(pixels), hn::Set(d, 0x7E0u));
  const auto moved = kSwap ? hn::ShiftLeft<8>(pixels) : hn::ShiftRight<8>(pixels);
  return hn::Or(hn::Or(low, middle), hn::And(moved, hn::Set(d, 0xF800u)));
}

template <bool kSwap>
HWY_INLINE ptrdiff_t quadsTo16(const uint8_t* src, ptrdiff_t pixels, uint8_t* dst) {
  const hn::ScalableTag<uint32_t> d;
  const hn::RebindToSigned<decltype(d)> dSigned;
  const hn::Repartition<uint8_t, decltype(d)> bytes;
  const hn::Rebind<uint16_t, decltype(d)> words;
  const hn::Repartition<uint8_t, decltype(words)> wordBytes;
  return wholeVectors(pixels, static_cast<ptrdiff_t>(hn::Lanes(d)), [&](ptrdiff_t i) HWY_ATTR {
    const auto fields = fieldsOf<kSwap>(d, hn::BitCast(d, hn::LoadU(bytes, src + 4 * i)));
    const auto narrow = hn::DemoteTo(words, hn::BitCast(dSigned, fields));
    hn::StoreU(hn::BitCast(wordBytes, narrow), wordBytes, dst + 2 * i);
  });
}

void rgb32To16(const uint8_t* src, ptrdiff_t pixels, bool swap, uint8_t* dst) {
  const ptrdiff_t done =
      swap ? quadsTo16<true>(src, pixels, dst) : quadsTo16<false>(src, pixels, dst);
  plain::rgb32To16(src + 4 * done, pixels - done, swap, dst + 2 * done);
}

void rgb16To24(const uint8_t* src, ptrdiff_t pixels, bool swap, uint8_t* dst) {
  const hn::ScalableTag<uint8_t> d;
  const auto topFive = hn::Set(d, uint8_t{0xF8});
  const ptrdiff_t done = wholeVectors(pixels, byteLanes(), [&](ptrdiff_t i) HWY_ATTR {
    auto first = hn::Zero(d), second = first;
    hn::LoadInterleaved2(d, src + 2 * i, first, second);
    const auto low = hn::ShiftLeft<3>(first);
    const auto middle = hn::Or(hn::ShiftLeft<5>(second),
                               hn::And(hn::ShiftRight<3>(first), hn::Set(d, uint8_t{0x1C})));
    const auto high = hn::And(second, topFive);
    hn::StoreInterleaved3(swap ? high : low, middle, swap ? low : high, d, dst + 3 * i);
  });
  plain::rgb16To24(src + 2 * done, pixels - done, swap, dst + 3 * done);
}

void swapPairs(const uint8_t* src, ptrdiff_t pairs, uint8_t* dst) {
  const hn::ScalableTag<uint16_t> d;
  const hn::Repartition<uint8_t, decltype(d)> bytes;
  const auto length = static_cast<ptrdiff_t>(hn::Lanes(d));
  const ptrdiff_t done = wholeVectors(pairs, length, [&](ptrdiff_t i) HWY_ATTR {
    const auto v = hn::BitCast(d, hn::LoadU(bytes, src + 2 * i));
    const auto swapped = hn::Or(hn::ShiftLeft<8>(v), hn::ShiftRight<8>(v));
    hn::StoreU(hn::BitCast(bytes, swapped), bytes, dst + 2 * i);
  });
  plain::swapPairs(src + 2 * done, pairs - done, dst + 2 * done);
}

// Elements of 1, 2 and 4 bytes in reverse order within words of 8.
HWY_ALIGN constexpr uint8_t kReversed1[16] = {7, 6, 5, 4, 3, 2, 1, 0, 15, 14, 13, 12, 11, 10, 9, 8};
HWY_ALIGN constexpr uint8_t kReversed2[16] = {6, 7, 4, 5, 2, 3, 0, 1, 14, 15, 12, 13, 10, 11, 8, 9};
HWY_ALIGN constexpr uint8_t kReversed4[16] = {4, 5, 6, 7, 0, 1, 2, 3, 12, 13, 14, 15, 8, 9, 10, 11};

template <class D>
HWY_INLINE hn::Vec<D> reversed(D d, hn::Vec<D> v, const uint8_t* order) {
  const hn::Repartition<uint64_t, D> words;
  const auto turned = hn::BitCast(d, hn::Reverse(words, hn::BitCast(words, v)));
  return hn::TableLookupBytes(turned, hn::LoadDup128(d, order));
}

// Calls step(from, to) for whole vectors of `length` elements, of which the last may overlap the
// one before it. False if there are fewer. Forwards through the source: where rows are turned
// upside down as well, each picture is walked through without jumps.
template <class Step>
HWY_INLINE bool eachReversed(ptrdiff_t length, ptrdiff_t count, const Step& step) {
  const ptrdiff_t last = count - length;
  return overlappingSteps(length, count, [&](ptrdiff_t from) HWY_ATTR { step(from, last - from); });
}

template <ptrdiff_t kBytes, class D>
HWY_INLINE bool reverseWhole(D d, const uint8_t* src, ptrdiff_t count, uint8_t* dst,
                             const uint8_t* order) {
  const ptrdiff_t length = static_cast<ptrdiff_t>(hn::Lanes(d)) / kBytes;
  return eachReversed(length, count, [&](ptrdiff_t from, ptrdiff_t to) HWY_ATTR {
    hn::StoreU(reversed(d, hn::LoadU(d, src + from * kBytes), order), d, dst + to * kBytes);
  });
}

template <class D>
HWY_INLINE bool reverseTriplets(D d, const uint8_t* src, ptrdiff_t count, uint8_t* dst) {
  const auto length = static_cast<ptrdiff_t>(hn::Lanes(d));
  return eachReversed(length, count, [&](ptrdiff_t from, ptrdiff_t to) HWY_ATTR {
    auto v0 = hn::Undefined(d), v1 = v0, v2 = v0;
    hn::LoadInterleaved3(d, src + 3 * from, v0, v1, v2);
    hn::StoreInterleaved3(reversed(d, v0, kReversed1), reversed(d, v1, kReversed1),
                          reversed(d, v2, kReversed1), d, dst + 3 * to);
  });
}

void reverse1(const uint8_t* src, ptrdiff_t count, uint8_t* dst) {
  const hn::ScalableTag<uint8_t> d;
  if (!reverseWhole<1>(d, src, count, dst, kReversed1) &&
      !reverseWhole<1>(Block(), src, count, dst, kReversed1)) {
    plain::reverse1(src, count, dst);
  }
}

void reverse2(const uint8_t* src, ptrdiff_t count, uint8_t* dst) {
  const hn::ScalableTag<uint8_t> d;
  if (!reverseWhole<2>(d, src, count, dst, kReversed2) &&
      !reverseWhole<2>(Block(), src, count, dst, kReversed2)) {
    plain::reverse2(src, count, dst);
  }
}

void reverse3(const uint8_t* src, ptrdiff_t count, uint8_t* dst) {
  const hn::ScalableTag<uint8_t> d;
  if (!reverseTriplets(d, src, count, dst) && !reverseTriplets(Block(), src, count, dst)) {
    plain::reverse3(src, count, dst);
  }
}

void reverse4(const uint8_t* src, ptrdiff_t count, uint8_t* dst) {
  const hn::ScalableTag<uint8_t> d;
  if (!reverseWhole<4>(d, src, count, dst, kReversed4) &&
      !reverseWhole<4>(Block(), src, count, dst, kReversed4)) {
    plain::reverse4(src, count, dst);
  }
}

// One step of a transposition: element i of the first half of the vectors beside element i of the
// second half. As many steps as halvings make columns of rows.
template <class D, int kRows>
HWY_INLINE void zipHalves(D d, BlockVector (&rows)[kRows]) {
  BlockVector zipped[kRows];
  const Block bytes;
  for (int i = 0; i < kRows / 2; ++i) {
    const auto upper = hn::BitCast(d, rows[i]), lower = hn::BitCast(d, rows[i + kRows / 2]);
    zipped[2 * i] = hn::BitCast(bytes, hn::InterleaveLower(d, upper, lower));
    zipped[2 * i + 1] = hn::BitCast(bytes, hn::InterleaveUpper(d, upper, lower));
  }
  for (int i = 0; i < kRows; ++i) rows[i] = zipped[i];
}

template <int kRows>
HWY_INLINE void loadRows(const uint8_t* src, ptrdiff_t pitch, BlockVector (&rows)[kRows]) {
  for (int i = 0; i < kRows; ++i) rows[i] = hn::LoadU(Block(), src + i * pitch);
}

// A tile of sixteen bytes a row and kRows rows. Columns end up one after another in the vectors.
template <class D, int kRows>
HWY_INLINE void transposeTile(D d, const uint8_t* src, ptrdiff_t srcPitch, uint8_t* dst,
                              ptrdiff_t dstPitch) {
  constexpr ptrdiff_t kColumnBytes = kRows * static_cast<ptrdiff_t>(sizeof(hn::TFromD<D>));
  BlockVector rows[kRows];
  loadRows(src, srcPitch, rows);
  for (int half = kRows; half > 1; half /= 2) zipHalves(d, rows);
  if constexpr (kColumnBytes == 16) {
    for (int i = 0; i < kRows; ++i) hn::StoreU(rows[i], Block(), dst + i * dstPitch);
  } else {
    static_assert(kColumnBytes == 8);
    const hn::Half<Block> half;
    for (int i = 0; i < kRows; ++i) {
      hn::StoreU(hn::LowerHalf(half, rows[i]), half, dst + 2 * i * dstPitch);
      hn::StoreU(hn::UpperHalf(half, rows[i]), half, dst + (2 * i + 1) * dstPitch);
    }
  }
}

// What is left right of the tiles and below them.
template <int kBytes, class Plain>
HWY_INLINE void transposeRest(const Plain& plainForm, const uint8_t* src, ptrdiff_t srcPitch,
                              ptrdiff_t columns, ptrdiff_t rows, ptrdiff_t doneColumns,
                              ptrdiff_t doneRows, uint8_t* dst, ptrdiff_t dstPitch) {
  plainForm(src + doneColumns * kBytes, srcPitch, columns - doneColumns, doneRows,
            dst + doneColumns * dstPitch, dstPitch);
  plainForm(src + doneRows * srcPitch, srcPitch, columns, rows - doneRows, dst + doneRows * kBytes,
            dstPitch);
}

// Rows of tiles of kRows rows, from row `y` on. Returns where the next begins.
template <int kRows, class D>
HWY_INLINE ptrdiff_t transposeRows(D d, const uint8_t* src, ptrdiff_t srcPitch, ptrdiff_t columns,
                                   ptrdiff_t rows, ptrdiff_t y, uint8_t* dst, ptrdiff_t dstPitch) {
  constexpr auto kBytes = static_cast<ptrdiff_t>(sizeof(hn::TFromD<D>));
  constexpr ptrdiff_t kColumns = 16 / kBytes;
  for (; y <= rows - kRows; y += kRows) {
    for (ptrdiff_t x = 0; x <= columns - kColumns; x += kColumns) {
      transposeTile<D, kRows>(d, src + y * srcPitch + x * kBytes, srcPitch,
                              dst + x * dstPitch + y * kBytes, dstPitch);
    }
  }
  return y;
}

void transpose1(const uint8_t* src, ptrdiff_t srcPitch, ptrdiff_t columns, ptrdiff_t rows,
                uint8_t* dst, ptrdiff_t dstPitch) {
  const Block d;
  ptrdiff_t y = transposeRows<16>(d, src, srcPitch, columns, rows, 0, dst, dstPitch);
  y = transposeRows<8>(d, src, srcPitch, columns, rows, y, dst, dstPitch);
  transposeRest<1>(plain::transpose1, src, srcPitch, columns, rows, columns & ~ptrdiff_t{15}, y,
                   dst, dstPitch);
}

void transpose2(const uint8_t* src, ptrdiff_t srcPitch, ptrdiff_t columns, ptrdiff_t rows,
                uint8_t* dst, ptrdiff_t dstPitch) {
  const hn::FixedTag<uint16_t, 8> d;
  const ptrdiff_t y = transposeRows<8>(d, src, srcPitch, columns, rows, 0, dst, dstPitch);
  transposeRest<2>(plain::transpose2, src, srcPitch, columns, rows, columns & ~ptrdiff_t{7}, y, dst,
                   dstPitch);
}

void transpose4(const uint8_t* src, ptrdiff_t srcPitch, ptrdiff_t columns, ptrdiff_t rows,
                uint8_t* dst, ptrdiff_t dstPitch) {
  const hn::FixedTag<uint32_t, 4> d;
  const ptrdiff_t y = transposeRows<4>(d, src, srcPitch, columns, rows, 0, dst, dstPitch);
  transposeRest<4>(plain::transpose4, src, srcPitch, columns, rows, columns & ~ptrdiff_t{3}, y, dst,
                   dstPitch);
}

}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
