// JPEG and PNG files made and read without the tool's own code.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace qpx::test {

// Interleaved samples of 8 bits.
struct Image {
  int width = 0;
  int height = 0;
  int channels = 0;
  std::vector<uint8_t> samples;
  std::string exif;  // TIFF data
  std::string icc;

  const uint8_t* at(int x, int y) const {
    return samples.data() +
           (static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)) *
               static_cast<size_t>(channels);
  }
};

// Every sample by a function of x, y and channel.
Image makeImage(int width, int height, int channels,
                const std::function<int(int x, int y, int channel)>& sample);

// Samples without a pattern, the same for the same seed.
Image randomImage(int width, int height, int channels, uint32_t seed);

struct JpegOptions {
  int quality = 100;
  bool progressive = false;
  bool adobe = false;  // with 4 channels: YCCK with an Adobe marker instead of plain CMYK
};

// 1 channel grey, 3 RGB, 4 inks.
std::string jpegFile(const Image& image, const JpegOptions& options = {});

struct PngOptions {
  int depth = 8;  // 16: every sample is followed by a low byte of 0xFF
  bool interlaced = false;
  bool palette = false;  // one channel: indices into a palette of (i, 255 - i, i / 2)
  bool keyed = false;    // palette: index i has alpha i
};

// 1 grey, 2 grey with alpha, 3 RGB, 4 RGBA.
std::string pngFile(const Image& image, const PngOptions& options = {});

// By content; RGB or RGBA. An empty image for what cannot be read.
Image readImage(const std::string& file);

// The horizontal and vertical sampling factors of the first component.
std::pair<int, int> lumaSampling(const std::string& jpeg);

// Intel order, one directory with these entries: orientation as 16 bits, and behind it a second
// directory (thumbnail) where `thumbnail` is set.
std::string exifWithOrientation(int orientation, bool thumbnail = false);

// A profile of 132 bytes and more whose header passes for an RGB display profile.
std::string rgbProfile(size_t bytes);

}  // namespace qpx::test
