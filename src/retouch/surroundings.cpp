#include "retouch/surroundings.h"

#include <algorithm>

namespace qpx::retouch {
namespace {

constexpr uint8_t kWaiting = 254;  // a pixel of the hole that is in the queue

class Growth {
 public:
  Growth(const Level& level, MPoint* queue) : level_(level), queue_(queue) {}

  void run() {
    for (int32_t y = 0; y < level_.height; ++y) {
      for (int32_t x = 0; x < level_.width; ++x) {
        if (level_.isHole(x, y) && touchesKnown(x, y)) enqueue(x, y);
      }
    }
    for (ptrdiff_t done = 0; done < count_; ++done) fill(queue_[done]);
  }

 private:
  static bool isOpen(uint8_t state) { return state == kHole || state == kWaiting; }

  MRect around(int32_t x, int32_t y) const {
    return intersection(squareAround({x, y}, 1), level_.all());
  }

  bool touchesKnown(int32_t x, int32_t y) const {
    const MRect near = around(x, y);
    for (int32_t j = near.top; j < near.bottom; ++j) {
      for (int32_t i = near.left; i < near.right; ++i) {
        if (!isOpen(level_.state(i, j))) return true;
      }
    }
    return false;
  }

  void enqueue(int32_t x, int32_t y) {
    level_.state(x, y) = kWaiting;
    queue_[count_++] = {x, y};
  }

  void fill(MPoint at) {
    const MRect near = around(at.x, at.y);
    int32_t sums[3] = {}, known = 0;
    for (int32_t y = near.top; y < near.bottom; ++y) {
      for (int32_t x = near.left; x < near.right; ++x) {
        if (level_.isHole(x, y)) enqueue(x, y);
        if (isOpen(level_.state(x, y))) continue;
        ++known;
        for (ptrdiff_t c = 0; c < 3; ++c) sums[c] += level_.pixel(x, y)[level_.channelStep * c];
      }
    }
    known = std::max(known, 1);  // what is in the queue has a neighbour; this is for tools to see
    uint8_t* const pixel = level_.pixel(at.x, at.y);
    for (ptrdiff_t c = 0; c < 3; ++c) {
      pixel[level_.channelStep * c] = static_cast<uint8_t>((sums[c] + known / 2) / known);
    }
    level_.state(at.x, at.y) = kFromFill;
  }

  const Level& level_;
  MPoint* queue_;
  ptrdiff_t count_ = 0;
};

}  // namespace

void fillFromSurroundings(const Level& level, MPoint* queue) { Growth(level, queue).run(); }

}  // namespace qpx::retouch
