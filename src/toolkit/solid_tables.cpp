#include "toolkit/solid_tables.h"

#include "simd/blend_math.h"

namespace qpx {

uint8_t lay(Blend blend, uint8_t top, uint8_t base, uint8_t mask, float opacity) {
  switch (blend) {
    case Blend::screen:
      return laidScreen(top, base, mask, opacity);
    case Blend::overlay:
      return laidOverlay(top, base, mask, opacity);
    case Blend::soft:
      return laidSoft(top, base, mask, opacity);
    case Blend::multiply:
      return laidMultiply(top, base, mask, opacity);
    default:
      return mixNormal(top, base, mask, opacity);
  }
}

ToneTable solidTable(Blend blend, uint8_t top, float opacity) {
  return tabulate(
      [&](int32_t base) { return lay(blend, top, static_cast<uint8_t>(base), 255, opacity); });
}

ColorTables solidTables(Blend blend, const Rgb& top, float opacity) {
  return {solidTable(blend, top.red, opacity), solidTable(blend, top.green, opacity),
          solidTable(blend, top.blue, opacity)};
}

ToneTable selfTable(Blend blend, const ToneTable& curve, float opacity) {
  return tabulate([&](int32_t base) {
    const uint8_t top = curve[static_cast<size_t>(base)];
    return lay(blend, top, static_cast<uint8_t>(base), 255, opacity);
  });
}

ToneTable mixTable(const ToneTable& curve, float opacity) {
  return selfTable(Blend::normal, curve, opacity);
}

ToneTable chain(const ToneTable& first, const ToneTable& second) {
  return tabulate([&](int32_t i) { return second[first[static_cast<size_t>(i)]]; });
}

ColorTables chain(const ColorTables& first, const ColorTables& second) {
  return {chain(first.red, second.red), chain(first.green, second.green),
          chain(first.blue, second.blue)};
}

ColorTables forAll(const ToneTable& table) { return {table, table, table}; }

void applyTable(PixelRun& run, const ToneTable& table) {
  const simd::Rows& rows = simd::rows();
  for (uint8_t* channel : {run.r, run.g, run.b}) {
    rows.lookup(channel, channel, run.count, table.data());
  }
}

void applyTables(PixelRun& run, const ColorTables& tables) {
  const simd::Rows& rows = simd::rows();
  rows.lookup(run.r, run.r, run.count, tables.red.data());
  rows.lookup(run.g, run.g, run.count, tables.green.data());
  rows.lookup(run.b, run.b, run.count, tables.blue.data());
}

}  // namespace qpx
