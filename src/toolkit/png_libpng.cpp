// libpng behind calls that return: streams and memory services below it, landing places above it.
#include <kesbase.h>

#include <csetjmp>

#include "toolkit/png_decoder.h"

namespace qpx {
namespace {

[[noreturn]] void onError(png_structp png, png_const_charp /*message*/) { png_longjmp(png, 1); }

void onWarning(png_structp /*png*/, png_const_charp /*message*/) {}

void* onAllocate(png_structp png, png_alloc_size_t size) {
  void* const block = MMemAlloc(nullptr, size);
  if (block == nullptr) static_cast<PngHandle*>(png_get_mem_ptr(png))->exhausted = true;
  return block;
}

void onFree(png_structp /*png*/, void* block) { MMemFree(nullptr, block); }

// libpng asks for no more than a chunk at a time, and chunks have sizes of 31 bits.
void onRead(png_structp png, png_bytep to, size_t size) {
  MStreamHandle* const stream = static_cast<MStreamHandle*>(png_get_io_ptr(png));
  const int32_t count = static_cast<int32_t>(size);
  if (MStreamRead(stream, to, count) != count) png_error(png, "the stream ended early");
}

int32_t failureOf(PngHandle& decoder) {
  decoder.broken = true;
  return decoder.exhausted ? QPX_NO_MEMORY : QPX_PNG_BROKEN;
}

void checkSize(const PngHandle& decoder) {
  if (uint64_t{decoder.fileWidth} * decoder.fileHeight > kMaxPngPixels) {
    png_error(decoder.png, "too many pixels");
  }
}

void readSize(PngHandle& decoder) {
  decoder.fileWidth = decoder.width = png_get_image_width(decoder.png, decoder.info);
  decoder.fileHeight = decoder.height = png_get_image_height(decoder.png, decoder.info);
  checkSize(decoder);
  int unit;
  png_get_pHYs(decoder.png, decoder.info, &decoder.xResolution, &decoder.yResolution, &unit);
}

void chooseTransforms(PngHandle& decoder) {
  png_set_strip_16(decoder.png);
  int intent;
  if (png_get_sRGB(decoder.png, decoder.info, &intent) != 0) {
    png_set_sRGB(decoder.png, decoder.info, intent);
  }
  decoder.passes = static_cast<uint8_t>(png_set_interlace_handling(decoder.png));
  png_read_update_info(decoder.png, decoder.info);
  decoder.bitsPerPixel = uint32_t{png_get_bit_depth(decoder.png, decoder.info)} *
                         png_get_channels(decoder.png, decoder.info);
}

}  // namespace

int32_t createPng(PngHandle& decoder) {
  decoder.png = png_create_read_struct_2(PNG_LIBPNG_VER_STRING, nullptr, onError, onWarning,
                                         &decoder, onAllocate, onFree);
  if (decoder.png == nullptr) return QPX_NO_MEMORY;
  decoder.info = png_create_info_struct(decoder.png);
  return decoder.info == nullptr ? QPX_NO_MEMORY : QPX_OK;
}

int32_t readPngHeader(PngHandle& decoder) {
  decoder.exhausted = false;
  if (setjmp(png_jmpbuf(decoder.png)) != 0) return failureOf(decoder);
  png_set_user_limits(decoder.png, kMaxPngSide, kMaxPngSide);
  png_set_read_fn(decoder.png, decoder.stream, onRead);
  png_set_sig_bytes(decoder.png, kPngSignatureBytes);
  png_read_info(decoder.png, decoder.info);
  readSize(decoder);
  chooseTransforms(decoder);
  return QPX_OK;
}

void swapPngToBgr(PngHandle& decoder) { png_set_bgr(decoder.png); }

int32_t readPngRow(PngHandle& decoder, uint8_t* row) {
  if (decoder.broken) return QPX_PNG_BROKEN;
  decoder.exhausted = false;
  if (setjmp(png_jmpbuf(decoder.png)) != 0) return failureOf(decoder);
  png_read_row(decoder.png, row, nullptr);
  ++decoder.sourceLine;
  return QPX_OK;
}

void destroyPng(PngHandle& decoder) {
  png_destroy_read_struct(&decoder.png, &decoder.info, nullptr);
}

}  // namespace qpx
