#include "toolkit/textures.h"

#include <qpx/image.h>

#include "toolkit/asset_constants.h"
#include "toolkit/png_bitmap.h"

namespace qpx {

std::span<const Asset> embeddedTextures() { return assets::kTextures; }

std::span<const Asset> embeddedTables() { return assets::kTables; }

MBitmap* decodeTexture(const Asset& asset) {
  const DecodedPng decoded = decodePng(asset.data, static_cast<int32_t>(asset.size));
  if (!decoded.exhausted && decoded.bitmap->plane[0] != nullptr) return decoded.bitmap;
  UTIL_MBitmapFree(decoded.bitmap);
  return decoded.exhausted ? nullptr : UTIL_MBitmapCreate(1, 1, QPX_FORMAT_RGBA32);
}

int32_t loadTextures(Stage& stage, std::initializer_list<Asset> textures) {
  const size_t bytes = (textures.size() + 1) * sizeof(void*);
  stage.resources = static_cast<void**>(MMemAlloc(nullptr, bytes));
  if (stage.resources == nullptr) return QPX_NO_MEMORY;
  MMemSet(stage.resources, 0, bytes);
  void** slot = stage.resources;
  for (const Asset& asset : textures) {
    *slot = decodeTexture(asset);
    if (*slot == nullptr) return QPX_NO_MEMORY;
    ++slot;
  }
  return QPX_OK;
}

}  // namespace qpx
