// A palette by k-means. Means are cut to integers and empty clusters turn black, so that rounds,
// unlike those of the textbook, may come back to where they were.
#include <qpx/contours.h>

#include <algorithm>
#include <cstring>

#include "engine/stage.h"

namespace qpx {
namespace {

constexpr int32_t kMostCentres = 256;
constexpr int32_t kBlock = 256;

struct Cluster {
  int32_t centre[3];
  int32_t members;
  int64_t sum[3];
};

// Colours side by side for a while, by channel, with the nearest centre so far.
struct Block {
  int16_t channel[3][kBlock];
  int32_t distance[kBlock];
  int16_t label[kBlock];

  void load(const uint8_t* colours, int32_t count) {
    for (int32_t i = 0; i < count; ++i) {
      for (int c = 0; c < 3; ++c) channel[c][i] = colours[3 * i + c];
      distance[i] = 0x7F7F7F7F;
      label[i] = 0;
    }
  }

  // The first of centres at the same distance stays. Without branches, so that it runs in vectors.
  void offer(const int32_t (&centre)[3], int16_t index, int32_t count) {
    for (int32_t i = 0; i < count; ++i) {
      const int32_t d0 = channel[0][i] - centre[0], d1 = channel[1][i] - centre[1],
                    d2 = channel[2][i] - centre[2];
      const int32_t offered = d0 * d0 + d1 * d1 + d2 * d2;
      label[i] = offered < distance[i] ? index : label[i];
      distance[i] = std::min(offered, distance[i]);
    }
  }
};

class Kmeans {
 public:
  Kmeans(const uint8_t* colours, int32_t n, int32_t k)
      : colours_(colours),
        n_(n),
        k_(k),
        limit_(static_cast<int32_t>(n * 0.10000002384185791)),
        clusters_(blockBytes(k, sizeof(Cluster))),
        labels_(blockBytes(std::max(n, 1), 3)) {}

  bool ready() const { return clusters_ && labels_; }

  void run() {
    const auto size = static_cast<size_t>(n_);
    current_ = labels_.get();
    previous_ = current_ + size;
    saved_ = previous_ + size;
    std::fill_n(current_, size, uint8_t{0});
    std::fill_n(previous_, size, uint8_t{1});
    seed();
    for (int64_t round = 0; round == 0 || !settled(); ++round) {
      assign();
      update();
      std::swap(current_, previous_);
      if (repeats(round)) break;
    }
  }

  void write(uint8_t* palette) const {
    for (int32_t i = 0; i < k_; ++i) {
      for (int c = 0; c < 3; ++c) {
        palette[3 * i + c] = static_cast<uint8_t>(std::clamp(cluster(i).centre[c], 0, 255));
      }
    }
  }

 private:
  Cluster& cluster(int32_t i) const { return reinterpret_cast<Cluster*>(clusters_.get())[i]; }

  void seed() {
    const double step = static_cast<double>(n_) / k_;
    for (int32_t i = 0; i < k_; ++i) {
      cluster(i) = {};
      if (n_ == 0) continue;
      const int32_t from = std::min(static_cast<int32_t>(i * step + 0.5), n_ - 1);
      for (int c = 0; c < 3; ++c) cluster(i).centre[c] = colours_[3 * ptrdiff_t{from} + c];
    }
  }

  bool settled() const {
    int32_t changed = 0;
    for (int32_t i = 0; i < n_; ++i) changed += current_[i] != previous_[i] ? 1 : 0;
    return changed < limit_ || changed == 0;
  }

  void assign() {
    Block block;
    for (int32_t start = 0; start < n_; start += kBlock) {
      const int32_t count = std::min(n_ - start, kBlock);
      block.load(colours_ + 3 * ptrdiff_t{start}, count);
      for (int32_t i = 0; i < k_; ++i) {
        block.offer(cluster(i).centre, static_cast<int16_t>(i), count);
      }
      for (int32_t i = 0; i < count; ++i) {
        current_[start + i] = static_cast<uint8_t>(block.label[i]);
      }
      if (n_ - start <= kBlock) break;
    }
  }

  void update() {
    for (int32_t i = 0; i < k_; ++i) cluster(i) = {};
    for (int32_t i = 0; i < n_; ++i) {
      Cluster& mine = cluster(current_[i]);
      ++mine.members;
      for (int c = 0; c < 3; ++c) mine.sum[c] += colours_[3 * ptrdiff_t{i} + c];
    }
    for (int32_t i = 0; i < k_; ++i) {
      Cluster& mine = cluster(i);
      if (mine.members == 0) continue;
      for (int c = 0; c < 3; ++c) {
        mine.centre[c] = static_cast<int32_t>(mine.sum[c] / mine.members);
      }
    }
  }

  // Rounds depend on the labels alone: once these come back to an earlier state none of the rounds
  // between has settled, and none ever will. Brent's search finds every circle, for one comparison
  // a round.
  bool repeats(int64_t round) {
    const auto size = static_cast<size_t>(n_);
    if (round > 0 && std::memcmp(saved_, previous_, size) == 0) return true;
    if ((round & (round + 1)) == 0) std::memcpy(saved_, previous_, size);
    return false;
  }

  const uint8_t* colours_;
  int32_t n_, k_, limit_;
  Scratch clusters_, labels_;
  uint8_t *current_ = nullptr, *previous_ = nullptr, *saved_ = nullptr;
};

}  // namespace
}  // namespace qpx

using namespace qpx;

int32_t KmeansSegColor(const uint8_t* colours, int32_t n, int32_t k, uint8_t* palette) {
  if (palette == nullptr || n < 0 || (colours == nullptr && n > 0)) return QPX_BAD_PARAM;
  if (k < 1 || k > kMostCentres) return QPX_BAD_PARAM;
  Kmeans kmeans(colours, n, k);
  if (!kmeans.ready()) return QPX_NO_MEMORY;
  kmeans.run();
  kmeans.write(palette);
  return QPX_OK;
}
