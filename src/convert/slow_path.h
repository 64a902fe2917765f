// The general conversion, in three steps that are chosen once a call: fetch a run of pixels of one
// row, convert it in place, store it.
#pragma once

#include <qpx/convert_record.h>
#include <qpx/types.h>

#include <cstddef>
#include <cstdint>

#include "convert/position.h"

namespace qpx::convert {

inline constexpr int32_t kRunLength = 128;

// Pixels of one row as planes: Y, U, V or R, G, B, and the fourth byte of 32-bit RGB.
struct PixelRun {
  int32_t count = 0;
  uint8_t sample[3][kRunLength] = {};
  uint8_t alpha[kRunLength] = {};
};

// Where in the source the columns of a run lie.
struct ColumnRun {
  SourcePair column[kRunLength];
};

constexpr int32_t cellOf(int32_t coordinate, int32_t subsampling) {
  if (subsampling == 1) return coordinate;
  return subsampling == 2 ? coordinate >> 1 : coordinate / subsampling;
}

// One component of the source: of a pixel all three are one.
struct SourceComponent {
  const uint8_t* base = nullptr;  // with the byte offset of packed formats
  ptrdiff_t pitch = 0;
  int32_t step = 0;
  int32_t subX = 1;
  int32_t subY = 1;
};

struct Source {
  const ConvRecord* record = nullptr;
  SourceComponent component[3];
};

// The two rows that a row of pixels is made from.
struct SourceRows {
  const uint8_t* top[3];
  const uint8_t* bottom[3];
  int32_t fraction;
};

using FetchRun = void (*)(const Source&, const SourceRows&, const ColumnRun&, PixelRun*);

// False where a plane that the format has is null.
bool openSource(const ConvRecord& record, const uint8_t* const* planes, const int32_t* pitches,
                Source* source);
SourceRows rowsAt(const Source& source, const SourcePair& row);
FetchRun fetchFor(const ConvRecord& record);

// What dither carries from pixel to pixel, of R, G and B.
struct Carries {
  int32_t carry[3];
  int32_t mask[3];
};

using ConvertRun = void (*)(const ConvRecord&, Carries*, PixelRun*);

Carries startCarries(const ConvRecord& record);
ConvertRun convertFor(const ConvRecord& record);

struct Destination {
  const ConvRecord* record = nullptr;
  MRect rect = {};
  FrameAxis x = {}, y = {};
  uint8_t* plane[3] = {};  // of Y, U and V, with the byte offset of packed formats
  ptrdiff_t step[3] = {};  // from column to column of the frame
  ptrdiff_t pitch[3] = {};
  ptrdiff_t nextPixel = 0;  // to the right-hand neighbour, whatever the orientation
};

// Stores pixels from (x, y) of the frame on.
using StoreRun = void (*)(const Destination&, int32_t x, int32_t y, const PixelRun&);

bool openDestination(const ConvRecord& record, const MRect& rect, uint8_t* const* planes,
                     const int32_t* pitches, Destination* destination);
StoreRun storeFor(const ConvRecord& record);

}  // namespace qpx::convert
