// Effects by what the catalogue says of them.
#pragma once

#include <qpx/qpx.h>

#include <cstdint>
#include <string>
#include <vector>

namespace qpx::bench {

// Whether create accepts it.
bool isBuilt(const QPXEffectInfo& effect);

// All effects that are built, in the order of the catalogue.
std::vector<QPXEffectInfo> builtEffects();

// Fills `found` with the built effect of this name. False if there is none.
bool findBuilt(const std::string& name, QPXEffectInfo& found);

// The effect's parameter record with every value as the catalogue proposes it.
std::vector<uint8_t> initialRecord(const QPXEffectInfo& effect);

}  // namespace qpx::bench
