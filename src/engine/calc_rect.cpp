// Which output a rectangle of input gives, and which input a rectangle of output needs.
#include <algorithm>

#include "engine/band.h"
#include "engine/warp.h"

namespace qpx {
namespace {

struct MarginSums {
  int32_t top = 0;
  int32_t bottom = 0;
  int32_t left = 0;
  int32_t right = 0;
};

// Rectangles of hosts may lie anywhere.
int32_t saturate(int64_t value) {
  return static_cast<int32_t>(std::clamp<int64_t>(value, INT32_MIN, INT32_MAX));
}

MarginSums sumMargins(const Stage& head) {
  MarginSums sums;
  for (int32_t k = 0; k < head.stageCount; ++k) {
    const QPXBand& band = head.bands[k];
    sums.top = saturate(int64_t{sums.top} + band.marginTop);
    sums.bottom = saturate(int64_t{sums.bottom} + band.marginBottom);
    sums.left = saturate(int64_t{sums.left} + band.marginLeft);
    sums.right = saturate(int64_t{sums.right} + band.marginRight);
  }
  return sums;
}

MRect outputOf(const Stage& head, const MarginSums& margins, const MRect& in) {
  MRect out;
  out.top = in.top != 0 ? saturate(int64_t{in.top} + margins.top) : 0;
  out.bottom =
      in.bottom != head.inHeight ? saturate(int64_t{in.bottom} - margins.bottom) : in.bottom;
  out.left = in.left != 0 ? saturate(int64_t{in.left} + margins.left) : 0;
  out.right = in.right != head.inWidth ? saturate(int64_t{in.right} - margins.right) : in.right;
  return out.top > out.bottom || out.left > out.right ? MRect{} : out;
}

MRect inputFor(const Stage& head, const MarginSums& margins, const MRect& out) {
  MRect in;
  in.top = std::max(saturate(int64_t{out.top} - margins.top), 0);
  in.bottom = std::min(saturate(int64_t{out.bottom} + margins.bottom), head.inHeight);
  in.left = std::max(saturate(int64_t{out.left} - margins.left), 0);
  in.right = std::min(saturate(int64_t{out.right} + margins.right), head.inWidth);
  return in;
}

// At an edge of the picture nothing is lost.
void snapToEdges(const Stage& head, const MRect& in, MRect* out) {
  if (in.top == 0) out->top = 0;
  if (in.bottom == head.inHeight) out->bottom = head.inHeight;
  if (in.left == 0) out->left = 0;
  if (in.right == head.inWidth) out->right = head.inWidth;
}

}  // namespace
}  // namespace qpx

using namespace qpx;

int32_t QPXCalcRect(QPXEngine* handle, MRect* outRect, MRect* inRect) {
  Stage* head = headOf(handle);
  if (head == nullptr || outRect == nullptr || inRect == nullptr) return QPX_BAD_PARAM;
  if (head->effect->has(kWarps)) return calcWarpRect(*head, outRect, inRect);
  const MarginSums margins = sumMargins(*head);
  const bool forwards =
      outRect->left == 0 && outRect->top == 0 && outRect->right == 0 && outRect->bottom == 0;
  if (forwards) {
    *outRect = outputOf(*head, margins, *inRect);
  } else {
    *inRect = inputFor(*head, margins, *outRect);
  }
  snapToEdges(*head, *inRect, outRect);
  return QPX_OK;
}

int32_t QPXCalcRectReset(QPXEngine* handle) {
  if (headOf(handle) == nullptr) return QPX_BAD_PARAM;
  resetStream(handle);
  return QPX_OK;
}

int32_t QPXGetMaxOutLine(QPXEngine* handle, int32_t lines, int32_t* maxOut) {
  const Stage* head = headOf(handle);
  if (head == nullptr || maxOut == nullptr) return QPX_BAD_PARAM;
  int64_t rows = lines;
  for (int32_t k = 0; k < head->stageCount; ++k) rows += head->bands[k].marginBottom;
  *maxOut = saturate(std::min<int64_t>(rows, head->outHeight));
  return QPX_OK;
}
