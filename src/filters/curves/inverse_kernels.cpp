// The kernels that undo looks, by name.
#include <qpx/kernels_inverse.h>

#include "filters/curves/inverse_lomo.h"
#include "filters/curves/inverse_looks.h"
#include "toolkit/kernel_call.h"

using namespace qpx;

int32_t RE_NEWREVERSAL_RGB24(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                             QPXRowTable* inRows) {
  return callInFormats(undoNewReversal, QPX_TAKES_RGB24, stage, rect, outRows, inRows);
}

int32_t RE_NEWREVERSAL_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                            QPXRowTable* inRows) {
  return callInFormats(undoNewReversal, QPX_TAKES_NV21, stage, rect, outRows, inRows);
}

int32_t RE_FleetingTime_RGB24(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                              QPXRowTable* inRows) {
  return callInFormats(undoFleetingTime, QPX_TAKES_RGB24, stage, rect, outRows, inRows);
}

int32_t RE_FleetingTime_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                             QPXRowTable* inRows) {
  return callInFormats(undoFleetingTime, QPX_TAKES_NV21, stage, rect, outRows, inRows);
}

int32_t RE_WarmLomo_RGB24(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                          QPXRowTable* inRows) {
  return callInFormats(undoWarmLomo, QPX_TAKES_RGB24, stage, rect, outRows, inRows);
}

int32_t RE_WarmLomo_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                         QPXRowTable* inRows) {
  return callInFormats(undoWarmLomo, QPX_TAKES_NV21, stage, rect, outRows, inRows);
}

int32_t RE_SoftPink_RGB24(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                          QPXRowTable* inRows) {
  return callInFormats(undoSoftPink, QPX_TAKES_RGB24, stage, rect, outRows, inRows);
}

int32_t RE_SoftPink_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                         QPXRowTable* inRows) {
  return callInFormats(undoSoftPink, QPX_TAKES_NV21, stage, rect, outRows, inRows);
}

int32_t RE_RIXI_RGB24(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                      QPXRowTable* inRows) {
  return callInFormats(undoRixi, QPX_TAKES_RGB24, stage, rect, outRows, inRows);
}

int32_t RE_RIXI_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                     QPXRowTable* inRows) {
  return callInFormats(undoRixi, QPX_TAKES_NV21, stage, rect, outRows, inRows);
}
