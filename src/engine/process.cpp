// The entry to the pipeline and its road for a single stage.
#include "engine/process.h"

#include <algorithm>

#include "engine/address.h"
#include "engine/band.h"
#include "engine/plane_flags.h"
#include "engine/row_tables.h"

namespace qpx {
namespace {

bool planesPresent(const MBitmap& image, int32_t planes) {
  for (int p = 0; p < planes; ++p) {
    if (image.plane[p] == nullptr) return false;
  }
  return true;
}

// Stores one plane; returns whether it differs from that of the call before.
bool storePlane(Stage& head, int place, uint8_t* plane, int32_t pitch) {
  const bool changed = head.plane[place] != plane || head.pitch[place] != pitch;
  head.plane[place] = plane;
  head.pitch[place] = pitch;
  return changed;
}

// Chroma samples that a placement moves by. Rounded up: at an odd place, the chroma block that
// begins at an even pixel of the picture begins at the second half of one of the second input's
// blocks. This keeps every block of the picture that begins inside the second input inside its
// planes.
ptrdiff_t chromaShift(int32_t place, int32_t sampling) {
  return place / sampling + (place > 0 && place % sampling != 0 ? 1 : 0);
}

// Moves a placed second input's plane so that its rows and columns count from the source's origin.
uint8_t* placedSecond(const PixInfo& pix, int p, const MBitmap& second, const QPXBandRect& rect) {
  uint8_t* row =
      retreat(second.plane[p], second.pitch[p], chromaShift(rect.secondTop, pix.ySampling[p]));
  // Interleaved chroma moves in whole pairs.
  if (p > 0 && isSemiPlanar(pix)) return retreat(row, 2, chromaShift(rect.secondLeft, 2));
  return retreat(row, columnStep(pix, p), chromaShift(rect.secondLeft, pix.xSampling[p]));
}

// Turns a plane set that addresses the pixel at (left, top) into an image whose planes address its
// origin.
MBitmap rebased(const PixInfo& pix, const QPXPlaneSet& planes, int64_t left, int64_t top) {
  MBitmap image = {};
  for (int p = 0; p < pix.planes; ++p) {
    image.pitch[p] = planes.pitch[p];
    if (planes.plane[p] == nullptr) continue;
    const ptrdiff_t rows = static_cast<ptrdiff_t>(top / pix.ySampling[p]);
    const ptrdiff_t columns = static_cast<ptrdiff_t>(left / pix.xSampling[p]);
    uint8_t* row = retreat(planes.plane[p], planes.pitch[p], rows);
    image.plane[p] = retreat(row, columnStep(pix, p), columns);
  }
  return image;
}

MBitmap rebasedMask(const QPXPlaneSet& planes, int64_t left, int64_t top) {
  MBitmap image = {};
  image.pitch[0] = planes.pitch[0];
  if (planes.plane[0] != nullptr) {
    uint8_t* row = retreat(planes.plane[0], planes.pitch[0], static_cast<ptrdiff_t>(top));
    image.plane[0] = retreat(row, 1, static_cast<ptrdiff_t>(left));
  }
  return image;
}

// The output planes of a rotated effect address its output rectangle, but were rebased by the
// band's. Output tables make up for that in whole pairs of chroma; this is the half pair between an
// odd column and an even one.
void addHalfPairs(Stage& head, int32_t bandLeft, int32_t outLeft) {
  if (!isSemiPlanar(head.pix)) return;
  for (int p = 1; p < 3; ++p) {
    uint8_t*& plane = head.plane[kOutputPlane + p];
    plane = advance(plane, 1, (bandLeft & 1) - (outLeft & 1));
  }
}

// Rotated effects make the rectangle that QPXCalcRect fixed, whatever the band.
int32_t processWarp(QPXEngine* engine, const CallImages& images, QPXBandRect* rect) {
  Stage& head = *engine->head;
  storePlanes(head, images, rect);
  head.bandLeft = rect->left;
  head.bandTop = rect->top;
  head.bandRight = rect->right;
  head.bandBottom = rect->bottom;
  const MRect out = {std::clamp(head.warpRect.left, 0, head.outWidth),
                     std::clamp(head.warpRect.top, 0, head.outHeight),
                     std::clamp(head.warpRect.right, 0, head.outWidth),
                     std::clamp(head.warpRect.bottom, 0, head.outHeight)};
  addHalfPairs(head, rect->left, out.left);
  storeRect(out, rect);
  if (out.top >= out.bottom || out.left >= out.right) return QPX_OK;
  buildInputTables(head);
  buildOutputTables(head, out);
  return runStage(engine, 0, out);
}

int32_t processBand(QPXEngine* engine, const CallImages& images, QPXBandRect* rect) {
  Stage& head = *engine->head;
  storePlanes(head, images, rect);
  const int32_t result = clipBand(engine, rect);
  if (result != QPX_OK || bandEmpty(head)) return result;
  followStream(engine);

  head.chainRuns = false;
  const MRect out = cutToOutput(head, outputRect(head));
  storeRect(out, rect);
  int32_t kernelResult = QPX_OK;
  if (out.top < out.bottom && out.left < out.right) {
    head.lastOutLeft = out.left;
    head.lastOutTop = out.top;
    head.lastOutRight = out.right;
    head.lastOutBottom = out.bottom;
    buildInputTables(head);
    buildOutputTables(head, out);
    kernelResult = runStage(engine, 0, out);
    applyPlaneFlags(head, out);
  }
  keepRows(head);
  return kernelResult;
}

}  // namespace

int32_t checkImages(const Stage& head, const CallImages& images) {
  if (images.out == nullptr || images.in == nullptr) return QPX_BAD_PARAM;
  if (head.hasSecond != 0 && images.second == nullptr) return QPX_BAD_PARAM;
  if (head.hasMask != 0 && images.mask == nullptr) return QPX_BAD_PARAM;
  const int32_t planes = head.pix.planes;
  if (!planesPresent(*images.out, planes) || !planesPresent(*images.in, planes)) {
    return QPX_BAD_PARAM;
  }
  if (head.hasSecond != 0 && !planesPresent(*images.second, planes)) return QPX_BAD_PARAM;
  if (head.hasMask != 0 && !planesPresent(*images.mask, 1)) return QPX_BAD_PARAM;
  // The tables are gone after QPXFreeMemory.
  return head.rowTables == nullptr ? QPX_BAD_PARAM : QPX_OK;
}

void storePlanes(Stage& head, const CallImages& images, const QPXBandRect* rect) {
  const bool placed = head.cropMode != 0 && rect != nullptr;
  bool changed = false;
  for (int p = 0; p < head.pix.planes; ++p) {
    storePlane(head, kOutputPlane + p, images.out->plane[p], images.out->pitch[p]);
    changed |= storePlane(head, kInputPlane + p, images.in->plane[p], images.in->pitch[p]);
    if (head.hasSecond == 0) continue;
    uint8_t* second =
        placed ? placedSecond(head.pix, p, *images.second, *rect) : images.second->plane[p];
    changed |= storePlane(head, kSecondPlane + p, second, images.second->pitch[p]);
  }
  if (head.hasMask != 0) {
    uint8_t* mask = images.mask->plane[0];
    if (placed) {
      mask = retreat(mask, images.mask->pitch[0], rect->maskTop);
      mask = retreat(mask, 1, rect->maskLeft);
    }
    changed |= storePlane(head, kMaskPlane, mask, images.mask->pitch[0]);
  }
  if (changed) head.inputTablesValid = false;
}

int32_t runStage(QPXEngine* engine, int32_t k, const MRect& rect) {
  QPXBand& band = engine->head->bands[k];
  return QPXEffectProcess_C(engine->stages()[k], &rect, band.outRows, band.inRows, band.secondRows,
                            band.maskRows);
}

void storeRect(const MRect& from, QPXBandRect* to) {
  to->left = from.left;
  to->top = from.top;
  to->right = from.right;
  to->bottom = from.bottom;
}

}  // namespace qpx

using namespace qpx;

int32_t QPXProcessIn(QPXEngine* handle, const MBitmap* out, const MBitmap* in,
                     const MBitmap* second, const MBitmap* mask, QPXBandRect* rect) {
  Stage* head = headOf(handle);
  if (head == nullptr || rect == nullptr) return QPX_BAD_PARAM;
  const CallImages images = {out, in, second, mask};
  const int32_t result = checkImages(*head, images);
  if (result != QPX_OK) return result;
  return head->effect->has(kWarps) ? processWarp(handle, images, rect)
                                   : processBand(handle, images, rect);
}

int32_t QPXProcess(QPXEngine* handle, const QPXPlaneSet* outPlanes, const QPXPlaneSet* inPlanes,
                   MRect* rect) {
  Stage* head = headOf(handle);
  if (head == nullptr || outPlanes == nullptr || inPlanes == nullptr || rect == nullptr) {
    return QPX_BAD_PARAM;
  }
  const MBitmap out = rebased(head->pix, *outPlanes, rect->left, rect->top);
  const MBitmap in = rebased(head->pix, *inPlanes, rect->left, rect->top);
  QPXBandRect band = {rect->left, rect->top, rect->right, rect->bottom, 0, 0, 0, 0};
  const int32_t result = head->stageCount < 2
                             ? QPXProcessIn(handle, &out, &in, nullptr, nullptr, &band)
                             : QPXMultProcessIn(handle, &out, &in, nullptr, nullptr, &band);
  *rect = {band.left, band.top, band.right, band.bottom};
  return result;
}

int32_t QPXMerge(QPXEngine* handle, const QPXPlaneSet* outPlanes, const QPXPlaneSet* inPlanes,
                 const QPXPlaneSet* secondPlanes, const QPXPlaneSet* maskPlanes,
                 QPXBandRect* rect) {
  Stage* head = headOf(handle);
  if (head == nullptr || outPlanes == nullptr || inPlanes == nullptr || rect == nullptr) {
    return QPX_BAD_PARAM;
  }
  const MBitmap out = rebased(head->pix, *outPlanes, rect->left, rect->top);
  const MBitmap in = rebased(head->pix, *inPlanes, rect->left, rect->top);
  MBitmap second = {};
  if (secondPlanes != nullptr) {
    second = rebased(head->pix, *secondPlanes, int64_t{rect->left} - rect->secondLeft,
                     int64_t{rect->top} - rect->secondTop);
  }
  MBitmap mask = {};
  if (maskPlanes != nullptr) {
    mask = rebasedMask(*maskPlanes, int64_t{rect->left} - rect->maskLeft,
                       int64_t{rect->top} - rect->maskTop);
  }
  return QPXProcessIn(handle, &out, &in, secondPlanes != nullptr ? &second : nullptr,
                      maskPlanes != nullptr ? &mask : nullptr, rect);
}
