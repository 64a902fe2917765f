// Selective colour and the mean of skin: vector forms against plain ones over whole domains,
// lengths and windows. What the plain forms make is held against the formulas in tests/adjust.
#include "simd/selective_rows.h"

#include <algorithm>
#include <random>
#include <vector>

#include "simd/complexion_rows.h"
#include "simd/row_bytes.h"
#include "simd/selective_math.h"
#include "simd/target_test.h"

namespace qpx::simd {
namespace {

constexpr ptrdiff_t kLengths[] = {0, 1, 2, 3, 4, 7, 8, 9, 15, 16, 17, 31, 32, 33, 63, 64, 65, 100};

class SelectiveRowsTest : public TargetTest {};
QPX_FOR_EACH_TARGET(SelectiveRowsTest);

struct Colors {
  Bytes r, g, b;
  bool operator==(const Colors&) const = default;
};

Inks randomInks(uint32_t seed) {
  std::mt19937 random(seed);
  Inks inks;
  for (auto& amounts : inks.amount) {
    for (int32_t& amount : amounts) {
      const int32_t value = static_cast<int32_t>(random() % 401) - 100;
      amount = random() % 3 == 0 ? 0 : value;
    }
  }
  return inks;
}

using Select = decltype(SelectiveRows::selectInks);

void expectSame(Select plainRow, Select vectorRow, const Colors& source, const Inks& inks,
                ptrdiff_t count) {
  Colors plain = source, vector = source;
  plainRow(plain.r.data(), plain.g.data(), plain.b.data(), count, inks);
  vectorRow(vector.r.data(), vector.g.data(), vector.b.data(), count, inks);
  ASSERT_EQ(plain, vector) << count << " pixels";
}

// Both rows, and amounts that are bytes by themselves; what is absolute takes 256ths.
void expectSameInks(const Colors& source, const Inks& inks, ptrdiff_t count) {
  const auto &plain = plainForm<SelectiveRows>(), &vector = vectorForm<SelectiveRows>();
  expectSame(plain.selectInks, vector.selectInks, source, inks, count);
  Inks bytes = inks;
  for (auto& amounts : bytes.amount) {
    for (int32_t& amount : amounts) amount = amount > 150 ? 155 - amount : amount;
  }
  for (const int32_t neutral : {-100, 255}) {
    bytes.amount[2][7] = neutral;
    expectSame(plain.selectInks, vector.selectInks, source, bytes, count);
  }
  Inks absolute = inks;
  for (auto& amounts : absolute.amount) {
    for (int32_t& amount : amounts) amount = std::clamp(amount, -100, 100) * 256 / 100;
  }
  absolute.amount[0][7] = -absolute.amount[1][7];
  expectSame(plain.selectAbsoluteInks, vector.selectAbsoluteInks, source, absolute, count);
}

TEST_P(SelectiveRowsTest, InksOfEveryLength) {
  for (const ptrdiff_t length : kLengths) {
    const Colors source = {randomBytes(101, 1), randomBytes(101, 2), randomBytes(101, 3)};
    expectSameInks(source, randomInks(static_cast<uint32_t>(length)), length);
  }
}

TEST_P(SelectiveRowsTest, InksOfColorsAndGreys) {
  constexpr size_t kCount = 40000;
  Colors source = {randomBytes(kCount, 4), randomBytes(kCount, 5), randomBytes(kCount, 6)};
  for (size_t i = 0; i < 256; ++i)
    source.r[i] = source.g[i] = source.b[i] = static_cast<uint8_t>(i);
  for (size_t i = 256; i < 2000; ++i) source.g[i] = source.r[i];
  for (size_t i = 2000; i < 4000; ++i) source.b[i] = source.g[i];
  for (size_t i = 4000; i < 6000; ++i) source.r[i] = source.b[i];
  for (uint32_t seed = 0; seed < 12; ++seed) {
    expectSameInks(source, randomInks(seed), static_cast<ptrdiff_t>(kCount));
  }
}

// Ink that is taken away never darkens, and at the border of a class next to nothing is taken.
TEST(SelectiveMath, TonesOnlyGainFromRemovals) {
  for (int32_t extreme = 0; extreme < 256; ++extreme) {
    for (int32_t v = 0; v < 256; ++v) {
      if (extreme > 127 && v >= extreme) {
        EXPECT_GE(whiteRoom(v, extreme), 0) << v << " of " << extreme;
      }
      if (v > extreme) continue;
      EXPECT_GE(neutralRoom(v, extreme), 0) << v << " of " << extreme;
      if (extreme < 128) {
        EXPECT_GE(blackRoom(v, extreme), 0) << v << " of " << extreme;
      }
    }
  }
  for (int32_t v = 0; v < 128; ++v) {
    EXPECT_LE(blackRoom(v, 127), 2);
    EXPECT_LE(whiteRoom(255 - v, 128), 2);
  }
}

class ComplexionRowsTest : public TargetTest {};
QPX_FOR_EACH_TARGET(ComplexionRowsTest);

// Rows of three planes around `count` pixels, and weights.
class Window {
 public:
  Window(int32_t reach, ptrdiff_t count, uint32_t contrast, uint32_t seed)
      : columns_(count + 2 * reach), samples_(static_cast<size_t>(columns_ * 3 * (2 * reach + 1))) {
    std::mt19937 random(seed);
    for (uint8_t& sample : samples_) sample = static_cast<uint8_t>(120 + random() % contrast);
    inside_ = Bytes(static_cast<size_t>(columns_), 255);
    std::fill_n(inside_.begin(), reach, uint8_t{0});
    skin_ = Bytes(static_cast<size_t>(count));
    for (uint8_t& skin : skin_) skin = random() % 3 == 0 ? 0 : 255;
    for (int32_t k = 0; k <= 2 * reach; ++k) {
      rows_.push_back(samples_.data() + columns_ * 3 * k + reach);
      for (int32_t u = 0; u <= 2 * reach; ++u) near_.push_back(static_cast<uint16_t>(random()));
    }
    near_[near_.size() / 2] = 65535;
    window_ = {reach, rows_.data(), columns_, inside_.data() + reach, near_.data()};
  }

  std::vector<Bytes> smoothed(const ComplexionRows& form) const {
    std::vector<Bytes> planes(3, Bytes(skin_.size() + 1, 7));
    uint8_t* const dst[] = {planes[0].data(), planes[1].data(), planes[2].data()};
    form.smoothSkin(window_, skin_.data(), dst, static_cast<ptrdiff_t>(skin_.size()));
    return planes;
  }

 private:
  ptrdiff_t columns_;
  Bytes samples_, inside_, skin_;
  std::vector<const uint8_t*> rows_;
  std::vector<uint16_t> near_;
  SkinWindow window_;
};

TEST_P(ComplexionRowsTest, MeansOfEveryLengthAndWindow) {
  for (const int32_t reach : {1, 2, 5}) {
    for (const ptrdiff_t length : kLengths) {
      for (const uint32_t contrast : {1U, 20U, 60U, 136U}) {
        const Window window(reach, length, contrast, 9);
        ASSERT_EQ(window.smoothed(plainForm<ComplexionRows>()),
                  window.smoothed(vectorForm<ComplexionRows>()))
            << "reach " << reach << ", " << length << " pixels, contrast " << contrast;
      }
    }
  }
  const Window widest(31, 70, 40, 2);
  ASSERT_EQ(widest.smoothed(plainForm<ComplexionRows>()),
            widest.smoothed(vectorForm<ComplexionRows>()));
}

// Rows of luma and chroma with their aims and masks, and a byte behind each.
struct Preview {
  Bytes luma[2], pairs, aim[2], mask[2];

  explicit Preview(size_t size) : pairs(randomBytes(size + 1, 3)) {
    for (uint32_t i = 0; i < 2; ++i) {
      luma[i] = randomBytes(size + 1, 10 + i);
      aim[i] = randomBytes(size + 1, 20 + i);
      mask[i] = randomBytes(size + 1, 30 + i);
      for (size_t k = 0; k < size / 3; ++k) mask[i][k] = k % 2 == 0 ? 0 : 255;
    }
  }

  void whiten(const ComplexionRows& form, ptrdiff_t count, int32_t strength) {
    form.whitenBlocks({{luma[0].data(), luma[1].data()},
                       pairs.data(),
                       {aim[0].data(), aim[1].data()},
                       {mask[0].data(), mask[1].data()}},
                      count, strength);
  }

  bool operator==(const Preview&) const = default;
};

TEST_P(ComplexionRowsTest, WhitenedBlocksOfEveryLengthAndStrength) {
  for (const int32_t strength : {0, 1, 100, 256, 1000, 40000, 65535, 65536, INT32_MAX, -1, -5000}) {
    for (const ptrdiff_t count : {0, 2, 30, 62, 64, 66, 126, 128, 130, 4096}) {
      Preview plain(4096), vector(4096);
      plain.whiten(plainForm<ComplexionRows>(), count, strength);
      vector.whiten(vectorForm<ComplexionRows>(), count, strength);
      ASSERT_EQ(plain, vector) << count << " pixels, strength " << strength;
    }
  }
}

}  // namespace
}  // namespace qpx::simd
