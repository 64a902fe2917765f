#include "conversion.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <new>
#include <span>

#include "errors.h"
#include "parallel.h"

namespace qpx::tool {

namespace {

// Strips begin at whole chroma cells and at whole blocks of the widest kernels, so that any number
// of threads makes the same bytes.
constexpr int32_t kStripUnit = 16;

// Where the code of a YUV or grey format has its Range.
constexpr int kRangePosition = 12;

bool isRgb(const FrameShape& shape) { return shape.format->layout == Layout::packedRgb; }

PostProcessImage imageOf(const FrameShape& shape, int32_t width, int32_t height) {
  PostProcessImage image{};
  image.format = shape.format->code;
  if (!isRgb(shape)) image.format |= static_cast<uint32_t>(shape.range) << kRangePosition;
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

void fillPlane(const MBitmap& image, const PixelFormat& format, int plane, uint8_t value) {
  const int32_t down = plane == 0 ? 1 : chromaDown(format);
  const int32_t rows = (image.height + down - 1) / down;
  uint8_t* first = image.plane[plane];
  if (plane > 0 && format.layout == Layout::semiPlanar) {
    first = std::min(image.plane[1], image.plane[2]);
  }
  for (int32_t y = 0; y < rows; ++y) {
    std::memset(first + ptrdiff_t{image.pitch[plane]} * y, value,
                static_cast<size_t>(image.pitch[plane]));
  }
}

// Every pixel of a one-plane format, or every pair, gets the same bytes.
void repeatBytes(const MBitmap& image, std::span<const uint8_t> bytes) {
  for (int32_t y = 0; y < image.height; ++y) {
    uint8_t* row = image.plane[0] + ptrdiff_t{image.pitch[0]} * y;
    for (int32_t i = 0; i < image.pitch[0]; ++i) {
      row[i] = bytes[static_cast<size_t>(i) % bytes.size()];
    }
  }
}

void fillPacked(const MBitmap& image, const PixelFormat& format, uint8_t luma) {
  const bool chromaFirst = beginsWithChroma(format);
  if (format.layout == Layout::packed422) {
    const std::array<uint8_t, 4> pair = {luma, 128, luma, 128};
    return repeatBytes(image, std::span(pair).subspan(chromaFirst ? 1 : 0, 2));
  }
  const std::array<uint8_t, 5> pixel = {128, luma, 128, 128, 255};
  if (hasSpareByte(format)) return repeatBytes(image, std::span(pixel).subspan(1));
  repeatBytes(image, std::span(pixel).subspan(chromaFirst ? 0 : 1, 3));
}

void fillRgb(const MBitmap& image, const PixelFormat& format) {
  fillPlane(image, format, 0, 0);
  if (!hasSpareByte(format)) return;
  for (int32_t y = 0; y < image.height; ++y) {
    uint8_t* row = image.plane[0] + ptrdiff_t{image.pitch[0]} * y;
    for (int32_t x = 0; x < image.width; ++x) row[x * 4 + 3] = 255;
  }
}

void fillBlack(const MBitmap& image, const FrameShape& shape) {
  const PixelFormat& format = *shape.format;
  const uint8_t luma = isFull(shape.range) ? 0 : 16;
  switch (format.layout) {
    case Layout::packedRgb:
      return fillRgb(image, format);
    case Layout::packed422:
    case Layout::packed444:
      return fillPacked(image, format, luma);
    case Layout::grey:
      return fillPlane(image, format, 0, luma);
    case Layout::planar:
    case Layout::semiPlanar:
      fillPlane(image, format, 0, luma);
      fillPlane(image, format, 1, 128);
      if (format.layout == Layout::planar) fillPlane(image, format, 2, 128);
  }
}

// The library leaves the low bits of samples that come from narrow fields at 0. With the top bits
// again in their place white is white.
void widenSamples(const Frame& frame, const PixelFormat& narrow) {
  const std::array<int, 3> bits = fieldBits(narrow);
  const MBitmap& image = frame.bitmap();
  for (int32_t y = 0; y < image.height; ++y) {
    uint8_t* row = image.plane[0] + ptrdiff_t{image.pitch[0]} * y;
    for (int32_t x = 0; x < image.width; ++x, row += 3) {
      for (size_t c = 0; c < 3; ++c) row[c] = static_cast<uint8_t>(row[c] | row[c] >> bits[c]);
    }
  }
}

void completePairs(const MBitmap& image, const PixelFormat& format) {
  const ptrdiff_t luma = beginsWithChroma(format) ? 1 : 0;
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

// What a conversion goes by way of: RGB is adjusted as YUV, and widened before it becomes anything
// else. Without a format: of nothing.
FrameShape shapeBetween(const FrameShape& from, const FrameShape& to,
                        const ConversionOptions& options) {
  FrameShape between = {nullptr, from.width, from.height, Range::bt601Full};
  if (!isRgb(from)) return between;
  if (options.adjusts()) {
    between.format = &pixelFormatByName("i444");
  } else if (options.widens && narrowestField(*from.format) < 8 && from.format != to.format) {
    between.format = &pixelFormatByName("rgb24");
  }
  return between;
}

}  // namespace

int worthwhileThreads(int32_t width, int32_t height, int most) {
  constexpr int64_t kWorthwhilePixels = 1 << 18;
  return static_cast<int>(
      std::clamp<int64_t>(int64_t{width} * height / kWorthwhilePixels, 1, most));
}

bool isFull(Range range) { return range == Range::bt601Full || range == Range::bt709Full; }

Conversion::Conversion(const FrameShape& from, const FrameShape& to,
                       const ConversionOptions& options)
    : to_(to), inside_{0, 0, to.width, to.height}, threads_(options.threads) {
  const FrameShape source = openFirst(from, options);
  // The error of a dithered pixel goes to the next one, across the ends of strips too.
  wholeCalls_ = options.dither;
  const int32_t code = openContext(source, options);
  if (code != QPX_OK) fail(code, from, to);
}

// Returns what the context then converts from.
FrameShape Conversion::openFirst(const FrameShape& from, const ConversionOptions& options) {
  const FrameShape between = shapeBetween(from, to_, options);
  if (!between.format) return from;
  between_.emplace(*between.format, between.width, between.height);
  ConversionOptions first;
  first.threads = options.threads;
  first.widens = !isRgb(between);
  if (isRgb(between)) narrow_ = from.format;
  first_ = std::make_unique<Conversion>(from, between, first);
  return between;
}

int32_t Conversion::openContext(const FrameShape& source, const ConversionOptions& options) {
  if (options.fit == Fit::pad) {
    inside_ = paddedRect(source, to_, (options.orientation & kExchanges) != 0);
  }
  const PostProcessImage src = imageOf(source, source.width, source.height);
  const PostProcessImage dst =
      imageOf(to_, inside_.right - inside_.left, inside_.bottom - inside_.top);
  const PostProcessOption option = optionOf(options, inside_);
  PostProcessContext* context = nullptr;
  const int32_t code = MPPCreate(&src, &dst, &option, &context);
  context_.reset(context);
  return code;
}

Conversion::Conversion(const FrameShape& from, const FrameShape& to, int threads)
    : Conversion(from, to, [threads] {
        ConversionOptions plain;
        plain.threads = threads;
        return plain;
      }()) {}

void Conversion::run(const MBitmap& from, const MBitmap& to) {
  if (!first_) return convert(from, to);
  first_->run(from, between_->bitmap());
  if (narrow_) widenSamples(*between_, *narrow_);
  convert(between_->bitmap(), to);
}

void Conversion::convert(const MBitmap& from, const MBitmap& to) const {
  const bool padded =
      inside_.right - inside_.left < to_.width || inside_.bottom - inside_.top < to_.height;
  if (padded || hasSpareByte(*to_.format)) fillBlack(to, to_);
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
  if (to_.format->layout == Layout::packed422 && to_.width % 2 != 0) {
    completePairs(to, *to_.format);
  }
}

}  // namespace qpx::tool
