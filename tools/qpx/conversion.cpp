#include "conversion.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <new>

#include "errors.h"
#include "parallel.h"

namespace qpx::tool {

namespace {

// Strips begin at whole chroma cells and at whole blocks of the widest kernels, so that any number
// of threads makes the same bytes.
constexpr int32_t kStripUnit = 16;

// Exchange of X and Y, in the words of PostProcessOption.
constexpr uint32_t kExchanges = 1;

bool isRgb(const FrameShape& shape) { return shape.format->layout == Layout::packedRgb; }

PostProcessImage imageOf(const FrameShape& shape, int32_t width, int32_t height) {
  PostProcessImage image{};
  image.format = shape.format->code;
  if (!isRgb(shape)) image.format |= static_cast<uint32_t>(shape.range) << 12;
  image.width = static_cast<uint32_t>(width);
  image.height = static_cast<uint32_t>(height);
  return image;
}

// `inner` rounded, within 1 ... `outer`; of more than one even, as the chroma of its edges wants.
int32_t paddedSide(int64_t inner, int32_t outer) {
  const auto side = static_cast<int32_t>(std::clamp<int64_t>(inner, 1, outer));
  return side == outer || side == 1 ? side : side & ~1;
}

// Where a padded picture lies: in the middle, beginning at a whole chroma cell.
MRect paddedRect(const FrameShape& from, const FrameShape& to, bool exchanges) {
  const int64_t width = exchanges ? from.height : from.width;
  const int64_t height = exchanges ? from.width : from.height;
  int32_t across = to.width, down = to.height;
  if (width * to.height < height * to.width) {
    across = paddedSide((width * to.height + height / 2) / height, to.width);
  } else {
    down = paddedSide((height * to.width + width / 2) / width, to.height);
  }
  const int32_t left = (to.width - across) / 2 & ~1, top = (to.height - down) / 2 & ~1;
  return {left, top, left + across, top + down};
}

// Rows of a plane hold so many bytes of samples.
void fillPlane(const MBitmap& image, int plane, uint8_t value) {
  const bool subsampled = plane > 0;
  const bool semiPlanar = image.format >> 28 == 7;
  const int32_t down = !subsampled  ? 1
                       : semiPlanar ? 2
                                    : static_cast<int32_t>(image.format & 15) + 1;
  const int32_t rows = (image.height + down - 1) / down;
  uint8_t* first = image.plane[plane];
  if (semiPlanar && subsampled) first = std::min(image.plane[1], image.plane[2]);
  for (int32_t y = 0; y < rows; ++y) {
    std::memset(first + ptrdiff_t{image.pitch[plane]} * y, value,
                static_cast<size_t>(image.pitch[plane]));
  }
}

void fillPackedYuv(const MBitmap& image, uint8_t luma) {
  const bool chromaFirst = (image.format & 0x400) != 0;
  for (int32_t y = 0; y < image.height; ++y) {
    uint8_t* row = image.plane[0] + ptrdiff_t{image.pitch[0]} * y;
    for (int32_t i = 0; i < image.pitch[0]; ++i) row[i] = (i % 2 != 0) == chromaFirst ? luma : 128;
  }
}

// Pixels of four bytes have their alpha last, at 255 also where they are black.
void fillRgb(const MBitmap& image, uint8_t alpha) {
  fillPlane(image, 0, 0);
  if (image.format >> 24 != 0x37 && image.format >> 24 != 0x17) return;
  for (int32_t y = 0; y < image.height; ++y) {
    uint8_t* row = image.plane[0] + ptrdiff_t{image.pitch[0]} * y;
    for (int32_t x = 0; x < image.width; ++x) row[x * 4 + 3] = alpha;
  }
}

void fillBlack(const MBitmap& image, const FrameShape& shape) {
  const uint8_t luma = isFull(shape.range) ? 0 : 16;
  switch (shape.format->layout) {
    case Layout::packedRgb:
      return fillRgb(image, 255);
    case Layout::packed422:
      return fillPackedYuv(image, luma);
    case Layout::grey:
      return fillPlane(image, 0, luma);
    case Layout::planar:
    case Layout::semiPlanar:
      fillPlane(image, 0, luma);
      fillPlane(image, 1, 128);
      if (shape.format->layout == Layout::planar) fillPlane(image, 2, 128);
  }
}

void completePairs(const MBitmap& image) {
  const ptrdiff_t luma = (image.format & 0x400) != 0 ? 1 : 0;
  for (int32_t y = 0; y < image.height; ++y) {
    uint8_t* end = image.plane[0] + ptrdiff_t{image.pitch[0]} * y + ptrdiff_t{image.width} * 2;
    end[luma] = end[luma - 2];
  }
}

PostProcessOption optionOf(const ConversionOptions& options, const MRect& inside) {
  constexpr uint32_t kBilinear = 2, kAnyRequest = 256, kCropsSource = 2;
  PostProcessOption option{};
  option.resampleMode = options.bilinear ? kBilinear : 0;
  option.orientation = options.orientation;
  option.alignMode = kAnyRequest;
  option.fitMode = options.fit == Fit::crop ? kCropsSource : 0;
  option.palette = options.dither ? 1 : 0;
  option.brightness = options.brightness;
  option.contrast = options.contrast;
  option.saturation = options.saturation;
  option.dstLeft = inside.left;
  option.dstTop = inside.top;
  option.alpha = 255;
  return option;
}

std::string sizeText(const FrameShape& shape) {
  return std::string(shape.format->name) + " of " + std::to_string(shape.width) + "x" +
         std::to_string(shape.height);
}

[[noreturn]] void fail(int32_t code, const FrameShape& from, const FrameShape& to) {
  if (code == QPX_NO_MEMORY) throw std::bad_alloc();
  throw RunError("the library does not convert " + sizeText(from) + " to " + sizeText(to) +
                 " (code " + std::to_string(code) + "): choose another size or format");
}

bool needsYuvFirst(const FrameShape& from, const ConversionOptions& options) {
  return isRgb(from) && options.adjusts();
}

}  // namespace

bool isFull(Range range) { return range == Range::bt601Full || range == Range::bt709Full; }

Conversion::Conversion(const FrameShape& from, const FrameShape& to,
                       const ConversionOptions& options)
    : to_(to), inside_{0, 0, to.width, to.height}, threads_(options.threads) {
  FrameShape source = from;
  if (needsYuvFirst(from, options)) {
    source = {&pixelFormatByName("i444"), from.width, from.height, Range::bt601Full};
    ConversionOptions plain;
    plain.threads = options.threads;
    first_ = std::make_unique<Conversion>(from, source, plain);
  }
  if (options.fit == Fit::pad) {
    inside_ = paddedRect(source, to, (options.orientation & kExchanges) != 0);
  }
  // The error of a dithered pixel goes to the next one, across the ends of strips too.
  wholeCalls_ = options.dither;
  const PostProcessImage src = imageOf(source, source.width, source.height);
  const PostProcessImage dst =
      imageOf(to, inside_.right - inside_.left, inside_.bottom - inside_.top);
  const PostProcessOption option = optionOf(options, inside_);
  PostProcessContext* context = nullptr;
  const int32_t code = MPPCreate(&src, &dst, &option, &context);
  if (code != QPX_OK) fail(code, from, to);
  context_.reset(context);
  if (first_) between_.emplace(*source.format, source.width, source.height);
}

void Conversion::run(const MBitmap& from, const MBitmap& to) {
  if (!first_) return convert(from, to);
  first_->run(from, between_->bitmap());
  convert(between_->bitmap(), to);
}

void Conversion::convert(const MBitmap& from, const MBitmap& to) const {
  const bool padded =
      inside_.right - inside_.left < to_.width || inside_.bottom - inside_.top < to_.height;
  if (padded || to_.format->code >> 24 == 0x37 || to_.format->code >> 24 == 0x17) {
    fillBlack(to, to_);
  }
  const int32_t units = (to_.height + kStripUnit - 1) / kStripUnit;
  const int strips = wholeCalls_ ? 1 : std::clamp(threads_, 1, units);
  std::atomic<int32_t> worst{QPX_OK};
  forEachInThreads(static_cast<size_t>(strips), strips, [&](size_t i) {
    const auto edge = [&](int64_t strip) {
      return static_cast<int32_t>(int64_t{units} * strip / strips) * kStripUnit;
    };
    const auto index = static_cast<int64_t>(i);
    const MRect strip = {0, edge(index), to_.width, std::min(edge(index + 1), to_.height)};
    const int32_t code =
        MPProcess(context_.get(), from.plane, &strip, from.pitch, to.plane, to.pitch);
    if (code != QPX_OK) worst = code;
  });
  if (worst != QPX_OK) {
    throw RunError("the library refuses to convert it (code " + std::to_string(worst) + ")");
  }
  if (to_.format->layout == Layout::packed422 && to_.width % 2 != 0) completePairs(to);
}

}  // namespace qpx::tool
