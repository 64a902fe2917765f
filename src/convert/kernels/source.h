// Runs of source samples, resampled where the positions ask for it.
//
// What a function returns lies either in the caller's `room` or in the picture itself.
#pragma once

#include <cstddef>
#include <cstdint>

#include "convert/kernels/call.h"
#include "convert/kernels/columns.h"
#include "convert/kernels/formats.h"
#include "convert/kernels/sampler.h"
#include "engine/address.h"
#include "simd/convert_rows.h"
#include "simd/rows.h"

namespace qpx::convert::fast {

struct ChromaRow {
  const uint8_t* u;
  const uint8_t* v;
};

struct PixelRow {
  const uint8_t* pixels;
  int32_t bytes;  // of a pixel
};

// What the rows of one conversion to RGB are brought together in.
struct YuvRooms {
  uint8_t luma[2][kRun];
  uint8_t u[kRun];
  uint8_t v[kRun];
};

class Source {
 public:
  // False where a plane is missing.
  bool open(const Call& call, FormatSet format);

  bool isRgb() const { return (format_ & kInRgb) != 0; }
  bool isOf16Bits() const { return (format_ & kIn16) != 0; }
  bool isRedFirst() const { return (format_ & kInRedFirst) != 0; }
  int32_t chromaShiftX() const { return shiftX_; }

  // Samples, or pixels, lie next to each other.
  bool hasPlanes() const { return chroma_ == Chroma::planes; }
  bool hasLumaPlane() const { return !isRgb() && chroma_ != Chroma::groups; }
  struct Plane {
    const uint8_t* base;
    ptrdiff_t pitch;
    // As numbers: a band's plane is rebased to the origin of its picture.
    const uint8_t* at(int32_t row, ptrdiff_t byte) const {
      return advance(advance(base, pitch, row), 1, byte);
    }
  };
  // Of Y or pixels, U, V.
  Plane plane(int32_t component) const { return {plane_[component], pitch_[component]}; }
  int32_t chromaShiftY() const { return shiftY_; }

  // `columns.count` bytes.
  const uint8_t* luma(const SourcePair& row, const Columns& columns, uint8_t* room);

  // `columns.chroma.count` samples of each.
  ChromaRow chroma(const SourcePair& row, const ChromaColumns& columns, uint8_t* roomU,
                   uint8_t* roomV);

  // Chroma lies in pairs, V before U or the other way round.
  bool hasPairs() const { return chroma_ == Chroma::pairs; }
  bool isVFirst() const { return plane_[2] < plane_[1]; }
  const uint8_t* chromaPairs(const SourcePair& row, const ChromaColumns& columns, uint8_t* room);

  // Rows of these columns are taken from where they lie.
  bool liesReady(const Columns& columns) const {
    return columns.direct && columns.chroma.direct && hasReadyChroma();
  }
  // Luma of rows that share their chroma, and that chroma: of one row, or of two. Rooms are needed
  // where the rows do not lie ready.
  void yuvRows(const SourcePair* rows, int32_t count, const Columns& columns, YuvRooms* rooms,
               simd::YuvRow* made);
  bool shareChroma(const SourcePair& a, const SourcePair& b) const {
    return a.first >> shiftY_ == b.first >> shiftY_ && chroma_ != Chroma::groups;
  }

  // Whether rows that begin at source column `start` are taken from where they lie, however long
  // they are.
  bool needsNoRooms(const Positions& positions, int32_t start) const;

  // Asks memory for the columns of a row that will be wanted, where pixels correspond one to one.
  void prefetch(const SourcePair& row, const Columns& columns) const;

  // Bytes of a pixel as it is returned: those of the format, or 3 where 16-bit pixels are blended.
  int32_t bytesOf(const Columns& columns) const {
    return bilinear_ && !columns.direct && isOf16Bits() ? 3 : pixelBytes(format_);
  }
  // Pixels of an RGB format; room for kRun pixels of 4 bytes.
  PixelRow pixels(const SourcePair& row, const Columns& columns, uint8_t* room);

 private:
  enum class Chroma { none, planes, pairs, apart, groups };

  const uint8_t* rowOf(int32_t plane, int32_t row) const { return this->plane(plane).at(row, 0); }
  void openSamplers();
  // The run's elements of plane 0, nearest or mixed.
  void sample(const SourcePair& row, const Columns& columns, uint8_t* room);
  void sampleChroma(const uint8_t* row, const ChromaColumns& columns, uint8_t* room);
  bool hasReadyChroma() const { return chroma_ != Chroma::none && chroma_ != Chroma::apart; }
  void prefetchChroma(int32_t row, const Columns& columns) const;
  void groupsAt(const SourcePair& row, const Columns& columns, simd::YuvRow* made) const;
  const uint8_t* packedLuma(const SourcePair& row, const Columns& columns, uint8_t* room) const;
  ChromaRow groupedChroma(int32_t row, const ChromaColumns& columns, uint8_t* roomU,
                          uint8_t* roomV);
  void spacedChroma(const uint8_t* row, const ChromaColumns& columns, uint8_t* room) const;
  void blend565(const SourcePair& row, const Columns& columns, uint8_t* room) const;

  const simd::Rows* rows_;
  FormatSet format_;
  bool bilinear_;
  Chroma chroma_;
  const uint8_t* plane_[3];
  ptrdiff_t pitch_[3];
  int32_t offset_[3];
  int32_t shiftX_;
  int32_t shiftY_;
  Sampler sampler_;        // of luma or pixels
  Sampler chromaSampler_;  // of samples, pairs or groups
};

}  // namespace qpx::convert::fast
