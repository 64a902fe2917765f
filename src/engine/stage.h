// A stage as the engine sees it: the public record, and what only the engine needs behind it.
#pragma once

#include <kesbase.h>
#include <qpx/stage.h>

#include <cstddef>
#include <cstdint>

#include "engine/effect_row.h"

namespace qpx {

// Families of PixInfo.family.
inline constexpr uint32_t kFamilyPackedRgb = 1;
inline constexpr uint32_t kFamilyGrey = 32;
inline constexpr uint32_t kFamilyNv21 = 48;
inline constexpr uint32_t kFamilyNv12 = 49;
inline constexpr uint32_t kFamilyYuyv = 66;

inline bool isSemiPlanar(const PixInfo& pix) {
  return pix.family == kFamilyNv21 || pix.family == kFamilyNv12;
}

// Bytes from one column of samples of plane p to the next. A packed 4:2:2 pixel has two bytes in
// its one plane, although its luma samples count as steps of one.
inline int32_t columnStep(const PixInfo& pix, int p) {
  return p == 0 && pix.family == kFamilyYuyv ? 2 : pix.bytesPerSample[p];
}

// Places of planes and pitches in QPXStage.
inline constexpr int kInputPlane = 0;
inline constexpr int kOutputPlane = 3;
inline constexpr int kSecondPlane = 6;
inline constexpr int kMaskPlane = 9;

struct Stage : QPXStage {
  const EffectRow* effect;
  uint8_t* record;        // the effect's place in param
  int32_t chainStart;     // first row that the current stream of a chain makes
  bool chainRuns;         // the rows behind chainStart went through all stages
  uint32_t mergedTraits;  // what the point effects merged into this stage tell its kernel
  bool inputTablesValid;  // input tables still fit the plane pointers of this call
};

// Bytes of so many rows or entries; more than there can be where they pass the address space, so
// that asking for them fails.
inline size_t blockBytes(int64_t count, int64_t bytesEach) {
  const auto most = static_cast<int64_t>(SIZE_MAX / 4);
  return count > most / bytesEach ? SIZE_MAX : static_cast<size_t>(count * bytesEach);
}

// Blocks that die with their scope unless released.
class Scratch {
 public:
  explicit Scratch(size_t size) : block_(static_cast<uint8_t*>(MMemAlloc(nullptr, size))) {}
  ~Scratch() { MMemFree(nullptr, block_); }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  uint8_t* get() const { return block_; }
  uint8_t* release() {
    uint8_t* block = block_;
    block_ = nullptr;
    return block;
  }
  explicit operator bool() const { return block_ != nullptr; }

 private:
  uint8_t* block_;
};

// The parameter record that setup copied from the list item; all zero if the item's had a wrong
// size.
template <typename Record>
const Record& record(const Stage& stage) {
  return *reinterpret_cast<const Record*>(stage.record);
}

// The same for setup, which stores clamped values back so that kernels read them as they are.
template <typename Record>
Record& editRecord(Stage& stage) {
  return *reinterpret_cast<Record*>(stage.record);
}

// Samples that `pixels` neighbouring pixels share `divisor` a sample, counting one that is cut off.
// Pictures may be as wide as 32 bits say, so nothing is added before the division.
inline int32_t divideUp(int32_t pixels, int32_t divisor) {
  return pixels / divisor + (pixels % divisor != 0 ? 1 : 0);
}

// Row of a chroma table for image row y. Tables of a vertical divisor of 2 are indexed by image
// row; those of other divisors hold chroma rows one to one.
inline uint8_t* chromaRow(QPXRowTable table, int32_t y, int32_t ySampling) {
  return table[ySampling == 2 ? y : y / ySampling];
}

}  // namespace qpx
