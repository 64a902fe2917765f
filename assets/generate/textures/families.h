// What a texture is, and the families that draw them. To add one: a row in its family's table, and
// the function that the row names. The program writes every row; tests/assets holds the list that
// effects rely on.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "kit/canvas.h"

namespace qpx::drawing {

enum class Channels { rgba, rgb, grey, palette };

struct Texture {
  const char* name;
  int width, height;
  Channels channels;
  void (*draw)(Canvas& canvas);
  /// How a recipe is meant to lay it on: what it leaves alone is what the drawing fills its empty
  /// parts with.
  const char* use;
};

/// A table that is no PNG file.
struct Table {
  const char* name;
  size_t bytes;
  std::vector<uint8_t> (*build)();
};

// One function for each file of textures/.
std::span<const Texture> agedTextures();
std::span<const Texture> boardTextures();
std::span<const Texture> classicTextures();
std::span<const Texture> exposureTextures();
std::span<const Texture> filmTextures();
std::span<const Texture> flareTextures();
std::span<const Texture> gelTextures();
std::span<const Texture> geometricTextures();
std::span<const Texture> glassTextures();
std::span<const Texture> leakTextures();
std::span<const Texture> lomoTextures();
std::span<const Texture> maskTextures();
std::span<const Texture> overlayTextures();
std::span<const Texture> paintTextures();
std::span<const Texture> prismTextures();
std::span<const Texture> shardTextures();
std::span<const Texture> surfaceTextures();

// One function for each file of tables/.
std::span<const Table> inverseTables();
std::span<const Table> lookTables();
std::span<const Table> pictureTables();
std::span<const Table> toneTables();

}  // namespace qpx::drawing
