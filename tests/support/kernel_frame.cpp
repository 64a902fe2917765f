#include "support/kernel_frame.h"

#include <cstdlib>

#include "engine/format_code.h"

namespace qpx::testing {
namespace {

PixInfo infoOf(uint32_t format) {
  PixInfo info = {};
  if (mbf_GetPixInfo(stageFormat(format), &info) != QPX_OK) std::abort();
  return info;
}

}  // namespace

KernelFrame::KernelFrame(uint32_t format) {
  // The pair that every engine has: full-range BT.601, whatever the format.
  mbf_GetMatrix(&stage_.forwardMatrix, &stage_.inverseMatrix, &stage_.pix);
  stage_.pix = infoOf(format);
  stage_.record = stage_.param.bytes;
}

KernelFrame::~KernelFrame() {
  MMemFree(nullptr, stage_.lut);
  MMemFree(nullptr, stage_.scratch2);
}

int32_t KernelFrame::setUp(uint32_t id) {
  effect_ = findEffect(id);
  if (effect_ == nullptr) std::abort();
  stage_.effect = effect_;
  stage_.effectId = id;
  return effect_->setup == nullptr ? int32_t{QPX_OK} : effect_->setup(stage_, band_);
}

int32_t KernelFrame::run(const Picture& in, Picture& out, const MRect& rect) {
  for (const LayoutKernel& kernel : effect_->kernels) {
    if (kernel.run == nullptr) break;
    if ((kernel.formats & formatGroup(stage_.pix)) != 0) return run(kernel.run, in, out, rect);
  }
  return effect_->generic == nullptr ? int32_t{QPX_UNSUPPORTED}
                                     : run(effect_->generic, in, out, rect);
}

int32_t KernelFrame::run(Kernel kernel, const Picture& in, Picture& out, const MRect& rect) {
  Tables inTables = tablesOf(in);
  Tables outTables = tablesOf(out);
  Tables secondTables = second_ != nullptr ? tablesOf(*second_) : Tables{};
  Tables maskTables = mask_ != nullptr ? tablesOf(*mask_) : Tables{};
  return kernel({.stage = stage_,
                 .rect = rect,
                 .out = outTables.planes,
                 .in = inTables.planes,
                 .second = second_ != nullptr ? secondTables.planes : nullptr,
                 .mask = mask_ != nullptr ? maskTables.planes[0] : nullptr});
}

void KernelFrame::give(const Picture* second, const Picture* mask) {
  second_ = second;
  mask_ = mask;
  stage_.hasSecond = second != nullptr ? 1 : 0;
  stage_.hasMask = mask != nullptr ? 1 : 0;
}

// Chroma of half the height has an entry for each row of the picture, other chroma for each of its
// own.
KernelFrame::Tables KernelFrame::tablesOf(const Picture& picture) const {
  const PixInfo pix = infoOf(picture.format());
  const MBitmap bitmap = picture.bitmap();
  Tables tables;
  for (int p = 0; p < pix.planes; ++p) {
    const int32_t down = pix.ySampling[p];
    const int32_t rows = down == 2 ? bitmap.height : (bitmap.height + down - 1) / down;
    for (int32_t r = 0; r < rows; ++r) {
      const ptrdiff_t row = down == 2 ? r / 2 : r;
      tables.rows[p].push_back(bitmap.plane[p] + row * bitmap.pitch[p]);
    }
    tables.planes[p] = tables.rows[p].data();
  }
  return tables;
}

MRect wholeOf(const Picture& picture) { return {0, 0, picture.width(), picture.height()}; }

void scramble(Picture& picture, uint64_t seed) {
  const PixInfo pix = infoOf(picture.format());
  if (pix.family != kFamilyPackedRgb) {
    picture.paint(seed);
    return;
  }
  Random random(seed);
  const MBitmap bitmap = picture.bitmap();
  for (int32_t y = 0; y < bitmap.height; ++y) {
    uint8_t* row = bitmap.plane[0] + ptrdiff_t{y} * bitmap.pitch[0];
    for (int32_t i = 0; i < bitmap.width * pix.bytesPerSample[0]; ++i) row[i] = random.byte();
  }
}

uint32_t pixelOf(const Picture& picture, int32_t x, int32_t y) {
  const int bytes = bytesOf(picture.format());
  const MBitmap bitmap = picture.bitmap();
  const uint8_t* at = bitmap.plane[0] + ptrdiff_t{y} * bitmap.pitch[0] + ptrdiff_t{x} * bytes;
  uint32_t pixel = 0;
  for (int i = bytes - 1; i >= 0; --i) pixel = pixel * 256 + at[i];
  return pixel;
}

int fieldOf(uint32_t pixel, uint32_t mask) {
  std::vector<int> bits;
  for (int i = 31; i >= 0; --i) {
    if ((mask >> i & 1) != 0) bits.push_back(static_cast<int>(pixel >> i & 1));
  }
  if (bits.empty()) return 0;
  int value = 0;
  for (size_t i = 0; i < 8; ++i) value = value * 2 + bits[i % bits.size()];
  return value;
}

int channelOf(const Picture& picture, int channel, int32_t x, int32_t y) {
  return fieldOf(pixelOf(picture, x, y), fieldMask(picture.format(), channel));
}

uint32_t fieldMask(uint32_t format, int channel) {
  const int bytes = bytesOf(format);
  const uint32_t there = bytes == 4 ? 0xFFFFFFFFu : (1u << (8 * bytes)) - 1;
  return infoOf(format).mask[channel] & there;
}

int bytesOf(uint32_t format) { return infoOf(format).bytesPerSample[0]; }

}  // namespace qpx::testing
