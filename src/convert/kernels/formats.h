// The formats that fast conversions know, as sets: one bit each. RGB formats are named by their
// bytes in memory, 16-bit ones by their fields from the top.
#pragma once

#include <qpx/convert_record.h>

#include <cstdint>

namespace qpx::convert::fast {

using FormatSet = uint32_t;

inline constexpr FormatSet kInBgr24 = 1u << 0;
inline constexpr FormatSet kInRgb24 = 1u << 1;
inline constexpr FormatSet kInBgr32 = 1u << 2;
inline constexpr FormatSet kInRgb32 = 1u << 3;
inline constexpr FormatSet kInRgb565 = 1u << 4;
inline constexpr FormatSet kInBgr565 = 1u << 5;
inline constexpr FormatSet kInGrey = 1u << 6;
inline constexpr FormatSet kInI420 = 1u << 7;
inline constexpr FormatSet kInI422V = 1u << 8;
inline constexpr FormatSet kInI422H = 1u << 9;
inline constexpr FormatSet kInI444 = 1u << 10;
inline constexpr FormatSet kInYv12 = 1u << 11;
inline constexpr FormatSet kInYv422V = 1u << 12;
inline constexpr FormatSet kInYv422H = 1u << 13;
inline constexpr FormatSet kInYv444 = 1u << 14;
inline constexpr FormatSet kInNv21 = 1u << 15;
inline constexpr FormatSet kInNv12 = 1u << 16;
inline constexpr FormatSet kInNv61 = 1u << 17;
inline constexpr FormatSet kInNv16 = 1u << 18;
inline constexpr FormatSet kInYuyv = 1u << 19;
inline constexpr FormatSet kInYvyu = 1u << 20;
inline constexpr FormatSet kInUyvy = 1u << 21;
inline constexpr FormatSet kInVyuy = 1u << 22;

inline constexpr FormatSet kIn24 = kInBgr24 | kInRgb24;
inline constexpr FormatSet kIn32 = kInBgr32 | kInRgb32;
inline constexpr FormatSet kIn16 = kInRgb565 | kInBgr565;
inline constexpr FormatSet kInRgb = kIn24 | kIn32 | kIn16;
inline constexpr FormatSet kInRedFirst = kInRgb24 | kInRgb32 | kInBgr565;
inline constexpr FormatSet kIn420 = kInI420 | kInYv12;
inline constexpr FormatSet kIn422Planar = kInI422H | kInYv422H | kInI422V | kInYv422V;
inline constexpr FormatSet kIn444 = kInI444 | kInYv444;
inline constexpr FormatSet kInPlanar = kIn420 | kIn422Planar | kIn444;
inline constexpr FormatSet kInNv420 = kInNv21 | kInNv12;
inline constexpr FormatSet kInNv422 = kInNv61 | kInNv16;
inline constexpr FormatSet kInNv = kInNv420 | kInNv422;
inline constexpr FormatSet kInPacked = kInYuyv | kInYvyu | kInUyvy | kInVyuy;
inline constexpr FormatSet kInYuv = kInPlanar | kInNv | kInPacked | kInGrey;
inline constexpr FormatSet kInYuvButYuyv = kInYuv & ~kInYuyv;

// The one bit of a side's format; 0 for formats that only the general path serves.
FormatSet sourceFormat(const ConvRecord& record);
FormatSet destinationFormat(const ConvRecord& record);

// Bytes of a pixel of an RGB format.
constexpr int32_t pixelBytes(FormatSet format) {
  if ((format & kIn16) != 0) return 2;
  return (format & kIn24) != 0 ? 3 : 4;
}

}  // namespace qpx::convert::fast
