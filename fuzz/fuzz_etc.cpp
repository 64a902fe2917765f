// Compressed images of any blocks, and sizes, rectangles and places that may be senseless, through
// every operation of the texture codec. All images are blocks of just the bytes that they must
// have.
#include <fuzzer/FuzzedDataProvider.h>
#include <qpx/qpx.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include "fuzz_check.h"

namespace {

bool knownCode(int32_t result) { return result == 0 || (result >= 2 && result <= 4); }

int64_t bytesOf(int32_t width, int32_t height, int64_t perBlock) {
  return int64_t{std::max(width, 0) / 4} * (std::max(height, 0) / 4) * perBlock;
}

// A side of up to ten blocks, or one that no image can have.
int32_t pickSide(FuzzedDataProvider& data) {
  if (data.ConsumeIntegralInRange(0, 15) > 0) return data.ConsumeIntegralInRange(1, 10) * 4;
  const int32_t side = data.ConsumeIntegral<int32_t>();
  return side > 0 && side % 4 == 0 ? side + 1 : side;
}

int32_t pickCoordinate(FuzzedDataProvider& data) {
  if (data.ConsumeIntegralInRange(0, 15) == 0) return data.ConsumeIntegral<int32_t>();
  return data.ConsumeIntegralInRange(-12, 12) * 4;
}

// Bytes of an image in a block that ends with them.
class Block {
 public:
  Block(FuzzedDataProvider& data, size_t size) : size_(size), bytes_(new uint8_t[size]) {
    const std::vector<uint8_t> given =
        data.ConsumeBytes<uint8_t>(std::min<size_t>(size, data.ConsumeIntegralInRange(1, 200)));
    for (size_t i = 0; i < size; ++i) {
      bytes_[i] = given.empty() ? 0x5A : given[i % given.size()];
    }
  }
  uint8_t* get() const { return bytes_.get(); }
  size_t size() const { return size_; }
  std::vector<uint8_t> copy() const { return {bytes_.get(), bytes_.get() + size_}; }

 private:
  size_t size_;
  std::unique_ptr<uint8_t[]> bytes_;
};

struct Texture {
  int32_t width, height;
  Block blocks;
  MBitmap record;

  explicit Texture(FuzzedDataProvider& data) : Texture(data, pickSide(data), pickSide(data)) {}
  Texture(FuzzedDataProvider& data, int32_t w, int32_t h)
      : width(w), height(h), blocks(data, static_cast<size_t>(bytesOf(smallOf(w), smallOf(h), 8))) {
    record = {QPX_FORMAT_ETC1, w, h, {}, {}};
    record.plane[0] = blocks.get();
    if (data.ConsumeIntegralInRange(0, 31) == 0) record.format = data.ConsumeIntegral<uint32_t>();
    if (data.ConsumeIntegralInRange(0, 31) == 0) record.plane[0] = nullptr;
  }

  static int32_t smallOf(int32_t side) { return side > 0 && side <= 40 ? side : 4; }
};

void decode(FuzzedDataProvider& data) {
  const Texture texture(data);
  const size_t room = static_cast<size_t>(
      bytesOf(Texture::smallOf(texture.width), Texture::smallOf(texture.height), 48));
  std::vector<uint8_t> results[2];
  for (const int32_t plain : {0, 1}) {
    const std::unique_ptr<uint8_t[]> pixels(new uint8_t[room]());
    MBitmap target = {QPX_FORMAT_BGR24, 0, 0, {}, {}};
    target.plane[0] = pixels.get();
    QPX_UsePlainForms(plain);
    FUZZ_CHECK(knownCode(TEXPK_Uncompress_ETC(&texture.record, &target)));
    results[plain].assign(pixels.get(), pixels.get() + room);
  }
  FUZZ_CHECK(results[0] == results[1]);
}

void encode(FuzzedDataProvider& data) {
  const int32_t width = pickSide(data), height = pickSide(data);
  const int32_t columns = Texture::smallOf(width), rows = Texture::smallOf(height);
  const Block pixels(data, static_cast<size_t>(bytesOf(columns, rows, 48)));
  MBitmap source = {QPX_FORMAT_RGB24, width, height, {columns * 3, 0, 0}, {}};
  source.plane[0] = pixels.get();
  const int32_t quality = data.ConsumeIntegralInRange(-1, 2);
  std::vector<uint8_t> results[2];
  for (const int32_t plain : {0, 1}) {
    const size_t room = static_cast<size_t>(bytesOf(columns, rows, 8));
    const std::unique_ptr<uint8_t[]> blocks(new uint8_t[room]());
    MBitmap target = {};
    target.plane[0] = blocks.get();
    QPX_UsePlainForms(plain);
    FUZZ_CHECK(knownCode(TEXPK_Compress_ETC(&source, &target, quality)));
    results[plain].assign(blocks.get(), blocks.get() + room);
  }
  FUZZ_CHECK(results[0] == results[1]);
}

void cropAndMerge(FuzzedDataProvider& data) {
  const Texture source(data);
  Texture target(data);
  const bool sameSize = data.ConsumeIntegralInRange(0, 7) > 0;
  const Texture base = sameSize ? Texture(data, target.width, target.height) : Texture(data);
  const MRect rect = {pickCoordinate(data), pickCoordinate(data), pickCoordinate(data),
                      pickCoordinate(data)};
  const MPoint origin = {pickCoordinate(data), pickCoordinate(data)};
  const float alpha = data.ConsumeBool() ? data.ConsumeFloatingPointInRange(0.0f, 1.0f)
                                         : data.ConsumeFloatingPoint<float>();
  const std::vector<uint8_t> before = target.blocks.copy();
  const int32_t cropped = TEXPK_Crop_ETC(&source.record, &target.record, &rect, &origin);
  FUZZ_CHECK(cropped == 0 || cropped == 2);
  FUZZ_CHECK(cropped == 0 || target.blocks.copy() == before);
  const std::vector<uint8_t> between = target.blocks.copy();
  const int32_t merged =
      TEXPK_Merge_ETC(&target.record, &source.record, &base.record, &rect, &origin, alpha);
  FUZZ_CHECK(merged == 0 || merged == 2);
  FUZZ_CHECK(merged == 0 || target.blocks.copy() == between);
}

void singleBlocks(FuzzedDataProvider& data) {
  const int32_t width = data.ConsumeIntegralInRange(1, 12);
  const int32_t height = data.ConsumeIntegralInRange(1, 12);
  const Block image(data, static_cast<size_t>(width) * static_cast<size_t>(height) * 3);
  const int32_t x = data.ConsumeIntegralInRange(-2, 12), y = data.ConsumeIntegralInRange(-2, 12);
  uint32_t words[2] = {data.ConsumeIntegral<uint32_t>(), data.ConsumeIntegral<uint32_t>()};
  uint32_t blended[2];
  const int32_t weight = data.ConsumeIntegral<int32_t>();
  TEXPKABlock(words[0], words[1], words[1], words[0], blended, blended + 1, weight & 1023,
              1024 - (weight & 1023));
  TEXPKABlock(words[0], words[1], 0, 0, blended, blended + 1, weight, weight);
  for (const auto compress :
       {TEXPKcompressBlockDiffAveragePerceptual, TEXPKcompressBlockDiffFlipAveragePerceptual,
        TEXPKcompressBlockDiffFlipCombinedPerceptual, TEXPKcompressBlockDiffFlipSlowPerceptual}) {
    compress(image.get(), width, height, x, y, words, words + 1);
  }
  uint8_t indices[8];
  const uint8_t base[3] = {static_cast<uint8_t>(weight), static_cast<uint8_t>(weight >> 8), 255};
  TEXPKcompressBlockWithTable2x4percep(image.get(), width, height, x, y, base, weight & 15,
                                       indices);
  int32_t table;
  TEXPKtryalltables_3bittable4x2percep(image.get(), width, height, x, y, base, &table, indices);
  float mean[3] = {data.ConsumeFloatingPoint<float>(), 0, 255};
  uint8_t levels[3];
  TEXPKquantize555ColorCombinedPerceptual(mean, levels);
  TEXPKquantize444ColorCombinedPerceptual(mean, levels);
  FUZZ_CHECK(levels[0] <= 15);
  TEXPKdecompressBlockDiffFlip(words[0], words[1], image.get(), width, height, x, y);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  FuzzedDataProvider data(bytes, size);
  while (data.remaining_bytes() > 0) {
    switch (data.ConsumeIntegralInRange(0, 4)) {
      case 0:
        decode(data);
        break;
      case 1:
        encode(data);
        break;
      case 2:
        singleBlocks(data);
        break;
      default:
        cropAndMerge(data);
        break;
    }
  }
  QPX_UsePlainForms(0);
  return 0;
}
