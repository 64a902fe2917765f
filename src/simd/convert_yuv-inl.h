// Pixels out of YUV by the straight lines that the conversion tables run along. Included once per
// target.
//
// A sum of table words has 32 bits: from the top, 12 of a whole number and 20 of a fraction, of
// which a pixel keeps none. Chroma has bits below the sixteenth in red and blue alone, so that 16
// bits, and for these two the carry out of the 16 below, are all that is worked out.
#if defined(QPX_SIMD_CONVERT_YUV_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_CONVERT_YUV_INL_H_
#undef QPX_SIMD_CONVERT_YUV_INL_H_
#else
#define QPX_SIMD_CONVERT_YUV_INL_H_
#endif

#include <hwy/highway.h>

#include <algorithm>
#include <cstring>

#include "simd/byte_vectors-inl.h"
#include "simd/convert_rows.h"
#include "simd/pixel_store-inl.h"
#include "simd/yuv_load-inl.h"
#include "simd/yuv_store-inl.h"

// A target without vectors runs the plain forms.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// Two low halves a and b of words carry when a > 65535 - b. Where comparisons are signed, both
// sides have their highest bit turned.
#if HWY_TARGET <= HWY_AVX3 || HWY_ARCH_ARM
constexpr uint32_t kTurned = 0;
using VLow = V16;
HWY_INLINE VLow turned(V16 low) { return low; }
#else
constexpr uint32_t kTurned = 0x8000;
using VLow = VS;
HWY_INLINE VLow turned(V16 low) { return hn::BitCast(DS(), hn::Xor(low, word(kTurned))); }
#endif

HWY_INLINE V16 plusCarry(V16 high, VLow low, VLow above) {
  const auto carries = hn::Gt(low, above);
#if HWY_TARGET <= HWY_AVX3
  return V16{_mm512_mask_sub_epi16(high.raw, carries.raw, high.raw, _mm512_set1_epi16(-1))};
#else
  return hn::Sub(high, hn::BitCast(D16(), hn::VecFromMask(hn::DFromV<VLow>(), carries)));
#endif
}

HWY_INLINE V16 upperWord(uint32_t value) { return word(static_cast<int32_t>(value >> 16)); }
HWY_INLINE V16 lowerWord(uint32_t value) { return word(static_cast<int32_t>(value & 0xFFFF)); }

// The words base + i * slope, modulo 2^32, of bytes i.
class WordLine {
 public:
  HWY_INLINE WordLine(uint32_t base, uint32_t slope)
      : slopeHigh_(upperWord(slope)),
        slopeLow_(lowerWord(slope)),
        baseHigh_(upperWord(base)),
        carryAbove_(turned(lowerWord(~base))) {}

  HWY_INLINE V16 highHalf(V16 i) const {
    const V16 high = hn::Add(startingAtZero(i), baseHigh_);
    return plusCarry(high, lowHalf(i), carryAbove_);
  }

  // Of lines with a base of 0.
  HWY_INLINE V16 startingAtZero(V16 i) const {
    return hn::Add(hn::Mul(i, slopeHigh_), hn::MulHigh(i, slopeLow_));
  }
  HWY_INLINE VLow lowHalf(V16 i) const { return turned(hn::Mul(i, slopeLow_)); }

 private:
  V16 slopeHigh_, slopeLow_, baseHigh_;
  VLow carryAbove_;
};

// What chroma gives to the channels of a pixel in memory order, biases taken off: high halves, and
// where luma's low half carries into the outer channels.
struct ChromaShares {
  V16 first, green, third;
  VLow firstAbove, thirdAbove;
};

// Channels as words with four fractional bits.
struct ChannelWords {
  V16 first, green, third;
};

// Blue and red change roles with the order of bytes; U goes with blue, V with red.
//
// Green's lines are taken as their complements, which is how the carries want them.
class TableLines {
 public:
  HWY_INLINE TableLines(const YuvToRgb& tables, bool redFirst)
      : luma_(0, tables.luma[1]),
        first_(outer(redFirst ? tables.redV : tables.blueU)),
        firstAbove_(complement(redFirst ? tables.greenV : greenU(tables))),
        third_(outer(redFirst ? tables.blueU : tables.redV)),
        thirdAbove_(complement(redFirst ? greenU(tables) : tables.greenV)),
        green_(word(-2 - (tables.greenBias << 4))) {}

  HWY_INLINE ChromaShares shares(V16 ofFirst, V16 ofThird) const {
    const V16 firstAbove = firstAbove_.highHalf(ofFirst);
    const V16 thirdAbove = thirdAbove_.highHalf(ofThird);
    return {first_.highHalf(ofFirst), hn::Sub(green_, hn::Add(firstAbove, thirdAbove)),
            third_.highHalf(ofThird), hn::BitCast(hn::DFromV<VLow>(), firstAbove),
            hn::BitCast(hn::DFromV<VLow>(), thirdAbove)};
  }

  // Luma without low halves carries nothing.
  template <bool kCarries>
  HWY_INLINE ChannelWords channels(V16 luma, const ChromaShares& shares) const {
    const V16 high = luma_.startingAtZero(luma);
    const ChannelWords words = {hn::Add(high, shares.first), hn::Add(high, shares.green),
                                hn::Add(high, shares.third)};
    if constexpr (!kCarries) return words;
    const VLow low = luma_.lowHalf(luma);
    return {plusCarry(words.first, low, shares.firstAbove), words.green,
            plusCarry(words.third, low, shares.thirdAbove)};
  }

 private:
  // Table words begin at the twelfth bit of their lines; a high half holds sixteen from there on.
  static HWY_INLINE WordLine outer(YuvToRgb::Line line) {
    const uint32_t unbiased = static_cast<uint32_t>(line.base) - (512u << 16);
    return {unbiased << 4, static_cast<uint32_t>(line.slope) << 4};
  }
  static HWY_INLINE WordLine complement(YuvToRgb::Line line) {
    return {~(static_cast<uint32_t>(line.base) << 4) + (kTurned << 16),
            0u - (static_cast<uint32_t>(line.slope) << 4)};
  }
  static YuvToRgb::Line greenU(const YuvToRgb& tables) { return {0, tables.greenU}; }

  WordLine luma_, first_, firstAbove_, third_, thirdAbove_;
  V16 green_;
};

// Chroma of the first and of the third channel.
struct ChromaWords {
  V16 first, third;
};

// Two samples side by side, of which either may be that of the first channel.
class PairOrder {
 public:
  HWY_INLINE explicit PairOrder(bool isTurned) : first_(isTurned ? 8 : 0) {}
  HWY_INLINE ChromaWords operator()(V8 pairs) const {
    const V16 words = hn::BitCast(D16(), pairs), low = word(0xFF);
    return {hn::And(hn::ShiftRightSame(words, first_), low),
            hn::And(hn::ShiftRightSame(words, 8 - first_), low)};
  }

 private:
  int first_;
};

// Samples of a vector of pixels, from number `i` on. `order` is as in yuv_load-inl.h.
struct RowSamples {
  const uint8_t* first;  // chroma of the first channel, and of the third
  const uint8_t* third;

  HWY_INLINE RowSamples(const YuvRow& row, bool redFirst)
      : first(redFirst ? row.v : row.u), third(redFirst ? row.u : row.v) {}
};

struct FullPlanes : RowSamples {
  HWY_INLINE FullPlanes(const YuvRow& row, bool redFirst) : RowSamples(row, redFirst) {}
  static constexpr bool kHalved = false;
  template <class Order>
  HWY_INLINE Halves luma(const uint8_t* row, ptrdiff_t i, const Order& order) const {
    return widen(order.placed(loadBytes(row + i)));
  }
  template <class Order>
  HWY_INLINE ChromaWords evenChroma(ptrdiff_t i, const Order& order) const {
    return {evenBytes(order.placed(loadBytes(first + i))),
            evenBytes(order.placed(loadBytes(third + i)))};
  }
  template <class Order>
  HWY_INLINE ChromaWords oddChroma(ptrdiff_t i, const Order& order) const {
    return {oddBytes(order.placed(loadBytes(first + i))),
            oddBytes(order.placed(loadBytes(third + i)))};
  }
};

struct HalvedPlanes : FullPlanes {
  HWY_INLINE HalvedPlanes(const YuvRow& row, bool redFirst) : FullPlanes(row, redFirst) {}
  static constexpr bool kHalved = true;
  template <class Order>
  HWY_INLINE ChromaWords evenChroma(ptrdiff_t i, const Order& order) const {
    return {order.placed(loadWords(first + i / 2)), order.placed(loadWords(third + i / 2))};
  }
};

struct FullPairs : FullPlanes {
  HWY_INLINE FullPairs(const YuvRow& row, bool redFirst)
      : FullPlanes(row, redFirst), first_(third < first ? 8 : 0), pairs_(std::min(first, third)) {}
  template <class Order>
  HWY_INLINE ChromaWords evenChroma(ptrdiff_t i, const Order& order) const {
    return {evenBytes(order.placed(bytes(i, first_))),
            evenBytes(order.placed(bytes(i, 8 - first_)))};
  }
  template <class Order>
  HWY_INLINE ChromaWords oddChroma(ptrdiff_t i, const Order& order) const {
    return {oddBytes(order.placed(bytes(i, first_))), oddBytes(order.placed(bytes(i, 8 - first_)))};
  }

 private:
  // Those of each pair that begin at bit `shift`.
  HWY_INLINE V8 bytes(ptrdiff_t i, int shift) const {
    const auto at = [shift](const uint8_t* from) HWY_ATTR {
      return hn::BitCast(D8(), hn::ShiftRightSame(hn::BitCast(D16(), loadBytes(from)), shift));
    };
    return hn::ConcatEven(D8(), at(pairs_ + 2 * i + byteLanes()), at(pairs_ + 2 * i));
  }

  int first_;
  const uint8_t* pairs_;
};

struct HalvedPairs : FullPlanes {
  static constexpr bool kHalved = true;
  HWY_INLINE HalvedPairs(const YuvRow& row, bool redFirst)
      : FullPlanes(row, redFirst), inOrder(third < first), pairs(std::min(first, third)) {}
  template <class Order>
  HWY_INLINE ChromaWords evenChroma(ptrdiff_t i, const Order& order) const {
    return inOrder(order.placed(loadBytes(pairs + i)));
  }

  PairOrder inOrder;
  const uint8_t* pairs;
};

template <bool kLumaFirst>
struct Groups : RowSamples {
  static constexpr bool kHalved = true;
  HWY_INLINE Groups(const YuvRow& row, bool redFirst)
      : RowSamples(row, redFirst),
        inOrder(third < first),
        groups(std::min(first, third) - (kLumaFirst ? 1 : 0)) {}
  template <class Order>
  HWY_INLINE Halves luma(const uint8_t* row, ptrdiff_t i, const Order& order) const {
    return widen(order.placed(bytes<kLumaFirst>(row - (kLumaFirst ? 0 : 1) + 2 * i)));
  }
  template <class Order>
  HWY_INLINE ChromaWords evenChroma(ptrdiff_t i, const Order& order) const {
    return inOrder(order.placed(bytes<!kLumaFirst>(groups + 2 * i)));
  }

  PairOrder inOrder;
  const uint8_t* groups;

 private:
  template <bool kEven>
  static HWY_INLINE V8 bytes(const uint8_t* from) {
    const V8 low = loadBytes(from), high = loadBytes(from + byteLanes());
    return kEven ? hn::ConcatEven(D8(), high, low) : hn::ConcatOdd(D8(), high, low);
  }
};

// Bytes in memory order; the last one of four is constant.
template <ptrdiff_t kPixelBytes>
class ByteStore
    : public PixelStore<kPixelBytes == 4 ? PixelOrder::rgba32 : PixelOrder::rgb24, kPixelBytes> {
 public:
  static constexpr ptrdiff_t kBytes = kPixelBytes;
  explicit HWY_INLINE ByteStore(uint8_t alpha) : Base(alpha) {}
  HWY_INLINE void at(const ChannelWords& even, const ChannelWords& odd, uint8_t* dst) const {
    (*this)(packed(even.first, odd.first), packed(even.green, odd.green),
            packed(even.third, odd.third), dst);
  }

 private:
  using Base = PixelStore<kPixelBytes == 4 ? PixelOrder::rgba32 : PixelOrder::rgb24, kPixelBytes>;
  static HWY_INLINE V8 packed(V16 even, V16 odd) {
    return packWords(hn::ShiftRight<4>(hn::BitCast(DS(), even)),
                     hn::ShiftRight<4>(hn::BitCast(DS(), odd)));
  }
};

// 5-6-5, the first channel lowest.
class WordStore : public GroupsInOrder {
 public:
  static constexpr ptrdiff_t kBytes = 2;
  explicit HWY_INLINE WordStore(uint8_t /*alpha*/) {}
  HWY_INLINE void at(const ChannelWords& even, const ChannelWords& odd, uint8_t* dst) const {
    const V16 e = fields(even), o = fields(odd);
    storeBlocks(hn::BitCast(D8(), hn::InterleaveLower(D16(), e, o)),
                hn::BitCast(D8(), hn::InterleaveUpper(D16(), e, o)), dst);
  }

 private:
  static HWY_INLINE V16 clamped(V16 channel) {
    const VS v = hn::BitCast(DS(), channel);
    return hn::BitCast(D16(), hn::Min(hn::Max(v, hn::Zero(DS())), signedWord(255 << 4 | 15)));
  }
  static HWY_INLINE V16 fields(const ChannelWords& c) {
    const V16 top = hn::And(hn::ShiftLeft<4>(clamped(c.third)), word(0xF800));
    const V16 centre = hn::And(hn::ShiftRight<1>(clamped(c.green)), word(0x07E0));
    return hn::Or(hn::Or(top, centre), hn::ShiftRight<7>(clamped(c.first)));
  }
};

template <bool kCarries, class Samples, class Store>
HWY_INLINE void convertVector(const Samples& samples, const TableLines& lines, const YuvRow& row,
                              ptrdiff_t i, const Store& store) {
  const ChromaWords chroma = samples.evenChroma(i, store);
  const ChromaShares even = lines.shares(chroma.first, chroma.third);
  ChromaShares odd = even;
  if constexpr (!Samples::kHalved) {
    const ChromaWords own = samples.oddChroma(i, store);
    odd = lines.shares(own.first, own.third);
  }
  for (ptrdiff_t line = 0; line < row.lines(); ++line) {
    const Halves luma = samples.luma(row.luma[line], i, store);
    store.at(lines.channels<kCarries>(luma.even, even), lines.channels<kCarries>(luma.odd, odd),
             row.dst[line] + i * Store::kBytes);
  }
}

// What the rows of a conversion have in common.
struct ConvertTask {
  const YuvToRgb& tables;
  bool redFirst;
  uint8_t alpha;
};

// Whole vectors, the last of which may overlap the one before it. Where chroma is halved, pixels
// are an even number.
template <bool kCarries, class Samples, class Store>
HWY_NOINLINE void convertVectors(const YuvRow* rows, ptrdiff_t count, ptrdiff_t pixels,
                                 const ConvertTask& task) {
  const TableLines lines(task.tables, task.redFirst);
  const Store store(task.alpha);
  const ptrdiff_t last = pixels - byteLanes();
  for (const YuvRow* row = rows; row < rows + count; ++row) {
    const Samples samples(*row, task.redFirst);
    for (ptrdiff_t next = 0; next < pixels; next += byteLanes()) {
      convertVector<kCarries>(samples, lines, *row, std::min(next, last), store);
    }
  }
}

template <class Samples, class Store>
HWY_INLINE void convertVectors(const YuvRow* rows, ptrdiff_t count, ptrdiff_t pixels,
                               const ConvertTask& task) {
  if ((task.tables.luma[1] & 0xFFFF) != 0) {
    convertVectors<true, Samples, Store>(rows, count, pixels, task);
  } else {
    convertVectors<false, Samples, Store>(rows, count, pixels, task);
  }
}

template <class Store>
HWY_INLINE void convertVectors(const YuvRow* rows, ptrdiff_t count, ptrdiff_t pixels,
                               const ConvertTask& task) {
  if (!rows->halved && rows->chromaStep == 1) {
    convertVectors<FullPlanes, Store>(rows, count, pixels, task);
  } else if (!rows->halved) {
    convertVectors<FullPairs, Store>(rows, count, pixels, task);
  } else if (rows->chromaStep == 1) {
    convertVectors<HalvedPlanes, Store>(rows, count, pixels, task);
  } else if (rows->chromaStep == 2) {
    convertVectors<HalvedPairs, Store>(rows, count, pixels, task);
  } else if (rows->luma[0] < std::min(rows->u, rows->v)) {
    convertVectors<Groups<true>, Store>(rows, count, pixels, task);
  } else {
    convertVectors<Groups<false>, Store>(rows, count, pixels, task);
  }
}

// As memcpy, for a few blocks at most.
HWY_INLINE void copyFew(const uint8_t* from, ptrdiff_t bytes, uint8_t* to) {
  constexpr ptrdiff_t kBlock = 16;
  if (bytes < kBlock) {
    memcpy(to, from, static_cast<size_t>(bytes));
    return;
  }
  for (ptrdiff_t i = 0; i < bytes - kBlock; i += kBlock) memcpy(to + i, from + i, kBlock);
  memcpy(to + bytes - kBlock, from + bytes - kBlock, kBlock);
}

// The end of a row that is shorter than a vector, with room behind it.
class ShortRow {
 public:
  // The pixels behind the first `done`, which are an even number where chroma is halved.
  ShortRow(const YuvRow& whole, ptrdiff_t done, ptrdiff_t pixels, ptrdiff_t pixelBytes)
      : row_(whole), pixels_(pixels - done), samples_(whole.halved ? (pixels_ + 1) / 2 : pixels_) {
    const ptrdiff_t chroma = (whole.halved ? done / 2 : done) * whole.chromaStep;
    row_.u += chroma;
    row_.v += chroma;
    for (ptrdiff_t line = 0; line < row_.lines(); ++line) {
      row_.luma[line] += done * row_.lumaStep;
      dst_[line] = row_.dst[line] + done * pixelBytes;
      row_.dst[line] = made_[line];
    }
    if (row_.lumaStep == 2) {
      copyGroups();
      return;
    }
    for (ptrdiff_t line = 0; line < row_.lines(); ++line) {
      row_.luma[line] = copied(row_.luma[line], pixels_, luma_[line]);
    }
    if (row_.chromaStep == 2) {
      copyPairs();
      return;
    }
    row_.u = copied(row_.u, samples_, chroma_[0]);
    row_.v = copied(row_.v, samples_, chroma_[1]);
  }
  ShortRow(const ShortRow&) = delete;
  ShortRow& operator=(const ShortRow&) = delete;

  const YuvRow* row() const { return &row_; }

  void deliver(ptrdiff_t pixelBytes) const {
    for (ptrdiff_t line = 0; line < row_.lines(); ++line) {
      copyFew(made_[line], pixels_ * pixelBytes, dst_[line]);
    }
  }

 private:
  static const uint8_t* copied(const uint8_t* from, ptrdiff_t bytes, uint8_t* to) {
    copyFew(from, bytes, to);
    return to;
  }
  void copyPairs() {
    const uint8_t* const pairs = std::min(row_.u, row_.v);
    const uint8_t* const copy = copied(pairs, 2 * samples_, chroma_[0]);
    row_.u = copy + (row_.u - pairs);
    row_.v = copy + (row_.v - pairs);
  }
  void copyGroups() {
    const uint8_t* const groups = std::min({row_.luma[0], row_.u, row_.v});
    const ptrdiff_t lead = row_.luma[0] - groups;
    row_.u = luma_[0] + (row_.u - groups);
    row_.v = luma_[0] + (row_.v - groups);
    for (ptrdiff_t line = 0; line < row_.lines(); ++line) {
      row_.luma[line] = copied(row_.luma[line] - lead, 4 * samples_, luma_[line]) + lead;
    }
  }

  YuvRow row_;
  ptrdiff_t pixels_, samples_;
  uint8_t* dst_[2] = {};
  uint8_t luma_[2][2 * HWY_MAX_BYTES];
  uint8_t chroma_[2][2 * HWY_MAX_BYTES];
  uint8_t made_[2][4 * HWY_MAX_BYTES];
};

template <class Store>
HWY_INLINE void convertRows(const YuvRow* rows, ptrdiff_t count, ptrdiff_t pixels,
                            const ConvertTask& task) {
  if (count <= 0 || pixels <= 0) return;
  const ptrdiff_t even = rows->halved ? pixels & ~ptrdiff_t{1} : pixels;
  const ptrdiff_t whole = even < byteLanes() ? 0 : even;
  if (whole > 0) convertVectors<Store>(rows, count, whole, task);
  if (whole == pixels) return;
  for (const YuvRow* row = rows; row < rows + count; ++row) {
    const ShortRow rest(*row, whole, pixels, Store::kBytes);
    convertVectors<Store>(rest.row(), 1, byteLanes(), task);
    rest.deliver(Store::kBytes);
  }
}

void yuvToRgb24(const YuvRow* rows, ptrdiff_t count, ptrdiff_t pixels, const YuvToRgb& tables,
                bool redFirst) {
  convertRows<ByteStore<3>>(rows, count, pixels, {tables, redFirst, 0});
}

void yuvToRgb32(const YuvRow* rows, ptrdiff_t count, ptrdiff_t pixels, const YuvToRgb& tables,
                bool redFirst, uint8_t alpha) {
  convertRows<ByteStore<4>>(rows, count, pixels, {tables, redFirst, alpha});
}

void yuvToRgb16(const YuvRow* rows, ptrdiff_t count, ptrdiff_t pixels, const YuvToRgb& tables,
                bool redFirst) {
  convertRows<WordStore>(rows, count, pixels, {tables, redFirst, 0});
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
