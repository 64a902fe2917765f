// Conversions of whole images in bands of whole pairs of rows, which no row of chroma straddles.
#include <kesbase.h>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <new>
#include <span>

#include "convert/images/conversions.h"
#include "convert/images/image_layout.h"
#include "convert/parallel/pool.h"
#include "convert/parallel/tasks.h"

namespace qpx {
namespace {

constexpr int32_t kThreads = 4;
constexpr int32_t kBandsPerThread = 4;
constexpr int32_t kConversions = 44;
constexpr uint8_t kOpaque = 255;

struct McvBand {
  const McvImage* src;
  const McvImage* dst;
  int32_t rowStart;
  int32_t rowEnd;
  const uint8_t* param;
};

McvImage rowsOf(const McvImage& image, const McvBand& band) {
  const YuvLayout* const layout = yuvLayout(image.format);
  const int32_t chromaRow = layout == nullptr ? 0 : band.rowStart >> layout->halvedDown;
  McvImage rows = image;
  rows.height = band.rowEnd - band.rowStart;
  rows.plane[0] = rowOf(image, 0, band.rowStart);
  for (int32_t p = 1; p < planesOf(image.format); ++p) rows.plane[p] = rowOf(image, p, chromaRow);
  return rows;
}

// Too few rows are refused, and that is all right.
void* convertBand(void* arg) {
  const McvBand& band = *static_cast<const McvBand*>(arg);
  const McvImage src = rowsOf(*band.src, band), dst = rowsOf(*band.dst, band);
  mcvColorCvt(&src, &dst, *band.param);
  return nullptr;
}

// By id.
constexpr FormatPair kBanded[] = {
    {MCV_NV21, MCV_RGBA8888},    {MCV_NV21, MCV_RGB888},      {MCV_NV21, MCV_BGR888},
    {MCV_NV21, MCV_I420},        {MCV_NV21, MCV_BGRA8888},    {MCV_NV12, MCV_I420},
    {MCV_NV12, MCV_RGBA8888},    {MCV_NV12, MCV_BGRA8888},    {MCV_I420, MCV_RGBA8888},
    {MCV_I420, MCV_RGB888},      {MCV_I420, MCV_NV21},        {MCV_I420, MCV_YUYV},
    {MCV_I420, MCV_BGRA8888},    {MCV_I420, MCV_BGR888},      {MCV_RGBA8888, MCV_NV21},
    {MCV_RGBA8888, MCV_NV12},    {MCV_RGBA8888, MCV_I420},    {MCV_BGRA8888, MCV_NV21},
    {MCV_BGRA8888, MCV_NV12},    {MCV_BGRA8888, MCV_I420},    {MCV_RGB888, MCV_I420},
    {MCV_BGR888, MCV_I420},      {MCV_BGR888, MCV_NV21},      {MCV_I422H, MCV_I420},
    {MCV_I422H, MCV_NV21},       {MCV_I422H, MCV_NV12},       {MCV_I422H, MCV_YUYV},
    {MCV_I422H, MCV_LPI422H},    {MCV_I422V, MCV_I420},       {MCV_I422V, MCV_NV21},
    {MCV_I422V, MCV_NV12},       {MCV_I422V, MCV_YUYV},       {MCV_I422V, MCV_LPI422H},
    {MCV_I444, MCV_I420},        {MCV_I444, MCV_NV21},        {MCV_I444, MCV_NV12},
    {MCV_I444, MCV_YUYV},        {MCV_I444, MCV_LPI422H},     {MCV_BGRA8888, MCV_LPI422H},
    {MCV_LPI422H, MCV_BGRA8888}, {MCV_RGBA8888, MCV_LPI422H}, {MCV_LPI422H, MCV_RGBA8888},
    {MCV_YUYV, MCV_BGR888},      {MCV_BGR888, MCV_YUYV},
};
static_assert(std::size(kBanded) == kConversions);

}  // namespace
}  // namespace qpx

struct McvColorCvtContext {
  McvParallel* engine;
  int32_t ownsEngine;
  int32_t bandCount;
  McvTaskFunc bands[qpx::kConversions];  // all the same: hosts know the record by its words
};

namespace qpx {
namespace {

static_assert(sizeof(void*) != 4 || sizeof(McvColorCvtContext) == 188);
static_assert(kThreads * kBandsPerThread <= kPlaces, "every band has a place in the queue");

// As even as whole pairs of rows can be, the larger ones behind. The last band takes the odd row.
void splitRows(int32_t height, int32_t bandCount, McvBand* bands) {
  const int32_t pairs = height >> 1;
  int32_t share = pairs / bandCount;
  int32_t left = pairs - share;
  bands[0].rowStart = 0;
  bands[0].rowEnd = 2 * share;
  for (int32_t i = 1; i < bandCount - 1; ++i) {
    share = left / (bandCount - i);
    left -= share;
    bands[i].rowStart = bands[i - 1].rowEnd;
    bands[i].rowEnd = bands[i].rowStart + 2 * share;
  }
  bands[bandCount - 1].rowStart = bands[bandCount - 2].rowEnd;
  bands[bandCount - 1].rowEnd = height;
}

void runBands(const McvColorCvtContext& context, McvTaskFunc convert, McvBand* bands) {
  McvTask tasks[kPlaces];
  const auto count = static_cast<size_t>(context.bandCount);
  for (size_t i = 0; i < count; ++i) tasks[i] = {convert, &bands[i], kPoolFull};
  runTogether(context.engine, std::span(tasks).first(count));
}

// A pool that is gone must not be asked about processors.
bool stopPool(McvParallel* engine) {
  if (!isRunning(engine)) return false;
  mcvTryRestoreCpu(engine);
  return mcvParallelUninit(engine) == kPoolDone;
}

}  // namespace
}  // namespace qpx

using namespace qpx;

int32_t mcvColorCvtFunc(const McvImage* src, const McvImage* dst) {
  if (src == nullptr || dst == nullptr) return -1;
  for (int32_t id = 0; id < kConversions; ++id) {
    const FormatPair& formats = kBanded[id];
    if (formats.src == src->format && formats.dst == dst->format) return id;
  }
  return -1;
}

McvColorCvtContext* mcvColorCvtInit_MultiThreads(void* memContext) {
  McvParallel* const engine = mcvParallelInit(nullptr, kThreads);
  if (engine == nullptr) {
    std::puts("[ERROR] Parallel engine init failed!!");
    return nullptr;
  }
  mcvTryFireCpu(engine);
  void* const block = MMemAlloc(memContext, sizeof(McvColorCvtContext));
  if (block == nullptr) {
    std::puts("[ERROR] mcvColorCvt init failed!!");
    return nullptr;
  }
  McvColorCvtContext* const context = new (block) McvColorCvtContext{};
  context->engine = engine;
  context->ownsEngine = 1;
  context->bandCount = kBandsPerThread * mcvParallelEngineCores(engine);
  std::fill(std::begin(context->bands), std::end(context->bands), convertBand);
  return context;
}

int32_t mcvColorCvtProcess_MultiThreads(McvColorCvtContext* context, const McvImage* src,
                                        const McvImage* dst, const uint8_t* param) {
  if (context == nullptr || src == nullptr || dst == nullptr) return kMcvNull;
  const int32_t id = mcvColorCvtFunc(src, dst);
  if (id < 0) {
    std::printf("[ERROR] mcvColorCvtForBigPixmorph error funcID!! %d\n", static_cast<int>(id));
    return kMcvRefused;
  }
  if (const int32_t answer = checkImages(kBanded[id], src, dst); answer != kMcvDone) {
    return answer;
  }
  McvBand bands[kPlaces];
  for (McvBand& band : bands) band = {src, dst, 0, 0, param == nullptr ? &kOpaque : param};
  splitRows(dst->height, context->bandCount, bands);
  runBands(*context, context->bands[id], bands);
  return kMcvDone;
}

int32_t mcvColorCvtUnInit_MultiThreads(void* memContext, McvColorCvtContext* context) {
  if (context == nullptr) return kMcvNull;
  if (context->ownsEngine != 0 && !stopPool(context->engine)) {
    std::puts("[ERROR] Parallel engine UnInit failed!!");
    return kPoolNotStopped;
  }
  MMemFree(memContext, context);
  return kMcvDone;
}
