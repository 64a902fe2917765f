#include "toolkit/png_files.h"

#include <png.h>
#include <zlib.h>

#include <algorithm>

#include "support/picture.h"

namespace qpx::testing {
namespace {

void append(png_structp png, png_bytep bytes, size_t size) {
  auto* const file = static_cast<std::vector<uint8_t>*>(png_get_io_ptr(png));
  file->insert(file->end(), bytes, bytes + size);
}

void setChunks(png_structp png, png_infop info, const PngPicture& picture) {
  png_set_IHDR(png, info, static_cast<uint32_t>(picture.width),
               static_cast<uint32_t>(picture.height), picture.kind.depth, picture.kind.colorType,
               picture.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  std::vector<png_color> colors;
  for (size_t i = 0; i + 2 < picture.palette.size(); i += 3) {
    colors.push_back({picture.palette[i], picture.palette[i + 1], picture.palette[i + 2]});
  }
  if (!colors.empty()) png_set_PLTE(png, info, colors.data(), static_cast<int>(colors.size()));
  if (!picture.alphas.empty()) {
    png_set_tRNS(png, info, picture.alphas.data(), static_cast<int>(picture.alphas.size()),
                 nullptr);
  }
  if (picture.xResolution != 0) {
    png_set_pHYs(png, info, picture.xResolution, picture.yResolution, PNG_RESOLUTION_METER);
  }
  if (picture.sRgbIntent >= 0) png_set_sRGB(png, info, picture.sRgbIntent);
}

// Rows as the file stores them.
std::vector<uint8_t> packedRow(const PngPicture& picture, int32_t y) {
  std::vector<uint8_t> row;
  const int depth = picture.kind.depth;
  uint32_t pending = 0;
  int pendingBits = 0;
  for (int32_t x = 0; x < picture.width; ++x) {
    for (int c = 0; c < picture.channels(); ++c) {
      pending = pending << depth | picture.sample(x, y, c);
      pendingBits += depth;
      for (; pendingBits >= 8; pendingBits -= 8) {
        row.push_back(static_cast<uint8_t>(pending >> (pendingBits - 8)));
      }
    }
  }
  if (pendingBits > 0) row.push_back(static_cast<uint8_t>(pending << (8 - pendingBits)));
  return row;
}

void putWord(uint8_t* to, uint32_t value) {
  for (int i = 0; i < 4; ++i) to[i] = static_cast<uint8_t>(value >> (24 - 8 * i));
}

}  // namespace

const std::vector<PngKind>& pngKinds() {
  static const std::vector<PngKind> kKinds = {{0, 1}, {0, 2},  {0, 4},  {0, 8}, {0, 16},
                                              {2, 8}, {2, 16}, {3, 1},  {3, 2}, {3, 4},
                                              {3, 8}, {4, 8},  {4, 16}, {6, 8}, {6, 16}};
  return kKinds;
}

PngPicture::PngPicture(PngKind ofKind, int32_t w, int32_t h, bool isInterlaced, uint64_t seed)
    : kind(ofKind), width(w), height(h), interlaced(isInterlaced) {
  Random random(seed);
  const size_t count =
      static_cast<size_t>(width) * static_cast<size_t>(height) * static_cast<size_t>(channels());
  for (size_t i = 0; i < count; ++i) {
    const uint32_t value = random.between(0, 3) == 0 ? 0 : random.next();
    samples.push_back(static_cast<uint16_t>(value & ((1u << kind.depth) - 1)));
  }
  if (kind.colorType != PNG_COLOR_TYPE_PALETTE) return;
  paletteSize = 1 << kind.depth;
  for (int i = 0; i < 3 * paletteSize; ++i) palette.push_back(random.byte());
}

int PngPicture::channels() const {
  switch (kind.colorType) {
    case 2:
      return 3;
    case 4:
      return 2;
    case 6:
      return 4;
    default:
      return 1;
  }
}

uint16_t PngPicture::sample(int32_t x, int32_t y, int channel) const {
  const size_t at = static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x);
  return samples[at * static_cast<size_t>(channels()) + static_cast<size_t>(channel)];
}

std::vector<uint8_t> PngPicture::file() const {
  std::vector<uint8_t> bytes;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  png_set_write_fn(png, &bytes, append, [](png_structp) {});
  setChunks(png, info, *this);
  png_write_info(png, info);
  const int passes = png_set_interlace_handling(png);
  for (int pass = 0; pass < passes; ++pass) {
    for (int32_t y = 0; y < height; ++y) png_write_row(png, packedRow(*this, y).data());
  }
  png_write_end(png, info);
  png_destroy_write_struct(&png, &info);
  return bytes;
}

uint32_t PngPicture::bits() const {
  return static_cast<uint32_t>(std::min(kind.depth, 8) * channels());
}

uint32_t PngPicture::pixel(int32_t x, int32_t y, bool bgr) const {
  uint32_t value = 0;
  for (int c = 0; c < channels(); ++c) {
    const bool swapped = bgr && channels() >= 3 && c != 3;
    const uint32_t s = sample(x, y, swapped ? 2 - c : c);
    value = value << std::min(kind.depth, 8) | (kind.depth == 16 ? s >> 8 : s);
  }
  return value;
}

int PngPicture::passOf(int32_t x, int32_t y) const {
  static constexpr int kAdam7[8][8] = {{1, 6, 4, 6, 2, 6, 4, 6}, {7, 7, 7, 7, 7, 7, 7, 7},
                                       {5, 6, 5, 6, 5, 6, 5, 6}, {7, 7, 7, 7, 7, 7, 7, 7},
                                       {3, 6, 4, 6, 3, 6, 4, 6}, {7, 7, 7, 7, 7, 7, 7, 7},
                                       {5, 6, 5, 6, 5, 6, 5, 6}, {7, 7, 7, 7, 7, 7, 7, 7}};
  return interlaced ? kAdam7[y % 8][x % 8] : 1;
}

std::ostream& operator<<(std::ostream& out, const PngPicture& picture) {
  return out << "colour type " << picture.kind.colorType << ", depth " << picture.kind.depth << ", "
             << picture.width << "x" << picture.height
             << (picture.interlaced ? ", interlaced" : "");
}

uint32_t pixelAt(const uint8_t* row, uint32_t bits, int32_t x) {
  uint32_t value = 0;
  for (uint32_t i = 0; i < bits; ++i) {
    const size_t bit = static_cast<size_t>(x) * bits + i;
    value = value << 1 | (row[bit / 8] >> (7 - bit % 8) & 1u);
  }
  return value;
}

void putPixel(uint8_t* row, uint32_t bits, int32_t x, uint32_t value) {
  for (uint32_t i = 0; i < bits; ++i) {
    const size_t bit = static_cast<size_t>(x) * bits + i;
    const uint32_t mask = 0x80u >> bit % 8;
    const bool set = (value >> (bits - 1 - i) & 1) != 0;
    row[bit / 8] = static_cast<uint8_t>(set ? row[bit / 8] | mask : row[bit / 8] & ~mask);
  }
}

ByteStream::ByteStream(std::vector<uint8_t> bytes)
    : bytes_(std::move(bytes)),
      stream_(MStreamOpenFromMemoryBlock(bytes_.data(), static_cast<int32_t>(bytes_.size()))) {}

ByteStream::~ByteStream() { MStreamClose(stream_); }

std::vector<uint8_t> joined(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b) {
  std::vector<uint8_t> bytes(a.size() + b.size());
  std::copy(b.begin(), b.end(), std::copy(a.begin(), a.end(), bytes.begin()));
  return bytes;
}

std::vector<uint8_t> chunk(const std::string& type, const std::vector<uint8_t>& data) {
  const size_t size = data.size();
  std::vector<uint8_t> bytes(size + 12);
  putWord(&bytes[0], static_cast<uint32_t>(size));
  std::copy_n(type.begin(), 4, &bytes[4]);
  std::copy_n(data.begin(), size, &bytes[8]);
  putWord(&bytes[size + 8],
          static_cast<uint32_t>(crc32(0, &bytes[4], static_cast<uInt>(size + 4))));
  return bytes;
}

std::vector<uint8_t> pngStart(uint32_t width, uint32_t height, uint8_t depth, uint8_t colorType) {
  std::vector<uint8_t> header(13);
  putWord(&header[0], width);
  putWord(&header[4], height);
  header[8] = depth;
  header[9] = colorType;
  return joined({137, 'P', 'N', 'G', 13, 10, 26, 10}, chunk("IHDR", header));
}

}  // namespace qpx::testing
