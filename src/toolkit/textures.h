// Pictures and tables that the library carries, and what effects decode of them at setup.
//
//   int32_t setupFlare07(const QPXEffectItem&, Stage& stage, QPXBand&) {
//     return loadTextures(stage, {assets::flare07_port});
//   }
//   ... in the kernel: const MBitmap& flare = texture(stage, 0);
//
// assets::NAME is generated for every file of assets/ (toolkit/asset_constants.h); the bytes of a
// raw table are the array ::NAME itself (qpx/assets.h).
#pragma once

#include <qpx/types.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>

#include "engine/stage.h"

namespace qpx {

struct Asset {
  const char* name;
  const uint8_t* data;
  uint32_t size;
};

// All embedded PNG files and raw tables, by name.
std::span<const Asset> embeddedTextures();
std::span<const Asset> embeddedTables();

// Decodes a texture into a record of its own, to be freed with UTIL_MBitmapFree. Null means that
// memory is short and nothing else: a record always has pixels. A broken file gives what could be
// decoded of it, and one of which nothing could a transparent pixel.
MBitmap* decodeTexture(const Asset& asset);

// Decodes the textures into stage.resources, in order, ended by a null; the stage frees them. Once
// per stage. Returns 0, or 4 for no memory, which the setup passes on: the engine is then not made,
// so that no kernel meets an empty slot.
int32_t loadTextures(Stage& stage, std::initializer_list<Asset> textures);

// The i-th texture that the setup loaded.
inline const MBitmap& texture(const QPXStage& stage, size_t i) {
  return *static_cast<const MBitmap*>(stage.resources[i]);
}

}  // namespace qpx
