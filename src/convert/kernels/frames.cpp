#include "convert/kernels/frames.h"

#include <qpx/convert_kernels.h>

#include <span>

#include "convert/format_decoder.h"
#include "convert/kernels/kernel_call.h"
#include "convert/record.h"
#include "convert/strip_walk.h"

namespace qpx::convert::fast {
namespace {

using Kernel = void (*)(QPX_CONVERT_KERNEL_ARGUMENTS);
using SubsampledKernel = int32_t (*)(QPX_CONVERT_SUBSAMPLED_ARGUMENTS);
using PairedKernel = int32_t (*)(QPX_CONVERT_PAIRED_ARGUMENTS);

template <typename Function>
struct Line {
  Function kernel;
  Member member;
};
using Entry = Line<Kernel>;

#define QPX_ENTRY(name, ...) {name, {__VA_ARGS__}},

constexpr Entry kRgb24Kernels[] = {QPX_RGB24_KERNELS(QPX_ENTRY)};
constexpr Entry kRgb16Kernels[] = {QPX_RGB16_KERNELS(QPX_ENTRY)};
constexpr Entry kPlanarKernels[] = {QPX_PLANAR_KERNELS(QPX_ENTRY)};
constexpr Entry kYuyvKernels[] = {QPX_YUYV_KERNELS(QPX_ENTRY)};
constexpr Entry kNvLutKernels[] = {QPX_NV_LUT_KERNELS(QPX_ENTRY)};
constexpr Entry kNvKernels[] = {QPX_NV_KERNELS(QPX_ENTRY)};
constexpr Entry kYuvRgb32Kernels[] = {QPX_YUV_RGB32_KERNELS(QPX_ENTRY)};
constexpr Entry kYuyvRgb32Kernels[] = {QPX_YUYV_RGB32_KERNELS(QPX_ENTRY)};
constexpr Entry kRgb32Kernels[] = {QPX_RGB32_KERNELS(QPX_ENTRY)};
constexpr Entry kGreyKernels[] = {QPX_GREY_KERNELS(QPX_ENTRY)};
constexpr Line<SubsampledKernel> kSubsampledKernels[] = {QPX_SUBSAMPLED_KERNELS(QPX_ENTRY)};
constexpr Line<PairedKernel> kPairedKernels[] = {QPX_PAIRED_KERNELS(QPX_ENTRY)};

bool involves(const ConvRecord& record, FormatSet formats) {
  return ((sourceFormat(record) | destinationFormat(record)) & formats) != 0;
}

// Hands the call to the first kernel whose work it is. Null arguments are the frames' own check.
int32_t pick(std::span<const Entry> entries, const Pictures& pictures, const ConvRecord& record) {
  const MRect& rect = *pictures.rect;
  if (!isInDestination(rect, record)) return QPX_UNSUPPORTED;
  const Work work = workOf(record);
  for (const Entry& entry : entries) {
    if (!takes(entry.member, work) || !suits(entry.member, record, rect)) continue;
    const Steps steps = stepsOf(record, rect);
    const bool fromRgb = record.src.klass == kRgb;
    const int32_t subX = fromRgb ? record.dstSubX[1] : record.srcSubX[1];
    const int32_t subY = fromRgb ? record.dstSubY[1] : record.srcSubY[1];
    entry.kernel(&rect, pictures.srcPlanes, pictures.dstPlanes, pictures.srcPitch,
                 pictures.dstPitch, steps.firstSy, steps.stepX, steps.stepY, subX - 1, subY - 1,
                 &record);
    return QPX_OK;
  }
  return QPX_UNSUPPORTED;
}

int32_t trySubsampled(const Pictures& pictures, const ConvRecord& record, const Work& work) {
  for (const auto& [kernel, member] : kSubsampledKernels) {
    if (!takes(member, work)) continue;
    const int32_t result = kernel(pictures.rect, pictures.srcPlanes, pictures.dstPlanes,
                                  pictures.srcPitch, pictures.dstPitch, record.srcSubX,
                                  record.srcSubY, record.dstSubX, record.dstSubY, &record);
    if (result != QPX_UNSUPPORTED) return result;
  }
  return QPX_UNSUPPORTED;
}

int32_t tryPaired(const Pictures& pictures, const ConvRecord& record, const Work& work) {
  const int32_t isNV21 = (work.to & (kInNv21 | kInNv61)) != 0 ? 1 : 0;
  for (const auto& [kernel, member] : kPairedKernels) {
    if (!takes(member, work)) continue;
    const int32_t result = kernel(pictures.rect, pictures.srcPlanes, pictures.dstPlanes,
                                  pictures.srcPitch, pictures.dstPitch, isNV21, &record);
    if (result != QPX_UNSUPPORTED) return result;
  }
  return QPX_UNSUPPORTED;
}

// Of the family whose only callers are hosts: blocks of 4x4 in one orientation, from I420,
// resampled by name.
struct HostMember {
  FormatSet to;
  SamplingSet sampling;
  OrientSet orients;
};

ConvRecord resampledAs(SamplingSet sampling, const ConvRecord& record) {
  ConvRecord changed = record;
  if (sampling == kUnit) setUnitSteps(&changed);
  changed.bilinearY = sampling == kBilinear && changed.isUnit == 0 ? 1 : 0;
  return changed;
}

int32_t runHostMember(const HostMember& member, const Pictures& pictures,
                      const ConvRecord* record) {
  if (!isComplete(pictures, record)) return QPX_BAD_PARAM;
  const MRect& rect = *pictures.rect;
  const ConvRecord changed = resampledAs(member.sampling, *record);
  const Member whole = {kInI420,        member.to, Order::any,  member.sampling,
                        member.orients, 1,         Dither::none};
  if (record->blockMode != kBlocksOf4 || !takes(whole, workOf(changed)) ||
      !isInDestination(rect, changed)) {
    return QPX_UNSUPPORTED;
  }
  const Steps steps = stepsOf(changed, rect);
  const bool done =
      convert({rect, pictures.srcPlanes, pictures.dstPlanes, pictures.srcPitch, pictures.dstPitch,
               steps.firstSy, steps.stepX, steps.stepY, &changed, member.sampling == kBilinear});
  return done ? QPX_OK : QPX_UNSUPPORTED;
}

}  // namespace
}  // namespace qpx::convert::fast

using namespace qpx::convert::fast;

int32_t ANY_ANY_C_FAST_R8G8B8(QPX_CONVERT_FRAME_ARGUMENTS) {
  const Pictures pictures = {rect, srcPlanes, dstPlanes, srcPitch, dstPitch};
  if (!isComplete(pictures, record)) return QPX_BAD_PARAM;
  if (!involves(*record, kIn24)) return QPX_UNSUPPORTED;
  return pick(kRgb24Kernels, pictures, *record);
}

int32_t YUV2YUV_Fast(QPX_CONVERT_FRAME_ARGUMENTS) {
  const Pictures pictures = {rect, srcPlanes, dstPlanes, srcPitch, dstPitch};
  if (!isComplete(pictures, record)) return QPX_BAD_PARAM;
  if (record->useLut != 0 || record->convKind != qpx::convert::kYuvToYuv) return QPX_UNSUPPORTED;
  const Work work = workOf(*record);
  const int32_t result = trySubsampled(pictures, *record, work);
  return result != QPX_UNSUPPORTED ? result : tryPaired(pictures, *record, work);
}

int32_t ANY_ANY_C_FAST_R5G6B5(QPX_CONVERT_FRAME_ARGUMENTS) {
  const Pictures pictures = {rect, srcPlanes, dstPlanes, srcPitch, dstPitch};
  if (!isComplete(pictures, record)) return QPX_BAD_PARAM;
  if (!involves(*record, kIn16)) return QPX_UNSUPPORTED;
  return pick(kRgb16Kernels, pictures, *record);
}

int32_t I420_To_I422_Fast(QPX_CONVERT_FRAME_ARGUMENTS) {
  const Pictures pictures = {rect, srcPlanes, dstPlanes, srcPitch, dstPitch};
  if (!isComplete(pictures, record)) return QPX_BAD_PARAM;
  return pick(kPlanarKernels, pictures, *record);
}

int32_t YUV_YUV_C_FAST(QPX_CONVERT_FRAME_ARGUMENTS) {
  const Pictures pictures = {rect, srcPlanes, dstPlanes, srcPitch, dstPitch};
  if (!isComplete(pictures, record)) return QPX_BAD_PARAM;
  if (destinationFormat(*record) == kInYuyv) return pick(kYuyvKernels, pictures, *record);
  if (record->useLut != 0) {
    const int32_t result = pick(kNvLutKernels, pictures, *record);
    if (result != QPX_UNSUPPORTED) return result;
  }
  return pick(kNvKernels, pictures, *record);
}

int32_t YUV_RGB32_C_FAST(QPX_CONVERT_FRAME_ARGUMENTS) {
  const Pictures pictures = {rect, srcPlanes, dstPlanes, srcPitch, dstPitch};
  if (!isComplete(pictures, record)) return QPX_BAD_PARAM;
  return pick(kYuvRgb32Kernels, pictures, *record);
}

int32_t YUYV_RGB32_FAST(QPX_CONVERT_FRAME_ARGUMENTS) {
  const Pictures pictures = {rect, srcPlanes, dstPlanes, srcPitch, dstPitch};
  if (!isComplete(pictures, record)) return QPX_BAD_PARAM;
  if (record->isUnit == 0) return QPX_UNSUPPORTED;
  return pick(kYuyvRgb32Kernels, pictures, *record);
}

int32_t ANY_ANY_C_FAST_RGB32(QPX_CONVERT_FRAME_ARGUMENTS) {
  const Pictures pictures = {rect, srcPlanes, dstPlanes, srcPitch, dstPitch};
  if (!isComplete(pictures, record)) return QPX_BAD_PARAM;
  if (!involves(*record, kIn32)) return QPX_UNSUPPORTED;
  return pick(kRgb32Kernels, pictures, *record);
}

int32_t Gray2Gray_C_FAST(QPX_CONVERT_FRAME_ARGUMENTS) {
  const Pictures pictures = {rect, srcPlanes, dstPlanes, srcPitch, dstPitch};
  if (!isComplete(pictures, record)) return QPX_BAD_PARAM;
  return pick(kGreyKernels, pictures, *record);
}

int32_t MCC_I420_Bilinear(QPX_CONVERT_FRAME_ARGUMENTS) {
  return runHostMember({kInI420, kBilinear, kR0}, {rect, srcPlanes, dstPlanes, srcPitch, dstPitch},
                       record);
}

int32_t MCC_I420_Bilinear_90(QPX_CONVERT_FRAME_ARGUMENTS) {
  return runHostMember({kInI420, kBilinear, kR90}, {rect, srcPlanes, dstPlanes, srcPitch, dstPitch},
                       record);
}

int32_t MCC_I420_Bilinear_270(QPX_CONVERT_FRAME_ARGUMENTS) {
  return runHostMember({kInI420, kBilinear, kR270},
                       {rect, srcPlanes, dstPlanes, srcPitch, dstPitch}, record);
}

int32_t MCC_I420_NV12_Resample(QPX_CONVERT_FRAME_ARGUMENTS) {
  return runHostMember({kInNv12, kNearest, kR0}, {rect, srcPlanes, dstPlanes, srcPitch, dstPitch},
                       record);
}

int32_t MCC_I420_NV12_Resample_90(QPX_CONVERT_FRAME_ARGUMENTS) {
  return runHostMember({kInNv12, kNearest, kR90}, {rect, srcPlanes, dstPlanes, srcPitch, dstPitch},
                       record);
}

int32_t MCC_I420_NV12_Resample_270(QPX_CONVERT_FRAME_ARGUMENTS) {
  return runHostMember({kInNv12, kNearest, kR270}, {rect, srcPlanes, dstPlanes, srcPitch, dstPitch},
                       record);
}

int32_t MCC_I420_NV12_NoResample(QPX_CONVERT_FRAME_ARGUMENTS) {
  return runHostMember({kInNv12, kUnit, kR0}, {rect, srcPlanes, dstPlanes, srcPitch, dstPitch},
                       record);
}

int32_t MCC_I420_NV21_NoResampleRotate(QPX_CONVERT_FRAME_ARGUMENTS) {
  return runHostMember({kInNv21, kUnit, kR90 | kR270},
                       {rect, srcPlanes, dstPlanes, srcPitch, dstPitch}, record);
}

namespace qpx::convert {

int32_t convertByRows(QPX_CONVERT_FRAME_ARGUMENTS) {
  const fast::Pictures pictures = {rect, srcPlanes, dstPlanes, srcPitch, dstPitch};
  if (!fast::isComplete(pictures, record)) return QPX_BAD_PARAM;
  if (!fast::canConvert(*record) || !isInDestination(*rect, *record)) return QPX_UNSUPPORTED;
  const fast::Steps steps = fast::stepsOf(*record, *rect);
  const bool done = fast::convert({*rect, srcPlanes, dstPlanes, srcPitch, dstPitch, steps.firstSy,
                                   steps.stepX, steps.stepY, record});
  return done ? QPX_OK : QPX_UNSUPPORTED;
}

}  // namespace qpx::convert
