// Rows of resampled pictures against the rule for a single byte, on buffers that begin and end with
// what a run may read.
#include "simd/sampled_rows.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <vector>

#include "simd/target_test.h"

namespace qpx::simd {
namespace {

class SampledRowsTest : public TargetTest {
 protected:
  const SampledRows& vectorSampled() const { return vectorForm<SampledRows>(); }
  const SampledRows& plainSampled() const { return plainForm<SampledRows>(); }
};
QPX_FOR_EACH_TARGET(SampledRowsTest);

uint32_t next(uint64_t& state) {
  state = state * 6364136223846793005u + 1442695040888963407u;
  return static_cast<uint32_t>(state >> 32);
}

// Noise with full and empty bytes among it.
std::vector<uint8_t> noisy(size_t size, uint64_t seed) {
  uint64_t state = seed;
  std::vector<uint8_t> bytes(size);
  for (uint8_t& byte : bytes) {
    const uint32_t random = next(state);
    byte = static_cast<uint8_t>(random);
    if ((random >> 8 & 7) == 0) byte = (random >> 11 & 1) != 0 ? 255 : 0;
  }
  return bytes;
}

uint8_t mixed(int64_t p, int64_t q, int64_t fraction) {
  return static_cast<uint8_t>(((p << 16) + fraction * (q - p)) >> 16);
}

// Elements of a run, some at either end held at an edge.
struct Elements {
  Elements(ptrdiff_t count, uint32_t step, uint32_t start, int32_t strideBytes, int32_t taken,
           ptrdiff_t heldFirst, ptrdiff_t heldLast)
      : stride(strideBytes), bytes(taken) {
    for (ptrdiff_t i = 0; i < count; ++i) {
      const bool held = i < heldFirst || i >= count - heldLast;
      const ptrdiff_t k = i < heldFirst ? heldFirst : std::min(i, count - heldLast);
      const uint64_t position = start + static_cast<uint64_t>(step) * static_cast<uint64_t>(k);
      place.push_back(static_cast<int32_t>(position >> 16));
      fraction.push_back(held ? 0 : static_cast<int32_t>(position & 0xFFFF));
    }
    first = count > 0 ? place[0] : 0;
    for (size_t i = 0; i < place.size(); ++i) {
      last = std::max(last, place[i] + (fraction[i] != 0 ? 1 : 0));
    }
  }

  SampledRun run() const {
    return {place.data(), fraction.data(), static_cast<ptrdiff_t>(place.size()), stride, bytes};
  }
  SampledRun nearest() const {
    return {place.data(), nullptr, static_cast<ptrdiff_t>(place.size()), stride, bytes};
  }
  // A row of the source, from its first byte that is needed to the last.
  std::vector<uint8_t> source(uint64_t seed) const {
    if (place.empty()) return {};
    return noisy(static_cast<size_t>((last - first) * stride + bytes), seed);
  }
  // Of a row from source(): where its element 0 would be.
  const uint8_t* origin(const std::vector<uint8_t>& row) const {
    return row.data() - ptrdiff_t{first} * stride;
  }

  int32_t stride, bytes;
  int32_t first = 0, last = 0;
  std::vector<int32_t> place, fraction;
};

uint8_t expectedByte(const Elements& run, const uint8_t* src, size_t i, int32_t c, bool mixes) {
  const uint8_t* const left = src + ptrdiff_t{run.place[i]} * run.stride + c;
  const int32_t fraction = run.fraction[i];
  return !mixes || c == 3 || fraction == 0 ? *left : mixed(*left, left[run.stride], fraction);
}

std::vector<uint8_t> expectedRow(const Elements& run, const uint8_t* src, bool mixes) {
  std::vector<uint8_t> row;
  for (size_t i = 0; i < run.place.size(); ++i) {
    for (int32_t c = 0; c < run.bytes; ++c) row.push_back(expectedByte(run, src, i, c, mixes));
  }
  return row;
}

struct Shape {
  int32_t stride, bytes;
};
constexpr Shape kShapes[] = {{1, 1}, {2, 1}, {2, 2}, {3, 3}, {4, 4}};

// Steps from enlargements to more than any window holds, and the usual ones among them.
constexpr uint32_t kSteps[] = {0x2000,  0x8000,  0xFFFF,  0x10000, 0x10001, 0x18000,
                               0x20000, 0x2B3C4, 0x34567, 0x40000, 0x48000, 0xA0001};

void expectRows(const SampledRows& rows, const Elements& run, uint64_t seed) {
  const std::vector<uint8_t> src = run.source(seed);
  const auto windows = std::make_unique<SampledWindows>();
  for (const bool mixes : {false, true}) {
    const SampledRun asked = mixes ? run.run() : run.nearest();
    std::vector<uint8_t> made(static_cast<size_t>(asked.made()) + 3, 0x5A);
    std::vector<uint8_t> expected = expectedRow(run, run.origin(src), mixes);
    expected.resize(made.size(), 0x5A);
    rows.findWindows(asked, windows.get());
    (mixes ? rows.across : rows.pick)(asked, *windows, run.origin(src), made.data());
    ASSERT_EQ(expected, made) << run.stride << ", " << run.bytes << ", " << run.place.size();
  }
}

TEST_P(SampledRowsTest, RunsOfEveryStepAndShapeAreTheRule) {
  uint64_t state = 3;
  for (const Shape& shape : kShapes) {
    for (const uint32_t step : kSteps) {
      for (int i = 0; i < 24; ++i) {
        const ptrdiff_t most = i % 6 == 0 ? 512 : 80;
        const ptrdiff_t count = next(state) % static_cast<uint32_t>(most + 1);
        const bool held = i % 3 == 0 && count > 12;
        const Elements run(count, step, next(state) % 400000, shape.stride, shape.bytes,
                           held ? next(state) % 5 : 0, held ? next(state) % 5 : 0);
        for (const SampledRows* rows : {&vectorSampled(), &plainSampled()}) {
          ASSERT_NO_FATAL_FAILURE(expectRows(*rows, run, next(state))) << step;
        }
      }
    }
  }
}

// Fractions of every kind down, the middle among them.
TEST_P(SampledRowsTest, BothRowsAtOnceAreTheRule) {
  uint64_t state = 7;
  const auto windows = std::make_unique<SampledWindows>();
  for (const Shape& shape : kShapes) {
    for (int i = 0; i < 60; ++i) {
      const uint32_t step = kSteps[next(state) % std::size(kSteps)];
      const Elements run(next(state) % 130, step, next(state) % 400000, shape.stride, shape.bytes,
                         0, 0);
      const int32_t fraction = i % 5 == 0 ? 0x8000 : static_cast<int32_t>(next(state) & 0xFFFF);
      const std::vector<uint8_t> top = run.source(next(state)), bottom = run.source(next(state));
      std::vector<uint8_t> expected = expectedRow(run, run.origin(top), true);
      const std::vector<uint8_t> below = expectedRow(run, run.origin(bottom), true);
      for (size_t k = 0; k < expected.size(); ++k) {
        if (shape.bytes == 4 && k % 4 == 3) continue;
        expected[k] = mixed(expected[k], below[k], fraction);
      }
      for (const SampledRows* rows : {&vectorSampled(), &plainSampled()}) {
        std::vector<uint8_t> made(expected.size());
        rows->findWindows(run.run(), windows.get());
        rows->blend(run.run(), *windows, run.origin(top), run.origin(bottom), fraction,
                    made.data());
        ASSERT_EQ(expected, made) << shape.stride << ", " << shape.bytes << ", " << step;
      }
    }
  }
}

// A clip may put elements in the middle of a run anywhere.
TEST_P(SampledRowsTest, PlacesNeedNotRise) {
  uint64_t state = 4;
  for (int i = 0; i < 40; ++i) {
    Elements run(100, 0x18000, 0x30000, 1, 1, 0, 0);
    run.place[next(state) % 100] = run.first;
    run.place[next(state) % 100] = run.last - 1;
    ASSERT_NO_FATAL_FAILURE(expectRows(vectorSampled(), run, next(state)));
  }
}

// Where the vectors have windows at all, usual steps fill them.
TEST_P(SampledRowsTest, UsualStepsHaveWindows) {
  if ((GetParam() & (HWY_SCALAR | HWY_EMU128)) != 0) return;
  const auto windows = std::make_unique<SampledWindows>();
  for (const Shape& shape : kShapes) {
    for (const uint32_t step : {0x8000u, 0x10000u, 0x1A000u}) {
      const Elements run(256, step, 0x8000, shape.stride, shape.bytes, 0, 0);
      vectorSampled().findWindows(run.run(), windows.get());
      EXPECT_TRUE(windows->found) << shape.stride << ", " << shape.bytes << ", " << step;
    }
  }
}

TEST_P(SampledRowsTest, EveryFractionMixesAsWritten) {
  const auto windows = std::make_unique<SampledWindows>();
  for (int32_t first = 0; first < 65536; first += 512) {
    Elements run(512, 0x10000, 0, 1, 1, 0, 0);
    for (int32_t i = 0; i < 512; ++i) run.fraction[static_cast<size_t>(i)] = first + i;
    const std::vector<uint8_t> src = noisy(513, static_cast<uint64_t>(first));
    std::vector<uint8_t> made(512);
    vectorSampled().findWindows(run.run(), windows.get());
    vectorSampled().across(run.run(), *windows, src.data(), made.data());
    ASSERT_EQ(expectedRow(run, src.data(), true), made) << first;
  }
}

TEST_P(SampledRowsTest, RowsAreMixedDownAtEveryFraction) {
  uint64_t state = 5;
  for (int32_t i = 0; i < 400; ++i) {
    const size_t count = i < 20 ? static_cast<size_t>(i) : next(state) % 300;
    constexpr int32_t kEdges[] = {1, 0x7FFF, 0x8000, 0x8001, 0xFFFF};
    const int32_t fraction =
        i % 4 == 0 ? kEdges[i / 4 % 5] : static_cast<int32_t>(next(state) & 0xFFFF);
    const std::vector<uint8_t> top = noisy(count, next(state)), bottom = noisy(count, next(state));
    for (const bool keepsFourth : {false, true}) {
      std::vector<uint8_t> expected(count + 2, 7), made = expected;
      for (size_t k = 0; k < count; ++k) {
        expected[k] = keepsFourth && k % 4 == 3 ? top[k] : mixed(top[k], bottom[k], fraction);
      }
      for (const SampledRows* rows : {&vectorSampled(), &plainSampled()}) {
        rows->down(top.data(), bottom.data(), fraction, static_cast<ptrdiff_t>(count), keepsFourth,
                   made.data());
        ASSERT_EQ(expected, made) << count << ", " << fraction;
      }
    }
  }
}

TEST_P(SampledRowsTest, HalvesOfEveryLengthAndAlignmentAreMeans) {
  uint64_t state = 6;
  for (const size_t bytes : {size_t{1}, size_t{4}}) {
    for (size_t count = 0; count <= 300; count += count < 140 ? 1 : 7) {
      const size_t shift = next(state) % 64, below = next(state) % 64;
      const std::vector<uint8_t> top = noisy(shift + 2 * count * bytes, next(state));
      const std::vector<uint8_t> bottom = noisy(below + 2 * count * bytes, next(state));
      std::vector<uint8_t> expected(count * bytes + 2, 7), made = expected, plainMade = expected;
      for (size_t k = 0; k < count * bytes; ++k) {
        const size_t left = k / bytes * 2 * bytes + k % bytes;
        const uint8_t *const t = top.data() + shift, *const b = bottom.data() + below;
        expected[k] = k % bytes == 3 ? t[left]
                                     : mixed(mixed(t[left], t[left + bytes], 0x8000),
                                             mixed(b[left], b[left + bytes], 0x8000), 0x8000);
      }
      const auto row = bytes == 1 ? &SampledRows::halve1 : &SampledRows::halve4;
      const auto length = static_cast<ptrdiff_t>(count);
      (vectorSampled().*row)(top.data() + shift, bottom.data() + below, length, made.data());
      (plainSampled().*row)(top.data() + shift, bottom.data() + below, length, plainMade.data());
      ASSERT_EQ(expected, made) << bytes << ", " << count << ", " << shift;
      ASSERT_EQ(expected, plainMade) << bytes << ", " << count;
    }
  }
}

}  // namespace
}  // namespace qpx::simd
