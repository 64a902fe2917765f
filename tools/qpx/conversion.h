// Pictures and frames from one format, size and orientation to another, by the library's post
// process.
#pragma once

#include <qpx/postprocess.h>
#include <qpx/types.h>

#include <cstdint>
#include <memory>
#include <optional>

#include "pixel_format.h"

namespace qpx::tool {

// What the samples of a YUV or grey format stand for: bits 12 and 13 of its code.
enum class Range { bt601, bt601Full, bt709, bt709Full };

// The bits of an orientation, as PostProcessOption has it: X and Y change places first, then the
// sides do.
inline constexpr uint32_t kExchanges = 1;
inline constexpr uint32_t kMirrorsAcross = 2;
inline constexpr uint32_t kMirrorsDown = 4;

bool isFull(Range range);

enum class Fit { stretch, crop, pad };

// One side of a conversion.
struct FrameShape {
  const PixelFormat* format = nullptr;
  int32_t width = 0;
  int32_t height = 0;
  Range range = Range::bt601;
};

struct ConversionOptions {
  Fit fit = Fit::stretch;
  uint32_t orientation = 0;
  bool bilinear = false;
  bool dither = false;
  bool widens = true;  // samples of narrow RGB fields, to the whole range
  int brightness = 0;
  int contrast = 0;
  int saturation = 0;
  int threads = 1;

  bool adjusts() const { return brightness != 0 || contrast != 0 || saturation != 0; }
};

// Up to `most`: a thread of its own does not pay for a small frame.
int worthwhileThreads(int32_t width, int32_t height, int most);

class Conversion {
 public:
  // Throws RunError for what cannot be converted.
  Conversion(const FrameShape& from, const FrameShape& to, const ConversionOptions& options);

  // The same without any wishes.
  Conversion(const FrameShape& from, const FrameShape& to, int threads);

  const FrameShape& target() const { return to_; }

  // Formats and sizes of the records are those of the shapes. A fourth byte that the source does
  // not have becomes 255; what a padded picture leaves free becomes black; a pair of packed 4:2:2
  // that has one pixel gets its luma twice; samples of narrow RGB fields have their top bits
  // repeated in the low ones, so that white is white.
  void run(const MBitmap& from, const MBitmap& to);

 private:
  struct Free {
    void operator()(PostProcessContext* context) const { MPPDestroy(context); }
  };
  using Context = std::unique_ptr<PostProcessContext, Free>;

  FrameShape openFirst(const FrameShape& from, const ConversionOptions& options);
  int32_t openContext(const FrameShape& source, const ConversionOptions& options);
  void convert(const MBitmap& from, const MBitmap& to) const;

  FrameShape to_;
  MRect inside_{};  // of the destination: what is not padding
  int threads_ = 1;
  bool wholeCalls_ = false;
  Context context_;
  // What it goes by way of, made by a conversion of its own.
  std::unique_ptr<Conversion> first_;
  std::optional<Frame> between_;
  const PixelFormat* narrow_ = nullptr;  // the format whose samples are then widened
};

}  // namespace qpx::tool
