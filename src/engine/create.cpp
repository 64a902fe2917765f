// Making an engine: stages for the list, effects set up on them in list order, neighbours merged.
#include <algorithm>

#include "engine/engine_handle.h"
#include "engine/format_code.h"
#include "platform/log.h"

namespace qpx {
namespace {

constexpr char kLogTag[] = "qpxengine";

struct Images {
  const MBitmap* out;
  const MBitmap* in;
  const MBitmap* second;  // may be null
  const MBitmap* mask;    // may be null
};

bool argumentsValid(const Images& images, const QPXEffectList* list) {
  if (images.out == nullptr || images.in == nullptr || list == nullptr) return false;
  if (list->items == nullptr && list->count > 0) return false;
  if (images.out->format != images.in->format) return false;
  return images.out->height >= 0 && images.out->width >= 0;
}

int32_t levelOfQuality(int32_t quality) {
  switch (quality) {
    case 4:
      return 5;
    case 3:
      return 3;
    case 2:
      return 1;
    default:
      return 0;
  }
}

void* allocateZeroed(size_t elements, size_t elementSize, size_t header) {
  if (elements > (SIZE_MAX / 2 - header) / elementSize) return nullptr;
  const size_t bytes = header + elements * elementSize;
  void* block = MMemAlloc(nullptr, bytes);
  if (block != nullptr) MMemSet(block, 0, bytes);
  return block;
}

// A stage with its bands and word arrays behind it in one block.
Stage* allocateStage(uint32_t count) {
  static_assert(sizeof(Stage) % alignof(QPXBand) == 0);
  constexpr size_t kBytesPerItem = sizeof(QPXBand) + 4 * sizeof(int32_t);
  void* block = allocateZeroed(count, kBytesPerItem, sizeof(Stage));
  if (block == nullptr) return nullptr;
  Stage* stage = static_cast<Stage*>(block);
  stage->bands = reinterpret_cast<QPXBand*>(stage + 1);
  int32_t* words = reinterpret_cast<int32_t*>(stage->bands + count);
  stage->colTableA = words;
  stage->colTableB = words + count;
  stage->rowTableA = words + size_t{2} * count;
  stage->rowTableB = words + size_t{3} * count;
  return stage;
}

void storeImages(const Images& images, Stage& stage) {
  stage.outHeight = images.out->height;
  stage.outWidth = images.out->width;
  stage.inHeight = images.in->height;
  stage.inWidth = images.in->width;
  if (images.second != nullptr) {
    stage.hasSecond = 1;
    stage.secondHeight = images.second->height;
    stage.secondWidth = images.second->width;
  }
  if (images.mask != nullptr) {
    stage.hasMask = 1;
    stage.maskHeight = images.mask->height;
    stage.maskWidth = images.mask->width;
  }
}

int32_t makeStages(QPXEngine* engine, const Images& images, const QPXEffectList& list) {
  for (uint32_t i = 0; i < list.count; ++i) {
    Stage* stage = allocateStage(list.count);
    if (stage == nullptr) return QPX_NO_MEMORY;
    engine->stages()[i] = stage;
    stage->level = levelOfQuality(list.quality);
    storeImages(images, *stage);
    // Looked up before the format is known, so that every stage gets the full-range BT.601 pair
    // whatever the format. What effects make of YUV pictures depends on it.
    mbf_GetMatrix(&stage->forwardMatrix, &stage->inverseMatrix, &stage->pix);
    const int32_t result = mbf_GetPixInfo(stageFormat(images.in->format), &stage->pix);
    if (result != QPX_OK) return result;
  }
  return QPX_OK;
}

// The two tests pass where the first effect may give its table to the second.
bool sharesStage(const QPXEffectItem& first, const QPXEffectItem& second) {
  return QPXIsSupEffMerge(first.effectId, second.effectId) != 0;
}

// Pictures that setup decoded, in an array ended by a null.
void freeResources(Stage& stage) {
  if (stage.resources == nullptr) return;
  for (void** resource = stage.resources; *resource != nullptr; ++resource) {
    MBitmapFree(static_cast<MBitmap*>(*resource));
    MMemFree(nullptr, *resource);
  }
  MMemFree(nullptr, stage.resources);
}

void freeStage(Stage*& stage) {
  if (stage == nullptr) return;
  freeResources(*stage);
  MMemFree(nullptr, stage->lut);
  MMemFree(nullptr, stage->scratch2);
  MMemFree(nullptr, stage);
  stage = nullptr;
}

// Sets up the list on the stages. Effects that merge share a stage, and the stages that this leaves
// over are freed from the end of the array.
int32_t setUpList(QPXEngine* engine, const QPXEffectList& list) {
  Stage& head = *engine->head;
  uint32_t merged = 0;
  for (uint32_t i = 0; i < list.count; ++i) {
    const uint32_t k = i - merged;
    Stage& stage = *engine->stages()[k];
    stage.listIndex = static_cast<int32_t>(i);
    const int32_t result = setUpEffect(list.items[i], stage, head.bands[k]);
    if (result != QPX_OK) {
      log(QPX_LOG_WARN, kLogTag, "create: effect 0x%X in format 0x%08X: result %d",
          static_cast<unsigned>(list.items[i].effectId), static_cast<unsigned>(stage.pix.format),
          static_cast<int>(result));
      return result;
    }
    // Rows pass from stage to stage in the columns of one band, so that one placed picture bounds
    // all.
    if (stage.cropMode != 0) head.cropMode = 1;
    if (i + 1 < list.count && sharesStage(list.items[i], list.items[i + 1])) {
      ++merged;
      freeStage(engine->stages()[list.count - merged]);
    } else {
      stage.listIndex = static_cast<int32_t>(k);
      head.stageCount = static_cast<int32_t>(k) + 1;
    }
  }
  return QPX_OK;
}

// Returns whether the sum fits its field.
bool sumRingRows(QPXEngine* engine) {
  Stage& head = *engine->head;
  int64_t rows = 0;
  for (int32_t k = 0; k < head.stageCount; ++k) rows += head.bands[k].ringCapacity;
  if (rows > INT32_MAX) return false;
  head.ringRows = static_cast<int32_t>(rows);
  return true;
}

// Stages hand on rows of one plane, of which rotated effects would need all at once.
bool runsAsChain(QPXEngine* engine) {
  const Stage& head = *engine->head;
  for (int32_t k = 0; k < head.stageCount; ++k) {
    if (engine->stages()[k]->effect->has(kWarps)) return false;
  }
  return head.pix.family == kFamilyPackedRgb;
}

int32_t fillEngine(QPXEngine* engine, const Images& images, const QPXEffectList& list) {
  int32_t result = makeStages(engine, images, list);
  if (result != QPX_OK) return result;
  result = setUpList(engine, list);
  if (result != QPX_OK) return result;
  if (engine->head->stageCount > 1 && !runsAsChain(engine)) {
    log(QPX_LOG_WARN, kLogTag, "create: %d stages need packed RGB and no rotated effect",
        static_cast<int>(engine->head->stageCount));
    return QPX_UNSUPPORTED;
  }
  return sumRingRows(engine) ? allocateRowTables(engine) : QPX_NO_MEMORY;
}

void freeChainBuffers(Stage& head) {
  MMemFree(nullptr, head.bands[0].ring[0]);
  head.bands[0].ring[0] = nullptr;
  head.bands[0].ringAllocated = 0;
  MMemFree(nullptr, head.rowTables);
  head.rowTables = nullptr;
}

}  // namespace
}  // namespace qpx

using namespace qpx;

int32_t QPXCreateIn(const MBitmap* outImage, const MBitmap* inImage, const MBitmap* secondImage,
                    const MBitmap* maskImage, const QPXEffectList* list, QPXEngine** handleOut) {
  if (handleOut == nullptr) return QPX_BAD_PARAM;
  *handleOut = nullptr;
  const Images images = {outImage, inImage, secondImage, maskImage};
  if (!argumentsValid(images, list)) return QPX_BAD_PARAM;

  QPXEngine* engine =
      static_cast<QPXEngine*>(allocateZeroed(size_t{list->count} + 1, sizeof(Stage*), 0));
  if (engine == nullptr) return QPX_NO_MEMORY;
  if (list->count > 0) {
    const int32_t result = fillEngine(engine, images, *list);
    if (result != QPX_OK) {
      QPXDestroyIn(engine);
      return result;
    }
  }
  *handleOut = engine;
  return QPX_OK;
}

int32_t QPXCreate(const MBitmap* outImage, const MBitmap* inImage, const QPXEffectList* list,
                  QPXEngine** handleOut) {
  return QPXCreateIn(outImage, inImage, nullptr, nullptr, list, handleOut);
}

int32_t QPXCreateMerge(const MBitmap* outImage, const MBitmap* inImage, const MBitmap* secondImage,
                       const MBitmap* maskImage, const QPXEffectList* list, QPXEngine** handleOut) {
  return QPXCreateIn(outImage, inImage, secondImage, maskImage, list, handleOut);
}

int32_t QPXDestroyIn(QPXEngine* handle) {
  if (handle == nullptr) return QPX_OK;
  if (handle->head != nullptr) freeChainBuffers(*handle->head);
  for (Stage** stage = handle->stages(); *stage != nullptr; ++stage) freeStage(*stage);
  MMemFree(nullptr, handle);
  return QPX_OK;
}

int32_t QPXDestroy(QPXEngine* handle) { return QPXDestroyIn(handle); }

int32_t QPXDestroyMerge(QPXEngine* handle) { return QPXDestroyIn(handle); }

int32_t QPXFreeMemory(QPXEngine* handle) {
  Stage* head = headOf(handle);
  if (head == nullptr) return QPX_OK;
  freeChainBuffers(*head);
  for (Stage** stage = handle->stages(); *stage != nullptr; ++stage) {
    MMemFree(nullptr, (*stage)->lut);
    (*stage)->lut = nullptr;
    MMemFree(nullptr, (*stage)->scratch2);
    (*stage)->scratch2 = nullptr;
  }
  return QPX_OK;
}
