#include "simd/patch_rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "simd/row_cases.h"
#include "simd/target_test.h"

namespace qpx::simd {
namespace {

class PatchRowsTest : public TargetTest {};
QPX_FOR_EACH_TARGET(PatchRowsTest);

// Samples that end with the last one a row may read, so that the address sanitizer sees more.
struct Case {
  Case(ptrdiff_t patches, ptrdiff_t termCount, bool far) {
    for (ptrdiff_t k = 0; k < termCount; ++k) {
      const uint8_t value = far ? 255 : noise(static_cast<uint32_t>(k), 3);
      terms.push_back({(k * 7) % 40 - 10, value});
    }
    samples.resize(static_cast<size_t>(10 + 30 + patches));
    for (size_t i = 0; i < samples.size(); ++i) {
      samples[i] = far ? 0 : noise(static_cast<uint32_t>(i), static_cast<uint32_t>(patches));
    }
  }
  const uint8_t* places() const { return samples.data() + 10; }
  uint32_t distance(ptrdiff_t patch) const {
    uint32_t sum = 0;
    for (const PatchTerm& term : terms) {
      sum += static_cast<uint32_t>(std::abs(places()[term.offset + patch] - term.value));
    }
    return sum;
  }

  std::vector<uint8_t> samples;
  std::vector<PatchTerm> terms;
};

void expectTrueDistances(const PatchRows& rows, const Case& data, ptrdiff_t patches,
                         uint32_t limit) {
  std::vector<uint32_t> actual(static_cast<size_t>(patches) + 1, 0xABCDEF01);
  const bool near =
      rows.patchDistances(data.places(), data.terms.data(),
                          static_cast<ptrdiff_t>(data.terms.size()), limit, actual.data(), patches);
  bool expectedNear = false;
  for (ptrdiff_t i = 0; i < patches; ++i) {
    const uint32_t expected = data.distance(i);
    expectedNear |= expected <= limit;
    const uint32_t found = actual[static_cast<size_t>(i)];
    ASSERT_TRUE(expected <= limit ? found == expected : found > limit)
        << "patch " << i << " of " << patches << ", " << data.terms.size() << " terms, limit "
        << limit << ": " << found << " for " << expected;
  }
  EXPECT_EQ(expectedNear, near);
  EXPECT_EQ(0xABCDEF01, actual.back());
}

TEST_P(PatchRowsTest, DistancesOfEveryCountAreTrueUpToTheLimit) {
  for (ptrdiff_t patches = 0; patches <= 100; ++patches) {
    for (const ptrdiff_t terms : {0, 1, 23, 24, 25, 100}) {
      const Case data(patches, terms, false);
      const auto middle = static_cast<uint32_t>(80 * terms);
      for (const uint32_t limit : {0u, middle, 999999u}) {
        expectTrueDistances(plainForm<PatchRows>(), data, patches, limit);
        expectTrueDistances(vectorForm<PatchRows>(), data, patches, limit);
      }
    }
  }
}

// 20,000 terms of 255 leave 16 bits far behind.
TEST_P(PatchRowsTest, SumsOfManyTermsDoNotOverflow) {
  const Case data(64, 20000, true);
  EXPECT_EQ(20000u * 255, data.distance(0));
  expectTrueDistances(vectorForm<PatchRows>(), data, 64, 20000 * 255);
  expectTrueDistances(vectorForm<PatchRows>(), data, 64, 20000 * 255 - 1);
}

// By hand: |10 - 12| + |40 - 30| and |20 - 12| + |5 - 30|.
TEST(PlainPatchRows, ByHand) {
  const uint8_t samples[] = {10, 20, 40, 5};
  const PatchTerm terms[] = {{0, 12}, {2, 30}};
  uint32_t distances[2];
  EXPECT_TRUE(plainForm<PatchRows>().patchDistances(samples, terms, 2, 12, distances, 2));
  EXPECT_EQ(12u, distances[0]);
  EXPECT_EQ(33u, distances[1]);
  EXPECT_FALSE(plainForm<PatchRows>().patchDistances(samples, terms, 2, 11, distances, 2));
}

}  // namespace
}  // namespace qpx::simd
