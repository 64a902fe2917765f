// Contexts: made, and freed.
#include <kesbase.h>
#include <qpx/postprocess.h>

#include "convert/record.h"
#include "platform/new_record.h"
#include "postprocess/split.h"

namespace qpx::postprocess {
namespace {

static_assert(sizeof(PostProcessOption) == 72 && sizeof(ConvParams) == 72);

// Only 16-bit RGB without alpha is dithered.
uint32_t ditherOf(const PostProcessOption& option, uint32_t dstFormat) {
  return dstFormat >> 24 == 0x15 ? option.palette : 0;
}

ConvParams paramsOf(const PostProcessOption& option, uint32_t dstFormat) {
  return {
      .interp = option.resampleMode,
      .orient = option.orientation,
      .blockHint = option.filterLevel,
      .blockMode = option.alignMode == kSplitRequests ? 1 : option.alignMode,
      .fit = option.fitMode,
      .dither = ditherOf(option, dstFormat),
      .brightness = option.brightness,
      .contrast = option.contrast,
      .saturation = option.saturation,
      .srcX = option.srcLeft,
      .srcY = option.srcTop,
      .dstX = option.dstLeft,
      .dstY = option.dstTop,
      .clipLeft = option.clipLeft,
      .clipTop = option.clipTop,
      .clipRight = option.clipRight,
      .clipBottom = option.clipBottom,
      .alpha = option.alpha,
  };
}

convert::Side sideOf(const PostProcessImage& image) {
  const bool hasPalette = image.format >> 28 == 4;
  return {image.format, image.width, image.height, hasPalette ? image.palette : nullptr};
}

bool addStage(PostProcessContext* context, int32_t index) {
  context->stage[index] = newRecord<PostProcessStage>();
  return context->stage[index] != nullptr;
}

// Levels 2 and 3 differ from level 1 in the blocks they may work in. They share its geometry, so
// that the pieces of a request meet, and its tables.
bool addAlignedStages(PostProcessContext* context) {
  for (int32_t index = 1; index < 3; ++index) {
    if (!addStage(context, index)) return false;
    context->stage[index]->record = context->stage[0]->record;
    convert::setBlockMode(static_cast<uint32_t>(index) + 1, &context->stage[index]->record);
  }
  return true;
}

bool addStages(const ConvRecord& record, PostProcessContext* context) {
  if (!addStage(context, 0)) return false;
  context->stage[0]->record = record;
  return context->alignMode != kSplitRequests || addAlignedStages(context);
}

// All but the tables, which the stages share.
void freeContext(PostProcessContext* context) {
  if (context == nullptr) return;
  for (PostProcessStage* stage : context->stage) MMemFree(nullptr, stage);
  MMemFree(nullptr, context);
}

// Null where memory fails.
PostProcessContext* makeContext(const ConvRecord& record, uint32_t alignMode) {
  auto* const context = newRecord<PostProcessContext>();
  if (context == nullptr) return nullptr;
  context->alignMode = alignMode;
  if (addStages(record, context)) return context;
  freeContext(context);
  return nullptr;
}

}  // namespace
}  // namespace qpx::postprocess

int32_t MPPCreate(const PostProcessImage* srcImage, const PostProcessImage* dstImage,
                  const PostProcessOption* option, PostProcessContext** out) {
  using namespace qpx::postprocess;
  if (out == nullptr) return QPX_BAD_PARAM;
  *out = nullptr;
  if (srcImage == nullptr || dstImage == nullptr || option == nullptr) return QPX_BAD_PARAM;
  ConvRecord record = {};
  const int32_t result = qpx::convert::buildRecord(sideOf(*dstImage), sideOf(*srcImage),
                                                   paramsOf(*option, dstImage->format), &record);
  if (result != QPX_OK) return result;
  *out = makeContext(record, option->alignMode);
  if (*out != nullptr) return QPX_OK;
  qpx::convert::freeTables(&record);
  return QPX_NO_MEMORY;
}

int32_t MPPDestroy(PostProcessContext* context) {
  if (context == nullptr) return QPX_OK;
  qpx::convert::freeTables(&context->stage[0]->record);
  qpx::postprocess::freeContext(context);
  return QPX_OK;
}

int32_t PostProcessGetVersionInfo(void) { return 0; }
