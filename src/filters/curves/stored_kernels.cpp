// The kernels of the looks made of carried tables, by name.
#include <qpx/kernels_curves.h>

#include "filters/curves/stored_looks.h"
#include "toolkit/kernel_call.h"

using namespace qpx;

int32_t FleetingTime_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                         QPXRowTable* inRows) {
  return callInFormats(fleetingTime, kTakesRgb, stage, rect, outRows, inRows);
}

int32_t FleetingTime_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                          QPXRowTable* inRows) {
  return callInFormats(fleetingTime, QPX_TAKES_NV21, stage, rect, outRows, inRows);
}

int32_t FleetingTime_YUYV(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                          QPXRowTable* inRows) {
  return callInFormats(fleetingTime, QPX_TAKES_YUYV, stage, rect, outRows, inRows);
}

int32_t NewReversal_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                        QPXRowTable* inRows) {
  return callInFormats(newReversal, kTakesRgb, stage, rect, outRows, inRows);
}

int32_t NewReversal_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                         QPXRowTable* inRows) {
  return callInFormats(newReversal, QPX_TAKES_NV21, stage, rect, outRows, inRows);
}

int32_t NewReversal_YUYV(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                         QPXRowTable* inRows) {
  return callInFormats(newReversal, QPX_TAKES_YUYV, stage, rect, outRows, inRows);
}

int32_t WarmLomo_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                     QPXRowTable* inRows) {
  return callInFormats(warmLomo, kTakesRgb, stage, rect, outRows, inRows);
}

int32_t WarmLomo_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                      QPXRowTable* inRows) {
  return callInFormats(warmLomo, QPX_TAKES_NV21, stage, rect, outRows, inRows);
}

int32_t WarmLomo_YUYV(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                      QPXRowTable* inRows) {
  return callInFormats(warmLomo, QPX_TAKES_YUYV, stage, rect, outRows, inRows);
}

int32_t ColdLomo_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                     QPXRowTable* inRows) {
  return callInFormats(coldLomo, kTakesRgb, stage, rect, outRows, inRows);
}

int32_t ColdLomo_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                      QPXRowTable* inRows) {
  return callInFormats(coldLomo, QPX_TAKES_NV21, stage, rect, outRows, inRows);
}

int32_t ColdLomo_YUYV(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                      QPXRowTable* inRows) {
  return callInFormats(coldLomo, QPX_TAKES_YUYV, stage, rect, outRows, inRows);
}

int32_t SoftPink_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                     QPXRowTable* inRows) {
  return callInFormats(softPink, kTakesRgb, stage, rect, outRows, inRows);
}

int32_t SoftPink_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                      QPXRowTable* inRows) {
  return callInFormats(softPink, QPX_TAKES_NV21, stage, rect, outRows, inRows);
}

int32_t SoftPink_YUYV(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                      QPXRowTable* inRows) {
  return callInFormats(softPink, QPX_TAKES_YUYV, stage, rect, outRows, inRows);
}

int32_t RIXI_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows, QPXRowTable* inRows) {
  return callInFormats(rixi, kTakesRgb, stage, rect, outRows, inRows);
}

int32_t RIXI_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows, QPXRowTable* inRows) {
  return callInFormats(rixi, QPX_TAKES_NV21, stage, rect, outRows, inRows);
}

int32_t RIXI_YUYV(QPXStage* stage, const MRect* rect, QPXRowTable* outRows, QPXRowTable* inRows) {
  return callInFormats(rixi, QPX_TAKES_YUYV, stage, rect, outRows, inRows);
}
