#include "retouch/patch_search.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <numeric>

namespace qpx::retouch {
namespace {

constexpr uint32_t kNoMatch = 1000000;

// Steps by which a window grows at once. Fewer at first: whatever is found there makes all that
// follows quicker.
constexpr int32_t kFirstRings = 16;
constexpr int32_t kRings = 64;
constexpr int32_t kRun = 64;

// An order that visits the patch all over from the beginning, so that patches of another kind are
// known after a few samples: multiples of about 0.618 of the count.
ptrdiff_t scatteringStep(ptrdiff_t count) {
  ptrdiff_t step = std::max<ptrdiff_t>(count * 618 / 1000, 1);
  while (std::gcd(step, count) != 1) ++step;
  return step;
}

class Search {
 public:
  Search(const PatchTarget& target, const PatchField& field, const MRect& start)
      : rows_(simd::patchRows()), target_(target), field_(field), start_(start) {}

  std::optional<MPoint> run() {
    MRect inner = {};
    for (int32_t reach = kFirstRings; best_ > 0; reach += kRings) {
      const MRect outer = intersection(grown(start_, reach), field_.origins);
      // Behind a ring nothing can win by being as good.
      limit_ = best_ - 1;
      scanFrame(inner, outer);
      if (covers(outer, field_.origins)) break;
      inner = outer;
    }
    return match_;
  }

 private:
  static bool covers(const MRect& a, const MRect& b) {
    return a.left <= b.left && a.top <= b.top && a.right >= b.right && a.bottom >= b.bottom;
  }

  void scanFrame(const MRect& inner, const MRect& outer) {
    for (int32_t y = outer.top; y < outer.bottom; ++y) {
      if (isEmpty(inner) || y < inner.top || y >= inner.bottom) {
        scanRow(y, outer.left, outer.right);
      } else {
        scanRow(y, outer.left, inner.left);
        scanRow(y, inner.right, outer.right);
      }
    }
  }

  void scanRow(int32_t y, int32_t left, int32_t right) {
    for (; left < right; left += kRun) scanRun(y, left, std::min(right - left, kRun));
  }

  void scanRun(int32_t y, int32_t left, int32_t count) {
    const uint8_t* const marks = &field_.level.state(field_.corner.x + left, field_.corner.y + y);
    if (std::memchr(marks, kSource, static_cast<size_t>(count)) == nullptr) return;
    const ptrdiff_t place = field_.pitch * y + left;
    uint32_t distances[kRun];
    // Rows do whole vectors quicker than less than one.
    const int32_t most = std::min(kRun, count + field_.spare);
    if (!rows_.patchDistances(field_.samples + place, target_.terms(), target_.termCount(), limit_,
                              distances, most)) {
      return;
    }
    for (int32_t i = 0; i < count; ++i) {
      if (distances[i] > limit_ || marks[i] != kSource) continue;
      consider({left + i, y}, distances[i] + meanTerm(place + i));
    }
  }

  uint32_t meanTerm(ptrdiff_t place) const {
    if (field_.means == nullptr) return 0;
    return static_cast<uint32_t>(field_.meanWeight *
                                 std::abs(field_.means[place] - target_.mean()));
  }

  void consider(MPoint origin, uint32_t distance) {
    if (distance > limit_) return;
    const int32_t ring = ringOf(origin);
    if (distance == best_ && ring >= ring_) return;  // rows come in their order
    best_ = limit_ = distance;
    ring_ = ring;
    match_ = origin;
  }

  // By how much the first window has to grow for a place.
  int32_t ringOf(MPoint at) const {
    return std::max({start_.left - at.x, at.x - start_.right + 1, start_.top - at.y,
                     at.y - start_.bottom + 1, 0});
  }

  const simd::PatchRows& rows_;
  const PatchTarget& target_;
  const PatchField& field_;
  MRect start_;
  uint32_t best_ = kNoMatch;
  uint32_t limit_ = kNoMatch;
  int32_t ring_ = 0;
  std::optional<MPoint> match_;
};

}  // namespace

void PatchTarget::load(const Level& level, const MRect& patch, MPoint origin,
                       const PlaneSteps& planes) {
  known_ = 0;
  int64_t sum = 0;
  for (int32_t y = patch.top; y < patch.bottom; ++y) {
    for (int32_t x = patch.left; x < patch.right; ++x) {
      if (!level.isHole(x, y)) places_[known_++] = {x, y};
    }
  }
  const ptrdiff_t step = known_ > 0 ? scatteringStep(known_) : 0;
  ptrdiff_t from = 0;
  for (ptrdiff_t k = 0; k < known_; ++k) {
    const MPoint at = places_[from];
    const uint8_t* const pixel = level.pixel(at.x, at.y);
    const ptrdiff_t offset = planes.pitch * (at.y - origin.y) + (at.x - origin.x);
    for (ptrdiff_t c = 0; c < 3; ++c) {
      const uint8_t value = pixel[level.channelStep * c];
      terms_[3 * k + c] = {offset + planes.channel * c, value};
      sum += value;
    }
    from = (from + step) % known_;
  }
  mean_ = known_ == 0 ? 0 : static_cast<int32_t>(sum / (3 * known_));
}

std::optional<MPoint> findPatch(const PatchTarget& target, const PatchField& field,
                                const MRect& start) {
  if (isEmpty(field.origins)) return std::nullopt;
  return Search(target, field, start).run();
}

}  // namespace qpx::retouch
