// Rows of YUV to rows of YUV: samples change places. Included once per target.
#if defined(QPX_SIMD_YUV_MOVE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_YUV_MOVE_INL_H_
#undef QPX_SIMD_YUV_MOVE_INL_H_
#else
#define QPX_SIMD_YUV_MOVE_INL_H_
#endif

#include <hwy/highway.h>

#include <cstring>

#include "simd/byte_vectors-inl.h"
#include "simd/yuv_load-inl.h"
#include "simd/yuv_rows.h"
#include "simd/yuv_store-inl.h"

// A target without vectors runs the plain forms.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

HWY_INLINE void copyBytes(const uint8_t* src, uint8_t* dst, ptrdiff_t count) {
  if (src != dst && count > 0) std::memcpy(dst, src, static_cast<size_t>(count));
}

// A vector of pairs of chroma, the first of each in the low byte; reads nothing behind the last.
struct PairsOfPlanes {
  static HWY_INLINE V8 at(const uint8_t* first, const uint8_t* second, ptrdiff_t i) {
    return narrow({loadWords(first + i), loadWords(second + i)});
  }
};

struct PairsOfEveryOther {
  static HWY_INLINE V8 at(const uint8_t* first, const uint8_t* second, ptrdiff_t i) {
    return narrow({evenBytes(loadBytes(first + 2 * i)), evenBytes(loadBytes(second + 2 * i))});
  }
};

// Pairs in their order, or in the other one: `first` tells which byte comes first.
struct PairsAsTheyAre {
  static HWY_INLINE V8 at(const uint8_t* first, const uint8_t*, ptrdiff_t i) {
    return loadBytes(first + 2 * i);
  }
};

struct PairsSwapped {
  static HWY_INLINE V8 at(const uint8_t*, const uint8_t* second, ptrdiff_t i) {
    return swappedPairs(loadBytes(second + 2 * i));
  }
};

// `first` and `second` are the samples in the order of the destination.
template <class Pairs>
HWY_INLINE void joinPairs(const uint8_t* first, const uint8_t* second, uint8_t* dst,
                          ptrdiff_t pairs) {
  const auto make = [&](ptrdiff_t i) HWY_ATTR { return Pairs::at(first, second, i); };
  const auto store = [=](V8 v, ptrdiff_t i) HWY_ATTR { storeBytes(v, dst + 2 * i); };
  eachVector(byteLanes() / 2, pairs, make, store);
}

HWY_INLINE bool joinChroma(RowShape from, const uint8_t* first, const uint8_t* second, uint8_t* dst,
                           ptrdiff_t pairs) {
  switch (from) {
    case RowShape::planes:
      joinPairs<PairsOfPlanes>(first, second, dst, pairs);
      return true;
    case RowShape::everyOther:
      joinPairs<PairsOfEveryOther>(first, second, dst, pairs);
      return true;
    case RowShape::uvPairs:
    case RowShape::vuPairs:
      if (first < second) {
        joinPairs<PairsAsTheyAre>(first, second, dst, pairs);
      } else {
        joinPairs<PairsSwapped>(first, second, dst, pairs);
      }
      return true;
    default:
      return false;
  }
}

template <class Pairs>
HWY_INLINE void splitPairs(const uint8_t* first, const uint8_t* second, uint8_t* dst0,
                           uint8_t* dst1, ptrdiff_t pairs) {
  const ptrdiff_t length = byteLanes();
  const auto half = [&](ptrdiff_t i) HWY_ATTR {
    const Halves halves = widen(Pairs::at(first, second, i));
    storeWords(halves.even, dst0 + i);
    storeWords(halves.odd, dst1 + i);
  };
  const auto whole = [&](ptrdiff_t i) HWY_ATTR {
    const V8 lower = Pairs::at(first, second, i), upper = Pairs::at(first, second, i + length / 2);
    storeBytes(hn::ConcatEven(D8(), upper, lower), dst0 + i);
    storeBytes(hn::ConcatOdd(D8(), upper, lower), dst1 + i);
  };
  ptrdiff_t i = 0;
  for (; i <= pairs - length; i += length) whole(i);
  for (; i < pairs - length / 2; i += length / 2) half(i);
  half(pairs - length / 2);
}

HWY_INLINE bool splitChroma(RowShape from, const YuvSource& src, const YuvTarget& dst,
                            ptrdiff_t pairs) {
  switch (from) {
    case RowShape::planes:
      copyBytes(src.u, dst.u, pairs);
      copyBytes(src.v, dst.v, pairs);
      return true;
    case RowShape::everyOther:
      splitPairs<PairsOfEveryOther>(src.u, src.v, dst.u, dst.v, pairs);
      return true;
    case RowShape::uvPairs:
      splitPairs<PairsAsTheyAre>(src.u, src.v, dst.u, dst.v, pairs);
      return true;
    case RowShape::vuPairs:
      splitPairs<PairsAsTheyAre>(src.v, src.u, dst.v, dst.u, pairs);
      return true;
    default:
      return false;
  }
}

HWY_INLINE bool moveChromaVectors(const YuvSource& src, const YuvTarget& dst, ptrdiff_t pairs) {
  if (2 * pairs < byteLanes()) return false;
  const RowShape from = shapeOf(src);
  switch (shapeOf(dst)) {
    case RowShape::planes:
      return splitChroma(from, src, dst, pairs);
    case RowShape::uvPairs:
      return joinChroma(from, src.u, src.v, dst.u, pairs);
    case RowShape::vuPairs:
      return joinChroma(from, src.v, src.u, dst.v, pairs);
    default:
      return false;
  }
}

void moveChroma(const YuvSource& src, const YuvTarget& dst, ptrdiff_t pairs) {
  if (!moveChromaVectors(src, dst, pairs)) plain::moveChroma(src, dst, pairs);
}

struct Triplets {
  V8 y, u, v;

  static HWY_INLINE Triplets at(const uint8_t* src) {
    const Bytes3 channels = loadChannels<3>(src);
    return {channels.a, channels.b, channels.c};
  }
};

HWY_INLINE void lumaOfTriplets(const uint8_t* src, uint8_t* dst, ptrdiff_t pixels) {
  const ptrdiff_t length = byteLanes();
  ptrdiff_t i = 0;
  // The two bytes behind the last sample may be nobody's.
  for (; i < pixels - length; i += length) storeBytes(Triplets::at(src + 3 * i).y, dst + i);
  plain::moveLuma(src + 3 * i, 3, dst + i, 1, pixels - i);
}

void moveLuma(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep,
              ptrdiff_t pixels) {
  if (srcStep == 1 && dstStep == 1) return copyBytes(src, dst, pixels);
  if (srcStep == 3 && dstStep == 1) return lumaOfTriplets(src, dst, pixels);
  const ptrdiff_t length = byteLanes();
  if (srcStep != 2 || dstStep != 1 || pixels <= length) {
    return plain::moveLuma(src, srcStep, dst, dstStep, pixels);
  }
  for (ptrdiff_t i = 0; i < pixels - length; i += length) {
    const uint8_t* const from = src + 2 * i;
    storeBytes(hn::ConcatEven(D8(), loadBytes(from + length), loadBytes(from)), dst + i);
  }
  // The byte behind the last sample may be nobody's: those that end the row are read from the byte
  // before them.
  const uint8_t* const last = src + 2 * (pixels - length) - 1;
  storeBytes(hn::ConcatOdd(D8(), loadBytes(last + length), loadBytes(last)), dst + pixels - length);
}

// Two vectors of a packed row.
struct PackedBytes {
  V8 luma, chroma;

  template <bool kLumaFirst>
  static HWY_INLINE PackedBytes at(const uint8_t* row) {
    const V8 first = loadBytes(row), second = loadBytes(row + byteLanes());
    const V8 even = hn::ConcatEven(D8(), second, first), odd = hn::ConcatOdd(D8(), second, first);
    return kLumaFirst ? PackedBytes{even, odd} : PackedBytes{odd, even};
  }
};

template <bool kLumaFirst>
HWY_INLINE bool unpackToPlanes(const YuvSource& src, const YuvTarget& dst, ptrdiff_t pairs) {
  const ptrdiff_t length = byteLanes();
  const uint8_t* const row = kLumaFirst ? src.y : src.y - 1;
  uint8_t *const even = src.u < src.v ? dst.u : dst.v, *const odd = src.u < src.v ? dst.v : dst.u;
  return overlappingShortSteps(length, pairs, [&](ptrdiff_t i) HWY_ATTR {
    const PackedBytes first = PackedBytes::at<kLumaFirst>(row + 4 * i);
    const PackedBytes second = PackedBytes::at<kLumaFirst>(row + 4 * i + 2 * length);
    storeBytes(first.luma, dst.y + 2 * i);
    storeBytes(second.luma, dst.y + 2 * i + length);
    storeBytes(hn::ConcatEven(D8(), second.chroma, first.chroma), even + i);
    storeBytes(hn::ConcatOdd(D8(), second.chroma, first.chroma), odd + i);
  });
}

template <bool kLumaFirst, bool kUFirst>
HWY_INLINE bool unpackToPairs(const YuvSource& src, const YuvTarget& dst, ptrdiff_t pairs) {
  const uint8_t* const row = kLumaFirst ? src.y : src.y - 1;
  const bool uFirst = src.u < src.v;
  return overlappingShortSteps(byteLanes() / 2, pairs, [&](ptrdiff_t i) HWY_ATTR {
    const PackedBytes bytes = PackedBytes::at<kLumaFirst>(row + 4 * i);
    StorePairs<kUFirst>::bytesAt(dst, i, bytes.luma, bytes.chroma, uFirst);
  });
}

template <bool kLumaFirst>
HWY_INLINE bool unpack(const YuvSource& src, const YuvTarget& dst, ptrdiff_t pairs) {
  switch (shapeOf(dst)) {
    case RowShape::planes:
      return unpackToPlanes<kLumaFirst>(src, dst, pairs);
    case RowShape::uvPairs:
      return unpackToPairs<kLumaFirst, true>(src, dst, pairs);
    case RowShape::vuPairs:
      return unpackToPairs<kLumaFirst, false>(src, dst, pairs);
    default:
      return false;
  }
}

template <class Store>
HWY_INLINE void unpackTriplets(const YuvSource& src, const YuvTarget& dst, ptrdiff_t pairs) {
  const ptrdiff_t length = byteLanes() / 2;
  ptrdiff_t i = 0;
  for (; i <= pairs - length; i += length) {
    const Triplets t = Triplets::at(src.y + 6 * i);
    Store::bytesAt(dst, i, t.y, narrow({evenBytes(t.u), evenBytes(t.v)}), true);
  }
  plain::moveRow(src.from(i), dst.from(i), pairs - i);
}

void moveRow(const YuvSource& src, const YuvTarget& dst, ptrdiff_t pairs) {
  switch (shapeOf(src)) {
    case RowShape::triplets:
      if (shapeOf(dst) == RowShape::vuPairs) {
        return unpackTriplets<StorePairs<false>>(src, dst, pairs);
      }
      break;
    case RowShape::yuyv:
    case RowShape::yvyu:
      if (unpack<true>(src, dst, pairs)) return;
      break;
    case RowShape::uyvy:
    case RowShape::vyuy:
      if (unpack<false>(src, dst, pairs)) return;
      break;
    default:
      break;
  }
  moveLuma(src.y, src.lumaStep, dst.y, dst.lumaStep, 2 * pairs);
  moveChroma(src, dst, pairs);
}

template <class Load, bool kLumaFirst>
HWY_INLINE bool pack(const uint8_t* luma, const uint8_t* first, const uint8_t* second, uint8_t* dst,
                     ptrdiff_t pairs) {
  return overlappingShortSteps(byteLanes() / 2, pairs, [&](ptrdiff_t i) HWY_ATTR {
    const V8 lumas = loadBytes(luma + 2 * i), chroma = Load::at(first, second, i);
    const V8 even = kLumaFirst ? lumas : chroma, odd = kLumaFirst ? chroma : lumas;
    storeBlocks(hn::InterleaveLower(D8(), even, odd), hn::InterleaveUpper(D8(), even, odd),
                dst + 4 * i);
  });
}

template <bool kLumaFirst>
HWY_INLINE bool packShape(const YuvSource& src, const YuvTarget& dst, ptrdiff_t pairs) {
  const bool uFirst = dst.u < dst.v;
  const uint8_t *const first = uFirst ? src.u : src.v, *const second = uFirst ? src.v : src.u;
  uint8_t* const row = kLumaFirst ? dst.y : dst.y - 1;
  switch (shapeOf(src)) {
    case RowShape::planes:
      return pack<PairsOfPlanes, kLumaFirst>(src.y, first, second, row, pairs);
    case RowShape::everyOther:
      return pack<PairsOfEveryOther, kLumaFirst>(src.y, first, second, row, pairs);
    case RowShape::uvPairs:
    case RowShape::vuPairs:
      if (first < second) {
        return pack<PairsAsTheyAre, kLumaFirst>(src.y, first, second, row, pairs);
      }
      return pack<PairsSwapped, kLumaFirst>(src.y, first, second, row, pairs);
    default:
      return false;
  }
}

void packPairs(const YuvSource& src, const YuvTarget& dst, ptrdiff_t pairs) {
  bool done = false;
  switch (shapeOf(dst)) {
    case RowShape::yuyv:
    case RowShape::yvyu:
      done = packShape<true>(src, dst, pairs);
      break;
    case RowShape::uyvy:
    case RowShape::vyuy:
      done = packShape<false>(src, dst, pairs);
      break;
    default:
      break;
  }
  if (!done) plain::packPairs(src, dst, pairs);
}

HWY_INLINE V8 twice(V16 words) { return narrow({words, words}); }

void packPixels(const YuvSource& src, uint8_t* dst, ptrdiff_t pairs) {
  const auto step = [&](ptrdiff_t i) HWY_ATTR {
    const Halves chroma = widen(loadBytes(src.v + 2 * i));
    hn::StoreInterleaved3(loadBytes(src.y + 2 * i), twice(chroma.odd), twice(chroma.even), D8(),
                          dst + 6 * i);
  };
  if (shapeOf(src) != RowShape::vuPairs || !overlappingShortSteps(byteLanes() / 2, pairs, step)) {
    plain::packPixels(src, dst, pairs);
  }
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
