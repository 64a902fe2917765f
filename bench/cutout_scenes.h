// Pictures of 12 megapixels to cut something out of, with an object in their middle.
#pragma once

#include <qpx/types.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace qpx::bench {

class Scene {
 public:
  static constexpr int32_t kWidth = 4000, kHeight = 3000;

  explicit Scene(std::string name) : name_(std::move(name)), bytes_(size_t{3} * kWidth * kHeight) {}

  const std::string& name() const { return name_; }
  uint8_t* pixel(int32_t x, int32_t y) {
    return bytes_.data() + 3 * (static_cast<size_t>(y) * kWidth + static_cast<size_t>(x));
  }
  MBitmap record() {
    return {
        QPX_FORMAT_BGR24, kWidth, kHeight, {3 * kWidth, 0, 0}, {bytes_.data(), nullptr, nullptr}};
  }

 private:
  std::string name_;
  std::vector<uint8_t> bytes_;
};
using ScenePtr = std::shared_ptr<Scene>;

// A disc of another shade, lit from a side, over a ground that goes from light to dark, all of it
// as soft as what a lens draws at this size, with a little noise.
ScenePtr smoothScene();

// Texture of all sizes on the disc and on the ground, in shades that both share: no colour and no
// edge tells them apart by itself.
ScenePtr busyScene();

// A binary PPM file of 8 bits a sample, enlarged or reduced to the size. Ends the program where it
// cannot be read.
ScenePtr sceneOf(const char* file);

}  // namespace qpx::bench
