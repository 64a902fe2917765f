// From the arguments of an exported kernel to the frame that internal ones take.
#pragma once

#include <algorithm>

#include "engine/stage.h"

namespace qpx {

// The part of a rectangle that lies in the picture; all zero where there is none.
inline MRect cutToPicture(const Stage& stage, const MRect& rect) {
  const MRect cut = {std::max(rect.left, 0), std::max(rect.top, 0),
                     std::min({rect.right, stage.inWidth, stage.outWidth}),
                     std::min({rect.bottom, stage.inHeight, stage.outHeight})};
  return cut.left < cut.right && cut.top < cut.bottom ? cut : MRect{};
}

// Calls body(frame) unless an argument is null or the rectangle holds no pixel of the picture.
// Returns its result, 2 or 0.
template <typename Body>
int32_t callOnFrame(QPXStage* publicStage, const MRect* rect, QPXRowTable* outRows,
                    QPXRowTable* inRows, const Body& body) {
  if (publicStage == nullptr || rect == nullptr || outRows == nullptr || inRows == nullptr) {
    return QPX_BAD_PARAM;
  }
  // Stages are only ever made by the engine.
  Stage& stage = *static_cast<Stage*>(publicStage);
  const MRect cut = cutToPicture(stage, *rect);
  if (cut.left == cut.right) return QPX_OK;
  return body(Frame{stage, cut, outRows, inRows, nullptr, nullptr});
}

// A kernel by the name of a layout: in formats that the name does not take nothing is written.
inline int32_t callInFormats(Kernel kernel, uint32_t formats, QPXStage* stage, const MRect* rect,
                             QPXRowTable* outRows, QPXRowTable* inRows) {
  return callOnFrame(stage, rect, outRows, inRows, [&](const Frame& frame) {
    const bool taken = (formatGroup(frame.stage.pix) & formats) != 0;
    return taken ? kernel(frame) : int32_t{QPX_OK};
  });
}

// The same as callOnFrame for kernels that read the record and tables of one effect: 2 on any other
// stage.
template <typename Body>
int32_t callOnFrameOf(uint32_t effectId, QPXStage* publicStage, const MRect* rect,
                      QPXRowTable* outRows, QPXRowTable* inRows, const Body& body) {
  if (publicStage != nullptr && publicStage->effectId != effectId) return QPX_BAD_PARAM;
  return callOnFrame(publicStage, rect, outRows, inRows, body);
}

}  // namespace qpx
