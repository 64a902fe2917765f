// A test suite that runs once for every vector target this processor has.
#pragma once

#include "simd/targets.h"

#include <gtest/gtest.h>
#include <hwy/highway.h>

#include <string>
#include <vector>

#include "simd/rows.h"

namespace qpx::simd {

inline std::vector<int64_t> runnableTargets() {
  std::vector<int64_t> targets;
  for (int64_t left = HWY_SUPPORTED_TARGETS & HWY_TARGETS; left != 0; left &= left - 1) {
    targets.push_back(left & -left);
  }
  return targets;
}

inline std::string targetCaseName(const testing::TestParamInfo<int64_t>& info) {
  return hwy::TargetName(info.param);
}

class TargetTest : public testing::TestWithParam<int64_t> {
 protected:
  void SetUp() override { choose(GetParam()); }
  void TearDown() override { choose(0); }

  const Rows& vector() const { return vectorForm<Rows>(); }
  const Rows& plain() const { return plainForm<Rows>(); }

 private:
  // With a single target there is nothing to choose, and no Highway library to ask.
  static void choose(int64_t target) {
#if (HWY_TARGETS & (HWY_TARGETS - 1)) != 0
    hwy::SetSupportedTargetsForTest(target);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
#else
    static_cast<void>(target);
#endif
  }
};

#define QPX_FOR_EACH_TARGET(suite) \
  INSTANTIATE_TEST_SUITE_P(Targets, suite, testing::ValuesIn(runnableTargets()), targetCaseName)

}  // namespace qpx::simd
