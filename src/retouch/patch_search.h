// The patch of a picture that is most like what is known of another.
#pragma once

#include <optional>

#include "retouch/level.h"
#include "simd/patch_rows.h"

namespace qpx::retouch {

// Distances from one sample to others in planes of one channel each.
struct PlaneSteps {
  ptrdiff_t pitch, channel;
};

// What is known of the patch that is to be filled.
class PatchTarget {
 public:
  explicit PatchTarget(int64_t mostPixels) : terms_(3 * mostPixels), places_(mostPixels) {}
  explicit operator bool() const { return terms_ && places_; }

  // `origin` is the pixel by which patches are placed. Places are those in planes where patches are
  // sought.
  void load(const Level& level, const MRect& patch, MPoint origin, const PlaneSteps& planes);

  const simd::PatchTerm* terms() const { return terms_.get(); }
  ptrdiff_t termCount() const { return 3 * known_; }
  int32_t mean() const { return mean_; }  // grey of what is known

 private:
  Buffer<simd::PatchTerm> terms_;
  Buffer<MPoint> places_;
  ptrdiff_t known_ = 0;
  int32_t mean_ = 0;
};

// Where patches are sought, by their origins. A patch counts where the byte of its origin in the
// mask of `level` is that of a source.
struct PatchField {
  const Level& level;
  MPoint corner;           // of the field in the level
  const uint8_t* samples;  // planes, from the corner on
  ptrdiff_t pitch;
  const uint8_t* means;  // grey of each whole patch, in rows like the samples; or null
  int32_t meanWeight;
  MRect origins;  // in the field
  int32_t spare;  // how many origins beyond the right end of a row can be read too
};

// The origin with the lowest sum of differences, below a million. Windows grow from `start`; among
// equals the one in the earliest window counts, and in it the first in row-major order.
std::optional<MPoint> findPatch(const PatchTarget& target, const PatchField& field,
                                const MRect& start);

}  // namespace qpx::retouch
