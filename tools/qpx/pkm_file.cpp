#include "pkm_file.h"

#include <algorithm>
#include <array>
#include <new>

#include "errors.h"
#include "image_file.h"
#include "output_file.h"

namespace qpx::tool {

namespace {

constexpr size_t kHeaderBytes = 16;
constexpr std::array<uint8_t, 4> kMagic = {'P', 'K', 'M', ' '};
constexpr std::array<uint8_t, 2> kVersion = {'1', '0'};
constexpr int32_t kTypeEtc1 = 0;  // without mipmaps

// Places of the big-endian numbers of 16 bits.
constexpr size_t kTypeAt = 6;
constexpr size_t kPaddedWidthAt = 8;
constexpr size_t kPaddedHeightAt = 10;
constexpr size_t kWidthAt = 12;
constexpr size_t kHeightAt = 14;

int32_t numberAt(const std::vector<uint8_t>& file, size_t at) {
  return file[at] << 8 | file[at + 1];
}

void putNumber(std::array<uint8_t, kHeaderBytes>& header, size_t at, int32_t value) {
  header[at] = static_cast<uint8_t>(value >> 8);
  header[at + 1] = static_cast<uint8_t>(value);
}

std::string sizeText(int32_t width, int32_t height) {
  return std::to_string(width) + "x" + std::to_string(height);
}

void checkHeader(const std::vector<uint8_t>& file) {
  if (file.empty()) throw RunError("is empty: use a PKM file");
  const size_t known = std::min(file.size(), kMagic.size());
  if (!std::equal(kMagic.begin(), kMagic.begin() + known, file.begin())) {
    throw RunError("is not a PKM file: make one of a picture with 'qpx etc encode'");
  }
  if (file.size() < kHeaderBytes) {
    throw RunError("is a damaged PKM file: it ends within its header of 16 bytes");
  }
  if (!std::equal(kVersion.begin(), kVersion.end(), file.begin() + kMagic.size()) ||
      numberAt(file, kTypeAt) != kTypeEtc1) {
    throw RunError(
        "is a PKM file of another kind: only version 1.0 with ETC1 (type 0) can be read");
  }
}

PkmTexture parse(const std::vector<uint8_t>& file) {
  checkHeader(file);
  const int32_t width = numberAt(file, kWidthAt), height = numberAt(file, kHeightAt);
  const int32_t paddedWidth = numberAt(file, kPaddedWidthAt);
  const int32_t paddedHeight = numberAt(file, kPaddedHeightAt);
  if (width < 1 || height < 1 || paddedWidth != (width + 3) / 4 * 4 ||
      paddedHeight != (height + 3) / 4 * 4) {
    throw RunError("is a damaged PKM file: its header says " + sizeText(width, height) +
                   " pixels in blocks of " + sizeText(paddedWidth, paddedHeight));
  }
  const size_t given = file.size() - kHeaderBytes;
  const size_t needed = static_cast<size_t>(paddedWidth) * static_cast<size_t>(paddedHeight) / 2;
  if (given != needed) {
    throw RunError("is a damaged PKM file: " + sizeText(paddedWidth, paddedHeight) +
                   " pixels take " + std::to_string(needed) + " bytes behind the header, and " +
                   std::to_string(given) + " are there");
  }
  PkmTexture texture(width, height);
  std::copy(file.begin() + kHeaderBytes, file.end(), texture.blocks().begin());
  return texture;
}

}  // namespace

PkmTexture::PkmTexture(int32_t width, int32_t height)
    : width_(width),
      height_(height),
      blocks_(static_cast<size_t>(paddedWidth()) * static_cast<size_t>(paddedHeight()) / 2) {}

MBitmap PkmTexture::record() const {
  MBitmap record = {QPX_FORMAT_ETC1, paddedWidth(), paddedHeight(), {}, {}};
  record.plane[0] = const_cast<uint8_t*>(blocks_.data());
  return record;
}

PkmTexture readPkm(const std::string& path) {
  try {
    return parse(readFileBytes(path));
  } catch (const RunError& error) {
    throw RunError(displayName(path, true) + ": " + error.what());
  } catch (const std::bad_alloc&) {
    throw RunError(displayName(path, true) + ": not enough memory: use a smaller texture");
  }
}

void writePkm(const PkmTexture& texture, const std::string& path) {
  std::array<uint8_t, kHeaderBytes> header = {};
  std::copy(kMagic.begin(), kMagic.end(), header.begin());
  std::copy(kVersion.begin(), kVersion.end(), header.begin() + kMagic.size());
  putNumber(header, kTypeAt, kTypeEtc1);
  putNumber(header, kPaddedWidthAt, texture.paddedWidth());
  putNumber(header, kPaddedHeightAt, texture.paddedHeight());
  putNumber(header, kWidthAt, texture.width());
  putNumber(header, kHeightAt, texture.height());
  OutputFile out(path);
  out.write(header.data(), header.size());
  out.write(texture.blocks().data(), texture.blocks().size());
  out.commit();
}

}  // namespace qpx::tool
