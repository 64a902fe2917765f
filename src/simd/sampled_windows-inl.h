// The windows of a resampled run, and what stands in them. Included once per target.
#if defined(QPX_SIMD_SAMPLED_WINDOWS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef QPX_SIMD_SAMPLED_WINDOWS_INL_H_
#undef QPX_SIMD_SAMPLED_WINDOWS_INL_H_
#else
#define QPX_SIMD_SAMPLED_WINDOWS_INL_H_
#endif

#include <hwy/highway.h>

#include <algorithm>

#include "simd/sampled_rows.h"

// A target without vectors runs the plain forms.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128

HWY_BEFORE_NAMESPACE();
namespace qpx::simd {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// A vector of pairs makes kBlock bytes of a run, kPart of them from each window of kWindow bytes.
#if HWY_TARGET == HWY_AVX3_DL
using WindowBytes = hn::CappedTag<uint8_t, 64>;
constexpr ptrdiff_t kPart = 32;
#else
using WindowBytes = hn::CappedTag<uint8_t, 32>;
constexpr ptrdiff_t kPart = 8;
#endif
using WindowWords = hn::Repartition<uint16_t, WindowBytes>;
using WindowVector = hn::Vec<WindowBytes>;
constexpr ptrdiff_t kBlock = static_cast<ptrdiff_t>(hn::MaxLanes(WindowWords()));
constexpr ptrdiff_t kWindow = 4 * kPart;
static_assert(kPart >= 8);  // for SampledWindows::start

// Where block `b` begins: the last one ends with the run and may overlap the one before it.
HWY_INLINE ptrdiff_t blockBegin(ptrdiff_t b, ptrdiff_t made) {
  return std::min(b * kBlock, made - kBlock);
}
HWY_INLINE ptrdiff_t blockCount(ptrdiff_t made) { return (made + kBlock - 1) / kBlock; }

#if HWY_TARGET == HWY_AVX3_DL

HWY_INLINE WindowVector pairsOf(const SampledWindows& windows, ptrdiff_t b, const uint8_t* src) {
  const uint8_t* const window = src + windows.start[b];
  const __m512i index = _mm512_loadu_si512(windows.index + 2 * kBlock * b);
  return WindowVector{
      _mm512_permutex2var_epi8(_mm512_loadu_si512(window), index, _mm512_loadu_si512(window + 64))};
}

#else

using PartBytes = hn::FixedTag<uint8_t, 16>;

// Sixteen bytes of each window of a block.
HWY_INLINE WindowVector sixteenOf(const int32_t* start, const uint8_t* src) {
  const auto first = hn::LoadU(PartBytes(), src + start[0]);
#if HWY_MAX_BYTES >= 32
  return hn::Combine(WindowBytes(), hn::LoadU(PartBytes(), src + start[1]), first);
#else
  return first;
#endif
}

// Indices reach 31. Those of the other half look up nothing.
#if HWY_ARCH_ARM_A64

HWY_INLINE WindowVector lookup(WindowVector lower, WindowVector upper, WindowVector index) {
  const uint8x16x2_t bytes = {{lower.raw, upper.raw}};
  return WindowVector{vqtbl2q_u8(bytes, index.raw)};
}

#elif HWY_ARCH_ARM

HWY_INLINE WindowVector lookup(WindowVector lower, WindowVector upper, WindowVector index) {
  const uint8x8x4_t bytes = {{vget_low_u8(lower.raw), vget_high_u8(lower.raw),
                              vget_low_u8(upper.raw), vget_high_u8(upper.raw)}};
  return WindowVector{vcombine_u8(vtbl4_u8(bytes, vget_low_u8(index.raw)),
                                  vtbl4_u8(bytes, vget_high_u8(index.raw)))};
}

#else

HWY_INLINE WindowVector lookup(WindowVector lower, WindowVector upper, WindowVector index) {
  const WindowBytes d;
  const auto inLower = hn::SaturatedAdd(index, hn::Set(d, uint8_t{0x70}));
  const auto inUpper = hn::Sub(index, hn::Set(d, uint8_t{16}));
  return hn::Or(hn::TableLookupBytesOr0(lower, inLower), hn::TableLookupBytesOr0(upper, inUpper));
}

#endif

HWY_INLINE WindowVector pairsOf(const SampledWindows& windows, ptrdiff_t b, const uint8_t* src) {
  const int32_t* const start = windows.start + b * (kBlock / kPart);
  const auto index = hn::LoadU(WindowBytes(), windows.index + 2 * kBlock * b);
  return lookup(sixteenOf(start, src), sixteenOf(start, src + 16), index);
}

#endif

// A mixture goes from the nearer of two bytes towards the farther one, by at most half of the way:
// so that the weight of the farther, in 65536ths and taken as negative, fits 16 bits.
HWY_INLINE bool nearerIsFirst(int32_t fraction) { return fraction < 0x8000; }
HWY_INLINE int16_t fartherWeight(int32_t fraction) {
  return static_cast<int16_t>(nearerIsFirst(fraction) ? -fraction : fraction - 0x10000);
}

// Bytes of a source row that a run reads.
struct ReadRange {
  ptrdiff_t begin, end;
};

inline ReadRange rangeOf(const SampledRun& run) {
  ReadRange range = {PTRDIFF_MAX, 0};
  for (ptrdiff_t i = 0; i < run.count; ++i) {
    const ptrdiff_t left = ptrdiff_t{run.place[i]} * run.stride;
    range.begin = std::min(range.begin, left);
    range.end = std::max(range.end, left + (run.fractionOf(i) != 0 ? run.stride : 0) + run.bytes);
  }
  return range;
}

// The window of bytes first..first + kPart - 1 of the run. False if it would have to be larger, or
// to reach over what the run reads.
inline bool findWindow(const SampledRun& run, const ReadRange& range, ptrdiff_t first,
                       int32_t* start, uint8_t* index, int16_t* weight) {
  ptrdiff_t nearer[kPart], farther[kPart];
  ptrdiff_t low = PTRDIFF_MAX, high = 0;
  ptrdiff_t element = first / run.bytes, c = first % run.bytes;
  for (ptrdiff_t k = 0; k < kPart; ++k) {
    const int32_t fraction = c == 3 ? 0 : run.fractionOf(element);
    const ptrdiff_t left = ptrdiff_t{run.place[element]} * run.stride + c;
    const ptrdiff_t right = fraction != 0 ? left + run.stride : left;
    const bool isLeft = nearerIsFirst(fraction);
    nearer[k] = isLeft ? left : right;
    farther[k] = isLeft ? right : left;
    weight[k] = fartherWeight(fraction);
    low = std::min(low, left);
    high = std::max(high, right);
    if (++c == run.bytes) {
      c = 0;
      ++element;
    }
  }
  low = std::min(low, range.end - kWindow);
  if (low < range.begin || high - low >= kWindow || low > INT32_MAX) return false;
  *start = static_cast<int32_t>(low);
  for (ptrdiff_t k = 0; k < kPart; ++k) {
    index[2 * k] = static_cast<uint8_t>(nearer[k] - low);
    index[2 * k + 1] = static_cast<uint8_t>(farther[k] - low);
  }
  return true;
}

void findWindows(const SampledRun& run, SampledWindows* windows) {
  constexpr ptrdiff_t kParts = kBlock / kPart;
  windows->found = false;
  const ptrdiff_t made = run.made();
  if (made < kBlock || made > SampledWindows::kMost) return;
  const ReadRange range = rangeOf(run);
  for (ptrdiff_t b = 0; b < blockCount(made); ++b) {
    for (ptrdiff_t p = 0; p < kParts; ++p) {
      const ptrdiff_t at = kBlock * b + kPart * p;
      if (!findWindow(run, range, blockBegin(b, made) + kPart * p, windows->start + kParts * b + p,
                      windows->index + 2 * at, windows->weight + at)) {
        return;
      }
    }
  }
  windows->found = true;
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace qpx::simd
HWY_AFTER_NAMESPACE();

#endif  // HWY_TARGET

#endif  // per target
