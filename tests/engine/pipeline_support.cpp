#include "engine/pipeline_support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "engine/test_effects.h"

namespace qpx::testing {
namespace {

constexpr uint8_t kUntouched = 0xC3;

uint8_t modelSample(uint32_t effect, const Picture& source, int32_t top, int32_t x, int32_t y,
                    int32_t c) {
  if (effect == kUpsideDown) return source.at(x, source.height - 1 - y)[c];
  if (effect == kCopy1 || effect == kCopy3) return source.at(x, y)[c];
  const Neighbourhood reach = neighbourhoodOf(effect);
  int sum = 0;
  for (int dy = -reach.down; dy <= reach.down; ++dy) {
    for (int dx = -reach.across; dx <= reach.across; ++dx) {
      const int32_t row = std::min(std::max(y + dy, top), source.height - 1);
      const int32_t column = std::min(std::max(x + dx, 0), source.width - 1);
      sum += weightOf(dy, dx) * source.at(column, row)[c];
    }
  }
  return static_cast<uint8_t>(sum);
}

MBitmap imageOf(uint32_t format, Size size) {
  MBitmap image = {};
  image.format = format;
  image.width = size.width;
  image.height = size.height;
  return image;
}

}  // namespace

Picture::Picture(int32_t w, int32_t h, int32_t step)
    : width(w),
      height(h),
      pixelBytes(step),
      pitch(ptrdiff_t{w} * step),
      bytes(static_cast<size_t>(pitch * h), kUntouched) {}

Picture Picture::random(int32_t width, int32_t height, int32_t pixelBytes, uint32_t seed) {
  Picture picture(width, height, pixelBytes);
  std::mt19937 random(seed);
  for (uint8_t& byte : picture.bytes) byte = static_cast<uint8_t>(random());
  return picture;
}

QPXPlaneSet Picture::planes(int32_t x, int32_t y) {
  QPXPlaneSet set = {};
  set.plane[0] = at(x, y);
  set.pitch[0] = static_cast<int32_t>(pitch);
  return set;
}

std::string difference(const Picture& expected, const Picture& actual) {
  std::ostringstream text;
  if (expected.width != actual.width || expected.height != actual.height) return "sizes differ";
  for (int32_t y = 0; y < expected.height; ++y) {
    for (ptrdiff_t i = 0; i < expected.width * expected.pixelBytes; ++i) {
      const int want = expected.at(0, y)[i];
      const int got = actual.at(0, y)[i];
      if (want == got) continue;
      text << "x " << i / expected.pixelBytes << ", y " << y << ", byte " << i % expected.pixelBytes
           << ": expected " << want << ", got " << got;
      return text.str();
    }
  }
  return "equal";
}

Picture applyModel(const std::vector<uint32_t>& effects, const Picture& source, int32_t top) {
  Picture current = source;
  for (const uint32_t effect : effects) {
    Picture next = current;
    for (int32_t y = top; y < source.height; ++y) {
      for (int32_t x = 0; x < source.width; ++x) {
        for (int32_t c = 0; c < source.pixelBytes; ++c) {
          next.at(x, y)[c] = modelSample(effect, current, top, x, y, c);
        }
      }
    }
    current = next;
  }
  return current;
}

Engine::Engine(uint32_t format, Size in, const std::vector<uint32_t>& effects) {
  std::vector<QPXEffectItem> items;
  for (const uint32_t id : effects) items.push_back({id, nullptr, 0});
  create(format, in, in, nullptr, nullptr, items);
}

Engine::Engine(uint32_t format, Size out, Size in, const std::vector<QPXEffectItem>& items) {
  create(format, out, in, nullptr, nullptr, items);
}

Engine::Engine(uint32_t format, Size out, Size in, Size second, Size mask,
               const std::vector<QPXEffectItem>& items) {
  create(format, out, in, second.width != 0 ? &second : nullptr, mask.width != 0 ? &mask : nullptr,
         items);
}

void Engine::create(uint32_t format, Size out, Size in, const Size* second, const Size* mask,
                    const std::vector<QPXEffectItem>& items) {
  const MBitmap outImage = imageOf(format, out);
  const MBitmap inImage = imageOf(format, in);
  const MBitmap secondImage = second != nullptr ? imageOf(format, *second) : MBitmap{};
  const MBitmap maskImage = mask != nullptr ? imageOf(QPX_FORMAT_GREY8, *mask) : MBitmap{};
  const QPXEffectList list = {items.data(), static_cast<uint32_t>(items.size()), 0};
  result_ = QPXCreateIn(&outImage, &inImage, second != nullptr ? &secondImage : nullptr,
                        mask != nullptr ? &maskImage : nullptr, &list, &engine_);
}

Cuts equalBands(int32_t height, int32_t rows) {
  Cuts cuts;
  for (int32_t row = rows; row < height; row += rows) cuts.push_back(row);
  cuts.push_back(height);
  return cuts;
}

Cuts randomBands(int32_t height, int32_t most, std::mt19937& random) {
  Cuts cuts;
  int32_t row = 0;
  while (row < height) {
    row = std::min(height, row + 1 + static_cast<int32_t>(random() % static_cast<uint32_t>(most)));
    cuts.push_back(row);
  }
  return cuts;
}

Picture runBands(QPXEngine* engine, Picture& source, const Cuts& cuts) {
  Picture result(source.width, source.height, source.pixelBytes);
  int32_t top = 0;
  int32_t finished = 0;
  for (const int32_t bottom : cuts) {
    MRect rect = {0, top, source.width, bottom};
    const QPXPlaneSet in = source.planes(0, top);
    const QPXPlaneSet out = result.planes(0, finished);
    EXPECT_EQ(QPXProcess(engine, &out, &in, &rect), 0) << "band " << top << " to " << bottom;
    EXPECT_EQ(rect.left, 0);
    EXPECT_EQ(rect.right, source.width);
    EXPECT_EQ(rect.top, finished) << "band " << top << " to " << bottom;
    EXPECT_GE(rect.bottom, rect.top);
    finished = rect.bottom;
    top = bottom;
  }
  EXPECT_EQ(finished, source.height);
  return result;
}

}  // namespace qpx::testing
