#include "engine/test_effects.h"

#include <algorithm>
#include <cstring>

#include "engine/address.h"
#include "engine/effect_row.h"
#include "engine/stage.h"
#include "engine/warp.h"

namespace qpx {
namespace testing {

int streamResets = 0;

Neighbourhood neighbourhoodOf(uint32_t effectId) {
  switch (effectId) {
    case kVertical1:
      return {1, 0};
    case kVertical2:
      return {2, 0};
    case kVertical3:
      return {3, 0};
    case kHorizontal2:
      return {0, 2};
    case kBox1:
    case kFailingBox1:
      return {1, 1};
    case kBox2:
      return {2, 2};
    case kBox3:
      return {3, 3};
    default:
      return {0, 0};
  }
}

namespace {

constexpr int32_t kKernelError = 5;

int32_t weighted(const Frame& frame) {
  const Neighbourhood reach = neighbourhoodOf(frame.stage.effectId);
  const int32_t step = frame.stage.pix.bytesPerSample[0];
  const int32_t last = frame.stage.inWidth - 1;
  for (int32_t y = frame.rect.top; y < frame.rect.bottom; ++y) {
    for (int32_t x = frame.rect.left; x < frame.rect.right; ++x) {
      for (int32_t c = 0; c < step; ++c) {
        int sum = 0;
        for (int dy = -reach.down; dy <= reach.down; ++dy) {
          for (int dx = -reach.across; dx <= reach.across; ++dx) {
            const int64_t column = std::clamp<int64_t>(int64_t{x} + dx, 0, last);
            sum +=
                weightOf(dy, dx) * frame.in[0][y + dy][static_cast<ptrdiff_t>(column) * step + c];
          }
        }
        frame.out[0][y][ptrdiff_t{x} * step + c] = static_cast<uint8_t>(sum);
      }
    }
  }
  return QPX_OK;
}

int32_t copyRows(const Frame& frame) {
  const ptrdiff_t step = frame.stage.pix.bytesPerSample[0];
  const size_t bytes = static_cast<size_t>((frame.rect.right - frame.rect.left) * step);
  for (int32_t y = frame.rect.top; y < frame.rect.bottom; ++y) {
    std::memcpy(frame.out[0][y] + frame.rect.left * step, frame.in[0][y] + frame.rect.left * step,
                bytes);
  }
  return QPX_OK;
}

int32_t fail(const Frame&) { return kKernelError; }

int32_t upsideDown(const Frame& frame) {
  const ptrdiff_t step = frame.stage.pix.bytesPerSample[0];
  const size_t bytes = static_cast<size_t>((frame.rect.right - frame.rect.left) * step);
  for (int32_t y = frame.rect.top; y < frame.rect.bottom; ++y) {
    std::memcpy(frame.out[0][y] + frame.rect.left * step,
                frame.in[0][frame.stage.inHeight - 1 - y] + frame.rect.left * step, bytes);
  }
  return QPX_OK;
}

int32_t setUpPlanes(Stage& stage, QPXBand& band) {
  const auto& param = record<PlanesRecord>(stage);
  band.planeFlags = param.planeFlags;
  std::memcpy(band.fill, param.fill, 3);
  return QPX_OK;
}

int32_t marginOfPlanes(const Stage& stage) { return record<PlanesRecord>(stage).margin; }

int32_t lumaRows(const Frame& frame) {
  if (frame.stage.pix.family == kFamilyYuyv) return QPX_OK;  // everything is left to the pipeline
  const int32_t margin = record<PlanesRecord>(frame.stage).margin;
  for (int32_t y = frame.rect.top; y < frame.rect.bottom; ++y) {
    for (int32_t x = frame.rect.left; x < frame.rect.right; ++x) {
      int sum = 0;
      for (int dy = -margin; dy <= margin; ++dy) sum += weightOf(dy, 0) * frame.in[0][y + dy][x];
      frame.out[0][y][x] = static_cast<uint8_t>(sum);
    }
  }
  return QPX_OK;
}

// Samples of plane p that belong to the chroma block at pixel (x, y).
uint8_t* chroma(QPXRowTable* rows, const PixInfo& pix, int p, int32_t x, int32_t y) {
  uint8_t* row = chromaRow(rows[p], y, pix.ySampling[p]);
  return isSemiPlanar(pix) ? row + (x & ~1) : row + x / pix.xSampling[p];
}

bool beginsBlock(const PixInfo& pix, int32_t x, int32_t y) {
  const int32_t across = isSemiPlanar(pix) ? 2 : pix.xSampling[1];
  return x % across == 0 && y % pix.ySampling[1] == 0;
}

int32_t secondThroughMask(const Frame& frame) {
  const PixInfo& pix = frame.stage.pix;
  for (int32_t y = frame.rect.top; y < frame.rect.bottom; ++y) {
    for (int32_t x = frame.rect.left; x < frame.rect.right; ++x) {
      const bool lit = frame.stage.hasMask == 0 || frame.mask[y][x] != 0;
      QPXRowTable* from = lit && frame.stage.hasSecond != 0 ? frame.second : frame.in;
      const int32_t step = pix.bytesPerSample[0];
      for (int32_t c = 0; c < step; ++c) {
        frame.out[0][y][ptrdiff_t{x} * step + c] = from[0][y][ptrdiff_t{x} * step + c];
      }
      if (pix.planes == 1 || !beginsBlock(pix, x, y)) continue;
      for (int p = 1; p < 3; ++p) {
        *chroma(frame.out, pix, p, x, y) = *chroma(from, pix, p, x, y);
      }
    }
  }
  return QPX_OK;
}

int32_t setUpRotated(Stage& stage, QPXBand&) {
  return buildWarpTables(stage, record<RotatedRecord>(stage).degrees);
}

// Nearest source pixel, black outside.
int32_t rotate(const Frame& frame) {
  const WarpTables tables = warpTables(frame.stage);
  const ptrdiff_t step = frame.stage.pix.bytesPerSample[0];
  for (int32_t y = frame.rect.top; y < frame.rect.bottom; ++y) {
    for (int32_t x = frame.rect.left; x < frame.rect.right; ++x) {
      const WarpPoint source = warpSource(frame.stage, tables, x, y);
      const int64_t column = source.x >> 16;
      const int64_t row = source.y >> 16;
      const bool inside =
          column >= 0 && column < frame.stage.inWidth && row >= 0 && row < frame.stage.inHeight;
      for (ptrdiff_t c = 0; c < step; ++c) {
        frame.out[0][y][x * step + c] =
            inside ? frame.in[0][row][static_cast<ptrdiff_t>(column) * step + c] : uint8_t{0};
      }
    }
  }
  return QPX_OK;
}

int32_t setUpShared(Stage& stage, QPXBand&) {
  if (stage.lut == nullptr) {
    stage.lut = static_cast<uint8_t*>(MMemAlloc(nullptr, 256));
    if (stage.lut == nullptr) return QPX_NO_MEMORY;
    MMemSet(stage.lut, 0, 256);
    stage.lutSize = 256;
  }
  ++stage.lut[0];
  return QPX_OK;
}

int32_t failSetup(Stage&, QPXBand&) { return QPX_NO_MEMORY; }

int32_t setUpResources(Stage& stage, QPXBand&) {
  stage.lut = static_cast<uint8_t*>(MMemAlloc(nullptr, 8));
  if (stage.lut == nullptr) return QPX_NO_MEMORY;
  stage.scratch2 = static_cast<uint8_t*>(MMemAlloc(nullptr, 8));
  if (stage.scratch2 == nullptr) return QPX_NO_MEMORY;
  stage.resources = static_cast<void**>(MMemAlloc(nullptr, 3 * sizeof(void*)));
  if (stage.resources == nullptr) return QPX_NO_MEMORY;
  MMemSet(stage.resources, 0, 3 * sizeof(void*));
  for (int i = 0; i < 2; ++i) {
    stage.resources[i] = UTIL_MBitmapCreate(4, 4, QPX_FORMAT_BGR24);
    if (stage.resources[i] == nullptr) return QPX_NO_MEMORY;
  }
  return QPX_OK;
}

void countReset(Stage&, const QPXBand&) { ++streamResets; }

constexpr std::array<LayoutKernel, 6> kRgb(Kernel kernel) { return {{{kTakesPackedRgb, kernel}}}; }

constexpr uint32_t kGives = QPX_EFFECT_GIVES_TABLE;
constexpr uint32_t kTakes = QPX_EFFECT_TAKES_TABLE;
constexpr RecordLayout kPlanesLayout = {.size = sizeof(PlanesRecord)};

constexpr EffectRow kRows[] = {
    {.id = kTone, .kernels = kRgb(weighted), .resetStream = countReset},
    {.id = kVertical1, .margin = {.fixed = 1}, .kernels = kRgb(weighted)},
    {.id = kVertical2, .margin = {.fixed = 2}, .kernels = kRgb(weighted)},
    {.id = kVertical3, .margin = {.fixed = 3}, .kernels = kRgb(weighted)},
    {.id = kHorizontal2, .margin = {.fixed = 2}, .kernels = kRgb(weighted)},
    {.id = kBox1, .margin = {.fixed = 1}, .kernels = kRgb(weighted)},
    {.id = kBox2, .margin = {.fixed = 2}, .kernels = kRgb(weighted)},
    {.id = kBox3, .margin = {.fixed = 3}, .kernels = kRgb(weighted)},
    {.id = kCopy1, .margin = {.fixed = 1}, .kernels = kRgb(copyRows)},
    {.id = kCopy3, .margin = {.fixed = 3}, .kernels = kRgb(copyRows)},
    {.id = kFailingBox1, .margin = {.fixed = 1}, .kernels = kRgb(fail), .generic = weighted},
    {.id = kFailing, .kernels = kRgb(fail)},
    {.id = kOnlyRgb24, .kernels = {{{QPX_TAKES_RGB24, weighted}}}},
    {.id = kUpsideDown, .margin = {.rule = QPX_MARGIN_WHOLE_IMAGE}, .kernels = kRgb(upsideDown)},
    {.id = kPlanes,
     .record = kPlanesLayout,
     .flags = kSetsUpYuyv,
     .margin = {.rule = QPX_MARGIN_RECORD, .measure = marginOfPlanes},
     .setup = setUpPlanes,
     .generic = lumaRows},
    {.id = kSecondThroughMask, .flags = kCrops, .generic = secondThroughMask},
    {.id = kRotated,
     .record = {.size = sizeof(RotatedRecord)},
     .flags = kWarps,
     .setup = setUpRotated,
     .generic = rotate},
    {.id = kSharesTable, .flags = kGives | kTakes, .setup = setUpShared, .kernels = kRgb(copyRows)},
    {.id = kGivesTable, .flags = kGives, .setup = setUpShared, .kernels = kRgb(copyRows)},
    {.id = kUnbuilt},
    {.id = kBadSetup, .setup = failSetup, .kernels = kRgb(copyRows)},
    {.id = kResources, .setup = setUpResources, .kernels = kRgb(copyRows)},
    {.id = kFilter,
     .record = {.size = sizeof(QPXFilterRecord), .sharedFilterRecord = true},
     .kernels = kRgb(copyRows)},
};
static_assert(idsAscend(kRows));

constexpr EffectFamily kTestFamily = {"test", kRows};
constexpr const EffectFamily* kTestFamilies[] = {&kTestFamily};

}  // namespace
}  // namespace testing

std::span<const EffectFamily* const> effectFamilies() { return testing::kTestFamilies; }

}  // namespace qpx
