// The decoder over a stream: opening, what it tells of the file, rows.
#include <algorithm>
#include <array>
#include <cstring>

#include "platform/stream_record.h"
#include "toolkit/png_decoder.h"

namespace qpx {
namespace {

constexpr uint8_t kSignature[kPngSignatureBytes] = {137, 'P', 'N', 'G'};

// Pixel formats by depth, from kFirstDepth on.
constexpr uint32_t kFirstDepth = 8;
constexpr std::array<uint32_t, 25> kFormats = [] {
  std::array<uint32_t, 25> formats = {};
  formats[8 - kFirstDepth] = QPX_FORMAT_GREY8;
  formats[24 - kFirstDepth] = QPX_FORMAT_RGB24;
  formats[32 - kFirstDepth] = QPX_FORMAT_RGBA32;
  return formats;
}();

uint32_t formatOfDepth(uint32_t bits) {
  const uint32_t i = bits - kFirstDepth;  // far behind the table for lower depths
  return i < kFormats.size() ? kFormats[i] : 0;
}

void freeDecoder(PngHandle* decoder) {
  destroyPng(*decoder);
  MMemFree(nullptr, decoder->rowIndex);
  MMemFree(nullptr, decoder->columnIndex);
  MMemFree(nullptr, decoder->row);
  MMemFree(nullptr, decoder);
}

int32_t openDecoder(PngHandle& decoder, MStreamHandle* stream) {
  uint8_t signature[kPngSignatureBytes];
  if (MStreamRead(stream, signature, kPngSignatureBytes) != kPngSignatureBytes ||
      std::memcmp(signature, kSignature, kPngSignatureBytes) != 0) {
    return QPX_UNSUPPORTED;
  }
  decoder.stream = stream;
  decoder.scale = 1.0;
  const int32_t result = createPng(decoder);
  return result != QPX_OK ? result : readPngHeader(decoder);
}

// Goes on to the next pass behind the last row of one. Source rows that no delivered row stands for
// are read only now, so that a file broken there still gives all rows of its last pass.
int32_t enterPass(PngHandle& decoder) {
  if (decoder.line < decoder.height) return QPX_OK;
  if (decoder.passesFinished == decoder.passes) return QPX_PNG_BROKEN;
  while (decoder.sourceLine < decoder.fileHeight) {
    const int32_t result = readPngRow(decoder, nullptr);
    if (result != QPX_OK) return result;
  }
  decoder.line = 0;
  decoder.sourceLine = 0;
  return QPX_OK;
}

// libpng writes the pixels of the current pass only, so the others are made 0 before.
int32_t readScaledRow(PngHandle& decoder, uint8_t* to) {
  while (decoder.sourceLine < decoder.rowIndex[decoder.line]) {
    const int32_t result = readPngRow(decoder, nullptr);
    if (result != QPX_OK) return result;
  }
  MMemSet(decoder.row, 0, pngRowBytes(decoder.fileWidth, decoder.bitsPerPixel));
  const int32_t result = readPngRow(decoder, decoder.row);
  if (result == QPX_OK) copyScaledRow(decoder, to);
  return result;
}

int32_t deliverRow(PngHandle& decoder, uint8_t* to) {
  int32_t result = enterPass(decoder);
  if (result != QPX_OK) return result;
  result = decoder.scale == 1.0 ? readPngRow(decoder, to) : readScaledRow(decoder, to);
  if (result != QPX_OK) return result;
  if (++decoder.line == decoder.height) ++decoder.passesFinished;
  return QPX_OK;
}

void start(PngHandle& decoder) {
  if (decoder.started) return;
  decoder.started = true;
  if (!decoder.rgbInvert) swapPngToBgr(decoder);
}

}  // namespace
}  // namespace qpx

using namespace qpx;

int32_t PNG_DecodeInit(MStreamHandle* stream, PngHandle** handleOut) {
  if (stream == nullptr || handleOut == nullptr) return QPX_BAD_PARAM;
  PngHandle* const decoder = newRecord<PngHandle>();
  if (decoder == nullptr) return QPX_NO_MEMORY;
  const int32_t result = openDecoder(*decoder, stream);
  if (result != QPX_OK) {
    freeDecoder(decoder);
    return result;
  }
  *handleOut = decoder;
  return QPX_OK;
}

int32_t PNG_DecodeUninit(PngHandle* handle) {
  if (handle == nullptr) return QPX_BAD_PARAM;
  freeDecoder(handle);
  return QPX_OK;
}

int32_t PNG_DecodeGetPngInfo(PngHandle* handle, PngInfo* info) {
  if (handle == nullptr || info == nullptr) return QPX_BAD_PARAM;
  *info = {handle->height, handle->width, handle->bitsPerPixel,
           pngRowBytes(handle->width, handle->bitsPerPixel), formatOfDepth(handle->bitsPerPixel)};
  return QPX_OK;
}

int32_t PNG_DecodeGetInfoHeader(PngHandle* handle, PngInfoHeader* header) {
  if (handle == nullptr || header == nullptr) return QPX_BAD_PARAM;
  const uint32_t pitch = ((handle->width * handle->bitsPerPixel + 31) >> 5) * 4;
  *header = {};
  header->size = sizeof(PngInfoHeader);
  header->width = static_cast<int32_t>(handle->width);
  header->height = static_cast<int32_t>(handle->height);
  header->planes = 1;
  header->bitsPerPixel = static_cast<uint16_t>(handle->bitsPerPixel);
  header->imageSize = pitch * handle->height;
  header->xResolution = handle->xResolution;
  header->yResolution = handle->yResolution;
  return QPX_OK;
}

int32_t PNG_DecodeGetColorTab(PngHandle* handle, uint8_t* table, int32_t* sizeOut) {
  if (handle == nullptr || sizeOut == nullptr) return QPX_BAD_PARAM;
  png_colorp palette = nullptr;
  int entries = 0;
  png_get_PLTE(handle->png, handle->info, &palette, &entries);
  *sizeOut = 4 * entries;
  if (table == nullptr) return QPX_OK;

  png_bytep alpha = nullptr;
  int alphas = 0;
  png_get_tRNS(handle->png, handle->info, &alpha, &alphas, nullptr);
  for (int i = 0; i < entries; ++i) {
    const png_color& color = palette[i];
    const bool opaque = alpha == nullptr || i >= alphas;
    uint8_t* const entry = table + ptrdiff_t{4} * i;
    entry[0] = handle->rgbInvert ? color.red : color.blue;
    entry[1] = color.green;
    entry[2] = handle->rgbInvert ? color.blue : color.red;
    entry[3] = opaque ? uint8_t{255} : alpha[i];
  }
  return QPX_OK;
}

int32_t PNG_DecodeSetRGBInvert(PngHandle* handle) {
  if (handle == nullptr) return QPX_BAD_PARAM;
  handle->rgbInvert = true;
  return QPX_OK;
}

int32_t PNG_DecodeScanLines(PngHandle* handle, uint8_t* const* rows, int32_t count,
                            int32_t* lineOut, int32_t* doneOut) {
  if (handle == nullptr || rows == nullptr || lineOut == nullptr || doneOut == nullptr ||
      count < 0 || std::find(rows, rows + count, nullptr) != rows + count) {
    return QPX_BAD_PARAM;
  }
  start(*handle);
  int32_t result = QPX_OK;
  int32_t done = 0;
  while (done < count && result == QPX_OK) {
    result = deliverRow(*handle, rows[done]);
    if (result == QPX_OK) ++done;
  }
  *lineOut = static_cast<int32_t>(handle->line);
  *doneOut = done;
  return result;
}
