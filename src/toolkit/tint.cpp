#include "toolkit/tint.h"

namespace qpx {
namespace {

template <typename ToByte>
ColorTables tabulateTint(const Rgb& tint, const ToByte& toByte) {
  ColorTables tables;
  for (int32_t grey = 0; grey < 256; ++grey) {
    const TintedColor color = tintedGrey(grey, tint);
    const size_t i = static_cast<size_t>(grey);
    tables.red[i] = toByte(color.red);
    tables.green[i] = toByte(color.green);
    tables.blue[i] = toByte(color.blue);
  }
  return tables;
}

}  // namespace

ColorTables clampedTintTables(const Rgb& tint) {
  return tabulateTint(tint, [](int32_t value) { return clampToByte(value); });
}

ColorTables keptTintTables(const Rgb& tint) {
  return tabulateTint(tint, [](int32_t value) { return static_cast<uint8_t>(value); });
}

}  // namespace qpx
