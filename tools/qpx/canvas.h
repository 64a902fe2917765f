// Flat drawing on RGB pictures.
#pragma once

#include <qpx/types.h>

#include <cstdint>

#include "picture.h"

namespace qpx::tool {

struct Ink {
  uint8_t r, g, b;
};

inline bool operator==(Ink a, Ink b) { return a.r == b.r && a.g == b.g && a.b == b.b; }

// The part of the rectangle that lies in the picture.
void fill(Picture& picture, const MRect& area, Ink ink);

// The pixels of `piece`, which lies inside the picture and has as many channels.
void paste(Picture& picture, const Picture& piece, int32_t left, int32_t top);

// `coverage` of 255 parts of the ink over what is there.
inline void blend(uint8_t* rgb, Ink ink, int coverage) {
  const auto mix = [coverage](uint8_t under, uint8_t over) {
    return static_cast<uint8_t>((under * (255 - coverage) + over * coverage + 127) / 255);
  };
  rgb[0] = mix(rgb[0], ink.r);
  rgb[1] = mix(rgb[1], ink.g);
  rgb[2] = mix(rgb[2], ink.b);
}

}  // namespace qpx::tool
