#include <qpx/qpx.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "parts_table.h"
#include "subjects.h"

namespace qpx::bench {
namespace {

constexpr int kBands = 8;

// Rows [first, last) of a picture.
using RowsBody = std::function<void(int32_t first, int32_t last)>;

void check(int32_t result) {
  if (result == 0) return;
  std::fprintf(stderr, "a call answered %d\n", static_cast<int>(result));
  std::exit(1);
}

std::shared_ptr<std::vector<uint8_t>> noise(size_t size) {
  auto bytes = std::make_shared<std::vector<uint8_t>>(size);
  uint32_t state = 1;
  for (uint8_t& byte : *bytes) byte = static_cast<uint8_t>((state = state * 1664525 + 7) >> 24);
  return bytes;
}

// As many threads as there are processors.
McvParallel* sharedPool() {
  static const std::unique_ptr<McvParallel, int32_t (*)(McvParallel*)> pool(
      mcvParallelInit(nullptr, 0), mcvParallelUninit);
  return pool.get();
}

struct Band {
  const RowsBody* body;
  int32_t first, last;
};

void runOnPool(const RowsBody& body, int32_t height) {
  Band bands[kBands];
  int32_t ids[kBands];
  for (int32_t i = 0; i < kBands; ++i) {
    bands[i] = {&body, height / 4 * i / kBands * 4, height / 4 * (i + 1) / kBands * 4};
    if (i == kBands - 1) bands[i].last = height;
    const auto run = [](void* arg) -> void* {
      const Band& band = *static_cast<const Band*>(arg);
      (*band.body)(band.first, band.last);
      return nullptr;
    };
    ids[i] = mcvAddTask(sharedPool(), run, &bands[i]);
  }
  for (const int32_t id : ids) check(mcvWaitTask(sharedPool(), id));
}

InParts pooled(const char* name, const Frame& size, const RowsBody& body) {
  const int32_t height = size.height, middle = height / 8 * 4;
  return {name, sizeName(size), [=] { body(0, height); }, [=] { runOnPool(body, height); },
          [=](int half) { half == 0 ? body(0, middle) : body(middle, height); }};
}

RowsBody hslBody(const Frame& size) {
  const auto src = noise(size_t{3} * static_cast<size_t>(size.pixels())), dst = noise(src->size());
  return [=, pitch = 3 * size.width, width = size.width](int32_t first, int32_t last) {
    const ptrdiff_t start = ptrdiff_t{pitch} * first;
    check(mcvColorBGR888toHSL888u8(src->data() + start, dst->data() + start, last - first, width,
                                   pitch, pitch));
  };
}

struct RecordWork {
  const char* name;
  uint32_t to;
  int32_t srcWidth, srcHeight;  // 0: at the same size
  uint32_t dither;
};

// Clips of the destination, of NV21.
RowsBody recordBody(const RecordWork& work, const Frame& size) {
  const int32_t width = work.srcWidth != 0 ? work.srcWidth : size.width;
  const int32_t height = work.srcHeight != 0 ? work.srcHeight : size.height;
  const auto src = noise(static_cast<size_t>(width) * static_cast<size_t>(height) * 3 / 2);
  const auto dst = noise(size_t{4} * static_cast<size_t>(size.pixels()));
  const PostProcessImage from = {
      QPX_FORMAT_NV21, static_cast<uint32_t>(width), static_cast<uint32_t>(height), {}, nullptr};
  const PostProcessImage to = {
      work.to, static_cast<uint32_t>(size.width), static_cast<uint32_t>(size.height), {}, nullptr};
  PostProcessOption option = {};
  option.resampleMode = 2;
  option.alignMode = 256;
  option.palette = work.dither;
  PostProcessContext* context = nullptr;
  check(MPPCreate(&from, &to, &option, &context));
  const std::shared_ptr<PostProcessContext> owned(context, MPPDestroy);
  const int32_t bytes = work.to == QPX_FORMAT_RGB565 ? 2 : 4;
  return [=, dstWidth = size.width](int32_t first, int32_t last) {
    const uint8_t* const pairs = src->data() + ptrdiff_t{width} * height;
    const uint8_t* const srcPlanes[3] = {src->data(), pairs + 1, pairs};
    uint8_t* const dstPlanes[3] = {dst->data(), nullptr, nullptr};
    const int32_t srcPitch[3] = {width, width, width}, dstPitch[3] = {bytes * dstWidth, 0, 0};
    const MRect clip = {0, first, dstWidth, last};
    check(MPProcess(owned.get(), srcPlanes, &clip, srcPitch, dstPlanes, dstPitch));
  };
}

constexpr RecordWork kRecordWorks[] = {
    {"NV21 to RGB565, by a record", QPX_FORMAT_RGB565, 0, 0, 0},
    {"the same, dithered", QPX_FORMAT_RGB565, 0, 0, 1},
    {"NV21 to BGRA32, bilinear", QPX_FORMAT_BGRA32, 1280, 720, 0},
};

}  // namespace

void addCopies(std::vector<InParts>* works) {
  for (const size_t bytes : {size_t{2} << 20, size_t{8} << 20, size_t{48} << 20}) {
    const auto src = noise(bytes), dst = noise(bytes);
    const auto copy = [=](size_t from, size_t to) {
      std::memcpy(dst->data() + from, src->data() + from, to - from);
    };
    works->push_back({"memcpy", std::to_string(bytes >> 20) + " MB", [=] { copy(0, bytes); },
                      nullptr,
                      [=](int half) { half == 0 ? copy(0, bytes / 2) : copy(bytes / 2, bytes); }});
  }
}

void addPooledWorks(std::vector<InParts>* works) {
  for (const Frame& size : {kFull, kPhoto}) {
    works->push_back(pooled("BGR888 to HSL888", size, hslBody(size)));
    for (const RecordWork& work : kRecordWorks) {
      works->push_back(pooled(work.name, size, recordBody(work, size)));
    }
  }
}

}  // namespace qpx::bench
