#include "png_file.h"

#include <png.h>
#include <zlib.h>

#include <csetjmp>
#include <cstdio>

namespace qpx::drawing {
namespace {

struct Packing {
  int filters;
  int strategy;
};

// Adaptive filters suit gradients, no filter suits flat shapes and lattices: which packs a texture
// best is cheaper to try than to guess.
constexpr Packing kPackings[] = {{PNG_ALL_FILTERS, Z_FILTERED},
                                 {PNG_ALL_FILTERS, Z_DEFAULT_STRATEGY},
                                 {PNG_FILTER_NONE, Z_DEFAULT_STRATEGY},
                                 {PNG_FILTER_UP, Z_FILTERED}};

void append(png_structp png, png_bytep data, png_size_t length) {
  auto* out = static_cast<std::vector<uint8_t>*>(png_get_io_ptr(png));
  out->insert(out->end(), data, data + length);
}

void flush(png_structp) {}

int colorType(Channels channels) {
  switch (channels) {
    case Channels::rgba:
      return PNG_COLOR_TYPE_RGB_ALPHA;
    case Channels::rgb:
      return PNG_COLOR_TYPE_RGB;
    case Channels::grey:
      return PNG_COLOR_TYPE_GRAY;
    case Channels::palette:
      break;
  }
  return PNG_COLOR_TYPE_PALETTE;
}

int sampleCount(Channels channels) {
  return channels == Channels::rgba ? 4 : channels == Channels::rgb ? 3 : 1;
}

std::vector<uint8_t> pack(const std::vector<uint8_t>& samples, const Canvas& canvas,
                          Channels channels, const Packing& packing, int level) {
  std::vector<uint8_t> file;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png == nullptr ? nullptr : png_create_info_struct(png);
  if (info == nullptr || setjmp(png_jmpbuf(png)) != 0) {
    png_destroy_write_struct(&png, &info);
    return {};
  }
  png_set_write_fn(png, &file, append, flush);
  png_set_IHDR(png, info, static_cast<png_uint_32>(canvas.width()),
               static_cast<png_uint_32>(canvas.height()), 8, colorType(channels),
               PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_color palette[256];
  if (channels == Channels::palette) {
    // Kernels read the indices as levels, so a viewer had better see the same levels.
    for (int i = 0; i < 256; ++i) {
      const auto tone = static_cast<png_byte>(i);
      palette[i] = {tone, tone, tone};
    }
    png_set_PLTE(png, info, palette, 256);
  }
  png_set_compression_level(png, level);
  png_set_compression_mem_level(png, 9);
  png_set_compression_strategy(png, packing.strategy);
  png_set_filter(png, PNG_FILTER_TYPE_BASE, packing.filters);
  png_write_info(png, info);
  const size_t pitch =
      static_cast<size_t>(canvas.width()) * static_cast<size_t>(sampleCount(channels));
  for (int y = 0; y < canvas.height(); ++y) {
    png_write_row(png, samples.data() + pitch * static_cast<size_t>(y));
  }
  png_write_end(png, nullptr);
  png_destroy_write_struct(&png, &info);
  return file;
}

}  // namespace

bool writePng(const std::string& path, const Canvas& canvas, Channels channels, bool draft) {
  const std::vector<uint8_t> samples = toBytes(canvas, sampleCount(channels));
  std::vector<uint8_t> smallest;
  for (const Packing& packing : kPackings) {
    if (draft && !smallest.empty()) {
      break;
    }
    std::vector<uint8_t> file = pack(samples, canvas, channels, packing, draft ? 3 : 9);
    if (!file.empty() && (smallest.empty() || file.size() < smallest.size())) {
      smallest.swap(file);
    }
  }
  return !smallest.empty() && writeFile(path, smallest);
}

bool writeFile(const std::string& path, const std::vector<uint8_t>& bytes) {
  std::FILE* file = std::fopen(path.c_str(), "wb");
  bool written =
      file != nullptr && std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
  written = file != nullptr && std::fclose(file) == 0 && written;
  if (!written) {
    std::fprintf(stderr, "%s: cannot be written; does its folder exist?\n", path.c_str());
  }
  return written;
}

}  // namespace qpx::drawing
