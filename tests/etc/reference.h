// The codec once more, slowly and step by step: what the tests hold the library against. Nothing
// here is shared with it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace qpx::reference {

// R, G, B in rows without padding.
struct Image {
  int width = 0;
  int height = 0;
  std::vector<uint8_t> rgb;

  Image() = default;
  Image(int w, int h)
      : width(w), height(h), rgb(static_cast<size_t>(w) * static_cast<size_t>(h) * 3) {}
  uint8_t* at(int x, int y) {
    return rgb.data() +
           (static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)) * 3;
  }
  const uint8_t* at(int x, int y) const { return const_cast<Image*>(this)->at(x, y); }
  bool operator==(const Image&) const = default;
};

struct Words {
  uint32_t word0 = 0;
  uint32_t word1 = 0;
  bool operator==(const Words&) const = default;
};

using Color = std::array<int, 3>;
using Mean = std::array<float, 3>;

// Where a half block lies and how many pixels it has across and down.
struct Half {
  int x, y, across, down;
};

struct Choice {
  int table = 0;
  std::array<int, 8> indices{};  // of the format, pixels down the columns
  int error = 0;
};

Mean average(const Image& image, const Half& half);
Color nearestLevels(const Mean& mean, int bits);
Choice withTable(const Image& image, const Half& half, const Color& base, int table);
Choice withBestTable(const Image& image, const Half& half, const Color& base);

Words compressFast(const Image& image, int x, int y);
Words compressFlipMean(const Image& image, int x, int y);
Words compressFlipNearest(const Image& image, int x, int y);
Words compressSlow(const Image& image, int x, int y);

void decompress(const Words& words, Image& image, int x, int y);
int blockError(const Image& a, const Image& b, int x, int y);

Words blend(const Words& overlay, const Words& base, int weight0, int weight1);

}  // namespace qpx::reference
