// Headers of YUV4MPEG2 streams (.y4m): one line of text in front of the stream and one in front of
// each frame, whose planes Y, U and V follow without gaps.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "pixel_format.h"

namespace qpx::tool {

inline constexpr std::string_view kY4mMagic = "YUV4MPEG2";

// Longer lines are refused.
inline constexpr size_t kMaxY4mLine = 4096;

struct Y4mHeader {
  int32_t width = 0;
  int32_t height = 0;
  const PixelFormat* format = nullptr;  // i420, i422, i444, i411 or grey
  std::string chroma;                   // behind C; says where the chroma of i420 lies
  std::string rate = "25:1";            // behind F: frames a second
  std::string interlacing = "p";        // behind I
  int64_t aspectAcross = 0;             // behind A: shape of a pixel; 0:0 is unknown
  int64_t aspectDown = 0;
  bool rangeStated = false;
  bool fullRange = false;
};

// From the first line, without its line feed. Parameters of applications (X) are dropped, but for
// the range of the samples. Throws RunError for a header that is broken, or one of samples that qpx
// does not take.
Y4mHeader parseY4mHeader(std::string_view line);

// With the line feed.
std::string y4mHeaderLine(const Y4mHeader& header);

// The parameters of a frame, with the space in front of them where there are any. Throws RunError
// for a line that is no frame's.
std::string parseY4mFrameLine(std::string_view line);

// Whether a stream can hold frames of this format.
bool fitsY4m(const PixelFormat& format);

// The name that a stream gives to a format.
std::string y4mChromaOf(const PixelFormat& format);

// The shape of a pixel where a picture is stretched from one size to another.
void stretchAspect(Y4mHeader& header, int32_t fromWidth, int32_t fromHeight, int32_t toWidth,
                   int32_t toHeight);

}  // namespace qpx::tool
