// Effects as they are written on the command line: NAME[:param=value,...]. The points of a curve
// are one value, x:y,x:y,...
#pragma once

#include <qpx/engine.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "catalogue.h"

namespace qpx::tool {

// An effect with its parameter record filled in.
struct EffectCall {
  const QPXEffectInfo* effect = nullptr;
  std::vector<double> values;  // one for each parameter, in the catalogue's order

  // The record as the engine takes it. operator new aligns it for every type in it.
  std::vector<uint8_t> record() const;
};

// The part of an argument before the colon names an effect.
bool namesEffect(std::string_view argument);

// Parameters that are not given have the catalogue's defaults. Throws UsageError for an unknown
// effect or parameter and for a value that is none or out of range, naming what would do.
EffectCall parseEffect(std::string_view argument);

// Where a parameter stands in the catalogue's order, case ignored. Throws UsageError, which
// suggests the nearest name.
size_t paramIndex(const QPXEffectInfo& effect, const std::string& name);

// 0xRRGGBB from "#rrggbb", "#rgb", "0xRRGGBB" or a colour name. Throws UsageError.
uint32_t parseColor(std::string_view text);

}  // namespace qpx::tool
