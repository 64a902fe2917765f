#include "picture.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "errors.h"
#include "exif.h"

namespace qpx::tool {

namespace {

constexpr int32_t kTile = 64;  // turning by a quarter walks columns; tiles keep both sides in cache

struct SourcePlace {
  int32_t x, y;
};

SourcePlace sourceOf(int32_t x, int32_t y, int32_t width, int32_t height, int orientation) {
  switch (orientation) {
    case 2:
      return {width - 1 - x, y};
    case 3:
      return {width - 1 - x, height - 1 - y};
    case 4:
      return {x, height - 1 - y};
    case 5:
      return {y, x};
    case 6:
      return {y, height - 1 - x};
    case 7:
      return {width - 1 - y, height - 1 - x};
    case 8:
      return {width - 1 - y, x};
    default:
      return {x, y};
  }
}

void turnTile(const Picture& from, Picture& to, int orientation, int32_t left, int32_t top) {
  const int channels = from.channels();
  for (int32_t y = top; y < std::min(top + kTile, to.height()); ++y) {
    for (int32_t x = left; x < std::min(left + kTile, to.width()); ++x) {
      const SourcePlace place = sourceOf(x, y, from.width(), from.height(), orientation);
      std::copy_n(from.row(place.y) + ptrdiff_t{place.x} * channels, channels,
                  to.row(y) + ptrdiff_t{x} * channels);
    }
  }
}

// What one output sample takes from neighbouring input samples.
struct Taps {
  int32_t first;
  std::vector<float> weights;
};

std::vector<Taps> tapsFor(int32_t from, int32_t to) {
  std::vector<Taps> all(static_cast<size_t>(to));
  const double step = static_cast<double>(from) / to;
  const double reach = std::max(step, 1.0);
  for (int32_t i = 0; i < to; ++i) {
    const double centre = (i + 0.5) * step - 0.5;
    const int32_t first = std::max<int32_t>(0, static_cast<int32_t>(std::ceil(centre - reach)));
    const int32_t last =
        std::min<int32_t>(from - 1, static_cast<int32_t>(std::floor(centre + reach)));
    std::vector<float> weights;
    double sum = 0;
    for (int32_t j = first; j <= last; ++j) {
      weights.push_back(static_cast<float>(1.0 - std::abs(j - centre) / reach));
      sum += static_cast<double>(weights.back());
    }
    for (float& weight : weights) weight = static_cast<float>(static_cast<double>(weight) / sum);
    all[static_cast<size_t>(i)] = {first, std::move(weights)};
  }
  return all;
}

uint8_t toByte(float value) { return static_cast<uint8_t>(std::clamp(value + 0.5f, 0.0f, 255.0f)); }

Picture scaledAcross(const Picture& from, int32_t width) {
  Picture to(width, from.height(), from.channels());
  const std::vector<Taps> taps = tapsFor(from.width(), width);
  const int channels = from.channels();
  for (int32_t y = 0; y < from.height(); ++y) {
    uint8_t* out = to.row(y);
    for (const Taps& tap : taps) {
      for (int c = 0; c < channels; ++c) {
        const uint8_t* in = from.row(y) + ptrdiff_t{tap.first} * channels + c;
        float sum = 0;
        for (float weight : tap.weights) {
          sum += weight * static_cast<float>(*in);
          in += channels;
        }
        *out++ = toByte(sum);
      }
    }
  }
  return to;
}

Picture scaledDown(const Picture& from, int32_t height) {
  Picture to(from.width(), height, from.channels());
  const std::vector<Taps> taps = tapsFor(from.height(), height);
  std::vector<float> sums(static_cast<size_t>(from.pitch()));
  for (int32_t y = 0; y < height; ++y) {
    const Taps& tap = taps[static_cast<size_t>(y)];
    std::fill(sums.begin(), sums.end(), 0.0f);
    for (size_t k = 0; k < tap.weights.size(); ++k) {
      const uint8_t* in = from.row(tap.first + static_cast<int32_t>(k));
      for (size_t i = 0; i < sums.size(); ++i)
        sums[i] += tap.weights[k] * static_cast<float>(in[i]);
    }
    std::transform(sums.begin(), sums.end(), to.row(y), toByte);
  }
  return to;
}

// Everything but the samples.
void takeMetadata(Picture& to, Picture&& from) {
  to.kind = from.kind;
  to.exif = std::move(from.exif);
  to.icc = std::move(from.icc);
  to.density = from.density;
}

}  // namespace

void checkSize(int64_t width, int64_t height, int channels) {
  if (width < 1 || height < 1) throw RunError("the picture has no pixels: use another file");
  const auto limit = static_cast<int64_t>(std::numeric_limits<ptrdiff_t>::max() / 2);
  // One pixel takes no more than four bytes in any format, and rows are addressed with 32 bits.
  const bool rowTooLong = width > (std::numeric_limits<int32_t>::max() - 64) / 4;
  if (rowTooLong || height > std::numeric_limits<int32_t>::max() / 8 ||
      width > kMaxPixels / height || width * height > limit / std::max(channels, 4)) {
    throw RunError(
        std::to_string(width) + "x" + std::to_string(height) +
        " pixels are more than the 512 megapixels that qpx takes: use a smaller picture");
  }
}

Picture::Picture(int32_t width, int32_t height, int channels)
    : width_(width), height_(height), channels_(channels) {
  checkSize(width, height, channels);
  samples_ = std::make_unique_for_overwrite<uint8_t[]>(
      static_cast<size_t>(width) * static_cast<size_t>(height) * static_cast<size_t>(channels));
}

Density inUnit(const Density& density, Density::Unit unit) {
  const auto perMetre = [](Density::Unit of) {
    constexpr double kInches = 1 / 0.0254;
    return of == Density::Unit::inch ? kInches : (of == Density::Unit::centimetre ? 100.0 : 1.0);
  };
  if (density.unit == Density::Unit::unknown || density.unit == unit) return density;
  const double factor = perMetre(density.unit) / perMetre(unit);
  const auto scaledSide = [factor](uint32_t side) {
    constexpr double kMost = std::numeric_limits<int32_t>::max();
    return static_cast<uint32_t>(std::min(std::round(side * factor), kMost));
  };
  return {unit, scaledSide(density.across), scaledSide(density.down)};
}

Picture copyOf(const Picture& picture) {
  Picture copy(picture.width(), picture.height(), picture.channels());
  std::copy_n(picture.row(0), picture.pitch() * picture.height(), copy.row(0));
  copy.kind = picture.kind;
  copy.exif = picture.exif;
  copy.icc = picture.icc;
  copy.density = picture.density;
  return copy;
}

Picture emptyLike(const Picture& picture, int32_t width, int32_t height) {
  Picture result(width, height, picture.channels());
  if (result.hasAlpha()) std::fill_n(result.row(0), result.pitch() * height, uint8_t{255});
  result.kind = picture.kind;
  result.exif = picture.exif;
  result.icc = picture.icc;
  result.density = picture.density;
  describeUpright(result.exif, width, height);
  return result;
}

Picture turned(Picture picture, int orientation) {
  if (orientation < 2 || orientation > 8) return picture;
  const bool onItsSide = orientation >= 5;
  Picture result(onItsSide ? picture.height() : picture.width(),
                 onItsSide ? picture.width() : picture.height(), picture.channels());
  for (int32_t top = 0; top < result.height(); top += kTile) {
    for (int32_t left = 0; left < result.width(); left += kTile) {
      turnTile(picture, result, orientation, left, top);
    }
  }
  takeMetadata(result, std::move(picture));
  if (onItsSide) std::swap(result.density.across, result.density.down);
  return result;
}

void layOnWhite(const uint8_t* rgba, int32_t width, uint8_t* rgb) {
  for (int32_t x = 0; x < width; ++x, rgba += 4, rgb += 3) {
    for (int c = 0; c < 3; ++c) {
      rgb[c] = static_cast<uint8_t>((rgba[c] * rgba[3] + 255 * (255 - rgba[3]) + 127) / 255);
    }
  }
}

Picture onWhite(Picture picture) {
  if (!picture.hasAlpha()) return picture;
  Picture opaque(picture.width(), picture.height(), 3);
  for (int32_t y = 0; y < picture.height(); ++y) {
    layOnWhite(picture.row(y), picture.width(), opaque.row(y));
  }
  takeMetadata(opaque, std::move(picture));
  return opaque;
}

Picture scaled(const Picture& picture, int32_t width, int32_t height) {
  return scaledDown(scaledAcross(picture, width), height);
}

Picture maskOf(const Picture& picture) {
  const int channels = picture.channels();
  bool transparent = false;
  for (int32_t y = 0; channels == 4 && y < picture.height() && !transparent; ++y) {
    const uint8_t* in = picture.row(y);
    for (int32_t x = 0; x < picture.width() && !transparent; ++x) transparent = in[x * 4 + 3] < 255;
  }
  Picture mask(picture.width(), picture.height(), 1);
  for (int32_t y = 0; y < picture.height(); ++y) {
    const uint8_t* in = picture.row(y);
    uint8_t* out = mask.row(y);
    for (int32_t x = 0; x < picture.width(); ++x, in += channels) {
      out[x] = transparent ? in[3] : lumaOf(in);
    }
  }
  return mask;
}

void mixWithSource(Picture& result, const Picture& source, int strength, const Picture* mask) {
  constexpr int kFull = 100 * 255;
  const int channels = result.channels();
  for (int32_t y = 0; y < result.height(); ++y) {
    uint8_t* out = result.row(y);
    const uint8_t* in = source.row(y);
    for (int32_t x = 0; x < result.width(); ++x) {
      const int share = strength * (mask ? mask->row(y)[x] : 255);
      for (int c = 0; c < channels; ++c, ++out, ++in) {
        *out = static_cast<uint8_t>((*in * (kFull - share) + *out * share + kFull / 2) / kFull);
      }
    }
  }
}

}  // namespace qpx::tool
