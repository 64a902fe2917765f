// Runs of packed RGB: plain bytes in either order, and any other fields by their masks.
#include <cstring>

#include "toolkit/pixel_run.h"

namespace qpx {
namespace {

constexpr bool kReversed = true;

template <bool reversed>
void load24(const RunFormat& format, const QPXRowTable* rows, PixelRun& run) {
  const uint8_t* from = rows[0][run.y] + ptrdiff_t{run.x} * 3;
  format.rows().deinterleave3(from, run.count, reversed ? run.b : run.r, run.g,
                              reversed ? run.r : run.b);
  std::memset(run.a, 255, static_cast<size_t>(run.count));
}

template <bool reversed>
void store24(const RunFormat& format, const PixelRun& run, const QPXRowTable*,
             const QPXRowTable* rows) {
  uint8_t* to = rows[0][run.y] + ptrdiff_t{run.x} * 3;
  format.rows().interleave3(reversed ? run.b : run.r, run.g, reversed ? run.r : run.b, run.count,
                            to);
}

template <bool reversed>
void load32(const RunFormat& format, const QPXRowTable* rows, PixelRun& run) {
  const uint8_t* from = rows[0][run.y] + ptrdiff_t{run.x} * 4;
  format.rows().deinterleave4(from, run.count, reversed ? run.b : run.r, run.g,
                              reversed ? run.r : run.b, run.a);
}

template <bool reversed>
void store32(const RunFormat& format, const PixelRun& run, const QPXRowTable*,
             const QPXRowTable* rows) {
  uint8_t* to = rows[0][run.y] + ptrdiff_t{run.x} * 4;
  format.rows().interleave4(reversed ? run.b : run.r, run.g, reversed ? run.r : run.b, run.a,
                            run.count, to);
}

// Whole pixels first and then field by field, in loops that compilers turn into vector code.
using Pixels = uint32_t[kRunLength];

template <int kBytes>
void readPixels(const uint8_t* row, const PixelRun& run, Pixels& pixels) {
  const uint8_t* from = row + ptrdiff_t{run.x} * kBytes;
  for (int32_t i = 0; i < run.count; ++i, from += kBytes) pixels[i] = readPixel<kBytes>(from);
}

template <int kBytes>
void writePixels(const Pixels& pixels, const PixelRun& run, uint8_t* row) {
  uint8_t* to = row + ptrdiff_t{run.x} * kBytes;
  for (int32_t i = 0; i < run.count; ++i, to += kBytes) writePixel<kBytes>(pixels[i], to);
}

void loadField(const Pixels& pixels, const ColorField field, uint8_t* to, int32_t count) {
  if (field.size > 8) {
    for (int32_t i = 0; i < count; ++i) to[i] = field.load(pixels[i]);
  } else {
    for (int32_t i = 0; i < count; ++i) {
      to[i] = static_cast<uint8_t>(((pixels[i] & field.mask) >> field.pos) * field.repeat >>
                                   field.excess);
    }
  }
}

void storeField(const uint8_t* from, const ColorField field, Pixels& pixels, int32_t count) {
  const uint32_t others = ~field.mask;
  if (field.size > 8) {
    for (int32_t i = 0; i < count; ++i) {
      pixels[i] = (pixels[i] & others) | field.store(from[i], pixels[i]);
    }
  } else {
    for (int32_t i = 0; i < count; ++i) pixels[i] = (pixels[i] & others) | field.narrow(from[i]);
  }
}

template <int kBytes>
void loadFields(const RunFormat& format, const QPXRowTable* rows, PixelRun& run) {
  const ColorFields& fields = format.fields();
  Pixels pixels;
  readPixels<kBytes>(rows[0][run.y], run, pixels);
  loadField(pixels, fields.red, run.r, run.count);
  loadField(pixels, fields.green, run.g, run.count);
  loadField(pixels, fields.blue, run.b, run.count);
  std::memset(run.a, 255, static_cast<size_t>(run.count));
}

template <int kBytes>
void storeFields(const RunFormat& format, const PixelRun& run, const QPXRowTable* source,
                 const QPXRowTable* rows) {
  const ColorFields& fields = format.fields();
  Pixels pixels;
  readPixels<kBytes>(source[0][run.y], run, pixels);
  storeField(run.r, fields.red, pixels, run.count);
  storeField(run.g, fields.green, pixels, run.count);
  storeField(run.b, fields.blue, pixels, run.count);
  writePixels<kBytes>(pixels, run, rows[0][run.y]);
}

}  // namespace

void RunFormat::choosePacked() {
  const int32_t bytes = pix_.bytesPerSample[0];
  fields_ = ColorFields(pix_.mask, bytes);
  const bool wholeBytes = fields_.bytesRgb() || fields_.bytesBgr();
  const bool reversed = fields_.bytesBgr();
  if (bytes == 2) {
    load_ = loadFields<2>;
    store_ = storeFields<2>;
  } else if (bytes == 3) {
    load_ = !wholeBytes ? loadFields<3> : reversed ? load24<kReversed> : load24<!kReversed>;
    store_ = !wholeBytes ? storeFields<3> : reversed ? store24<kReversed> : store24<!kReversed>;
  } else if (bytes == 4) {
    load_ = !wholeBytes ? loadFields<4> : reversed ? load32<kReversed> : load32<!kReversed>;
    store_ = !wholeBytes ? storeFields<4> : reversed ? store32<kReversed> : store32<!kReversed>;
  }
}

}  // namespace qpx
