#include <qpx/watershed.h>

#include <algorithm>
#include <cstdint>

#include "engine/stage.h"
#include "segment/rgb24.h"
#include "segment/watershed_flood.h"
#include "segment/watershed_gradient.h"

namespace qpx {
namespace {

struct Levels {
  uint32_t counts[kFloodLevels];

  uint32_t most() const { return *std::max_element(counts, counts + kFloodLevels); }
};

// The levels are gone before the field and the queue are there.
int32_t sortPixels(const MBitmap& image, const FloodField& field, uint32_t* places,
                   Levels& result) {
  const Scratch levels(pixelsOf(image));
  if (!levels) return QPX_NO_MEMORY;
  if (const int32_t code = gradientLevels(image, levels.get()); code != QPX_OK) return code;
  countLevels(levels.get(), pixelsOf(image), result.counts);
  sortByLevel(levels.get(), field, result.counts, places);
  return QPX_OK;
}

void copyLabels(const FloodField& field, int32_t* labels) {
  for (int32_t y = 0; y < field.height; ++y) {
    const int32_t* const row = field.cells + field.placeOfRow(y);
    for (int32_t x = 0; x < field.width; ++x) labels[x] = row[x] - 1;
    labels += field.width;
  }
}

int32_t segment(const MBitmap& image, int32_t* labels, int32_t& regionCount) {
  FloodField field = {image.width, image.height, nullptr};
  if (field.size() > INT32_MAX) return QPX_NO_MEMORY;
  const Scratch placeBlock(blockBytes(int64_t{image.width} * image.height, sizeof(uint32_t)));
  if (!placeBlock) return QPX_NO_MEMORY;
  auto* places = reinterpret_cast<uint32_t*>(placeBlock.get());
  Levels levels;
  if (const int32_t code = sortPixels(image, field, places, levels); code != QPX_OK) return code;

  const Scratch cells(blockBytes(field.size(), sizeof(int32_t)));
  const Scratch queue(blockBytes(levels.most(), sizeof(uint32_t)));
  if (!cells || !queue) return QPX_NO_MEMORY;
  field.cells = reinterpret_cast<int32_t*>(cells.get());
  Flood flood(field, reinterpret_cast<uint32_t*>(queue.get()));
  for (const uint32_t count : levels.counts) {
    flood.raise(places, count);
    places += count;
  }
  copyLabels(field, labels);
  regionCount = flood.regions();
  return QPX_OK;
}

}  // namespace
}  // namespace qpx

using namespace qpx;

int32_t Watershed_PreSegmentation(const MBitmap* image, int32_t* labels, int32_t* regionCount) {
  if (labels == nullptr || regionCount == nullptr) return QPX_BAD_PARAM;
  const int32_t code = checkRgb24(image);
  return code != QPX_OK ? code : segment(*image, labels, *regionCount);
}
