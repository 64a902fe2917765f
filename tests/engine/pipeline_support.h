// Pictures, engines and band streams of the pipeline tests, and the slow model that they are held
// against.
#pragma once

#include <qpx/engine.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace qpx::testing {

// Packed pixels in a block of exactly their size, so that the address sanitizer sees any excess.
struct Picture {
  int32_t width = 0;
  int32_t height = 0;
  int32_t pixelBytes = 3;
  ptrdiff_t pitch = 0;
  std::vector<uint8_t> bytes;

  Picture() = default;
  Picture(int32_t width, int32_t height, int32_t pixelBytes);
  static Picture random(int32_t width, int32_t height, int32_t pixelBytes, uint32_t seed);

  uint8_t* at(int32_t x, int32_t y) { return bytes.data() + y * pitch + ptrdiff_t{x} * pixelBytes; }
  const uint8_t* at(int32_t x, int32_t y) const {
    return bytes.data() + y * pitch + ptrdiff_t{x} * pixelBytes;
  }
  // Planes that address the pixel (x, y), wherever that is.
  QPXPlaneSet planes(int32_t x, int32_t y);
  bool operator==(const Picture&) const = default;
};

// First difference as text for a failed test, or "equal".
std::string difference(const Picture& expected, const Picture& actual);

// The effects over a whole picture, one after the other, pixel by pixel. Rows above `top` are taken
// for copies of row `top`, as a stream that begins there has them.
Picture applyModel(const std::vector<uint32_t>& effects, const Picture& source, int32_t top = 0);

constexpr uint32_t formatOf(int32_t pixelBytes) {
  return pixelBytes == 2 ? 0x15000454u : pixelBytes == 3 ? 0x16000777u : 0x37001777u;
}

struct Size {
  int32_t width;
  int32_t height;
};

// An engine that is destroyed with its scope.
class Engine {
 public:
  Engine(uint32_t format, Size in, const std::vector<uint32_t>& effects);
  Engine(uint32_t format, Size out, Size in, const std::vector<QPXEffectItem>& items);
  Engine(uint32_t format, Size out, Size in, Size second, Size mask,
         const std::vector<QPXEffectItem>& items);
  ~Engine() { QPXDestroy(engine_); }
  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;

  int32_t result() const { return result_; }
  QPXEngine* get() const { return engine_; }
  QPXStage& head() const { return **reinterpret_cast<QPXStage**>(engine_); }

 private:
  void create(uint32_t format, Size out, Size in, const Size* second, const Size* mask,
              const std::vector<QPXEffectItem>& items);

  QPXEngine* engine_ = nullptr;
  int32_t result_ = -1;
};

// Rows where one band ends and the next begins; the last is the height.
using Cuts = std::vector<int32_t>;
Cuts equalBands(int32_t height, int32_t rows);
Cuts randomBands(int32_t height, int32_t most, std::mt19937& random);

// Feeds a picture band by band and gathers the rows that come back, checking that they follow one
// another without gap and end with the picture.
Picture runBands(QPXEngine* engine, Picture& source, const Cuts& cuts);

}  // namespace qpx::testing
