// PNG files that are nearly right, through every call of the front end, into targets of just the
// bytes that the calls may write.
#include <fuzzer/FuzzedDataProvider.h>
#include <kesbase.h>
#include <qpx/qpx.h>
#include <zlib.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "fuzz_check.h"

namespace {

using Bytes = std::vector<uint8_t>;

void putWord(Bytes* file, size_t value) {
  for (int shift = 24; shift >= 0; shift -= 8) {
    file->push_back(static_cast<uint8_t>(value >> shift));
  }
}

void putChunk(Bytes* file, const std::string& type, const Bytes& data) {
  putWord(file, data.size());
  const size_t start = file->size();
  file->insert(file->end(), type.begin(), type.end());
  file->insert(file->end(), data.begin(), data.end());
  putWord(file, crc32(0, file->data() + start, static_cast<uInt>(file->size() - start)));
}

Bytes header(FuzzedDataProvider& data) {
  constexpr uint8_t kDepths[] = {1, 2, 4, 8, 16};
  constexpr uint8_t kColorTypes[] = {0, 2, 3, 4, 6};
  const bool wild = data.ConsumeIntegralInRange(0, 31) == 0;
  Bytes bytes;
  for (int i = 0; i < 2; ++i) {
    putWord(&bytes, wild ? data.ConsumeIntegral<uint32_t>() : data.ConsumeIntegralInRange(0, 70));
  }
  bytes.push_back(wild ? data.ConsumeIntegral<uint8_t>() : data.PickValueInArray(kDepths));
  bytes.push_back(wild ? data.ConsumeIntegral<uint8_t>() : data.PickValueInArray(kColorTypes));
  bytes.insert(bytes.end(), {0, 0, static_cast<uint8_t>(data.ConsumeIntegralInRange(0, 1))});
  return bytes;
}

// Rows of the given bytes, repeated to some length.
Bytes deflated(FuzzedDataProvider& data) {
  Bytes rows = data.ConsumeBytes<uint8_t>(data.ConsumeIntegralInRange<size_t>(0, 300));
  const size_t length = data.ConsumeIntegralInRange<size_t>(0, 25000);
  const size_t given = std::max<size_t>(rows.size(), 1);
  rows.resize(length);
  for (size_t i = given; i < length; ++i) rows[i] = rows[i - given];
  Bytes packed(compressBound(static_cast<uLong>(length)));
  uLongf size = static_cast<uLongf>(packed.size());
  compress2(packed.data(), &size, rows.data(), static_cast<uLong>(length), 1);
  packed.resize(size);
  return packed;
}

Bytes makeFile(FuzzedDataProvider& data) {
  constexpr const char* kTypes[] = {"PLTE", "tRNS", "pHYs", "sRGB", "gAMA", "cHRM", "sBIT",
                                    "bKGD", "iCCP", "tEXt", "zTXt", "IDAT", "IEND", "IHDR"};
  Bytes file = {137, 'P', 'N', 'G', 13, 10, 26, 10};
  putChunk(&file, "IHDR", header(data));
  for (int i = data.ConsumeIntegralInRange(0, 4); i > 0; --i) {
    const char* const type = data.PickValueInArray(kTypes);
    const size_t size = data.ConsumeIntegralInRange<size_t>(0, 800);
    putChunk(&file, type, data.ConsumeBytes<uint8_t>(size));
  }
  putChunk(&file, "IDAT", deflated(data));
  putChunk(&file, "IEND", {});
  for (int i = data.ConsumeIntegralInRange(-8, 3); i > 0; --i) {
    const size_t at = data.ConsumeIntegralInRange<size_t>(0, file.size() - 1);
    file[at] = data.ConsumeIntegral<uint8_t>();
  }
  if (data.ConsumeIntegralInRange(0, 7) == 0) {
    file.resize(data.ConsumeIntegralInRange<size_t>(0, file.size()));
  }
  return file;
}

bool knownCode(int32_t result) { return result >= 0 && result <= 4; }

// Rows in blocks of their own, so that every byte beside them is watched.
class Rows {
 public:
  Rows(const PngInfo& info, size_t count) {
    for (size_t i = 0; i < count; ++i) {
      blocks_.emplace_back(new uint8_t[info.rowBytes]());
      rows_.push_back(blocks_.back().get());
    }
  }
  uint8_t* const* get() const { return rows_.data(); }

 private:
  std::vector<std::unique_ptr<uint8_t[]>> blocks_;
  std::vector<uint8_t*> rows_;
};

void askForSize(FuzzedDataProvider& data, PngHandle* png) {
  int32_t width = data.ConsumeIntegralInRange(-1, 80);
  int32_t height = data.ConsumeIntegralInRange(-1, 80);
  const bool idle = width == 0 || height == 0;
  const int32_t result = PNG_DecodeSetDimension(png, &width, &height);
  FUZZ_CHECK(knownCode(result));
  PngInfo info = {};
  PNG_DecodeGetPngInfo(png, &info);
  if (result != QPX_OK || idle) return;
  FUZZ_CHECK(info.width == static_cast<uint32_t>(width));
  FUZZ_CHECK(info.height == static_cast<uint32_t>(height));
}

void askForColors(PngHandle* png) {
  int32_t size = -1;
  FUZZ_CHECK(PNG_DecodeGetColorTab(png, nullptr, &size) == QPX_OK);
  FUZZ_CHECK(size >= 0 && size <= 1024);
  const std::unique_ptr<uint8_t[]> table(new uint8_t[static_cast<size_t>(size)]);
  FUZZ_CHECK(PNG_DecodeGetColorTab(png, table.get(), &size) == QPX_OK);
}

void readRows(FuzzedDataProvider& data, PngHandle* png) {
  PngInfo info = {};
  FUZZ_CHECK(PNG_DecodeGetPngInfo(png, &info) == QPX_OK);
  const int32_t count = data.ConsumeIntegralInRange(1, 5);
  const Rows rows(info, static_cast<size_t>(count));
  for (int i = 0; i < 600; ++i) {
    int32_t line = -1, done = -1;
    const int32_t result = PNG_DecodeScanLines(png, rows.get(), count, &line, &done);
    FUZZ_CHECK(knownCode(result));
    FUZZ_CHECK(done >= 0 && done <= count && (done == count) == (result == QPX_OK));
    FUZZ_CHECK(line >= 0 && static_cast<uint32_t>(line) <= info.height);
    if (result != QPX_OK) break;
  }
}

void decodeRows(FuzzedDataProvider& data, MStreamHandle* stream) {
  PngHandle* png = nullptr;
  const int32_t result = PNG_DecodeInit(stream, &png);
  FUZZ_CHECK(knownCode(result) && (png != nullptr) == (result == QPX_OK));
  if (png == nullptr) return;
  if (data.ConsumeBool()) PNG_DecodeSetRGBInvert(png);
  if (data.ConsumeBool()) askForSize(data, png);
  askForColors(png);
  PngInfoHeader head;
  FUZZ_CHECK(PNG_DecodeGetInfoHeader(png, &head) == QPX_OK);
  readRows(data, png);
  FUZZ_CHECK(PNG_DecodeUninit(png) == QPX_OK);
}

// Into a bitmap that need not fit the file.
void decodeBitmap(FuzzedDataProvider& data, MStreamHandle* stream) {
  constexpr uint32_t kFormats[] = {
      QPX_FORMAT_GREY8,   QPX_FORMAT_RGB24, QPX_FORMAT_RGBA32, QPX_FORMAT_RGB565, 0,
      QPX_FORMAT_PALETTE8};
  QPXPng* png = nullptr;
  QPX_png_create(stream, &png);
  MBitmap bitmap = {data.PickValueInArray(kFormats),
                    data.ConsumeIntegralInRange(-1, 80),
                    data.ConsumeIntegralInRange(-1, 80),
                    {},
                    {}};
  const int32_t pitch = data.ConsumeIntegralInRange(-300, 300);
  bitmap.pitch[0] = pitch;
  const size_t rows = static_cast<size_t>(std::max(bitmap.height, 1));
  const size_t bytes = rows * static_cast<size_t>(std::abs(pitch));
  const std::unique_ptr<uint8_t[]> block(new uint8_t[bytes]);
  bitmap.plane[0] = block.get();
  if (pitch < 0) bitmap.plane[0] += static_cast<ptrdiff_t>(rows - 1) * -ptrdiff_t{pitch};
  for (int i = 0; i < 8; ++i) {
    const int32_t result = QPX_png_decode(png, &bitmap);
    FUZZ_CHECK(knownCode(result) || result == QPX_PNG_REFUSED);
  }
  QPX_png_destroy(png);
}

void decodeWhole(const Bytes& file) {
  MBitmap* bitmap = nullptr;
  const int32_t result = QPX_DecodePNG(file.data(), static_cast<int32_t>(file.size()), &bitmap);
  FUZZ_CHECK(result == QPX_OK || result == -2);
  FUZZ_CHECK((bitmap != nullptr) == (result == QPX_OK));
  UTIL_MBitmapFree(bitmap);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  FuzzedDataProvider data(bytes, size);
  const int way = data.ConsumeIntegralInRange(0, 3);
  Bytes file = makeFile(data);
  MStreamHandle* const stream =
      MStreamOpenFromMemoryBlock(file.data(), static_cast<int32_t>(file.size()));
  int32_t width, height, bits;
  PNG_GetInfoFromFile(stream, &width, &height, &bits);
  MStreamSeek(stream, 0, 0);
  if (way == 0) {
    decodeWhole(file);
  } else if (way == 1) {
    decodeBitmap(data, stream);
  } else {
    decodeRows(data, stream);
  }
  MStreamClose(stream);
  return 0;
}
