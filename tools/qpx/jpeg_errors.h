// How the JPEG decoder and encoder hear of libjpeg's errors.
#pragma once

#include <csetjmp>
#include <cstddef>
#include <cstdio>

#include <jpeglib.h>

namespace qpx::tool {

// libjpeg reports errors by a call that must not return. It leaves by longjmp, over frames of C
// only: every function that sets the jump calls nothing but libjpeg and holds no object with a
// destructor.
struct JpegErrorHandler {
  jpeg_error_mgr base;
  std::jmp_buf jump;
  char message[JMSG_LENGTH_MAX];
  bool damaged;  // data ended early or made no sense, though libjpeg would paint over it
};

JpegErrorHandler* handlerOf(j_common_ptr codec);
jpeg_error_mgr* prepare(JpegErrorHandler& handler);

// What Exif data starts with in its segment: two zeros, the second of which ends the literal.
inline constexpr char kExifPrefix[] = "Exif\0";
inline constexpr size_t kExifPrefixSize = sizeof kExifPrefix;

}  // namespace qpx::tool
