// Requests: cut into pieces for the stages, and run.
#include <qpx/postprocess.h>

#include <algorithm>

#include "convert/format_decoder.h"
#include "convert/strip_walk.h"
#include "convert/wide/puzumpe_all.h"
#include "engine/address.h"
#include "postprocess/split.h"

namespace qpx::postprocess {
namespace {

using convert::Planes;

bool hasPlanes(const ConvPlanes& format, const uint8_t* const* planes) {
  const uint32_t count = std::max<uint32_t>(1, format.count);
  return std::all_of(planes, planes + count, [](const uint8_t* plane) { return plane != nullptr; });
}

// One-plane formats may come with arrays of one.
bool takePlanes(const ConvRecord& record, const uint8_t* const* srcPlanes,
                const int32_t* srcPitches, uint8_t* const* dstPlanes, const int32_t* dstPitches,
                Planes* planes) {
  if (!hasPlanes(record.srcPlane, srcPlanes) || !hasPlanes(record.dstPlane, dstPlanes))
    return false;
  std::copy_n(srcPlanes, record.srcPlane.count, planes->src);
  std::copy_n(srcPitches, record.srcPlane.count, planes->srcPitch);
  std::copy_n(dstPlanes, record.dstPlane.count, planes->dst);
  std::copy_n(dstPitches, record.dstPlane.count, planes->dstPitch);
  return true;
}

int32_t runStage(const PostProcessStage& stage, const Planes& planes, const MRect& rect) {
  return convert::convertRect(stage.record, planes, rect, ANY_ANY_Bilinear_No_Table);
}

bool isWordAligned(const void* address) { return reinterpret_cast<uintptr_t>(address) % 4 == 0; }

// Blocks of a mirrored picture begin at its far edges.
bool blocksMeetEdges(const ConvRecord& record) {
  if (record.mirrorX == 0 && record.mirrorY == 0) return true;
  return record.dst.width % 4 == 0 && record.dst.height % 4 == 0;
}

bool takesWideBlocks(const ConvRecord& record, const Planes& planes) {
  return isWordAligned(planes.src[0]) && isWordAligned(planes.dst[0]) &&
         planes.srcPitch[0] % 4 == 0 && planes.dstPitch[0] % 4 == 0 && blocksMeetEdges(record);
}

// YUYV counts its chroma cells from the column that the source has first.
bool beginsInCell(const ConvRecord& record, const MRect& request) {
  const int32_t first = record.mirrorX != 0 ? request.right : request.left;
  return record.dst.klass == convert::kYuyv && record.swapXY == 0 && first % 2 != 0;
}

// Whether pieces come to other pixels than the whole: by kernels that round their own way, as
// dither hands its rests on, or where cells begin with each piece.
bool differsInPieces(const ConvRecord& record, const MRect& request, const Piece& inner) {
  const bool mayBeWide = inner.stage == 2 && convert::wide::mayBeWide(record);
  return record.dither != 0 || beginsInCell(record, request) || mayBeWide;
}

void runSplit(const PostProcessContext& context, const Planes& planes, const MRect& request) {
  const Piece inner = innerPiece(request, takesWideBlocks(context.stage[2]->record, planes));
  const ConvRecord& record = context.stage[inner.stage]->record;
  // Pieces would cut the cells of the formats whose chroma divisors are their own.
  const bool cutsCells = convert::isGenericPlanar(record.dst.klass);
  if (cutsCells || !differsInPieces(record, request, inner)) {
    runStage(*context.stage[0], planes, request);
    return;
  }
  runStage(*context.stage[inner.stage], planes, inner.rect);
  for (const MRect& margin : marginsOf(request, inner.rect).part) {
    runStage(*context.stage[0], planes, margin);
  }
}

int32_t process(const PostProcessContext& context, const Planes& planes, const MRect* clipRect) {
  const MRect whole = convert::destinationRect(context.stage[0]->record);
  const MRect request = clipRect == nullptr ? whole : convert::intersect(*clipRect, whole);
  if (convert::isEmpty(request)) return QPX_OK;
  if (context.alignMode != kSplitRequests) return runStage(*context.stage[0], planes, request);
  runSplit(context, planes, request);
  return QPX_OK;
}

// Bytes from the first sample of a row to the one of a pixel; pixels may be parts of a byte.
ptrdiff_t columnBytes(const ConvRecord& record, int32_t plane, int32_t column) {
  const ConvPlanes& format = record.srcPlane;
  if (format.bitsPerPixel < 8)
    return ptrdiff_t{column} / (8 / static_cast<ptrdiff_t>(format.bitsPerPixel));
  const int32_t subsampling = format.count > 1 ? record.srcSubX[plane] : 1;
  return ptrdiff_t{format.step[plane]} * (column / subsampling);
}

// From the pixel at (x, y) back to the origin.
void shiftBack(const ConvRecord& record, int32_t x, int32_t y, Planes* planes) {
  for (int32_t p = 0; p < static_cast<int32_t>(record.srcPlane.count); ++p) {
    const uint8_t* const row = retreat(planes->src[p], planes->srcPitch[p], y / record.srcSubY[p]);
    planes->src[p] = retreat(row, columnBytes(record, p, x), 1);
  }
}

}  // namespace
}  // namespace qpx::postprocess

int32_t MPProcess(const PostProcessContext* context, const uint8_t* const* srcPlanes,
                  const MRect* clipRect, const int32_t* srcPitches, uint8_t* const* dstPlanes,
                  const int32_t* dstPitches) {
  constexpr MRect kWholeSource = {};
  return MPProcessEx(context, srcPlanes, &kWholeSource, clipRect, srcPitches, dstPlanes,
                     dstPitches);
}

int32_t MPProcessEx(const PostProcessContext* context, const uint8_t* const* srcPlanes,
                    const MRect* srcRect, const MRect* clipRect, const int32_t* srcPitches,
                    uint8_t* const* dstPlanes, const int32_t* dstPitches) {
  namespace postprocess = qpx::postprocess;
  if (context == nullptr || srcPlanes == nullptr || srcRect == nullptr || srcPitches == nullptr ||
      dstPlanes == nullptr || dstPitches == nullptr || srcRect->left < 0 || srcRect->top < 0) {
    return QPX_BAD_PARAM;
  }
  const ConvRecord& record = context->stage[0]->record;
  qpx::convert::Planes planes;
  if (!postprocess::takePlanes(record, srcPlanes, srcPitches, dstPlanes, dstPitches, &planes)) {
    return QPX_BAD_PARAM;
  }
  postprocess::shiftBack(record, srcRect->left, srcRect->top, &planes);
  return postprocess::process(*context, planes, clipRect);
}
