// Copies a patch into a hole so that no seam shows.
#pragma once

#include <optional>
#include <span>

#include "retouch/banded_cholesky.h"
#include "retouch/level.h"

namespace qpx::retouch {

class PatchBlend {
 public:
  // For patches up to this size.
  PatchBlend(int32_t width, int32_t height);
  explicit operator bool() const { return places_ && numbers_ && entries_ && sides_; }

  // Fills the holes of `patch` from the pixels that lie `offset` away, which are known, and
  // corrects them to what is known around. The mask stays as it is.
  void fill(const Level& level, const MRect& patch, MPoint offset);

  // The pixels that the last call filled. Good until the next one.
  std::span<const MPoint> filled() const { return {places_.get(), static_cast<size_t>(count_)}; }

 private:
  // A known pixel and what would be pasted there.
  struct Border {
    const uint8_t* there;
    const uint8_t* pasted;

    int32_t at(ptrdiff_t channel) const { return there[channel] - pasted[channel]; }
  };

  void listHoles(const Level& level, const MRect& patch);
  void correct(const Level& level, MPoint offset);
  bool setUp(const Level& level, MPoint offset);
  std::optional<Border> borderAt(const Level& level, MPoint offset, MPoint at, MPoint step) const;
  void addEquation(const Level& level, MPoint offset, ptrdiff_t k);
  int32_t& numberAt(int32_t x, int32_t y) const;

  Buffer<MPoint> places_;
  Buffer<int32_t> numbers_;  // of the places, over the patch
  Buffer<float> entries_;
  Buffer<float> sides_;
  MRect patch_ = {};
  ptrdiff_t count_ = 0;
  BandedMatrix matrix_ = {};
  int32_t usual_[3] = {};  // differences at the border
};

}  // namespace qpx::retouch
