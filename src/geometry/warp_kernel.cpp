#include "geometry/warp_kernel.h"

#include <algorithm>

#include "engine/warp.h"
#include "geometry/sampling.h"
#include "simd/plain_tap_rows.h"
#include "simd/rows.h"
#include "toolkit/chroma.h"
#include "toolkit/color_field.h"
#include "toolkit/pixel_run.h"

namespace qpx {
namespace {

constexpr int kFraction = 10;             // of weights
constexpr int kCutBits = 16 - kFraction;  // of places, which have 16
constexpr int32_t kHalf = 1 << (2 * kFraction - 1);

struct Color {
  uint8_t r, g, b;
  explicit Color(uint32_t rgb)
      : r(static_cast<uint8_t>(rgb >> 16)),
        g(static_cast<uint8_t>(rgb >> 8)),
        b(static_cast<uint8_t>(rgb)) {}
};

// Samples of one plane, or pixels of a packed one.
struct WarpPlane {
  QPXRowTable in;
  QPXRowTable out;
  int32_t width;  // of the source
  int32_t height;
  int32_t across;  // pixels for each sample
  int32_t down;
  int32_t tableStep;  // table entries from row to row
  int32_t step;       // bytes from sample to sample

  const uint8_t* sample(int64_t column, int64_t row) const {
    return in[row * tableStep] + static_cast<ptrdiff_t>(column) * step;
  }
};

int64_t floorDivide(int64_t value, int32_t divisor) {
  return value >= 0 ? value / divisor : -((divisor - 1 - value) / divisor);
}

// The four taps around a place and how far from the first it lies. A tap outside is null where the
// colour stands for it.
struct Corners {
  const uint8_t* tap[4];
  int32_t fx, fy;
  bool anyInside;
};

Corners cornersAt(const WarpPlane& plane, const WarpPoint& place, bool repeat) {
  const int64_t u = floorDivide(place.x, plane.across) >> kCutBits;
  const int64_t v = floorDivide(place.y, plane.down) >> kCutBits;
  const int64_t i = u >> kFraction;
  const int64_t j = v >> kFraction;
  Corners corners = {{}, static_cast<int32_t>(u & 1023), static_cast<int32_t>(v & 1023), false};
  for (int k = 0; k < 4; ++k) {
    int64_t column = i + (k & 1);
    int64_t row = j + (k >> 1);
    if (repeat) {
      column = std::clamp<int64_t>(column, 0, plane.width - 1);
      row = std::clamp<int64_t>(row, 0, plane.height - 1);
    } else if (column < 0 || column >= plane.width || row < 0 || row >= plane.height) {
      continue;
    }
    corners.tap[k] = plane.sample(column, row);
    corners.anyInside = true;
  }
  return corners;
}

uint8_t blend(const Corners& corners, const int32_t (&values)[4]) {
  return static_cast<uint8_t>(
      (simd::plain::sumOfTaps(values[0], values[1], values[2], values[3], corners.fx, corners.fy) +
       kHalf) >>
      (2 * kFraction));
}

// Calls body(place, out row, column) for every sample of a plane that the rectangle holds.
template <typename Body>
void forEachSample(const Frame& frame, const WarpPlane& plane, const Body& body) {
  const WarpTables tables = warpTables(frame.stage);
  const int32_t first = divideUp(frame.rect.left, plane.across);
  const int32_t end = divideUp(frame.rect.right, plane.across);
  const int32_t lastRow = divideUp(frame.rect.bottom, plane.down);
  for (int32_t row = divideUp(frame.rect.top, plane.down); row < lastRow; ++row) {
    uint8_t* out = plane.out[ptrdiff_t{row} * plane.tableStep];
    for (int32_t column = first; column < end; ++column) {
      const WarpPoint place =
          warpSource(frame.stage, tables, column * plane.across, row * plane.down);
      body(place, out + ptrdiff_t{column} * plane.step);
    }
  }
}

void warpBytes(const Frame& frame, const WarpPlane& plane, uint8_t fill, bool repeat) {
  forEachSample(frame, plane, [&](const WarpPoint& place, uint8_t* out) {
    const Corners corners = cornersAt(plane, place, repeat);
    int32_t values[4];
    for (int k = 0; k < 4; ++k) values[k] = corners.tap[k] != nullptr ? *corners.tap[k] : fill;
    *out = corners.anyInside ? blend(corners, values) : fill;
  });
}

// Pixels with fields of any width, blended in 8 bits a field.
template <int kBytes>
void warpFields(const Frame& frame, const WarpPlane& plane, const Color& color, bool repeat) {
  const ColorFields fields(frame.stage.pix.mask, kBytes);
  const ColorField* const all[3] = {&fields.red, &fields.green, &fields.blue};
  const uint8_t fill[3] = {color.r, color.g, color.b};
  forEachSample(frame, plane, [&](const WarpPoint& place, uint8_t* out) {
    const Corners corners = cornersAt(plane, place, repeat);
    uint32_t pixels[4] = {};
    for (int k = 0; k < 4; ++k) {
      if (corners.tap[k] != nullptr) pixels[k] = readPixel<kBytes>(corners.tap[k]);
    }
    uint32_t made = 0;
    for (int c = 0; c < 3; ++c) {
      int32_t values[4];
      for (int k = 0; k < 4; ++k) {
        values[k] = corners.tap[k] != nullptr ? all[c]->load(pixels[k]) : fill[c];
      }
      const uint8_t sample = corners.anyInside ? blend(corners, values) : fill[c];
      made |= all[c]->store(sample, pixels[0]);
    }
    writePixel<kBytes>(made | (pixels[0] & fields.spare), out);
  });
}

// 24 and 32-bit pixels, block by block.
template <int kBytes>
void warpBlocks(const Frame& frame, const WarpPlane& plane, uint32_t fill, bool repeat) {
  const WarpTables tables = warpTables(frame.stage);
  const SampleSource<TabledRows> source = {{plane.in}, plane.width, plane.height};
  const simd::TapRows& rows = simd::tapRows();
  const simd::TapRows::Blend blendRow = kBytes == 3 ? rows.rounded3 : rows.rounded4;
  SampleBlock block;
  const auto makeBlock = [&](int32_t x, int32_t y, int32_t count) {
    const WarpPoint place = warpSource(frame.stage, tables, x, y);
    block.count = count;
    block.column = place.x >> 16;
    block.row = place.y >> 16;
    const int32_t u = static_cast<int32_t>(place.x & 0xFFFF);
    const int32_t v = static_cast<int32_t>(place.y & 0xFFFF);
    const int32_t* sines = tables.sinOfColumn + x;
    const int32_t* cosines = tables.cosOfColumn + x;
    for (int32_t k = 0; k < count; ++k) {
      block.u[k] = (u + (cosines[k] - cosines[0])) >> kCutBits;
      block.v[k] = (v - (sines[k] - sines[0])) >> kCutBits;
    }
    repeat ? sampleRepeated<kBytes, kFraction>(source, blendRow, block)
           : sampleFilled<kBytes, kFraction>(source, fill, blendRow, block);
    storeBlock<kBytes>(block, plane.out[y] + ptrdiff_t{x} * kBytes);
  };
  forEachBlock(frame.rect.left, frame.rect.top, frame.rect.right, frame.rect.bottom, makeBlock);
}

WarpPlane firstPlane(const Frame& frame) {
  const Stage& stage = frame.stage;
  return {frame.in[0],
          frame.out[0],
          stage.inWidth,
          stage.inHeight,
          1,
          1,
          1,
          stage.pix.bytesPerSample[0]};
}

WarpPlane chromaPlane(const Frame& frame, int p) {
  const Stage& stage = frame.stage;
  const ChromaGrid grid(stage.pix);
  return {frame.in[p],
          frame.out[p],
          divideUp(stage.inWidth, grid.across),
          divideUp(stage.inHeight, grid.down),
          grid.across,
          grid.down,
          grid.down == 2 ? 2 : 1,
          grid.step};
}

void warpPacked(const Frame& frame, const Color& color, bool repeat) {
  const PixInfo& pix = frame.stage.pix;
  const WarpPlane plane = firstPlane(frame);
  const ColorFields fields(pix.mask, plane.step);
  const uint32_t fill =
      (fields.bytesRgb() ? uint32_t{color.b} << 16 | color.r : uint32_t{color.r} << 16 | color.b) |
      uint32_t{color.g} << 8 | 0xFF000000;
  const bool bytes = fields.bytesRgb() || fields.bytesBgr();
  if (plane.step == 2) {
    warpFields<2>(frame, plane, color, repeat);
  } else if (plane.step == 3) {
    bytes ? warpBlocks<3>(frame, plane, fill, repeat) : warpFields<3>(frame, plane, color, repeat);
  } else {
    bytes ? warpBlocks<4>(frame, plane, fill, repeat) : warpFields<4>(frame, plane, color, repeat);
  }
}

void warpGrey(const Frame& frame, const Color& color, bool repeat) {
  uint8_t luma = 0;
  simd::rows().luma(&color.r, &color.g, &color.b, &luma, 1);
  warpBytes(frame, firstPlane(frame), luma, repeat);
}

void warpYuv(const Frame& frame, const Color& color, bool repeat) {
  const FixedMatrix toYuv(frame.stage.forwardMatrix);
  uint8_t fill[3] = {};
  for (int p = 0; p < 3; ++p) {
    simd::rows().weightedSum(&color.r, &color.g, &color.b, fill + p, 1, toYuv.row[p]);
  }
  warpBytes(frame, firstPlane(frame), fill[0], repeat);
  for (int p = 1; p < 3; ++p) warpBytes(frame, chromaPlane(frame, p), fill[p], repeat);
}

}  // namespace

int32_t warpFrame(const Frame& frame, const WarpOutside& outside) {
  const Stage& stage = frame.stage;
  if (stage.pix.family == kFamilyYuyv) return QPX_UNSUPPORTED;
  if (stage.lut == nullptr || frame.rect.left >= frame.rect.right ||
      frame.rect.top >= frame.rect.bottom) {
    return QPX_OK;
  }
  const Color color(outside.color);
  // There is no border to repeat in a source without pixels.
  const bool repeat = outside.repeat && stage.inWidth > 0 && stage.inHeight > 0;
  if (stage.pix.family == kFamilyPackedRgb) {
    warpPacked(frame, color, repeat);
  } else if (stage.pix.family == kFamilyGrey) {
    warpGrey(frame, color, repeat);
  } else {
    warpYuv(frame, color, repeat);
  }
  return QPX_OK;
}

}  // namespace qpx
