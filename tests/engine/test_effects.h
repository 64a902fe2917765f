// Effects that exist for the tests of the pipeline only: they read their whole neighbourhood with a
// weight of its own for every place of it, so that a row or column from elsewhere shows. They are
// the catalogue of the test executable.
#pragma once

#include <qpx/engine.h>

#include <cstdint>

namespace qpx::testing {

// Margin by the last digit of the name. Tone is a point effect; Vertical, Horizontal and Box read
// rows, columns or both up to their margin.
enum EffectId : uint32_t {
  kTone = 0x200100,
  kVertical1 = 0x200200,
  kVertical2 = 0x200300,
  kVertical3 = 0x200400,
  kHorizontal2 = 0x200500,
  kBox1 = 0x200600,
  kBox2 = 0x200700,
  kBox3 = 0x200800,
  kCopy1 = 0x200900,
  kCopy3 = 0x200A00,
  kFailingBox1 = 0x200B00,        // its kernel answers 5, its generic form is kBox1
  kFailing = 0x200C00,            // its kernel answers 5, and there is no generic form
  kOnlyRgb24 = 0x200D00,          // kTone, but for 24-bit RGB only and without a generic form
  kUpsideDown = 0x200E00,         // reads the whole picture
  kPlanes = 0x200F00,             // takes a PlanesRecord
  kSecondThroughMask = 0x201000,  // second input where the mask is set, else the source
  kRotated = 0x201100,            // takes a RotatedRecord
  kSharesTable = 0x201200,        // merges with its like on both sides: counts its setups in lut
  kGivesTable = 0x201300,         // merges with a follower only
  kUnbuilt = 0x201400,            // known, but without a kernel
  kBadSetup = 0x201500,           // its setup answers 4
  kResources = 0x201600,          // its setup makes two pictures and both working blocks
  kFilter = 0x201700              // takes a QPXFilterRecord, as the looks do
};

// Luma (or grey) is read up to `margin` rows away; the other planes are left to the pipeline.
struct PlanesRecord {
  uint32_t planeFlags;
  int32_t margin;
  uint8_t fill[4];
};

struct RotatedRecord {
  double degrees;
};

// How far kernels see, and by which axes. The kernels and the model of the tests share no more than
// these numbers.
struct Neighbourhood {
  int down;
  int across;
};
Neighbourhood neighbourhoodOf(uint32_t effectId);

// Weight of the sample `dy` rows below and `dx` columns right of a pixel.
constexpr int weightOf(int dy, int dx) { return 1 + (dy + 4) * 3 + (dx + 4) * 29; }

// Times that the pipeline has begun a new stream on a stage of kTone.
extern int streamResets;

}  // namespace qpx::testing
