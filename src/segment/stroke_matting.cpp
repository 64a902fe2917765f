// A cut-out by strokes: regions of like colour, pinned by strokes and else weighed by colour, are
// divided by a minimum cut.
#include <kesbase.h>
#include <qpx/cutout.h>
#include <qpx/watershed.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <new>
#include <optional>
#include <utility>

#include "engine/stage.h"
#include "geometry/packed_rgb.h"
#include "segment/edge_map.h"
#include "segment/region_colors.h"
#include "segment/region_graph.h"

namespace qpx {
namespace {

constexpr int32_t kShortestChain = 20;
constexpr int64_t kMostPixels = INT32_MAX / 4;  // so that edges can be counted
constexpr size_t kPaletteBytes = 3 * Palette::kMost;

template <typename Entry>
Entry* allocate(int64_t count) {
  return static_cast<Entry*>(MMemAlloc(nullptr, blockBytes(count, sizeof(Entry))));
}

}  // namespace
}  // namespace qpx

struct StrokeMatting {
  qpx::RegionGraph graph;
  MBitmap image = {};      // its pixels may be gone
  bool hasStroke[2] = {};  // by side, since the last cut
  qpx::Palette palettes[2] = {};
  int32_t* labels = nullptr;
  int32_t regionCount = 0;
  qpx::MarkedRegion* regions = nullptr;
  MBitmap mask = {};
  MPoint* outline = nullptr;
  int32_t outlineCount = 0;
  std::optional<qpx::EdgeMap> edgeMap;

  StrokeMatting() = default;
  StrokeMatting(const StrokeMatting&) = delete;
  StrokeMatting& operator=(const StrokeMatting&) = delete;
  ~StrokeMatting();

  bool segment(const MBitmap& picture);
  void describe(const MBitmap& picture);
  bool ensureResults();
  int32_t addStroke(int32_t side, const MPoint* points, int32_t count);
  void reset();
  int32_t process();

 private:
  int64_t pixels() const { return int64_t{image.width} * image.height; }
  int32_t& regionAt(int32_t x, int32_t y) const {
    return labels[static_cast<ptrdiff_t>(y) * image.width + x];
  }
  int32_t gatherPalettes();
  void paintMask(const uint8_t* sides);
  void traceOutline();
};

StrokeMatting::~StrokeMatting() {
  for (void* const block : {static_cast<void*>(palettes[0].colors), static_cast<void*>(labels),
                            static_cast<void*>(regions), static_cast<void*>(mask.plane[0]),
                            static_cast<void*>(outline)}) {
    MMemFree(nullptr, block);
  }
}

// What no handle can be without.
bool StrokeMatting::segment(const MBitmap& picture) {
  image = picture;
  if (pixels() > qpx::kMostPixels) return false;
  palettes[0].colors = qpx::allocate<uint8_t>(2 * qpx::kPaletteBytes);
  labels = qpx::allocate<int32_t>(pixels());
  if (palettes[0].colors == nullptr || labels == nullptr) return false;
  palettes[1].colors = palettes[0].colors + qpx::kPaletteBytes;
  return Watershed_PreSegmentation(&picture, labels, &regionCount) == QPX_OK;
}

void StrokeMatting::describe(const MBitmap& picture) {
  regions = qpx::allocate<qpx::MarkedRegion>(regionCount);
  if (regions == nullptr) return;
  if (Watershed_GetRegionColor(&picture, labels, regionCount, regions) != QPX_OK) {
    MMemFree(nullptr, std::exchange(regions, nullptr));
    return;
  }
  for (int32_t i = 0; i < regionCount; ++i) regions[i].count = qpx::kNoMark;
  graph.build(labels, image.width, image.height, regions, regionCount);
}

// Tried again at every cut, should memory have come back.
bool StrokeMatting::ensureResults() {
  if (mask.plane[0] == nullptr) {
    const int32_t pitch = (image.width + 15) & ~15;
    const size_t bytes = qpx::blockBytes(image.height, pitch);
    mask = {QPX_FORMAT_GREY8, image.width, image.height, {pitch, 0, 0}, {}};
    mask.plane[0] = static_cast<uint8_t*>(MMemAlloc(nullptr, bytes));
    if (mask.plane[0] != nullptr) MMemSet(mask.plane[0], 0, bytes);
  }
  if (outline == nullptr) outline = qpx::allocate<MPoint>(pixels());
  return mask.plane[0] != nullptr && outline != nullptr;
}

int32_t StrokeMatting::addStroke(int32_t side, const MPoint* points, int32_t count) {
  const auto isOff = [this](const MPoint& point) {
    return point.x < 0 || point.y < 0 || point.x >= image.width || point.y >= image.height;
  };
  if (std::any_of(points, points + count, isOff)) return QPX_BAD_PARAM;
  if (regions == nullptr) return QPX_NO_MEMORY;
  for (int32_t i = 0; i < count; ++i) {
    regions[regionAt(points[i].x, points[i].y)].count =
        side == QPX_STROKE_FOREGROUND ? qpx::kForegroundMark : qpx::kBackgroundMark;
  }
  hasStroke[side] = true;
  return QPX_OK;
}

void StrokeMatting::reset() {
  MMemSet(palettes[0].colors, 0, 2 * qpx::kPaletteBytes);
  for (int side = 0; side < 2; ++side) {
    palettes[side].count = 0;
    hasStroke[side] = false;
  }
  for (int32_t i = 0; regions != nullptr && i < regionCount; ++i) regions[i].count = qpx::kNoMark;
  if (mask.plane[0] != nullptr) {
    MMemSet(mask.plane[0], 0, qpx::blockBytes(mask.height, mask.pitch[0]));
  }
  std::fill_n(outline, outlineCount, MPoint{});
  outlineCount = 0;
}

// Both or none.
int32_t StrokeMatting::gatherPalettes() {
  uint8_t colors[2][qpx::kPaletteBytes];
  qpx::Palette gathered[2] = {{colors[0], 0}, {colors[1], 0}};
  for (int side = 0; side < 2; ++side) {
    const int32_t mark =
        side == QPX_STROKE_FOREGROUND ? qpx::kForegroundMark : qpx::kBackgroundMark;
    const int32_t result = qpx::gatherPalette(regions, regionCount, mark, gathered[side]);
    if (result != QPX_OK) return result;
  }
  for (int side = 0; side < 2; ++side) {
    palettes[side].count = gathered[side].count;
    std::memcpy(palettes[side].colors, colors[side], 3 * static_cast<size_t>(gathered[side].count));
  }
  return QPX_OK;
}

void StrokeMatting::paintMask(const uint8_t* sides) {
  for (int32_t y = 0; y < image.height; ++y) {
    const int32_t* const label = &regionAt(0, y);
    uint8_t* const to = qpx::rowOf(mask, y);
    for (int32_t x = 0; x < image.width; ++x) to[x] = sides[label[x]];
  }
}

void StrokeMatting::traceOutline() {
  const qpx::MaskRows rows = {mask.plane[0], mask.pitch[0], mask.width, mask.height};
  edgeMap->markAround(rows);
  edgeMap->markBorder(rows, false);
  outlineCount = edgeMap->follow({qpx::kShortestChain, INT32_MAX}, outline);
}

int32_t StrokeMatting::process() {
  if (!ensureResults()) return QPX_NO_MEMORY;
  if (!hasStroke[0] && !hasStroke[1]) return QPX_OK;
  if (!graph) return QPX_NO_MEMORY;
  if (!edgeMap || !*edgeMap) edgeMap.emplace(image.width, image.height);
  const qpx::Scratch sides(qpx::blockBytes(regionCount, 1));
  if (!*edgeMap || !sides) return QPX_NO_MEMORY;
  const int32_t result = gatherPalettes();
  if (result != QPX_OK) return result;
  if (palettes[0].count == 0 || palettes[1].count == 0) return QPX_OK;
  graph.cut(regions, palettes[0], palettes[1], sides.get());
  paintMask(sides.get());
  traceOutline();
  hasStroke[0] = hasStroke[1] = false;
  return QPX_OK;
}

using namespace qpx;

int32_t STRKM_Create(StrokeMatting** out, const MBitmap* image) {
  if (out == nullptr || image == nullptr) return QPX_BAD_PARAM;
  if (withoutOrder(image->format) != QPX_FORMAT_BGR24 || !hasRows(*image, 3)) return QPX_BAD_PARAM;
  *out = nullptr;
  void* const place = MMemAlloc(nullptr, sizeof(StrokeMatting));
  if (place == nullptr) return QPX_NO_MEMORY;
  auto* const made = new (place) StrokeMatting;
  if (!made->segment(*image)) {
    STRKM_Destroy(made);
    return QPX_NO_MEMORY;
  }
  made->describe(*image);
  made->ensureResults();
  *out = made;
  return QPX_OK;
}

int32_t STRKM_AddLine(StrokeMatting* handle, int32_t side, const MPoint* points, int32_t count) {
  if (handle == nullptr || points == nullptr || count < 0) return QPX_BAD_PARAM;
  if (side != QPX_STROKE_FOREGROUND && side != QPX_STROKE_BACKGROUND) return QPX_BAD_PARAM;
  return count == 0 ? QPX_OK : handle->addStroke(side, points, count);
}

int32_t STRKM_ResetLine(StrokeMatting* handle) {
  if (handle == nullptr) return QPX_BAD_PARAM;
  handle->reset();
  return QPX_OK;
}

int32_t STRKM_Process(StrokeMatting* handle, MBitmap** maskOut, MPoint** pointsOut,
                      int32_t* countOut) {
  if (handle == nullptr || maskOut == nullptr || pointsOut == nullptr || countOut == nullptr) {
    return QPX_BAD_PARAM;
  }
  const int32_t result = handle->process();
  *maskOut = handle->mask.plane[0] != nullptr ? &handle->mask : nullptr;
  *pointsOut = handle->outline;
  *countOut = handle->outlineCount;
  return result;
}

int32_t STRKM_Destroy(StrokeMatting* handle) {
  if (handle == nullptr) return QPX_OK;
  handle->~StrokeMatting();
  MMemFree(nullptr, handle);
  return QPX_OK;
}
