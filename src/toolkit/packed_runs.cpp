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

template <int kBytes>
void loadFields(const RunFormat& format, const QPXRowTable* rows, PixelRun& run) {
  const ColorFields fields = format.fields();
  const uint8_t* from = rows[0][run.y] + ptrdiff_t{run.x} * kBytes;
  for (int32_t i = 0; i < run.count; ++i) {
    const uint32_t pixel = readPixel<kBytes>(from + ptrdiff_t{i} * kBytes);
    run.r[i] = fields.red.load(pixel);
    run.g[i] = fields.green.load(pixel);
    run.b[i] = fields.blue.load(pixel);
  }
  std::memset(run.a, 255, static_cast<size_t>(run.count));
}

template <int kBytes>
void storeFields(const RunFormat& format, const PixelRun& run, const QPXRowTable* source,
                 const QPXRowTable* rows) {
  const ColorFields fields = format.fields();
  const uint8_t* from = source[0][run.y] + ptrdiff_t{run.x} * kBytes;
  uint8_t* to = rows[0][run.y] + ptrdiff_t{run.x} * kBytes;
  for (int32_t i = 0; i < run.count; ++i, from += kBytes, to += kBytes) {
    const uint32_t old = readPixel<kBytes>(from);
    writePixel<kBytes>((old & fields.spare) | fields.red.store(run.r[i], old) |
                           fields.green.store(run.g[i], old) | fields.blue.store(run.b[i], old),
                       to);
  }
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
