#include "toolkit/texture_layer.h"

#include <qpx/image.h>

#include <algorithm>
#include <cstring>

namespace qpx {
namespace {

constexpr int kFraction = 20;

// Sides up to this are divided by sums: what kRunLength of them lose is less than half a pixel's
// part of 2^32.
constexpr int32_t kMostDivided = 1 << 22;
static_assert(int64_t{kRunLength + 1} * 2 * kMostDivided < int64_t{1} << 32);
constexpr uint32_t kRedFirst = 0x1000;  // of format codes

struct Planes {
  uint8_t* red;
  uint8_t* green;
  uint8_t* blue;
};

// A record without pixels, or of another format than textures have, is transparent black.
int32_t texelBytes(const MBitmap& texture) {
  if (texture.plane[0] == nullptr || texture.width < 1 || texture.height < 1) return 0;
  const int32_t bytes = UTIL_GetPixelBytesEX(texture.format);
  return bytes == 2 ? 0 : bytes;
}

void gather32(const uint8_t* row, int32_t texels, const int32_t* columns, int32_t count,
              const Planes& to, uint8_t* alpha) {
  const simd::Rows& rows = simd::rows();
  alignas(kRunAlignment) uint8_t packed[4 * kRunLength];
  rows.gather4(row, texels, columns, count, packed);
  rows.deinterleave4(packed, count, to.red, to.green, to.blue, alpha);
}

void gather24(const uint8_t* row, const int32_t* columns, int32_t count, const Planes& to) {
  for (int32_t i = 0; i < count; ++i) {
    const uint8_t* texel = row + ptrdiff_t{3} * columns[i];
    to.red[i] = texel[0];
    to.green[i] = texel[1];
    to.blue[i] = texel[2];
  }
}

}  // namespace

Mirror mirrorOf(const Stage& stage) {
  const auto& param = record<QPXFilterRecord>(stage);
  return {.across = param.flipX != 0, .down = param.flipY != 0};
}

TextureLayer::Axis::Axis(int32_t textureSize, int32_t pictureSize, bool turn)
    : texels(std::max(textureSize, 1)),
      pixels(std::max(pictureSize, 1)),
      shown(texels),
      turned(turn) {}

int32_t TextureLayer::Axis::clampTurned(int64_t texel) const {
  const int64_t place = turned ? first + shown - 1 - texel : first + texel;
  return static_cast<int32_t>(std::clamp<int64_t>(place, 0, texels - 1));
}

int32_t TextureLayer::Axis::place(int32_t at) const {
  if (stepped) return clampTurned((at * step) >> kFraction);
  if (!inFloat) return clampTurned(int64_t{at} * shown / pixels);
  const float exact =
      static_cast<float>(at) * static_cast<float>(shown) / static_cast<float>(pixels) +
      static_cast<float>(first);
  return clampTurned(static_cast<int64_t>(exact) - first);
}

// Texels follow one another in one direction, so that none of them needs clamping if the ends do
// not.
void TextureLayer::Axis::places(int32_t at, int32_t count, int32_t* to) const {
  const auto shows = [this](int64_t texel) { return texel >= 0 && texel < shown; };
  const int32_t last = at + count - 1;
  if (stepped && shows((at * step) >> kFraction) && shows((last * step) >> kFraction) &&
      last * step <= INT32_MAX) {
    steppedPlaces(at, count, to);
  } else if (!stepped && !inFloat && at >= 0 && pixels <= kMostDivided &&
             shows(int64_t{last} * shown / pixels)) {
    dividedPlaces(at, count, to);
  } else {
    for (int32_t i = 0; i < count; ++i) to[i] = place(at + i);
  }
}

// Sums that fit 32 bits are twice as fast.
void TextureLayer::Axis::steppedPlaces(int32_t at, int32_t count, int32_t* to) const {
  uint32_t sum = static_cast<uint32_t>(at * step);
  const uint32_t each = static_cast<uint32_t>(step);
  const int32_t origin = turned ? first + shown - 1 : first;
  const int32_t sign = turned ? -1 : 1;
  for (int32_t i = 0; i < count; ++i, sum += each) {
    to[i] = origin + sign * static_cast<int32_t>(sum >> kFraction);
  }
}

// at * shown / pixels from place to place in 32 fractional bits. A fraction is a whole number of
// parts of `pixels`; the sum begins half a part above it, which is more than it falls short of by
// the end of a run, and never reaches the next one.
void TextureLayer::Axis::dividedPlaces(int32_t at, int32_t count, int32_t* to) const {
  const int64_t exact = int64_t{at} * shown;
  const uint64_t divisor = static_cast<uint64_t>(pixels);
  const uint64_t rest = static_cast<uint64_t>(exact % pixels);
  uint64_t sum = ((2 * rest + 1) << 31) / divisor;
  const uint64_t each = (static_cast<uint64_t>(shown) << 32) / divisor;
  const int32_t texel = static_cast<int32_t>(exact / pixels);
  const int32_t origin = turned ? first + shown - 1 - texel : first + texel;
  const int32_t sign = turned ? -1 : 1;
  for (int32_t i = 0; i < count; ++i, sum += each) {
    to[i] = origin + sign * static_cast<int32_t>(sum >> 32);
  }
}

// As much of this axis as keeps the texture's shape, from the middle.
void TextureLayer::showCentre(Axis& along, const Axis& across) {
  along.shown = static_cast<int32_t>(int64_t{across.texels} * along.pixels / across.pixels);
  along.first = (along.texels - along.shown) / 2;
}

// One step for both axes, that of the axis which then shows all of its texels. What shows of the
// other begins with its first texel.
void TextureLayer::showFromEdge(Axis& along, Axis& across) {
  along.step = across.step = (int64_t{across.texels} << kFraction) / across.pixels;
  along.shown = static_cast<int32_t>(int64_t{across.texels} * along.pixels / across.pixels);
}

TextureLayer::TextureLayer(const MBitmap& texture, const Stage& stage, Placement placement,
                           Mirror mirror)
    : texture_(texture),
      columns_(texture.width, stage.inWidth, mirror.across),
      rows_(texture.height, stage.inHeight, mirror.down) {
  Axis* const axes[] = {&columns_, &rows_};
  const int64_t columnsIfUniform = int64_t{columns_.texels} * rows_.pixels;
  const int64_t rowsIfUniform = int64_t{rows_.texels} * columns_.pixels;
  switch (placement) {
    case Placement::stretch:
      for (Axis* axis : axes) axis->step = (int64_t{axis->texels} << kFraction) / axis->pixels;
      break;
    case Placement::stretchEdges:
      for (Axis* axis : axes) {
        axis->step = (int64_t{axis->texels - 1} << kFraction) / std::max(axis->pixels - 1, 1);
      }
      break;
    case Placement::stretchWhole:
      for (Axis* axis : axes) axis->stepped = false;
      break;
    case Placement::coverCentred:
      for (Axis* axis : axes) axis->stepped = false;
      rows_.inFloat = true;
      if (rowsIfUniform < columnsIfUniform) {
        showCentre(columns_, rows_);
      } else {
        showCentre(rows_, columns_);
      }
      break;
    case Placement::coverAnchored:
      if (columnsIfUniform <= rowsIfUniform) {
        showFromEdge(rows_, columns_);
      } else {
        showFromEdge(columns_, rows_);
      }
      break;
    case Placement::coverBottom:
      if (rowsIfUniform <= columnsIfUniform) {
        showFromEdge(columns_, rows_);
      } else {
        showFromEdge(rows_, columns_);
        rows_.first = rows_.texels - rows_.shown;
      }
      break;
  }
}

int32_t TextureLayer::columnAt(int32_t x) const { return columns_.place(x); }

int32_t TextureLayer::rowAt(int32_t y) const { return rows_.place(y); }

void TextureLayer::load(int32_t x, int32_t y, int32_t count, TextureRun& texels) const {
  const size_t bytes = static_cast<size_t>(count);
  const int32_t texelSize = texelBytes(texture_);
  if (texelSize == 0) {
    for (uint8_t* plane : {texels.r, texels.g, texels.b, texels.a}) std::memset(plane, 0, bytes);
    return;
  }
  alignas(kRunAlignment) int32_t columns[kRunLength];
  columns_.places(x, count, columns);
  const uint8_t* row = texture_.plane[0] + ptrdiff_t{rowAt(y)} * texture_.pitch[0];
  const bool redFirst = (texture_.format & kRedFirst) != 0;
  const Planes planes = {redFirst ? texels.r : texels.b, texels.g, redFirst ? texels.b : texels.r};
  if (texelSize == 4) {
    return gather32(row, texture_.width, columns, count, planes, texels.a);
  }
  if (texelSize == 3) {
    gather24(row, columns, count, planes);
  } else {
    for (int32_t i = 0; i < count; ++i) texels.r[i] = row[columns[i]];
    std::memcpy(texels.g, texels.r, bytes);
    std::memcpy(texels.b, texels.r, bytes);
  }
  std::memset(texels.a, 255, bytes);
}

}  // namespace qpx
