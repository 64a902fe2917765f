// The kernels of the looks made of carried tables, by name.
#include <qpx/kernels_curves.h>

#include "filters/curves/stored_looks.h"
#include "toolkit/kernel_call.h"

namespace qpx {
namespace {

int32_t callStored(Kernel kernel, uint32_t formats, QPXStage* stage, const MRect* rect,
                   QPXRowTable* outRows, QPXRowTable* inRows) {
  return callOnFrame(stage, rect, outRows, inRows, [&](const Frame& frame) {
    const bool taken = (formatGroup(frame.stage.pix) & formats) != 0;
    return taken ? kernel(frame) : int32_t{QPX_OK};
  });
}

}  // namespace
}  // namespace qpx

using namespace qpx;

int32_t FleetingTime_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                         QPXRowTable* inRows) {
  return callStored(fleetingTime, kTakesRgb, stage, rect, outRows, inRows);
}

int32_t FleetingTime_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                          QPXRowTable* inRows) {
  return callStored(fleetingTime, QPX_TAKES_NV21, stage, rect, outRows, inRows);
}

int32_t FleetingTime_YUYV(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                          QPXRowTable* inRows) {
  return callStored(fleetingTime, QPX_TAKES_YUYV, stage, rect, outRows, inRows);
}

int32_t NewReversal_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                        QPXRowTable* inRows) {
  return callStored(newReversal, kTakesRgb, stage, rect, outRows, inRows);
}

int32_t NewReversal_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                         QPXRowTable* inRows) {
  return callStored(newReversal, QPX_TAKES_NV21, stage, rect, outRows, inRows);
}

int32_t NewReversal_YUYV(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                         QPXRowTable* inRows) {
  return callStored(newReversal, QPX_TAKES_YUYV, stage, rect, outRows, inRows);
}

int32_t WarmLomo_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                     QPXRowTable* inRows) {
  return callStored(warmLomo, kTakesRgb, stage, rect, outRows, inRows);
}

int32_t WarmLomo_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                      QPXRowTable* inRows) {
  return callStored(warmLomo, QPX_TAKES_NV21, stage, rect, outRows, inRows);
}

int32_t WarmLomo_YUYV(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                      QPXRowTable* inRows) {
  return callStored(warmLomo, QPX_TAKES_YUYV, stage, rect, outRows, inRows);
}

int32_t ColdLomo_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                     QPXRowTable* inRows) {
  return callStored(coldLomo, kTakesRgb, stage, rect, outRows, inRows);
}

int32_t ColdLomo_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                      QPXRowTable* inRows) {
  return callStored(coldLomo, QPX_TAKES_NV21, stage, rect, outRows, inRows);
}

int32_t ColdLomo_YUYV(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                      QPXRowTable* inRows) {
  return callStored(coldLomo, QPX_TAKES_YUYV, stage, rect, outRows, inRows);
}

int32_t SoftPink_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                     QPXRowTable* inRows) {
  return callStored(softPink, kTakesRgb, stage, rect, outRows, inRows);
}

int32_t SoftPink_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                      QPXRowTable* inRows) {
  return callStored(softPink, QPX_TAKES_NV21, stage, rect, outRows, inRows);
}

int32_t SoftPink_YUYV(QPXStage* stage, const MRect* rect, QPXRowTable* outRows,
                      QPXRowTable* inRows) {
  return callStored(softPink, QPX_TAKES_YUYV, stage, rect, outRows, inRows);
}

int32_t RIXI_RGB(QPXStage* stage, const MRect* rect, QPXRowTable* outRows, QPXRowTable* inRows) {
  return callStored(rixi, kTakesRgb, stage, rect, outRows, inRows);
}

int32_t RIXI_NV21(QPXStage* stage, const MRect* rect, QPXRowTable* outRows, QPXRowTable* inRows) {
  return callStored(rixi, QPX_TAKES_NV21, stage, rect, outRows, inRows);
}

int32_t RIXI_YUYV(QPXStage* stage, const MRect* rect, QPXRowTable* outRows, QPXRowTable* inRows) {
  return callStored(rixi, QPX_TAKES_YUYV, stage, rect, outRows, inRows);
}
