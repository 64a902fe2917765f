// Rows of a resampled picture. Included once per target.
#if defined(QPX_SIMD_SAMPLED_ROWS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_SAMPLED_ROWS_INL_H_
#undef QPX_SIMD_SAMPLED_ROWS_INL_H_
#else
#define QPX_SIMD_SAMPLED_ROWS_INL_H_
#endif

#include <hwy/highway.h>
#include <string.h>

#include "simd/byte_vectors-inl.h"
#include "simd/sampled_rows.h"
#include "simd/sampled_windows-inl.h"

// A target without vectors runs the plain forms.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// `weight` is as fartherWeight makes it.
template <class D, class V>
HWY_INLINE V mixWords(D, V nearer, V farther, V weight) {
  return hn::Add(nearer, hn::MulHigh(weight, hn::Sub(nearer, farther)));
}

// Words of 0..255 as half a vector of bytes.
HWY_INLINE void storeBlock(hn::Vec<WindowWords> words, uint8_t* to) {
#if HWY_TARGET == HWY_AVX3_DL
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), _mm512_cvtepi16_epi8(words.raw));
#else
  const hn::RebindToSigned<WindowWords> d;
  const hn::Rebind<uint8_t, WindowWords> bytes;
  hn::StoreU(hn::DemoteTo(bytes, hn::BitCast(d, words)), bytes, to);
#endif
}

HWY_INLINE hn::Vec<WindowWords> lowBytes(WindowVector pairs) {
  const WindowWords d;
  return hn::And(hn::BitCast(d, pairs), hn::Set(d, 0xFF));
}

void pick(const SampledRun& run, const SampledWindows& windows, const uint8_t* src, uint8_t* dst) {
  if (!windows.found) return plain::pick(run, windows, src, dst);
  const ptrdiff_t made = run.made();
  for (ptrdiff_t b = 0; b < blockCount(made); ++b) {
    storeBlock(lowBytes(pairsOf(windows, b, src)), dst + blockBegin(b, made));
  }
}

using SignedWords = hn::RebindToSigned<WindowWords>;
using SignedVector = hn::Vec<SignedWords>;

// A block of a row, mixed across.
HWY_INLINE SignedVector mixedBlock(const SampledWindows& windows, ptrdiff_t b, const uint8_t* src) {
  const WindowWords d;
  const SignedWords ds;
  const WindowVector pairs = pairsOf(windows, b, src);
  const auto nearer = hn::BitCast(ds, lowBytes(pairs));
  const auto farther = hn::BitCast(ds, hn::ShiftRight<8>(hn::BitCast(d, pairs)));
  return mixWords(ds, nearer, farther, hn::LoadU(ds, windows.weight + kBlock * b));
}

HWY_INLINE void mixWindows(const SampledWindows& windows, ptrdiff_t made, const uint8_t* src,
                           uint8_t* dst) {
  for (ptrdiff_t b = 0; b < blockCount(made); ++b) {
    const auto mixed = hn::BitCast(WindowWords(), mixedBlock(windows, b, src));
    storeBlock(mixed, dst + blockBegin(b, made));
  }
}

void blend(const SampledRun& run, const SampledWindows& windows, const uint8_t* top,
           const uint8_t* bottom, int32_t fraction, uint8_t* dst) {
  if (!windows.found) return plain::blend(run, windows, top, bottom, fraction, dst);
  const SignedWords d;
  const hn::Repartition<uint64_t, SignedWords> d64;
  const bool fromTop = nearerIsFirst(fraction);
  const auto weight = hn::Set(d, fartherWeight(fraction));
  const auto kept = hn::BitCast(d, hn::Set(d64, run.bytes == 4 ? 0xFFFF000000000000u : 0u));
  const ptrdiff_t made = run.made();
  for (ptrdiff_t b = 0; b < blockCount(made); ++b) {
    const SignedVector upper = mixedBlock(windows, b, top);
    const SignedVector lower = mixedBlock(windows, b, bottom);
    const auto mixed = mixWords(d, fromTop ? upper : lower, fromTop ? lower : upper, weight);
    const auto bytes = hn::Or(hn::And(kept, upper), hn::AndNot(kept, mixed));
    storeBlock(hn::BitCast(WindowWords(), bytes), dst + blockBegin(b, made));
  }
}

// Where steps are too large for windows: the bytes of some elements, one element after another.
struct Gathered {
  static constexpr int kBytes = 64;
  HWY_ALIGN uint8_t nearer[kBytes];
  HWY_ALIGN uint8_t farther[kBytes];
  HWY_ALIGN int16_t weight[kBytes];
};

template <int kBytes>
HWY_INLINE void gather(const SampledRun& run, ptrdiff_t first, const uint8_t* src,
                       Gathered* gathered) {
  for (ptrdiff_t i = 0; i < Gathered::kBytes / kBytes; ++i) {
    const int32_t fraction = run.fraction[first + i];
    const uint8_t* const left = src + ptrdiff_t{run.place[first + i]} * run.stride;
    const uint8_t* const right = fraction != 0 ? left + run.stride : left;
    const bool isLeft = nearerIsFirst(fraction);
    memcpy(gathered->nearer + kBytes * i, isLeft ? left : right, kBytes);
    memcpy(gathered->farther + kBytes * i, isLeft ? right : left, kBytes);
    const int16_t weight = fartherWeight(fraction);
    for (int c = 0; c < kBytes; ++c) gathered->weight[kBytes * i + c] = weight;
    if constexpr (kBytes == 4) {
      gathered->nearer[4 * i + 3] = left[3];
      gathered->weight[4 * i + 3] = 0;
    }
  }
}

HWY_INLINE void mixGathered(const Gathered& gathered, uint8_t* dst) {
  const WindowWords d;
  const hn::RebindToSigned<WindowWords> ds;
  const hn::Rebind<uint8_t, WindowWords> bytes;
  const auto wide = [&](const uint8_t* from)
                        HWY_ATTR { return hn::PromoteTo(ds, hn::LoadU(bytes, from)); };
  for (ptrdiff_t i = 0; i < Gathered::kBytes; i += kBlock) {
    const auto mixed = mixWords(ds, wide(gathered.nearer + i), wide(gathered.farther + i),
                                hn::LoadU(ds, gathered.weight + i));
    storeBlock(hn::BitCast(d, mixed), dst + i);
  }
}

// Whole blocks; returns the elements done.
template <int kBytes>
HWY_INLINE ptrdiff_t acrossGathered(const SampledRun& run, const uint8_t* src, uint8_t* dst) {
  constexpr ptrdiff_t kElements = Gathered::kBytes / kBytes;
  Gathered gathered;
  ptrdiff_t i = 0;
  for (; i <= run.count - kElements; i += kElements) {
    gather<kBytes>(run, i, src, &gathered);
    mixGathered(gathered, dst + i * kBytes);
  }
  return i;
}

void across(const SampledRun& run, const SampledWindows& windows, const uint8_t* src,
            uint8_t* dst) {
  if (windows.found) return mixWindows(windows, run.made(), src, dst);
  ptrdiff_t done = 0;
  if (run.bytes == 1) done = acrossGathered<1>(run, src, dst);
  if (run.bytes == 4) done = acrossGathered<4>(run, src, dst);
  const SampledRun rest = {run.place + done, run.fraction + done, run.count - done, run.stride,
                           run.bytes};
  plain::across(rest, windows, src, dst + done * run.bytes);
}

// What `down` does to a vector: from the nearer row towards the farther one.
class Down {
 public:
  HWY_INLINE Down(int32_t fraction, bool keepsFourth)
      : weight_(signedWord(fartherWeight(fraction))),
        kept_(hn::BitCast(
            D8(), hn::Set(hn::Repartition<uint32_t, D8>(), keepsFourth ? 0xFF000000u : 0u))) {}

  HWY_INLINE V8 operator()(V8 nearer, V8 farther, V8 top) const {
    const Halves n = widen(nearer), f = widen(farther);
    const V8 mixed = narrow({mix(n.even, f.even), mix(n.odd, f.odd)});
    return hn::Or(hn::And(kept_, top), hn::AndNot(kept_, mixed));
  }

 private:
  HWY_INLINE V16 mix(V16 nearer, V16 farther) const {
    const DS d;
    return hn::BitCast(D16(),
                       mixWords(d, hn::BitCast(d, nearer), hn::BitCast(d, farther), weight_));
  }

  VS weight_;
  V8 kept_;
};

void down(const uint8_t* top, const uint8_t* bottom, int32_t fraction, ptrdiff_t count,
          bool keepsFourth, uint8_t* dst) {
  const ptrdiff_t length = byteLanes();
  const bool fromTop = nearerIsFirst(fraction);
  const uint8_t *const nearer = fromTop ? top : bottom, *const farther = fromTop ? bottom : top;
  const Down mix(fraction, keepsFourth);
  ptrdiff_t i = 0;
  for (; i <= count - length; i += length) {
    storeBytes(mix(loadBytes(nearer + i), loadBytes(farther + i), loadBytes(top + i)), dst + i);
  }
  plain::down(top + i, bottom + i, fraction, count - i, keepsFourth, dst + i);
}

// Averages round up; on complements that rounds down, as the definition does.
HWY_INLINE V8 cutMeanOfFour(V8 a, V8 b, V8 c, V8 d) {
  const V8 upper = hn::AverageRound(hn::Not(a), hn::Not(b));
  const V8 lower = hn::AverageRound(hn::Not(c), hn::Not(d));
  return hn::Not(hn::AverageRound(upper, lower));
}

// Calls step(i) for all vectors of a row that is halved, the first and the last of them where the
// row begins and ends and all others where the source is aligned: reads are what halving costs, and
// those that lie across cache lines count twice. False if the row is shorter than a vector.
template <int kBytes, class Step>
HWY_INLINE bool halveVectors(const uint8_t* src, ptrdiff_t count, const Step& step) {
  const ptrdiff_t length = byteLanes() / kBytes;
  if (count < length) return false;
  step(0);
  const auto past = static_cast<ptrdiff_t>(reinterpret_cast<uintptr_t>(src) %
                                           static_cast<uintptr_t>(byteLanes()));
  for (ptrdiff_t i = length - past / (2 * kBytes); i < count - length; i += length) step(i);
  step(count - length);
  return true;
}

void halve1(const uint8_t* top, const uint8_t* bottom, ptrdiff_t count, uint8_t* dst) {
  const D8 d;
  const bool done = halveVectors<1>(top, count, [=](ptrdiff_t i) HWY_ATTR {
    const V8 t0 = loadBytes(top + 2 * i), t1 = loadBytes(top + 2 * i + byteLanes());
    const V8 b0 = loadBytes(bottom + 2 * i), b1 = loadBytes(bottom + 2 * i + byteLanes());
    const V8 mean = cutMeanOfFour(hn::ConcatEven(d, t1, t0), hn::ConcatOdd(d, t1, t0),
                                  hn::ConcatEven(d, b1, b0), hn::ConcatOdd(d, b1, b0));
    storeBytes(mean, dst + i);
  });
  if (!done) plain::halve1(top, bottom, count, dst);
}

// Fourth bytes are those of the left upper elements.
void halve4(const uint8_t* top, const uint8_t* bottom, ptrdiff_t count, uint8_t* dst) {
  const hn::Repartition<uint32_t, D8> d;
  const ptrdiff_t vector = byteLanes();
  const V8 colours = hn::BitCast(D8(), hn::Set(d, 0x00FFFFFFu));
  const auto load = [=](const uint8_t* at) HWY_ATTR { return hn::BitCast(d, loadBytes(at)); };
  const auto bytes = [](hn::Vec<decltype(d)> v) HWY_ATTR { return hn::BitCast(D8(), v); };
  const bool done = halveVectors<4>(top, count, [=](ptrdiff_t i) HWY_ATTR {
    const auto t0 = load(top + 8 * i), t1 = load(top + 8 * i + vector);
    const auto b0 = load(bottom + 8 * i), b1 = load(bottom + 8 * i + vector);
    const V8 left = bytes(hn::ConcatEven(d, t1, t0));
    const V8 mean =
        cutMeanOfFour(left, bytes(hn::ConcatOdd(d, t1, t0)), bytes(hn::ConcatEven(d, b1, b0)),
                      bytes(hn::ConcatOdd(d, b1, b0)));
    storeBytes(hn::Or(hn::And(colours, mean), hn::AndNot(colours, left)), dst + 4 * i);
  });
  if (!done) plain::halve4(top, bottom, count, dst);
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
