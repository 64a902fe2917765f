// Small services on rectangles.
#include <qpx/image.h>

#include <utility>

namespace {

// Mirrors the span [low, high) inside [outerLow, outerHigh). Unsigned, so that far coordinates
// wrap.
void mirrorSpan(int32_t outerLow, int32_t outerHigh, int32_t* low, int32_t* high) {
  const uint32_t sum = static_cast<uint32_t>(outerLow) + static_cast<uint32_t>(outerHigh);
  const int32_t newHigh = static_cast<int32_t>(sum - static_cast<uint32_t>(*low));
  *low = static_cast<int32_t>(sum - static_cast<uint32_t>(*high));
  *high = newHigh;
}

}  // namespace

void MSwapRect(MRect* rect) {
  if (rect == nullptr) return;
  std::swap(rect->left, rect->top);
  std::swap(rect->right, rect->bottom);
}

void RectCopy(MRect* to, const MRect* from) {
  if (to == nullptr || from == nullptr) return;
  *to = *from;
}

void FlipUpDownRect(const MRect* outer, MRect* rect) {
  if (outer == nullptr || rect == nullptr) return;
  mirrorSpan(outer->top, outer->bottom, &rect->top, &rect->bottom);
}

void MFlipLeftRightRect(const MRect* outer, MRect* rect) {
  if (outer == nullptr || rect == nullptr) return;
  mirrorSpan(outer->left, outer->right, &rect->left, &rect->right);
}
