// Textures laid out over a picture: which texel stands at which pixel, and the texels of a run.
//
//   const TextureLayer flare(texture(stage, 0), stage, Placement::coverAnchored, mirror(stage));
//   screenLayer(run, flare, kOpaque, 0.8f);
//
// Nothing is filtered: every pixel takes the nearest texel by the integer rule of its placement. A
// layer is cheap to make, so that a recipe may make it for each run.
#pragma once

#include <qpx/types.h>

#include "engine/stage.h"
#include "toolkit/pixel_run.h"

namespace qpx {

// For W x H pixels and a texture of w x h texels; >> 20 cuts twenty fractional bits.
enum class Placement {
  stretch,        // column (x * ((w << 20) / W)) >> 20, row likewise
  stretchEdges,   // the same with steps ((w - 1) << 20) / (W - 1): first and last texels meet edges
  stretchWhole,   // column w * x / W, row h * y / H: true to the last pixel
  coverCentred,   // of the picture's shape, cut equally on both sides
  coverAnchored,  // of the picture's shape, cut at the right or at the bottom
  coverBottom     // the same, cut at the right or at the top
};

struct Mirror {
  bool across = false;
  bool down = false;
};

// Textures turn, the picture does not: flipX and flipY of the stage's filter record.
Mirror mirrorOf(const Stage& stage);

// Planar texels of the pixels of a run. Formats without alpha have 255 there, grey has r = g = b.
struct TextureRun {
  alignas(kRunAlignment) uint8_t r[kRunLength];
  alignas(kRunAlignment) uint8_t g[kRunLength];
  alignas(kRunAlignment) uint8_t b[kRunLength];
  alignas(kRunAlignment) uint8_t a[kRunLength];
};

class TextureLayer {
 public:
  TextureLayer(const MBitmap& texture, const Stage& stage, Placement placement, Mirror mirror = {});

  // The texels for `count` pixels from (x, y) on, in picture coordinates.
  void load(int32_t x, int32_t y, int32_t count, TextureRun& texels) const;

  // Their places, for samplers of other kinds. Always inside the texture.
  int32_t columnAt(int32_t x) const;
  int32_t rowAt(int32_t y) const;

 private:
  // One axis. Where a step is set, texel (at * step) >> 20 of those that show, otherwise at * shown
  // / pixels; in single precision where asked for.
  struct Axis {
    int32_t texels;
    int32_t pixels;
    int64_t step = 0;
    int32_t shown;
    int32_t first = 0;  // texel that shows first
    bool stepped = true;
    bool inFloat = false;
    bool turned = false;

    Axis(int32_t textureSize, int32_t pictureSize, bool turn);
    int32_t place(int32_t at) const;
    void places(int32_t at, int32_t count, int32_t* to) const;
    void steppedPlaces(int32_t at, int32_t count, int32_t* to) const;
    void dividedPlaces(int32_t at, int32_t count, int32_t* to) const;
    int32_t clampTurned(int64_t texel) const;
  };

  static void showCentre(Axis& along, const Axis& across);
  static void showFromEdge(Axis& along, Axis& across);

  const MBitmap& texture_;
  Axis columns_;
  Axis rows_;
};

}  // namespace qpx
