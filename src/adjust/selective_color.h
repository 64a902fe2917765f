// Selective colour as a step of recipes:
//
//   constexpr simd::Inks kFaded = foldBlack({.amounts = {{-30, 0, ...}, ...}});
//   ... in the recipe: selectColors(run, kFaded);
#pragma once

#include <qpx/effects.h>

#include <algorithm>

#include "engine/effect_row.h"
#include "simd/selective_rows.h"
#include "toolkit/pixel_run.h"

namespace qpx {

inline constexpr uint32_t kSelectiveColor = 0x7C00;

constexpr int32_t clampPercent(int32_t percent) { return std::clamp(percent, -100, 100); }

// Black, which only scales what there is of the other inks and of itself, goes into them.
constexpr simd::Inks foldBlack(const QPXSelectiveColorParam& param) {
  const int32_t* const amounts[simd::kInks] = {param.amounts[0], param.amounts[1],
                                               param.amounts[2]};
  simd::Inks inks = {};
  for (int ink = 0; ink < simd::kInks; ++ink) {
    for (int i = 0; i < simd::kColorClasses; ++i) {
      const int32_t amount = clampPercent(amounts[ink][i]),
                    black = clampPercent(param.amounts[3][i]);
      inks.amount[ink][i] = black + amount + amount * black / 100;
    }
  }
  return inks;
}

inline void selectColors(PixelRun& run, const simd::Inks& inks) {
  simd::selectiveRows().selectInks(run.r, run.g, run.b, run.count, inks);
}

int32_t setUpSelectiveColor(Stage& stage, QPXBand& band);
int32_t selectiveColor(const Frame& frame);

}  // namespace qpx
