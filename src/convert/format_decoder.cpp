#include "convert/format_decoder.h"

#include <qpx/image.h>

#include "engine/format_code.h"

namespace qpx::convert {
namespace {

constexpr uint32_t kColourBits = 0x3000;
constexpr uint32_t kColours[4] = {kBt601Video, kBt601Full, kBt709Video, kBt709Full};

struct ClassOfWord {
  uint32_t word;  // without its colour bits
  uint32_t klass;
};

// The packed orders are numbered from YVYU, the words from YUYV.
constexpr ClassOfWord kLayouts[] = {
    {0x50000010, kYuyv},          {0x50000210, kYvyu},          {0x50000410, kUyvy},
    {0x50000610, kVyuy},          {0x50000110, kYuyv + 16},     {0x50000310, kYvyu + 16},
    {0x50000510, kUyvy + 16},     {0x50000710, kVyuy + 16},     {0x50000000, kPacked444},
    {0x50000200, kPacked444 + 1}, {0x50000400, kPacked444 + 2}, {0x50000600, kPacked444 + 3},
    {0x50000500, kPacked444 + 4}, {0x50000700, kPacked444 + 5}, {0x50000811, kI420},
    {0x50000801, kI422V},         {0x50000810, kI422H},         {0x50000800, kI444},
    {0x50000A11, kYv12},          {0x50000A01, kYv422V},        {0x50000A10, kYv422H},
    {0x50000A00, kYv444},         {0x64000000, kGrey},          {0x70000002, kNv21},
    {0x70000003, kNv12},          {0x70000004, kNv61},          {0x70000005, kNv16},
    {0x70000008, kPacked422In16}, {0x70000009, kPacked444In32},
};

// Class of a YUV or grey word, or 0.
uint32_t yuvClass(uint32_t word) {
  for (const ClassOfWord& layout : kLayouts) {
    if (layout.word == word) return layout.klass;
  }
  if ((word & ~0xFFu) == 0x50000800) return kPlanarYuv;
  if ((word & ~0xFFu) == 0x50000A00) return kPlanarYvu;
  return 0;
}

struct SampleOffsets {
  int32_t y, u, v;
};

constexpr SampleOffsets k422Offsets[] = {{0, 3, 1}, {0, 1, 3}, {1, 0, 2}, {1, 2, 0}};
constexpr SampleOffsets k444Offsets[] = {{0, 1, 2}, {0, 2, 1}, {2, 0, 1},
                                         {2, 1, 0}, {1, 0, 2}, {1, 2, 0}};

void setOffsets(const SampleOffsets& offsets, ConvPlanes* planes) {
  planes->offset[0] = offsets.y;
  planes->offset[1] = offsets.u;
  planes->offset[2] = offsets.v;
}

void setSteps(int32_t luma, int32_t chroma, ConvPlanes* planes) {
  planes->step[0] = luma;
  planes->step[1] = planes->step[2] = chroma;
}

void describeOnePlane(uint32_t klass, ConvPlanes* planes) {
  planes->count = 1;
  if (klass == kGrey) {
    planes->bitsPerPixel = 8;
    setSteps(1, 1, planes);
  } else if (klass == kPacked422In16) {
    // The second luma of a group and its U are one byte: U, written last, stays.
    planes->bitsPerPixel = 16;
    setSteps(2, 4, planes);
    setOffsets({0, 2, 3}, planes);
  } else if (klass == kPacked444In32) {
    planes->bitsPerPixel = 32;
    setSteps(4, 4, planes);
    setOffsets({0, 1, 2}, planes);
  } else if (klass >= kPacked444) {
    planes->bitsPerPixel = 24;
    setSteps(3, 3, planes);
    setOffsets(k444Offsets[klass - kPacked444], planes);
  } else {
    planes->bitsPerPixel = 16;
    setSteps(2, 4, planes);
    setOffsets(k422Offsets[klass & 3], planes);
  }
}

void describePlanes(uint32_t klass, ConvPlanes* planes) {
  planes->klass = klass;
  planes->interleaved = klass >= kNv21 && klass <= kNv16;
  planes->planar = klass >= kPlanarYvu && klass <= kI444;
  if (planes->interleaved == 0 && planes->planar == 0) {
    describeOnePlane(klass, planes);
    return;
  }
  planes->count = 3;
  planes->bitsPerPixel = 8;
  setSteps(1, planes->interleaved != 0 ? 2 : 1, planes);
}

struct Subsampling {
  int32_t across, down;
};

Subsampling subsamplingOf(uint32_t word, uint32_t klass) {
  if (colorModel(word) == ColorModel::yuv) return {chromaAcross(word), chromaDown(word)};
  if (klass == kNv21 || klass == kNv12) return {2, 2};
  if (klass == kNv61 || klass == kNv16 || klass == kPacked422In16) return {2, 1};
  return {1, 1};
}

int32_t decodeYuv(uint32_t word, DecodedFormat* decoded) {
  const uint32_t klass = yuvClass(word & ~kColourBits);
  if (klass == 0) return QPX_UNSUPPORTED;
  const Subsampling chroma = subsamplingOf(word, klass);
  decoded->format.klass = klass;
  decoded->format.colour = kColours[colorimetry(word)];
  decoded->format.maskR = static_cast<uint32_t>(chroma.across);
  decoded->format.maskG = static_cast<uint32_t>(chroma.down);
  for (int32_t p = 1; p < 3; ++p) {
    decoded->subX[p] = chroma.across;
    decoded->subY[p] = chroma.down;
  }
  describePlanes(klass, &decoded->planes);
  return QPX_OK;
}

void describePixels(uint32_t bits, ConvPlanes* planes) {
  const auto step = static_cast<int32_t>((bits + 7) / 8);
  planes->klass = kRgb;
  planes->count = 1;
  planes->bitsPerPixel = bits;
  setSteps(step, step, planes);
}

void setFields(const uint32_t (&masks)[3], DecodedFormat* decoded) {
  decoded->format.maskR = masks[0];
  decoded->format.maskG = masks[1];
  decoded->format.maskB = masks[2];
  for (int32_t i = 0; i < 3; ++i) {
    decoded->bits[i] = MGetMaskSize(masks[i]);
    decoded->position[i] = MGetMaskPos(masks[i]);
  }
}

constexpr uint32_t maskAt(uint32_t bits, uint32_t position) {
  return ((1u << bits) - 1) << position;
}

// Bit 14 tells codes apart that lie alike in memory.
int32_t decodeRgb(uint32_t word, DecodedFormat* decoded) {
  constexpr uint32_t kUnknownBits = 0x00FFA000;
  const uint32_t size = sizeNibble(word);
  if ((word & kUnknownBits) != 0 || size < 5 || size > 7) return QPX_UNSUPPORTED;
  const uint32_t bits = 8 * (size - 3);
  const uint32_t first = ((word >> 8) & 15) + 1, second = ((word >> 4) & 15) + 1,
                 third = (word & 15) + 1, used = first + second + third;
  if (first > 8 || second > 8 || third > 8 || used > bits) return QPX_UNSUPPORTED;

  const uint32_t lowest = colorModel(word) == ColorModel::rgbAlpha ? bits - used : 0;
  const bool reversed = (word & kReversedOrder) != 0;
  const uint32_t masks[3] = {
      maskAt(first, lowest + (reversed ? 0 : second + third)),
      maskAt(second, lowest + (reversed ? first : third)),
      maskAt(third, lowest + (reversed ? first + second : 0)),
  };
  decoded->format.klass = kRgb;
  decoded->format.colour = bits;
  setFields(masks, decoded);
  describePixels(bits, &decoded->planes);
  return QPX_OK;
}

// Pixels are indexes; colours are those of the palette's entries, B first.
int32_t decodePalette(uint32_t word, DecodedFormat* decoded) {
  uint32_t bits = 0;
  if (word == 0x41000000) bits = 1;
  if (word == 0x43000000) bits = 4;
  if (word == QPX_FORMAT_PALETTE8) bits = 8;
  if (bits == 0) return QPX_UNSUPPORTED;
  decoded->format.klass = kRgb;
  decoded->format.colour = bits;
  setFields({0xFF0000, 0xFF00, 0xFF}, decoded);
  describePixels(bits, &decoded->planes);
  return QPX_OK;
}

}  // namespace

int32_t decodeFormat(uint32_t word, DecodedFormat* decoded) {
  switch (colorModel(word)) {
    case ColorModel::rgb:
    case ColorModel::rgbAlpha:
      return decodeRgb(word, decoded);
    case ColorModel::palette:
      return decodePalette(word, decoded);
    case ColorModel::yuv:
    case ColorModel::grey:
    case ColorModel::semiPlanar:
      return decodeYuv(word, decoded);
    default:
      return QPX_UNSUPPORTED;
  }
}

}  // namespace qpx::convert
