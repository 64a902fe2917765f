// One row of the catalogue: all that is known about an effect. Families of effects define their
// rows beside the recipes; the engine knows effects only through these rows.
#pragma once

#include <qpx/effects.h>
#include <qpx/stage.h>

#include <array>
#include <cstdint>
#include <span>

namespace qpx {

struct Stage;

// What a kernel is called with: the rectangle to make, and row tables indexed by image row.
struct Frame {
  Stage& stage;
  MRect rect;
  QPXRowTable* out;
  QPXRowTable* in;
  QPXRowTable* second;  // present where the stage has a second input
  QPXRowTable mask;     // present where the stage has a mask
};

using Kernel = int32_t (*)(const Frame& frame);

// A kernel and the format groups (QPX_TAKES_*) that it is written for.
struct LayoutKernel {
  uint32_t formats = 0;
  Kernel run = nullptr;
};

// 24 and 32-bit RGB in either byte order: what kernels named <Effect>_RGB take.
inline constexpr uint32_t kTakesRgb = QPX_TAKES_RGB24 | QPX_TAKES_RGB32;
inline constexpr uint32_t kTakesPackedRgb = kTakesRgb | QPX_TAKES_RGB565 | QPX_TAKES_RGB_ANY;
inline constexpr uint32_t kTakesPlanar = QPX_TAKES_I420 | QPX_TAKES_PLANAR;
inline constexpr uint32_t kTakesSemiPlanar = QPX_TAKES_NV21 | QPX_TAKES_NV12;
inline constexpr uint32_t kTakesYuv = kTakesPlanar | kTakesSemiPlanar;

// The parameter record of an effect. Effects of one layout share one place in a stage's param
// block.
struct RecordLayout {
  uint32_t size = 0;
  std::span<const QPXParamInfo> params = {};
  bool sharedFilterRecord = false;
};

// Fills what the kernel needs from the stage's record: tables, textures, plane flags.
using Setup = int32_t (*)(Stage& stage, QPXBand& band);

struct MarginPolicy {
  QPXMarginRule rule = QPX_MARGIN_FIXED;
  int32_t fixed = 0;
  int32_t (*measure)(const Stage& stage) = nullptr;  // for rules that depend on the stage
};

// Flags of a row beside the public QPX_EFFECT_*. Plain numbers, because enumerators of two types do
// not combine.
inline constexpr uint32_t kSupportsRgb = 0x10000;   // QPXIsSupport answers 1 for colour model 1,
inline constexpr uint32_t kSupportsYuv = 0x20000;   // 5,
inline constexpr uint32_t kSupportsGrey = 0x40000;  // 6
inline constexpr uint32_t kSetsUpYuyv = 0x80000;    // may be set up for packed 4:2:2
inline constexpr uint32_t kWarps =
    0x100000;  // rotated output: its rectangle comes from QPXCalcRect
inline constexpr uint32_t kCrops = 0x200000;  // works inside the placed second input and mask

struct EffectRow {
  uint32_t id = 0;
  const char* name = "";
  const char* title = "";
  const char* summary = "";
  uint32_t formats = 0;  // what kernels written for one format take
  RecordLayout record = {};
  uint32_t flags = 0;  // QPX_EFFECT_* and the flags above
  MarginPolicy margin = {};
  Setup setup = nullptr;
  std::array<LayoutKernel, 6> kernels = {};  // tried in order
  Kernel generic = nullptr;                  // serves every format
  void (*resetStream)(Stage& stage, const QPXBand& band) = nullptr;

  constexpr bool built() const { return kernels[0].run != nullptr || generic != nullptr; }
  constexpr bool has(uint32_t flag) const { return (flags & flag) != 0; }
};

// The effects of one family, ids ascending.
struct EffectFamily {
  const char* name;
  std::span<const EffectRow> effects;
};

constexpr bool idsAscend(std::span<const EffectRow> rows) {
  for (size_t i = 1; i < rows.size(); ++i) {
    if (rows[i - 1].id >= rows[i].id) return false;
  }
  return true;
}

// The families of the catalogue, defined in src/catalogue.
std::span<const EffectFamily* const> effectFamilies();

// The row of an id, or null.
const EffectRow* findEffect(uint32_t id);

// Byte offset of an effect's record in the param block of a stage.
size_t recordPlace(const EffectRow& row);

// The one format group (QPX_TAKES_*) of a format, or 0 for a family without one.
uint32_t formatGroup(const PixInfo& pix);

}  // namespace qpx
