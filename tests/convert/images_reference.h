// What each member makes of an image, sample by sample.
#pragma once

#include "convert/images_members.h"
#include "convert/images_picture.h"

namespace qpx::testing {

void referenceConvert(const Member& member, const McvPicture& src, McvPicture& dst, uint8_t alpha);

// Hue, saturation and lightness of a colour.
struct Hsl {
  uint8_t h, s, l;
  bool operator==(const Hsl&) const = default;
};
Hsl referenceHsl(int r, int g, int b);

}  // namespace qpx::testing
