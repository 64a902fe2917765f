// The kernels that undo looks, by name.
#include <qpx/kernels_inverse.h>

#include "filters/curves/inverse_lomo.h"
#include "filters/curves/inverse_looks.h"
#include "toolkit/kernel_call.h"

namespace qpx {
namespace {

int32_t undo(Kernel kernel, uint32_t formats, QPXStage* stage, const MRect* rect,
             QPXRowTable* outRows, QPXRowTable* inRows) {
  return callOnFrame(stage, rect, outRows, inRows, [&](const Frame& frame) {
    const bool taken = (formatGroup(frame.stage.pix) & formats) != 0;
    return taken ? kernel(frame) : int32_t{QPX_OK};
  });
}

}  // namespace
}  // namespace qpx

using namespace qpx;

int32_t RE_NEWREVERSAL_RGB24(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                             QPXRowTable* inRows) {
  return undo(undoNewReversal, QPX_TAKES_RGB24, stage, rect, outRows, inRows);
}

int32_t RE_NEWREVERSAL_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                            QPXRowTable* inRows) {
  return undo(undoNewReversal, QPX_TAKES_NV21, stage, rect, outRows, inRows);
}

int32_t RE_FleetingTime_RGB24(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                              QPXRowTable* inRows) {
  return undo(undoFleetingTime, QPX_TAKES_RGB24, stage, rect, outRows, inRows);
}

int32_t RE_FleetingTime_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                             QPXRowTable* inRows) {
  return undo(undoFleetingTime, QPX_TAKES_NV21, stage, rect, outRows, inRows);
}

int32_t RE_WarmLomo_RGB24(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                          QPXRowTable* inRows) {
  return undo(undoWarmLomo, QPX_TAKES_RGB24, stage, rect, outRows, inRows);
}

int32_t RE_WarmLomo_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                         QPXRowTable* inRows) {
  return undo(undoWarmLomo, QPX_TAKES_NV21, stage, rect, outRows, inRows);
}

int32_t RE_SoftPink_RGB24(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                          QPXRowTable* inRows) {
  return undo(undoSoftPink, QPX_TAKES_RGB24, stage, rect, outRows, inRows);
}

int32_t RE_SoftPink_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                         QPXRowTable* inRows) {
  return undo(undoSoftPink, QPX_TAKES_NV21, stage, rect, outRows, inRows);
}

int32_t RE_RIXI_RGB24(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                      QPXRowTable* inRows) {
  return undo(undoRixi, QPX_TAKES_RGB24, stage, rect, outRows, inRows);
}

int32_t RE_RIXI_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                     QPXRowTable* inRows) {
  return undo(undoRixi, QPX_TAKES_NV21, stage, rect, outRows, inRows);
}
