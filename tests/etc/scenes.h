// Pictures to compress, and the calls that the tests of whole images share.
#pragma once

#include <qpx/etc.h>

#include <cstdint>
#include <string>
#include <vector>

#include "etc/reference.h"

namespace qpx::etc {

using reference::Image;

struct Scene {
  const char* name;
  Image (*draw)(int width, int height);
};

// Smooth light with noise and hard edges, noise alone, one colour, few extreme colours, saturated
// ramps that reach both ends of the range.
const std::vector<Scene>& scenes();

// Soft shapes, texture and grain, as a camera would see them.
Image photograph(int width, int height);

MBitmap recordOf(Image& image, uint32_t format = QPX_FORMAT_RGB24);

// Blocks without a meaning.
std::vector<uint8_t> randomBlocks(int width, int height, uint64_t seed);
MBitmap recordOf(std::vector<uint8_t>& blocks, int width, int height);

std::vector<uint8_t> compressed(Image image, int quality);
Image decompressed(std::vector<uint8_t> blocks, int width, int height);

reference::Words wordsAt(const std::vector<uint8_t>& blocks, int width, int x, int y);

// Signal to noise in decibels.
double psnr(const Image& a, const Image& b);

}  // namespace qpx::etc
