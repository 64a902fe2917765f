// Pixels out of YUV by the straight lines that the conversion tables run along. Included once per
// target.
//
// Sums of table words have 20 fractional bits of which a pixel keeps none. Luma has no bits below
// the fourth, so that 16 bits of fraction beside 16 bits of whole numbers say the same, and lanes
// are twice as many.
#if defined(QPX_SIMD_CONVERT_YUV_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_CONVERT_YUV_INL_H_
#undef QPX_SIMD_CONVERT_YUV_INL_H_
#else
#define QPX_SIMD_CONVERT_YUV_INL_H_
#endif

#include <hwy/highway.h>

#include "simd/byte_vectors-inl.h"
#include "simd/convert_rows.h"
#include "simd/pixel_store-inl.h"
#include "simd/yuv_load-inl.h"

// A target without vectors runs the plain forms.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// 16.16 fixed point.
struct Fixed {
  V16 whole, fraction;
};

// The sum of two fractions is less than either of them where it ran over.
HWY_INLINE V16 plusCarry(V16 whole, V16 sum, V16 part) {
  return hn::Sub(whole, hn::VecFromMask(D16(), hn::Lt(sum, part)));
}

// base + i * slope, modulo 2^32.
class FixedLine {
 public:
  HWY_INLINE FixedLine(int32_t base, int32_t slope)
      : slopeWhole_(word(slope >> 16)),
        slopeFraction_(word(slope)),
        baseWhole_(word(base >> 16)),
        baseFraction_(word(base)) {}

  HWY_INLINE Fixed at(V16 i) const {
    const V16 fraction = hn::Add(hn::Mul(i, slopeFraction_), baseFraction_);
    const V16 whole =
        hn::Add(hn::Add(hn::Mul(i, slopeWhole_), hn::MulHigh(i, slopeFraction_)), baseWhole_);
    return {plusCarry(whole, fraction, baseFraction_), fraction};
  }

 private:
  V16 slopeWhole_, slopeFraction_, baseWhole_, baseFraction_;
};

// What chroma gives to the channels, biases taken off.
struct ChromaShares {
  Fixed red, green, blue;
};

class TableLines {
 public:
  explicit HWY_INLINE TableLines(const YuvToRgb& tables)
      : luma_(0, static_cast<int32_t>(tables.luma[1]) >> 4),
        blueU_(unbiased(tables.blueU.base), tables.blueU.slope),
        greenU_(0, tables.greenU),
        redV_(unbiased(tables.redV.base), tables.redV.slope),
        greenV_(tables.greenV.base, tables.greenV.slope),
        greenBias_(word(tables.greenBias << 4)) {}

  HWY_INLINE ChromaShares shares(V16 u, V16 v) const {
    const Fixed blue = blueU_.at(u), greenU = greenU_.at(u);
    const Fixed red = redV_.at(v), greenV = greenV_.at(v);
    const V16 green = hn::Sub(hn::Add(table(greenU), table(greenV)), greenBias_);
    return {{red.whole, below(red, greenV)},
            {arithmeticShift<4>(green), hn::ShiftLeft<12>(green)},
            {blue.whole, below(blue, greenU)}};
  }

  HWY_INLINE Fixed luma(V16 y) const { return luma_.at(y); }

 private:
  static int32_t unbiased(int32_t base) {
    return static_cast<int32_t>(static_cast<uint32_t>(base) - (512u << 16));
  }

  // The low half of a table word: 16 bits of a line from its twelfth on.
  static HWY_INLINE V16 table(const Fixed& line) {
    return hn::Or(hn::ShiftLeft<4>(line.whole), hn::ShiftRight<12>(line.fraction));
  }

  // A table word has four fractional bits of its own line, and then the low half.
  static HWY_INLINE V16 below(const Fixed& high, const Fixed& low) {
    return hn::Or(hn::And(high.fraction, word(0xF000)), hn::And(low.whole, word(0x0FFF)));
  }

  FixedLine luma_, blueU_, greenU_, redV_, greenV_;
  V16 greenBias_;
};

// What is known of all sums of a table, so that some steps can be left out.
enum class Sums {
  any,        // table words have 12 bits for the whole part: beyond, sums wrap
  fitting,    // no sum is that large
  wholeLuma,  // nor has luma a fraction: full range, with contrast as it is
};

template <Sums kSums>
HWY_INLINE VS channelWord(const Fixed& luma, const Fixed& share) {
  V16 whole = hn::Add(luma.whole, share.whole);
  if constexpr (kSums != Sums::wholeLuma) {
    whole = plusCarry(whole, hn::Add(luma.fraction, share.fraction), luma.fraction);
  }
  if constexpr (kSums == Sums::any) {
    return hn::ShiftRight<4>(hn::BitCast(DS(), hn::ShiftLeft<4>(whole)));
  }
  return hn::BitCast(DS(), whole);
}

// Lines are highest or lowest at their ends. With shares of chroma below 500 (for green, of each)
// and luma up to three times 255, no sum reaches 2048.
HWY_INLINE bool staysSmall(const YuvToRgb::Line& line, int32_t bias) {
  constexpr int64_t kMost = int64_t{500} << 16;
  const int64_t first = int64_t{line.base} - (int64_t{bias} << 16);
  const int64_t last = first + 255 * int64_t{line.slope};
  return first > -kMost && first < kMost && last > -kMost && last < kMost;
}

HWY_INLINE Sums sumsOf(const YuvToRgb& tables) {
  constexpr uint32_t kLumaOne = 1u << 20;
  const bool fit = tables.luma[1] <= 3 * kLumaOne && staysSmall(tables.blueU, 512) &&
                   staysSmall(tables.redV, 512) && staysSmall({0, tables.greenU}, 0) &&
                   staysSmall(tables.greenV, tables.greenBias);
  if (!fit) return Sums::any;
  return tables.luma[1] == kLumaOne ? Sums::wholeLuma : Sums::fitting;
}

struct ChannelWords {
  VS red, green, blue;
};

template <Sums kSums>
HWY_INLINE ChannelWords channelWords(const Fixed& luma, const ChromaShares& shares) {
  return {channelWord<kSums>(luma, shares.red), channelWord<kSums>(luma, shares.green),
          channelWord<kSums>(luma, shares.blue)};
}

struct PixelWords {
  ChannelWords even, odd;
};

// A vector of pixels from number `i` on, dealt out as the store wants them.
template <Sums kSums, bool kHalved, class Order>
HWY_INLINE PixelWords pixelWords(const TableLines& lines, const YuvRow& row, ptrdiff_t i,
                                 const Order& order) {
  const Halves y = widen(order.placed(loadBytes(row.luma + i)));
  const Fixed even = lines.luma(y.even), odd = lines.luma(y.odd);
  if constexpr (kHalved) {
    const ChromaShares shares = lines.shares(order.placed(loadWords(row.u + i / 2)),
                                             order.placed(loadWords(row.v + i / 2)));
    return {channelWords<kSums>(even, shares), channelWords<kSums>(odd, shares)};
  } else {
    const Halves u = widen(order.placed(loadBytes(row.u + i)));
    const Halves v = widen(order.placed(loadBytes(row.v + i)));
    return {channelWords<kSums>(even, lines.shares(u.even, v.even)),
            channelWords<kSums>(odd, lines.shares(u.odd, v.odd))};
  }
}

// Calls step(i) for vectors of pixels, the last of which may overlap the one before it. Where
// chroma is halved, every vector begins at an even pixel. Returns how many pixels were made.
template <class Step>
HWY_INLINE ptrdiff_t eachPixelVector(ptrdiff_t pixels, bool halved, const Step& step) {
  const ptrdiff_t whole = halved ? pixels & ~ptrdiff_t{1} : pixels;
  const ptrdiff_t end = whole - byteLanes();
  if (end < 0) return 0;
  for (ptrdiff_t i = 0; i < end; i += byteLanes()) step(i);
  step(end);
  return whole;
}

// The pixels behind the first `done`, which are an even number where chroma is halved.
HWY_INLINE YuvRow rest(const YuvRow& row, ptrdiff_t done) {
  const ptrdiff_t chroma = row.halved ? done / 2 : done;
  return {row.luma + done, row.u + chroma, row.v + chroma, row.halved};
}

template <Sums kSums, bool kHalved, PixelOrder kOrder>
HWY_INLINE ptrdiff_t convertPixels(const YuvRow& row, ptrdiff_t pixels, const YuvToRgb& tables,
                                   uint8_t alpha, uint8_t* dst) {
  const TableLines lines(tables);
  const PixelStore<kOrder> store(alpha);
  return eachPixelVector(pixels, kHalved, [&](ptrdiff_t i) HWY_ATTR {
    const PixelWords p = pixelWords<kSums, kHalved>(lines, row, i, store);
    store(packWords(p.even.red, p.odd.red), packWords(p.even.green, p.odd.green),
          packWords(p.even.blue, p.odd.blue), dst + i * bytesOf(kOrder));
  });
}

template <bool kHalved, PixelOrder kOrder>
HWY_INLINE ptrdiff_t convertPixels(const YuvRow& row, ptrdiff_t pixels, const YuvToRgb& tables,
                                   uint8_t alpha, uint8_t* dst) {
  switch (sumsOf(tables)) {
    case Sums::wholeLuma:
      return convertPixels<Sums::wholeLuma, kHalved, kOrder>(row, pixels, tables, alpha, dst);
    case Sums::fitting:
      return convertPixels<Sums::fitting, kHalved, kOrder>(row, pixels, tables, alpha, dst);
    default:
      return convertPixels<Sums::any, kHalved, kOrder>(row, pixels, tables, alpha, dst);
  }
}

template <PixelOrder kOrder>
HWY_INLINE ptrdiff_t convertPixels(const YuvRow& row, ptrdiff_t pixels, const YuvToRgb& tables,
                                   uint8_t alpha, uint8_t* dst) {
  return row.halved ? convertPixels<true, kOrder>(row, pixels, tables, alpha, dst)
                    : convertPixels<false, kOrder>(row, pixels, tables, alpha, dst);
}

HWY_INLINE V16 word565(VS high, VS middle, VS low) {
  const V16 top = hn::And(hn::ShiftLeft<8>(clampWord(high)), word(0xF800));
  const V16 centre = hn::And(hn::ShiftLeft<3>(clampWord(middle)), word(0x07E0));
  return hn::Or(hn::Or(top, centre), hn::ShiftRight<3>(clampWord(low)));
}

template <bool kRedFirst>
HWY_INLINE V16 word565(const ChannelWords& c) {
  return kRedFirst ? word565(c.blue, c.green, c.red) : word565(c.red, c.green, c.blue);
}

template <Sums kSums, bool kHalved, bool kRedFirst>
HWY_INLINE ptrdiff_t convertWords(const YuvRow& row, ptrdiff_t pixels, const YuvToRgb& tables,
                                  uint8_t* dst) {
  const TableLines lines(tables);
  return eachPixelVector(pixels, kHalved, [&](ptrdiff_t i) HWY_ATTR {
    const PixelWords p = pixelWords<kSums, kHalved>(lines, row, i, GroupsInOrder());
    const V16 even = word565<kRedFirst>(p.even), odd = word565<kRedFirst>(p.odd);
    hn::StoreInterleaved2(even, odd, D16(), reinterpret_cast<uint16_t*>(dst + 2 * i));
  });
}

template <bool kHalved>
HWY_INLINE ptrdiff_t convertWords(const YuvRow& row, ptrdiff_t pixels, const YuvToRgb& tables,
                                  bool redFirst, uint8_t* dst) {
  return redFirst ? convertWords<Sums::any, kHalved, true>(row, pixels, tables, dst)
                  : convertWords<Sums::any, kHalved, false>(row, pixels, tables, dst);
}

void yuvToRgb24(const YuvRow& row, ptrdiff_t pixels, const YuvToRgb& tables, bool redFirst,
                uint8_t* dst) {
  const ptrdiff_t done = redFirst ? convertPixels<PixelOrder::rgb24>(row, pixels, tables, 0, dst)
                                  : convertPixels<PixelOrder::bgr24>(row, pixels, tables, 0, dst);
  plain::yuvToRgb24(rest(row, done), pixels - done, tables, redFirst, dst + 3 * done);
}

void yuvToRgb32(const YuvRow& row, ptrdiff_t pixels, const YuvToRgb& tables, bool redFirst,
                uint8_t alpha, uint8_t* dst) {
  const ptrdiff_t done = redFirst
                             ? convertPixels<PixelOrder::rgba32>(row, pixels, tables, alpha, dst)
                             : convertPixels<PixelOrder::bgra32>(row, pixels, tables, alpha, dst);
  plain::yuvToRgb32(rest(row, done), pixels - done, tables, redFirst, alpha, dst + 4 * done);
}

void yuvToRgb16(const YuvRow& row, ptrdiff_t pixels, const YuvToRgb& tables, bool redFirst,
                uint8_t* dst) {
  const ptrdiff_t done = row.halved ? convertWords<true>(row, pixels, tables, redFirst, dst)
                                    : convertWords<false>(row, pixels, tables, redFirst, dst);
  plain::yuvToRgb16(rest(row, done), pixels - done, tables, redFirst, dst + 2 * done);
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
