#include "jpeg_errors.h"

#include <jerror.h>

namespace qpx::tool {

namespace {

void leave(j_common_ptr codec) {
  JpegErrorHandler* handler = handlerOf(codec);
  if (!handler->damaged) codec->err->format_message(codec, handler->message);
  std::longjmp(handler->jump, 1);
}

// A picture painted over with grey is worse than an error, so what libjpeg only warns of counts.
void noteWarning(j_common_ptr codec, int level) {
  if (level >= 0) return;
  JpegErrorHandler* handler = handlerOf(codec);
  const int code = codec->err->msg_code;
  const bool serious = code == JWRN_JPEG_EOF || code == JWRN_HIT_MARKER ||
                       code == JWRN_MUST_RESYNC || code == JWRN_HUFF_BAD_CODE ||
                       code == JWRN_ARITH_BAD_CODE;
  if (serious && !handler->damaged) {
    codec->err->format_message(codec, handler->message);
    handler->damaged = true;
  }
}

void beQuiet(j_common_ptr) {}

}  // namespace

JpegErrorHandler* handlerOf(j_common_ptr codec) {
  return reinterpret_cast<JpegErrorHandler*>(codec->err);
}

jpeg_error_mgr* prepare(JpegErrorHandler& handler) {
  jpeg_std_error(&handler.base);
  handler.base.error_exit = leave;
  handler.base.emit_message = noteWarning;
  handler.base.output_message = beQuiet;
  handler.message[0] = '\0';
  handler.damaged = false;
  return &handler.base;
}

}  // namespace qpx::tool
