// Rows of bilinear taps: plain forms against the sums as written, vector forms against plain ones,
// and what rows leave alone.
#include "simd/tap_rows.h"

#include <cstring>
#include <vector>

#include "simd/row_bytes.h"
#include "simd/target_test.h"

namespace qpx::simd {
namespace {

constexpr ptrdiff_t kMost = 131;
constexpr uint32_t kGuard = 0x5AA55AA5;

// Bytes of all values, with full and empty ones among them: they make the largest steps.
uint64_t pairOf(uint64_t& state) {
  uint64_t pair = uint64_t{next(state)} << 32 | next(state);
  const uint32_t how = next(state);
  for (int i = 0; i < 8; ++i) {
    const uint64_t byte = uint64_t{255} << (8 * i);
    if ((how >> (2 * i) & 3) == 1) pair |= byte;
    if ((how >> (2 * i) & 3) == 2) pair &= ~byte;
  }
  return pair;
}

struct Block {
  std::vector<uint64_t> top, bottom;
  std::vector<int32_t> u, v;
  Taps taps(ptrdiff_t from) const {
    return {top.data() + from, bottom.data() + from, u.data() + from, v.data() + from};
  }
};

Block makeBlock(uint64_t seed) {
  uint64_t state = seed;
  Block block;
  for (ptrdiff_t i = 0; i < kMost + 8; ++i) {
    block.top.push_back(pairOf(state));
    block.bottom.push_back(pairOf(state));
    block.u.push_back(static_cast<int32_t>(next(state)));
    block.v.push_back(static_cast<int32_t>(next(state)));
  }
  // Both ends of the fraction, and the middle, where its sign changes.
  const int32_t ends[] = {0, 1, 0x7FFF, 0x8000, 0xFFFF, 0x3FF, 0x200, -1};
  for (size_t i = 0; i < 64; ++i) {
    block.u[i] = ends[i % 8];
    block.v[i] = ends[i / 8];
  }
  return block;
}

struct NamedBlend {
  const char* name;
  TapRows::Blend TapRows::*row;
  int bytes;
};
constexpr NamedBlend kBlends[] = {
    {"acrossFirst3", &TapRows::acrossFirst3, 3}, {"acrossFirst4", &TapRows::acrossFirst4, 4},
    {"downFirst3", &TapRows::downFirst3, 3},     {"downFirst4", &TapRows::downFirst4, 4},
    {"oneSum3", &TapRows::oneSum3, 3},           {"oneSum4", &TapRows::oneSum4, 4},
    {"rounded3", &TapRows::rounded3, 3},         {"rounded4", &TapRows::rounded4, 4},
};

class TapRowsTest : public TargetTest {};
QPX_FOR_EACH_TARGET(TapRowsTest);

TEST_P(TapRowsTest, EqualThePlainFormsAtEveryLengthAndPlace) {
  for (uint64_t seed = 1; seed <= 8; ++seed) {
    const Block block = makeBlock(seed);
    for (const NamedBlend& blend : kBlends) {
      for (ptrdiff_t from = 0; from < 8; ++from) {
        for (ptrdiff_t count = 0; count <= kMost; count += 1 + count / 40) {
          std::vector<uint32_t> plain(kMost + 1, kGuard), vector(kMost + 1, kGuard);
          (plainForm<TapRows>().*blend.row)(block.taps(from), plain.data(), count);
          (vectorForm<TapRows>().*blend.row)(block.taps(from), vector.data(), count);
          ASSERT_EQ(plain, vector) << blend.name << " from " << from << ", " << count;
          ASSERT_EQ(plain[static_cast<size_t>(count)], kGuard) << blend.name;
        }
      }
    }
  }
}

TEST_P(TapRowsTest, OffsetsEqualThePlainForm) {
  Block block = makeBlock(3);
  for (int32_t& u : block.u) u >>= 5;
  for (int32_t& v : block.v) v >>= 5;
  for (const int fraction : {10, 16}) {
    for (ptrdiff_t count = 0; count <= kMost; ++count) {
      std::vector<int32_t> plain(kMost + 1, 7), vector(kMost + 1, 7);
      plainForm<TapRows>().offsets(block.u.data(), block.v.data(), plain.data(), count, fraction,
                                   12001, 3);
      vectorForm<TapRows>().offsets(block.u.data(), block.v.data(), vector.data(), count, fraction,
                                    12001, 3);
      ASSERT_EQ(plain, vector);
      for (size_t i = 0; i < static_cast<size_t>(count); ++i) {
        ASSERT_EQ(plain[i], (block.v[i] >> fraction) * 12001 + (block.u[i] >> fraction) * 3);
      }
    }
  }
}

// The formulas in 64 bits, with division by floor in place of shifts.
struct Formula {
  int64_t a, b, c, d, fx, fy;

  static int64_t mix(int64_t p, int64_t q, int64_t f) { return (p * (65536 - f) + q * f) / 65536; }
  int64_t across() const { return mix(mix(a, b, fx), mix(c, d, fx), fy); }
  int64_t down() const { return mix(mix(a, c, fy), mix(b, d, fy), fx); }
  int64_t sum() const {
    return (1024 - fx) * (1024 - fy) * a + fx * (1024 - fy) * b + (1024 - fx) * fy * c +
           fx * fy * d;
  }
};

TEST(TapRows, PlainFormsAreTheFormulas) {
  const Block block = makeBlock(5);
  for (const NamedBlend& blend : kBlends) {
    std::vector<uint32_t> words(kMost);
    (plainForm<TapRows>().*blend.row)(block.taps(0), words.data(), kMost);
    const std::string name = blend.name;
    const bool ten = name.find("oneSum") == 0 || name.find("rounded") == 0;
    for (size_t i = 0; i < static_cast<size_t>(kMost); ++i) {
      uint8_t top[8], bottom[8], made[4];
      std::memcpy(top, &block.top[i], 8);
      std::memcpy(bottom, &block.bottom[i], 8);
      std::memcpy(made, &words[i], 4);
      const int64_t mask = ten ? 1023 : 65535;
      for (int c = 0; c < 4; ++c) {
        const Formula formula = {top[c],
                                 top[blend.bytes + c],
                                 bottom[c],
                                 bottom[blend.bytes + c],
                                 block.u[i] & mask,
                                 block.v[i] & mask};
        int64_t expected = 0;
        if (name.find("across") == 0) expected = c < 3 ? formula.across() : top[3];
        if (name.find("down") == 0) expected = c < 3 ? formula.down() : top[3];
        if (name.find("oneSum") == 0) expected = c < 3 ? formula.sum() / 1048576 : 255;
        if (name.find("rounded") == 0) expected = (formula.sum() + 524288) / 1048576;
        ASSERT_EQ(made[c], expected) << name << ", place " << i << ", byte " << c;
      }
    }
  }
}

}  // namespace
}  // namespace qpx::simd
