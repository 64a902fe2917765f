#include "engine/band.h"

#include <algorithm>
#include <limits>

namespace qpx {
namespace {

// Heights may be negative for pictures stored bottom up.
int32_t rowCount(int32_t height) {
  if (height == std::numeric_limits<int32_t>::min()) return std::numeric_limits<int32_t>::max();
  return height < 0 ? -height : height;
}

// Cuts [low, high) to [start, start + length), which may reach beyond 32 bits.
void cutSpan(int32_t start, int64_t length, int32_t* low, int32_t* high) {
  *low = std::max(*low, start);
  const int64_t end = std::max<int64_t>(start + length, std::numeric_limits<int32_t>::min());
  *high = static_cast<int32_t>(std::min<int64_t>(*high, end));
}

void cutToPlaced(int32_t left, int32_t top, int32_t width, int32_t height, MRect* band) {
  cutSpan(left, width, &band->left, &band->right);
  cutSpan(top, rowCount(height), &band->top, &band->bottom);
}

void storeBand(QPXEngine* engine, const MRect& band) {
  for (Stage** stage = engine->stages(); *stage != nullptr; ++stage) {
    (*stage)->bandLeft = band.left;
    (*stage)->bandTop = band.top;
    (*stage)->bandRight = band.right;
    (*stage)->bandBottom = band.bottom;
  }
}

bool continuesStream(const Stage& head) {
  return head.bandTop == head.prevBottom && head.bandLeft == head.prevLeft &&
         head.bandRight == head.prevRight;
}

// First row that could be finished, were none of them finished yet.
int32_t candidateTop(Stage& head) {
  const QPXBand& band = head.bands[0];
  if (head.bandTop == 0) head.startedAtTop = 1;
  if (head.startedAtTop != 0) return head.bandTop - band.marginTop;
  // The stream began inside the picture: rows without their full neighbourhood above are left out.
  const int32_t held = band.rowsTaken - band.marginTop;
  return held > band.marginTop ? head.bandTop - band.marginTop : head.bandTop - held;
}

}  // namespace

int32_t clipBand(QPXEngine* engine, const QPXBandRect* rect) {
  Stage& head = *engine->head;
  MRect band = {0, 0, head.inWidth, rowCount(head.inHeight)};
  if (rect != nullptr) {
    if (rect->top >= rect->bottom || rect->left >= rect->right) return QPX_BAD_PARAM;
    band.left = std::max(band.left, rect->left);
    band.top = std::max(band.top, rect->top);
    band.right = std::min(band.right, rect->right);
    band.bottom = std::min(band.bottom, rect->bottom);
    if (head.cropMode != 0 && head.hasSecond != 0) {
      cutToPlaced(rect->secondLeft, rect->secondTop, head.secondWidth, head.secondHeight, &band);
    }
    if (head.cropMode != 0 && head.hasMask != 0) {
      cutToPlaced(rect->maskLeft, rect->maskTop, head.maskWidth, head.maskHeight, &band);
    }
  }
  storeBand(engine, band);
  return QPX_OK;
}

bool bandEmpty(const Stage& head) {
  return head.bandTop >= head.bandBottom || head.bandLeft >= head.bandRight;
}

void followStream(QPXEngine* engine) {
  Stage& head = *engine->head;
  if (!continuesStream(head)) resetStream(engine);
  head.prevLeft = head.bandLeft;
  head.prevTop = head.bandTop;
  head.prevRight = head.bandRight;
  head.prevBottom = head.bandBottom;
}

MRect outputRect(Stage& head) {
  const QPXBand& band = head.bands[0];
  MRect out;
  out.top = std::max(candidateTop(head), head.lastOutBottom);
  out.bottom =
      head.bandBottom >= head.inHeight ? head.inHeight : head.bandBottom - band.marginBottom;
  const int64_t firstColumn = int64_t{head.bandLeft} + (head.bandLeft != 0 ? band.marginLeft : 0);
  out.left =
      static_cast<int32_t>(std::min<int64_t>(firstColumn, std::numeric_limits<int32_t>::max()));
  out.right = head.bandRight - (head.bandRight != head.inWidth ? band.marginRight : 0);
  out.bottom = std::max(out.bottom, out.top);
  out.right = std::max(out.right, out.left);
  return out;
}

MRect cutToOutput(const Stage& head, MRect out) {
  out.bottom = std::max(std::min(out.bottom, head.outHeight), out.top);
  out.right = std::max(std::min(out.right, head.outWidth), out.left);
  return out;
}

void takeRows(QPXBand& band, int32_t rows) {
  band.rowsTaken += rows;
  for (int p = 0; p < 3; ++p) {
    band.ringPos[p] = static_cast<uint16_t>(band.rowsTaken % band.ringCapacity);
    band.ringWrap[p] = static_cast<uint16_t>(band.rowsTaken / band.ringCapacity);
  }
}

void keepRows(Stage& head) {
  QPXBand& band = head.bands[0];
  takeRows(band, std::min(head.bandBottom - head.bandTop, band.marginTop + band.marginBottom));
}

void resetStream(QPXEngine* engine) {
  Stage& head = *engine->head;
  for (int32_t k = 0; k < head.stageCount; ++k) {
    QPXBand& band = head.bands[k];
    band.rowsTaken = 0;
    takeRows(band, 0);
    Stage& stage = *engine->stages()[k];
    if (stage.effect->resetStream != nullptr) stage.effect->resetStream(stage, band);
  }
  head.lastOutLeft = head.lastOutTop = head.lastOutRight = head.lastOutBottom = 0;
  head.startedAtTop = 0;
  head.chainRuns = false;
}

}  // namespace qpx
