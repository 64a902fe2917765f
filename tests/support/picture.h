#pragma once

#include <qpx/engine.h>

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace qpx::testing {

// A pixel format that engines take, and the one QPX_TAKES_* group that it belongs to.
struct FormatCase {
  uint32_t format;
  const char* name;
  uint32_t group;
};

// At least one format of every group, with the odd divisors and colorimetry variants.
std::span<const FormatCase> formatCases();
const FormatCase& formatCase(uint32_t format);

// Small, fast and the same everywhere, unlike the generators of the C++ library.
class Random {
 public:
  explicit Random(uint64_t seed) : state_(seed * 2 + 1) {}
  uint32_t next();
  int32_t between(int32_t low, int32_t high);  // both ends included
  uint8_t byte() { return static_cast<uint8_t>(next() >> 24); }

 private:
  uint64_t state_;
};

struct Rgba {
  uint8_t r, g, b, a;
  bool operator==(const Rgba&) const = default;
};

// One place where two pictures differ; x counts bytes of the row.
struct Difference {
  int plane;
  int32_t x, y;
  int expected, actual;
};
std::string describe(const Difference& difference);

// How the planes of a picture lie in memory.
enum class Placement {
  guarded,  // odd pitches and unaligned starts, known bytes all around: writes outside show
  exact     // unaligned blocks that end with the last sample: asan sees reads behind it
};

// A picture of any format that engines take, each plane in a block of its own. NV21 and NV12 have
// two planes here: both chroma pointers lie in the second.
class Picture {
 public:
  Picture(uint32_t format, int32_t width, int32_t height, Placement placement);
  Picture(const Picture& other);
  Picture& operator=(const Picture&) = delete;

  uint32_t format() const { return format_; }
  int32_t width() const { return width_; }
  int32_t height() const { return height_; }

  // Gradients with noise over them, in all samples. A picture of the same seed and size has the
  // same colours in all RGB formats, up to their depth, and the same samples in all YUV formats of
  // the same divisors.
  void paint(uint64_t seed);
  void fill(uint8_t value);

  // Record with planes that address the origin.
  MBitmap bitmap() const;
  // Planes that address the pixel (left, top), as the processing calls take them.
  QPXPlaneSet planesAt(int32_t left, int32_t top) const;

  // Pixels of packed RGB, as the bits of each field.
  Rgba rgb(int32_t x, int32_t y) const;
  // Samples of planar and semi-planar YUV and of grey: component 0 to 2 at a pixel.
  int yuv(int component, int32_t x, int32_t y) const;

  // First differing sample; bytes that are no samples are ignored.
  std::optional<Difference> firstDifference(const Picture& actual) const;
  // First byte, guards and padding included, that differs from `before` outside `rect`, whose
  // chroma is that of all blocks it touches.
  std::optional<Difference> firstWriteOutside(const Picture& before, const MRect& rect) const;

 private:
  struct Plane {
    int32_t rowBytes = 0;
    int32_t rows = 0;
    int32_t pitch = 0;
    size_t start = 0;
    size_t blockBytes = 0;
    std::unique_ptr<uint8_t[]> block;

    uint8_t* row(int32_t y) const { return block.get() + start + ptrdiff_t{pitch} * y; }
  };

  void shapePlanes();
  void allocate(Plane& plane, int index);
  void paintRgb(uint64_t seed);
  void paintYuv(uint64_t seed);
  void putRgb(int32_t x, int32_t y, const Rgba& pixel);
  uint8_t* sample(int component, int32_t column, int32_t row) const;
  MRect touchedBytes(int plane, const MRect& rect) const;
  bool semiPlanar() const;

  uint32_t format_;
  int32_t width_;
  int32_t height_;
  Placement placement_;
  PixInfo pix_ = {};
  int planeCount_ = 1;
  std::array<Plane, 3> planes_;
};

}  // namespace qpx::testing
