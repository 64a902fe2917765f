#include "convert/kernels/kernel_run.h"

#include <algorithm>
#include <sstream>

#include "convert/strip_walk.h"

namespace qpx::testing {
namespace {

// What a frame hands to a kernel, written down from the rules for positions.
struct FirstRow {
  explicit FirstRow(const ConvRecord& r, int32_t top) {
    const int64_t start = int64_t{r.srcOrgY} * 65536;
    const int64_t rows = int64_t{top} - r.dstOrgY;
    sy = r.bilinearY != 0 ? start - 32768 + rows * r.stepY - r.stepY / 2
                          : start + rows * r.stepY - int64_t{r.stepY};
  }
  int64_t sy;
};

AnyKernel current;

int32_t callCurrent(QPX_CONVERT_FRAME_ARGUMENTS) {
  if (const auto* kernel = std::get_if<RectKernel>(&current)) {
    const bool yuv = record->srcPlane.klass != 256;
    const int32_t* const subX = yuv ? record->srcSubX : record->dstSubX;
    const int32_t* const subY = yuv ? record->srcSubY : record->dstSubY;
    (*kernel)(rect, srcPlanes, dstPlanes, srcPitch, dstPitch,
              static_cast<int32_t>(FirstRow(*record, rect->top).sy), record->stepX, record->stepY,
              subX[1] - 1, subY[1] - 1, record);
    return QPX_OK;
  }
  if (const auto* kernel = std::get_if<SubsampledKernel>(&current)) {
    return (*kernel)(rect, srcPlanes, dstPlanes, srcPitch, dstPitch, record->srcSubX,
                     record->srcSubY, record->dstSubX, record->dstSubY, record);
  }
  if (const auto* kernel = std::get_if<PairedKernel>(&current)) {
    const bool vFirst = record->dst.klass == 0x70000002 || record->dst.klass == 0x70000004;
    return (*kernel)(rect, srcPlanes, dstPlanes, srcPitch, dstPitch, vFirst ? 1 : 0, record);
  }
  return std::get<ConvFrameFunction>(current)(rect, dstPitch, srcPitch, dstPlanes, srcPlanes,
                                              record);
}

convert::Planes planesOf(const ConversionPicture& src, ConversionPicture* dst) {
  convert::Planes planes;
  for (int32_t p = 0; p < 3; ++p) {
    planes.src[p] = src.planes()[p];
    planes.srcPitch[p] = src.pitches()[p];
    planes.dst[p] = dst->planes()[p];
    planes.dstPitch[p] = dst->pitches()[p];
  }
  return planes;
}

int32_t otherSide(int32_t side, Random& random) {
  const int32_t scaled =
      random.between(0, 1) == 0 ? side * random.between(1, 16) : side / random.between(1, 16);
  return std::clamp(scaled + random.between(-2, 2), 1, 120);
}

}  // namespace

std::string describe(const Conversion& c, const MRect& rect) {
  std::ostringstream text;
  text << std::hex << c.from << " to " << c.to << std::dec << ", orientation " << c.params.orient
       << ", " << c.srcWidth << "x" << c.srcHeight << " at " << c.params.srcX << " "
       << c.params.srcY << " to " << c.dstWidth << "x" << c.dstHeight << " at " << c.params.dstX
       << " " << c.params.dstY << ", rectangle " << rect.left << " " << rect.top << " "
       << rect.right << " " << rect.bottom << ", interp " << c.params.interp << ", clip "
       << c.params.clipLeft << " " << c.params.clipTop << " " << c.params.clipRight << " "
       << c.params.clipBottom << ", block " << c.params.blockMode << ", dither " << c.params.dither;
  return text.str();
}

Converter::Converter(const Conversion& c) {
  const convert::Side src = {c.from, static_cast<uint32_t>(c.srcWidth),
                             static_cast<uint32_t>(c.srcHeight)};
  const convert::Side dst = {c.to, static_cast<uint32_t>(c.dstWidth),
                             static_cast<uint32_t>(c.dstHeight)};
  result = convert::buildRecord(dst, src, c.params, &record);
}

int32_t Converter::run(const ConversionPicture& src, const MRect& rect, const AnyKernel& kernel,
                       ConversionPicture* dst) const {
  current = kernel;
  return convert::convertRect(record, planesOf(src, dst), rect, callCurrent);
}

int32_t Converter::runAtOnce(const ConversionPicture& src, const MRect& rect,
                             const AnyKernel& kernel, ConversionPicture* dst) const {
  current = kernel;
  return convert::convertStrip(record, planesOf(src, dst), rect, callCurrent);
}

Conversion anyConversion(uint32_t from, uint32_t to, char sampling, int32_t orient, int32_t block,
                         Random& random) {
  Conversion c = {from, to, 0, 0, 0, 0, {}};
  c.params.orient = static_cast<uint32_t>(orient >= 0 ? orient : random.between(0, 7));
  c.params.blockMode = block == 1 ? 1 : (block == 2 ? 2 : 3);
  c.params.interp = sampling == 'b' ? 2 : 1;
  c.params.alpha = random.byte();
  c.dstWidth = block * random.between(1, 40 / block);
  c.dstHeight = block * random.between(1, 40 / block);
  if (random.between(0, 15) == 0) (random.between(0, 1) == 0 ? c.dstWidth : c.dstHeight) = 1064;
  const int32_t width = c.turns() ? c.dstHeight : c.dstWidth;
  const int32_t height = c.turns() ? c.dstWidth : c.dstHeight;
  c.srcWidth = sampling == 'u' ? width : otherSide(width, random);
  c.srcHeight = sampling == 'u' ? height : otherSide(height, random);
  if (sampling != 'u' && c.srcWidth == width && c.srcHeight == height) ++c.srcWidth;
  for (int32_t* origin : {&c.params.srcX, &c.params.srcY}) {
    if (random.between(0, 2) == 0) *origin = random.between(1, 6);
  }
  for (int32_t* origin : {&c.params.dstX, &c.params.dstY}) {
    if (random.between(0, 2) == 0) *origin = block * random.between(1, 3);
  }
  if (random.between(0, 3) == 0) {
    const MRect source = {c.params.srcX, c.params.srcY, c.params.srcX + c.srcWidth,
                          c.params.srcY + c.srcHeight};
    const MRect clip = partOf(source, 1, random);
    c.params.clipLeft = clip.left;
    c.params.clipTop = clip.top;
    c.params.clipRight = clip.right;
    c.params.clipBottom = clip.bottom;
  }
  return c;
}

MRect partOf(const MRect& all, int32_t block, Random& random) {
  const auto cut = [&](int32_t low, int32_t high, int32_t* first, int32_t* last) {
    const int32_t blocks = (high - low) / block;
    const int32_t begin = random.between(0, blocks - 1);
    *first = low + block * begin;
    *last = low + block * random.between(begin + 1, blocks);
  };
  MRect part = {};
  cut(all.left, all.right, &part.left, &part.right);
  cut(all.top, all.bottom, &part.top, &part.bottom);
  return part;
}

bool equalsGeneral(const Conversion& c, const MRect& rect, const AnyKernel& kernel, uint64_t seed) {
  const Converter converter(c);
  ConversionPicture src(c.from, c.params.srcX + c.srcWidth, c.params.srcY + c.srcHeight, seed);
  ConversionPicture dst(c.to, c.params.dstX + c.dstWidth, c.params.dstY + c.dstHeight, seed + 1);
  if (seed % 3 == 0) src.turnOver();
  if (seed % 5 == 0) dst.turnOver();
  ConversionPicture expected = dst;
  const auto run = seed % 2 == 0 ? &Converter::run : &Converter::runAtOnce;
  return converter.result == QPX_OK &&
         (converter.*run)(src, rect, ANY_ANY_C_SLOW, &expected) == QPX_OK &&
         (converter.*run)(src, rect, kernel, &dst) == QPX_OK && dst.sameBytes(expected);
}

}  // namespace qpx::testing
