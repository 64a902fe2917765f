// Tables that take a look off again, computed from the tables that put it on.
#include "tables/tones.h"
#include "textures/families.h"

namespace qpx::drawing {
namespace {

/// The sample before, for each sample after: the middle of those that give it, and between two that
/// are given what a straight line gives. Beyond both ends the nearest end's.
template <typename Forward>
void invert(Forward forward, uint8_t (&before)[256]) {
  int first[256];
  int last[256];
  std::fill(first, first + 256, -1);
  for (int v = 0; v < 256; ++v) {
    const int after = forward(v);
    if (first[after] < 0) {
      first[after] = v;
    }
    last[after] = v;
  }
  int below = -1;
  for (int after = 0; after < 256; ++after) {
    if (first[after] < 0) {
      continue;
    }
    const int middle = (first[after] + last[after]) / 2;
    before[after] = static_cast<uint8_t>(middle);
    const int from = below < 0 ? middle : before[below];
    for (int gap = below + 1; gap < after; ++gap) {
      before[gap] = static_cast<uint8_t>(
          below < 0 ? middle : from + ((middle - from) * (gap - below)) / (after - below));
    }
    below = after;
  }
  std::fill(before + below + 1, before + 256, before[below]);
}

template <Lane lane>
Bytes buildRixiInverse() {
  const Bytes curve = buildRixi();
  uint8_t before[256];
  invert([&](int v) { return curve[3 * static_cast<size_t>(v) + lane]; }, before);
  return {before, before + 256};
}

/// [after << 8 | texture].
template <typename Forward>
Bytes inverseByTexture(Forward forward) {
  Bytes bytes(65536);
  for (int texture = 0; texture < 256; ++texture) {
    uint8_t before[256];
    invert([&](int v) { return forward(v, texture); }, before);
    for (int after = 0; after < 256; ++after) {
      bytes[static_cast<size_t>(after << 8 | texture)] = before[after];
    }
  }
  return bytes;
}

size_t cell(int base, int texture) { return static_cast<size_t>(base << 8 | texture); }

template <Lane lane>
Bytes buildFleetInverse() {
  const Bytes blend = buildSoftLightBlend();
  const Bytes tone = buildFleetTone();
  return inverseByTexture(
      [&](int v, int texture) { return tone[size_t{3} * blend[cell(v, texture)] + lane]; });
}

/// The percent mix of the looks at full strength, which takes a level off all but black.
int atFullStrength(int v) { return (100 * v * 327) >> 15; }

template <Lane lane>
Bytes buildSoftPinkInverse() {
  const Bytes curve = buildSoftLight();
  const Bytes blend = buildPinkBlend();
  const Bytes tone = buildPinkTone();
  constexpr int kPlaces[] = {2, 1, 0};
  return inverseByTexture([&](int v, int texture) {
    const int toned = atFullStrength(curve[3 * static_cast<size_t>(v) + lane]);
    return atFullStrength(tone[size_t{4} * blend[cell(toned, texture)] + kPlaces[lane]]);
  });
}

constexpr Table kTables[] = {
    {"rixi_r", 256, buildRixiInverse<kRed>},
    {"rixi_g", 256, buildRixiInverse<kGreen>},
    {"rixi_b", 256, buildRixiInverse<kBlue>},
    {"fleet_r", 65536, buildFleetInverse<kRed>},
    {"fleet_g", 65536, buildFleetInverse<kGreen>},
    {"fleet_b", 65536, buildFleetInverse<kBlue>},
    {"softpink_r", 65536, buildSoftPinkInverse<kRed>},
    {"softpink_g", 65536, buildSoftPinkInverse<kGreen>},
    {"softpink_b", 65536, buildSoftPinkInverse<kBlue>},
};

}  // namespace

std::span<const Table> inverseTables() { return kTables; }

}  // namespace qpx::drawing
